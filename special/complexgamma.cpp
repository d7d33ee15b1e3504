// The gamma function, its logarithm and derivative, and the exponential integral of a complex argument.
#include "interp/base/machine.h"
#include "special/complexfn.h"
#include "special/complexrange.h"
#include "special/doubledouble.h"
#include "special/elementary.h"
#include "special/expint.h"
#include "special/gamma.h"
#include "special/zeta.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double STIRLINGFROM = 10; // |z| from which Stirling's series reaches the rounding error

// B(2k)/(2k), k from 1: DLMF table 24.2.3.
constexpr double bernoulli2k[] = {1.0 / 12,        -1.0 / 120,       1.0 / 252,     -1.0 / 240,
                                  1.0 / 132,       -691.0 / 32760,   1.0 / 12,      -3617.0 / 8160,
                                  43867.0 / 14364, -174611.0 / 6600, 77683.0 / 276, -236364091.0 / 65520};

bool ispole(spcomplex z) { return z.im == 0 && z.re <= 0 && z.re == std::floor(z.re); }

// The warning of the published routines: z so near a pole that half its digits are lost in the distance.
void warnnearpole(const char* text, spcomplex z) {
    if (z.re > -0.5 || std::fabs(z.im) > 2e-8) return;
    if (std::hypot((z.re - std::nearbyint(z.re)) / z.re, z.im / z.re) < 1.825e-8) spnote(SPWARN, "%s", text);
}

// log(1 - exp(2 pi i z)), Im z >= 0.
spcomplex logoneminus(spcomplex z) {
    const double x = z.re - std::nearbyint(z.re), m = std::exp(-2 * PI * z.im);
    // 1 - m cos + ..: by half angles, so that the neighbourhood of the whole numbers keeps its digits
    const double s = sinpi(x);
    if (m < 0.5) return clnrel({-m * (1 - 2 * s * s), -m * sinpi(2 * x)});
    return clogfn({-std::expm1(-2 * PI * z.im) + 2 * m * s * s, -m * sinpi(2 * x)});
}

// The sum of B(2k)/(2k(2k-1) z^(2k-1)), |z| >= STIRLINGFROM, Re z >= 0.
spcomplex stirlingrest(spcomplex z) {
    const spcomplex r = spcomplex{1, 0} / z, r2 = r * r;
    spcomplex sum;
    for (int k = 12; k >= 1; k--) sum = sum * r2 + spcomplex{bernoulli2k[k - 1] / (2 * k - 1), 0};
    return sum * r;
}

// (z + 1/2) log(1 + 1/z) - 1 = w^2/3 + w^4/5 + .., w = 1/(2z + 1): what the rest loses from z to z + 1.
spcomplex restdifference(spcomplex z) {
    const spcomplex w = spcomplex{1, 0} / spcomplex{2 * z.re + 1, 2 * z.im}, w2 = w * w;
    if (magnitude(w) > 0.5) {
        const spcomplex l = clnrel(spcomplex{1, 0} / z);
        return spcomplex{z.re + 0.5, z.im} * l - spcomplex{1, 0};
    }
    spcomplex power = w2, sum;
    for (int k = 3; k < 60; k += 2) {
        sum = sum + power / k;
        power = power * w2;
        if (magnitude(power) < 1e-18 * magnitude(sum)) break;
    }
    return sum;
}

spcomplex restright(spcomplex z) { // Re z >= 0
    spcomplex sum;
    while (magnitude(z) < STIRLINGFROM) {
        sum = sum + restdifference(z);
        z.re += 1;
    }
    return sum + stirlingrest(z);
}

// log Gamma(2 + w), |w| <= 1/2: Abramowitz and Stegun 6.1.33.
spcomplex neartwo(spcomplex w) {
    static const auto coefficients = [] {
        std::array<double, 32> c{};
        for (int k = 2; k < 32; k++) c[k] = (k % 2 ? -1 : 1) * hurwitz(k, 2) / k; // zeta(k) - 1
        c[1] = 1 - EULERGAMMA;
        return c;
    }();
    spcomplex sum;
    for (int k = 31; k >= 1; k--) sum = (sum + spcomplex{coefficients[k], 0}) * w;
    return sum;
}

