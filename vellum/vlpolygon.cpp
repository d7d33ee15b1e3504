#include "vellum/vlhatch.h"

#include <algorithm>
#include <cmath>

namespace {

enum polygonflags { drawnow = 1, keeplines = 2, normalunits = 4 };

// The points of a client's polygon in normal units, in vl.polygon; 0 when it is not one of two coordinates.
size_t normalpoints(const double* poly, int flags) {
    if (!(poly[0] >= 1 && poly[0] < 1e9) || poly[1] != 2) return 0;
    const size_t n = static_cast<size_t>(poly[0]);
    std::vector<double>& xy = vl.polygon;
    vlrealloc(xy, 2 * n);
    for (size_t i = 0; i < n; i++) {
        const double x = poly[2 + 2 * i], y = poly[3 + 2 * i];
        const vlpoint p = flags & normalunits ? vlpoint{x, y} : vltonorm(x, y);
        const bool gap = !(x < 1e300) || !std::isfinite(p.x) || !std::isfinite(p.y);
        xy[2 * i] = gap ? 1e300 : p.x;
        xy[2 * i + 1] = gap ? 0 : p.y;
    }
    return n;
}

} // namespace

void DPOLYGON(const double* poly, double spacing, double angle, int flags) {
    if (flags & keeplines) vl.hatch.clear();
    vlflushall();
    const size_t n = normalpoints(poly, flags);
    if (n == 0) return;
    const double* xy = vl.polygon.data();
    const bool solid = !(spacing > 0 || spacing < 0), draw = (flags & drawnow) && vlcandraw();
    if (solid && draw && !(flags & keeplines)) return vlfillsolid(xy, n);
    if (!draw && !(flags & keeplines)) return;
    vlhatch(xy, n, solid ? 0 : std::fabs(spacing), angle, draw, flags & keeplines ? &vl.hatch : nullptr);
}

std::span<const double> DGETHATCH() { return vl.hatch; }
