/* vellum/vlgenlin.h - the line generator: dashes, ticks, wide lines.
 * Owns:    the style's derived numbers, the polyline in progress and the phase of its dashes. Callers:
 * DLINESTYLE puts vlgenlin and vlflushline into vl.gen while a style is set; nobody else calls them. Never:
 * runs while no style is set; clips to the viewport (the low level does). Lengths are normal units. */
#pragma once

#include "vellum/vldraw.h"

#include <vector>

struct vlgenerator {
    // the style
    double seg1 = 0, gap = 0, seg2 = 0; // none negative
    double period = 0;                  // seg1 + gap + seg2 + gap; 0: no dashes
    double tick1len = 0, tick2len = 0;
    int tick1side = 0, tick2side = 0; // 1 left of the line, -1 right, 0 across it
    double halfthick = 0;
    int roundsegs = 1; // pieces of a round join, 1 for mitres
    double fill = 0;

    // the polyline in progress
    bool open = false;
    int count = 0;                 // points taken since it began
    double lastx = 0, lasty = 0;   // where the client's last line ended, world units
    vlpoint taken{}, takenworld{}; // the last point taken
    bool waiting = false;          // a nearer point than the least distance waits to be replaced
    vlpoint waits{};
    double dashdone = 0;         // length along the pattern at `taken`, less than the period
    int nextmark = 0;            // of the pattern
    bool drawing = true;         // within a seg
    std::vector<vlpoint> points; // what is drawn since the last stroke
    std::vector<vlpoint> ribbon; // its outline
    std::vector<double> flat;    // the outline for the low level
};

// A line of the client, world units: it continues the polyline when it starts where the last one ended.
void vlgenlin(double x0, double y0, double x1, double y1);
// 0 ends the polyline and draws what is left of it; 1 draws what is complete and keeps the phase.
void vlflushline(int final);
// Draws a polyline with the thickness and the joins of the style: thin lines, or the outline of vlribbon.
void vlstroke(vlgenerator& g, const vlpoint* points, int n);
