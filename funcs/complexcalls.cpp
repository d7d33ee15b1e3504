/* Builtins on complex matrices, two columns (real and imaginary part) for each column of numbers, and the
 * roots of polynomials. */
#include "funcs/builtin.h"
#include "funcs/linearcalls.h"
#include "funcs/matrixoperand.h"
#include "funcs/rows.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <complex>
#include <iterator>
#include <vector>

namespace {

using cplx = std::complex<double>;
using cvec = std::vector<cplx>;

struct complexmatrix {
    size_t rows, cols;
    cvec z;
};

complexmatrix complexoperand(const callargs& a, int k) {
    const matrixoperand m(a[k]);
    if (m.cols() % 2) argshape(a.name());
    complexmatrix c{m.rows(), m.cols() / 2, cvec(m.count() / 2)};
    for (size_t i = 0; i < c.z.size(); i++) c.z[i] = {m.cell()[2 * i + 1], m.cell()[2 * i + 2]};
    return c;
}

int temporary(size_t rows, size_t cols, const cvec& z) { // std::complex lies as two doubles
    return symtabmatrix(0, 0, matrixfrom(rows, 2 * cols, reinterpret_cast<const double*>(z.data())));
}

double size1(cplx z) { return std::fabs(z.real()) + std::fabs(z.imag()); }

// Gaussian elimination with partial pivoting on a and all right sides b; false when a pivot is 0.
bool eliminate(complexmatrix& a, complexmatrix& b) {
    const size_t n = a.rows, k = b.cols;
    for (size_t c = 0; c < n; c++) {
        size_t p = c;
        for (size_t i = c + 1; i < n; i++)
            if (size1(a.z[i * n + c]) > size1(a.z[p * n + c])) p = i;
        if (size1(a.z[p * n + c]) == 0) return false;
        std::swap_ranges(&a.z[p * n], &a.z[p * n] + n, &a.z[c * n]);
        std::swap_ranges(&b.z[p * k], &b.z[p * k] + k, &b.z[c * k]);
        for (size_t i = c + 1; i < n; i++) {
            const cplx f = a.z[i * n + c] / a.z[c * n + c];
            if (f == 0.0) continue;
            for (size_t j = c + 1; j < n; j++) a.z[i * n + j] -= f * a.z[c * n + j];
            for (size_t j = 0; j < k; j++) b.z[i * k + j] -= f * b.z[c * k + j];
        }
    }
    for (size_t i = n; i-- > 0;)
        for (size_t j = 0; j < k; j++) {
            for (size_t c = i + 1; c < n; c++) b.z[i * k + j] -= a.z[i * n + c] * b.z[c * k + j];
            b.z[i * k + j] /= a.z[i * n + i];
        }
    return true;
}

int cinv(const callargs& a) {
    complexmatrix m = complexoperand(a, 1);
    if (m.rows != m.cols) argshape(a.name());
    complexmatrix x{m.rows, m.rows, cvec(m.rows * m.rows)};
    for (size_t i = 0; i < m.rows; i++) x.z[i * m.rows + i] = 1;
    if (!eliminate(m, x)) tarnerror("CINV: numerically singular matrix");
    return temporary(x.rows, x.cols, x.z);
}

int clineq(const callargs& a) {
    complexmatrix m = complexoperand(a, 1), b = complexoperand(a, 2);
    if (m.rows != m.cols || m.rows != b.rows) argshape(a.name());
    if (!eliminate(m, b)) tarnerror("CLINEQ: numerically singular matrix");
    return temporary(b.rows, b.cols, b.z);
}

using lcplx = std::complex<long double>;

// p(x) and its derivative, coefficients from the highest power; Horner's rule.
void horner(const cvec& p, lcplx x, lcplx& value, lcplx& slope) {
    value = slope = 0;
    for (const cplx c : p) {
        slope = slope * x + value;
        value = value * x + lcplx(c);
    }
}

/* All roots at once by the iteration of O. Aberth, Math. Comp. 27 (1973) 339, from points on a circle whose
 * radius bounds them; for large |x| the polynomial of 1/x, so that no power overflows. */
bool aberth(const cvec& p, cvec& roots) {
    const size_t n = p.size() - 1;
    const cvec reversed(p.rbegin(), p.rend());
    double radius = 0;
    for (size_t k = 1; k <= n; k++)
        radius = std::max(radius, 2 * std::pow(std::abs(p[k] / p[0]), 1 / double(k)));
    std::vector<lcplx> x(n);
    for (size_t k = 0; k < n; k++)
        x[k] = std::polar<long double>(radius / 2, 2 * M_PI * double(k) / double(n) + 0.4);
    std::vector<char> settled(n, 0);
    for (int step = 0; step < 500; step++) {
        bool all = true;
        for (size_t k = 0; k < n; k++) {
            if (settled[k]) continue;
            lcplx value, slope, newton;
            if (std::abs(x[k]) <= 1) {
                horner(p, x[k], value, slope);
                newton = value == lcplx(0) ? lcplx(0) : slope / value;
            } else {
                const lcplx y = lcplx(1) / x[k];
                horner(reversed, y, value, slope);
                newton = value == lcplx(0) ? lcplx(0) : y * (lcplx((long double)n) - y * slope / value);
            }
            if (value == lcplx(0)) {
                settled[k] = 1;
                continue;
            }
            for (size_t j = 0; j < n; j++)
                if (j != k && x[j] != x[k]) newton -= lcplx(1) / (x[k] - x[j]);
            const lcplx move = lcplx(1) / newton;
            if (!std::isfinite(std::abs(move))) return false;
            x[k] -= move;
            settled[k] = std::abs(move) <= 4 * LDBL_EPSILON * std::abs(x[k]);
            all = all && settled[k];
        }
        if (all) break; // the roots of a cluster creep to the end, and rest at what their coefficients tell
    }
    if (!std::all_of(x.begin(), x.end(), [](lcplx z) { return std::isfinite(std::abs(z)); })) return false;
    roots.resize(n);
    for (size_t k = 0; k < n; k++) roots[k] = cplx(x[k]);
    return true;
}

/* The roots of the polynomial with coefficients p, the highest power first, sorted by real part, then by
 * imaginary part. Roots 0 are taken off first. */
int rootsof(cvec p, const char* words) {
    if (p.size() < 2 || p[0] == 0.0)
        tarnerror("zero degree or highest coefficient equal to zero not allowed");
    const size_t n = p.size() - 1;
    const bool real = std::all_of(p.begin(), p.end(), [](cplx c) { return c.imag() == 0; });
    while (p.size() > 1 && p.back() == 0.0) p.pop_back();
    cvec roots;
    if (p.size() > 1 && !aberth(p, roots)) tarnerror("%s", words);
    roots.resize(n, 0.0);
    if (real)
        for (cplx& z : roots)
            if (std::fabs(z.imag()) <= 4 * DBL_EPSILON * std::abs(z)) z = z.real();
    std::sort(roots.begin(), roots.end(), [](cplx x, cplx y) {
        return x.real() != y.real() ? x.real() < y.real() : x.imag() < y.imag();
    });
    return temporary(n, 1, roots);
}

// PROOT(P): real coefficients in one row or column.
int proot(const callargs& a) {
    const matrixoperand m(a[1]);
    if (m.rows() != 1 && m.cols() != 1) argshape(a.name());
    return rootsof(cvec(m.cell() + 1, m.cell() + 1 + m.count()), "failed to converge");
}
// ZROOT(P): complex coefficients, one a row.
int zroot(const callargs& a) {
    const complexmatrix p = complexoperand(a, 1);
    if (p.cols != 1) argshape(a.name());
    return rootsof(p.z, "ZROOT: did not converge");
}

constexpr valuerow values[] = {{-701, cinv}, {-700, clineq}, {-678, proot}, {-629, zroot}};

} // namespace

void complexrows() { builtinadd(values, int(std::size(values))); }
