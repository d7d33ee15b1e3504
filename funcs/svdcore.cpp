#include "funcs/linalg.h"
#include "funcs/vectorloops.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>

namespace {

constexpr int MAXSWEEPS = 30;

constexpr int LARGEST = 480; // binary exponent of the largest element, so that no square overflows

/* The work is done on a matrix of at least as many rows as columns, scaled by a power of two where squares
 * would over- or underflow. ut and vt hold the transposes of U and V, so that rotations run along rows. */
struct svdwork {
    size_t m, n;
    std::vector<double> a;      // m by n, the reflections as they come
    std::vector<double> d, e;   // diagonal and superdiagonal; e[0] is unused
    std::vector<double> ut, vt; // n by m and n by n
    std::vector<size_t> row,
        col; // which of the given matrix: those of zeros stand last, where nothing mixes them
};

// Rows from.. of the columns from.. of a: a -= beta v (v'a), v being column `col` from row `from` on.
void reflectrows(svdwork& s, size_t from, size_t col, double beta, std::vector<double>& w) {
    const size_t n = s.n, width = n - col - 1;
    if (width == 0 || beta == 0) return;
    std::fill(w.begin(), w.begin() + long(width), 0.0);
    for (size_t i = from; i < s.m; i++) axpy(width, s.a[i * n + col], &s.a[i * n + col + 1], w.data());
    for (size_t i = from; i < s.m; i++)
        axpy(width, -beta * s.a[i * n + col], w.data(), &s.a[i * n + col + 1]);
}

void bidiagonalise(svdwork& s, std::vector<double>& betau, std::vector<double>& betav) {
    const size_t m = s.m, n = s.n;
    std::vector<double> w(std::max(m, n));
    for (size_t k = 0; k < n; k++) {
        betau[k] = reflector(&s.a[k * n + k], m - k, n, s.d[k]);
        reflectrows(s, k, k, betau[k], w);
        if (k + 1 >= n) break;
        double* row = &s.a[k * n + k + 1];
        const size_t width = n - k - 1;
        betav[k] = reflector(row, width, 1, s.e[k + 1]);
        if (betav[k] == 0) continue;
        for (size_t i = k + 1; i < m; i++) {
            double* target = &s.a[i * n + k + 1];
            axpy(width, -betav[k] * dotproduct(width, row, target), row, target);
        }
    }
}

// U' = the product of the left reflections applied to the first n unit vectors, as rows.
void buildu(svdwork& s, const std::vector<double>& beta) {
    const size_t m = s.m, n = s.n;
    std::vector<double> v(m);
    s.ut.assign(n * m, 0);
    for (size_t k = 0; k < n; k++) s.ut[k * m + k] = 1;
    for (size_t k = n; k-- > 0;) {
        if (beta[k] == 0) continue;
        for (size_t i = k; i < m; i++) v[i] = s.a[i * n + k];
        for (size_t j = k; j < n; j++) {
            double* row = &s.ut[j * m + k];
            axpy(m - k, -beta[k] * dotproduct(m - k, &v[k], row), &v[k], row);
        }
    }
}

void buildv(svdwork& s, const std::vector<double>& beta) {
    const size_t n = s.n;
    s.vt.assign(n * n, 0);
    for (size_t k = 0; k < n; k++) s.vt[k * n + k] = 1;
    for (size_t k = n; k-- > 0;) {
        if (beta[k] == 0) continue;
        const double* v = &s.a[k * n + k + 1];
        const size_t width = n - k - 1;
        for (size_t j = k + 1; j < n; j++) {
            double* row = &s.vt[j * n + k + 1];
            axpy(width, -beta[k] * dotproduct(width, v, row), v, row);
        }
    }
}

void givens(double f, double g, double& c, double& s, double& r) {
    if (g == 0) {
        c = 1, s = 0, r = f;
        return;
    }
    const bool small = std::fabs(f) < 1e-280 && std::fabs(g) < 1e-280; // too few digits to turn by
    const double scale = small ? 0x1p600 : 1;
    const double length = std::hypot(f * scale, g * scale);
    c = f * scale / length;
    s = g * scale / length;
    r = length / scale;
}

// A zero on the diagonal at l - 1: e[l] is rotated out of the matrix along its row.
void chaserow(svdwork& w, size_t l, size_t k) {
    double f = w.e[l];
    w.e[l] = 0;
    for (size_t i = l; i <= k && f != 0; i++) {
        double c, s, r;
        givens(w.d[i], f, c, s, r);
        w.d[i] = r;
        rotate(w.m, c, s, &w.ut[i * w.m], &w.ut[(l - 1) * w.m]);
        if (i < k) {
            f = -s * w.e[i + 1];
            w.e[i + 1] *= c;
        }
    }
}

// The shift from the last two rows (Wilkinson), and one implicit sweep over l..k.
void sweep(svdwork& w, size_t l, size_t k) {
    const size_t n = w.n, m = w.m;
    const double x = w.d[l], y = w.d[k - 1], z = w.d[k], g0 = k > l + 1 ? w.e[k - 1] : 0, h0 = w.e[k];
    double f = ((y - z) * (y + z) + (g0 - h0) * (g0 + h0)) / (2 * h0 * y);
    double g = std::hypot(f, 1.0);
    f = ((x - z) * (x + z) + h0 * (y / (f >= 0 ? f + g : f - g) - h0)) / x;
    double bulge = w.e[l + 1], c, s, r;
    g = bulge;
    for (size_t i = l; i < k; i++) {
        givens(f, g, c, s, r); // from the right: columns i and i + 1
        if (i > l) w.e[i] = r;
        f = c * w.d[i] + s * w.e[i + 1];
        w.e[i + 1] = c * w.e[i + 1] - s * w.d[i];
        g = s * w.d[i + 1];
        w.d[i + 1] *= c;
        rotate(n, c, s, &w.vt[i * n], &w.vt[(i + 1) * n]);
        givens(f, g, c, s, r); // from the left: rows i and i + 1
        w.d[i] = r;
        f = c * w.e[i + 1] + s * w.d[i + 1];
        w.d[i + 1] = c * w.d[i + 1] - s * w.e[i + 1];
        rotate(m, c, s, &w.ut[i * m], &w.ut[(i + 1) * m]);
        if (i + 1 < k) {
            w.e[i + 1] = f;
            g = s * w.e[i + 2];
            w.e[i + 2] *= c;
        } else {
            w.e[k] = f;
        }
    }
}

// The column k of B is zero below its diagonal element's row when d[k] is 0: e[k] is rotated up its column.
void chasecolumn(svdwork& w, size_t l, size_t k) {
    double f = w.e[k];
    w.e[k] = 0;
    for (size_t i = k; i-- > l && f != 0;) {
        double c, s, r;
        givens(w.d[i], f, c, s, r);
        w.d[i] = r;
        rotate(w.n, c, s, &w.vt[i * w.n], &w.vt[k * w.n]);
        if (i > l) {
            f = -s * w.e[i];
            w.e[i] *= c;
        }
    }
}

bool diagonalise(svdwork& w) {
    double size = 0;
    for (size_t i = 0; i < w.n; i++) size = std::max(size, std::fabs(w.d[i]) + (i ? std::fabs(w.e[i]) : 0));
    const double smalle = 1e-19 * size,
                 smalld = 1e-100 * size; // nothing beside the largest; hardly a divisor
    for (size_t k = w.n; k-- > 1;) {
        for (int count = 0;; count++) {
            const auto negligible = [&](size_t i) {
                return std::fabs(w.e[i]) <= DBL_EPSILON * (std::fabs(w.d[i]) + std::fabs(w.d[i - 1])) * 0.5 ||
                       std::fabs(w.e[i]) <= smalle;
            };
            size_t l = k;
            bool split = false;
            for (; l > 0; l--) {
                if (negligible(l)) {
                    w.e[l] = 0;
                    break;
                }
                if (std::fabs(w.d[l - 1]) <= smalld) {
                    split = true;
                    break;
                }
            }
            if (l == k && !split) break;
            if (count >= MAXSWEEPS) return false;
            if (split) {
                w.d[l - 1] = 0;
                chaserow(w, l, k);
                continue;
            }
            if (std::fabs(w.d[k]) <= smalld) {
                w.d[k] = 0;
                chasecolumn(w, l, k);
                continue;
            }
            sweep(w, l, k);
        }
    }
    return true;
}

// Values positive and descending (ties keep their order); the columns of U and V follow.
void sorted(const svdwork& s, std::vector<double>& w, std::vector<double>& u, std::vector<double>& v,
            bool transposed) {
    const size_t m = s.m, n = s.n;
    std::vector<size_t> order(n);
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t i, size_t j) { return std::fabs(s.d[i]) > std::fabs(s.d[j]); });
    w.resize(n);
    std::vector<double>&left = transposed ? v : u, &right = transposed ? u : v;
    left.resize(m * n);
    right.resize(n * n);
    for (size_t k = 0; k < n; k++) {
        const size_t from = order[k];
        const double sign = s.d[from] < 0 ? -1 : 1;
        w[k] = std::fabs(s.d[from]);
        for (size_t i = 0; i < m; i++) left[s.row[i] * n + k] = s.ut[from * m + i];
        for (size_t i = 0; i < n; i++) right[s.col[i] * n + k] = sign * s.vt[from * n + i];
    }
}

