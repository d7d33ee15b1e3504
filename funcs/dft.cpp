#include "funcs/dft.h"
#include "funcs/scratch.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

using cplx = std::complex<double>;
using buffer = scratch<cplx>;

constexpr size_t LARGEFACTOR = 60; // from here a convolution is cheaper

// Real arithmetic: no product of ours needs the rules for infinities.
inline cplx times(cplx a, cplx b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// exp(-2 pi i k / n), by its octant, exact where it can be
cplx unitroot(uint64_t k, uint64_t n) {
    k %= n;
    const uint64_t octant = 8 * k / n, part = 8 * k - octant * n;
    // the distance from the nearest multiple of a quarter, in eighths of 1/n
    const double t = 2 * M_PI * (double(octant % 2 ? n - part : part) / double(8 * n));
    double c = std::cos(t), s = std::sin(t);
    if (octant % 4 == 1 || octant % 4 == 2) std::swap(c, s);
    if (octant >= 2 && octant <= 5) c = -c;
    if (octant >= 4) s = -s;
    return {c, -s};
}

// The same for many k, as products of two of a few thousand roots.
struct roottable {
    static constexpr uint64_t FINE = 2048;
    uint64_t n;
    std::vector<cplx> coarse, fine;
    explicit roottable(uint64_t length) : n(length) {
        for (uint64_t k = 0; k < n; k += FINE) coarse.push_back(unitroot(k, n));
        for (uint64_t k = 0; k < std::min(n, FINE); k++) fine.push_back(unitroot(k, n));
    }
    cplx operator()(uint64_t k) const { return times(coarse[k / FINE], fine[k % FINE]); } // k below n
};

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
            const cplx ie(e.imag(), -e.real());
            y[t] = p + o;
            y[t + f.s] = times(m + ie, w1);
            y[t + 2 * f.s] = times(p - o, w2);
            y[t + 3 * f.s] = times(m - ie, w3);
        }
    }
}

void pass3(const pass& f) {
    const double h = std::sqrt(0.75);
    for (size_t q = 0; q < f.m; q++) {
        const cplx w1 = f.root[q * f.s], w2 = f.root[2 * q * f.s];
        const cplx *a = f.x + f.s * q, *b = a + f.s * f.m, *c = b + f.s * f.m;
        cplx* y = f.y + 3 * f.s * q;
        for (size_t t = 0; t < f.s; t++) {
            const cplx p = b[t] + c[t], e = (b[t] - c[t]) * h, m = a[t] - 0.5 * p, ie(e.imag(), -e.real());
            y[t] = a[t] + p;
            y[t + f.s] = times(m + ie, w1);
            y[t + 2 * f.s] = times(m - ie, w2);
        }
    }
}

void pass5(const pass& f) {
    const double c1 = (std::sqrt(5.0) - 1) / 4, c2 = -(std::sqrt(5.0) + 1) / 4;
    const double s1 = std::sqrt(0.625 + std::sqrt(5.0) / 8), s2 = std::sqrt(0.625 - std::sqrt(5.0) / 8);
    for (size_t q = 0; q < f.m; q++) {
        const cplx *a = f.x + f.s * q, *b = a + f.s * f.m, *c = b + f.s * f.m, *d = c + f.s * f.m,
                   *e = d + f.s * f.m;
        cplx* y = f.y + 5 * f.s * q;
        const cplx w1 = f.root[q * f.s], w2 = f.root[2 * q * f.s], w3 = f.root[3 * q * f.s],
                   w4 = f.root[4 * q * f.s];
        for (size_t t = 0; t < f.s; t++) {
            const cplx p = b[t] + e[t], m = b[t] - e[t], o = c[t] + d[t], n = c[t] - d[t];
            const cplx g = a[t] + c1 * p + c2 * o, h = a[t] + c2 * p + c1 * o;
            const cplx u = s1 * m + s2 * n, v = s2 * m - s1 * n, iu(u.imag(), -u.real()),
                       iv(v.imag(), -v.real());
            y[t] = a[t] + p + o;
            y[t + f.s] = times(g + iu, w1);
            y[t + 2 * f.s] = times(h + iv, w2);
            y[t + 3 * f.s] = times(h - iv, w3);
            y[t + 4 * f.s] = times(g - iu, w4);
        }
    }
}

