#include "vellum/vldraw.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double fullturn = 2 * std::numbers::pi;
constexpr double coarsest = std::numbers::pi / 8, finest = fullturn / 100000; // steps, whatever the radius

double stepof(double rx, double ry) {
    const double rmax =
        std::max(std::fabs(rx * vl.norm.sx * vl.pix.sx), std::fabs(ry * vl.norm.sy * vl.pix.sy));
    return rmax > 0 ? std::clamp(4 / (std::numbers::pi * rmax), finest, coarsest) : coarsest;
}

} // namespace

void DARC(double cx, double cy, double rx, double ry, double a0, double a1) {
    if (!std::isfinite(cx + cy + rx + ry + a0 + a1)) return;
    const double start = a0 * (std::numbers::pi / 180);
    double end = a1 * (std::numbers::pi / 180);
    if (a0 > a1) end += fullturn * std::ceil((start - end) / fullturn); // over the full turn and on from 0
    const double range = std::min(end - start, fullturn * 16);
    const long steps = std::max(1L, static_cast<long>(std::ceil(range / stepof(rx, ry))));
    DMOVE(cx + rx * std::cos(start), cy + ry * std::sin(start));
    for (long i = 1; i <= steps; i++) {
        const double angle = start + range * static_cast<double>(i) / static_cast<double>(steps);
        DDRAW(cx + rx * std::cos(angle), cy + ry * std::sin(angle));
    }
}
