/* Builtins that interpolate in tables: rows of an abscissa and an ordinate, and grids with the abscissas of
 * their columns in the first row and those of their rows in the first column. */
#include "funcs/builtin.h"
#include "funcs/matrixoperand.h"
#include "funcs/matrixresult.h"
#include "funcs/rows.h"
#include "interp/base/fpfault.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <vector>

namespace {

using vec = std::vector<double>;

// A table in ascending order of its abscissas, none of which may stand twice.
struct table {
    vec x, y;
    size_t size() const { return x.size(); }
    // The interval [x[i], x[i + 1]] of t; the first or the last one beyond the ends.
    size_t interval(double t) const {
        const size_t above = size_t(std::upper_bound(x.begin(), x.end(), t) - x.begin());
        return std::clamp<size_t>(above, 1, size() - 1) - 1;
    }
    double slope(size_t i) const { return (y[i + 1] - y[i]) / (x[i + 1] - x[i]); }
};

void needascending(const vec& x, const char* name) {
    for (size_t i = 1; i < x.size(); i++)
        if (!(x[i] > x[i - 1])) argrange(name);
}

table tableof(const callargs& a, size_t least) {
    const matrixoperand m(a[1]);
    if (m.cols() < 2 || m.rows() < least) argshape(a.name());
    std::vector<size_t> order(m.rows());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t i, size_t j) { return at(m.m, i + 1, 1) < at(m.m, j + 1, 1); });
    table t;
    for (const size_t i : order) {
        t.x.push_back(at(m.m, i + 1, 1));
        t.y.push_back(at(m.m, i + 1, 2));
    }
    needascending(t.x, a.name());
    return t;
}

// A matrix of the shape of the points, each replaced by f at it.
template <typename F> int overpoints(const callargs& a, const F& f) {
    const matrixoperand points(a[2]);
    vec result(points.count());
    for (size_t k = 0; k < result.size(); k++) result[k] = f(points.cell()[k + 1]);
    return matrixresult(points.rows(), points.cols(), result);
}

double choice(const callargs& a, int k, double absent, double most) {
    const double c = a.scalar(k, absent);
    if (!(c >= 0 && c <= most) || c != std::trunc(c)) argrange(a.name());
    return c;
}

/* INTERP(T, X, d): at each of X the polynomial of degree d (1) through the d + 1 points around it. (E. H.
 * Neville's scheme.) */
int interp(const callargs& a) {
    const table t = tableof(a, 1);
    const size_t d = size_t(choice(a, 3, t.size() > 1 ? 1 : 0, double(t.size() - 1)));
    vec p(d + 1);
    return overpoints(a, [&](double x) {
        const size_t i = t.size() > 1 ? t.interval(x) : 0, before = d / 2;
        const size_t first = std::min(i > before ? i - before : 0, t.size() - 1 - d);
        std::copy_n(t.y.begin() + long(first), d + 1, p.begin());
        for (size_t m = 1; m <= d; m++)
            for (size_t k = 0; k + m <= d; k++) {
                const double x0 = t.x[first + k], x1 = t.x[first + k + m];
                p[k] = p[k] + (x - x0) / (x1 - x0) * (p[k + 1] - p[k]);
            }
        return p[0];
    });
}

/* INTERPOLATE(T, X, d): a rational function without poles through all points, the blend of the polynomials of
 * degree d (3) through d + 1 neighbours. (M. S. Floater, K. Hormann, Numer. Math. 107 (2007) 315.) */
int rational(const callargs& a) {
    const table t = tableof(a, 1);
    const size_t n = t.size(), d = size_t(choice(a, 3, std::min<double>(3, double(n) - 1), double(n - 1)));
    const double scale = n > 1 ? (t.x[n - 1] - t.x[0]) / double(n - 1) : 1;
    vec w(n, 0.0);
    for (size_t k = 0; k < n; k++)
        for (size_t i = k > d ? k - d : 0; i <= std::min(k, n - 1 - d); i++) {
            double product = 1;
            for (size_t j = i; j <= i + d; j++)
                if (j != k) product *= scale / std::fabs(t.x[k] - t.x[j]);
            w[k] += product;
        }
    for (size_t k = 1; k < n; k += 2) w[k] = -w[k];
    return overpoints(a, [&](double x) {
        double above = 0, below = 0;
        for (size_t k = 0; k < n; k++) {
            if (x == t.x[k]) return t.y[k];
            const double q = w[k] / (x - t.x[k]);
            above += q * t.y[k];
            below += q;
        }
        return above / below;
    });
}