void passp(const pass& f, size_t p, size_t n) {
    std::vector<cplx> small(p);
    for (size_t r = 0; r < p; r++) small[r] = unitroot(r, p);
    for (size_t q = 0; q < f.m; q++)
        for (size_t r = 0; r < p; r++) {
            const cplx w = f.root[r * q * f.s % n];
            cplx* y = f.y + f.s * (p * q + r);
            for (size_t t = 0; t < f.s; t++) {
                cplx sum = f.x[t + f.s * q];
                for (size_t k = 1, turn = r; k < p; k++) {
                    sum += times(f.x[t + f.s * (q + f.m * k)], small[turn]);
                    turn += r;
                    if (turn >= p) turn -= p;
                }
                y[t] = times(sum, w);
            }
        }
}

void allroots(buffer& root) {
    const size_t n = root.size, eighth = n / 8;
    for (size_t k = 0; k < n; k++) { // the octants share their sines when 8 divides the length
        if (n % 8 || k <= eighth) {
            root[k] = unitroot(k, n);
            continue;
        }
        const size_t octant = k / eighth, part = k - octant * eighth;
        const cplx base = root[octant % 2 ? eighth - part : part];
        double c = base.real(), s = -base.imag();
        if (octant % 4 == 1 || octant % 4 == 2) std::swap(c, s);
        if (octant >= 2 && octant <= 5) c = -c;
        if (octant >= 4) s = -s;
        root[k] = {c, -s};
    }
}

// The forward transform of a length of small factors, with the roots of that length.
void mixedradix(buffer& x, buffer& other, buffer& root, const std::vector<size_t>& f) {
    const size_t n = x.size;
    size_t left = n, stride = 1;
    for (const size_t p : f) {
        const pass one{left / p, stride, x.data(), root.data(), other.data()};
        if (p == 2)
            pass2(one);
        else if (p == 3)
            pass3(one);
        else if (p == 4)
            pass4(one);
        else if (p == 5)
            pass5(one);
        else
            passp(one, p, n);
        x.swap(other);
        left /= p;
        stride *= p;
    }
}

// The forward transform by a convolution with exp(i pi k^2 / n); y takes it.
void bluestein(const cplx* x, size_t n, bool conjugated, cplx* y) {
    size_t m = 1;
    while (m < 2 * n - 1) m *= 2;
    const roottable chirp(2 * uint64_t(n));
    const auto at = [&](size_t k) { return chirp(uint64_t(k) * k % (2 * uint64_t(n))); };
    buffer a(m), b(m), other(m), root(m);
    std::fill(a.begin() + n, a.end(), cplx());
    std::fill(b.begin() + n, b.end(), cplx());
    for (size_t k = 0; k < n; k++) {
        const cplx c = at(k);
        a[k] = times(conjugated ? std::conj(x[k]) : x[k], c);
        b[k] = b[k ? m - k : 0] = std::conj(c);
    }
    const std::vector<size_t> f = factors(m);
    allroots(root);
    mixedradix(a, other, root, f);
    mixedradix(b, other, root, f);
    for (size_t k = 0; k < m; k++)
        a[k] = std::conj(times(a[k], b[k])); // the way back is the conjugate's way there
    mixedradix(a, other, root, f);
    for (size_t k = 0; k < n; k++) {
        const cplx z = times(std::conj(a[k]) / double(m), at(k));
        y[k] = conjugated ? std::conj(z) : z;
    }
}

} // namespace

void dft(cplx* x, size_t n, int sign) {
    if (n < 2) return;
    const bool conjugated = sign > 0;
    const std::vector<size_t> f = factors(n);
    if (f.back() >= LARGEFACTOR) return bluestein(x, n, conjugated, x);
    buffer work(n), other(n), root(n);
    allroots(root);
    for (size_t k = 0; k < n; k++) work[k] = conjugated ? std::conj(x[k]) : x[k];
    mixedradix(work, other, root, f);
    for (size_t k = 0; k < n; k++) x[k] = conjugated ? std::conj(work[k]) : work[k];
}

void realdft(const double* x, size_t stride, size_t n, cplx* y) {
    if (n % 2) {
        buffer z(n);
        for (size_t k = 0; k < n; k++) z[k] = x[k * stride];
        dft(z.data(), n, -1);
        std::copy_n(z.data(), n / 2 + 1, y);
        return;
    }
    const size_t half = n / 2;
    buffer z(half); // the even and the odd elements as one complex series
    for (size_t k = 0; k < half; k++) z[k] = {x[2 * k * stride], x[(2 * k + 1) * stride]};
    dft(z.data(), half, -1);
    const roottable root(n);
    for (size_t k = 0; k <= half; k++) {
        const cplx a = z[k % half], b = std::conj(z[k ? half - k : 0]);
        const cplx even = (a + b) * 0.5, odd = (a - b) * 0.5;
        const cplx turned = times({odd.imag(), -odd.real()}, k < half ? root(k) : cplx(-1));
        y[k] = even + turned;
    }
}
