// J and Y of any real order.
#include "special/bessel.h"
#include "special/besselimpl.h"
#include "special/besseltables.h"
#include "special/doubledouble.h"
#include "special/elementary.h"
#include "special/range.h"

#include <cmath>
#include <complex>

temmegamma temmegammas(double mu) {
    double odd = 0, even = 0;
    const double m2 = mu * mu;
    for (int k = 24; k >= 0; k -= 2) {
        even = even * m2 + RGAMMA1[k];
        odd = odd * m2 + RGAMMA1[k + 1];
    }
    return {-odd, even, even + mu * odd, even - mu * odd};
}

namespace {

// pi mu/sin(pi mu) and sinh(e)/e, 1 at 0.
double inversesinc(double mu) { return mu == 0 ? 1 : PI * mu / sinpi(mu); }
double sinhc(double e) { return std::fabs(e) < 1e-8 ? 1 : std::sinh(e) / e; }

} // namespace

// Temme's series, J. Comput. Phys. 21 (1976) 343.
void temmey(double mu, double x, double* y0, double* y1) {
    const double b = 2 / x, d = std::log(b), e = mu * d;
    const temmegamma g = temmegammas(mu);
    double f = 2 / PI * inversesinc(mu) * (g.gam1 * std::cosh(e) + g.gam2 * sinhc(e) * d);
    const double growth = std::exp(e);
    double p = growth / (g.rplus * PI), q = 1 / (growth * PI * g.rminus);
    const double half = mu / 2, s = half == 0 ? 1 : sinpi(half) / (PI * half);
    const double r = PI * PI * half * s * s;
    double c = 1, sum = f + r * q, sum1 = p;
    for (int k = 1; k < 100; k++) {
        f = (k * f + p + q) / (double(k) * k - mu * mu);
        c *= -x * x / 4 / k;
        p /= k - mu;
        q /= k + mu;
        const double term = c * (f + r * q);
        sum += term;
        sum1 += c * p - k * term;
        if (std::fabs(term) < 1e-17 * (1 + std::fabs(sum))) break;
    }
    *y0 = -sum;
    *y1 = -sum1 * b;
}

double ascending(double nu, double v, int s) {
    double term = 1, sum = 1;
    for (int k = 1; std::fabs(term) > 1e-17 * std::fabs(sum); k++) {
        term *= s * v / (k * (k + nu));
        sum += term;
    }
    return sum;
}

double ascendingfactor(double nu, double x, double* exponent) {
    *exponent = 0;
    if (nu > 1e15) { // x is at most about sqrt(nu): nothing is left
        *exponent = -1e17;
        return 1;
    }
    if (nu < 150) {
        const double power = std::pow(x / 2, nu);
        if (power > 1e-150 && power < 1e150) return power / std::tgamma(nu + 1);
    }
    const dd l = dd(nu) * ddlog(dd(x) / 2.0) - ddloggamma(dd(nu) + 1.0);
    *exponent = l.hi;
    return 1 + l.lo;
}

