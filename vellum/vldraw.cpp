#include "vellum/vldraw.h"

#include "vellum/vlpicture.h"
#include "vellum/vlraster.h"

#include <algorithm>
#include <cmath>

namespace {

bool finite(double x0, double y0, double x1, double y1) {
    const double sum = x0 * 0 + y0 * 0 + x1 * 0 + y1 * 0; // 0 unless one is infinite or no number
    return sum == 0;
}

int outcode(const double box[4], double x, double y) {
    return (x < box[0] ? 1 : 0) | (x > box[1] ? 2 : 0) | (y < box[2] ? 4 : 0) | (y > box[3] ? 8 : 0);
}

bool inbox(const double box[4], double x, double y) { return outcode(box, x, y) == 0; }

// A line that begins or ends outside the range of words goes on by a move where it comes back.
void recordline(double x0, double y0, double x1, double y1) {
    if (!vlclipline(vl.recordbox, &x0, &y0, &x1, &y1)) return;
    vlputmove(x0, y0);
    vlputline(x1, y1);
}

void drawline(double x0, double y0, double x1, double y1) {
    if (!vlclipline(vl.drawbox, &x0, &y0, &x1, &y1)) return;
    const vlpoint a = vltopixel(x0, y0), b = vltopixel(x1, y1);
    vlpixelline(vl.patch, a.x, a.y, b.x, b.y);
}

// Pixels beyond this are left to hatching, which clips exactly.
constexpr double farpixel = 1e6;

// The polygon in pixels into vl.scratch; false when it holds a point too far away.
bool topixels(const double* xy, size_t n, double bounds[4]) {
    vlrealloc(vl.scratch, 2 * n);
    bounds[0] = bounds[2] = 1e300;
    bounds[1] = bounds[3] = -1e300;
    for (size_t i = 0; i < n; i++) {
        double* out = &vl.scratch[2 * i];
        if (xy[2 * i] >= 1e300) {
            out[0] = 1e300;
            out[1] = 0;
            continue;
        }
        const vlpoint p = vltopixel(xy[2 * i], xy[2 * i + 1]);
        if (!(std::fabs(p.x) < farpixel && std::fabs(p.y) < farpixel)) return false;
        out[0] = p.x;
        out[1] = p.y;
        bounds[0] = std::min(bounds[0], p.x);
        bounds[1] = std::max(bounds[1], p.x);
        bounds[2] = std::min(bounds[2], p.y);
        bounds[3] = std::max(bounds[3], p.y);
    }
    return true;
}

} // namespace

vlpoint vllinear(double dx, double dy) {
    if (!vl.transformon) return {dx, dy};
    return {vl.matrix[0] * dx + vl.matrix[1] * dy, vl.matrix[4] * dx + vl.matrix[5] * dy};
}

int vlclipline(const double box[4], double* x0, double* y0, double* x1, double* y1) {
    if (!finite(*x0, *y0, *x1, *y1)) return 0;
    int code0 = outcode(box, *x0, *y0), code1 = outcode(box, *x1, *y1);
    // Each round puts one end on one edge; rounding cannot make it go on for ever.
    for (int round = 0; (code0 | code1) != 0; round++) {
        if ((code0 & code1) != 0 || round == 8) return 0;
        const int code = code0 ? code0 : code1;
        double x, y;
        if (code & 12) {
            y = code & 4 ? box[2] : box[3];
            x = *x0 + (*x1 - *x0) * ((y - *y0) / (*y1 - *y0));
        } else {
            x = code & 1 ? box[0] : box[1];
            y = *y0 + (*y1 - *y0) * ((x - *x0) / (*x1 - *x0));
        }
        if (code == code0) {
            *x0 = x;
            *y0 = y;
            code0 = outcode(box, x, y);
        } else {
            *x1 = x;
            *y1 = y;
            code1 = outcode(box, x, y);
        }
    }
    return finite(*x0, *y0, *x1, *y1);
}

void vllinen(double x0, double y0, double x1, double y1) {
    if (vl.open) recordline(x0, y0, x1, y1);
    if (vl.live) drawline(x0, y0, x1, y1);
}

void vlline(double x0, double y0, double x1, double y1) {
    const vlpoint a = vltonorm(x0, y0), b = vltonorm(x1, y1);
    vllinen(a.x, a.y, b.x, b.y);
}

void vldotn(double x, double y) {
    if (!finite(x, y, 0, 0)) return;
    if (vl.open && inbox(vl.recordbox, x, y)) vlputpoint(x, y);
    if (!vl.live || !inbox(vl.drawbox, x, y)) return;
    const vlpoint p = vltopixel(x, y);
    vlpixeldot(vl.patch, p.x, p.y, vl.color);
}

void vldot(double x, double y) {
    const vlpoint p = vltonorm(x, y);
    vldotn(p.x, p.y);
}

bool vlfillpolygonn(const double* xy, size_t n) {
    if (vl.open) return false;
    if (!vl.live || n < 3) return true;
    if (vlrootof(vl.patch)->flags & VLMEMORY || !vl.ops || !vl.ops->polygon) return false;
    if (vl.ops->maxpolygon && n > vl.ops->maxpolygon) return false;
    double bounds[4];
    if (!topixels(xy, n, bounds)) return false;
    const vlpoint low = vltopixel(vl.drawbox[0], vl.drawbox[2]),
                  high = vltopixel(vl.drawbox[1], vl.drawbox[3]);
    const double clip[4] = {low.x, low.y, high.x - low.x, high.y - low.y};
    if (bounds[0] > high.x || bounds[1] < low.x || bounds[2] > high.y || bounds[3] < low.y) return true;
    const bool inside =
        bounds[0] >= low.x && bounds[1] <= high.x && bounds[2] >= low.y && bounds[3] <= high.y;
    vlcursorhold hold;
    vl.ops->polygon(vl.scratch.data(), n, inside ? nullptr : clip);
    return true;
}

bool vlcandraw() { return vl.open || vl.live; }
