// I and K of any real order.
#include "special/bessel.h"
#include "special/besselimpl.h"
#include "special/elementary.h"
#include "special/range.h"

#include <cmath>

namespace {

constexpr double EPS = 1e-17;
constexpr double LARGEORDER = 50; // from here Debye's expansion is good for every argument

// Temme's series for x <= 2, J. Comput. Phys. 19 (1975) 324; exp(x) is put on at the end.
void temmekseries(double mu, double x, double* k0, double* k1) {
    const double b = 2 / x, d = std::log(b), e = mu * d;
    const temmegamma g = temmegammas(mu);
    const double sinc = mu == 0 ? 1 : PI * mu / sinpi(mu);
    const double sinhc = std::fabs(e) < 1e-8 ? 1 : std::sinh(e) / e;
    double f = sinc * (g.gam1 * std::cosh(e) + g.gam2 * sinhc * d);
    const double growth = std::exp(e);
    double p = growth / (2 * g.rplus), q = 1 / (2 * growth * g.rminus);
    double c = 1, sum = f, sum1 = p;
    for (int k = 1; k < 100; k++) {
        f = (k * f + p + q) / (double(k) * k - mu * mu);
        c *= x * x / 4 / k;
        p /= k - mu;
        q /= k + mu;
        sum += c * f;
        sum1 += c * (p - k * f);
        if (c * f < EPS * sum) break;
    }
    const double ex = std::exp(x);
    *k0 = ex * sum;
    *k1 = ex * sum1 * b;
}

// Steed's fraction with Temme's sum for x > 2, DLMF 10.74(v), I. J. Thompson and A. R. Barnett,
// Comput. Phys. Commun. 47 (1987) 245.
void steedk(double mu, double x, double* k0, double* k1) {
    const double a1 = 0.25 - mu * mu;
    double b = 2 * (1 + x), d = 1 / b, h = d, delta = d;
    double q1 = 0, q2 = 1, c = a1, q = a1, a = -a1, s = 1 + q * delta;
    for (int k = 2; k < 10000; k++) {
        a -= 2.0 * (k - 1);
        c = -a * c / k;
        const double qnew = (q1 - b * q2) / a;
        q1 = q2;
        q2 = qnew;
        q += c * qnew;
        b += 2;
        d = 1 / (b + a * d);
        delta *= b * d - 1;
        h += delta;
        s += q * delta;
        if (std::fabs(q * delta) < EPS * std::fabs(s)) break;
    }
    *k0 = std::sqrt(PI / (2 * x)) / s;
    *k1 = *k0 * (mu + x + 0.5 - a1 * h) / x;
}

// exp(x) K of orders nu and nu + 1 by upward recurrence.
void kpair(double nu, double x, double* k0, double* k1) {
    const double up = std::nearbyint(nu), mu = nu - up;
    temmek(mu, x, k0, k1);
    for (int k = 1; k <= up; k++) {
        const double t = 2 * (mu + k) / x * *k1 + *k0;
        *k0 = *k1;
        *k1 = t;
    }
}

// I_{nu+1}/I_nu by its continued fraction, DLMF 10.33.1; all terms are positive.
double iratio(double nu, double x) {
    const double r = 2 / x;
    double b = (nu + 1) * r, f = b, c = b, d = 0;
    for (int k = 2; k < 1000000; k++) {
        b = (nu + k) * r;
        d = 1 / (b + d);
        c = b + 1 / c;
        f *= c * d;
        if (std::fabs(c * d - 1) < 1e-16) break;
    }
    return 1 / f;
}

besik kany(double nu, double x) { // nu >= 0, x > 0
    if (x > 18)
        if (const besik r = hankelik(nu, x); r.good) return r;
    if (nu > LARGEORDER)
        if (const besik r = debyeik(nu, x); r.good) return r;
    besik r{true, 0, 0, 0, -x};
    double next;
    kpair(nu, x, &r.k, &next);
    return r;
}

besik iany(double nu, double x) { // nu >= 0, x > 0
    if (x <= 20 || x * x / 4 < 4 * (nu + 1)) {
        besik r{true, 0, 0, 0, 0};
        r.i = ascendingfactor(nu, x, &r.ei) * ascending(nu, x * x / 4, 1);
        return r;
    }
    if (const besik r = hankelik(nu, x); r.good) return r;
    if (nu > LARGEORDER)
        if (const besik r = debyeik(nu, x); r.good) return r;
    double k0, k1; // the Wronskian, DLMF 10.28.2
    kpair(nu, x, &k0, &k1);
    return {true, 1 / (x * (k1 + iratio(nu, x) * k0)), x, 0, 0};
}

} // namespace

