#include "vellum/vlribbon.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

vlpoint operator+(vlpoint a, vlpoint b) { return {a.x + b.x, a.y + b.y}; }
vlpoint operator-(vlpoint a, vlpoint b) { return {a.x - b.x, a.y - b.y}; }
vlpoint operator*(double s, vlpoint a) { return {s * a.x, s * a.y}; }
double dot(vlpoint a, vlpoint b) { return a.x * b.x + a.y * b.y; }
double cross(vlpoint a, vlpoint b) { return a.x * b.y - a.y * b.x; }
vlpoint leftof(vlpoint d) { return {-d.y, d.x}; }
bool same(vlpoint a, vlpoint b) { return a.x == b.x && a.y == b.y; }

// The crossing of the lines through a along d and through b along e (unit vectors); false when they are
// parallel.
bool lineintersect(vlpoint a, vlpoint d, vlpoint b, vlpoint e, vlpoint* out) {
    const double det = cross(d, e);
    if (std::fabs(det) < 1e-8) return false;
    *out = a + (cross(b - a, e) / det) * d;
    return true;
}

// Where c lies by the segment from a to b, when it is on its line: 0 outside, 1 within and nearer b, -1
// within and nearer a.
int sideof(vlpoint a, vlpoint b, vlpoint c) {
    if (dot(a - c, b - c) > 0) return 0;
    return dot(b - c, b - c) <= dot(a - c, a - c) ? 1 : -1;
}

// The foot of the perpendicular from p on the line through a along d (a unit vector).
vlpoint pedal(vlpoint p, vlpoint a, vlpoint d) { return a + dot(p - a, d) * d; }

// The two sides of the outline while it grows: the left from the front, the right from the back.
struct sides {
    vlpoint* result;
    int left = 0, right;

    void putleft(vlpoint p) { result[left++] = p; }
    void putright(vlpoint p) { result[--right] = p; }
    void put(bool atleft, vlpoint p) { atleft ? putleft(p) : putright(p); }
};

// Half a circle over the gap from p to q, both included, in `steps` pieces; `turn` 1 counter-clockwise, -1
// clockwise.
template <class Put> void arc(vlpoint p, vlpoint q, int steps, int turn, Put put) {
    const vlpoint middle = 0.5 * (p + q), spoke = p - middle;
    put(p);
    for (int i = 1; i < steps; i++) {
        const double angle = turn * std::numbers::pi * i / steps;
        const double c = std::cos(angle), s = std::sin(angle);
        put(middle + vlpoint{c * spoke.x - s * spoke.y, s * spoke.x + c * spoke.y});
    }
    put(q);
}

struct corner {
    vlpoint before, at, after;
    vlpoint d0, d1; // unit directions of the two segments
    double len0, len1, w;
    int roundsegs;

    double turn() const { return cross(d0, d1); }
    bool straight() const { return std::fabs(turn()) < 1e-8 && dot(d0, d1) >= 0; }
    // The tip of a mitre lies at w / cos(half the turn) from the corner.
    bool reverses() const { return 0.5 * (1 + dot(d0, d1)) * vlmitrelimit * vlmitrelimit < 1; }
};

corner cornerof(vlpoint a, vlpoint b, vlpoint c, double w, int roundsegs) {
    corner k{a, b, c, b - a, c - b, 0, 0, w, roundsegs};
    k.len0 = std::hypot(k.d0.x, k.d0.y);
    k.len1 = std::hypot(k.d1.x, k.d1.y);
    k.d0 = (1 / k.len0) * k.d0;
    k.d1 = (1 / k.len1) * k.d1;
    return k;
}

// The inner side of a corner: the crossing of the two offset lines where both segments reach it; else the
// longer one's offset point.
vlpoint innerpoint(const corner& k, vlpoint n0, vlpoint n1) {
    const vlpoint a = k.before + n0, b = k.at + n1;
    vlpoint crossing;
    if (lineintersect(a, k.d0, b, k.d1, &crossing) && sideof(a, k.at + n0, crossing) &&
        sideof(b, k.after + n1, crossing))
        return crossing;
    return k.len0 >= k.len1 ? pedal(k.at, a, k.d0) : pedal(k.at, b, k.d1);
}

void outerjoin(const corner& k, vlpoint n0, vlpoint n1, int turn, sides& out, bool atleft) {
    const vlpoint a = k.at + n0, b = k.at + n1;
    vlpoint tip;
    if (k.roundsegs == 1 && lineintersect(a, k.d0, b, k.d1, &tip)) return out.put(atleft, tip);
    arc(a, b, k.roundsegs, turn, [&](vlpoint p) { out.put(atleft, p); });
}