spcomplex loggammaright(spcomplex z) { // Re z >= 1/2
    if (std::hypot(z.re - 2, z.im) <= 0.5) return neartwo({z.re - 2, z.im});
    if (std::hypot(z.re - 1, z.im) <= 0.5) {
        const spcomplex w = {z.re - 1, z.im};
        return neartwo(w) - clnrel(w);
    }
    return spcomplex{z.re - 0.5, z.im} * clogfn(z) - z + spcomplex{LNSQRT2PI, 0} + restright(z);
}

// log Gamma(z) for Im z >= 0, by reflection on the left: DLMF 5.5.3 with the sine written by exponentials.
spcomplex loggammaupper(spcomplex z) {
    if (z.re >= 0.5) return loggammaright(z);
    const spcomplex other = loggammaright({1 - z.re, -z.im});
    const spcomplex front = {std::log(2 * PI) - PI * z.im, PI * (z.re - 0.5)};
    return front - logoneminus(z) - other;
}

} // namespace

spcomplex clngam(spcomplex z) {
    if (isnotanumber(z)) return {NAN, NAN};
    if (ispole(z)) {
        rangewarn("CLNGAM");
        return {MAXPOS, 0};
    }
    warnnearpole("CLNGAM: reduced precision", z);
    if (z.im == 0 && z.re > 0) return {loggamma(z.re), 0};
    if (z.im < 0) return conjugate(loggammaupper(conjugate(z)));
    return loggammaupper(z);
}

spcomplex c9lgmc(spcomplex z) {
    if (isnotanumber(z)) return {NAN, NAN};
    const bool pole = z.im == 0 && z.re <= 0 && z.re == std::floor(z.re);
    if (pole || std::max(std::fabs(z.re), std::fabs(z.im)) < MINPOS) {
        rangewarn("C9LGMC");
        return {MAXPOS, 0};
    }
    if (z.re >= 0) return restright(z);
    if (z.im < 0) return conjugate(c9lgmc(conjugate(z)));
    return -restright(-z) - logoneminus(z); // Gamma(z) Gamma(-z) = -pi/(z sin(pi z))
}

spcomplex cgamma(spcomplex z) {
    if (isnotanumber(z)) return {NAN, NAN};
    if (ispole(z)) {
        rangewarn("CGAMMA");
        return {};
    }
    if (z.im == 0 && std::fabs(z.re) < 170) return {gammafn(z.re), 0};
    if (z.re >= 0.5 || std::fabs(z.im) > 4) {
        const spcomplex l = z.im < 0 ? conjugate(loggammaupper(conjugate(z))) : loggammaupper(z);
        const spcomplex g = cexpfn(l);
        return capcomplex("CGAMMA", z.im == 0 ? spcomplex{g.re * cospi(l.im / PI), 0} : g);
    }
    // pi/(sin(pi z) Gamma(1-z)), DLMF 5.5.3; the sine by its parts
    const spcomplex sine = {sinpi(z.re) * std::cosh(PI * z.im), cospi(z.re) * std::sinh(PI * z.im)};
    const spcomplex half =
        cexpfn(-0.5 * loggammaright({1 - z.re, -z.im})); // whose square may be out of range
    return capcomplex("CGAMMA", spcomplex{PI, 0} / sine * half * half);
}

namespace {

// pi cot(pi z).
spcomplex picotangent(spcomplex z) {
    const double x = z.re - std::nearbyint(z.re), y = PI * z.im;
    if (std::hypot(x, y) < 1e-9) return spcomplex{1, 0} / spcomplex{x, z.im};
    if (std::fabs(y) > 20) {
        const double e = 4 * std::exp(-2 * std::fabs(y)) * PI;
        return {e * sinpi(x) * cospi(x), y < 0 ? PI : -PI};
    }
    const double s = sinpi(x), c = cospi(x), sh = std::sinh(y), d = s * s + sh * sh;
    return {PI * s * c / d, -PI * sh * std::cosh(y) / d};
}

} // namespace

