#include "special/gamma.h"

#include "interp/base/machine.h"
#include "special/chebyshev.h"
#include "special/elementary.h"
#include "special/range.h"
#include "special/zeta.h"

#include <cmath>

namespace {
/* psi(1+y) / (1+y - psizero) on 0 <= y <= 1, in 2y-1, where psizero is the zero of psi: the factor
 * keeps the relative accuracy there. Made by tools/special/gammatables.py. */
constexpr double psics[] = {0,
                            1.967140520883133976,
                            -0.22706408633464439669,
                            0.033368899023930108972,
                            -0.0053200772715965474438,
                            0.00087886569378205053326,
                            -0.00014773492650606043282,
                            0.00002506054346835914444,
                            -4.272103402999332207e-6,
                            7.3027692724659230493e-7,
                            -1.2502886813559595515e-7,
                            2.1425009322359473734e-8,
                            -3.6732959185651790393e-9,
                            6.2997172361089309069e-10,
                            -1.0805930288832660114e-10,
                            1.8537351920536378898e-11,
                            -3.1802353658255300096e-12,
                            5.4561475703227941847e-13,
                            -9.3609931310364381561e-14,
                            1.6060646362950750099e-14,
                            -2.7555431377438813107e-15,
                            4.7277361786019113911e-16,
                            -8.1114842034650900328e-17,
                            1.3917077694741540651e-17};
constexpr int psiterms = inits(psics, 23, 0.5 * MACHEPS);
constexpr double psizero = 0x1.762d86356be3fp+0, psizerorest = 9.5499954299656977152e-17;

// B(2k)/(2k), the coefficients of the asymptotic series
constexpr double psitail[] = {1 / 12.,  -1 / 120.,     1 / 252., -1 / 240.,
                              1 / 132., -691 / 32760., 1 / 12.,  -3617 / 8160.};

// psi(x) for x >= 10, DLMF 5.11.2 with eight terms.
double psiasymptotic(double x) {
    const double w = 1 / (x * x);
    double sum = 0;
    for (int k = 7; k >= 0; k--) sum = sum * w + psitail[k];
    return std::log(x) - 0.5 / x - sum * w;
}

// x > 0
double psipositive(double x) {
    if (!(x < 10)) return psiasymptotic(x);
    const int n = int(x);
    const double y = x - n;
    if (n == 0) return psipositive(1 + x) - 1 / x;
    double psi = ((y + (1 - psizero)) - psizerorest) * csevlfixed<psiterms>(2 * y - 1, psics);
    for (int i = 1; i < n; i++) psi += 1 / (y + i);
    return psi;
}

// Gamma(s) q^-s, q > 0, without the overflow or underflow of a factor alone
double gammapower(double s, double q) {
    const double p = std::pow(q, -s);
    if (s <= 171 && p > MINPOS && p < MAXPOS) return factorials[int(s) - 1] * p;
    return std::exp(loggamma(s) - s * std::log(q));
}

// Gamma(s) zeta(s,q), s = 2, 3, ...
double gammazeta(double s, double q) { return gammapower(s, q) * hurwitzscaled(s, q); }
} // namespace

double digamma(double x) {
    if (x > 0) return capped("DIGAMMA", psipositive(x));
    if (x == std::trunc(x)) return outofrange("DIGAMMA", 0);
    if (x < -0.5 && std::fabs((x - std::trunc(x - 0.5)) / x) < 1.8249928e-8)
        spnote(SPWARN, "digamma: x too near an integer: reduced precision");
    return capped("DIGAMMA", psipositive(1 - x) - PI * cospi(x) / sinpi(x));
}

// psi^(n)(x) = (-1)^(n+1) n! zeta(n+1, x). Below zero the sum over k >= 0 is the sum over all
// integers less the part k < 0, which is a zeta at 1-x.
double pgamma(double n, double x) {
    if (!(n >= 0) || n != std::trunc(n) || (x <= 0 && x == std::trunc(x))) return outofrange("PGAMMA", 0);
    if (n == 0) return digamma(x);
    const double s = n + 1, sign = std::fmod(s, 2) == 0 ? 1 : -1;
    double result = gammazeta(s, x > 0 ? x : 1 - x);
    if (x < 0) {
        const double r = x - std::round(x), nearest = gammapower(s, std::fabs(r));
        result =
            (r > 0 ? nearest : sign * nearest) + gammazeta(s, 1 + r) + sign * (gammazeta(s, 1 - r) - result);
    }
    result *= sign;
    return cappedorpole("PGAMMA", result);
}

/* The differences 1/(a+k) - 1/(a+b+k) until a is large, then the difference of two asymptotic series, with
 * u = 1/a, v = 1/(a+b) term by term as in gammaratiorest. */
double digammadifference(double a, double b) {
    double sum = 0;
    for (; std::fmin(a, a + b) < 10; a++) sum += b / (a * (a + b));
    const double u = 1 / a, v = 1 / (a + b);
    double rest = 0.5, q = 1, vn = v; // q = (u^n - v^n)/(u - v), vn = v^n
    for (double ck : psitail) {
        q = u * q + vn;
        vn *= v;
        rest += ck * q;
        q = u * q + vn;
        vn *= v;
    }
    return sum + std::log1p(b / a) + rest * b * u * v;
}
