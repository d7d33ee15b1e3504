#include "vellum/vlgenlin.h"

#include "vellum/vlhatch.h"
#include "vellum/vlribbon.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double leaststep = 0.005; // nearer points are replaced by the next one
constexpr double thinhalf = 0.0005; // up to this half thickness a line is a thin one
constexpr int mostpoints = 50;      // of a stroke; a longer polyline goes on in another
constexpr double leastperiod =
    2e-5;                // of a pattern that can be told from a solid line: far below a dot of any device
constexpr int marks = 6; // of a period: seg ends, tick, seg begins, seg ends, tick, period ends

vlgenerator& generator() {
    if (!vl.generator) vl.generator = std::make_shared<vlgenerator>();
    return *vl.generator;
}

double distance(vlpoint a, vlpoint b) { return std::hypot(b.x - a.x, b.y - a.y); }
vlpoint between(vlpoint a, vlpoint b, double t) { return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)}; }
bool same(vlpoint a, vlpoint b) { return a.x == b.x && a.y == b.y; }

void put(std::vector<vlpoint>& points, vlpoint p) {
    if (points.empty() || !same(points.back(), p)) points.push_back(p);
}

// The points are gone also when the device stops the drawing by an error.
void strokepoints(vlgenerator& g) {
    struct clearing {
        std::vector<vlpoint>& points;
        ~clearing() { points.clear(); }
    } after{g.points};
    if (g.points.size() > 1) vlstroke(g, g.points.data(), static_cast<int>(g.points.size()));
}

double markat(const vlgenerator& g, int mark) {
    const double second = g.seg1 + g.gap;
    const double at[marks] = {g.seg1,          g.seg1 + g.gap / 2,          second,
                              second + g.seg2, second + g.seg2 + g.gap / 2, g.period};
    return at[mark];
}

// Sets the phase: what the pattern does at `dashdone`, and its next mark.
void setphase(vlgenerator& g, double length) {
    g.dashdone = g.period > 0 ? std::fmod(length, g.period) : 0;
    g.nextmark = 0;
    if (g.period > 0) {
        while (g.nextmark < marks - 1 && markat(g, g.nextmark) < g.dashdone) g.nextmark++;
    }
    g.drawing = g.nextmark == 0 || g.nextmark == 3;
}

void tick(vlgenerator& g, vlpoint at, vlpoint along, double length, int side) {
    if (length == 0) return;
    const vlpoint up{-along.y * length, along.x * length};
    const double from = side == 0 ? -0.5 : 0, to = side == 0 ? 0.5 : side;
    const vlpoint ends[2] = {{at.x + from * up.x, at.y + from * up.y}, {at.x + to * up.x, at.y + to * up.y}};
    vlstroke(g, ends, 2);
}

// A seg of no length is a dot, unless the style is one of ticks.
void endseg(vlgenerator& g, vlpoint at) {
    put(g.points, at);
    if (g.points.size() == 1 && g.tick1len == 0 && g.tick2len == 0) vlstroke(g, &at, 1);
    strokepoints(g);
}

void passmark(vlgenerator& g, vlpoint at, vlpoint along) {
    switch (g.nextmark) {
    case 0:
    case 3: endseg(g, at); break;
    case 1: tick(g, at, along, g.tick1len, g.tick1side); break;
    case 4: tick(g, at, along, g.tick2len, g.tick2side); break;
    default: put(g.points, at); break;
    }
    g.drawing = g.nextmark == 2 || g.nextmark == 5;
    g.nextmark = (g.nextmark + 1) % marks;
}

// One straight piece of the dashed line, by the marks that lie on it.
void dashes(vlgenerator& g, vlpoint from, vlpoint to) {
    const double length = distance(from, to);
    if (length == 0) return;
    const vlpoint along{(to.x - from.x) / length, (to.y - from.y) / length};
    double start = g.dashdone, left = length; // start: the phase where the rest of the piece begins
    for (;;) {
        const double ahead = std::max(markat(g, g.nextmark) - start, 0.0);
        if (ahead > left) break;
        left -= ahead;
        start = g.nextmark == marks - 1 ? 0 : markat(g, g.nextmark);
        passmark(g, between(from, to, (length - left) / length), along);
    }
    g.dashdone = start + left;
    if (g.drawing) put(g.points, to);
}

