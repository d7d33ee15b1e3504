#include "vellum/vlspline.h"

#include <algorithm>
#include <cmath>

namespace {

// The three numbers of one piece of length h under tension t that the equations for the bends are made of.
struct piecenumbers {
    double near, far; // how its bends act on the slope at the near and the far end
    vlpoint slope;
};

// (x coth x - 1) / x^2 and (1 - x / sinh x) / x^2, by series where the difference would lose digits.
double nearpart(double x) {
    if (x < 0.1) return 1.0 / 3 - x * x * (1.0 / 45 - x * x * (2.0 / 945));
    return (x / std::tanh(x) - 1) / (x * x);
}
double farpart(double x) {
    if (x < 0.1) return 1.0 / 6 - x * x * (7.0 / 360 - x * x * (31.0 / 15120));
    return (1 - (x > 700 ? 0 : x / std::sinh(x))) / (x * x);
}

piecenumbers numbersof(const vlspline& s, size_t i) {
    const double h = s.knots[i + 1] - s.knots[i], x = s.tension * h;
    const vlpoint a = s.at[i], b = s.at[i + 1];
    return {h * nearpart(x), h * farpart(x), {(b.x - a.x) / h, (b.y - a.y) / h}};
}

// Solves a tridiagonal system in place; sub[0] and super[n-1] are not read. Dominant diagonals need no
// exchanges.
void solve(const std::vector<double>& sub, std::vector<double> diag, const std::vector<double>& super,
           std::vector<vlpoint>& right) {
    const size_t n = diag.size();
    for (size_t i = 1; i < n; i++) {
        const double m = sub[i] / diag[i - 1];
        diag[i] -= m * super[i - 1];
        right[i].x -= m * right[i - 1].x;
        right[i].y -= m * right[i - 1].y;
    }
    for (size_t i = n; i-- > 0;) {
        const vlpoint next = i + 1 < n ? right[i + 1] : vlpoint{0, 0};
        const double c = i + 1 < n ? super[i] : 0;
        right[i] = {(right[i].x - c * next.x) / diag[i], (right[i].y - c * next.y) / diag[i]};
    }
}

// The bends of an open curve: none at its ends, the slopes of neighbouring pieces alike at the knots between.
void openbends(vlspline& s) {
    const size_t n = s.at.size();
    s.bend.assign(n, {0, 0});
    if (n < 3) return;
    std::vector<double> sub(n - 2), diag(n - 2), super(n - 2);
    std::vector<vlpoint> right(n - 2);
    piecenumbers a = numbersof(s, 0);
    for (size_t i = 1; i + 1 < n; i++) {
        const piecenumbers b = numbersof(s, i);
        sub[i - 1] = a.far;
        diag[i - 1] = a.near + b.near;
        super[i - 1] = b.far;
        right[i - 1] = {b.slope.x - a.slope.x, b.slope.y - a.slope.y};
        a = b;
    }
    solve(sub, diag, super, right);
    std::copy(right.begin(), right.end(), s.bend.begin() + 1);
}

// The bends of a closed curve: the system has two corner entries, which are brought in as a change of rank
// one (Sherman and Morrison).
void closedbends(vlspline& s) {
    const size_t n = s.at.size() - 1; // the last knot is the first one
    std::vector<double> sub(n), diag(n), super(n);
    std::vector<vlpoint> right(n), unit(n, {0, 0});
    for (size_t i = 0; i < n; i++) {
        const piecenumbers a = numbersof(s, (i + n - 1) % n), b = numbersof(s, i);
        sub[i] = a.far;
        diag[i] = a.near + b.near;
        super[i] = b.far;
        right[i] = {b.slope.x - a.slope.x, b.slope.y - a.slope.y};
    }
    const double corner = sub[0], gamma = -diag[0];
    diag[0] -= gamma;
    diag[n - 1] -= corner * corner / gamma;
    unit[0].x = gamma;
    unit[n - 1].x = corner;
    solve(sub, diag, super, right);
    solve(sub, diag, super, unit);
    const double share = corner / gamma, below = 1 + unit[0].x + share * unit[n - 1].x;
    const vlpoint f{(right[0].x + share * right[n - 1].x) / below,
                    (right[0].y + share * right[n - 1].y) / below};
    s.bend.resize(n + 1);
    for (size_t i = 0; i < n; i++) s.bend[i] = {right[i].x - f.x * unit[i].x, right[i].y - f.y * unit[i].x};
    s.bend[n] = s.bend[0];
}

// What the bend at one end of a piece of length h adds at the distance u from the other end: the function
// that is 0 at both ends and has the bend 1 at u = h.
double bump(double u, double h, double t) {
    const double x = t * h;
    if (x < 0.05) { // the cubic, and the next term in the tension
        const double r = u / h, q = r * r;
        return h * h * r * ((q - 1) / 6 + x * x * (3 * q * q - 10 * q + 7) / 360);
    }
    const double ratio = std::exp(t * (u - h)) * std::expm1(-2 * t * u) / std::expm1(-2 * x);
    return (ratio - u / h) / (t * t);
}

} // namespace