// A cubic by the values and slopes at the ends of its interval; derivative 0 or 1.
double hermite(const table& t, const vec& slope, size_t i, double x, bool derivative) {
    const double h = t.x[i + 1] - t.x[i], s = (x - t.x[i]) / h, d = t.slope(i);
    const double c = (3 * d - 2 * slope[i] - slope[i + 1]) * h, e = (slope[i] + slope[i + 1] - 2 * d) * h;
    if (derivative) return (slope[i] * h + s * (2 * c + s * 3 * e)) / h;
    return t.y[i] + s * (slope[i] * h + s * (c + s * e));
}

double endslope(double h0, double h1, double d0, double d1) {
    const double s = ((2 * h0 + h1) * d0 - h0 * d1) / (h0 + h1);
    if (s * d0 <= 0) return 0;
    return d0 * d1 <= 0 && std::fabs(s) > 3 * std::fabs(d0) ? 3 * d0 : s;
}

/* INTERP3(T, X, k): piecewise cubics that rise and fall only where the points do; derivative k = 0 (or 1).
 * (F. N. Fritsch, J. Butland, SIAM J. Sci. Stat. Comput. 5 (1984) 300.) */
int monotone(const callargs& a) {
    const table t = tableof(a, 2);
    const bool derivative = choice(a, 3, 0, 1) == 1;
    const size_t n = t.size();
    vec slope(n, t.slope(0));
    for (size_t i = 1; i + 1 < n; i++) {
        const double h0 = t.x[i] - t.x[i - 1], h1 = t.x[i + 1] - t.x[i], d0 = t.slope(i - 1), d1 = t.slope(i);
        const double w0 = 2 * h1 + h0, w1 = h1 + 2 * h0;
        slope[i] = d0 * d1 > 0 ? (w0 + w1) / (w0 / d0 + w1 / d1) : 0;
    }
    if (n > 2) {
        slope[0] = endslope(t.x[1] - t.x[0], t.x[2] - t.x[1], t.slope(0), t.slope(1));
        slope[n - 1] =
            endslope(t.x[n - 1] - t.x[n - 2], t.x[n - 2] - t.x[n - 3], t.slope(n - 2), t.slope(n - 3));
    }
    return overpoints(a, [&](double x) { return hermite(t, slope, t.interval(x), x, derivative); });
}

/* Slopes of the cubic spline through the table. Natural: no second derivative at the ends; else "not a knot":
 * the third derivative goes on at the second and the last point but one. (C. de Boor, A Practical Guide to
 * Splines, ch. IV.) Elimination without pivoting: the system is diagonally dominant but for its ends. */
vec splineslopes(const table& t, bool natural) {
    const size_t n = t.size();
    if (n == 2) return vec(2, t.slope(0));
    if (n == 3 && !natural) { // the parabola
        const double c = (t.slope(1) - t.slope(0)) / (t.x[2] - t.x[0]), h0 = t.x[1] - t.x[0];
        return {t.slope(0) - c * h0, t.slope(0) + c * h0, t.slope(1) + c * (t.x[2] - t.x[1])};
    }
    vec low(n), mid(n), up(n), s(n);
    for (size_t i = 1; i + 1 < n; i++) {
        const double h0 = t.x[i] - t.x[i - 1], h1 = t.x[i + 1] - t.x[i];
        low[i] = h1;
        mid[i] = 2 * (h0 + h1);
        up[i] = h0;
        s[i] = 3 * (h1 * t.slope(i - 1) + h0 * t.slope(i));
    }
    const auto end = [&](size_t i, size_t j, size_t k, double& main, double& next) {
        const double h0 = std::fabs(t.x[j] - t.x[i]), h1 = std::fabs(t.x[k] - t.x[j]);
        const double d0 = t.slope(std::min(i, j)), d1 = t.slope(std::min(j, k));
        main = natural ? 2 : h1;
        next = natural ? 1 : h0 + h1;
        s[i] = natural ? 3 * d0 : ((h0 + 2 * (h0 + h1)) * h1 * d0 + h0 * h0 * d1) / (h0 + h1);
    };
    end(0, 1, 2, mid[0], up[0]);
    end(n - 1, n - 2, n - 3, mid[n - 1], low[n - 1]);
    for (size_t i = 1; i < n; i++) {
        const double f = low[i] / mid[i - 1];
        mid[i] -= f * up[i - 1];
        s[i] -= f * s[i - 1];
    }
    s[n - 1] /= mid[n - 1];
    for (size_t i = n - 1; i-- > 0;) s[i] = (s[i] - up[i] * s[i + 1]) / mid[i];
    return s;
}

