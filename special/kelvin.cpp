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
    if (derivative)
        parts[0] = dd(nu) / dd(x);
    else
        parts[0] = 1;
    double top = 1;
    for (int k = 1; k < 2000; k++) {
        const dd below = term / ((dd(nu) + double(k)) * double(k));
        term = below * v;
        parts[k % 4] +=
            derivative ? below * (x / 4) * (dd(nu) + 2.0 * k) : term; // x/4 = v/x: v may underflow
        top = std::fmax(top, term.hi);
        if (k > 3 && term.hi < 1e-34 && term.hi < 1e-40 * top) break;
    }
    kelvinpair r;
    const double front = ascendingfactor(nu, x, &r.e);
    r.m = ddturn(dd(nu) * 0.75) * ddcomplex{parts[0] - parts[2], parts[1] - parts[3]} * dd(front);
    return r;
}

// a p / q, in one double where 32 digits would overflow on the way.
dd times(dd a, dd p, dd q) {
    if (const double plain = a.hi / q.hi * p.hi; std::fabs(plain) > 1e250) return plain;
    return a / q * p;
}

// A sum of numbers in the eight directions exp(i pi k/4). A part keeps off what has no share in it, which may
// be infinite; what is near the end of the doubles is added apart.
struct turnedsum {
    ddcomplex sum = {0, 0};
    spcomplex wide;

    void add(dd value, int eighths) {
        static const dd root = ddsqrt(0.5);
        const int k = (eighths % 8 + 8) % 8;
        const dd share = k % 2 ? times(value, root, 1) : value;
        if (k % 4 != 2) put(k > 2 && k < 6 ? -share : share, sum.re, wide.re);
        if (k % 4 != 0) put(k > 4 ? -share : share, sum.im, wide.im);
    }
    ddcomplex value() const {
        return {wide.re != 0 ? wide.re + sum.re.hi : sum.re, wide.im != 0 ? wide.im + sum.im.hi : sum.im};
    }

private:
    static void put(dd share, dd& to, double& towide) {
        if (std::fabs(share.hi) > 1e250)
            towide += share.hi;
        else
            to += share;
    }
};

// (n-k-1)!/(2 k!) (x/2)^(2k-n), k < n, from the middle of the powers outwards; or the derivatives by x.
void kerfinite(int n, double x, bool derivative, turnedsum* sum) {
    const dd half = dd(x) / 2.0;
    const auto add = [&](int k, dd power) {
        if (!derivative)
            sum->add(power, -3 * n - 2 * k);
        else if (2 * k != n)
            sum->add(times(power, 2 * k - n, x), -3 * n - 2 * k);
    };
    const int middle = n / 2;
    dd start = n % 2 ? dd(0.5) / half : dd(0.5);
    for (int j = middle + 1; j < n - middle; j++) start *= double(j);
    for (int j = n - middle; j <= middle; j++) start /= dd(j);
    dd power = start;
    for (int k = middle; k < n; k++) {
        add(k, power);
        if (k + 1 < n) power = power * half * half / (dd(k + 1.0) * double(n - k - 1));
    }
    power = start;
    for (int k = middle; k > 0; k--) {
        power = times(times(power, k, half), n - k, half);
        add(k - 1, power);
    }
}

/* ker + i kei of whole order n, DLMF 10.65.3, or the derivative: the series of K at x exp(i pi/4), turned by
 * -n pi/2. */
ddcomplex kerseries(int n, double x, bool derivative) {
    const dd half = dd(x) / 2.0, loghalf = ddlog(half);
    turnedsum sum;
    if (n > 0) kerfinite(n, x, derivative, &sum);
    // power: (x/2)^(n+2k)/(k! (n+k)!), of the derivative divided by x/2; psi: (psi(k+1) + psi(n+k+1))/2
    dd power = derivative ? dd(1) / half : dd(1), psi = -DDEULER;
    for (int k = 1; k <= n; k++) {
        power = power * half / dd(k);
        psi += dd(0.5) / dd(k);
    }
    for (int k = 0; k < 200; k++) {
        const dd outer = derivative ? power * (0.5 * n + k) : power;
        if (k || n || !derivative) {
            sum.add(outer * (psi - loghalf), 3 * n + 2 * k);
            sum.add(outer * DDPI / 4.0, 3 * n + 2 * k - 2);
        }
        if (derivative) sum.add(power / -2.0, 3 * n + 2 * k);
        if (k && power.hi < 1e-40) break;
        power = power * half * half / (dd(k + 1.0) * double(n + k + 1));
        psi += dd(0.5) / dd(k + 1.0) + dd(0.5) / dd(n + k + 1.0);
    }
    return sum.value();
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
    const double n = std::fabs(nu);
    if (isinteger(n) && n <= KERORDER && x <= KERFAR) {
        kelvinpair r;
        r.m = kerseries(static_cast<int>(n), x, derivative);
        if (nu < 0 && paritysign(n) < 0) r.m = {-r.m.re, -r.m.im};
        return r;
    }
    if (derivative) // DLMF 10.29.1 at x exp(i pi/4)
        return (ddturn(0.75) * dd(0.5)) * difference(ker(nu - 1, x, false), ker(nu + 1, x, false));
    const kelvinpair r = ddturn(dd(n) * -0.5) * bycomplex(4, n, x, 1);
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
