/* special/doubledouble.h - numbers of about 32 digits as unevaluated sums of two doubles.
 * Owns:    nothing; the arithmetic of Dekker (Numer. Math. 18, 1971) and Knuth (TAOCP 2, 4.2.2).
 * Callers: routines of special/, stats/ and solvers/ whose sums cancel.
 * Never:   handles overflow: magnitudes stay below 1e290; needs arithmetic that is not fused or reordered. */
#pragma once

#include <cmath>

struct dd {
    double hi, lo;
    constexpr dd(double h = 0, double l = 0) : hi(h), lo(l) {}
};

// The exact sum and product of two doubles.
constexpr dd ddsum(double a, double b) {
    const double s = a + b, t = s - a;
    return {s, (a - (s - t)) + (b - t)};
}
constexpr dd ddquicksum(double a, double b) { // needs |a| >= |b| or a = 0
    const double s = a + b;
    return {s, b - (s - a)};
}
constexpr dd ddprod(double a, double b) {
    constexpr double split = 134217729.0; // 2^27 + 1
    const double p = a * b, ta = split * a, tb = split * b;
    const double ah = ta - (ta - a), al = a - ah, bh = tb - (tb - b), bl = b - bh;
    return {p, ((ah * bh - p) + ah * bl + al * bh) + al * bl};
}

constexpr dd operator-(dd a) { return {-a.hi, -a.lo}; }
constexpr dd operator+(dd a, dd b) {
    const dd s = ddsum(a.hi, b.hi), t = ddsum(a.lo, b.lo);
    const dd u = ddquicksum(s.hi, s.lo + t.hi);
    return ddquicksum(u.hi, u.lo + t.lo);
}
constexpr dd operator-(dd a, dd b) { return a + -b; }
constexpr dd operator*(dd a, dd b) {
    const dd p = ddprod(a.hi, b.hi);
    return ddquicksum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}
constexpr dd operator*(dd a, double b) {
    const dd p = ddprod(a.hi, b);
    return ddquicksum(p.hi, p.lo + a.lo * b);
}
constexpr dd operator*(double a, dd b) { return b * a; }
constexpr dd operator/(dd a, dd b) {
    const double q1 = a.hi / b.hi;
    dd r = a - b * q1;
    const double q2 = r.hi / b.hi;
    r = r - b * q2;
    return ddquicksum(q1, q2) + dd(r.hi / b.hi);
}
inline dd& operator+=(dd& a, dd b) { return a = a + b; }
inline dd& operator-=(dd& a, dd b) { return a = a - b; }
inline dd& operator*=(dd& a, dd b) { return a = a * b; }
inline dd& operator/=(dd& a, dd b) { return a = a / b; }
inline bool operator<(dd a, dd b) { return a.hi < b.hi || (a.hi == b.hi && a.lo < b.lo); }
inline double todouble(dd a) { return a.hi + a.lo; }
inline dd fabs(dd a) { return a.hi < 0 || (a.hi == 0 && a.lo < 0) ? -a : a; }
inline dd ddscale(dd a, int power) { return {std::ldexp(a.hi, power), std::ldexp(a.lo, power)}; }

inline constexpr dd DDPI{3.141592653589793116, 1.2246467991473532072e-16};
inline constexpr dd DDLN2{0.6931471805599453, 2.3190468138462996e-17};
inline constexpr dd DDEULER{0.5772156649015329, -4.942915152430645e-18};

// Good to about 1e-31 relative (ddlog: absolute where the result is below 1).
dd ddsqrt(dd a);
dd ddexp(dd a); // 0 below, about MAXPOS above the range of doubles
dd ddlog(dd a); // a > 0

void ddsincos(dd a, dd* s, dd* c); // |a| below 1e6
dd ddsinpi(dd a);
// The logarithm of |Gamma(a)|; `sign`, unless null, gets the sign of Gamma. A pole gives sign 0.
dd ddloggamma(dd a, int* sign = nullptr);
// 1/Gamma(a), 0 at the poles; a result beyond the doubles is 0 or about MAXPOS.
dd ddrgamma(dd a);

// Complex numbers with such parts.
struct ddcomplex {
    dd re, im;
};
inline ddcomplex operator+(ddcomplex a, ddcomplex b) { return {a.re + b.re, a.im + b.im}; }
inline ddcomplex operator-(ddcomplex a, ddcomplex b) { return {a.re - b.re, a.im - b.im}; }
inline ddcomplex operator*(ddcomplex a, ddcomplex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
inline ddcomplex operator*(ddcomplex a, dd b) { return {a.re * b, a.im * b}; }
inline ddcomplex operator/(ddcomplex a, dd b) { return {a.re / b, a.im / b}; }
inline ddcomplex operator/(ddcomplex a, ddcomplex b) {
    const double size = std::fmax(std::fabs(b.re.hi), std::fabs(b.im.hi));
    if ((size < 1e-100 && size > 0) ||
        (size > 1e100 && std::isfinite(size))) { // its square would leave the doubles
        const int power = std::ilogb(size);
        const ddcomplex q = a / ddcomplex{ddscale(b.re, -power), ddscale(b.im, -power)};
        return {ddscale(q.re, -power), ddscale(q.im, -power)};
    }
    const dd n = b.re * b.re + b.im * b.im;
    return {(a.re * b.re + a.im * b.im) / n, (a.im * b.re - a.re * b.im) / n};
}
