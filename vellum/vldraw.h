/* vellum/vldraw.h - the low level of drawing: plain lines, dots, solid polygons.
 * Owns:    clipping, the way of a line into the open picture, the device or a memory patch. Callers: the
 * moves of the client, the line generator, polygons, splines, text. Never:   looks at the line style or the
 * transform.
 *
 * Two units serve: world units of the current window (what DDRAW has), and normal units (functions ending in
 * n), in which lengths along x and y are the same and which the generator and the text therefore use.
 * vltonorm and vltoworld convert. */
#pragma once

#include "vellum/vlstate.h"

struct vlpoint {
    double x, y;
};

// The mouse cursor is hidden while something is written to a screen; holds nest.
struct vlcursorhold {
    vlcursorhold() {
        if (vl.ops && vl.ops->showcursor && --vl.cursorlock == -1) vl.ops->showcursor(0);
    }
    vlcursorhold(const vlcursorhold&) = delete;
    vlcursorhold& operator=(const vlcursorhold&) = delete;
    ~vlcursorhold() {
        if (vl.ops && vl.ops->showcursor && ++vl.cursorlock == 0) vl.ops->showcursor(1);
    }
};

inline vlpoint vltonorm(double x, double y) {
    return {x * vl.norm.sx + vl.norm.ox, y * vl.norm.sy + vl.norm.oy};
}
inline vlpoint vltoworld(double nx, double ny) {
    return {(nx - vl.norm.ox) / vl.norm.sx, (ny - vl.norm.oy) / vl.norm.sy};
}
inline vlpoint vltopixel(double nx, double ny) {
    return {nx * vl.pix.sx + vl.pix.ox, ny * vl.pix.sy + vl.pix.oy};
}

// The linear part of the transform on a length (nothing while it is off).
vlpoint vllinear(double dx, double dy);

// Clips to a box x0, x1, y0, y1 with x0 <= x1, y0 <= y1; 0 when nothing is left. Method: Cohen-Sutherland.
int vlclipline(const double box[4], double* x0, double* y0, double* x1, double* y1);

// A plain line in the current colour: clipped, recorded, drawn. The pen (vl.x, vl.y) is not moved.
void vlline(double x0, double y0, double x1, double y1);  // world
void vllinen(double x0, double y0, double x1, double y1); // normal
// A line of the client in world units: through the generator when a style is set, else plain.
inline void vlstyledline(double x0, double y0, double x1, double y1) {
    if (vl.gen.line) {
        vl.gen.line(x0, y0, x1, y1);
    } else {
        vlline(x0, y0, x1, y1);
    }
}
void vldot(double x, double y);  // world
void vldotn(double x, double y); // normal

// Fills an even-odd polygon by the device: n pairs in normal units, x >= 1e300 breaks the boundary. False
// when this is not the device's work (a picture is open, a memory patch is the target, the device cannot):
// the caller then draws hatch lines one pixel apart by vllinen.
bool vlfillpolygonn(const double* xy, size_t n);

// Is there anything to draw into: an open picture, or a target that is not disabled?
bool vlcandraw();
