#include "special/elementary.h"

#include <cmath>

double sinpi(double x) {
    double r = x - 2 * std::round(0.5 * x); // exact, in [-1,1]
    if (r > 0.5) r = 1 - r;
    if (r < -0.5) r = -1 - r;
    return std::sin(PI * r);
}

double cospi(double x) {
    const double r = std::fabs(x - 2 * std::round(0.5 * x)); // in [0,1]
    if (r > 0.75) return -std::cos(PI * (1 - r));
    return r < 0.25 ? std::cos(PI * r) : std::sin(PI * (0.5 - r));
}

// log(1+x) = 2 atanh(r) with r = x/(2+x); the term -x is taken out by 2r - x = -rx.
double log1pmx(double x) {
    if (!(x > -0.5 && x < 1)) return std::log1p(x) - x;
    const double r = x / (2 + x), r2 = r * r;
    double sum = 0, power = r2;
    for (int k = 3; power > 1e-18; k += 2, power *= r2) sum += power / k;
    return r * (2 * sum - x);
}
