// Spherical Bessel functions: short recurrences from the elementary orders where those are stable,
// the functions of half-odd order elsewhere.
#include "special/bessel.h"
#include "special/besselimpl.h"
#include "special/elementary.h"
#include "special/range.h"

#include <cmath>

namespace {

constexpr double SHORT = 60; // recurrences no longer than this

// f(k+1) = (2k+1)/x f(k) + s f(k-1) up to f(n).
double climb(double n, double x, double f0, double f1, int s) {
    if (n == 0) return f0;
    for (int k = 1; k < n && std::isfinite(f1); k++) {
        const double t = (2 * k + 1) / x * f1 + s * f0;
        f0 = f1;
        f1 = t;
    }
    return f1;
}

// sqrt(pi/(2x)) times a value of half-odd order.
double half(double x, double f) { return f * std::sqrt(PI / 2 / x); }

bool refused(const char* name, double n, double x, double* result) {
    if (std::isnan(n) || std::isnan(x)) {
        *result = n + x;
        return true;
    }
    if (std::fabs(n) > BESSELFAR || (x < 0 && !isinteger(n))) {
        *result = outofrange(name, 0);
        return true;
    }
    if (std::fabs(x) > BESSELFAR) {
        *result = 0;
        return true;
    }
    return false;
}

// By the ascending series: keeps tiny arguments from sqrt(x) sqrt(1/x), and small values from underflow.
double ascendinghalf(double n, double x, int s) {
    double e;
    const double m = ascendingfactor(n + 0.5, x, &e);
    return joinexponent(half(x, m * ascending(n + 0.5, x * x / 4, s)), e);
}

double jhalf(double n, double x) { // n >= 0 or fractional, x > 0
    if (isinteger(n) && n >= 0 && n <= SHORT && n <= x) {
        const double s = std::sin(x), c = std::cos(x);
        return climb(n, x, s / x, (s / x - c) / x, -1);
    }
    if (n >= -0.5 && x * x / 4 < n + 1.5) return ascendinghalf(n, x, -1);
    return half(x, besjraw(n + 0.5, x));
}

double yhalf(double n, double x) {
    if (isinteger(n) && n >= 0 && n <= SHORT) {
        const double s = std::sin(x), c = std::cos(x);
        return climb(n, x, -c / x, -(c / x + s) / x, -1);
    }
    return half(x, besyraw(n + 0.5, x));
}

} // namespace

double spbj(double n, double x) {
    double r;
    x = normalargument("SPBJ", x);
    if (refused("SPBJ", n, x, &r)) return r;
    if (x == 0) return n == 0 ? 1 : n > 0 ? 0 : outofrange("SPBJ", MAXPOS);
    const double a = std::fabs(x), sign = x < 0 ? paritysign(n) : 1;
    if (isinteger(n) && n < 0) return capped("SPBJ", sign * paritysign(n) * yhalf(-n - 1, a)); // DLMF 10.47.4
    return capped("SPBJ", sign * jhalf(n, a));
}

double spby(double n, double x) {
    double r;
    x = normalargument("SPBY", x);
    if (refused("SPBY", n, x, &r)) return r;
    if (x == 0) return outofrange("SPBY", MAXNEG);
    const double a = std::fabs(x), sign = x < 0 ? -paritysign(n) : 1;
    if (isinteger(n) && n < 0) return sign * paritysign(n) * -jhalf(-n - 1, a);
    return capped("SPBY", sign * yhalf(n, a));
}

double spbi(double n, double x) {
    double r;
    x = normalargument("SPBI", x);
    if (refused("SPBI", n, x, &r))
        return std::fabs(x) > BESSELFAR && spfaults.count == 0 ? outofrange("SPBI", MAXPOS) : r;
    if (x == 0) return n == 0 ? 1 : n > 0 ? 0 : outofrange("SPBI", MAXPOS);
    const double a = std::fabs(x), sign = x < 0 ? paritysign(n) : 1;
    if (n == 0 && a < 709) return a < 1e-5 ? 1 + a * a / 6 : std::sinh(a) / a;
    if (n == -1 && a < 709) return sign * std::cosh(a) / a;
    if (n >= -0.5 && a * a / 4 < n + 1.5) return sign * ascendinghalf(n, a, 1);
    if (n < -0.5) return capped("SPBI", sign * joinexponent(half(a, besiraw(n + 0.5, a, 1)), a));
    const besik wide = besiwide(n + 0.5, a);
    return capped("SPBI", sign * joinexponent(half(a, wide.i), wide.ei));
}

double spbk(double n, double x) {
    double r;
    x = normalargument("SPBK", x);
    if (refused("SPBK", n, x, &r)) return r;
    if (x < 0) return outofrange("SPBK", 0);
    if (x == 0) return outofrange("SPBK", MAXPOS);
    if (n < -0.5) n = -n - 1; // K is even in its order n + 1/2
    if (isinteger(n) && n <= SHORT && x < 700) {
        const double k = PI / 2 * std::exp(-x) / x;
        return capped("SPBK", climb(n, x, k, k * (1 + 1 / x), 1));
    }
    const besik wide = beskwide(n + 0.5, x);
    return capped("SPBK", joinexponent(half(x, wide.k), wide.ek));
}
