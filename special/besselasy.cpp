// The asymptotic expansions of the Bessel functions. Each tells by `good` whether its terms fell below
// the rounding error before they began to grow.
#include "special/airy.h"
#include "special/besselimpl.h"
#include "special/besseltables.h"
#include "special/elementary.h"
#include "special/polyval.h"

#include <cmath>

namespace {

constexpr double ENOUGH = 1e-17;
constexpr double SMALLEST = 3e-16; // the last term may be this large where no better is to be had
constexpr double TWOOVERPI = 0.63661977236758134308;

// The sums of a_k(nu)/x^k over even and odd k with alternating or equal signs within each, DLMF 10.17.1.
struct hankelsums {
    bool good;
    double even, odd;
};
hankelsums hankelsum(double nu, double x, int sign) {
    const double mu = 4 * nu * nu;
    hankelsums s{false, 1, 0};
    double term = 1, last = HUGE_VAL;
    for (int k = 1; k < 500; k++) {
        const double odd = 2.0 * k - 1;
        term *= (mu - odd * odd) / (8 * k * x);
        const double size = std::fabs(term);
        if (size > last && odd > 2 * nu) return s; // diverges
        const double signedterm = (k / 2) % 2 ? sign * term : term;
        (k % 2 ? s.odd : s.even) += signedterm;
        if (size < ENOUGH) {
            s.good = true;
            return s;
        }
        last = size;
        if (size > 8) return s; // the sum would cancel
    }
    return s;
}

// The sums over even and odd k of U_k(p)/nu^k, p2 = p^2 of either sign; with p imaginary
// the factor i^k is left out.
struct debyesums {
    bool good;
    double even, odd;
};
debyesums debyesum(double nu, double p, double p2) {
    debyesums s{false, 1, 0};
    const double* row = DEBYEU + 1;
    double power = 1, last = HUGE_VAL;
    for (int k = 1; k < DEBYETERMS; row += k + 1, k++) {
        double u = row[k];
        for (int n = k - 1; n >= 0; n--) u = u * p2 + row[n];
        power *= p / nu;
        const double term = u * power, size = std::fabs(term);
        (k % 2 ? s.odd : s.even) += p2 < 0 && (k / 2) % 2 ? -term : term;
        if (size + last < SMALLEST) {
            s.good = true;
            return s;
        }
        if (size > 0.1) return s;
        last = size;
    }
    return s;
}

} // namespace

besjy hankeljy(double nu, double x) {
    const hankelsums h = hankelsum(nu, x, -1);
    if (!h.good) return {};
    // chi = x - nu pi/2 - pi/4, by its parts so that no digit of x is lost
    const double sx = std::sin(x), cx = std::cos(x);
    const double sn = sinpi(nu / 2 + 0.25), cn = cospi(nu / 2 + 0.25);
    const double c = cx * cn + sx * sn, s = sx * cn - cx * sn;
    const double scale = std::sqrt(TWOOVERPI / x);
    return {true, scale * (h.even * c - h.odd * s), scale * (h.even * s + h.odd * c)};
}

besik hankelik(double nu, double x) {
    const hankelsums h = hankelsum(nu, x, 1);
    // below 18 the other exponential would still show in I
    if (!h.good || x < 18) return {};
    const double scale = std::sqrt(PI / (2 * x));
    return {true, (h.even - h.odd) * scale / PI, x, (h.even + h.odd) * scale, -x};
}

besjy debyejy(double nu, double x) {
    if (x < nu) {
        const double root = std::sqrt((nu - x) * (nu + x)); // nu tanh(alpha)
        const debyesums d = debyesum(nu, nu / root, nu / root * (nu / root));
        if (!d.good) return {};
        const double e = root - nu * std::asinh(root / x);
        const double scale = std::sqrt(1 / (2 * PI * root));
        return {true, joinexponent(scale * (d.even + d.odd), e),
                -joinexponent(2 * scale * (d.even - d.odd), -e)};
    }
    if (x == nu) return {};
    const double root = std::sqrt((x - nu) * (x + nu)); // nu tan(beta)
    const double p = nu / root;
    const debyesums d = debyesum(nu, p, -p * p);
    if (!d.good) return {};
    const double xi = root - nu * std::atan2(root, nu) - PI / 4;
    const double s = std::sin(xi), c = std::cos(xi), scale = std::sqrt(TWOOVERPI / root);
    return {true, scale * (d.even * c + d.odd * s), scale * (d.even * s - d.odd * c)};
}

besik debyeik(double nu, double x) {
    const double root = std::hypot(nu, x), p = nu / root;
    const debyesums d = debyesum(nu, p, p * p);
    if (!d.good) return {};
    const double e = root - nu * std::asinh(nu / x);
    const double scale = std::sqrt(1 / (2 * PI * root));
    return {true, scale * (d.even + d.odd), e, PI * scale * (d.even - d.odd), -e};
}

besjy turningjy(double nu, double x) {
    const double w = (nu - x) / nu, third = std::cbrt(nu);
    if (std::fabs(w) > 0.02) return {};
    const double argument = third * third * w * polyval(TURNZETA, w);
    const airyvalues a = airyall(argument);
    const double first = (1 + polyval(TURNA1, w) / (nu * nu)) / third;
    const double second = polyval(TURNB0, w) / (nu * third * third);
    const double phi = polyval(TURNPHI, w);
    return {true, phi * (a.ai * first + a.aip * second), -phi * (a.bi * first + a.bip * second)};
}

double joinexponent(double m, double e) {
    if (m == 0) return 0;
    const double half = std::exp(e / 2);
    return std::fabs(e) < 690 ? m * std::exp(e) : m * half * half;
}
