// Elementary functions of a complex argument; the inverse ones after W. Kahan, "Branch cuts for complex
// elementary functions" (in: The State of the Art in Numerical Analysis, 1987).
#include "special/complexfn.h"
#include "special/complexrange.h"
#include "special/doubledouble.h"
#include "special/elementary.h"

#include <cmath>

spcomplex cdivide(spcomplex a, spcomplex b) {
    if (b.re == 0 && b.im == 0) {
        spnote(SPERR, "complex division by zero");
        return {};
    }
    return a / b;
}

spcomplex cexpfn(spcomplex z) {
    if (z.im == 0) return {std::exp(z.re), 0};
    const double half = std::exp(z.re / 2); // in two steps: a part may be finite where exp is not
    return {half * (half * std::cos(z.im)), half * (half * std::sin(z.im))};
}

spcomplex csqrtfn(spcomplex z) {
    if (z.re == 0 && z.im == 0) return {};
    const double big = std::fmax(std::fabs(z.re), std::fabs(z.im));
    const int even = std::isfinite(big) ? std::ilogb(big) / 2 * 2 : 0;
    const double x = std::ldexp(z.re, -even), y = std::ldexp(z.im, -even);
    const double t = std::sqrt((std::fabs(x) + std::hypot(x, y)) / 2);
    const spcomplex r =
        x >= 0 ? spcomplex{t, y / (2 * t)} : spcomplex{std::fabs(y) / (2 * t), std::copysign(t, y)};
    return {std::ldexp(r.re, even / 2), std::ldexp(r.im, even / 2)};
}

