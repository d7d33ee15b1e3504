// The vectors of EIGEN, from the quasi-triangular form that eigencore.cpp makes.
#include "funcs/eigenimpl.h"
#include "funcs/vectorloops.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <climits>
#include <cmath>
#include <complex>
#include <utility>

namespace {

using cplx = std::complex<double>;

/* The vector of one eigenvalue of the quasi-triangular form, by substitution from row `top` down to the
 * first; re and im hold it (im stays 0 for a real one). */
struct backsubstitution {
    eigenwork& w;
    const std::vector<double>& wi;
    double least; // a divisor no smaller than this
    std::vector<double> re, im;

    cplx residual(size_t i, size_t from, size_t to, bool complex) {
        const double* t = w.row(i) + from;
        const size_t k = to - from + 1;
        return {dotproduct(k, t, &re[from]), complex ? dotproduct(k, t, &im[from]) : 0};
    }
    cplx divided(cplx a, cplx b) const { return a / (std::abs(b) < least ? cplx(least, 0) : b); }
    // Two equations, m row by row, by elimination from the largest coefficient: only the last pivot may be
    // lifted, or the two unknowns would not fit each other.
    std::pair<cplx, cplx> pairsolved(std::array<cplx, 4> m, cplx f, cplx g) const {
        const size_t big = size_t(
            std::max_element(m.begin(), m.end(), [](cplx a, cplx b) { return std::abs(a) < std::abs(b); }) -
            m.begin());
        if (big >= 2) { // from the second row
            std::swap(m[0], m[2]);
            std::swap(m[1], m[3]);
            std::swap(f, g);
        }
        if (big % 2) { // for the second unknown
            std::swap(m[0], m[1]);
            std::swap(m[2], m[3]);
        }
        const cplx pivot = std::abs(m[0]) < least ? cplx(least) : m[0], l = m[2] / pivot;
        const cplx second = divided(g - l * f, m[3] - l * m[1]), first = (f - m[1] * second) / pivot;
        return big % 2 ? std::pair(second, first) : std::pair(first, second);
    }
    void put(size_t i, cplx x) {
        re[i] = x.real();
        im[i] = x.imag();
    }
    void rescale(size_t from, size_t to) {
        double most = 0;
        for (size_t i = from; i <= from + 1 && i <= to; i++)
            most = std::max({most, std::fabs(re[i]), std::fabs(im[i])});
        if (most < 0x1p300) return;
        for (size_t i = from; i <= to; i++) {
            re[i] /= most;
            im[i] /= most;
        }
    }
    void solve(size_t next, size_t top, cplx lambda) { // rows next - 1 down to 0
        const bool complex = lambda.imag() != 0;
        for (size_t i = next; i-- > 0;) {
            const cplx r = residual(i, next, top, complex);
            if (wi[i] == 0) {
                put(i, divided(-residual(i, i + 1, top, complex), w.at(i, i) - lambda));
                rescale(i, top);
                next = i;
                continue;
            }
            const size_t k = i - 1; // the pair of rows k and i
            const cplx f = -residual(k, i + 1, top, complex);
            const auto [xk, xi] =
                pairsolved({w.at(k, k) - lambda, w.at(k, i), w.at(i, k), w.at(i, i) - lambda}, f, -r);
            put(k, xk);
            put(i, xi);
            rescale(k, top);
            next = k;
            i = k;
        }
    }
};

// Each component times its power of two, and all times one that brings the largest near 1: none is lost on
// the way.
void rescaled(const std::vector<double>& scale, std::vector<double>& re, std::vector<double>& im) {
    const auto exponent = [&](size_t i) { return std::ilogb(std::max(std::fabs(re[i]), std::fabs(im[i]))); };
    int most = INT_MIN;
    for (size_t i = 0; i < re.size(); i++)
        if (re[i] != 0 || im[i] != 0) most = std::max(most, exponent(i) + std::ilogb(scale[i]));
    if (most == INT_MIN) return;
    for (size_t i = 0; i < re.size(); i++) {
        re[i] = std::ldexp(re[i], std::ilogb(scale[i]) - most);
        im[i] = std::ldexp(im[i], std::ilogb(scale[i]) - most);
    }
}

// Unit length; of a complex vector the largest component real.
void normalise(std::vector<double>& re, std::vector<double>& im, bool complex) {
    double most = 0;
    cplx largest = 1;
    for (size_t i = 0; i < re.size(); i++) {
        const double size = complex ? std::hypot(re[i], im[i]) : std::fabs(re[i]);
        if (size > most) {
            most = size;
            largest = {re[i], im[i]};
        }
    }
    if (most == 0) return;
    double sum = 0;
    for (size_t i = 0; i < re.size(); i++)
        sum += (re[i] / most) * (re[i] / most) + (complex ? (im[i] / most) * (im[i] / most) : 0);
    const double length = most * std::sqrt(sum);
    const cplx turn = complex ? std::conj(largest / most) : cplx(1, 0);
    for (size_t i = 0; i < re.size(); i++) {
        const cplx z = cplx(re[i] / length, im[i] / length) * turn;
        re[i] = z.real();
        im[i] = complex ? z.imag() : 0;
    }
}

// The last components of a vector: 1, or of a pair what its 2 by 2 block gives.
void begin(backsubstitution& b, size_t en, size_t top, cplx lambda) {
    b.re.assign(b.w.n, 0);
    b.im.assign(b.w.n, 0);
    if (en == top) {
        b.re[en] = 1;
        return;
    }
    const double a = b.w.at(en, en), up = b.w.at(en, top), down = b.w.at(top, en), d = b.w.at(top, top);
    const bool upper = std::fabs(up) >= std::fabs(down);
    b.put(en, upper ? cplx(up) : lambda - d);
    b.put(top, upper ? lambda - a : cplx(down));
}

void putcolumn(size_t n, size_t j, const std::vector<double>& x, double sign, std::vector<double>& v) {
    for (size_t i = 0; i < n; i++) v[i * n + j] = sign * x[i];
}

} // namespace

void eigenvectors(eigenwork& w, double norm, const std::vector<double>& wr, const std::vector<double>& wi,
                  std::vector<double>& vr, std::vector<double>& vi) {
    const size_t n = w.n;
    backsubstitution b{w, wi, std::max(DBL_EPSILON * norm, DBL_MIN), {}, {}};
    vr.assign(n * n, 0);
    vi.assign(n * n, 0);
    std::vector<double> re(n), im(n);
    for (size_t en = 0; en < n; en++) {
        const bool complex = wi[en] != 0;
        const size_t top = complex ? en + 1 : en; // of a pair the first has the positive imaginary part
        const cplx lambda(wr[en], wi[en]);
        begin(b, en, top, lambda);
        b.solve(en, top, lambda);
        std::fill(re.begin(), re.end(), 0.0);
        std::fill(im.begin(), im.end(), 0.0);
        for (size_t k = 0; k <= top; k++) {
            axpy(n, b.re[k], &w.zt[k * n], re.data());
            if (complex) axpy(n, b.im[k], &w.zt[k * n], im.data());
        }
        rescaled(w.scale, re, im);
        normalise(re, im, complex);
        putcolumn(n, en, re, 1, vr);
        putcolumn(n, en, im, 1, vi);
        if (!complex) continue;
        en = top;
        putcolumn(n, en, re, 1, vr);
        putcolumn(n, en, im, -1, vi);
    }
}
