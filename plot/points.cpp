// The marks at the points of a curve: each shape is a row of a table beside its routine.
#include "interp/base/report.h"
#include "plot/colors.h"
#include "plot/scene.h"
#include "vellum/vellum.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr double PI = std::numbers::pi;
double radians(double degrees) { return degrees * PI / 180; }

struct place {
    double x, y;
};

// Everything that the marks of one curve share, and the present row.
struct marker {
    const harray* data;
    const window& w;
    const curve& c;
    pointmap map;
    scenescale scale;
    bool filled = false;
    double size = 0, half = 0; // screen-normal
    double angle = 0;          // of an arrow, degrees; kept from row to row
    size_t row = 0;
    place at{};                  // the point, world units of the clip
    std::vector<double> polygon; // of the library, used again for each mark
    std::vector<place> ring;     // corners of a round shape of size 1, made anew only for another count

    marker(const harray* d, const window& win, const curve& cur)
        : data(d), w(win), c(cur), map(win, cur), scale(worldpernormal()) {}

    place point(size_t i) const {
        place p{::at(data, i, 1), ::at(data, i, 2)};
        map(p.x, p.y);
        return p;
    }
    // Moves and lines relative to the point, in screen-normal lengths.
    void move(double dx, double dy) const { DMOVE(at.x + dx * scale.x, at.y + dy * scale.y); }
    void draw(double dx, double dy) const { DDRAW(at.x + dx * scale.x, at.y + dy * scale.y); }
    void line(double x0, double y0, double x1, double y1) const { move(x0, y0), draw(x1, y1); }
    // From this point to another, in screen-normal lengths.
    place to(const place& p) const { return {(p.x - at.x) / scale.x, (p.y - at.y) / scale.y}; }
    bool hasnext() const { return row < data->rows; }
    bool hasprevious() const { return row > 1; }
};

// ---- closed shapes: corners around the point

void cornersbegin(marker& m) { m.polygon.assign(2, 2.0); }
void corner(marker& m, double dx, double dy) {
    m.polygon.push_back(m.at.x + dx * m.scale.x);
    m.polygon.push_back(m.at.y + dy * m.scale.y);
}
size_t cornercount(const marker& m) { return (m.polygon.size() - 2) / 2; }

// Corners that coincide at the precision of the world enclose nothing.
bool degenerate(const marker& m) {
    const double* xy = m.polygon.data() + 2;
    const size_t n = cornercount(m);
    for (size_t k = 0; k < n; k++) {
        const size_t next = (k + 1) % n;
        if (xy[2 * k] == xy[2 * next] && xy[2 * k + 1] == xy[2 * next + 1]) return true;
    }
    return false;
}

// Draws the corners as a closed outline, or fills them.
void closeshape(marker& m) {
    if (m.filled) {
        if (degenerate(m)) return;
        m.polygon[0] = double(cornercount(m));
        return DPOLYGON(m.polygon.data(), 0, 0, 1);
    }
    m.polygon.push_back(m.polygon[2]);
    m.polygon.push_back(m.polygon[3]);
    DPOLYLINE(m.polygon.data() + 2, cornercount(m));
}

void triangle(marker& m) {
    const double h = m.half, side = std::numbers::sqrt3 * h;
    cornersbegin(m);
    corner(m, 0, h);
    corner(m, -side / 2, -h / 2);
    corner(m, side / 2, -h / 2);
    closeshape(m);
}

void square(marker& m) {
    const double h = m.half;
    cornersbegin(m);
    corner(m, h, h);
    corner(m, -h, h);
    corner(m, -h, -h);
    corner(m, h, -h);
    closeshape(m);
}

void diamond(marker& m) {
    const double h = m.half;
    cornersbegin(m);
    corner(m, 0, h);
    corner(m, h, 0);
    corner(m, 0, -h);
    corner(m, -h, 0);
    closeshape(m);
}

