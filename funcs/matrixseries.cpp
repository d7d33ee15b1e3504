/* Builtins of series: Fourier transforms, correlation, deconvolution, histograms, common divisors. */
#include "funcs/builtin.h"
#include "funcs/dft.h"
#include "funcs/linalg.h"
#include "funcs/matrixoperand.h"
#include "funcs/matrixresult.h"
#include "funcs/rows.h"
#include "funcs/scratch.h"
#include "interp/base/fpfault.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace {

using vec = std::vector<double>;
using cvec = std::vector<std::complex<double>>;

constexpr size_t DIRECTLAGS = 256; // shorter series are correlated by plain sums

void needdftcolumns(const matrixoperand& m) {
    if (m.cols() < 1 || m.cols() > 4) tarnerror("DFT functions require a 1, 2, 3, or 4 column matrix");
}

// The transform of a real column as two columns of the result, the inverse divided by the length.
void transformreal(const matrixoperand& m, int sign, double* to) {
    const size_t n = m.rows();
    scratch<std::complex<double>> y(n / 2 + 1);
    realdft(m.cell() + 1, 1, n, y.data());
    const double scale = sign > 0 ? double(n) : 1;
    for (size_t k = 0; k < n; k++) {
        const bool upper = k > n / 2; // the conjugate of an element of the lower half
        const std::complex<double> z = y[upper ? n - k : k];
        to[2 * k] = fpcheck(z.real() / scale);
        to[2 * k + 1] = fpcheck((upper != (sign > 0) ? -z.imag() : z.imag()) / scale) + 0.0; // no -0
    }
}

// The same for columns re and re + 1 of m, to those of the result.
void transformcomplex(const matrixoperand& m, size_t re, int sign, double* to) {
    const size_t n = m.rows(), cols = m.cols();
    scratch<std::complex<double>> x(n);
    const double* from = m.cell() + 1 + re;
    for (size_t i = 0; i < n; i++) x[i] = {from[i * cols], from[i * cols + 1]};
    dft(x.data(), n, sign);
    const double scale = sign > 0 ? double(n) : 1;
    for (size_t i = 0; i < n; i++) {
        to[i * cols + re] = fpcheck(x[i].real() / scale);
        to[i * cols + re + 1] = fpcheck(x[i].imag() / scale) + 0.0;
    }
}

/* DFT(M) and IDFT(M). One column: a real series; two: real and imaginary parts; three: equally spaced times
 * (or frequencies), real and imaginary parts, and the result begins with frequencies (times); four: two
 * complex series. The inverse divides by the length. */
int transform(const callargs& a, int sign) {
    const matrixoperand m(a[1]);
    needdftcolumns(m);
    const size_t n = m.rows(), cols = m.cols();
    harrayptr result(harrayraw(m.m->rows, cols == 1 ? 2 : m.m->cols));
    double* to = cells(result.get()) + 1;
    if (n > 0 && cols == 1) transformreal(m, sign, to);
    for (size_t re = cols % 2; re < cols && cols > 1; re += 2) transformcomplex(m, re, sign, to);
    if (cols == 3) {
        const double span = n > 1 ? m.cell()[1 + (n - 1) * 3] - m.cell()[1] : 0, step = span / double(n - 1);
        for (size_t i = 0; i < n; i++) to[i * 3] = n > 1 ? fpdiv(double(i), step * double(n)) : 0;
    }
    return symtabmatrix(0, 0, std::move(result));
}
int forward(const callargs& a) { return transform(a, -1); }
int backward(const callargs& a) { return transform(a, 1); }

// RDFT(M): the first half, from 0 to half the length, of the transform of each column, a real series; two
// columns of the result for each.
int realforward(const callargs& a) {
    const matrixoperand m(a[1]);
    needdftcolumns(m);
    const size_t n = m.rows(), cols = m.cols(), half = n ? n / 2 + 1 : 0;
    harrayptr result(harrayraw(uint32_t(half), uint32_t(2 * cols)));
    double* to = cells(result.get()) + 1;
    scratch<std::complex<double>> y(half);
    for (size_t j = 0; j < cols && n > 0; j++) {
        realdft(m.cell() + 1 + j, cols, n, y.data());
        for (size_t i = 0; i < half; i++) {
            to[i * 2 * cols + 2 * j] = fpcheck(y[i].real());
            to[i * 2 * cols + 2 * j + 1] = fpcheck(y[i].imag()) + 0.0;
        }
    }
    return symtabmatrix(0, 0, std::move(result));
}

vec centred(vec x) {
    double sum = 0, rest = 0;
    for (const double t : x) sum += t;
    const double mean = x.empty() ? 0 : sum / double(x.size());
    for (const double t : x) rest += t - mean;
    for (double& t : x) t -= mean + rest / double(x.size());
    return x;
}