spcomplex cpsi(spcomplex z) {
    if (isnotanumber(z)) return {NAN, NAN};
    if (ispole(z)) {
        rangewarn("CPSI");
        return {};
    }
    warnnearpole("CPSI: reduced precision", z);
    if (z.im == 0 && z.re > 0) return {digamma(z.re), 0};
    if (z.re < 0.5) return cpsi({1 - z.re, -z.im}) - picotangent(z); // DLMF 5.5.4
    spcomplex sum;
    while (magnitude(z) < STIRLINGFROM) {
        sum = sum - spcomplex{1, 0} / z;
        z.re += 1;
    }
    const spcomplex r = spcomplex{1, 0} / z, r2 = r * r;
    spcomplex tail; // DLMF 5.11.2
    for (int k = 12; k >= 1; k--) tail = (tail + spcomplex{bernoulli2k[k - 1], 0}) * r2;
    return sum + clogfn(z) - 0.5 * r - tail;
}

namespace {

constexpr double E1FAR = 40; // the expansion at infinity is good to exp(-|z|)

// -gamma - log z - sum of (-z)^k/(k k!), DLMF 6.6.2, with digits for what the terms cancel.
spcomplex e1series(spcomplex z) {
    ddcomplex power = {1, 0}, sum = {0, 0};
    const ddcomplex minus = {-z.re, -z.im};
    for (int k = 1; k < 400; k++) {
        power = power * minus / dd(k);
        sum = sum + power / dd(k);
        if (std::fabs(power.re.hi) + std::fabs(power.im.hi) < 1e-33) break;
    }
    if (magnitude(z) < 1e-20) return spcomplex{-EULERGAMMA, 0} - clogfn(z);
    const dd logsize = ddlog(ddprod(z.re, z.re) + ddprod(z.im, z.im)) / 2.0;
    return {(-DDEULER - logsize - sum.re).hi, (-sum.im - argument(z)).hi};
}

// exp(-z) times Legendre's fraction, DLMF 6.9.1 contracted, Re z >= 0; the modified Lentz rule.
spcomplex e1fraction(spcomplex z) {
    spcomplex b = {z.re + 1, z.im}, d = spcomplex{1, 0} / b, f = d, c = {1e300, 0};
    for (int k = 1; k < 2000; k++) {
        const double a = -double(k) * k;
        b.re += 2;
        d = spcomplex{1, 0} / (b + a * d);
        c = b + a * (spcomplex{1, 0} / c);
        const spcomplex step = c * d;
        f = f * step;
        if (std::fabs(step.re - 1) + std::fabs(step.im) < 1e-16) break;
    }
    return f * cexpfn(-z);
}

spcomplex e1far(spcomplex z) { // DLMF 6.12.1
    const spcomplex r = spcomplex{-1, 0} / z;
    spcomplex term = {1, 0}, sum = term;
    for (int k = 1; k < 60; k++) {
        const spcomplex next = term * r * double(k);
        if (magnitude(next) > magnitude(term)) break;
        term = next;
        sum = sum + term;
        if (magnitude(term) < 1e-18) break;
    }
    const double half = -z.re / 2; // in two steps: the quotient may be finite where exp is not
    if (half > 700) {
        const spcomplex way = cexpfn({0, -z.im}) * sum / z;
        return {std::copysign(HUGE_VAL, way.re), std::copysign(HUGE_VAL, way.im)};
    }
    return std::exp(half) * (cexpfn({half, -z.im}) * sum / z);
}

} // namespace

spcomplex cce1(spcomplex z) {
    if (isnotanumber(z)) return {NAN, NAN};
    if (z.re == 0 && z.im == 0) {
        rangewarn("CCE1");
        return {MAXPOS, 0};
    }
    if (z.im == 0 && z.re > 0) return {expintn(1, z.re), 0};
    const double size = magnitude(z);
    if (z.im == 0 && z.re > -700) return {-expint(-z.re), -PI};
    if (size >= E1FAR) {
        spcomplex r = capcomplex("CCE1", e1far(z));
        if (z.im == 0) r.im = -PI; // too small for the expansion to tell
        return r;
    }
    return z.re >= 0 && size > 4 ? e1fraction(z) : e1series(z);
}
