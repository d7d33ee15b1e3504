// Kelvin functions: series in 32 digits, whose real and imaginary parts stay apart, and the complex
// Bessel functions beyond.
#include "special/besselimpl.h"
#include "special/cbessel.h"
#include "special/doubledouble.h"
#include "special/elementary.h"
#include "special/range.h"

#include <cmath>

namespace {

constexpr double BERFAR = 60, KERFAR = 10, KERORDER = 80; // where the series end

// A complex number m exp(e), m with 32 digits.
struct kelvinpair {
    ddcomplex m = {0, 0};
    double e = 0;
};

dd ddcospi(dd t) { return ddsinpi(t + 0.5); }
ddcomplex ddturn(dd t) { return {ddcospi(t), ddsinpi(t)}; } // exp(i pi t)

/* ber + i bei = sum of (x/2)^(2k+nu)/(k! Gamma(nu+k+1)) exp(i pi (3 nu/4 + k/2)), DLMF 10.65.1; or its
 * derivative. nu >= 0, x > 0. */
kelvinpair berseries(double nu, double x, bool derivative) {
    const dd v = ddprod(x / 2, x / 2);
    dd parts[4] = {0, 0, 0, 0}, term = 1; // by k mod 4
    double top = 0;
    for (int k = 0; k < 2000; k++) {
        if (k) term = term * v / ((dd(nu) + double(k)) * double(k));
        parts[k % 4] += derivative ? term * ((dd(nu) + 2.0 * k) / dd(x)) : term;
        top = std::fmax(top, term.hi);
        if (term.hi < 1e-34 && term.hi < 1e-40 * top) break;
    }
    kelvinpair r;
    const double front = ascendingfactor(nu, x, &r.e);
    r.m = ddturn(dd(nu) * 0.75) * ddcomplex{parts[0] - parts[2], parts[1] - parts[3]} * dd(front);
    return r;
}

/* ker + i kei of whole order n, DLMF 10.65.3: the series of K at x exp(i pi/4), turned by -n pi/2. */
ddcomplex kerseries(int n, double x) {
    const dd half = dd(x) / 2.0, v = half * half;
    ddcomplex finite = {0, 0}, s = {0, 0}, t = {0, 0};
    dd below = 1; // (n-k-1)!/k! v^k, turned by -i each time
    for (int k = 2; k < n; k++) below *= double(k);
    for (int k = 0; k < n; k++) {
        const ddcomplex turned[] = {{below, 0}, {0, -below}, {-below, 0}, {0, below}};
        finite = finite + turned[k % 4];
        if (k + 1 < n) below = below * v / (dd(k + 1.0) * double(n - k - 1));
    }
    dd power = 1, psi1 = -DDEULER, psi2 = -DDEULER; // v^k/(k! (n+k)!), psi(k+1), psi(n+k+1)
    for (int k = 1; k <= n; k++) {
        power /= dd(k);
        psi2 += dd(1) / dd(k);
    }
    for (int k = 0; k < 200; k++) {
        const dd weighted = power * (psi1 + psi2);
        const ddcomplex i = k % 4 == 0   ? ddcomplex{1, 0}
                            : k % 4 == 1 ? ddcomplex{0, 1}
                            : k % 4 == 2 ? ddcomplex{-1, 0}
                                         : ddcomplex{0, -1};
        s = s + i * power;
        t = t + i * weighted;
        if (power.hi < 1e-40) break;
        power = power * v / (dd(k + 1.0) * double(n + k + 1));
        psi1 += dd(1) / dd(k + 1.0);
        psi2 += dd(1) / dd(n + k + 1.0);
    }
    dd grown = 1; // (x/2)^n
    for (int k = 0; k < n; k++) grown *= half;
    const ddcomplex logarithm = {ddlog(half), DDPI / 4.0};
    const ddcomplex regular = (t * dd(0.5) - logarithm * s) * grown;
    const ddcomplex first = n == 0 ? ddcomplex{0, 0} : ddturn(dd(-0.75 * n)) * finite / (grown * 2.0);
    return first + ddturn(dd(0.75 * n)) * regular;
}

// J (kind 1) or K (kind 4) at x times a corner of the square.
kelvinpair bycomplex(double kind, double nu, double x, double side) {
    const double a = x * M_SQRT1_2;
    kelvinpair r;
    spcomplex m;
    if (!cbesswide(kind, nu, {side * a, a}, &m, &r.e)) m = {NAN, NAN};
    r.m = {m.re, m.im};
    return r;
}

kelvinpair difference(const kelvinpair& a, const kelvinpair& b) {
    const double e = std::fmax(a.e, b.e);
    return {a.m * dd(std::exp(a.e - e)) - b.m * dd(std::exp(b.e - e)), e};
}
kelvinpair operator*(ddcomplex f, const kelvinpair& a) { return {f * a.m, a.e}; }

// ber + i bei of any real order, x > 0.
kelvinpair ber(double nu, double x, bool derivative) {
    const double sign = isinteger(nu) && nu < 0 ? paritysign(nu) : 1;
    const double n = isinteger(nu) ? std::fabs(nu) : nu;
    if (n >= 0 && x <= BERFAR) {
        kelvinpair r = berseries(n, x, derivative);
        r.m = r.m * dd(sign);
        return r;
    }
    if (derivative) // DLMF 10.6.1 at x exp(3 pi i/4)
        return (ddturn(0.75) * dd(0.5)) * difference(ber(nu - 1, x, false), ber(nu + 1, x, false));
    return bycomplex(1, nu, x, -1);
}

// ker + i kei of any real order, x > 0.
kelvinpair ker(double nu, double x, bool derivative) {
    if (derivative) // DLMF 10.29.1 at x exp(i pi/4)
        return (ddturn(0.75) * dd(0.5)) * difference(ker(nu - 1, x, false), ker(nu + 1, x, false));
    const double n = std::fabs(nu);
    kelvinpair r;
    if (isinteger(n) && n <= KERORDER && x <= KERFAR)
        r.m = kerseries(static_cast<int>(n), x);
    else
        r = ddturn(dd(n) * -0.5) * bycomplex(4, n, x, 1);
    return nu < 0 ? ddturn(n) * r : r;
}

double atzero(double nu, int selector) {
    const bool first = selector % 2 == 1; // ber or ker
    if (selector == 4 && nu == 0) return -PI / 4;
    if (selector == 3 || selector == 4 || selector >= 7) return outofrange("KELVIN", MAXPOS);
    if (selector <= 2) {
        if (nu == 0) return first ? 1 : 0;
        return nu > 0 || isinteger(nu) ? 0 : outofrange("KELVIN", MAXPOS);
    }
    if (std::fabs(nu) == 1) return (first ? -nu : nu) * M_SQRT1_2 / 2;
    return nu > 1 || isinteger(nu) ? 0 : outofrange("KELVIN", MAXPOS);
}

} // namespace

double kelvin(double nu, double x, double selector) {
    if (std::isnan(nu + x + selector)) return NAN;
    if (!isinteger(selector) || selector < 1 || selector > 8 || std::isinf(nu) || std::isinf(x))
        return outofrange("KELVIN", 0);
    const int s = static_cast<int>(selector), function = (s - 1) % 4;
    if (x == 0) return atzero(nu, s);
    double sign = 1;
    if (x < 0) {
        if (!isinteger(nu) || function >= 2) return outofrange("KELVIN", 0);
        sign = s > 4 ? -paritysign(nu) : paritysign(nu);
        x = -x;
    }
    const kelvinpair p = function < 2 ? ber(nu, x, s > 4) : ker(nu, x, s > 4);
    const double m = function % 2 == 0 ? p.m.re.hi : p.m.im.hi;
    if (std::isnan(m)) return outofrange("KELVIN", 0);
    return capped("KELVIN", sign * joinexponent(m, p.e));
}