// Element n + k: the sum over t of x[t + k] y[t], k from -n to n.
vec laggedsums(const vec& x, const vec& y) {
    const size_t n = x.size();
    vec sums(2 * n + 1, 0.0);
    if (n <= DIRECTLAGS) {
        for (size_t t = 0; t < n; t++)
            for (size_t s = 0; s < n; s++) sums[n + s - t] += x[s] * y[t];
        return sums;
    }
    size_t m = 1;
    while (m < 2 * n) m *= 2;
    cvec f(m), g(m);
    for (size_t t = 0; t < n; t++) {
        f[t] = x[t];
        g[t] = y[t];
    }
    dft(f, -1);
    dft(g, -1);
    for (size_t k = 0; k < m; k++) f[k] *= std::conj(g[k]);
    dft(f, 1);
    for (size_t k = 0; k < n; k++) {
        sums[n + k] = f[k].real() / double(m);
        if (k) sums[n - k] = f[m - k].real() / double(m);
    }
    return sums;
}

double sumofsquares(const vec& x) {
    double sum = 0;
    for (const double t : x) sum += t * t;
    return sum;
}

// By a power of two, so that no square leaves the range.
vec scaled(vec x) {
    const int e = squarescale(x.data(), x.size());
    for (double& t : x) t = std::ldexp(t, -e);
    return x;
}

/* Rows of a lag k = -n..n and the sum of (x[t + k] - mean of x)(y[t] - mean of y) over t, divided by n for
 * the covariance, by the root of the product of the sums of squares for the correlation. */
int crosslags(const callargs& a, bool correlation) {
    const matrixoperand mx(a[1]), my(a[2]);
    if (mx.cols() != 1 || my.cols() != 1 || mx.rows() != my.rows() || mx.rows() == 0) argshape(a.name());
    vec x = centred(columnof(mx, 0)), y = centred(columnof(my, 0));
    if (correlation) x = scaled(std::move(x)), y = scaled(std::move(y));
    const vec sums = laggedsums(x, y);
    const size_t n = x.size();
    const double below = correlation ? std::sqrt(sumofsquares(x)) * std::sqrt(sumofsquares(y)) : double(n);
    vec result(sums.size() * 2);
    for (size_t k = 0; k < sums.size(); k++) {
        result[2 * k] = double(k) - double(n);
        result[2 * k + 1] = fpdiv(sums[k], below);
    }
    return matrixresult(sums.size(), 2, result);
}
int crosscorr(const callargs& a) { return crosslags(a, true); }
int crosscov(const callargs& a) { return crosslags(a, false); }

// CORR(M): the correlations of the columns with each other.
int corr(const callargs& a) {
    const matrixoperand m(a[1]);
    const size_t n = m.rows(), cols = m.cols();
    std::vector<vec> x(cols);
    for (size_t j = 0; j < cols; j++) {
        x[j] = scaled(centred(columnof(m, j)));
        const double size = std::sqrt(sumofsquares(x[j]));
        for (double& t : x[j]) t = size > 0 ? t / size : 0;
    }
    vec result(cols * cols);
    for (size_t j = 0; j < cols; j++)
        for (size_t k = 0; k < cols; k++) {
            double sum = 0;
            for (size_t i = 0; i < n; i++) sum += x[j][i] * x[k][i];
            result[j * cols + k] = j == k && sum > 0 ? 1 : std::clamp(sum, -1.0, 1.0);
        }
    return matrixresult(cols, cols, result);
}

/* DECONV(A, B): X with as many rows as A whose convolution with B begins with A. The Toeplitz matrix of B is
 * lower triangular, so that its factors are itself and the unit matrix. */
int deconv(const callargs& a) {
    const matrixoperand y(a[1]), b(a[2]);
    if (y.cols() != 1 || b.cols() != 1 || b.rows() == 0) argshape(a.name());
    if (b.cell()[1] == 0) tarnerror("diagonal must not be zero");
    const size_t n = y.rows();
    vec x(n);
    for (size_t i = 0; i < n; i++) {
        double sum = y.cell()[i + 1];
        for (size_t k = 1; k <= std::min(i, b.rows() - 1); k++) sum -= b.cell()[k + 1] * x[i - k];
        x[i] = sum / b.cell()[1];
        if (!fpfinite(x[i])) tarnerror("DECONV: singular toeplitz matrix");
    }
    return matrixresult(n, 1, x);
}

vec equalbuckets(const matrixoperand& m, double count) {
    const auto [least, most] = std::minmax_element(m.cell() + 1, m.cell() + 1 + m.count());
    const size_t k = size_t(count);
    vec bounds(k + 1);
    for (size_t i = 0; i <= k; i++) {
        const double part = double(i) / double(k);
        bounds[i] = *least * (1 - part) + *most * part;
    }
    bounds[k] = *most;
    return bounds;
}

