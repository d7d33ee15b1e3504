/* special/spcomplex.h - complex numbers as pairs of doubles.
 * Owns:    nothing.
 * Callers: the complex functions of special/, their dispatch.
 * Never:   checks: a division by zero gives infinities (cdivide notes it). */
#pragma once

#include <cmath>

struct spcomplex {
    double re = 0, im = 0;
};

inline spcomplex operator+(spcomplex a, spcomplex b) { return {a.re + b.re, a.im + b.im}; }
inline spcomplex operator-(spcomplex a, spcomplex b) { return {a.re - b.re, a.im - b.im}; }
inline spcomplex operator-(spcomplex a) { return {-a.re, -a.im}; }
inline spcomplex operator*(spcomplex a, spcomplex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
inline spcomplex operator*(spcomplex a, double b) { return {a.re * b, a.im * b}; }
inline spcomplex operator*(double a, spcomplex b) { return b * a; }
inline spcomplex operator/(spcomplex a, double b) { return {a.re / b, a.im / b}; }
// R. L. Smith's division (Comm. ACM 5 (1962) 435), safe from overflow on the way.
inline spcomplex operator/(spcomplex a, spcomplex b) {
    if (std::fabs(b.re) >= std::fabs(b.im)) {
        const double r = b.im / b.re, d = b.re + b.im * r;
        return {(a.re + a.im * r) / d, (a.im - a.re * r) / d};
    }
    const double r = b.re / b.im, d = b.re * r + b.im;
    return {(a.re * r + a.im) / d, (a.im * r - a.re) / d};
}
inline spcomplex conjugate(spcomplex a) { return {a.re, -a.im}; }
inline spcomplex timesi(spcomplex a) { return {-a.im, a.re}; }
inline double magnitude(spcomplex a) { return std::hypot(a.re, a.im); }
inline double argument(spcomplex a) { return std::atan2(a.im, a.re); }
inline spcomplex polar(double r, double angle) { return {r * std::cos(angle), r * std::sin(angle)}; }
