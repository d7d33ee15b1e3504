// The confluent hypergeometric function of the second kind.
#include "special/hypergeo.h"

#include "special/hypersum.h"
#include "special/range.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double MAXSTEPS = 1e6; // of a recurrence

/* Where the integrand of U Gamma(a) = integral of exp(-x t) t^(a-1) (1+t)^(b-a-1) dt (DLMF 13.4.4) is highest
 * in s = log t: the root of x t = a + (b-a-1) t/(1+t), positive for a > 0. */
double peak(double a, double b, double x) {
    // x t^2 + (x - b + 1) t - a = 0
    const double p = (x - b + 1) / 2, root = std::sqrt(p * p + x * a);
    return p > 0 ? a / (p + root) : (root - p) / x;
}

// U(a, b, x) = m exp(e), a >= 1, x > 0: the trapezoidal rule on the line, which converges exponentially.
struct logvalue {
    double m;
    dd e;
};
logvalue integral(double a, double b, double x) {
    const double t0 = peak(a, b, x), g = b - a - 1, share = t0 / (1 + t0);
    const double curvature = std::fabs(x * t0 - g * share / (1 + t0));
    // off the line the integrand grows at most like cos(angle)^-(x t0): the rule errs by less than 1e-17
    const double h = std::min(0.2, 0.45 / std::sqrt(std::max(curvature, x * t0)));
    // the exponent relative to the peak: no large number is subtracted from another
    const auto exponent = [&](double d) {
        const double e = std::expm1(d);
        return a * d - x * t0 * e + g * std::log1p(share * e);
    };
    double sum = 1;
    for (int side = -1; side <= 1; side += 2)
        for (int k = 1; k < 1000000; k++) {
            const double e = exponent(side * k * h);
            if (!(e >= -40)) break;
            sum += std::exp(e);
        }
    const dd top = dd(a) * ddlog(t0) - dd(x) * t0 + (dd(b) - a - 1.0) * ddlog(dd(1) + t0);
    return {h * sum, top - ddloggamma(a)};
}

// U for any a that is not 0, -1, ..: integrals at a > 1, then down in a, the stable way (DLMF 13.3.7).
bool recur(double a, double b, double x, logvalue* u) {
    const double steps = a >= 1 ? 0 : std::ceil(1 - a);
    if (steps > MAXSTEPS) {
        spnote(SPERR, "CHU: no convergence");
        return false;
    }
    const logvalue start = integral(a + steps, b, x);
    *u = start;
    if (steps == 0) return true;
    const logvalue next = integral(a + steps + 1, b, x);
    double above = next.m * ddexp(next.e - start.e).hi, now = start.m;
    for (double k = steps; k > 0; k--) {
        const double c = a + k;
        const double below = (2 * c - b + x) * now - c * (c - b + 1) * above;
        above = now;
        now = below;
        if (const double size = std::fabs(now) + std::fabs(above); size > 1e150 || size < 1e-150) {
            int power;
            std::frexp(size, &power);
            now = std::ldexp(now, -power);
            above = std::ldexp(above, -power);
            u->e += DDLN2 * power;
        }
    }
    u->m = now;
    return true;
}

/* U(-n, b, x), n = 0, 1, ..: (-1)^n (b)_n M(-n, b, x) where that exists and the argument is small, else
 * x^n 2F0(-n, 1-n-b; ; -1/x), which always exists (DLMF 13.2.7, 13.2.8 and 13.6.21). */
bool polynomial(double n, dd b, double x, dd* factor, dd* e, widevalue* v) {
    const int64_t zero = endingorder(b);
    *factor = 1;
    *e = 0;
    if (std::fabs(x) < 1 && (zero < 0 || static_cast<double>(zero) >= n)) {
        if (n > MAXSTEPS) {
            spnote(SPERR, "CHU: no convergence");
            return false;
        }
        for (double k = 0; k < n; k++) {
            *factor *= -(b + k);
            if (const double size = std::fabs(factor->hi); size > 1e250 || size < 1e-250) {
                int power;
                std::frexp(size, &power);
                *factor = ddscale(*factor, -power);
                *e += DDLN2 * power;
            }
        }
        return hypersum({dd(-n)}, {b}, x, v);
    }
    if (x == 0) { // only the constant term (-1)^n (b)_n, and that is 0
        *v = {0, 0};
        return true;
    }
    if (x < 0 && std::fmod(n, 2) != 0) *factor = -1;
    *e = dd(n) * ddlog(std::fabs(x));
    return hypersum({dd(-n), dd(1 - n) - b}, {}, dd(-1) / x, v);
}