// A polyline that grows long is drawn so far; the cut lies within a straight piece, where no join is lost. A
// wide one goes on a little before the cut, so that no seam shows between its parts.
void cutlong(vlgenerator& g) {
    const size_t n = g.points.size();
    if (n <= mostpoints) return;
    const vlpoint before = g.points[n - 2], last = g.points[n - 1];
    g.points[n - 1] = between(before, last, 0.5);
    strokepoints(g);
    put(g.points, between(before, last, g.halfthick > thinhalf ? 0.4 : 0.5));
    put(g.points, last);
}

void visiblepiece(vlgenerator& g, vlpoint from, vlpoint to) {
    if (g.period > 0) {
        dashes(g, from, to);
    } else {
        put(g.points, to);
    }
    cutlong(g);
}

// What can be seen at all, and the reach of ticks and joins around it.
void seenbox(const vlgenerator& g, double box[4]) {
    const double reach = 0.01 + g.tick1len + g.tick2len + vlmitrelimit * g.halfthick;
    const bool both = vl.open && vl.live;
    const double* one = vl.live ? vl.drawbox : vl.recordbox;
    for (int i = 0; i < 4; i += 2) {
        box[i] = (both ? std::min(vl.drawbox[i], vl.recordbox[i]) : one[i]) - reach;
        box[i + 1] = (both ? std::max(vl.drawbox[i + 1], vl.recordbox[i + 1]) : one[i + 1]) + reach;
    }
}

// Goes over a stretch that cannot be seen: only the phase moves.
void leap(vlgenerator& g, vlpoint from, vlpoint to) {
    if (same(from, to)) return;
    strokepoints(g);
    setphase(g, g.dashdone + distance(from, to));
    if (g.period == 0 || g.drawing) put(g.points, to);
}

// The next straight piece of the polyline, from the point last taken.
void take(vlgenerator& g, vlpoint to) {
    double box[4];
    seenbox(g, box);
    const vlpoint from = g.taken;
    vlpoint a = from, b = to;
    g.taken = to;
    if (vlclipline(box, &a.x, &a.y, &b.x, &b.y)) {
        leap(g, from, a);
        visiblepiece(g, a, b);
        leap(g, b, to);
    } else {
        leap(g, from, to);
    }
}

void begin(vlgenerator& g, vlpoint at, vlpoint world) {
    g.open = true;
    g.count = 1;
    g.waiting = false;
    g.taken = at;
    g.takenworld = world;
    g.points.clear();
    setphase(g, 0);
    put(g.points, at);
}

// Near in both units: so a window of very small numbers keeps its shape.
bool toonear(const vlgenerator& g, vlpoint at, vlpoint world) {
    return distance(g.taken, at) <= leaststep && distance(g.takenworld, world) <= leaststep;
}

// ---- Strokes

// The outline of n points that stands in g.ribbon, unless the style leaves it empty.
void fillribbon(vlgenerator& g, int n) {
    if (g.fill < 0) return;
    vlrealloc(g.flat, 2 * static_cast<size_t>(n));
    for (int i = 0; i < n; i++) {
        g.flat[2 * i] = g.ribbon[i].x;
        g.flat[2 * i + 1] = g.ribbon[i].y;
    }
    vlfillsolid(g.flat.data(), static_cast<size_t>(n));
}

bool isbreak(vlpoint p) { return !(p.x < 1e300) || std::isnan(p.y); }

void drawboundary(const vlgenerator& g, int n) {
    for (int i = 1; i < n; i++) {
        const vlpoint a = g.ribbon[i - 1], b = g.ribbon[i];
        if (!isbreak(a) && !isbreak(b)) vllinen(a.x, a.y, b.x, b.y);
    }
}

void widejoin(vlgenerator& g, const vlpoint* corner) {
    g.ribbon.resize(BDRYSIZE(3, g.roundsegs));
    const int n = vljoin(corner[0], corner[1], corner[2], g.halfthick, g.roundsegs, g.ribbon.data());
    if (n >= 3) fillribbon(g, n);
}

/* The outline of a wide line must not overlap itself, since fills are even-odd. One that crosses itself is
 * drawn in two halves that meet at a corner, each of them again so if need be. */
void wideline(vlgenerator& g, const vlpoint* points, int pointCnt) {
    const int roundsegs = g.roundsegs;
    g.ribbon.resize(BDRYSIZE(pointCnt, roundsegs));
    const int rcnt = vlribbon(points, pointCnt, g.halfthick, roundsegs, g.ribbon.data());
    vlassert(rcnt < BDRYSIZE(pointCnt, roundsegs), "rcnt<BDRYSIZE(pointCnt,roundsegs)", "vlgenlin");
    if (pointCnt > 2 && vlcrosses(g.ribbon.data(), rcnt)) {
        const int half = pointCnt / 2;
        wideline(g, points, half + 1);
        widejoin(g, points + half - 1);
        return wideline(g, points + half, pointCnt - half);
    }
    fillribbon(g, rcnt);
    if (g.fill != 0) drawboundary(g, rcnt);
}

