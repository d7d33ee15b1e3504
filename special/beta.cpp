#include "special/beta.h"

#include "special/elementary.h"
#include "special/gamma.h"
#include "special/range.h"

#include <algorithm>
#include <cmath>

namespace {
bool atpole(double x) { return x <= 0 && x == std::trunc(x); }

// Gamma(num)/Gamma(den), neither a pole, by logarithms: for arguments whose gamma overflows
double gammaquotient(double num, double den) {
    int up, down;
    const double ln = loggammasign(num, &up) - loggammasign(den, &down);
    return up * down * std::exp(ln);
}

/* B(-n,b), n = 0, 1, ..: the limit (-1)^b B(1+n-b, b) where b is one of 1..n, a pole otherwise. */
double betapole(double n, double b) {
    if (b != std::trunc(b) || b < 1 || b > n) return outofrange("BETA", 0);
    const double value = betafn(1 + n - b, b);
    return std::fmod(b, 2) == 0 ? value : -value;
}

// (a)_n for whole n as a product; infinite at a pole
double pochproduct(double a, double n) {
    double p = 1;
    for (double k = 0; k < n && p != 0 && std::isfinite(p); k++) p *= a + k;
    for (double k = -1; k >= n && p != 0 && std::isfinite(p); k--) p /= a + k;
    return p;
}

// Both a and a+x are poles of gamma: the ratio of their residues, (-1)^x Gamma(1-a)/Gamma(1-a-x).
double pochresidues(double a, double x) {
    const double b = 1 - a - x;
    const bool near = std::fabs(x) < 0.9 * std::fmax(b, 1 - a) && b + x > 0;
    const double ln = near ? -loggammaratio(x, b) : loggamma(1 - a) - loggamma(b);
    return paritysign(x) * std::exp(ln);
}

// (a)_x for a > 0, a+x > 0
double pochpositive(double a, double x) {
    if (a >= 10 && a + x >= 10) return std::exp(-loggammaratio(x, a));
    if (a < 170 && a + x < 170) return gammafn(a + x) * rgamma(a);
    return gammaquotient(a + x, a);
}

// (a)_x; infinite on overflow, not a number at a pole
double pochopen(double a, double x) {
    if (x == 0) return 1;
    if (x == std::trunc(x) && std::fabs(x) <= 200) return pochproduct(a, x);
    if (atpole(a + x)) return atpole(a) ? pochresidues(a, x) : std::nan("");
    if (atpole(a)) return 0;
    if (a > 0 && a + x > 0) return pochpositive(a, x);
    if (a < 0 && a + x < 0) return sinpi(a) / sinpisum(a, x) * pochpositive(1 - a - x, x);
    if (std::fabs(a) < 170 && std::fabs(a + x) < 170) return rgamma(a) / rgamma(a + x);
    return gammaquotient(a + x, a);
}
} // namespace

double betafn(double a, double b) {
    if (atpole(a)) return betapole(-a, b);
    if (atpole(b)) return betapole(-b, a);
    if (atpole(a + b)) return 0;
    const double low = std::fmin(a, b), high = std::fmax(a, b);
    if (low > -160 && high < 160 && std::fabs(a + b) < 170)
        return cappedorpole("BETA", rgamma(a + b) / rgamma(a) / rgamma(b));
    if (low > 0)
        return cappedorpole("BETA", low < 10 ? gammafn(low) * std::exp(loggammaratio(low, high))
                                             : std::exp(logbeta(a, b)));
    int sa, sb, sab;
    const double ln = loggammasign(a, &sa) + loggammasign(b, &sb) - loggammasign(a + b, &sab);
    return cappedorpole("BETA", sa * sb * sab * std::exp(ln));
}

double logbeta(double a, double b) {
    if (!(a > 0 && b > 0)) return outofrange("LOGBETA", 0);
    const double p = std::fmin(a, b), q = std::fmax(a, b);
    if (q < 10) return loggamma(p) + loggamma(q) - loggamma(p + q);
    if (p < 10) return loggamma(p) + loggammaratio(p, q);
    const double rest = r9lgmc(p) + r9lgmc(q) - r9lgmc(p + q), t = p / q; // p/(p+q) might overflow
    return capped("LOGBETA", rest + LNSQRT2PI - 0.5 * std::log(q) +
                                 (p - 0.5) * (std::log(t) - std::log1p(t)) - q * std::log1p(t));
}

double poch(double a, double x) { return cappedorpole("POCH", pochopen(a, x)); }

/* W. Fullerton's POCH1 (SLATEC) tells the cases: near x = 0 by expm1 of the logarithm, which holds
 * relative to x; for negative a by reflection, with the quotient of sines less one over x in closed form. */
double poch1(double a, double x) {
    if (std::isnan(a + x)) return a + x;
    if (x == 0) return digamma(a);
    if (std::fabs(x) > 0.5 || atpole(a) || atpole(a + x))
        return cappedorpole("POCH1", (pochopen(a, x) - 1) / x);
    if (a > 0 && a + x > 0) return cappedorpole("POCH1", std::expm1(-loggammaratio(x, a)) / x);
    const double s = sinpisum(a, x), less = -2 * cospi(a + 0.5 * x) * sinpi(0.5 * x) / (x * s);
    return cappedorpole("POCH1", less + sinpi(a) / s * poch1(1 - a - x, x));
}

double rfact(double x, double n) {
    if (n != std::trunc(n)) return outofrange("RFACT", 0);
    return poch(x, n);
}
