// Legendre functions of whole and of any real degree and order.
#include "special/doubledouble.h"
#include "special/elementary.h"
#include "special/gamma.h"
#include "special/hypergeo.h"
#include "special/orthopoly.h"
#include "special/range.h"
#include "special/scaledvalue.h"

#include <cmath>

namespace {

constexpr double MANY = 1e7; // steps of a recurrence: above, a degree is out of range

bool badwhole(const char* name, double l, double m) {
    if (!(isinteger(l) && l >= 0 && isinteger(m) && m >= 0)) {
        spnote(SPERR, "polynomial order must be a positive integer");
        return true;
    }
    if (l > MANY || m > MANY) rangewarn(name);
    return l > MANY || m > MANY;
}

constexpr double FAR = 1000; // degrees above take the expansions on (-1, 1)

// F(-n, n+1; 1; (1-x)/2) in 32 digits, x next to 1: the terms cancel by exp(n theta) at most.
double legendrenearone(double n, double x) {
    const dd z = ddsum(1, -x) * 0.5;
    dd term = 1, sum = 1;
    for (double k = 0; k < n && std::fabs(term.hi) > 1e-33; k++) {
        term = term * z * ddprod(k - n, n + 1 + k) / dd((k + 1) * (k + 1));
        sum += term;
    }
    return sum.hi;
}

/* Stieltjes' expansion (N. Hale and A. Townsend, SIAM J. Sci. Comput. 35 (2013) A652, 3.1): with x = cos t a
 * constant times the sum of h(m) cos((n+m+1/2) t - (m+1/2) pi/2)/(2 sin t)^(m+1/2), h(m) = h(m-1)
 * (m-1/2)^2/(m (n+m+1/2)). For small x the angles are n pi/2 - (n+m+1/2) arcsin(x), without the rounding of
 * a large part. x >= 0. */
double legendreinside(double n, double x, double sine) {
    const bool central = x < 0.6;
    const double t = central ? std::asin(x) : std::atan2(sine, x);
    const double angle = (n + 0.5) * t - (central ? 0 : PI / 4);
    double c = std::cos(angle), s = std::sin(angle);
    if (central) { // of n pi/2 - angle
        const double cosines[] = {c, s, -c, -s}, sines[] = {-s, c, s, -c};
        const int quarter = static_cast<int>(std::fmod(n, 4));
        c = cosines[quarter];
        s = sines[quarter];
    }
    const double turnc = sine, turns = -x; // from m to m + 1 the angle grows by t - pi/2, here -arcsin(x)
    double h = 1, sum = c;
    for (double m = 1; m < 60; m++) {
        const double next = c * turnc - s * turns;
        s = s * turnc + c * turns;
        c = next;
        h *= (m - 0.5) * (m - 0.5) / (m * (n + m + 0.5) * 2 * sine);
        sum += h * c;
        if (h < 1e-18) break;
    }
    return 2 / std::sqrt(PI) * std::exp(loggammaratio(0.5, n + 1)) * sum / std::sqrt(2 * sine);
}

// P_l of whole degree; exact where the values are whole.
double legendre(double l, double x) {
    if (l == 0 || x == 1) return 1;
    if (x == -1) return paritysign(l);
    if (l > FAR && std::fabs(x) < 1) {
        const double a = std::fabs(x), sine = std::sqrt((1 - a) * (1 + a)), sign = x < 0 ? paritysign(l) : 1;
        return sign * (l * sine < 30 ? legendrenearone(l, a) : legendreinside(l, a, sine));
    }
    scaledpair p{1, x};
    for (double k = 1; k < l; k++) // DLMF 14.10.3
        p.step(((2 * k + 1) * x * p.now - k * p.last) / (k + 1));
    return p.value();
}

/* P_l^m of whole 0 <= m, l by the recurrence in the degree, times ratio(l, m) = (l-m)!/(l+m)! if `inverse`,
 * which is the function of order -m but for a sign. */
double associated(double l, double m, double x, bool inverse) {
    if (m == 0) return legendre(l, x);
    if (l < m) return 0;
    const double root = std::sqrt(std::fabs((1 - x) * (1 + x)));
    scaledpair p{0, 1};
    for (double k = 1; k <= m; k++) { // P_m^m = (-1)^m (2m-1)!! (1-x^2)^(m/2)
        const double factor = inverse ? root / (2 * k) : (2 * k - 1) * root;
        p.now *= std::fabs(x) <= 1 && !inverse ? -factor : factor;
        if (p.now == 0) return 0;
        if (std::fabs(p.now) > 1e150 || std::fabs(p.now) < 1e-150) p.rescale();
    }
    p.last = 0;
    for (double k = m; k < l; k++) {
        if (inverse) // the recurrence divided by the growth of (k+m)!/(k-m)!
            p.step(((2 * k + 1) * x * p.now - (k - m) * p.last) / (k + m + 1));
        else
            p.step(((2 * k + 1) * x * p.now - (k + m) * p.last) / (k - m + 1));
    }
    return p.value();
}

// Any degree and order not a positive whole number, x > -1 or a whole degree, by DLMF 14.3.1 and 14.3.6.
double fractional(double nu, double mu, double x) {
    const double scale = rgamma(1 - mu);
    if (scale == 0 && mu < 0 && std::fabs(x) < 1) return 0; // the whole is smaller still
    const double f = hgeof(-nu, nu + 1, 1 - mu, (1 - x) / 2) * scale, base = std::fabs((1 + x) / (1 - x));
    const double sign = x < -1 ? paritysign(mu) : 1, power = std::pow(base, mu / 2);
    if (power != 0 && std::isfinite(power)) return sign * power * f;
    return std::copysign(std::exp(mu / 2 * std::log(base) + std::log(std::fabs(f))), sign * f);
}

// (-1)^m Gamma(nu+m+1)/Gamma(nu-m+1) = product of (k - nu)(nu + 1 + k), k < m
double orderfactor(double nu, double m) {
    double r = 1;
    for (double k = 0; k < m; k++) r *= (k - nu) * (nu + 1 + k);
    return r;
}

double anyorder(double nu, double mu, double x) {
    if (x == -1 || (x < -1 && !isinteger(nu))) return outofrange("ALEG", 0);
    if (x == 1) return mu == 0 ? 1 : mu > 0 && !isinteger(mu) ? outofrange("ALEG", MAXPOS) : 0;
    if (mu > 0 && isinteger(mu)) { // from the function of order -mu, DLMF 14.9.3, 14.9.13
        if (mu > 150) return outofrange("ALEG", 0);
        const double r = orderfactor(nu, mu) * fractional(nu, -mu, x);
        return x > 1 ? paritysign(mu) * r : r;
    }
    return fractional(nu, mu, x);
}

} // namespace

