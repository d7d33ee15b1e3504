#include "special/incgamma.h"

#include "interp/base/machine.h"
#include "special/elementary.h"
#include "special/errorfn.h"
#include "special/expint.h"
#include "special/fault.h"
#include "special/gamma.h"
#include "special/quadrature.h"

#include <cmath>

namespace {
constexpr int maxterms = 1000;

/* Temme's uniform expansion for large a (DLMF 8.12): coefficients of eta^n in c[k], k = 0..6, cut for
 * a >= 200 and |x-a| <= 0.4 a. Made by tools/special/temmetable.py. */
constexpr int temmeterms[] = {20, 15, 12, 9, 7, 5, 3};
constexpr double temmec[][20] = {
    {-0.33333333333333333333,    0.083333333333333333333,    -0.014814814814814814815,
     0.0011574074074074074074,   0.00035273368606701940035,  -0.0001787551440329218107,
     0.000039192631785224377817, -2.1854485106799921615e-6,  -1.8540622107151599607e-6,
     8.296711340953086005e-7,    -1.7665952736826079304e-7,  6.7078535434014985804e-9,
     1.0261809784240308043e-8,   -4.3820360184533531866e-9,  9.1476995822367902342e-10,
     -2.5514193994946249767e-11, -5.8307721325504250675e-11, 2.4361948020667416244e-11,
     -5.0276692801141755891e-12, 1.1004392031956134771e-13},
    {-0.0018518518518518518519, -0.0034722222222222222222, 0.0026455026455026455026,
     -0.00099022633744855967078, 0.00020576131687242798354, -4.0187757201646090535e-7,
     -0.000018098550334489977837, 7.6491609160811100846e-6, -1.6120900894563446004e-6,
     4.6471278028074343423e-9, 1.3786334469157209593e-7, -5.752545603517704964e-8, 1.1951628599778147324e-8,
     -1.7543241719747647624e-11, -1.0091543710600412627e-9},
    {0.0041335978835978835979, -0.0026813271604938271605, 0.00077160493827160493827, 2.0093878600823045267e-6,
     -0.00010736653226365160522, 0.000052923448829120125416, -0.000012760635188618727713,
     3.4235787340961380742e-8, 1.3721957309062933206e-6, -6.2989921383800550229e-7, 1.4280614206064241792e-7,
     -2.0477098421990866015e-10},
    {0.00064943415637860082305, 0.00022947209362139917695, -0.00046918949439525571213,
     0.00026772063206283885296, -0.000075618016718839764107, -2.3965051138672966519e-7,
     0.000011082654115347302361, -5.6749528269915965675e-6, 1.4230900732435883915e-6},
    {-0.0008618882909167116986, 0.00078403922172006662747, -0.00029907248030319017973,
     -1.4638452578843418178e-6, 0.000066414982154651221867, -0.000039683650471794346644,
     0.000011375726970678419098},
    {-0.00033679855336635815031, -0.000069728137583658577743, 0.00027727532449593920787,
     -0.000199325705161888477, 0.000067977804779372078388},
    {0.00053130793646399222317, -0.00059216643735369388286, 0.00027087820967180448277}};

bool temmerange(double a, double x) { return a >= 200 && std::fabs(x - a) <= 0.4 * a; }

// P(a,x), or Q if upper
double temme(double a, double x, bool upper) {
    const double mu = (x - a) / a, half = -log1pmx(mu); // half = eta^2/2
    const double eta = std::copysign(std::sqrt(2 * half), mu);
    double sum = 0;
    for (int k = 6; k >= 0; k--) {
        double c = 0;
        for (int n = temmeterms[k] - 1; n >= 0; n--) c = c * eta + temmec[k][n];
        sum = sum / a + c;
    }
    const double side = upper ? 1 : -1, z = std::sqrt(a * half);
    const double rest = side * std::exp(-a * half) / std::sqrt(2 * PI * a) * sum;
    return 0.5 * erfcfn(std::copysign(z, side * mu)) + rest;
}

bool badarguments(double a, double x, const char* name) {
    if (a >= 0 && x >= 0) return false;
    rangewarn(name);
    return true;
}

// Q(a,x) for small a and x < a+1, where 1 - P would cancel: P is x^a/Gamma(1+a) (1 + a sum).
double uppersmalla(double a, double x) {
    double term = 1, sum = 0;
    for (int k = 1; k < 100; k++) {
        term *= -x / k;
        sum += term / (a + k);
        if (std::fabs(term) < 1e-18 * std::fabs(sum)) break;
    }
    const double ln = a * std::log(x) - loggamma1p(a);
    return -std::expm1(ln) - std::exp(ln) * a * sum;
}

// ln t - psi(a) for t = a (1 + r), a >= 10
double logless(double r, double a) {
    const double w = 1 / (a * a);
    const double rest = w * (1 / 12. - w * (1 / 120. - w * (1 / 252. - w * (1 / 240. - w / 132))));
    return std::log1p(r) + 0.5 / a + rest;
}

/* The derivative of P by a from the series: P is gammaterm times the sum of t[n] = x^n/(a+1)..(a+n), whose
 * logarithmic derivatives are ln x - psi(a+1) and -(1/(a+1) + .. + 1/(a+n)). */
double jseries(double a, double x) {
    const double ln = std::log(x) - digamma(a + 1);
    double t = 1, h = 0, sum = ln;
    for (double n = 1; n < 1e4; n++) {
        t *= x / (a + n);
        h += 1 / (a + n);
        const double term = t * (ln - h);
        sum += term;
        if (std::fabs(term) < 1e-17 * std::fabs(sum)) break;
    }
    return gammaterm(a, x) * sum;
}

/* The same as an integral over the tail on the far side of x from the mode, where its integrand
 * t^(a-1) exp(-t) (ln t - psi(a)) has one sign: t = x + side s, relative to s = 0. */
struct tailjob {
    double a, x, side, psi;