// Five arms: the sides of the pentagram meet at sin 18 / sin 54 of the outer radius.
void star(marker& m) {
    const double inner = m.half * std::sin(radians(18)) / std::sin(radians(54));
    cornersbegin(m);
    for (int k = 0; k < 10; k++) {
        const double r = k % 2 == 0 ? m.half : inner, turn = radians(90 + 36 * k);
        corner(m, r * std::cos(turn), r * std::sin(turn));
    }
    closeshape(m);
}

void roundshape(marker& m, int corners, double first) {
    if (m.ring.size() != size_t(corners)) {
        m.ring.clear();
        for (int k = 0; k < corners; k++) {
            const double turn = first + 2 * PI * k / corners;
            m.ring.push_back({std::cos(turn), std::sin(turn)});
        }
    }
    cornersbegin(m);
    for (const place& p : m.ring) corner(m, m.half * p.x, m.half * p.y);
    closeshape(m);
}

void octagon(marker& m) { roundshape(m, 8, radians(22.5)); }

// As many sides as keep the outline within a sixteenth of a pixel of the circle.
void circle(marker& m) {
    const double r = DPIXELSPER() * m.half * scene.plotscale;
    const double step = r > 0.125 ? 2 * std::acos(1 - 1 / (16 * r)) : PI / 4;
    roundshape(m, std::clamp(int(std::ceil(2 * PI / step)), 8, 720), 0);
}

// ---- open shapes

void vertical(marker& m) { m.line(0, -m.half, 0, m.half); }
void horizontal(marker& m) { m.line(-m.half, 0, m.half, 0); }
void plus(marker& m) { horizontal(m), vertical(m); }
void cross(marker& m) {
    const double h = m.half;
    m.line(-h, -h, h, h);
    m.line(-h, h, h, -h);
}
void leftline(marker& m) { m.line(0, 0, -m.half, 0); }
void rightline(marker& m) { m.line(0, 0, m.half, 0); }
void upline(marker& m) { m.line(0, 0, 0, m.half); }
void downline(marker& m) { m.line(0, 0, 0, -m.half); }
void dot(marker& m) {
    DMOVE(m.at.x, m.at.y);
    DDOT(0, 0);
}

// A shaft through the point and at its tip an equilateral head with sides of a quarter of the half size.
void arrow(marker& m) {
    if (m.c.ptsizes && m.c.ptsizes->cols == 2) m.angle = harrayelem(m.c.ptsizes.get(), uint32_t(m.row), 2);
    const double turn = radians(m.angle), tipx = m.half * std::cos(turn), tipy = m.half * std::sin(turn);
    m.line(-tipx, -tipy, tipx, tipy);
    cornersbegin(m);
    corner(m, tipx, tipy);
    for (const double barb : {150.0, -150.0}) {
        const double back = radians(m.angle + barb), side = m.half / 4;
        corner(m, tipx + side * std::cos(back), tipy + side * std::sin(back));
    }
    closeshape(m);
}

/* Error bars: a row of ptsizes holds the lengths right (up) and left (down) of the point in world units, and
 * the length of the caps. With one column both sides are alike. */
struct errorbar {
    double forward, backward, cap; // screen-normal
};
errorbar barofrow(const marker& m, bool across) {
    const harray* sizes = m.c.ptsizes.get();
    const uint32_t row = uint32_t(m.row), cols = sizes ? sizes->cols : 0;
    const double forward = cols >= 1 ? harrayelem(sizes, row, 1) : 0.02;
    const double backward = cols >= 2 ? harrayelem(sizes, row, 2) : forward;
    const double cap = cols >= 3 ? harrayelem(sizes, row, 3) : 0;
    const int units = across ? int(TOKWORLD) : UNITSWORLDHEIGHT;
    return {sizetonormal(forward, units, m.w), sizetonormal(backward, units, m.w),
            sizetonormal(cap, m.c.ptsizeunits, m.w) / 2};
}
void horizontalbar(marker& m) {
    const errorbar b = barofrow(m, true);
    m.line(-b.backward, 0, b.forward, 0);
    if (b.cap == 0) return;
    m.line(b.forward, -b.cap, b.forward, b.cap);
    m.line(-b.backward, -b.cap, -b.backward, b.cap);
}
void verticalbar(marker& m) {
    const errorbar b = barofrow(m, false);
    m.line(0, -b.backward, 0, b.forward);
    if (b.cap == 0) return;
    m.line(-b.cap, b.forward, b.cap, b.forward);
    m.line(-b.cap, -b.backward, b.cap, -b.backward);
}