/* One term of the connection formula DLMF 13.2.42, Gamma(1-b)/Gamma(a-b+1) M(a, b, x), as m exp(e); the other
 * is this one with a-b+1, 2-b and the factor x^(1-b). */
bool connectionterm(dd a, dd b, double x, dd* m, dd* e) {
    widevalue v;
    if (!hypersum({a}, {b}, x, &v)) return false;
    int above, below;
    *e = ddloggamma(dd(1) - b, &above) - ddloggamma(a - b + 1.0, &below) + DDLN2 * double(v.power);
    *m = below == 0 ? dd(0) : v.m * double(above * below);
    return true;
}

// U by both terms; false if they cancel beyond what 32 digits bear.
bool connection(dd a, dd b, double x, dd* m, dd* e) {
    dd m1, m2, e1, e2;
    if (!connectionterm(a, b, x, &m1, &e1)) return false;
    if (!connectionterm(a - b + 1.0, dd(2) - b, x, &m2, &e2)) return false;
    e2 += (dd(1) - b) * ddlog(x);
    *e = e1 < e2 ? e2 : e1;
    m1 = m1 * ddexp(e1 - *e);
    m2 = m2 * ddexp(e2 - *e);
    *m = m1 + m2;
    return std::fabs(m->hi) > 1e-12 * std::max(std::fabs(m1.hi), std::fabs(m2.hi));
}

// The same for any b: next to a whole number the mean of two points, whose error is of their distance
// squared.
bool smallargument(double a, double b, double x, logvalue* u) {
    const double off = std::fabs(b - std::nearbyint(b));
    dd m, e;
    if (off > 2e-9) {
        if (!connection(a, b, x, &m, &e)) return false;
        *u = {m.hi, e};
        return true;
    }
    const double d = off < 5e-10 ? 1e-9 : 4e-9;
    dd m2, e2;
    if (!connection(a, dd(b) + d, x, &m, &e) || !connection(a, dd(b) - d, x, &m2, &e2)) return false;
    *u = {((m + m2 * ddexp(e2 - e)) / 2.0).hi, e};
    return true;
}

// x^shift U(a, b, x), shift 0 or a.
double confluent(const char* name, double a, double b, double x, double shift) {
    widevalue v;
    dd factor, e;
    if (endingorder(a) >= 0) {
        if (!polynomial(-a, b, x, &factor, &e, &v)) return outofrange(name, 0);
        return cappedorpole(name, widedouble(v, factor, shift == 0 ? e : e + dd(shift) * ddlog(x)));
    }
    if (x < 0) return outofrange(name, 0);
    if (x == 0) {
        if (b >= 1 || shift != 0) return outofrange(name, MAXPOS);
        int above, below; // DLMF 13.2.18..22
        e = ddloggamma(dd(1) - b, &above) - ddloggamma(dd(a) - b + 1.0, &below);
        return below == 0 ? 0 : cappedorpole(name, below * ddexp(e).hi);
    }
    if (const dd other = dd(a) - b + 1.0; endingorder(other) >= 0) { // x^(1-b) times a polynomial, 13.2.40
        if (!polynomial(-other.hi, dd(2) - b, x, &factor, &e, &v)) return outofrange(name, 0);
        return cappedorpole(name, widedouble(v, factor, e + (dd(1) - b + shift) * ddlog(x)));
    }
    logvalue u;
    const bool small = a < 1 && a > -2000 && (x < 30 || std::fabs(b) > x);
    if (!(small && smallargument(a, b, x, &u)) && !recur(a, b, x, &u)) return 0;
    return cappedorpole(name, widedouble({u.m, 0}, 1, u.e + dd(shift) * ddlog(x)));
}

} // namespace

double chu(double a, double b, double x) {
    if (std::isnan(a + b + x)) return NAN;
    if (std::isinf(a + b + x)) return outofrange("CHU", 0);
    return confluent("CHU", a, b, x, 0);
}

double r9chu(double a, double b, double x) {
    if (std::isnan(a + b + x)) return NAN;
    if (!(x > 0) || std::isinf(a + b + x)) return outofrange("CHU", 0);
    return confluent("CHU", a, b, x, a);
}