// Corners whose inner edge would fold over are parted at once.
void widestroke(vlgenerator& g, const vlpoint* points, int n) {
    int start = 0;
    for (int i = 1; i + 1 < n; i++) {
        if (!vlfolds(points[i - 1], points[i], points[i + 1], g.halfthick)) continue;
        wideline(g, points + start, i - start + 1);
        widejoin(g, points + i - 1);
        start = i;
    }
    wideline(g, points + start, n - start);
}

} // namespace

void vlstroke(vlgenerator& g, const vlpoint* points, int n) {
    if (n == 1) {
        vldotn(points[0].x, points[0].y);
    } else if (g.halfthick <= thinhalf) {
        for (int i = 1; i < n; i++) vllinen(points[i - 1].x, points[i - 1].y, points[i].x, points[i].y);
    } else if (n > 3 && n <= mostpoints && same(points[0], points[n - 1])) {
        // A closed line begins in the middle of its first piece, so that its first corner is joined too.
        vlpoint turned[mostpoints + 1];
        turned[0] = turned[n] = between(points[0], points[1], 0.5);
        std::copy(points + 1, points + n, turned + 1);
        widestroke(g, turned, n + 1);
    } else {
        widestroke(g, points, n);
    }
}

void vlgenlin(double x0, double y0, double x1, double y1) {
    const vlpoint start = vltonorm(x0, y0), end = vltonorm(x1, y1);
    if (!std::isfinite(start.x) || !std::isfinite(start.y) || !std::isfinite(end.x) || !std::isfinite(end.y))
        return;
    vlgenerator& g = generator();
    if (g.open && (x0 != g.lastx || y0 != g.lasty)) vlflushline(0);
    if (!vlcandraw()) return;
    if (!g.open) begin(g, start, {x0, y0});
    g.lastx = x1;
    g.lasty = y1;
    g.waiting = g.count >= 2 && toonear(g, end, {x1, y1});
    if (g.waiting) {
        g.waits = end;
        return;
    }
    g.count++;
    g.takenworld = {x1, y1};
    take(g, end);
}

void vlflushline(int final) {
    vlgenerator& g = generator();
    if (final != 0 || !g.open) return; // what is complete was drawn when it became so
    const bool waiting = g.waiting;
    g.waiting = g.open = false;
    if (waiting) take(g, g.waits);
    strokepoints(g);
}

namespace {

double positive(double length) { return length > 0 && std::isfinite(length) ? length : 0; }
// Wider than this, all of any device is covered; the bound keeps what can be seen of a line finite.
constexpr double widest = 4;
double magnitude(double length) { return std::isfinite(length) ? std::min(std::fabs(length), widest) : 0; }

void derive(vlgenerator& g, const vlstyle& s) {
    g.seg1 = positive(s.seg1);
    g.gap = positive(s.gap);
    g.seg2 = positive(s.seg2);
    const double period = g.seg1 + g.gap + g.seg2 + g.gap;
    g.period = g.gap > 0 && period > leastperiod ? period : 0;
    g.tick1len = magnitude(s.tick1);
    g.tick2len = magnitude(s.tick2);
    const bool sided = s.tick1 < 0 || s.tick2 < 0;
    g.tick1side = !sided ? 0 : s.tick1 < 0 ? -1 : 1;
    g.tick2side = !sided ? 0 : s.tick2 < 0 ? 1 : -1;
    g.halfthick = magnitude(s.thick) / 2;
    g.roundsegs = s.thick < 0 ? 9 : 1;
    g.fill = s.fill;
    setphase(g, 0);
}

} // namespace

void DLINESTYLE(double seg1, double gap, double seg2, double tick1, double tick2, double thick, double fill) {
    vlflushall();
    vl.style = {seg1, gap, seg2, tick1, tick2, thick, fill};
    vl.gen = {};
    if (gap == 0 && tick1 == 0 && tick2 == 0 && thick == 0) return;
    derive(generator(), vl.style);
    vl.gen.line = vlgenlin;
    vl.gen.flush = vlflushline;
}

void DGETLINESTYLE(double style[7]) {
    const vlstyle& s = vl.style;
    const double all[7] = {s.seg1, s.gap, s.seg2, s.tick1, s.tick2, s.thick, s.fill};
    std::copy_n(all, 7, style);
}
