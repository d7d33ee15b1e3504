/* plot/scene.h - windows with their curves, axes and titles as calls of the drawing library.
 * Owns:    the clip of each object, the order of drawing, line types, point shapes, the language of titles.
 * Callers: redisplay and plotop; the parts of the scene call each other.
 * Never:   opens a device or changes a plot object. */
#pragma once

#include "plot/plotobj.h"

struct scenestate {
    double plotscale = 1;    // of all viewports: fits the shape of the screen to that of a page
    bool backgrounds = true; // off for a page
    bool nowait = false;     // a window of three dimensions was drawn, which reads keys of its own
    int member = 0;          // what is being drawn, for messages
    void (*drawwindow3d)(int index) = nullptr; // set by who draws these; null as long as there is none
};
extern scenestate scene;

void drawwindow(int index); // nothing if it is blanked

/* The parts of one curve. The clip must have been set by sceneclip; nothing is drawn of what the curve does
 * not have. Errors "invalid linetype", "invalid pointtype", "FLATNESS must be non-negative." */
void sceneclip(const window& w, const curve& c);
void drawline(const harray* data, int linetype, const window& w, const curve& c);
void drawpoints(const harray* data, int pointtype, const window& w, const curve& c);
void drawlabels(const window& w, const curve& c);

enum textmode { TEXTPLAIN, TEXTCOMMANDS }; // as it stands, or with the commands behind apostrophes
/* Text from the present point on, along a line at that angle (degrees). size in screen-normal units; colours
 * as setcolor. TEXTPLAIN leaves the present point behind the text. */
void drawtext(const char* text, int font, double size, int color, double angle, int rendermode);
double textadvance(const char* text, int font, double size, int rendermode); // its length on the line
// Ascent and descent: of the text as far as its first command, or of a digit.
double textheight(const char* text, int font, double size, int rendermode);

// ---- for the parts of the scene ----

// The same clip as sceneclip with its window in screen-normal units, for text; axismap tells where points
// lie there.
void sceneclipnormal(const window& w, const curve& c);

// Lengths in screen-normal units as they come out at the present clip.
struct scenescale {
    double x, y; // world units of one
};
scenescale worldpernormal();

// Where the points of a curve lie in the window that sceneclip set: DRAW takes the world as it is, axes are
// in screen-normal units.
struct pointmap {
    bool world;
    pointmap(const window& w, const curve& c) : world(c.kind == TOKDRAW), tonormal(w, c) {}
    void operator()(double& x, double& y) const {
        if (!world) tonormal(x, y);
    }

private:
    axismap tonormal;
};
inline bool isplaceable(double x, double y) { // a point that can be drawn: the rest are gaps
    return x > -MAXPOS && x < MAXPOS && y > -MAXPOS && y < MAXPOS;
}
