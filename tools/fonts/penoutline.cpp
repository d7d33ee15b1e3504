#include "penoutline.h"

#include <algorithm>
#include <cmath>

namespace fonttool {
namespace {

constexpr double pi = 3.14159265358979323846;

struct penpoint {
    point at;
    double half; // of the pen's width here
};

double length(point p) { return std::hypot(p.x, p.y); }
point operator-(point a, point b) { return {a.x - b.x, a.y - b.y}; }
point operator+(point a, point b) { return {a.x + b.x, a.y + b.y}; }
point operator*(double s, point a) { return {s * a.x, s * a.y}; }
double dot2(point a, point b) { return a.x * b.x + a.y * b.y; }
point unit(point p) { return (1 / length(p)) * p; }
point leftof(point p) { return {-p.y, p.x}; }

point bezier(const piece& p, double t) {
    const double s = 1 - t;
    return (s * s * s) * p.at[0] + (3 * s * s * t) * p.at[1] + (3 * s * t * t) * p.at[2] +
           (t * t * t) * p.at[3];
}

/* Chords that keep within `spread` of the piece: the bound of Wang by its second differences. */
int chords(const piece& p, double spread) {
    if (p.straight) return 1;
    const double bend =
        std::max(length(p.at[0] - 2 * p.at[1] + p.at[2]), length(p.at[1] - 2 * p.at[2] + p.at[3]));
    return std::clamp(static_cast<int>(std::ceil(std::sqrt(0.75 * bend / spread))), 2, 24);
}

std::vector<penpoint> walk(const stroke& s, double halfpen, double spread) {
    std::vector<penpoint> line{{s.pieces.at(0).at[0], halfpen * s.pieces[0].pen0}};
    for (const piece& p : s.pieces) {
        const int n = chords(p, spread);
        for (int i = 1; i <= n; i++) {
            const double t = static_cast<double>(i) / n;
            const point at = bezier(p, t);
            if (length(at - line.back().at) > 1e-9)
                line.push_back({at, halfpen * (p.pen0 + t * (p.pen1 - p.pen0))});
        }
    }
    if (s.closed && length(line.front().at - line.back().at) < 1e-9) line.pop_back();
    return line;
}

/* The points at the pen's edge left of a corner: the mitre, or the bevel's two points where the mitre is
 * long. */
void edge(contour& out, const penpoint& p, point before, point after) {
    const point a = leftof(before), b = leftof(after);
    const double turn = 1 + dot2(a, b);
    if (turn > 0.02) {
        out.push_back(p.at + (p.half / turn) * (a + b));
    } else {
        out.push_back(p.at + p.half * a);
        out.push_back(p.at + p.half * b);
    }
}

contour side(const std::vector<penpoint>& line, bool closed) {
    contour out;
    const size_t n = line.size();
    for (size_t i = 0; i < n; i++) {
        const bool first = i == 0 && !closed, last = i + 1 == n && !closed;
        const point here = line[i].at;
        const point before = first ? point() : unit(here - line[(i + n - 1) % n].at);
        const point after = last ? before : unit(line[(i + 1) % n].at - here);
        edge(out, line[i], first ? after : before, after);
    }
    return out;
}

/* Lengthens an end that lies in a straight piece: one that goes up or down far enough to be cut at the line
 * of the letter's top or foot, one that goes across by half a pen. */
void growend(std::vector<penpoint>& line, const piece& last, strokeend how, bool atstart) {
    if (how == strokeend::butt || !last.straight) return;
    penpoint& p = atstart ? line.front() : line.back();
    const point d = unit(p.at - (atstart ? line[1] : line[line.size() - 2]).at);
    p.at = p.at + (std::fabs(d.y) > 0.5 ? 3 * p.half / std::fabs(d.y) : p.half) * d;
}

/* Cuts off what lies beyond the line where the dot product with `normal` is `limit` (Sutherland and Hodgman).
 */
contour cut(const contour& in, point normal, double limit) {
    contour out;
    for (size_t i = 0; i < in.size(); i++) {
        const point a = in[i], b = in[(i + 1) % in.size()];
        const double da = dot2(a, normal) - limit, db = dot2(b, normal) - limit;
        if (da <= 0) out.push_back(a);
        if ((da < 0 && db > 0) || (da > 0 && db < 0)) out.push_back(a + (da / (da - db)) * (b - a));
    }
    return out;
}

shape outline(const stroke& s, double halfpen, double spread) {
    std::vector<penpoint> line = walk(s, halfpen, spread);
    if (line.size() < 2) return {};
    point low = line[0].at, high = low;
    for (const penpoint& p : line) {
        low = {std::min(low.x, p.at.x), std::min(low.y, p.at.y)};
        high = {std::max(high.x, p.at.x), std::max(high.y, p.at.y)};
    }
    if (!s.closed) {
        growend(line, s.pieces.front(), s.start, true);
        growend(line, s.pieces.back(), s.finish, false);
    }
    contour left = side(line, s.closed);
    std::reverse(line.begin(), line.end());
    contour right = side(line, s.closed);
    if (s.closed) return {left, right};
    left.insert(left.end(), right.begin(), right.end());
    left = cut(left, {0, 1}, high.y + halfpen);
    left = cut(left, {0, -1}, halfpen - low.y);
    if (s.boxed) {
        left = cut(left, {1, 0}, high.x + halfpen);
        left = cut(left, {-1, 0}, halfpen - low.x);
    }
    return {left};
}

/* Where a face puts a point of the source: heights are squeezed so that the pen's edge, not its middle,
 * reaches foot and top. */
struct placing {
    double stretchx, offsetx, halfbar, zone;