    double exponent(double s) const {
        const double r = side * s / x;
        return (a - 1) * log1pmx(r) - side * s * (x - (a - 1)) / x;
    }
    double logfactor(double s) const {
        const double t = x + side * s;
        return a < 10 ? std::log(t) - psi : logless((x - a + side * s) / a, a);
    }
};

double tailintegrand(double s, void* context) {
    const tailjob& j = *static_cast<const tailjob*>(context);
    return std::exp(j.exponent(s)) * j.logfactor(s);
}

double jtail(double a, double x) {
    tailjob job = {a, x, x < a ? -1.0 : 1.0, digamma(a)};
    const double term = a * gammaterm(a, x);
    if (term == 0) return 0;
    double reach = 1 + std::sqrt(x);
    while ((job.side > 0 || reach < x) && job.exponent(reach) > -45) reach *= 1.5;
    if (job.side < 0 && reach > x) reach = x;
    const double integral = quadthirds(tailintegrand, &job, 0, reach, 1e-15);
    return -job.side * term / x * integral;
}
} // namespace

double gammaterm(double a, double x) {
    if (a < 10) return x > 1500 ? 0 : std::pow(x, a) * std::exp(-x) * rgamma(a + 1);
    const double exponent = x < 0.5 * a ? a * std::log(x / a) + (a - x) : a * log1pmx((x - a) / a);
    if (exponent < -50 && a < 170) { // the rounding of the exponent would show; pow has none such
        const double power = std::pow(x, a);
        if (power > MINPOS && power < MAXPOS) return power * std::exp(-x) * rgamma(a + 1);
    }
    return std::exp(exponent - r9lgmc(a)) / std::sqrt(2 * PI * a);
}

double gser(double a, double x) {
    double term = 1, sum = 1;
    for (int n = 1; n <= maxterms; n++) {
        term *= x / (a + n);
        sum += term;
        if (term < 0.1 * MACHEPS * sum) return sum * gammaterm(a, x);
    }
    spnote(SPERR, "gser(A: %le,X: %le) A too large; failed to converge", a, x);
    return 0;
}

// DLMF 8.9.2, its even part, by the method of W. J. Lentz (Applied Optics 15, 1976, 668).
double gcf(double a, double x) {
    constexpr double tiny = 1e-300;
    double b = x + 1 - a, c = 1 / tiny, d = 1 / b, h = d;
    for (int n = 1; n <= maxterms; n++) {
        const double numerator = -n * (n - a);
        b += 2;
        d = numerator * d + b;
        if (std::fabs(d) < tiny) d = tiny;
        c = b + numerator / c;
        if (std::fabs(c) < tiny) c = tiny;
        d = 1 / d;
        h *= d * c;
        if (std::fabs(d * c - 1) < 2 * MACHEPS) return a * gammaterm(a, x) * h;
    }
    spnote(SPERR, "gcf(A,X): A too large, failed to converge");
    return 0;
}

double igamma(double a, double x) {
    if (badarguments(a, x, "IGAMMA")) return 0;
    if (x == 0) return a == 0 ? 1 : 0;
    if (a == 0) return 1;
    if (temmerange(a, x)) return temme(a, x, false);
    return x < a + 1 ? gser(a, x) : 1 - gcf(a, x);
}

double igammac(double a, double x) {
    if (badarguments(a, x, "IGAMMA")) return 0;
    if (x == 0) return a == 0 ? 0 : 1;
    if (a == 0) return 0;
    if (temmerange(a, x)) return temme(a, x, true);
    if (x >= a + 1) return gcf(a, x);
    return a < 0.5 ? uppersmalla(a, x) : 1 - gser(a, x);
}

double jgamma(double a, double x) {
    if (badarguments(a, x, "JGAMMA")) return 0;
    if (x == 0) return 0;
    if (a < 1e-300) return expint(-x); // P(a,x) is 1 - a E1(x)
    if (x < a + 0.5 && a < 1000) return jseries(a, x);
    return jtail(a, x);
}
