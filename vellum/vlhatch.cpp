#include "vellum/vlhatch.h"

#include "vellum/vlpicture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double mostlines = 200000; // across one polygon: more would be closer than the dots of any device

// An edge by its crossing with the lines v = constant: u at v, and how u changes with v.
struct hatchedge {
    double low, high, u, slope;
};

// Working space, kept from one polygon to the next.
struct hatchwork {
    std::vector<hatchedge> edges;
    std::vector<size_t> active;
    std::vector<double> crossings;
};

hatchwork work;

struct turned {
    double c = 1, s = 0;
    vlpoint in(double x, double y) const { return {c * x + s * y, c * y - s * x}; }
    vlpoint out(double u, double v) const { return {c * u - s * v, s * u + c * v}; }
};

turned turnedby(double angle) {
    if (angle == 0 || !std::isfinite(angle)) return {};
    const double radians = std::fmod(angle, 360.0) / 180 * std::numbers::pi;
    return {std::cos(radians), std::sin(radians)};
}

void addedge(std::vector<hatchedge>& edges, vlpoint a, vlpoint b) {
    if (a.y > b.y) std::swap(a, b);
    if (!(a.y < b.y) || !std::isfinite(a.x * 0 + b.x * 0 + b.y - a.y)) return;
    edges.push_back({a.y, b.y, a.x, (b.x - a.x) / (b.y - a.y)});
}

// The edges of all contours, each closed by itself, in the order of their lower ends.
void collect(const double* xy, size_t n, const turned& turn, std::vector<hatchedge>& edges) {
    edges.clear();
    bool begun = false;
    vlpoint first{}, last{};
    for (size_t i = 0; i < n; i++) {
        if (!(xy[2 * i] < 1e300)) {
            if (begun) addedge(edges, last, first);
            begun = false;
            continue;
        }
        const vlpoint p = turn.in(xy[2 * i], xy[2 * i + 1]);
        if (begun)
            addedge(edges, last, p);
        else
            first = p;
        last = p;
        begun = true;
    }
    if (begun) addedge(edges, last, first);
    std::sort(edges.begin(), edges.end(),
              [](const hatchedge& a, const hatchedge& b) { return a.low < b.low; });
}

struct lineset {
    double first, step;
    long count;
    double at(long i) const { return first + step * static_cast<double>(i); }
};

lineset spread(const std::vector<hatchedge>& edges, double spacing) {
    double high = edges[0].high;
    for (const hatchedge& e : edges) high = std::max(high, e.high);
    const double low = edges[0].low, extent = high - low;
    if (spacing > 0 && std::isfinite(spacing)) {
        const double count = std::clamp(std::ceil(extent / spacing - 0.5), 1.0, mostlines);
        const double step = std::max(spacing, extent / mostlines);
        return {count == 1 ? low + std::min(step, extent) / 2 : low + step / 2, step,
                static_cast<long>(count)};
    }
    const double count = std::clamp(std::ceil(extent * vl.pix.sy * 1.01), 1.0, mostlines);
    return {low + extent / count / 2, extent / count, static_cast<long>(count)};
}

// Of lines that are only drawn, those that can be seen.
void narrow(const turned& turn, const lineset& lines, long* from, long* to) {
    const double* box = vl.live ? vl.drawbox : vl.recordbox;
    double low = HUGE_VAL, high = -HUGE_VAL;
    for (int i = 0; i < 4; i++) {
        const double v = turn.in(box[i & 1], box[2 + (i >> 1)]).y;
        low = std::min(low, v);
        high = std::max(high, v);
    }
    const double first = std::floor((low - lines.first) / lines.step),
                 last = std::ceil((high - lines.first) / lines.step);
    *from = static_cast<long>(std::clamp(first, 0.0, static_cast<double>(lines.count)));
    *to = static_cast<long>(std::clamp(last + 1, 0.0, static_cast<double>(lines.count)));
}

void emit(const turned& turn, double u0, double u1, double v, bool draw, std::vector<double>* keep) {
    const vlpoint a = turn.out(u0, v), b = turn.out(u1, v);
    if (draw) vllinen(a.x, a.y, b.x, b.y);
    if (keep) keep->insert(keep->end(), {a.x, a.y, b.x, b.y});
}

// The crossings of one line, in order.
void cross(double v) {
    work.crossings.clear();
    for (size_t k = 0; k < work.active.size();) {
        const hatchedge& e = work.edges[work.active[k]];
        if (e.high <= v) {
            work.active[k] = work.active.back();
            work.active.pop_back();
            continue;
        }
        work.crossings.push_back(e.u + (v - e.low) * e.slope);
        k++;
    }
    std::sort(work.crossings.begin(), work.crossings.end());
}

} // namespace

void vlhatch(const double* xy, size_t n, double spacing, double angle, bool draw, std::vector<double>* keep) {
    const turned turn = turnedby(spacing > 0 ? angle : 0);
    collect(xy, n, turn, work.edges);
    if (work.edges.empty()) return;
    const lineset lines = spread(work.edges, spacing);
    long from = 0, to = lines.count;
    if (!keep && !(vl.open && vl.live)) narrow(turn, lines, &from, &to);
    work.active.clear();
    size_t next = 0;
    for (long i = from; i < to; i++) {
        const double v = lines.at(i);
        for (; next < work.edges.size() && work.edges[next].low <= v; next++) work.active.push_back(next);
        cross(v);
        for (size_t k = 0; k + 1 < work.crossings.size(); k += 2)
            emit(turn, work.crossings[k], work.crossings[k + 1], v, draw, keep);
    }
}