namespace {

// log|z|; near the unit circle from |z|^2 - 1 without cancellation.
double logmagnitude(double x, double y) {
    const double big = std::fmax(std::fabs(x), std::fabs(y));
    if (big < 0.5 || big > 1.5) return std::log(std::hypot(x, y));
    const dd over = ddprod(x, x) - 1.0 + ddprod(y, y);
    return over.hi > -0.5 ? std::log1p(over.hi) / 2 : std::log(std::hypot(x, y));
}

// Without the zeros of negative sign, which would lie below a cut (or left of it).
spcomplex unsignedzeros(spcomplex z) { return {z.re + 0.0, z.im + 0.0}; }

spcomplex reciprocal(spcomplex z) { return unsignedzeros(cdivide({1, 0}, z)); }

spcomplex csinh(spcomplex z) {
    const double s = std::sin(z.im), c = std::cos(z.im);
    if (std::fabs(z.re) < 700) return {std::sinh(z.re) * c, z.im == 0 ? 0 : std::cosh(z.re) * s};
    const double half = std::exp(std::fabs(z.re) / 2), sign = z.re < 0 ? -1 : 1;
    return {sign * half * (half / 2 * c), half * (half / 2 * s)};
}
spcomplex ccosh(spcomplex z) {
    const double s = std::sin(z.im), c = std::cos(z.im);
    if (std::fabs(z.re) < 700) return {std::cosh(z.re) * c, z.im == 0 ? 0 : std::sinh(z.re) * s};
    const double half = std::exp(std::fabs(z.re) / 2), sign = z.re < 0 ? -1 : 1;
    return {half * (half / 2 * c), sign * half * (half / 2 * s)};
}
spcomplex ctanh(spcomplex z) { // over sinh(x)^2 + cos(y)^2
    const double s = std::sin(z.im), c = std::cos(z.im);
    if (std::fabs(z.re) > 20) return {z.re < 0 ? -1.0 : 1.0, 4 * s * c * std::exp(-2 * std::fabs(z.re))};
    const double sh = std::sinh(z.re), d = sh * sh + c * c;
    if (d == 0) return cdivide({1, 0}, {});
    return {sh * std::cosh(z.re) / d, s * c / d};
}

// f(z) = -i g(i z), which ties circular and hyperbolic functions.
template <class F> spcomplex turned(F g, spcomplex z) { return -timesi(g(timesi(z))); }

// 1/sinh and 1/cosh, which underflow where those overflow.
spcomplex ccosech(spcomplex z) {
    if (std::fabs(z.re) < 20) return reciprocal(csinh(z));
    const double twice = 2 * std::exp(-std::fabs(z.re)), sign = z.re < 0 ? -1 : 1;
    return {sign * twice * std::cos(z.im), -twice * std::sin(z.im)};
}
spcomplex csech(spcomplex z) {
    if (std::fabs(z.re) < 20) return reciprocal(ccosh(z));
    const double twice = 2 * std::exp(-std::fabs(z.re)), sign = z.re < 0 ? -1 : 1;
    return {twice * std::cos(z.im), -sign * twice * std::sin(z.im)};
}
spcomplex ccosec(spcomplex z) { return timesi(ccosech(timesi(z))); }
spcomplex csec(spcomplex z) { return csech(timesi(z)); }

spcomplex csin(spcomplex z) { return turned(csinh, z); }
spcomplex ccos(spcomplex z) { return ccosh(timesi(z)); }
spcomplex ctan(spcomplex z) { return turned(ctanh, z); }

// The cuts keep odd functions odd: the left one is continued from above, the right one from below.
spcomplex oncut(spcomplex z, spcomplex f) { return z.im == 0 && z.re > 1 ? conjugate(f) : f; }

// A number with its distances to the branch points. That of a reciprocal 1/v keeps the digits of v next to
// them.
struct sided {
    spcomplex z, below, above; // z, 1 - z, 1 + z
};
sided direct(spcomplex z) { return {z, {1 - z.re, -z.im}, {1 + z.re, z.im}}; }
sided inverse(spcomplex v) {
    sided s = direct(reciprocal(v));
    if (magnitude(v) > 2 || magnitude(v) < 0.5) return s;
    s.below = spcomplex{v.re - 1, v.im} / v;
    s.above = spcomplex{v.re + 1, v.im} / v;
    if (s.z.im == 0) s.below.im = -0.0, s.above.im = 0;
    return s;
}

spcomplex arcsine(const sided& s) {
    const spcomplex minus = csqrtfn(s.below), plus = csqrtfn(s.above);
    const spcomplex f = {std::atan2(s.z.re, (minus * plus).re), std::asinh((conjugate(minus) * plus).im)};
    return oncut(s.z, f);
}
spcomplex arccosine(const sided& s) {
    const spcomplex minus = csqrtfn(s.below), plus = csqrtfn(s.above);
    const spcomplex f = {2 * std::atan2(minus.re, plus.re), std::asinh((conjugate(plus) * minus).im)};
    return oncut(s.z, f);
}
spcomplex areacosine(const sided& s) {
    const spcomplex minus = csqrtfn({-s.below.re, -s.below.im}), plus = csqrtfn(s.above);
    return {std::asinh((conjugate(minus) * plus).re), 2 * std::atan2(minus.im, plus.re)};
}
spcomplex casin(spcomplex z) { return arcsine(direct(z)); }
spcomplex casinh(spcomplex z) { return turned(casin, z); }
spcomplex cacosech(spcomplex z) { // i/z is the reciprocal of -i z
    return -timesi(arcsine(inverse(unsignedzeros(-timesi(z)))));
}

spcomplex catanh(spcomplex z) {
    const double x = std::fabs(z.re), y = z.im;
    if (x == 1 && y == 0) return cdivide({1, 0}, {});
    const double big = std::hypot(x, y);
    if (big > 1e150) { // 1/z and pi/2
        const double re = x / big / big;
        return oncut(z, {z.re < 0 ? -re : re, y < 0 ? -PI / 2 : PI / 2});
    }
    const double re = std::log1p(4 * x / ((1 - x) * (1 - x) + y * y)) / 4;
    const double im = std::atan2(2 * y, (1 - x) * (1 + x) - y * y) / 2;
    return oncut(z, {z.re < 0 ? -re : re, im});
}
spcomplex catan(spcomplex z) { return turned(catanh, z); }

// artanh(1/z): the real part is that of artanh(z), the imaginary one half the angle of (z + 1)/(z - 1).
spcomplex cacotanh(spcomplex z) {
    const double x = z.re, y = z.im, away = std::fmin(std::fabs(x - 1), std::fabs(x + 1));
    if (std::fmax(away, std::fabs(y)) > 0.5) return catanh(reciprocal(z));
    const double re = catanh(z).re;
    if (y == 0) return {re, std::fabs(x) >= 1 ? 0 : x > 0 ? -PI / 2 : PI / 2};
    return {re, std::atan2(-2 * y, (x - 1) * (x + 1) + y * y) / 2};
}
spcomplex cacotan(spcomplex z) {
    if (z.re == 0 && z.im == 0) return {PI / 2, 0};
    return -timesi(cacotanh(unsignedzeros(-timesi(z))));
}

} // namespace

