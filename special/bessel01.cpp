// Bessel functions of order 0 and 1: polynomials on [0, 8] and Hankel's form above (I, K likewise).
// Errors stay within a few units of 1e-16 of the larger of the function and its envelope.
#include "interp/base/machine.h"
#include "special/bessel.h"
#include "special/besseltables.h"
#include "special/elementary.h"
#include "special/polyval.h"

#include <cmath>

namespace {

constexpr double TWOOVERPI = 0.63661977236758134308;
constexpr double SQRT1PI = 0.56418958354775628695; // 1/sqrt(pi)

// The parts of J and Y above 8: with s, c the sine and cosine of x, J0 and Y0 are
// (P cos chi - Q sin chi)/sqrt(pi x/2), chi = x - pi/4; the 45 degrees are taken out by addition.
struct farparts {
    double p, q, sum, difference, scale;
};
inline farparts farfrom(double x, double p, double xq, double reciprocal) {
    const double s = std::sin(x), c = std::cos(x);
    return {p, xq * reciprocal, s + c, s - c, SQRT1PI * std::sqrt(reciprocal)};
}
inline double farargument(double reciprocal) { return 128 * (reciprocal * reciprocal) - 1; }

inline farparts far0(double x) {
    const double r = 1 / x, t = farargument(r);
    return farfrom(x, polyval(BESP0, t), polyval(BESQ0, t), r);
}
inline farparts far1(double x) {
    const double r = 1 / x, t = farargument(r);
    return farfrom(x, polyval(BESP1, t), polyval(BESQ1, t), r);
}

} // namespace

double bessj0(double x) {
    x = std::fabs(x);
    if (x <= 8) return 1 + x * x * polyval(BESJ0SMALL, x * x * 0.03125 - 1);
    if (!(x <= MAXPOS)) return x != x ? x : 0;
    const farparts f = far0(x);
    return f.scale * (f.p * f.sum - f.q * f.difference);
}

double bessj1(double x) {
    const double a = std::fabs(x);
    if (a <= 8) return x * polyval(BESJ1SMALL, x * x * 0.03125 - 1);
    if (!(a <= MAXPOS)) return x != x ? x : 0;
    const farparts f = far1(a);
    const double j = f.scale * (f.p * f.difference + f.q * f.sum);
    return x < 0 ? -j : j;
}

double bessy0(double x) {
    if (x <= 8) {
        const double t = x * x * 0.03125 - 1;
        return TWOOVERPI * std::log(x / 2) * bessj0(x) + polyval(BESY0SMALL, t);
    }
    if (!(x <= MAXPOS)) return x != x ? x : 0;
    const farparts f = far0(x);
    return f.scale * (f.p * f.difference + f.q * f.sum);
}

double bessy1(double x) {
    if (x <= 8) {
        const double t = x * x * 0.03125 - 1;
        return TWOOVERPI * std::log(x / 2) * bessj1(x) - TWOOVERPI / x + x * polyval(BESY1SMALL, t);
    }
    if (!(x <= MAXPOS)) return x != x ? x : 0;
    const farparts f = far1(x);
    return f.scale * (f.q * f.difference - f.p * f.sum);
}

namespace {

// The sums of v^k/(k! (k+n)!), v = x^2/4, and of H_k v^k/k!^2 for n = 0; all terms positive.
double iseries(double v, int n) {
    double term = 1, sum = 1;
    for (int k = 1; term > 1e-17 * sum; k++) {
        term *= v / (k * double(k + n));
        sum += term;
    }
    return sum;
}

// exp(x) times `scaled`, without overflow before the result overflows.
double unscaled(double x, double scaled) {
    const double half = std::exp(x / 2);
    return x < 700 ? std::exp(x) * scaled : half * (half * scaled);
}

double i0scaled(double x) { return polyval(BESI0LARGE, 16 / x - 1) / std::sqrt(x); }
double i1scaled(double x) { return polyval(BESI1LARGE, 16 / x - 1) / std::sqrt(x); }

} // namespace

double bessi0(double x) {
    x = std::fabs(x);
    return x <= 8 ? iseries(x * x / 4, 0) : unscaled(x, i0scaled(x));
}

double bessi1(double x) {
    const double a = std::fabs(x);
    if (a <= 8) return x / 2 * iseries(x * x / 4, 1);
    const double i = unscaled(a, i1scaled(a));
    return x < 0 ? -i : i;
}

double bessk0(double x) {
    if (x > 2) return unscaled(-x, polyval(BESK0LARGE, 4 / x - 1) / std::sqrt(x));
    const double v = x * x / 4;
    double term = 1, harmonic = 0, sum = 0; // DLMF 10.31.2
    for (int k = 1; k <= 14; k++) {
        term *= v / (double(k) * k);
        harmonic += 1.0 / k;
        sum += harmonic * term;
    }
    return sum - (std::log(x / 2) + EULERGAMMA) * iseries(v, 0);
}

double bessk1(double x) {
    if (x > 2) return unscaled(-x, polyval(BESK1LARGE, 4 / x - 1) / std::sqrt(x));
    const double v = x * x / 4;
    double term = 1, harmonic = 0.5, sum = harmonic; // DLMF 10.31.1; harmonic = (H_k + H_{k+1})/2
    for (int k = 1; k <= 14; k++) {
        term *= v / (k * (k + 1.0));
        harmonic += (1.0 / k + 1.0 / (k + 1)) / 2;
        sum += harmonic * term;
    }
    return 1 / x + x / 2 * ((std::log(x / 2) + EULERGAMMA) * iseries(v, 1) - sum);
}