namespace {

// Does the device fill polygons, but none of so many points?
bool toolong(size_t n) {
    return !vl.open && vl.live && vl.ops && vl.ops->polygon && !(vlrootof(vl.patch)->flags & VLMEMORY) &&
           vl.ops->maxpolygon > 0 && n > vl.ops->maxpolygon;
}

/* Cuts off the part of a polygon beyond a line x or y = limit. What is left of the contours are chains whose
 * ends lie on the line; sorted along it, the ends are joined two by two, as the even-odd rule has it. */
struct cutter {
    struct end {
        double along;
        size_t chain;
        bool tail;
    };
    int axis;
    double limit, side; // kept: side * (coordinate - limit) <= 0
    std::vector<std::vector<double>> chains;
    std::vector<end> ends;
    std::vector<double> out;

    double beyond(const double* p) const { return side * (p[axis] - limit); }
    void contour(const double* xy, size_t n);
    void link();
};

void cutter::contour(const double* xy, size_t n) {
    const auto kept = [&](size_t i) { return beyond(xy + 2 * (i % n)) <= 0; };
    size_t start = 0;
    while (start < n && !(kept(start + 1) && !kept(start))) start++;
    if (start == n) { // wholly on one side
        if (!kept(0)) return;
        out.insert(out.end(), xy, xy + 2 * n);
        out.insert(out.end(), {1e300, 0});
        return;
    }
    for (size_t i = start; i < start + n; i++) {
        const double *p = xy + 2 * (i % n), *q = xy + 2 * ((i + 1) % n);
        if (kept(i) != kept(i + 1)) {
            const double t = beyond(p) / (beyond(p) - beyond(q));
            double at[2] = {p[0] + t * (q[0] - p[0]), p[1] + t * (q[1] - p[1])};
            at[axis] = limit;
            if (kept(i + 1)) chains.emplace_back();
            chains.back().insert(chains.back().end(), at, at + 2);
            ends.push_back({at[1 - axis], chains.size() - 1, kept(i)});
        }
        if (kept(i + 1)) chains.back().insert(chains.back().end(), q, q + 2);
    }
}

void cutter::link() {
    std::sort(ends.begin(), ends.end(), [](const end& a, const end& b) { return a.along < b.along; });
    std::vector<size_t> place(2 * chains.size()); // of each chain's head and tail among the ends
    for (size_t i = 0; i < ends.size(); i++) place[2 * ends[i].chain + (ends[i].tail ? 1 : 0)] = i;
    std::vector<char> done(chains.size(), 0);
    for (size_t first = 0; first < chains.size(); first++) {
        size_t chain = first;
        bool forward = true;
        while (!done[chain]) {
            done[chain] = 1;
            const std::vector<double>& c = chains[chain];
            for (size_t i = 0; i < c.size(); i += 2) {
                const double* p = &c[forward ? i : c.size() - 2 - i];
                out.insert(out.end(), p, p + 2);
            }
            const end& next = ends[place[2 * chain + (forward ? 1 : 0)] ^ 1];
            chain = next.chain;
            forward = !next.tail;
        }
        if (!out.empty() && out[out.size() - 2] < 1e300) out.insert(out.end(), {1e300, 0});
    }
}

std::vector<double> halfof(const std::vector<double>& xy, int axis, double limit, double side) {
    cutter cut{axis, limit, side, {}, {}, {}};
    for (size_t first = 0, end; first < xy.size(); first = end + 2) {
        for (end = first; end < xy.size() && xy[end] < 1e300;) end += 2;
        if (end > first) cut.contour(&xy[first], (end - first) / 2);
    }
    cut.link();
    return std::move(cut.out);
}

// Fills a polygon of too many points in parts, halved along its longer side. The parts overlap by a dot.
void fillparts(const std::vector<double>& xy, int depth) {
    if (xy.empty() || vlfillpolygonn(xy.data(), xy.size() / 2)) return;
    double low[2] = {HUGE_VAL, HUGE_VAL}, high[2] = {-HUGE_VAL, -HUGE_VAL};
    for (size_t i = 0; i < xy.size(); i += 2) {
        if (xy[i] >= 1e300) continue;
        for (size_t k = 0; k < 2; k++) {
            low[k] = std::min(low[k], xy[i + k]);
            high[k] = std::max(high[k], xy[i + k]);
        }
    }
    constexpr int deepest = 12;
    const int axis = high[0] - low[0] > high[1] - low[1] ? 0 : 1;
    const double overlap = 0.5 / (axis == 0 ? vl.pix.sx : vl.pix.sy), middle = (low[axis] + high[axis]) / 2;
    if (depth == deepest || !(high[axis] - low[axis] > 4 * overlap))
        return vlhatch(xy.data(), xy.size() / 2, 0, 0, true, nullptr);
    fillparts(halfof(xy, axis, middle + overlap, 1), depth + 1);
    fillparts(halfof(xy, axis, middle - overlap, -1), depth + 1);
}

} // namespace

void vlfillsolid(const double* xy, size_t n) {
    if (!vlcandraw()) return;
    if (toolong(n)) return fillparts(std::vector<double>(xy, xy + 2 * n), 0);
    if (!vlfillpolygonn(xy, n)) vlhatch(xy, n, 0, 0, true, nullptr);
}
