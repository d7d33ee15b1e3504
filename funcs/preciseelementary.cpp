// Codes as in TOKEN.FIL. Formulas: NIST Digital Library of Mathematical Functions, chapter 4.
#include "funcs/preciseelementary.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr dd LN10{2.302585092994046, -2.1707562233822494e-16};
constexpr double MOSTEXPONENT = 700, MOSTANGLE = 1e6;

// exp(x) - 1, without cancellation.
dd exponentialless1(dd x) {
    if (std::fabs(x.hi) > 0.25) return ddexp(x) - 1.0;
    dd term = x, sum = x;
    for (int n = 2; n <= 24; n++) {
        term = term * x / dd(n);
        sum += term;
    }
    return sum;
}

// One step from the double's result: its error, some 1e-16, enters with its third power.
dd arctangent(dd x) {
    const double start = std::atan(x.hi);
    dd s, c;
    ddsincos(start, &s, &c);
    return dd(start) + (x * c - s) / (c + x * s);
}

bool exponential(dd x, dd& v, dd& slope) {
    slope = v = ddexp(x);
    return x.hi < MOSTEXPONENT;
}
bool logarithm(dd x, dd& v, dd& slope) {
    if (!(x.hi > 0)) return false;
    v = ddlog(x);
    slope = dd(1) / x;
    return true;
}
bool logarithmto(dd base, dd x, dd& v, dd& slope) {
    if (!logarithm(x, v, slope)) return false;
    v /= base;
    slope /= base;
    return true;
}
bool logarithm10(dd x, dd& v, dd& slope) { return logarithmto(LN10, x, v, slope); }
bool logarithm2(dd x, dd& v, dd& slope) { return logarithmto(DDLN2, x, v, slope); }
bool squareroot(dd x, dd& v, dd& slope) {
    if (!(x.hi > 0)) return false;
    v = ddsqrt(x);
    slope = dd(0.5) / v;
    return true;
}
bool sine(dd x, dd& v, dd& slope) {
    ddsincos(x, &v, &slope);
    return std::fabs(x.hi) < MOSTANGLE;
}
bool cosine(dd x, dd& v, dd& slope) {
    dd s;
    ddsincos(x, &s, &v);
    slope = -s;
    return std::fabs(x.hi) < MOSTANGLE;
}
bool tangent(dd x, dd& v, dd& slope) {
    dd s, c;
    ddsincos(x, &s, &c);
    v = s / c;
    slope = dd(1) / (c * c);
    return std::fabs(x.hi) < MOSTANGLE && c.hi != 0;
}
bool hyperbolicsine(dd x, dd& v, dd& slope) {
    if (!(std::fabs(x.hi) < MOSTEXPONENT)) return false;
    const dd e = exponentialless1(x), inverse = dd(1) / (e + 1.0);
    v = (e + e * inverse) * 0.5;
    slope = (e + 1.0 + inverse) * 0.5;
    return true;
}
bool hyperboliccosine(dd x, dd& v, dd& slope) { return hyperbolicsine(x, slope, v); }
bool hyperbolictangent(dd x, dd& v, dd& slope) {
    if (!(std::fabs(x.hi) < MOSTEXPONENT / 2)) return false;
    const dd e = exponentialless1(-fabs(x) * 2.0), size = -e / (e + 2.0);
    v = x.hi < 0 ? -size : size;
    slope = (e + 1.0) * 4.0 / ((e + 2.0) * (e + 2.0));
    return true;
}
bool arctangentof(dd x, dd& v, dd& slope) {
    if (!(std::fabs(x.hi) < 1e15)) return false;
    v = arctangent(x);
    slope = dd(1) / (x * x + 1.0);
    return true;
}
bool arcsine(dd x, dd& v, dd& slope) {
    if (!(std::fabs(x.hi) < 1)) return false;
    slope = dd(1) / ddsqrt((dd(1) - x) * (x + 1.0));
    v = arctangent(x * slope);
    return std::fabs((x * slope).hi) < 1e15;
}
bool arccosine(dd x, dd& v, dd& slope) {
    if (!arcsine(x, v, slope)) return false;
    v = ddscale(DDPI, -1) - v;
    slope = -slope;
    return true;
}
bool magnitude(dd x, dd& v, dd& slope) {
    v = fabs(x);
    slope = x.hi < 0 ? -1 : 1;
    return x.hi != 0;
}

constexpr struct {
    int code;
    bool (*run)(dd x, dd& v, dd& slope);
} functions[] = {{-1, exponential},
                 {-2, logarithm},
                 {-3, logarithm10},
                 {-67, logarithm2},
                 {-4, squareroot},
                 {-5, sine},
                 {-7, cosine},
                 {-9, tangent},
                 {-11, hyperbolicsine},
                 {-12, hyperboliccosine},
                 {-13, hyperbolictangent},
                 {-14, arcsine},
                 {-15, arccosine},
                 {-16, arctangentof},
                 {-23, magnitude}};

} // namespace

bool preciseelementary(int code, dd x, dd& value, dd& slope) {
    const auto* row = std::find_if(std::begin(functions), std::end(functions),
                                   [code](const auto& f) { return f.code == code; });
    return row != std::end(functions) && row->run(x, value, slope);
}