namespace {

// Half the distance between the turning point and where Debye's expansion takes over grows as
// nu^(1/3); continued fractions serve there, and Olver's expansion from this order on.
constexpr double TURNFROM = 4000;

double jascending(double nu, double x) {
    double e;
    const double m = ascendingfactor(nu, x, &e);
    return joinexponent(m * ascending(nu, x * x / 4, -1), e);
}

// J'/J at nu by its continued fraction, DLMF 10.10.1; `sign` that of the denominators, J's own sign.
double jratio(double nu, double x, int* sign) {
    constexpr double tiny = 1e-300;
    const double r = 1 / x, step = 2 * r;
    *sign = 1;
    double h = nu * r, b = 2 * nu * r, d = 0;
    if (h < tiny) h = tiny;
    double c = h;
    for (long k = 0; k < 100000000; k++) {
        b += step;
        d = b - d;
        if (std::fabs(d) < tiny) d = tiny;
        c = b - 1 / c;
        if (std::fabs(c) < tiny) c = tiny;
        d = 1 / d;
        const double del = c * d;
        h *= del;
        if (d < 0) *sign = -*sign;
        if (std::fabs(del - 1) < 1e-16) break;
    }
    return h;
}

// p + iq = (J' + iY')/(J + iY) of order mu at x >= 2, DLMF 10.74(v), by the modified Lentz rule.
std::complex<double> hratio(double mu, double x) {
    using cx = std::complex<double>;
    const double m2 = mu * mu;
    double a = 0.25 - m2;
    cx pq(-0.5 / x, 1);
    cx b(2 * x, 2);
    cx f = b, c = b, d = 0; // the fraction b0 + a1/(b1 + ...), here from its second denominator on
    // K = a0/(b0 + a1/(b1 + ...)), a_k = (k+1/2)^2 - mu^2, b_k = 2(x + i(k+1))
    for (int k = 1; k < 10000; k++) {
        const double ak = (k + 0.5) * (k + 0.5) - m2;
        b += cx(0, 2);
        d = 1.0 / (b + ak * d);
        c = b + ak / c;
        const cx del = c * d;
        f *= del;
        if (std::fabs(del.real() - 1) + std::fabs(del.imag()) < 1e-16) break;
    }
    return pq + cx(0, 1) / x * a / f;
}

// J and its derivative from order nu down to mu = nu - down, from J = 1e-200 upwards in size; powers of 1e100
// that were taken out.
struct downward {
    double j, slope, scale = 0;
};
downward recurdown(double nu, int down, double r, double j, double slope) {
    downward d{j, slope};
    double factor = nu * r;
    for (int k = 0; k < down; k++) {
        const double t = factor * d.j + d.slope;
        factor -= r;
        d.slope = factor * t - d.j;
        d.j = t;
        if (std::fabs(d.j) > 1e100) {
            d.j *= 1e-100;
            d.slope *= 1e-100;
            d.scale -= 100;
        }
    }
    if (d.j == 0) d.j = 1e-216;
    return d;
}

// Y of order mu + up from those of mu and mu + 1.
double recurup(double mu, int up, double r, double y, double next) {
    for (int k = 1; k <= up; k++) {
        const double t = (mu + k) * 2 * r * next - y;
        y = next;
        next = t;
        if (std::isinf(t)) break;
    }
    return y;
}

// Steed's method as in A. R. Barnett et al., Comput. Phys. Commun. 8 (1974) 377; x >= 2.
void steed(double nu, double x, double* j, double* y) {
    const int down = nu < x ? 0 : static_cast<int>(nu - x + 1.5);
    const double mu = nu - down, r = 1 / x;
    int sign;
    const double h = jratio(nu, x, &sign);
    const double first = sign * 1e-200;
    const downward d = recurdown(nu, down, r, first, h * first);
    const double f = d.slope / d.j;
    const std::complex<double> pq = hratio(mu, x);
    const double p = pq.real(), q = pq.imag();
    const double gam = (p - f) / q;
    double jmu = std::sqrt(2 / PI * r / ((p - f) * gam + q));
    if (d.j < 0) jmu = -jmu;
    double ymu = jmu * gam;
    double ynext;
    if (std::fabs(gam) > 1e100 || !std::isfinite(gam)) { // J is 0 as far as we can see
        ymu = std::copysign(std::sqrt(2 / PI * r / q), -d.slope);
        ynext = ymu * (mu * r - p);
    } else {
        ynext = mu * r * ymu - jmu * (p * gam + q);
    }
    *j = (jmu / d.j) * first * std::pow(10.0, d.scale);
    *y = recurup(mu, down, r, ymu, ynext);
}

// Y of order nu and nu + 1 from x in (0, 2).
void ysmall(double nu, double x, double* y0, double* y1) {
    const double up = std::nearbyint(nu), mu = nu - up;
    if (up > 400 && nu * std::log(2 * nu / (2.72 * x)) > 720) {
        *y0 = *y1 = -HUGE_VAL;
        return;
    }
    temmey(mu, x, y0, y1);
    for (int k = 1; k <= up; k++) {
        const double t = 2 * (mu + k) / x * *y1 - *y0;
        *y0 = *y1;
        *y1 = t;
        if (std::isinf(t)) {
            if (k < up) *y0 = t;
            break;
        }
    }
}

besjy anyjy(double nu, double x) {
    if (x < 2) {
        besjy r{true, jascending(nu, x), 0};
        double next;
        ysmall(nu, x, &r.y, &next);
        return r;
    }
    if (x > 25)
        if (const besjy r = hankeljy(nu, x); r.good) return r;
    if (nu > 20)
        if (const besjy r = debyejy(nu, x); r.good) return r;
    if (nu > TURNFROM)
        if (const besjy r = turningjy(nu, x); r.good) return r;
    besjy r{true, 0, 0};
    steed(nu, x, &r.j, &r.y);
    return r;
}

// Integer orders: up from 0 and 1 while that is stable for J, else by the ratio downwards.
double jinteger(int n, double x) {
    if (n == 0) return bessj0(x);
    if (n == 1) return bessj1(x);
    double before = bessj0(x), now = bessj1(x);
    if (n <= x) {
        for (int k = 1; k < n; k++) {
            const double t = 2 * k / x * now - before;
            before = now;
            now = t;
        }
        return now;
    }
    int sign;
    const double h = jratio(n, x, &sign);
    double a = 1e-250, b = (n / x + h) * a; // J_n and J_{n-1}
    for (int k = n - 1; k > 0; k--) {
        const double t = 2 * k / x * b - a;
        a = b;
        b = t;
    }
    return 1e-250 * (std::fabs(before) > std::fabs(now) ? before / b : now / a);
}

double yinteger(int n, double x) {
    double before = bessy0(x), now = bessy1(x);
    if (n == 0) return before;
    for (int k = 1; k < n && std::isfinite(now); k++) {
        const double t = 2 * k / x * now - before;
        before = now;
        now = t;
    }
    return now;
}

constexpr double MANYORDERS = 100; // integer orders above go the general way

double jpositive(double nu, double x) { // nu >= 0, x > 0
    if (nu < 2 && isinteger(nu)) return nu == 0 ? bessj0(x) : bessj1(x);
    if (x * x / 4 < nu + 1) return jascending(nu, x);
    if (isinteger(nu) && nu <= MANYORDERS && x < 1000) return jinteger(static_cast<int>(nu), x);
    return anyjy(nu, x).j;
}

double ypositive(double nu, double x) {
    if (isinteger(nu) && nu <= MANYORDERS && (nu < 2 || x < 1000)) return yinteger(static_cast<int>(nu), x);
    return anyjy(nu, x).y;
}

} // namespace