// SPLINE(T, X, k): the cubic spline through the points: natural (k = 0), or "not a knot" (1).
int spline(const callargs& a) {
    const table t = tableof(a, 2);
    const vec s = splineslopes(t, choice(a, 3, 0, 1) == 0);
    return overpoints(a, [&](double x) { return hermite(t, s, t.interval(x), x, false); });
}

// A grid: values z at the crossings of x (down the rows) and y (along the columns), both ascending.
struct grid {
    vec x, y, z;
    table row(size_t i) const {
        return {y, vec(z.begin() + long(i * y.size()), z.begin() + long((i + 1) * y.size()))};
    }
};
grid gridof(const callargs& a) {
    const matrixoperand m(a[1]);
    if (m.rows() < 3 || m.cols() < 3) argshape(a.name());
    grid g;
    for (size_t i = 2; i <= m.rows(); i++) g.x.push_back(at(m.m, i, 1));
    for (size_t j = 2; j <= m.cols(); j++) g.y.push_back(at(m.m, 1, j));
    for (size_t i = 2; i <= m.rows(); i++)
        for (size_t j = 2; j <= m.cols(); j++) g.z.push_back(at(m.m, i, j));
    needascending(g.x, a.name());
    needascending(g.y, a.name());
    return g;
}

// The points are two matrices of one shape, or the rows of one of two columns.
template <typename F> int overpairs(const callargs& a, const F& f) {
    const matrixoperand x(a[2]);
    if (!a[3]) {
        if (x.cols() != 2) argshape(a.name());
        vec result(x.rows());
        for (size_t i = 0; i < x.rows(); i++) result[i] = f(x.cell()[2 * i + 1], x.cell()[2 * i + 2]);
        return matrixresult(x.rows(), 1, result);
    }
    const matrixoperand y(a[3]);
    if (x.rows() != y.rows() || x.cols() != y.cols()) argshape(a.name());
    vec result(x.count());
    for (size_t k = 0; k < x.count(); k++) result[k] = f(x.cell()[k + 1], y.cell()[k + 1]);
    return matrixresult(x.rows(), x.cols(), result);
}

// INTERP2(G, X, Y): bilinear in each cell of the grid.
int bilinear(const callargs& a) {
    const grid g = gridof(a);
    const table alongx{g.x, {}}, alongy{g.y, {}};
    const size_t cols = g.y.size();
    return overpairs(a, [&](double x, double y) {
        const size_t i = alongx.interval(x), j = alongy.interval(y);
        const double s = (x - g.x[i]) / (g.x[i + 1] - g.x[i]), t = (y - g.y[j]) / (g.y[j + 1] - g.y[j]);
        const double* z = &g.z[i * cols + j];
        return (1 - s) * ((1 - t) * z[0] + t * z[1]) + s * ((1 - t) * z[cols] + t * z[cols + 1]);
    });
}

// INTERPOLATE2(G, X, Y): the natural spline down the rows of the natural splines along the columns.
int bicubic(const callargs& a) {
    const grid g = gridof(a);
    std::vector<table> rows;
    std::vector<vec> slopes;
    for (size_t i = 0; i < g.x.size(); i++) {
        rows.push_back(g.row(i));
        slopes.push_back(splineslopes(rows.back(), true));
    }
    table down{g.x, vec(g.x.size())};
    return overpairs(a, [&](double x, double y) {
        const size_t j = rows[0].interval(y);
        for (size_t i = 0; i < rows.size(); i++) down.y[i] = hermite(rows[i], slopes[i], j, y, false);
        return hermite(down, splineslopes(down, true), down.interval(x), x, false);
    });
}

constexpr valuerow values[] = {{-620, interp}, {-618, rational}, {-789, monotone},
                               {-619, spline}, {-777, bilinear}, {-776, bicubic}};

} // namespace

void interpolaterows() { builtinadd(values, int(std::size(values))); }