namespace {

// Points nearer than this are one: a tiny part of what the curve spans.
double leaststep(std::span<const vlpoint> points) {
    double low[2] = {HUGE_VAL, HUGE_VAL}, high[2] = {-HUGE_VAL, -HUGE_VAL};
    for (const vlpoint& p : points) {
        low[0] = std::min(low[0], p.x), high[0] = std::max(high[0], p.x);
        low[1] = std::min(low[1], p.y), high[1] = std::max(high[1], p.y);
    }
    return 1e-9 * std::hypot(high[0] - low[0], high[1] - low[1]);
}

void addknot(vlspline& s, vlpoint p, double least) {
    const double step = s.at.empty() ? 0 : std::hypot(p.x - s.at.back().x, p.y - s.at.back().y);
    if (!s.at.empty() && !(step > least)) return;
    s.knots.push_back(s.at.empty() ? 0 : s.knots.back() + step);
    s.at.push_back(p);
}

} // namespace

vlspline vlsplinemake(std::span<const vlpoint> points, double tension, bool closed) {
    vlspline s;
    std::vector<vlpoint> finite;
    for (const vlpoint& p : points)
        if (std::isfinite(p.x) && std::isfinite(p.y)) finite.push_back(p);
    const double least = leaststep(finite);
    for (const vlpoint& p : finite) addknot(s, p, least);
    closed = closed && s.at.size() > 2;
    if (closed) {
        const vlpoint first = s.at.front(), last = s.at.back();
        if (std::hypot(last.x - first.x, last.y - first.y) <= least) {
            s.at.back() = first;
        } else {
            addknot(s, first, least);
        }
    }
    if (s.at.size() < 2) return s;
    s.tension = tension * static_cast<double>(s.at.size() - 1) / s.knots.back();
    if (closed && s.at.size() > 3)
        closedbends(s);
    else
        openbends(s);
    return s;
}

vlpoint vlsplineat(const vlspline& s, double parameter) {
    if (s.at.empty()) return {0, 0};
    if (s.at.size() == 1) return s.at[0];
    const double u = std::clamp(parameter, 0.0, 1.0) * s.knots.back();
    const auto above = std::upper_bound(s.knots.begin() + 1, s.knots.end() - 1, u);
    const size_t i = static_cast<size_t>(above - s.knots.begin()) - 1;
    const double h = s.knots[i + 1] - s.knots[i], r = u - s.knots[i];
    const double f = r / h, near = bump(h - r, h, s.tension), far = bump(r, h, s.tension);
    const vlpoint a = s.at[i], b = s.at[i + 1], p = s.bend[i], q = s.bend[i + 1];
    return {a.x + f * (b.x - a.x) + near * p.x + far * q.x, a.y + f * (b.y - a.y) + near * p.y + far * q.y};
}

namespace {

constexpr double fewest = 3; // pieces of the drawn line between two points, on the average

std::vector<vlpoint> pointsof(const double* poly) {
    std::vector<vlpoint> points;
    if (!(poly[0] >= 1 && poly[0] < 1e9) || poly[1] != 2) return points;
    const size_t n = static_cast<size_t>(poly[0]);
    points.reserve(n);
    for (size_t i = 0; i < n; i++) points.push_back(vltonorm(poly[2 + 2 * i], poly[3 + 2 * i]));
    return points;
}

} // namespace

void DSPLINE(const double* poly, const double* params, int nparams, double flatness, int first, int last,
             int closed, int) {
    const std::vector<vlpoint> points = pointsof(poly);
    if (points.empty() || nparams < 1) return;
    const vlspline s = vlsplinemake(points, std::max(flatness, 0.0), closed == 3);
    const auto at = [&](double parameter) {
        const vlpoint p = vlsplineat(s, first + (last - first) * parameter);
        return vltoworld(p.x, p.y);
    };
    const vlpoint start = at(params[0]);
    DMOVE(start.x, start.y);
    // Where the points are many, the curve is drawn between the parameters as well, so as not to pass them
    // by.
    const double pieces = static_cast<double>(s.at.size()) * fewest / std::max(nparams - 1, 1);
    const int steps = static_cast<int>(std::clamp(std::ceil(pieces), 1.0, 10000.0));
    for (int i = 1; i < nparams; i++) {
        for (int k = 1; k <= steps; k++) {
            const double t = static_cast<double>(k) / steps;
            const vlpoint p = at(k == steps ? params[i] : params[i - 1] + t * (params[i] - params[i - 1]));
            DDRAW(p.x, p.y);
        }
    }
}