double besjraw(double nu, double x) {
    if (nu >= 0) return jpositive(nu, x);
    if (isinteger(nu)) return paritysign(nu) * jpositive(-nu, x);
    const double c = cospi(nu), s = sinpi(-nu); // DLMF 10.4.6
    const double j = c == 0 ? 0 : c * jpositive(-nu, x);
    return j - s * ypositive(-nu, x);
}

double besyraw(double nu, double x) {
    if (nu >= 0) return ypositive(nu, x);
    if (isinteger(nu)) return paritysign(nu) * ypositive(-nu, x);
    const double c = cospi(nu), s = sinpi(-nu); // DLMF 10.4.7
    const double y = c == 0 ? 0 : c * ypositive(-nu, x);
    return y + s * jpositive(-nu, x);
}

namespace {

double jany(const char* name, double nu, double x) {
    if (std::isnan(nu) || std::isnan(x)) return nu + x;
    x = normalargument(name, x);
    if (std::isinf(nu)) return outofrange(name, 0);
    if (std::isinf(x)) return 0;
    const bool whole = isinteger(nu);
    if (x < 0 && !whole) return outofrange(name, 0);
    if (x == 0) return nu == 0 ? 1 : nu > 0 || whole ? 0 : outofrange(name, MAXPOS);
    if (std::fabs(nu) > BESSELFAR || std::fabs(x) > BESSELFAR) return 0;
    const double j = besjraw(nu, std::fabs(x));
    return capped(name, x < 0 && paritysign(nu) < 0 ? -j : j);
}

double yany(const char* name, double nu, double x) {
    if (std::isnan(nu) || std::isnan(x)) return nu + x;
    x = normalargument(name, x);
    if (x < 0 || std::isinf(nu)) return outofrange(name, 0);
    if (std::isinf(x)) return 0;
    if (x == 0) return outofrange(name, MAXNEG);
    if (std::fabs(nu) > BESSELFAR || x > BESSELFAR) return x < std::fabs(nu) ? outofrange(name, MAXNEG) : 0;
    return capped(name, besyraw(nu, x));
}

} // namespace

double bessj(double nu, double x) { return nu == 0 ? bessj0(x) : nu == 1 ? bessj1(x) : jany("BESSJ", nu, x); }

double bessy(double nu, double x) {
    if (nu == 0 && x >= MINPOS) return bessy0(x);
    return yany("BESSY", nu, x);
}

double abessj(double nu, double x) {
    if (nu >= 0 && x >= MINPOS && x <= BESSELFAR && nu <= BESSELFAR) {
        if (const besjy r = hankeljy(nu, x); r.good) return r.j;
        if (const besjy r = debyejy(nu, x); r.good) return r.j;
    }
    return jany("ABESSJ", nu, x);
}

double abessy(double nu, double x) {
    if (nu >= 0 && x >= MINPOS && x <= BESSELFAR && nu <= BESSELFAR) {
        if (const besjy r = hankeljy(nu, x); r.good) return r.y;
        if (const besjy r = debyejy(nu, x); r.good) return capped("ABESSY", r.y);
    }
    return yany("ABESSY", nu, x);
}

void bessjynu(double nu, double x, double* j, double* y, double* jp, double* yp) {
    *j = jpositive(nu, x);
    *y = ypositive(nu, x);
    *jp = nu / x * *j - jpositive(nu + 1, x); // DLMF 10.6.2
    *yp = nu / x * *y - ypositive(nu + 1, x);
}

void besynu(double nu, double x, double* y0, double* y1) {
    *y0 = ypositive(nu, x);
    *y1 = ypositive(nu + 1, x);
}

void besj(double nu, double x, int n, double* out) {
    if (n < 1) return;
    int top = n - 1; // the highest order that is not 0; all above are
    while (top >= 0 && (out[top] = jpositive(nu + top, x)) == 0) top--;
    if (top < 1) return;
    out[top - 1] = jpositive(nu + top - 1, x);
    for (int k = top - 2; k >= 0; k--) out[k] = 2 * (nu + k + 1) / x * out[k + 1] - out[k + 2];
}

void besy(double nu, double x, int n, double* out) {
    for (int k = 0; k < n; k++) {
        out[k] = k < 2 ? ypositive(nu + k, x) : 2 * (nu + k - 1) / x * out[k - 1] - out[k - 2];
        if (std::isinf(out[k])) {
            for (int i = k + 1; i < n; i++) out[i] = -HUGE_VAL;
            return;
        }
    }
}
