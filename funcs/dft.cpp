#include "funcs/dft.h"

#include <cmath>
#include <cstdint>

namespace {

using cplx = std::complex<double>;
using cvec = std::vector<cplx>;

constexpr size_t LARGEFACTOR = 60; // from here a convolution is cheaper

// Real arithmetic: no product of ours needs the rules for infinities.
inline cplx times(cplx a, cplx b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// exp(sign 2 pi i k / n), by its octant, exact where it can be
cplx unitroot(uint64_t k, uint64_t n, int sign) {
    k %= n;
    const uint64_t octant = 8 * k / n;
    const auto angle = [&](uint64_t num) { return 2 * M_PI * (double(num) / double(8 * n)); };
    // the distance from the nearest multiple of a quarter, in eighths of 1/n
    const uint64_t part = 8 * k - octant * n;
    const double t = angle(octant % 2 ? n - part : part);
    double c = std::cos(t), s = std::sin(t);
    if (octant % 4 == 1 || octant % 4 == 2) std::swap(c, s);
    if (octant >= 2 && octant <= 5) c = -c;
    if (octant >= 4) s = -s;
    return {c, sign * s};
}

std::vector<size_t> factors(size_t n) {
    std::vector<size_t> f;
    for (; n % 4 == 0; n /= 4) f.push_back(4);
    for (size_t p = 2; p * p <= n; p++)
        for (; n % p == 0; n /= p) f.push_back(p);
    if (n > 1) f.push_back(n);
    return f;
}

// One pass over a factor p: of the values left, m for each residue, each at the stride s of those done.
struct pass {
    size_t m, s;
    const cplx *x, *root; // root[k] for the whole length, here a multiple of s
    cplx* y;
    int sign;
};

void pass2(const pass& f) {
    for (size_t q = 0; q < f.m; q++) {
        const cplx w = f.root[q * f.s], *a = f.x + f.s * q, *b = a + f.s * f.m;
        cplx* y = f.y + 2 * f.s * q;
        for (size_t t = 0; t < f.s; t++) {
            const cplx d = a[t] - b[t];
            y[t] = a[t] + b[t];
            y[t + f.s] = times(d, w);
        }
    }
}

void pass4(const pass& f) {
    for (size_t q = 0; q < f.m; q++) {
        const cplx w1 = f.root[q * f.s], w2 = f.root[2 * q * f.s], w3 = f.root[3 * q * f.s];
        const cplx *a = f.x + f.s * q, *b = a + f.s * f.m, *c = b + f.s * f.m, *d = c + f.s * f.m;
        cplx* y = f.y + 4 * f.s * q;
        for (size_t t = 0; t < f.s; t++) {
            const cplx p = a[t] + c[t], m = a[t] - c[t], o = b[t] + d[t], e = b[t] - d[t];
            const cplx ie(-f.sign * e.imag(), f.sign * e.real());
            y[t] = p + o;
            y[t + f.s] = times(m + ie, w1);
            y[t + 2 * f.s] = times(p - o, w2);
            y[t + 3 * f.s] = times(m - ie, w3);
        }
    }
}

void passp(const pass& f, size_t p, size_t n, cvec& small) {
    small.resize(p);
    for (size_t r = 0; r < p; r++) small[r] = unitroot(r, p, f.sign);
    for (size_t q = 0; q < f.m; q++)
        for (size_t r = 0; r < p; r++) {
            const cplx w = f.root[r * q * f.s % n];
            cplx* y = f.y + f.s * (p * q + r);
            for (size_t t = 0; t < f.s; t++) {
                cplx sum = f.x[t + f.s * q];
                for (size_t k = 1, turn = r; k < p; k++, turn = (turn + r) % p)
                    sum += times(f.x[t + f.s * (q + f.m * k)], small[turn]);
                y[t] = times(sum, w);
            }
        }
}

void mixedradix(cvec& x, const std::vector<size_t>& f, int sign) {
    const size_t n = x.size();
    cvec root(n), other(n), small;
    const size_t eighth = n / 8;
    for (size_t k = 0; k < n; k++) // the octants share their sines when 8 divides the length
        root[k] = n % 8 || k <= eighth ? unitroot(k, n, sign) : cplx();
    if (n % 8 == 0)
        for (size_t k = eighth + 1; k < n; k++) {
            const size_t octant = k / eighth, part = k - octant * eighth;
            const cplx base = root[octant % 2 ? eighth - part : part];
            double c = base.real(), s = sign * base.imag();
            if (octant % 4 == 1 || octant % 4 == 2) std::swap(c, s);
            if (octant >= 2 && octant <= 5) c = -c;
            if (octant >= 4) s = -s;
            root[k] = {c, sign * s};
        }
    size_t left = n, stride = 1;
    for (const size_t p : f) {
        const pass one{left / p, stride, x.data(), root.data(), other.data(), sign};
        if (p == 2)
            pass2(one);
        else if (p == 4)
            pass4(one);
        else
            passp(one, p, n, small);
        x.swap(other);
        left /= p;
        stride *= p;
    }
}

void bluestein(cvec& x, int sign) {
    const size_t n = x.size();
    size_t m = 1;
    while (m < 2 * n - 1) m *= 2;
    cvec chirp(n), a(m), b(m);
    for (size_t k = 0; k < n; k++) {
        chirp[k] = unitroot(uint64_t(k) * k % (2 * uint64_t(n)), 2 * uint64_t(n), sign);
        a[k] = times(x[k], chirp[k]);
        b[k] = b[k ? m - k : 0] = std::conj(chirp[k]);
    }
    dft(a, -1);
    dft(b, -1);
    for (size_t k = 0; k < m; k++) a[k] = times(a[k], b[k]);
    dft(a, 1);
    for (size_t k = 0; k < n; k++) x[k] = times(a[k] / double(m), chirp[k]);
}

} // namespace

void dft(cvec& x, int sign) {
    if (x.size() < 2) return;
    const std::vector<size_t> f = factors(x.size());
    if (f.back() >= LARGEFACTOR)
        bluestein(x, sign);
    else
        mixedradix(x, f, sign);
}
