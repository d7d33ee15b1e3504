#include "special/errorfn.h"

#include <cmath>

namespace {
/* W. J. Cody, Rational Chebyshev approximations for the error function, Math. Comp. 23 (1969) 631:
 * erf(x)/x in x^2 on |x| <= 0.46875, erfcx(x) on 0.46875..4, and the rest of its asymptotic form in
 * 1/x^2 beyond. The coefficients are those of his CALERF (SPECFUN, netlib), highest power in the last cell of
 * the numerators' tables. Errors below 6e-19. */
constexpr double erfa[] = {3.16112374387056560e00, 1.13864154151050156e02, 3.77485237685302021e02,
                           3.20937758913846947e03, 1.85777706184603153e-1};
constexpr double erfb[] = {2.36012909523441209e01, 2.44024637934444173e02, 1.28261652607737228e03,
                           2.84423683343917062e03};
constexpr double erfc1[] = {5.64188496988670089e-1, 8.88314979438837594e00, 6.61191906371416295e01,
                            2.98635138197400131e02, 8.81952221241769090e02, 1.71204761263407058e03,
                            2.05107837782607147e03, 1.23033935479799725e03, 2.15311535474403846e-8};
constexpr double erfd[] = {1.57449261107098347e01, 1.17693950891312499e02, 5.37181101862009858e02,
                           1.62138957456669019e03, 3.29079923573345963e03, 4.36261909014324716e03,
                           3.43936767414372164e03, 1.23033935480374942e03};
constexpr double erfp[] = {3.05326634961232344e-1, 3.60344899949804439e-1, 1.25781726111229246e-1,
                           1.60837851487422766e-2, 6.58749161529837803e-4, 1.63153871373020978e-2};
constexpr double erfq[] = {2.56852019228982242e00, 1.87295284992346047e00, 5.27905102951428412e-1,
                           6.05183413124413191e-2, 2.33520497626869185e-3};
constexpr double insqrtpi = 5.6418958354775628695e-1; // 1/sqrt(pi)

// Cody's arrangement: the leading coefficient of the numerator last, that of the denominator one.
template <int n> double codyratio(const double* num, const double* den, double t) {
    double p = num[n] * t, q = t;
    for (int k = 0; k < n - 1; k++) {
        p = (p + num[k]) * t;
        q = (q + den[k]) * t;
    }
    return (p + num[n - 1]) / (q + den[n - 1]);
}

double erfcentre(double x) { return x * codyratio<4>(erfa, erfb, x * x); }

// erfcx(y), y > 0.46875
double erfcxright(double y) {
    if (y <= 4) return codyratio<8>(erfc1, erfd, y);
    if (y > 1e8) return insqrtpi / y;
    const double w = 1 / (y * y);
    return (insqrtpi - w * codyratio<5>(erfp, erfq, w)) / y;
}

// exp(-y*y), the square split so that its rounding is not magnified
double gaussexp(double y) {
    const double head = std::trunc(y * 16) / 16, rest = (y - head) * (y + head);
    return std::exp(-head * head) * std::exp(-rest);
}
} // namespace

double erffn(double x) {
    const double y = std::fabs(x);
    if (y <= 0.46875) return erfcentre(x);
    if (y > 6) return std::copysign(1.0, x);
    return std::copysign(0.5 + (0.5 - gaussexp(y) * erfcxright(y)), x);
}

double erfcfn(double x) {
    const double y = std::fabs(x);
    if (y <= 0.46875) return 1 - erfcentre(x);
    if (y > 27) return x > 0 ? 0 : 2;
    const double tail = gaussexp(y) * erfcxright(y);
    return x > 0 ? tail : 2 - tail;
}

double erfcx(double x) {
    if (x > 0.46875) return erfcxright(x);
    if (x >= -0.46875) return std::exp(x * x) * (1 - erfcentre(x));
    return 2 / gaussexp(x) - erfcxright(-x);
}