    point operator()(point p) const {
        double y = p.y;
        if (y <= 0)
            y += halfbar;
        else if (y >= zone)
            y -= halfbar;
        else
            y = halfbar + y * (zone - 2 * halfbar) / zone;
        return {offsetx + p.x * stretchx, y};
    }
};

shape circle(point at, double rx, double ry) {
    contour ring;
    constexpr int n = 20;
    for (int i = 0; i < n; i++)
        ring.push_back({at.x + rx * std::cos(2 * pi * i / n), at.y + ry * std::sin(2 * pi * i / n)});
    return {ring};
}

/* A stroke's outline; the pen is an ellipse: the stroke is drawn with a round one where heights are scaled to
 * make it so. */
shape inkstroke(const stroke& s, const face& f, double spread) {
    const double ratio = f.penx / f.peny;
    stroke scaled = s;
    for (piece& p : scaled.pieces)
        for (point& q : p.at) q.y *= ratio;
    shape made = outline(scaled, f.penx / 2, spread);
    for (contour& c : made)
        for (point& q : c) q.y /= ratio;
    return made;
}

struct spacing {
    double origin, advance, stretch;
};

spacing space(const glyph& g, const glyphset& set, const face& f) {
    const double pen = f.penx > 0 ? f.penx : f.room;
    if (f.cell > 0) {
        const double stretch = g.width > f.inner ? f.inner / g.width : 1;
        return {(f.cell - g.width * stretch) / 2, f.cell, stretch};
    }
    const double width = g.width * f.stretch;
    if (g.tabular) {
        const double advance = set.figurewidth * f.stretch + pen;
        return {(advance - width) / 2, advance, f.stretch};
    }
    return {g.bearleft * f.fit + pen / 2, g.bearleft * f.fit + width + pen + g.bearright * f.fit, f.stretch};
}

/* Puts the ink, whose slanting strokes are wider than the pen, between its bearings. */
void bearink(drawnglyph& g, double left, double right) {
    double low = HUGE_VAL, high = -HUGE_VAL;
    for (const shape& s : g.shapes)
        for (const contour& c : s)
            for (const point& p : c) {
                low = std::min(low, p.x);
                high = std::max(high, p.x);
            }
    for (shape& s : g.shapes)
        for (contour& c : s)
            for (point& p : c) p.x += left - low;
    g.advance = left + high - low + right;
}

} // namespace

contour flatten(const stroke& s, double spread) {
    contour out;
    for (const penpoint& p : walk(s, 0, spread)) out.push_back(p.at);
    if (s.closed) out.push_back(out.front());
    return out;
}

drawnglyph drawglyph(const glyph& g, const glyphset& set, const face& f, double spread) {
    const spacing room = space(g, set, f);
    const placing place{room.stretch, room.origin, f.peny / 2, g.zone};
    drawnglyph made;
    made.advance = room.advance;
    const bool filled = f.penx > 0;
    for (stroke s : g.strokes) {
        for (piece& p : s.pieces)
            for (point& q : p.at) q = place(q);
        made.shapes.push_back(filled ? inkstroke(s, f, spread) : shape{flatten(s, spread)});
    }
    for (const dot& d : g.dots) {
        const double radius = d.size * (filled ? 0.64 * f.penx : 22);
        shape ring = circle(place(d.at), radius, radius);
        if (!filled) ring[0].push_back(ring[0][0]);
        made.shapes.push_back(ring);
    }
    if (filled && f.cell == 0 && !g.tabular && !made.shapes.empty())
        bearink(made, g.bearleft * f.fit, g.bearright * f.fit);
    const double lean = std::tan(f.slant * pi / 180);
    for (shape& s : made.shapes)
        for (contour& c : s)
            for (point& p : c) p.x += lean * p.y;
    return made;
}

} // namespace fonttool
