// Integrals of Bessel functions.
#include "interp/base/machine.h"
#include "special/bessel.h"
#include "special/besselimpl.h"
#include "special/besseltables.h"
#include "special/elementary.h"
#include "special/fault.h"
#include "special/polyval.h"

#include <cmath>

namespace {

constexpr double LARGE = 40; // the expansion at infinity is good to exp(-x)

// exp(-x) times the integral of I_0 from 0 to x >= 40: the series whose derivative is DLMF 10.40.1.
double i0integralscaled(double x) {
    double a = 1, c = 1, sum = 1, power = 1, last = 1;
    for (int k = 1; k < 60; k++) {
        const double odd = 2.0 * k - 1;
        a *= odd * odd / (8 * k);
        c = a + (k - 0.5) * c;
        power /= x;
        const double term = c * power;
        if (term > last) break;
        sum += term;
        last = term;
        if (term < 1e-17) break;
    }
    return sum / std::sqrt(2 * PI * x);
}

} // namespace

double ibessi0(double x) {
    const double a = std::fabs(x);
    double r;
    if (a <= LARGE) { // integrated term by term
        double term = 1;
        r = 1;
        for (int k = 1; term > 1e-18 * r; k++) {
            term *= a * a / (4.0 * k * k);
            r += term / (2 * k + 1);
        }
        r *= a;
    } else {
        r = a > 1e4 ? HUGE_VAL : joinexponent(i0integralscaled(a), a);
    }
    if (r > MAXPOS) {
        rangewarn("IBESSI0");
        r = MAXPOS;
    }
    return x < 0 ? -r : r;
}

double ibessjoxi(double x) {
    if (std::isnan(x)) return x;
    if (x > 0 && x < 1e-300) return -(std::log(x) - std::log(2.0) + EULERGAMMA);
    if (x <= 0) {
        rangewarn("IBESSJOXI");
        return x == 0 ? MAXPOS : 0;
    }
    if (x <= 8) return x * x * polyval(IBESJ0XSMALL, x * x / 32 - 1) - (std::log(x / 2) + EULERGAMMA);
    if (std::isinf(x)) return 0;
    const double r = 1 / x, t = 128 * r * r - 1;
    const double p = polyval(IBESJ0XP, t), q = polyval(IBESJ0XQ, t) * r;
    // H = (q - ip) exp(i(x - pi/4)) in the table's form; the real part is J's
    const double s = std::sin(x), c = std::cos(x);
    const double cs = (c + s) * M_SQRT1_2, sn = (s - c) * M_SQRT1_2;
    return std::sqrt(2 / PI * r) * r * (q * cs + p * sn);
}