besik besiwide(double nu, double x) { return iany(nu, x); }
besik beskwide(double nu, double x) { return kany(nu, x); }

double besiraw(double nu, double x, int shift) {
    const besik i = iany(std::fabs(nu), x);
    const double r = joinexponent(i.i, i.ei - shift * x);
    if (nu >= 0 || isinteger(nu)) return r;
    const besik k = kany(-nu, x); // DLMF 10.27.2
    return r + 2 / PI * sinpi(-nu) * joinexponent(k.k, k.ek - shift * x);
}

double beskraw(double nu, double x, int shift) {
    const besik k = kany(std::fabs(nu), x);
    return joinexponent(k.k, k.ek + shift * x);
}

namespace {

// True if I is 0 and K infinite at far orders or arguments: Debye's exponent has its zero at x = 0.6627 nu.
bool farsmall(double nu, double x) { return x < 0.6627 * std::fabs(nu); }

// I_nu(x) exp(-shift |x|), shift 0 or 1.
double ifunction(const char* name, double nu, double x, int shift) {
    if (std::isnan(nu) || std::isnan(x)) return nu + x;
    x = normalargument(name, x);
    if (std::isinf(nu)) return outofrange(name, 0);
    if (std::isinf(x)) return shift ? 0 : outofrange(name, MAXPOS);
    const bool whole = isinteger(nu);
    if (x < 0 && !whole) return outofrange(name, 0);
    if (x == 0) return nu == 0 ? 1 : nu > 0 || whole ? 0 : outofrange(name, MAXPOS);
    if (std::fabs(nu) > BESSELFAR || std::fabs(x) > BESSELFAR)
        return shift || farsmall(nu, std::fabs(x)) ? 0 : outofrange(name, MAXPOS);
    const double r = besiraw(nu, std::fabs(x), shift);
    return capped(name, x < 0 && paritysign(nu) < 0 ? -r : r);
}

// K_nu(x) exp(shift x).
double kfunction(const char* name, double nu, double x, int shift) {
    if (std::isnan(nu) || std::isnan(x)) return nu + x;
    x = normalargument(name, x);
    if (x < 0 || std::isinf(nu)) return outofrange(name, 0);
    if (x == 0) return outofrange(name, MAXPOS);
    if (std::isinf(x)) return 0;
    if (std::fabs(nu) > BESSELFAR || x > BESSELFAR)
        return farsmall(nu, x) ? outofrange(name, MAXPOS) : shift ? std::sqrt(PI / 2 / x) : 0;
    return capped(name, beskraw(nu, x, shift));
}

} // namespace

void temmek(double mu, double x, double* k0, double* k1) {
    if (x <= 2)
        temmekseries(mu, x, k0, k1);
    else
        steedk(mu, x, k0, k1);
}

double bessi(double nu, double x) {
    if (nu == 0 || nu == 1) return capped("BESSI", nu == 0 ? bessi0(x) : bessi1(x));
    return ifunction("BESSI", nu, x, 0);
}
double bessk(double nu, double x) {
    if (x > 1e-300 && nu == 0) return bessk0(x);
    if (x > 1e-300 && nu == 1) return bessk1(x);
    return kfunction("BESSK", nu, x, 0);
}
double besies(double nu, double x) { return ifunction("BESIES", nu, x, 1); }
double beskes(double nu, double x) { return kfunction("BESKES", nu, x, 1); }
double besks(double nu, double x) { return kfunction("BESKS", nu, x, 0); }

double abessi(double nu, double x) {
    if (nu >= 0 && x >= MINPOS && x <= BESSELFAR && nu <= BESSELFAR) {
        if (const besik r = hankelik(nu, x); r.good) return capped("ABESSI", joinexponent(r.i, r.ei));
        if (const besik r = debyeik(nu, x); r.good) return capped("ABESSI", joinexponent(r.i, r.ei));
    }
    return ifunction("ABESSI", nu, x, 0);
}

double abessk(double nu, double x) {
    if (nu >= 0 && x >= MINPOS && x <= BESSELFAR && nu <= BESSELFAR) {
        if (const besik r = hankelik(nu, x); r.good) return joinexponent(r.k, r.ek);
        if (const besik r = debyeik(nu, x); r.good) return capped("ABESSK", joinexponent(r.k, r.ek));
    }
    return kfunction("ABESSK", nu, x, 0);
}

double bessinu(double nu, double x) { return ifunction("BESSI", nu, x, 0); }

void rnknus(double nu, double x, double* k0, double* k1) {
    if (nu <= 0.5) {
        temmek(nu, x, k0, k1);
        return;
    }
    double below;
    temmek(nu - 1, x, &below, k0);
    *k1 = 2 * nu / x * *k0 + below;
}