/* HISTO(M, k): k equal buckets from the smallest element to the largest; HISTO(M, B): the buckets between the
 * elements of B in ascending order. A row for each: its middle and the number of elements in it. A bucket
 * holds its lower bound, the last one both. */
int histo(const callargs& a) {
    const matrixoperand m(a[1]);
    const bool bounded = a[2] > 0 && sym(a[2]).type == MATRIX;
    vec bounds;
    if (bounded) {
        const matrixoperand b(a[2]);
        if (b.count() == 0) tarnerror("HISTO: bucket matrix must have positive size");
        bounds.assign(b.cell() + 1, b.cell() + 1 + b.count());
        std::sort(bounds.begin(), bounds.end());
    } else {
        const double count = std::trunc(a.scalar(2));
        if (!(count >= 1 && count <= 1e7) || m.count() == 0) argrange(a.name());
        bounds = equalbuckets(m, count);
    }
    const size_t k = bounds.size() - 1;
    vec result(k * 2, 0.0);
    for (size_t i = 0; i < k; i++) result[2 * i] = bounds[i] / 2 + bounds[i + 1] / 2;
    for (size_t i = 1; i <= m.count() && k > 0; i++) {
        const double x = m.cell()[i];
        if (x < bounds[0] || x > bounds[k]) continue;
        const size_t above = size_t(std::upper_bound(bounds.begin(), bounds.end(), x) - bounds.begin());
        result[2 * (std::min(above, k) - 1) + 1]++;
    }
    return matrixresult(k, 2, result);
}

/* BARGRAPH(M, w): the outline of bars for the rows (x, height) of M, as a curve of four points a bar; of one
 * column the heights at 1, 2... The width is w, without it the smallest distance of two bars. */
int bargraph(const callargs& a) {
    const matrixoperand m(a[1]);
    const size_t n = m.rows(), cols = m.cols();
    if (cols < 1) argshape(a.name());
    vec x(n), y(n);
    for (size_t i = 0; i < n; i++) {
        x[i] = cols == 1 ? double(i + 1) : m.cell()[1 + i * cols];
        y[i] = m.cell()[1 + i * cols + (cols > 1)];
    }
    vec order = x;
    std::sort(order.begin(), order.end());
    double width = MAXPOS;
    for (size_t i = 1; i < n; i++)
        if (order[i] > order[i - 1]) width = std::min(width, order[i] - order[i - 1]);
    width = a.scalar(2, width == MAXPOS ? 1 : width);
    if (!(width > 0)) argrange(a.name());
    vec curve;
    for (size_t i = 0; i < n; i++)
        for (const auto& [side, height] :
             {std::pair{-0.5, 0.0}, std::pair{-0.5, y[i]}, std::pair{0.5, y[i]}, std::pair{0.5, 0.0}}) {
            curve.push_back(x[i] + side * width);
            curve.push_back(height);
        }
    return matrixresult(4 * n, 2, curve);
}

/* EGCD(a, b...): the greatest common divisor g of integers (scalars, or the elements of matrices), then for
 * each a coefficient, so that their sum of products is g. (Extended Euclid: D. E. Knuth, The Art of Computer
 * Programming 2, 4.5.2.) */
int egcd(const callargs& a) {
    vec n;
    for (int k = 1; k <= a.n; k++) {
        const matrixoperand m(a[k]);
        n.insert(n.end(), m.cell() + 1, m.cell() + 1 + m.count());
    }
    if (n.empty()) argrange(a.name());
    vec result(n.size() + 1, 0.0);
    double g = 0;
    for (size_t k = 0; k < n.size(); k++) {
        if (!(std::fabs(n[k]) < 0x1p53) || n[k] != std::trunc(n[k])) argrange(a.name());
        double r0 = g, r1 = n[k], s0 = 1, s1 = 0, t0 = 0, t1 = 1; // r = s g + t n[k]
        while (r1 != 0) {
            const double q = std::trunc(r0 / r1);
            r0 = std::exchange(r1, std::fma(-q, r1, r0));
            s0 = std::exchange(s1, s0 - q * s1);
            t0 = std::exchange(t1, t0 - q * t1);
        }
        const double sign = r0 < 0 ? -1 : 1;
        g = sign * r0;
        for (size_t i = 0; i < k; i++) result[i + 1] *= sign * s0;
        result[k + 1] = sign * t0;
    }
    for (double& x : result) x += 0.0;
    result[0] = g;
    return matrixresult(result.size(), 1, result);
}

constexpr valuerow values[] = {{-603, forward},   {-604, backward}, {-605, realforward}, {-609, deconv},
                               {-610, crosscorr}, {-612, crosscov}, {-615, corr},        {-616, histo},
                               {-633, bargraph},  {-624, egcd}};

} // namespace

void matrixseriesrows() { builtinadd(values, int(std::size(values))); }
