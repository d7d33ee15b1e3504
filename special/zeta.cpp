#include "special/zeta.h"

#include "special/elementary.h"
#include "special/gamma.h"
#include "special/range.h"

#include <cmath>

namespace {
// B(2k)/(2k)! of the Euler-Maclaurin formula, DLMF 25.11.9; made by tools/special/zetatables.py.
constexpr double eulermac[] = {0,
                               0.083333333333333333333,
                               -0.0013888888888888888889,
                               0.000033068783068783068783,
                               -8.2671957671957671958e-7,
                               2.0876756987868098979e-8,
                               -5.2841901386874931848e-10,
                               1.3382536530684678833e-11,
                               -3.3896802963225828668e-13,
                               8.5860620562778445641e-15,
                               -2.174868698558061873e-16,
                               5.5090028283602295152e-18,
                               -1.3954464685812523341e-19};

/* The tail of sum (q+k)^-s from q on, in units of q^-s, by Euler and Maclaurin: q/(s-1) + 1/2 +
 * sum of B(2k)/(2k)! s(s+1)..(s+2k-2) q^(1-2k). Good for q >= 10, s < q. */
double zetatail(double s, double q) {
    const double w = 1 / (q * q);
    double sum = q / (s - 1) + 0.5, t = s / q;
    for (int k = 1; k <= 12; k++) {
        const double term = eulermac[k] * t;
        sum += term;
        if (std::fabs(term) < 1e-18 * std::fabs(sum)) break;
        t *= (s + 2 * k - 1) * (s + 2 * k) * w;
    }
    return sum;
}

/* Gamma(t) (2 pi)^-t for t >= 10 by Stirling's formula, where the gamma function alone would overflow;
 * the power as a square, since it overflows before the product with 1/e does not. */
double gammaoverpower(double t) {
    const double half = std::pow(t / (2 * PI * 2.71828182845904523536), 0.5 * t);
    return half * half * (std::sqrt(2 * PI / t) * std::exp(r9lgmc(t)));
}

// The weights of H. Cohen, F. Rodriguez Villegas and D. Zagier, Experimental Mathematics 9 (2000) 3,
// algorithm 1, for an alternating sum; the error is 5.8^-terms.
struct alternating {
    static constexpr int terms = 24;
    double weight[terms];
    constexpr alternating() : weight() {
        double d = 1;
        for (int k = 0; k < terms; k++) d *= 5.82842712474619009760; // 3 + sqrt(8)
        d = (d + 1 / d) / 2;
        double b = -1, c = -d;
        for (int k = 0; k < terms; k++) {
            c = b - c;
            weight[k] = c / d;
            b *= (k + terms) * double(k - terms) / ((k + 0.5) * (k + 1));
        }
    }
};

// zeta(s), s > -1/2 and not 1: nine terms, of which four powers are the others' products, and the tail.
double zetaright(double s) {
    const double p2 = std::exp(-0.69314718055994530942 * s), p3 = std::exp(-1.0986122886681096914 * s);
    const double p5 = std::exp(-1.6094379124341003746 * s), p7 = std::exp(-1.9459101490553133051 * s);
    const double sum = 1 + (p2 + (p3 + (p2 * p2 + (p5 + (p2 * p3 + (p7 + (p2 * p2 * p2 + p3 * p3)))))));
    return s > 20 ? sum : sum + p2 * p5 * zetatail(s, 10);
}

// zeta(s), s not 1; infinite if it overflows. Below zero by DLMF 25.4.1.
double zetaopen(double s) {
    if (s >= -0.1) return zetaright(s);
    const double sine = sinpi(0.5 * s), t = 1 - s;
    if (sine == 0) return 0;
    const double g = t < 10 ? gammafn(t) * std::pow(2 * PI, -t) : gammaoverpower(t);
    return 2 * sine * g * zetaright(t);
}
} // namespace

double hurwitzscaled(double s, double q) {
    if (q > 1e9 && s > 0.5 * q) return -1 / std::expm1(-s / q); // (1+k/q)^-s is exp(-s/q)^k, and q+1 may be q
    double sum = 0, x = q;
    const double far = std::fmax(10, s + 8);
    for (; x < far; x++) {
        const double term = std::pow(x / q, -s);
        sum += term;
        if (term < 1e-18 * sum) return sum;
    }
    return sum + std::pow(x / q, -s) * zetatail(s, x);
}

double hurwitz(double s, double q) { return std::pow(q, -s) * hurwitzscaled(s, q); }

double zeta(double s) { return capped("ZETA", s == 1 ? HUGE_VAL : zetaopen(s)); }

double lambdafn(double s) {
    if (s < 0 && sinpi(0.5 * s) == 0) return 0;
    constexpr double ln2 = 0.69314718055994530942;
    return capped("LAMBDA", s == 1 ? HUGE_VAL : -std::expm1(-s * ln2) * zetaopen(s));
}

double betacat(double s) {
    if (std::isnan(s)) return s;
    static constexpr alternating sums;
    if (s >= 0) {
        double sum = 0;
        for (int k = alternating::terms - 1; k >= 0; k--) sum += sums.weight[k] * std::pow(2 * k + 1, -s);
        return sum;
    }
    const double cosine = cospi(0.5 * s), t = 1 - s;
    if (cosine == 0) return 0;
    const double g = t < 10 ? gammafn(t) * std::pow(2 / PI, t) : gammaoverpower(t) * std::pow(4, t);
    return capped("BETACAT", cosine * g * betacat(t));
}
