#include "special/struve.h"

#include "special/besselimpl.h"
#include "special/elementary.h"
#include "special/hypersum.h"
#include "special/range.h"

#include <cmath>

namespace {

// The ascending series, DLMF 11.2.1 (s = -1) and 11.2.2 (s = 1), as (x/2)^(nu+1)/(Gamma(3/2) Gamma(nu+3/2))
// 1F2.
bool ascendingstruve(double nu, double x, int s, double* result) {
    int sign;
    const dd gamma = ddloggamma(dd(nu) + 1.5, &sign);
    widevalue v;
    if (sign == 0 || !hypersum({dd(1)}, {dd(1.5), dd(nu) + 1.5}, ddprod(x / 2, x / 2) * double(s), &v))
        return false;
    const dd half = ddsqrt(DDPI); // 2 Gamma(3/2)
    *result = widedouble(v, dd(2.0 * sign) / half, (dd(nu) + 1.0) * ddlog(x / 2) - gamma);
    return true;
}

/* H_nu(x) - Y_nu(x) (s = -1) or L_nu(x) - I_-nu(x) (s = 1) by the expansion for large x, DLMF 11.6.1, 11.6.2.
 * False if its terms do not reach the rounding error of `scale`. */
bool largestruve(double nu, double x, int s, double scale, double* difference) {
    int sign;
    const dd gamma = ddloggamma(dd(nu) + 0.5, &sign);
    if (sign == 0) { // half-odd negative order: the series ends before it begins
        *difference = 0;
        return true;
    }
    const dd e = (dd(nu) - 1.0) * ddlog(x / 2) - gamma;
    const double front = e.hi < 700 ? sign * ddexp(e).hi / std::sqrt(PI) : HUGE_VAL;
    double term = 1, sum = 1; // Gamma(k+1/2) Gamma(nu+1/2)/(Gamma(1/2) Gamma(nu+1/2-k)) (2/x)^2k
    const double r = 4 / (x * x);
    for (int k = 0; k < 1000; k++) {
        const double next = term * (k + 0.5) * (nu - 0.5 - k) * (s < 0 ? r : -r);
        if (std::fabs(next) > std::fabs(term) && k + 0.5 > nu) return false;
        term = next;
        sum += term;
        if (std::fabs(term * front) < 1e-17 * std::fabs(scale + sum * front) || term == 0) {
            *difference = s < 0 ? front * sum : -front * sum;
            return std::isfinite(*difference);
        }
    }
    return false;
}

bool halfodd(double nu) { return nu < 0 && isinteger(nu - 0.5); } // -1/2, -3/2, ..

double hpositive(double nu, double x) {
    if (nu < -1 && halfodd(nu)) return paritysign(-nu - 0.5) * besjraw(-nu, x); // DLMF 11.4.3
    double r;
    if (x > 20 && x > std::fabs(nu)) {
        const double y = besyraw(nu, x);
        if (largestruve(nu, x, -1, y, &r)) return y + r;
    }
    if (x < 20000 && ascendingstruve(nu, x, -1, &r)) return r;
    return outofrange("STRUVED", 0);
}

double lpositive(double nu, double x) {
    if (nu < -1 && halfodd(nu)) return besiraw(-nu, x, 0); // DLMF 11.4.4
    double r;
    if (x < 720 + std::fabs(nu) && ascendingstruve(nu, x, 1, &r)) return r;
    if (x > 30 && x > nu * nu / 2) { // overflow but for a huge order
        const double i = besiraw(-nu, x, 0);
        if (largestruve(nu, x, 1, i, &r)) return i + r;
    }
    if (ascendingstruve(nu, x, 1, &r)) return r;
    return outofrange("STRUVELD", x > nu ? MAXPOS : 0);
}

double any(const char* name, double (*positive)(double, double), double nu, double x) {
    if (std::isnan(nu + x)) return NAN;
    if (std::isinf(nu) || std::isinf(x)) return outofrange(name, 0);
    if (x == 0) {
        if (nu > -1) return 0;
        if (nu == -1) return 2 / PI;
        return halfodd(nu) ? 0 : outofrange(name, MAXPOS);
    }
    if (std::fabs(nu) > 1e15 || std::fabs(x) > 1e15) return outofrange(name, 0);
    if (x > 0) return cappedorpole(name, positive(nu, x));
    if (!isinteger(nu)) return outofrange(name, 0);
    return cappedorpole(name, -paritysign(nu) * positive(nu, -x));
}

} // namespace

double struved(double nu, double x) { return any("STRUVED", hpositive, nu, x); }
double struveld(double nu, double x) { return any("STRUVELD", lpositive, nu, x); }