// Ticks of a decade: at the point, and at log10 of 2 to 9 of the way to the next one.
void decade(marker& m, double tickx, double ticky) {
    if (m.data->rows < 2) return;
    m.line(0, 0, tickx, ticky);
    if (!m.hasnext()) return;
    const place next = m.to(m.point(m.row + 1));
    if (!isplaceable(next.x, next.y)) return;
    for (int k = 2; k <= 9; k++) {
        const double f = std::log10(k);
        m.line(f * next.x, f * next.y, f * next.x + tickx, f * next.y + ticky);
    }
}
void decadeup(marker& m) { decade(m, 0, m.half); }
void decaderight(marker& m) { decade(m, m.half, 0); }

// A tick at right angles to the curve; side 1 on its left, -1 on its right.
void normaltick(marker& m, double side) {
    const place from = m.hasprevious() ? m.to(m.point(m.row - 1)) : place{0, 0};
    const place to = m.hasnext() ? m.to(m.point(m.row + 1)) : place{0, 0};
    const double dx = to.x - from.x, dy = to.y - from.y, length = std::hypot(dx, dy);
    if (m.data->rows == 1) return side > 0 ? m.line(0, 0, 0, m.half) : m.line(0, 0, m.half, 0);
    if (length > 0 && length < MAXPOS)
        m.line(0, 0, -side * m.half * dy / length, side * m.half * dx / length);
}
void lefttick(marker& m) { normaltick(m, 1); }
void righttick(marker& m) { normaltick(m, -1); }

// The edges of the image, seen from the point.
enum edge { EDGERIGHT, EDGELEFT, EDGETOP, EDGEBOTTOM };
place toedge(const marker& m, edge e) {
    const bool world = m.map.world;
    const double x0 = world ? m.w.wxmin : m.w.ixmin, x1 = world ? m.w.wxmax : m.w.ixmax;
    const double y0 = world ? m.w.wymin : m.w.iymin, y1 = world ? m.w.wymax : m.w.iymax;
    switch (e) {
    case EDGERIGHT: return m.to({x1, m.at.y});
    case EDGELEFT: return m.to({x0, m.at.y});
    case EDGETOP: return m.to({m.at.x, y1});
    case EDGEBOTTOM: return m.to({m.at.x, y0});
    }
    return {0, 0};
}
template <edge e> void edgeline(marker& m) {
    const place p = toedge(m, e);
    m.line(0, 0, p.x, p.y);
}
template <edge e> void edgedots(marker& m) {
    constexpr double SEEN = 3, FARTHEST = 1e6; // from an edge of the image nothing farther than SEEN shows
    const place p = toedge(m, e);
    const double length = std::hypot(p.x, p.y), step = std::fmax(m.half, 1 / DPIXELSPER());
    if (!(length < FARTHEST)) return;
    const double first = std::ceil(std::fmax(length - SEEN, 0) / step) * step;
    for (double d = first; d <= length; d += step) {
        const double f = length > 0 ? d / length : 0;
        m.move(f * p.x, f * p.y);
        DDOT(0, 0);
    }
}

// The head at the end of a segment; its barbs stand at 35 degrees to the way back.
void arrowhead(marker& m) {
    if (!m.hasprevious()) return;
    const place back = m.to(m.point(m.row - 1));
    if (!isplaceable(back.x, back.y) || (back.x == 0 && back.y == 0)) return;
    const double turn = std::atan2(back.y, back.x), h = m.half;
    const double a = turn + radians(35), b = turn - radians(35);
    if (m.filled) {
        cornersbegin(m);
        corner(m, h * std::cos(a), h * std::sin(a));
        corner(m, 0, 0);
        corner(m, h * std::cos(b), h * std::sin(b));
        return closeshape(m);
    }
    m.move(h * std::cos(a), h * std::sin(a));
    m.draw(0, 0);
    m.draw(h * std::cos(b), h * std::sin(b));
}