double leg(double n, double x) {
    if (std::isnan(n + x)) return NAN;
    if (n < -0.5) n = -n - 1; // DLMF 14.9.5
    if (!isinteger(n)) {
        if (x <= -1) return outofrange("LEG", x == -1 ? MAXPOS : 0);
        return cappedorpole("LEG", x == 1 ? 1 : fractional(n, 0, x));
    }
    if (n > MANY && std::fabs(x) > 1) return outofrange("LEG", 0);
    return cappedorpole("LEG", legendre(n, x));
}

double aleg(double n, double m, double x) {
    if (std::isnan(n + m + x)) return NAN;
    if (std::isinf(n + m)) return outofrange("ALEG", 0);
    if (n < -0.5) n = -n - 1;
    if (!isinteger(n) || !isinteger(m)) return cappedorpole("ALEG", anyorder(n, m, x));
    if (n > MANY || std::fabs(m) > MANY) return outofrange("ALEG", 0);
    if (m >= 0) return cappedorpole("ALEG", associated(n, m, x, false));
    if (-m > n) return cappedorpole("ALEG", anyorder(n, m, x));
    return cappedorpole("ALEG", associated(n, -m, x, true));
}

double plem(double l, double m, double x) {
    if (std::isnan(l + m + x)) return NAN;
    return badwhole("PLEM", l, m) ? 0 : cappedorpole("PLEM", associated(l, m, x, false));
}

namespace {

// The derivative at x = 1 or -1.
double endslope(const char* name, double l, double m, double x) {
    const double sign = x > 0 ? 1 : paritysign(l);
    if (m == 0) return x * sign * l * (l + 1) / 2;
    if (m == 2) return -x * sign * (l - 1) * l * (l + 1) * (l + 2) / 4;
    if (m > 2 || l == 0) return 0;
    return outofrange(name, sign > 0 ? MAXPOS : MAXNEG); // -x (1-x^2)^(-1/2) towards the end, times -P'
}

double slope(const char* name, double l, double m, double x) {
    if (l < m) return 0;
    if (std::fabs(x) == 1) return endslope(name, l, m, x);
    const double root = std::sqrt(std::fabs((1 - x) * (1 + x)));
    const double above = associated(l, m + 1, x, false);
    if (std::fabs(x) > 1) {
        const double p = associated(l, m, x, false);
        return m * x / ((x - 1) * (x + 1)) * p + above / root;
    }
    // DLMF 14.10.1 and 14.10.4 put together: nothing cancels towards the ends
    const double below = m == 0 ? -above : (l + m) * (l - m + 1) * associated(l, m - 1, x, false);
    return (below - above) / (2 * root);
}

} // namespace

double plemder(double l, double m, double x) {
    if (std::isnan(l + m + x)) return NAN;
    return badwhole("PLEMDER", l, m) ? 0 : cappedorpole("PLEMDER", slope("PLEMDER", l, m, x));
}

double peqder(double m, double x) {
    if (std::isnan(m + x)) return NAN;
    if (badwhole("PEQDER", m, m)) return 0;
    if (m == 0) return 0;
    if (std::fabs(x) == 1) return endslope("PEQDER", m, m, x);
    const double s = (x - 1) * (x + 1); // P_m^m is a power of |1 - x^2|
    return cappedorpole("PEQDER", m * x / s * associated(m, m, x, false));
}
