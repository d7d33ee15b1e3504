#include "bitmapdraw.h"

#include <algorithm>
#include <cmath>

namespace fonttool {
namespace {

/* The grid of a cell in pixels: where a point of the source lies, y downward. */
struct pixelgrid {
    const bitmapface& face;
    double scale, origin;

    point operator()(point p) const {
        double y; // rows above the baseline's
        if (p.y <= 500)
            y = p.y * face.small / 500;
        else if (p.y <= 700)
            y = face.small + (p.y - 500) * (face.capital - face.small) / 200;
        else
            y = face.capital + (p.y - 700) * face.small / 500;
        return {origin + p.x * scale, face.baseline - 1 - y};
    }
};

void ink(bitmap& b, double x, double y, double pen) {
    const int x0 = static_cast<int>(std::lround(x - (pen - 1) / 2)),
              y0 = static_cast<int>(std::lround(y - (pen - 1) / 2));
    for (int j = 0; j < static_cast<int>(pen); j++)
        for (int i = 0; i < static_cast<int>(pen); i++)
            if (x0 + i >= 0 && x0 + i < b.width && y0 + j >= 0 && y0 + j < b.height)
                b.cells[(y0 + j) * b.width + x0 + i] = 1;
}

/* One pixel in each row or column that the chord crosses, whichever are more. */
void chord(bitmap& b, point p, point q, double pen) {
    const double steps = std::max({std::ceil(std::fabs(q.x - p.x)), std::ceil(std::fabs(q.y - p.y)), 1.0});
    for (int i = 0; i <= steps; i++)
        ink(b, p.x + (q.x - p.x) * i / steps, p.y + (q.y - p.y) * i / steps, pen);
}

} // namespace

bitmap drawbitmap(const glyph& g, const bitmapface& f) {
    bitmap made;
    made.width = f.cellwidth;
    made.height = f.cellheight;
    made.cells.assign(static_cast<size_t>(f.cellwidth) * f.cellheight, 0);
    const double width = std::min(f.inner, std::round(g.width * f.inner / 430));
    const double scale = g.width > 0 ? width / g.width : 0;
    const pixelgrid grid{f, scale, std::floor((f.cellwidth - 1 - width) / 2)};
    for (const stroke& s : g.strokes) {
        const contour line = flatten(s, 2);
        for (size_t i = 1; i < line.size(); i++) chord(made, grid(line[i - 1]), grid(line[i]), f.pen);
    }
    for (const dot& d : g.dots) {
        const point at = grid(d.at);
        chord(made, {std::round(at.x), std::round(at.y)}, {std::round(at.x), std::round(at.y)}, f.pen + 1);
    }
    return made;
}

} // namespace fonttool
