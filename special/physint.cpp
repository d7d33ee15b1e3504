#include "special/physint.h"

#include "special/elementary.h"
#include "special/gamma.h"
#include "special/quadrature.h"
#include "special/range.h"

#include <cmath>
#include <complex>

namespace {
using complex = std::complex<double>;

// sec(t) = cosh(s), dt = ds/cosh(s); relative to s = 0
double sievertintegrand(double s, void* context) {
    const double x = *static_cast<const double*>(context), half = std::sinh(0.5 * s);
    return std::exp(-2 * x * half * half) / std::cosh(s);
}

// The t > 0 where t^(m+1) exp(-t^2 - x/t) is largest: 2 t^3 - (m+1) t = x, by Newton from above.
double abrampeak(double m, double x) {
    double t = std::cbrt(0.5 * x) + std::sqrt(0.5 * std::fmax(0, m + 1));
    for (int k = 0; k < 100; k++) {
        const double step = ((2 * t * t - (m + 1)) * t - x) / (6 * t * t - (m + 1));
        t -= step;
        if (!(step > 1e-10 * t)) break;
    }
    return t;
}

/* With t = peak exp(s), peak on the ray where t^2 and z/t have the same angle, the integrand falls off doubly
 * exponentially on both sides, so that the trapezoidal rule converges exponentially in 1/h. */
struct abramjob {
    double m;
    complex peak, square, quotient; // peak^2, z/peak
};

complex abramterm(const abramjob& j, double s) {
    return std::exp((j.m + 1) * s - j.square * std::expm1(2 * s) - j.quotient * std::expm1(-s));
}

complex abramsum(double m, complex z) {
    const double r = abrampeak(m, std::abs(z));
    const complex peak = std::polar(r, std::arg(z) / 3);
    const abramjob job = {m, peak, peak * peak, z / peak};
    const complex exponent = job.square + job.quotient;
    const double start = (m + 1) * std::log(r) - exponent.real();
    if (!(start > -760)) return 0;
    // the strip around the path where the integrand stays small narrows as the argument of z grows
    const double narrow = 1 - std::fabs(std::arg(z)) / PI;
    const double h = narrow * std::fmin(0.08, 0.5 / std::sqrt(4 * r * r + std::abs(job.quotient)));
    complex sum = 1;
    for (double side : {h, -h})
        for (int k = 1; k < 100000; k++) {
            const complex term = abramterm(job, k * side);
            sum += term;
            if (!(std::abs(term) > 1e-19 * std::abs(sum))) break;
        }
    return h * sum * std::polar(std::exp(start), (m + 1) * std::arg(peak) - exponent.imag());
}

bool abramdomain(double m, double re, double im, const char* name) {
    return (re >= 0 && !std::isnan(m) && !std::isnan(im)) || outofrange(name, 0);
}

// f_m(0) = Gamma((m+1)/2)/2
double abramorigin(double m, const char* name) {
    return capped(name, m > -1 ? 0.5 / rgamma(0.5 * (m + 1)) : HUGE_VAL);
}
} // namespace

double sievert(double x, double theta) {
    if (!(x >= 0 && std::fabs(theta) <= PI / 2)) return outofrange("SIEVERT", 0);
    if (theta == 0 || x > 750) return 0; // below exp(-x)
    double reach = std::fmin(45, std::asinh(std::tan(std::fabs(theta))));
    if (x > 0) reach = std::fmin(reach, 2 * std::asinh(std::sqrt(22.5 / x)));
    return std::copysign(std::exp(-x) * quadthirds(sievertintegrand, &x, 0, reach, 1e-15), theta);
}

double abram(double m, double x) {
    if (!abramdomain(m, x, 0, "ABRAM")) return 0;
    return x == 0 ? abramorigin(m, "ABRAM") : cappedorpole("ABRAM", abramsum(m, x).real());
}

complexpair cabram(double m, double re, double im) {
    if (!abramdomain(m, re, im, "CABRAM")) return {0, 0};
    if (re == 0 && im == 0) return {abramorigin(m, "CABRAM"), 0};
    const complex f = abramsum(m, complex(re, im));
    if (std::isfinite(f.real()) && std::isfinite(f.imag())) return {f.real(), f.imag()};
    return {outofrange("CABRAM", MAXPOS), 0};
}