spcomplex clogfn(spcomplex z) {
    if (z.re == 0 && z.im == 0) {
        rangewarn("CLOG");
        return {MAXNEG, 0};
    }
    return {logmagnitude(z.re, z.im), argument({z.re, z.im + 0.0})};
}

spcomplex clnrel(spcomplex z) {
    if (z.re == -1 && z.im == 0) {
        rangewarn("CLNREL");
        return {MAXNEG, 0};
    }
    const spcomplex one = {1 + z.re, z.im};
    if (magnitude(one) < 1.5e-8) spnote(SPWARN, "CLNREL: reduced precision");
    // |1+z|^2 - 1 = x (2 + x) + y^2
    const dd over = dd(z.re) * (dd(z.re) + 2.0) + ddprod(z.im, z.im);
    const double re = std::fabs(over.hi) < 0.5 ? std::log1p(over.hi) / 2 : logmagnitude(one.re, one.im);
    return {re, argument(one)};
}

namespace {

// z^n by repeated squaring.
spcomplex wholepower(spcomplex z, int n) {
    spcomplex r = {1, 0}, square = z;
    for (int k = std::abs(n); k > 0; k >>= 1) {
        if (k & 1) r = r * square;
        if (k > 1) square = square * square;
    }
    return n < 0 ? reciprocal(r) : r;
}

} // namespace

spcomplex cpowfn(spcomplex z, spcomplex w) {
    if (w.re == 0 && w.im == 0) return {1, 0};
    if (z.re == 0 && z.im == 0) return w.re > 0 ? spcomplex{} : cdivide({1, 0}, {});
    if (w.im == 0 && z.im == 0 && (z.re > 0 || isinteger(w.re)))
        return capcomplex("CPOW", {std::pow(z.re, w.re), 0});
    if (w.im == 0 && isinteger(w.re) && std::fabs(w.re) <= 64) {
        const spcomplex r = wholepower(z, static_cast<int>(w.re));
        if (std::isfinite(r.re) && std::isfinite(r.im)) return r;
    }
    return capcomplex("CPOW", cexpfn(w * clogfn(z)));
}

namespace {

struct cmathrow {
    int code;
    spcomplex (*f)(spcomplex);
};
constexpr cmathrow cmathrows[] = {
    {1, cexpfn},
    {3, [](spcomplex z) { return clogfn(z) / 2.30258509299404568402; }},
    {67, [](spcomplex z) { return clogfn(z) / 0.693147180559945309417; }},
    {4, csqrtfn},
    {5, csin},
    {7, ccos},
    {9, ctan},
    {64, [](spcomplex z) { return reciprocal(ctan(z)); }},
    {74, csec},
    {75, ccosec},
    {11, csinh},
    {12, ccosh},
    {13, ctanh},
    {111, ccosech},
    {112, csech},
    {113, [](spcomplex z) { return reciprocal(ctanh(z)); }},
    {14, casin},
    {15, [](spcomplex z) { return arccosine(direct(z)); }},
    {16, catan},
    {79, cacotan},
    {80, [](spcomplex z) { return arccosine(inverse(z)); }},
    {81, [](spcomplex z) { return arcsine(inverse(z)); }},
    {46, casinh},
    {47, [](spcomplex z) { return areacosine(direct(z)); }},
    {48, catanh},
    {49, cacotanh},
    {50, [](spcomplex z) { return areacosine(inverse(z)); }},
    {51, cacosech},
    {17, clngam},
    {69, cpsi},
    {70, cgamma},
    {269, clnrel},
    {23,
     [](spcomplex z) {
         return spcomplex{magnitude(z), 0};
     }},
    {19,
     [](spcomplex z) {
         return spcomplex{argument(z), 0};
     }},
};

} // namespace

spcomplex cmath(double selector, spcomplex z, spcomplex w) {
    z = unsignedzeros(z);
    if (selector == 2) {
        const bool base = w.re != 0 || w.im != 0;
        return base ? cdivide(clogfn(z), clogfn(w)) : clogfn(z);
    }
    if (selector == 403) return cpowfn(z, w);
    if (selector == 404) return capcomplex("CMATH", z * w);
    if (selector == 405) return capcomplex("CMATH", cdivide(z, w));
    if (selector == 406) return capcomplex("CMATH", z + w);
    if (selector == 407) return capcomplex("CMATH", z - w);
    for (const cmathrow& row : cmathrows)
        if (row.code == selector) return capcomplex("CMATH", row.f(z));
    rangewarn("CMATH");
    return {};
}
