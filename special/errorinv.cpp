#include "interp/base/machine.h"
#include "special/errorfn.h"
#include "special/fault.h"
#include "special/gamma.h"

#include <cmath>

namespace {
/* M. J. Wichura, Algorithm AS 241: The percentage points of the normal distribution, Applied Statistics 37
 * (1988) 477, PPND16: numerators and denominators of three regions, lowest power first; about 1e-16. */
constexpr double midnum[] = {3.3871328727963666080e0, 1.3314166789178437745e2, 1.9715909503065514427e3,
                             1.3731693765509461125e4, 4.5921953931549871457e4, 6.7265770927008700853e4,
                             3.3430575583588128105e4, 2.5090809287301226727e3};
constexpr double midden[] = {1.0,
                             4.2313330701600911252e1,
                             6.8718700749205790830e2,
                             5.3941960214247511077e3,
                             2.1213794301586595867e4,
                             3.9307895800092710610e4,
                             2.8729085735721942674e4,
                             5.2264952788528545610e3};
constexpr double tailnum[] = {1.42343711074968357734e0,  4.63033784615654529590e0, 5.76949722146069140550e0,
                              3.64784832476320460504e0,  1.27045825245236838258e0, 2.41780725177450611770e-1,
                              2.27238449892691845833e-2, 7.74545014278341407640e-4};
constexpr double tailden[] = {1.0,
                              2.05319162663775882187e0,
                              1.67638483018380384940e0,
                              6.89767334985100004550e-1,
                              1.48103976427480074590e-1,
                              1.51986665636164571966e-2,
                              5.47593808499534494600e-4,
                              1.05075007164441684324e-9};
constexpr double farnum[] = {6.65790464350110377720e0,  5.46378491116411436990e0,  1.78482653991729133580e0,
                             2.96560571828504891230e-1, 2.65321895265761230930e-2, 1.24266094738807843860e-3,
                             2.71155556874348757815e-5, 2.01033439929228813265e-7};
constexpr double farden[] = {1.0,
                             5.99832206555887937690e-1,
                             1.36929880922735805310e-1,
                             1.48753612908506148525e-2,
                             7.86869131145613259100e-4,
                             1.84631831751005468180e-5,
                             1.42151175831644588870e-7,
                             2.04426310338993978564e-15};
constexpr double insqrt2 = 0.70710678118654752440;

double ratio7(const double* num, const double* den, double t) {
    double p = num[7], q = den[7];
    for (int k = 6; k >= 0; k--) {
        p = p * t + num[k];
        q = q * t + den[k];
    }
    return p / q;
}

// |p| <= 0.85
double erfinvcentre(double p) {
    const double q = 0.5 * p;
    return insqrt2 * q * ratio7(midnum, midden, 0.180625 - q * q);
}

// 0 < q < 0.15
double erfcinvtail(double q) {
    const double r = std::sqrt(0.69314718055994530942 - std::log(q)); // q may be subnormal
    return insqrt2 * (r <= 5 ? ratio7(tailnum, tailden, r - 1.6) : ratio7(farnum, farden, r - 5));
}

// The series in powers of x (Abramowitz and Stegun 7.2.4), even and odd terms apart; little cancels while
// x sqrt(2n) is small.
double ierfcseries(int n, double x) {
    const double scale = std::ldexp(1.0, -n);
    double even = scale * rgamma(1 + 0.5 * n), odd = -2 * x * scale * rgamma(0.5 + 0.5 * n), sum = even + odd;
    for (int k = 0; k < 200; k += 2) {
        even *= 2 * x * x * (n - k) / ((k + 1.0) * (k + 2));
        odd *= 2 * x * x * (n - k - 1) / ((k + 2.0) * (k + 3));
        sum += even + odd;
        if (std::fabs(even) + std::fabs(odd) < 1e-18 * std::fabs(sum)) break;
    }
    return sum;
}

/* The ratios i^k/i^(k-1), by the recurrence backwards from far enough (W. Gautschi, SIAM Review 9
 * (1967) 24), multiplied up to n. */
double ierfcbackward(int n, double x) {
    const double reach = std::sqrt(2.0 * n) + 20 / x;
    const int start = int(0.5 * reach * reach) + 10;
    double ratio = 1 / (x + std::sqrt(x * x + 2.0 * start)), product = 1;
    for (int k = start; k >= 1; k--) {
        if (k <= n) product *= ratio;
        ratio = 1 / (2 * x + 2 * k * ratio); // i^(k-1)/i^(k-2)
    }
    return product * erfcfn(x);
}

// x <= 0: all terms of the forward recurrence have one sign.
double ierfcforward(double n, double x) {
    double before = 2 * 0.56418958354775628695 * std::exp(-x * x), now = erfcfn(x);
    for (double k = 1; k <= n && now != 0 && std::isfinite(now); k++) {
        const double next = (0.5 * before - x * now) / k;
        before = now;
        now = next;
    }
    return now;
}
} // namespace

double erfinv(double p) {
    const double a = std::fabs(p);
    if (!(a <= 1)) {
        rangewarn("ERFI");
        return 0;
    }
    if (a == 1) return p > 0 ? MAXPOS : MAXNEG;
    return a <= 0.85 ? erfinvcentre(p) : std::copysign(erfcinvtail(1 - a), p);
}

double erfcinv(double q) {
    if (!(q >= 0 && q <= 2)) {
        rangewarn("ERFCI");
        return 0;
    }
    if (q == 0) return MAXPOS;
    if (q == 2) return MAXNEG;
    if (q < 0.15) return erfcinvtail(q);
    return q <= 1.85 ? erfinvcentre(1 - q) : -erfcinvtail(2 - q);
}

double ierfc(double n, double x) {
    if (!(n >= -1) || n != std::trunc(n) || std::isnan(x)) {
        rangewarn("IERFC");
        return 0;
    }
    if (n == -1) return 2 * 0.56418958354775628695 * std::exp(-x * x);
    if (n == 0) return erfcfn(x);
    if (x > 0) {
        if (n > 300 || x > 27) return 0; // below 2^-n / Gamma(1+n/2) or erfc(x)
        return x * std::sqrt(2 * n) < 1.5 ? ierfcseries(int(n), x) : ierfcbackward(int(n), x);
    }
    const double result = ierfcforward(n, x);
    if (std::isfinite(result)) return result;
    rangewarn("IERFC");
    return MAXPOS;
}
