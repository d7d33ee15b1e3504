#include "special/orthopoly.h"

#include "special/doubledouble.h"
#include "special/range.h"
#include "special/scaledvalue.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double MANY = 1e7; // steps of a recurrence: above, an order is out of range

// True unless the order is a whole number that a recurrence can reach.
bool badorder(const char* name, double n) {
    if (!(isinteger(n) && n >= 0)) {
        spnote(SPERR, "polynomial order must be a positive integer");
        return true;
    }
    if (n > MANY) rangewarn(name);
    return n > MANY;
}

// The value, or where it overflowed on the way the largest number of the sign far out.
double settled(const char* name, double value, double sign) {
    return std::isnan(value) ? outofrange(name, std::copysign(MAXPOS, sign)) : capped(name, value);
}
double signofpower(double x, double n) { return x < 0 ? paritysign(n) : 1; }

bool badparameters(bool bad) {
    if (bad) spnote(SPERR, "parameters invalid");
    return bad;
}

} // namespace

double jacobi1(double n, double a, double b, double x) {
    if (std::isnan(n + a + b + x)) return NAN;
    if (badorder("JACOBI1", n) || badparameters(!(a > -1 && b > -1))) return 0;
    if (n == 0) return 1;
    // the first two in 32 digits: for a and b next to -1 they cancel
    const dd c1 = ddsum(a, b) + 2.0, first = ddsum(a, 1) + c1 * ddsum(x, -1) * 0.5;
    if (n == 1) return capped("JACOBI1", std::fabs(x) < 1e100 ? first.hi : (a + b + 2) * (x / 2));
    const dd middle = c1 * (c1 + 2.0) * x + ddsum(a, -b) * ddsum(a, b);
    const dd second =
        ((c1 + 1.0) * middle * first - ddsum(a, 1) * ddsum(b, 1) * (c1 + 2.0) * 2.0) / (c1 * c1 * 4.0);
    scaledpair p{first.hi, second.hi};
    for (double k = 2; k < n; k++) { // DLMF 18.9.2
        const double c = 2 * k + a + b;
        const double next = (c + 1) * ((c * (c + 2)) * x + (a - b) * (a + b)) * p.now -
                            2 * (k + a) * (k + b) * (c + 2) * p.last;
        p.step(next / (2 * (k + 1) * (k + a + b + 1) * c));
    }
    return settled("JACOBI1", p.value(), signofpower(x, n));
}

double jacobi2(double n, double p, double q, double x) {
    if (std::isnan(n + p + q + x)) return NAN;
    if (badorder("JACOBI2", n) || badparameters(!(p - q > -1 && q > 0))) return 0;
    if (n == 0) return 1;
    const double a = p - q, b = q - 1; // of the Jacobi polynomial in 2x - 1
    scaledpair g{1, x - q / (p + 1)};
    for (double k = 1; k < n; k++) { // the monic recurrence of the Jacobi weights, moved to [0, 1]
        const double c = 2 * k + a + b;
        const double centre = (1 + (b - a) * (b + a) / (c * (c + 2))) / 2;
        const double s = k == 1 ? (1 + a) * (1 + b) / (c * c * (c + 1))
                                : k * (k + a) * (k + b) * (k + a + b) / (c * c * (c + 1) * (c - 1));
        g.step((x - centre) * g.now - s * g.last);
    }
    return settled("JACOBI2", g.value(), signofpower(x, n));
}

double gegenp(double n, double a, double x) {
    if (std::isnan(n + a + x)) return NAN;
    if (badorder("GEGENP", n) || badparameters(!(a > -0.5))) return 0;
    if (n == 0) return 1;
    if (a == 0) return capped("GEGENP", 2 / n * cheb1(n, x));
    scaledpair c{1, 2 * a * x};
    for (double k = 1; k < n; k++) // DLMF 18.9.1
        c.step((2 * (k + a) * x * c.now - (2 * a + (k - 1)) * c.last) / (k + 1));
    return settled("GEGENP", c.value(), signofpower(x, n));
}

