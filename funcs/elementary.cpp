/* The scalar functions that the mathematical library of the language knows, and rounding, remainder,
 * extremes. A fault has a repaired value: overflow MAXPOS or MAXNEG; a domain or singularity error the value
 * that the System V Interface Definition (third edition, matherr) gives with its HUGE read as MAXPOS.
 * Underflow is silent. */
#include "funcs/builtin.h"
#include "funcs/rows.h"
#include "interp/base/fpfault.h"
#include "interp/base/numtext.h"
#include "interp/base/report.h"
#include "special/expcolumn.h"
#include "special/sincolumn.h"

#include <cmath>
#include <iterator>

namespace {

constexpr double DEGREE = 0.01745329251994; // of the circular functions of degrees
constexpr double DEGREESPERRADIAN = 57.295779513082320877;
constexpr double PI = 3.14159265358979323846, LN2 = 0.69314718055994530942;

double domain(const char* name, double value) { return matherr(MEDOMAIN, name, value); }
double singular(const char* name, double value) { return matherr(MESING, name, value); }

double expof(double x) { return fpcheck(expone(x)); }

using libraryfunction = double (*)(double);
template <libraryfunction f> double logarithm(double x, const char* name) {
    if (x > 0) return f(x);
    return x == 0 ? singular(name, MAXNEG) : domain(name, MAXNEG);
}
double logof(double n, double x, double base) {
    const double r = logarithm<std::log>(x, "log");
    return n < 2 ? r : fpdiv(r, logarithm<std::log>(base, "log"));
}
double log10of(double x) { return logarithm<std::log10>(x, "log10"); }
double log2of(double x) { return logarithm<std::log2>(x, "log2"); }
double sqrtof(double x) { return x >= 0 ? std::sqrt(x) : domain("sqrt", 0); }

double sinof(double x) { return sinone(x); }
double cosof(double x) { return cosone(x); }
double tanof(double x) { return std::tan(x); }
double sindof(double x) { return std::sin(x * DEGREE); }
double cosdof(double x) { return std::cos(x * DEGREE); }
double tandof(double x) { return std::tan(x * DEGREE); }
double cotanof(double x) { return fpdiv(1, std::tan(x)); }
double secof(double x) { return fpdiv(1, std::cos(x)); }
double cosecof(double x) { return fpdiv(1, std::sin(x)); }

double asinof(double x) { return std::fabs(x) <= 1 ? std::asin(x) : domain("asin", 0); }
double acosof(double x) { return std::fabs(x) <= 1 ? std::acos(x) : domain("acos", 0); }
double atanof(double x) { return std::atan(x); }
double asindof(double x) { return asinof(x) * DEGREESPERRADIAN; }
double acosdof(double x) { return acosof(x) * DEGREESPERRADIAN; }
double atandof(double x) { return std::atan(x) * DEGREESPERRADIAN; }
double atan2of(double y, double x) { return std::atan2(y, x); }
// The principal value arctan(1/x) (DLMF 4.23.9), pi/2 at 0.
double acotanof(double x) { return x == 0 ? PI / 2 : std::atan(1 / x); }
// sqrt(x^2 - 1) without overflow, and without loss next to 1; x >= 1.
double rootbelow(double x) { return std::sqrt(x - 1) * std::sqrt(x + 1); }
double asecof(double x) {
    if (std::fabs(x) < 1) return domain("asec", 0);
    const double angle = std::atan(rootbelow(std::fabs(x)));
    return x > 0 ? angle : PI - angle;
}
double acosecof(double x) {
    if (std::fabs(x) < 1) return domain("acosec", 0);
    return std::copysign(std::atan2(1, rootbelow(std::fabs(x))), x);
}

double sinhof(double x) { return fpcheck(std::sinh(x)); }
double coshof(double x) { return fpcheck(std::cosh(x)); }
double tanhof(double x) { return std::tanh(x); }
double cosechof(double x) { return fpdiv(1, std::sinh(x)); }
double sechof(double x) { return 1 / std::cosh(x); }
double cotanhof(double x) { return fpdiv(1, std::tanh(x)); }
double asinhof(double x) { return std::asinh(x); }
double acoshof(double x) { return x >= 1 ? std::acosh(x) : domain("acosh", 0); }
double atanhof(double x) {
    if (std::fabs(x) < 1) return std::atanh(x);
    return std::fabs(x) == 1 ? singular("atanh", std::copysign(MAXPOS, x)) : domain("atanh", 0);
}
// Through log1p of the distance to 1, which keeps its digits where the reciprocal of x would lose them.
double acotanhof(double x) {
    const double a = std::fabs(x);
    if (a < 1) return domain("acotanh", 0);
    if (a == 1) return singular("acotanh", std::copysign(MAXPOS, x));
    return std::copysign(0.5 * std::log1p(2 / (a - 1)), x);
}
double asechof(double x) {
    if (x == 0) return singular("asech", MAXPOS);
    if (x < 0 || x > 1) return domain("asech", 0);
    return std::log1p(std::sqrt((1 - x) * (1 + x))) - std::log(x);
}
double acosechof(double x) {
    const double a = std::fabs(x);
    if (a == 0) return singular("acosech", std::copysign(MAXPOS, x));
    return a > 1e-300 ? std::asinh(1 / x) : std::copysign(LN2 - std::log(a), x);
}

double absof(double x) { return std::fabs(x); }
double floorof(double x) { return std::floor(x); }
double ceilingof(double x) { return std::ceil(x); }
double roundof(double x) { return std::round(x); } // halves away from zero
double truncof(double x) { return std::trunc(x); }
double signof(double x) { return x > 0 ? 1 : x < 0 ? -1 : 0; }
double modof(double a, double b) { return fpcheck(a - fpcheck(std::floor(fpdiv(a, b)) * b)); }

double largest(const double* x, int n) {
    double r = x[0];
    for (int k = 1; k < n; k++) r = r < x[k] ? x[k] : r;
    return r;
}
double smallest(const double* x, int n) {
    double r = x[0];
    for (int k = 1; k < n; k++) r = x[k] < r ? x[k] : r;
    return r;
}

bool wholepair(double a, double b, const char* name) {
    constexpr double most = 9007199254740992; // whole numbers beyond this are not told apart
    if (a == std::floor(a) && b == std::floor(b) && std::fabs(a) <= most && std::fabs(b) <= most) return true;
    rangewarn(name);
    return false;
}
double euclid(double a, double b) {
    while (b != 0) {
        const double r = std::fmod(a, b);
        a = b;
        b = r;
    }
    return std::fabs(a);
}
double gcdof(double a, double b) { return wholepair(a, b, "GCD") ? euclid(a, b) : 0; }
double lcmof(double a, double b) {
    if (!wholepair(a, b, "LCM") || a == 0 || b == 0) return 0;
    return std::fabs(a / euclid(a, b) * b);
}

double typeout(double x) {
    tarnprint("%s\n", numstring(x).c_str());
    return x;
}

constexpr scalarrow rows[] = {
    {-1, expof},      {-2, logof, COUNTED}, {-3, log10of},    {-67, log2of},
    {-4, sqrtof},     {-5, sinof},          {-6, sindof},     {-7, cosof},
    {-8, cosdof},     {-9, tanof},          {-10, tandof},    {-64, cotanof},
    {-74, secof},     {-75, cosecof},       {-14, asinof},    {-15, acosof},
    {-16, atanof},    {-19, atan2of},       {-79, acotanof},  {-80, asecof},
    {-81, acosecof},  {-116, asindof},      {-117, acosdof},  {-118, atandof},
    {-11, sinhof},    {-12, coshof},        {-13, tanhof},    {-111, cosechof},
    {-112, sechof},   {-113, cotanhof},     {-46, asinhof},   {-47, acoshof},
    {-48, atanhof},   {-49, acotanhof},     {-50, asechof},   {-51, acosechof},
    {-23, absof},     {-18, floorof},       {-45, ceilingof}, {-57, roundof},
    {-82, truncof},   {-65, signof},        {-20, modof},     {-205, largest},
    {-206, smallest}, {-83, gcdof},         {-85, lcmof},     {-100, typeout, IMPURE},
};

void sqrtcolumn(const double* x, double* y, size_t n) {
    for (size_t i = 0; i < n; i++) y[i] = std::sqrt(x[i]);
}
void abscolumn(const double* x, double* y, size_t n) {
    for (size_t i = 0; i < n; i++) y[i] = std::fabs(x[i]);
}

constexpr columnrow columns[] = {
    {-1, expcolumn}, {-4, sqrtcolumn}, {-5, sincolumn}, {-7, coscolumn}, {-23, abscolumn}};

} // namespace

void elementaryrows() {
    builtinadd(rows, int(std::size(rows)));
    builtinadd(columns, int(std::size(columns)));
}
