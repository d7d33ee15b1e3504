#include "vellum/vldraw.h"
#include "vellum/vlpicture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// The world window on the viewport.
void setnorm() {
    vl.norm.sx = (vl.viewport[1] - vl.viewport[0]) / (vl.window[1] - vl.window[0]);
    vl.norm.ox = vl.viewport[0] - vl.window[0] * vl.norm.sx;
    vl.norm.sy = (vl.viewport[3] - vl.viewport[2]) / (vl.window[3] - vl.window[2]);
    vl.norm.oy = vl.viewport[2] - vl.window[2] * vl.norm.sy;
}

// The pixels of a normal unit. On a raster the outermost pixel centres are the ends.
void setpix(const vlpatch* root, bool raster) {
    vl.pix = {};
    if (root == vl.screen) {
        const int less = raster ? 1 : 0;
        vl.pix.sx = std::max(vl.record.xpix - less, 1) / vl.record.xaspect;
        vl.pix.sy = std::max(vl.record.ypix - less, 1) / vl.record.yaspect;
    } else {
        vl.pix.sx = vl.pix.sy = std::max(std::max(root->w, root->h) - 1, 1);
    }
}

// The target's rectangle in normal units.
void setpatchbox(const vlpatch* patch, bool raster) {
    double* box = vl.patchbox;
    const int less = raster ? 1 : 0;
    box[0] = patch->offx / vl.pix.sx;
    box[1] = (patch->offx + patch->w - less) / vl.pix.sx;
    box[2] = patch->offy / vl.pix.sy;
    box[3] = (patch->offy + patch->h - less) / vl.pix.sy;
}

bool extent(double a, double b) {
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(b - a) && a != b;
}

void multiply(const double a[16], const double b[16], double out[16]) {
    double result[16];
    for (int i = 0; i < 4; i++) {
        for (int j = 0; j < 4; j++) {
            double sum = 0;
            for (int k = 0; k < 4; k++) sum += a[4 * i + k] * b[4 * k + j];
            result[4 * i + j] = sum;
        }
    }
    std::copy_n(result, 16, out);
}

constexpr double unitmatrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

} // namespace

void vlretarget() {
    setnorm();
    // A line on the very edge of the viewport is not lost to rounding.
    constexpr double slack = 1e-7;
    constexpr double least = -1, most = 1; // of a word; 1 itself is told as the last step below
    const double whole[4] = {least, most, least, most};
    for (int i = 0; i < 4; i += 2) {
        vl.recordbox[i] = vl.clipping ? std::max(whole[i], vl.viewport[i] - slack) : whole[i];
        vl.recordbox[i + 1] = vl.clipping ? std::min(whole[i + 1], vl.viewport[i + 1] + slack) : whole[i + 1];
    }
    vl.live = false;
    if (!vl.patch) return;
    const vlpatch* root = vlrootof(vl.patch);
    const bool raster = (root->flags & VLMEMORY) || (vl.ops && vl.ops->raster);
    setpix(root, raster);
    setpatchbox(vl.patch, raster);
    for (int i = 0; i < 4; i += 2) {
        vl.patchbox[i] -= slack;
        vl.patchbox[i + 1] += slack;
        vl.drawbox[i] = vl.clipping ? std::max(vl.patchbox[i], vl.viewport[i] - slack) : vl.patchbox[i];
        vl.drawbox[i + 1] =
            vl.clipping ? std::min(vl.patchbox[i + 1], vl.viewport[i + 1] + slack) : vl.patchbox[i + 1];
    }
    vl.live = !(root->flags & VLDISABLED) && (!vl.open || vl.open->state == 0);
}

void DWINDOW(double x0, double x1, double y0, double y1) {
    if (!extent(x0, x1) || !extent(y0, y1)) return;
    vlflushall();
    const double window[4] = {x0, x1, y0, y1};
    std::copy_n(window, 4, vl.window);
    vlretarget();
}

void DVIEWPORT(double x0, double x1, double y0, double y1) {
    if (!extent(x0, x1) || !extent(y0, y1) || x0 >= x1 || y0 >= y1) return;
    vlflushall();
    const double viewport[4] = {x0, x1, y0, y1};
    std::copy_n(viewport, 4, vl.viewport);
    vlretarget();
}

void DGETWINDOW(double window[4]) { std::copy_n(vl.window, 4, window); }
void DGETVIEWPORT(double viewport[4]) { std::copy_n(vl.viewport, 4, viewport); }

void DCLIP(int on) {
    vlflushall();
    vl.clipping = on != 0;
    vlretarget();
}

int DGETCLIP() { return vl.clipping; }

int DCLIPLINE(double* x0, double* y0, double* x1, double* y1) {
    const double box[4] = {std::min(vl.window[0], vl.window[1]), std::max(vl.window[0], vl.window[1]),
                           std::min(vl.window[2], vl.window[3]), std::max(vl.window[2], vl.window[3])};
    return vlclipline(box, x0, y0, x1, y1);
}

double DXSCALE() { return vl.norm.sx; }
double DYSCALE() { return vl.norm.sy; }
double DPIXELSPER() { return std::max(vl.pix.sx, vl.pix.sy); }

void DTRANSFORM(const double m[16]) {
    vlflushall();
    std::copy_n(m, 16, vl.matrix);
}

void DGETTRANSFORM(double m[16]) { std::copy_n(vl.matrix, 16, m); }

void DRESETTRANSFORM() {
    DTRANSFORM(unitmatrix);
    vl.transformon = false;
}

void DTRANSFORMON(int on) {
    vlflushall();
    vl.transformon = on != 0;
}

int DGETTRANSFORMON() { return vl.transformon; }

void DMULTIPLY(const double m[16]) {
    vlflushall();
    multiply(vl.matrix, m, vl.matrix);
}

void DROTATE(double angle, double x, double y, double z) {
    const double axis[3] = {x, y, z};
    double m[16];
    DROTATEMAT(m, axis, angle);
    DMULTIPLY(m);
}

void DSCALE(double x, double y, double z) {
    const double m[16] = {x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1};
    DMULTIPLY(m);
}

void DTRANSLATE(double x, double y, double z) {
    const double m[16] = {1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z, 0, 0, 0, 1};
    DMULTIPLY(m);
}

void DROTATEMAT(double out[16], const double axis[3], double angle) {
    std::copy_n(unitmatrix, 16, out);
    const double length = std::hypot(axis[0], axis[1], axis[2]);
    if (!(length > 0) || !std::isfinite(length) || !std::isfinite(angle)) return;
    const double x = axis[0] / length, y = axis[1] / length, z = axis[2] / length;
    // A turn by whole quarters has no rounding in it.
    const double turn = std::remainder(angle, 360.0) * (std::numbers::pi / 180);
    const bool straight = std::remainder(angle, 90.0) == 0;
    const double c = straight ? std::round(std::cos(turn)) : std::cos(turn);
    const double s = straight ? std::round(std::sin(turn)) : std::sin(turn);
    const double rows[3][3] = {
        {c + x * x * (1 - c), x * y * (1 - c) - z * s, x * z * (1 - c) + y * s},
        {y * x * (1 - c) + z * s, c + y * y * (1 - c), y * z * (1 - c) - x * s},
        {z * x * (1 - c) - y * s, z * y * (1 - c) + x * s, c + z * z * (1 - c)},
    };
    for (int i = 0; i < 3; i++) std::copy_n(rows[i], 3, out + 4 * i);
}
