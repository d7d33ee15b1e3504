#include "special/beta.h"

#include "special/elementary.h"
#include "special/gamma.h"
#include "special/quadrature.h"
#include "special/range.h"

#include <cmath>

namespace {
// exp(x) - 1 - x
double expm1mx(double x) {
    if (std::fabs(x) > 0.5) return std::expm1(x) - x;
    double sum = 0;
    for (int k = 15; k >= 2; k--) sum = (1 + sum) * x / k;
    return sum * x;
}

/* The derivative of I_x(a,b) by a is the integral of t^(a-1) (1-t)^(b-1) (ln t + psi(a+b) - psi(a)) / B(a,b)
 * over t < x, or less that over t > x, since the whole is 0. The last factor changes its sign once, about the
 * mean a/(a+b), so the side of x away from it has no cancellation. With t = z exp(-s) or 1-t = z exp(-s) the
 * integrand is a decaying exponential times smooth factors. */
struct jbetajob {
    double a, b, x, y;
    double delta; // psi(a+b) - psi(a)
    double lnx;   // ln x + delta without cancellation
    bool below;   // t < x
    double p, q;  // the powers of t and 1-t in this order below, of 1-t and t above
    double ratio; // of z to 1-z
    double slope; // of the exponent at s = 0

    // ln of exp(-p s) (1 - z exp(-s))^(q-1), relative to s = 0; large terms linear in s are taken out into
    // the slope
    double exponent(double s) const {
        const double u = -ratio * std::expm1(-s);
        return slope * s + (q - 1) * (log1pmx(u) - ratio * expm1mx(-s));
    }
    double logfactor(double s) const {
        if (below) return lnx - s;
        const double grow = -y * std::expm1(-s); // t = x + grow
        return a < 10 ? delta + std::log(x + grow) : lnx + std::log1p(grow / x);
    }
};

double wholeintegrand(double s, void* context) {
    const jbetajob& j = *static_cast<const jbetajob*>(context);
    return std::exp(j.exponent(s)) * j.logfactor(s);
}

/* For p < 1 the exponential decays slowly, while the other factors come to rest where exp(-s) does: their
 * resting value is integrated in closed form, and this is what is left. */
double restintegrand(double s, void* context) {
    const jbetajob& j = *static_cast<const jbetajob*>(context);
    const double v = (j.below ? j.x : j.y) * std::exp(-s), power = std::expm1((j.q - 1) * std::log1p(-v));
    const double rest = j.below ? power * j.logfactor(s) : power * j.logfactor(s) + std::log1p(-v);
    return std::exp(-j.p * s) * rest;
}

double jbetaintegral(jbetajob& j) {
    const double term = betaterm(j.a, j.b, j.x, j.y);
    if (term == 0) return 0;
    const double other = j.below ? j.y : j.x;
    if (j.p < 1) {
        const double resting = (j.below ? j.lnx - 1 / j.p : j.delta) / j.p;
        return term * std::pow(other, -j.q) * (resting + quadthirds(restintegrand, &j, 0, 42, 1e-15));
    }
    double reach = 1;
    while (j.exponent(reach) < -70) reach *= 0.7;
    while (j.exponent(reach) > -45) reach *= 1.5;
    return term / other * quadthirds(wholeintegrand, &j, 0, reach, 1e-15);
}

// The derivative by a, with y = 1 - x given
double jbetafirst(double a, double b, double x, double y) {
    const double delta = digammadifference(a, b), t = (b * x - a * y) / a; // x (a+b)/a = 1 + t
    const double rest = delta - std::log1p(b / a);
    const double lnx = t > -0.5 && a >= 10 ? std::log1p(t) + rest : std::log(x) + delta;
    // that side, unless its power of 1 - z exp(-s) has its singularity too near; the other side is then
    // smooth and, x being next to an end, cancels little
    const bool below =
        lnx < 0 ? -std::log1p(-y) * std::fmax(1, a) > 0.1 : -std::log1p(-x) * std::fmax(1, b) <= 0.1;
    const double slope = below ? -((a * y - b * x) + x) / y : ((a * y - b * x) - y) / x;
    jbetajob j = {a, b, x, y, delta, lnx, below, below ? a : b, below ? b : a, below ? x / y : y / x, slope};
    const double integral = jbetaintegral(j);
    return below ? integral : -integral;
}
} // namespace

double jbeta(double a, double b, double x, double which) {
    constexpr double tiny = 1e-140; // below it I is b/(a+b) for both, or 0 or 1, but for the last bits
    if (!(a > 0 && b > 0 && x >= 0 && x <= 1 && a + b < 1e300)) return outofrange("JBETA", 0);
    if (x == 0 || x == 1) return 0;
    if (a < tiny && b < tiny) return capped("JBETA", (which == 2 ? a : -b) / (a + b) / (a + b));
    const double p = std::fmax(a, tiny), q = std::fmax(b, tiny);
    return which == 2 ? -jbetafirst(q, p, 1 - x, x) : jbetafirst(p, q, x, 1 - x);
}
