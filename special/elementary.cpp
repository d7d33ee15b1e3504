#include "special/elementary.h"

#include "interp/base/machine.h"
#include "special/range.h"

#include <cmath>

namespace {
// sqrt(x^2-1), x >= 1
double tangentofsecant(double x) { return std::sqrt(x - 1) * std::sqrt(x + 1); }

// x less the nearest multiple of 90, without error, and which quarter of the circle that is
double quarter(double x, int* q) {
    const double r = std::remquo(x, 90.0, q);
    *q &= 3;
    return r;
}

double sinofdegrees(double r) { return std::fabs(r) == 30 ? std::copysign(0.5, r) : std::sin(r * DEGREE); }
double cosofdegrees(double r) { return std::cos(r * DEGREE); }
} // namespace

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

double cotan(double x) { return capped("COTAN", 1 / std::tan(x)); }
double secant(double x) { return capped("SEC", 1 / std::cos(x)); }
double cosecant(double x) { return capped("COSEC", 1 / std::sin(x)); }
double acotan(double x) { return x == 0 ? PI / 2 : std::atan(1 / x); }

double asecant(double x) {
    if (!(std::fabs(x) >= 1)) return outofrange("ASEC", 0);
    const double a = std::atan(tangentofsecant(std::fabs(x)));
    return x > 0 ? a : PI - a;
}

double acosecant(double x) {
    if (!(std::fabs(x) >= 1)) return outofrange("ACOSEC", 0);
    return std::copysign(std::atan2(1, tangentofsecant(std::fabs(x))), x);
}

double cotanh(double x) { return capped("COTANH", 1 / std::tanh(x)); }

double sech(double x) {
    const double e = std::exp(-std::fabs(x));
    return 2 * e / (1 + e * e);
}

double cosech(double x) {
    if (std::fabs(x) < 20) return capped("COSECH", 1 / std::sinh(x));
    return std::copysign(2 * std::exp(-std::fabs(x)), x);
}

double acotanh(double x) {
    if (std::fabs(x) == 1) return capped("ACOTANH", std::copysign(HUGE_VAL, x));
    if (!(std::fabs(x) > 1)) return outofrange("ACOTANH", 0);
    return std::copysign(0.5 * std::log1p(2 / (std::fabs(x) - 1)), x);
}

double asech(double x) {
    if (x == 0) return capped("ASECH", HUGE_VAL);
    if (!(x > 0 && x <= 1)) return outofrange("ASECH", 0);
    const double y = 1 - x, root = std::sqrt(y * (1 + x));
    return x < 0.5 ? std::log1p(root) - std::log(x) : std::log1p((y + root) / x);
}

double acosech(double x) {
    if (x == 0) return capped("ACOSECH", std::copysign(HUGE_VAL, x));
    const double y = std::fabs(x);
    return std::copysign(y < 1e-9 ? 0.69314718055994530942 - std::log(y) : std::asinh(1 / y), x);
}

double sind(double x) {
    int q;
    const double r = quarter(x, &q);
    const double s = q % 2 == 0 ? sinofdegrees(r) : cosofdegrees(r);
    return q < 2 ? s : -s;
}

double cosd(double x) {
    int q;
    const double r = quarter(x, &q);
    const double c = q % 2 == 0 ? cosofdegrees(r) : -sinofdegrees(r);
    return q < 2 ? c : -c;
}

double tand(double x) {
    int q;
    const double r = quarter(x, &q), t = std::fabs(r) == 45 ? std::copysign(1.0, r) : std::tan(r * DEGREE);
    return q % 2 == 0 ? t : capped("TAND", r == 0 ? HUGE_VAL : -1 / t);
}

double asind(double x) { return std::asin(x) / DEGREE; }
double acosd(double x) { return std::acos(x) / DEGREE; }
double atand(double x) { return std::atan(x) / DEGREE; }

double modulus(double a, double b) {
    if (b == 0) return a;
    const double q = a / b, plain = a - std::floor(q) * b;
    if (std::fabs(q) < 0x1p53 && std::isfinite(plain)) return plain;
    const double r =
        std::fmod(a, b); // the quotient has no last digit left to round, or the product overflows
    return r != 0 && (r < 0) != (b < 0) ? r + b : r;
}

double rdup(double x, double d) {
    const double y = std::fabs(x), scale = std::pow(10, std::fabs(std::trunc(d)));
    const double scaled = d < 0 ? y / scale : y * scale, near = std::round(scaled);
    if (x == 0 || scaled >= 0x1p52) return x; // no decimals are left
    const double up = std::fabs(scaled - near) <= 8 * MACHEPS * scaled ? near : std::ceil(scaled);
    return capped("RDUP", std::copysign(d < 0 ? std::fmax(up, 1) * scale : up / scale, x));
}