// x, or its transpose, with the rows and the columns that hold nothing but zeros last.
void load(svdwork& s, const std::vector<double>& x, bool transposed) {
    const auto cell = [&](size_t i, size_t j) { return transposed ? x[j * s.m + i] : x[i * s.n + j]; };
    std::vector<char> rowused(s.m, 0), colused(s.n, 0);
    for (size_t i = 0; i < s.m; i++)
        for (size_t j = 0; j < s.n; j++)
            if (cell(i, j) != 0) rowused[i] = colused[j] = 1;
    for (const char used : {1, 0}) {
        for (size_t i = 0; i < s.m; i++)
            if (rowused[i] == used) s.row.push_back(i);
        for (size_t j = 0; j < s.n; j++)
            if (colused[j] == used) s.col.push_back(j);
    }
    s.a.resize(s.m * s.n);
    for (size_t i = 0; i < s.m; i++)
        for (size_t j = 0; j < s.n; j++) s.a[i * s.n + j] = cell(s.row[i], s.col[j]);
}

/* A value no larger than what rounding of the elements of a in their last place changes it by is 0: what was
 * computed instead is rounding alone. The reduction adds some for larger matrices. Small values that the
 * elements do determine, as those of graded matrices, stay. (First-order change of a value: u' da v. G. W.
 * Stewart, J. Sun, Matrix Perturbation Theory, ch. IV.4.) */