struct shaperow {
    void (*mark)(marker& m);
    bool fillable;
};
constexpr shaperow shapes[] = {
    {vertical, false},      // 1
    {plus, false},          // 2
    {triangle, true},       // 3
    {square, true},         // 4
    {star, true},           // 5
    {horizontal, false},    // 6
    {octagon, true},        // 7
    {cross, false},         // 8
    {leftline, false},      // 9
    {rightline, false},     // 10
    {upline, false},        // 11
    {downline, false},      // 12
    {circle, true},         // 13
    {arrow, true},          // 14
    {dot, false},           // 15
    {diamond, true},        // 16
    {horizontalbar, false}, // 17
    {verticalbar, false},   // 18
    {decadeup, false},      // 19
    {decaderight, false},   // 20
    {lefttick, false},      // 21
    {righttick, false},     // 22
    {edgeline<EDGERIGHT>, false},
    {edgeline<EDGELEFT>, false}, // 23, 24
    {edgeline<EDGETOP>, false},
    {edgeline<EDGEBOTTOM>, false}, // 25, 26
    {edgedots<EDGERIGHT>, false},
    {edgedots<EDGELEFT>, false}, // 27, 28
    {edgedots<EDGETOP>, false},
    {edgedots<EDGEBOTTOM>, false}, // 29, 30
    {arrowhead, true},             // 31
};
constexpr int SHAPECOUNT = int(std::size(shapes)), FIRSTCHARACTER = 1000;

const shaperow* shapeof(int pointtype) {
    const int number = std::abs(pointtype);
    if (number < 1 || number > SHAPECOUNT) return nullptr;
    const shaperow& row = shapes[number - 1];
    return pointtype < 0 && !row.fillable ? nullptr : &row;
}

// The size of row i: of all points, or its own; a matrix that is shorter than the data begins again.
void setsize(marker& m) {
    const harray* sizes = m.c.ptsizes.get();
    const bool own = m.c.ptsize < 0 && sizes && harraycount(sizes) > 0;
    const double size = own ? harrayelem(sizes, uint32_t(m.row), 1) : std::fmax(m.c.ptsize, 0);
    m.size = sizetonormal(size, m.c.ptsizeunits, m.w);
    m.half = m.size / 2;
}

// Goes through the points that can be placed.
template <class Mark> void eachpoint(marker& m, Mark mark) {
    const bool onesize = m.c.ptsize >= 0;
    if (onesize) setsize(m);
    for (m.row = 1; m.row <= m.data->rows; m.row++) {
        m.at = m.point(m.row);
        if (!isplaceable(m.at.x, m.at.y)) continue;
        if (!onesize) setsize(m);
        mark();
    }
}

// A character with its middle on the point.
void characters(marker& m, int code) {
    const char text[2] = {char(code), 0};
    DFONT(m.c.ptfont);
    vltextsize extent{};
    double measured = -1;
    eachpoint(m, [&] {
        if (!(m.size > 0)) return;
        if (m.size != measured) {
            DCHARSIZE(m.size * scene.plotscale);
            DTEXTSIZE(&extent, text, m.c.ptfont);
            measured = m.size;
        }
        DMOVE(m.at.x - extent.width / 2 / DXSCALE(), m.at.y - extent.ascent / 2 / DYSCALE());
        DTEXT(text);
    });
}

} // namespace

void drawpoints(const harray* data, int pointtype, const window& w, const curve& c) {
    if (pointtype == 0 || data->cols != 2) return;
    setcolor(c.pointcolor);
    marker m(data, w, c);
    if (pointtype >= FIRSTCHARACTER) return characters(m, pointtype - FIRSTCHARACTER);
    const shaperow* shape = shapeof(pointtype);
    if (!shape)
        tarnerror(furtherline{std::string(sym(scene.member).name) + " has POINTTYPE " +
                              std::to_string(pointtype) +
                              ": only 3, 4, 5, 7, 13, 14, 16 and 31 can be filled"},
                  "invalid pointtype");
    m.filled = pointtype < 0;
    eachpoint(m, [&] { shape->mark(m); });
}
