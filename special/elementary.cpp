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

double sinpisum(double a, double b) {
    const double s = a + b, t = s - a, rest = (a - (s - t)) + (b - t);
    return sinpi(s) + PI * rest * cospi(s);
}

// log(1+x) = 2 atanh(r) with r = x/(2+x), |r| <= 1/3; the term -x is taken out by 2r - x = -rx.
double log1pmx(double x) {
    if (!(x > -0.5 && x < 1)) return std::log1p(x) - x;
    constexpr double odd[] = {1. / 3,  1. / 5,  1. / 7,  1. / 9,  1. / 11, 1. / 13, 1. / 15, 1. / 17,
                              1. / 19, 1. / 21, 1. / 23, 1. / 25, 1. / 27, 1. / 29, 1. / 31, 1. / 33};
    const double r = x / (2 + x), r2 = r * r;
    double sum = 0;
    for (int k = r2 < 1e-3 ? 5 : r2 < 0.02 ? 9 : 15; k >= 0; k--) sum = sum * r2 + odd[k];
    return r * (2 * r2 * sum - x);
}