void join(const corner& k, sides& out) {
    const vlpoint n0 = k.w * leftof(k.d0), n1 = k.w * leftof(k.d1);
    if (k.straight()) {
        out.putleft(k.at + n1);
        out.putright(k.at - n1);
        return;
    }
    const bool outerleft = k.turn() < 0; // a turn to the right opens the left side
    const double s = outerleft ? 1 : -1;
    if (k.reverses()) {
        arc(k.at + s * n0, k.at + s * n1, k.roundsegs, outerleft ? -1 : 1,
            [&](vlpoint p) { out.put(outerleft, p); });
        out.put(!outerleft, k.at - s * n0);
        out.put(!outerleft, k.at - s * n1);
        return;
    }
    outerjoin(k, s * n0, s * n1, outerleft ? -1 : 1, out, outerleft);
    out.put(!outerleft, innerpoint(k, -s * n0, -s * n1));
}

// The first point at or after i that differs from p; n when there is none.
int nextpoint(const vlpoint* points, int n, int i, vlpoint p) {
    while (i < n && same(points[i], p)) i++;
    return i;
}

} // namespace

int vlribbon(const vlpoint* points, int n, double w, int roundsegs, vlpoint* result) {
    if (n < 1) return 0;
    const int room = BDRYSIZE(n, roundsegs);
    int b = nextpoint(points, n, 1, points[0]);
    if (b == n) {
        result[0] = points[0];
        return 1;
    }
    sides out{result, 0, room};
    vlpoint before = points[0];
    const vlpoint d = points[b] - before, start = (w / std::hypot(d.x, d.y)) * leftof(d);
    out.putleft(before + start);
    out.putright(before - start);
    for (int c; (c = nextpoint(points, n, b + 1, points[b])) < n; b = c) {
        join(cornerof(before, points[b], points[c], w, roundsegs), out);
        before = points[b];
    }
    const vlpoint e = points[b] - before, end = (w / std::hypot(e.x, e.y)) * leftof(e);
    out.putleft(points[b] + end);
    out.putright(points[b] - end);
    std::move(result + out.right, result + room, result + out.left);
    int rcnt = out.left + room - out.right;
    result[rcnt++] = result[0];
    return rcnt;
}

bool vlfolds(vlpoint a, vlpoint b, vlpoint c, double w) {
    const corner k = cornerof(a, b, c, w, 1);
    if (k.straight()) return false;
    if (k.reverses()) return true;
    // The inner crossing lies w tan(half the turn) away along both segments; each keeps half of itself for
    // its other end.
    const double reach = w * std::fabs(k.turn()) / (1 + dot(k.d0, k.d1));
    return reach > 0.5 * std::min(k.len0, k.len1);
}

bool vlcrosses(const vlpoint* outline, int n) {
    const auto side = [](vlpoint a, vlpoint b, vlpoint c) { return cross(b - a, c - a); };
    for (int i = 0; i + 1 < n; i++) {
        const vlpoint a = outline[i], b = outline[i + 1];
        const double left = std::min(a.x, b.x), right = std::max(a.x, b.x);
        const double low = std::min(a.y, b.y), high = std::max(a.y, b.y);
        for (int k = i + 2; k + 1 < n; k++) {
            const vlpoint c = outline[k], d = outline[k + 1];
            if ((c.x < left && d.x < left) || (c.x > right && d.x > right) || (c.y < low && d.y < low) ||
                (c.y > high && d.y > high))
                continue;
            if (side(a, b, c) * side(a, b, d) < 0 && side(c, d, a) * side(c, d, b) < 0) return true;
        }
    }
    return false;
}

int vljoin(vlpoint a, vlpoint b, vlpoint c, double w, int roundsegs, vlpoint* result) {
    const corner k = cornerof(a, b, c, w, roundsegs);
    const double s = k.turn() < 0 ? w : -w; // towards the outer side
    const vlpoint n0 = s * leftof(k.d0), n1 = s * leftof(k.d1), p = b + n0, q = b + n1;
    const double overlap = 0.5 * std::min({w, k.len0, k.len1});
    const bool gentle = dot(k.d0, k.d1) > 0 && w * std::fabs(k.turn()) < overlap;
    int n = 0;
    const auto put = [&](vlpoint at) { result[n++] = at; };
    if (gentle) {
        put(b - n0 - overlap * k.d0);
        put(p - overlap * k.d0);
    } else {
        const vlpoint inward = k.d1 - k.d0;
        put(b + (0.5 * w / std::hypot(inward.x, inward.y)) * inward);
        put(p);
    }
    vlpoint tip;
    if (roundsegs == 1 && !k.reverses() && lineintersect(p, k.d0, q, k.d1, &tip))
        put(tip);
    else
        arc(p, q, roundsegs, s > 0 ? -1 : 1, put);
    if (gentle) {
        put(q + overlap * k.d1);
        put(b - n1 + overlap * k.d1);
    } else {
        put(q);
    }
    return n;
}