void zerowhatisrounding(const double* a, size_t m, size_t n, std::vector<double>& w,
                        const std::vector<double>& u, const std::vector<double>& v) {
    const size_t p = w.size();
    size_t first = p; // of the values that come into question
    while (first > 0 && w[first - 1] <= DBL_EPSILON * double(m + n) * w[0]) first--;
    const size_t few = p - first;
    std::vector<double> right(n * few), sum(few), change(few, 0.0);
    for (size_t j = 0; j < n && few > 0; j++)
        for (size_t k = 0; k < few; k++) right[j * few + k] = std::fabs(v[j * p + first + k]);
    for (size_t i = 0; i < m && few > 0; i++) {
        std::fill(sum.begin(), sum.end(), 0.0);
        for (size_t j = 0; j < n; j++) axpy(few, std::fabs(a[i * n + j]), &right[j * few], sum.data());
        for (size_t k = 0; k < few; k++) change[k] += std::fabs(u[i * p + first + k]) * sum[k];
    }
    const double unit = DBL_EPSILON * std::max(2.0, double(p) / 5);
    for (size_t k = 0; k < few; k++) {
        double& x = w[first + k];
        if (x <= unit * change[k] || x > change[k]) x = 0; // no true value is above its change
    }
}

} // namespace

int squarescale(const double* a, size_t count) {
    double most = 0;
    for (size_t k = 0; k < count; k++) most = std::max(most, std::fabs(a[k]));
    int exponent = 0;
    std::frexp(most, &exponent);
    return exponent > 0 ? std::max(0, exponent - LARGEST) : exponent; // what is made larger loses nothing
}

double reflector(double* x, size_t n, size_t stride, double& alpha) {
    double most = 0;
    for (size_t i = 1; i < n; i++) most = std::max(most, std::fabs(x[i * stride]));
    alpha = x[0];
    if (most == 0) return 0;
    most = std::max(most, std::fabs(alpha));
    double sum = 0; // of what is divided by the largest, so that no element is too small to turn exactly
    for (size_t i = 0; i < n; i++) sum += (x[i * stride] / most) * (x[i * stride] / most);
    const double first = x[0] / most, turned = first > 0 ? -std::sqrt(sum) : std::sqrt(sum),
                 v0 = first - turned;
    alpha = turned * most;
    for (size_t i = 1; i < n; i++) x[i * stride] = x[i * stride] / most / v0;
    x[0] = 1;
    return -v0 / turned;
}

bool svdcore(const double* a, size_t m, size_t n, std::vector<double>& w, std::vector<double>& u,
             std::vector<double>& v) {
    const bool transposed = m < n;
    svdwork s{};
    s.m = std::max(m, n);
    s.n = std::min(m, n);
    const int exponent = squarescale(a, m * n);
    std::vector<double> scaled(a, a + m * n);
    if (exponent != 0)
        for (double& x : scaled) x = std::ldexp(x, -exponent);
    load(s, scaled, transposed);
    s.d.assign(s.n, 0);
    s.e.assign(s.n + 1, 0);
    std::vector<double> betau(s.n, 0), betav(s.n, 0);
    bidiagonalise(s, betau, betav);
    buildu(s, betau);
    buildv(s, betav);
    if (!diagonalise(s)) return false;
    sorted(s, w, u, v, transposed);
    zerowhatisrounding(scaled.data(), m, n, w, u, v);
    for (double& x : w) x = std::ldexp(x, exponent);
    return true;
}