namespace {

constexpr double SHORT = 64; // recurrence up to here, which is exact where the values are whole

double twoterm(double n, double x, double first) { // f(k+1) = 2x f(k) - f(k-1) from 1 and `first`
    if (n == 0) return 1;
    scaledpair p{1, first};
    for (double k = 1; k < n; k++) p.step(2 * x * p.now - p.last);
    return p.value();
}

// The angle of x = cos(t) in [0, pi], and t >= 0 of |x| = cosh(t).
double angleof(double x) { return std::atan2(std::sqrt((1 - x) * (1 + x)), x); }
// cos(n t) and sin(n t) for whole n and |x| <= 1; where x is small t is pi/2 - asin(x), whose first part
// turns by right angles.
void turned(double n, double x, double* c, double* s) {
    if (std::fabs(x) > 0.6) {
        const double t = n * angleof(std::fabs(x)), sign = signofpower(x, n);
        *c = sign * std::cos(t);
        *s = (x < 0 ? -sign : 1) * std::sin(t);
        return;
    }
    const double t = n * std::asin(x), sine = std::sin(t), cosine = std::cos(t);
    const int quarter = static_cast<int>(std::fmod(n, 4));
    const double cosines[] = {cosine, sine, -cosine, -sine}, sines[] = {-sine, cosine, sine, -cosine};
    *c = cosines[quarter];
    *s = sines[quarter];
}
double coshangle(double x) { return 2 * std::asinh(std::sqrt((std::fabs(x) - 1) / 2)); }

bool badwhole(double n) { // the Chebyshev polynomials reach any order
    if (isinteger(n) && n >= 0) return false;
    spnote(SPERR, "polynomial order must be a positive integer");
    return true;
}

} // namespace

double cheb1(double n, double x) {
    if (std::isnan(n + x)) return NAN;
    if (badwhole(n)) return 0;
    if (n <= SHORT) return settled("CHEB1", twoterm(n, x, x), signofpower(x, n));
    double c, s;
    if (std::fabs(x) <= 1) {
        turned(n, x, &c, &s);
        return c;
    }
    return capped("CHEB1", signofpower(x, n) * std::cosh(n * coshangle(x)));
}

double cheb2(double n, double x) {
    if (std::isnan(n + x)) return NAN;
    if (badwhole(n)) return 0;
    if (n <= SHORT) return settled("CHEB2", twoterm(n, x, 2 * x), signofpower(x, n));
    if (std::fabs(x) == 1) return signofpower(x, n) * (n + 1);
    if (std::fabs(x) < 1) {
        double c, s;
        turned(n + 1, x, &c, &s);
        return s / std::sqrt((1 - x) * (1 + x));
    }
    const double t = coshangle(x);
    const double sign = signofpower(x, n);
    return settled("CHEB2", sign * (std::sinh((n + 1) * t) / std::sinh(t)), sign);
}

double alaguerre(double n, double a, double x) {
    if (std::isnan(n + a + x)) return NAN;
    if (badorder("ALAGUERRE", n) || badparameters(!(a > -1))) return 0;
    if (n == 0) return 1;
    // DLMF 18.9.1 for the value and its last increment, which keeps the digits of a small x
    double value = 1, increment = a - x;
    int power = 0;
    for (double k = 1; k <= n; k++) {
        if (k > 1) increment = ((k - 1 + a) * increment - x * value) / k;
        value += increment;
        if (std::fabs(value) > 1e150) {
            value = std::ldexp(value, -400);
            increment = std::ldexp(increment, -400);
            power = std::min(power + 400, 1000000000);
        }
    }
    return settled("ALAGUERRE", std::ldexp(value, power), signofpower(-x, n));
}

double laguerre(double n, double x) { return alaguerre(n, 0, x); }

double hermite(double n, double x) {
    if (std::isnan(n + x)) return NAN;
    if (badorder("HERMITE", n)) return 0;
    if (n == 0) return 1;
    scaledpair p{1, 2 * x};
    for (double k = 1; k < n; k++) p.step(2 * (x * p.now - k * p.last));
    return settled("HERMITE", p.value(), signofpower(x, n));
}

double hermite2(double n, double x) {
    if (std::isnan(n + x)) return NAN;
    if (badorder("HERMITE2", n)) return 0;
    if (n == 0) return 1;
    scaledpair p{1, x};
    for (double k = 1; k < n; k++) p.step(x * p.now - k * p.last);
    return settled("HERMITE2", p.value(), signofpower(x, n));
}

double charlier(double n, double a, double x) {
    if (std::isnan(n + a + x)) return NAN;
    if (badorder("CHARLIER", n) || badparameters(!(a > 0))) return 0;
    // at whole x the values stay small while the recurrence's other solution grows: C_n(x) = C_x(n)
    if (isinteger(x) && x >= 0 && x < n) return charlier(x, a, n);
    if (n == 0) return 1;
    // in 32 digits: next to a whole x the values are small beside the recurrence's other solution
    dd last = 1, now = dd(1) - dd(x) / dd(a);
    int power = 0;
    for (double k = 1; k < n; k++) { // DLMF 18.22.2
        const dd next = ((ddsum(k, a) - x) * now - last * k) / dd(a);
        last = now;
        now = next;
        if (std::fabs(now.hi) < 1e100) continue;
        last = ddscale(last, -300);
        now = ddscale(now, -300);
        power = std::min(power + 300, 1000000000);
    }
    return settled("CHARLIER", std::ldexp(now.hi, power), signofpower(-x, n));
}

namespace {

/* B_n(1/2 + h) (2 pi)^n/n! = sum over j of c(n-j) (2 pi h)^j/j!, where the sum of c(k) (t/(2 pi))^k is
 * (t/2)/sinh(t/2), DLMF 24.2.3 at 1/2. The c are about 2; the terms cancel by exp(2 pi |h|) at most. */
double bernoullisum(int n, dd h) {
    std::vector<dd> c(n / 2 + 1); // c(2j)
    const dd pi2 = DDPI * DDPI;
    c[0] = 1;
    for (int k = 1; k <= n / 2; k++) {
        dd term = 1, sum = 0;
        for (int j = 1; j <= k && std::fabs(term.hi) > 1e-36; j++) {
            term *= pi2 / dd(4.0 * j * j + 2.0 * j); // pi^(2j)/(2j+1)!
            sum -= c[k - j] * term;
        }
        c[k] = sum;
    }
    dd power = 1, sum = 0;
    for (int j = 0; j <= n; j++) {
        if (j) power *= DDPI * 2.0 * h / dd(j);
        if ((n - j) % 2 == 0) sum += c[(n - j) / 2] * power;
    }
    double r = sum.hi;
    for (int k = 1; k <= n; k++) r *= k / (2 * DDPI.hi);
    return r;
}

} // namespace

double bernpol(double n, double x) {
    if (std::isnan(n + x)) return NAN;
    if (!(isinteger(n) && n >= 0)) {
        spnote(SPERR, "polynomial order must be a positive integer");
        return 0;
    }
    if (n > 1000 || std::isinf(x)) return n == 0 ? 1 : outofrange("BERNPOL", MAXPOS);
    const int order = static_cast<int>(n);
    double sign = 1;
    dd h = ddsum(x, -0.5);
    if (h.hi < 0) { // DLMF 24.4.3
        h = -h;
        sign = paritysign(n);
    }
    if (2 * DDPI.hi * h.hi >= n) return settled("BERNPOL", sign * bernoullisum(order, h), sign);
    // from the first period up, DLMF 24.4.1: nothing cancels
    const dd from = h + 0.5;
    const double periods = std::floor(from.hi);
    const dd rest = from - periods;
    double sum = n > 2 && std::fmod(n, 2) != 0 && rest.hi == 0 ? 0 : bernoullisum(order, rest - 0.5);
    for (double k = 0; k < periods; k++) sum += n * std::pow((rest + k).hi, n - 1);
    return settled("BERNPOL", sign * sum, sign);
}
