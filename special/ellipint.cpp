// Elliptic integrals by B. C. Carlson's duplication, Numer. Algorithms 10 (1995) 13; DLMF 19.36.
#include "special/doubledouble.h"
#include "special/elementary.h"
#include "special/elliptic.h"
#include "special/range.h"

#include <algorithm>
#include <cmath>

namespace {

// The duplications stop when the arguments agree to this share: the series are good to its eighth power.
constexpr double AGREE = 0.0085;

double spread(double a, double x, double y, double z) {
    return std::max({std::fabs(a - x), std::fabs(a - y), std::fabs(a - z)});
}

} // namespace

double carlsonrf(double x, double y, double z) {
    double a = (x + y + z) / 3;
    while (spread(a, x, y, z) > AGREE * a) {
        const double sx = std::sqrt(x), sy = std::sqrt(y), sz = std::sqrt(z);
        const double l = sx * sy + sx * sz + sy * sz;
        x = (x + l) / 4;
        y = (y + l) / 4;
        z = (z + l) / 4;
        a = (x + y + z) / 3;
    }
    const double dx = (a - x) / a, dy = (a - y) / a, dz = -(dx + dy);
    const double e2 = dx * dy - dz * dz, e3 = dx * dy * dz;
    // DLMF 19.36.1
    return (1 - e2 / 10 + e3 / 14 + e2 * e2 / 24 - 3 * e2 * e3 / 44 - 5 * e2 * e2 * e2 / 208 +
            3 * e3 * e3 / 104 + e2 * e2 * e3 / 16) /
           std::sqrt(a);
}

double carlsonrc(double x, double y) {
    if (y < 0) return std::sqrt(x / (x - y)) * carlsonrc(x - y, -y); // DLMF 19.2.20
    if (x == 0) return PI / 2 / std::sqrt(y);
    const double t = (y - x) / x;
    if (std::fabs(t) < 1e-3) // the series of DLMF 19.2.18 in t
        return (1 - t * (1.0 / 3 - t * (1.0 / 5 - t * (1.0 / 7 - t * (1.0 / 9 - t * (1.0 / 11)))))) /
               std::sqrt(x);
    if (t > 0) return std::atan(std::sqrt(t)) / std::sqrt(y - x);
    return std::atanh(std::sqrt(-t)) / std::sqrt(x - y);
}

namespace {

// The common series of R_D and R_J, DLMF 19.36.2.
double jseries(double e2, double e3, double e4, double e5) {
    return 1 - 3 * e2 / 14 + e3 / 6 + 9 * e2 * e2 / 88 - 3 * e4 / 22 - 9 * e2 * e3 / 52 + 3 * e5 / 26 -
           e2 * e2 * e2 / 16 + 3 * e3 * e3 / 40 + 3 * e2 * e4 / 20 + 45 * e2 * e2 * e3 / 272 -
           9 * (e3 * e4 + e2 * e5) / 68;
}

} // namespace

double carlsonrd(double x, double y, double z) {
    double sum = 0, power = 1, a = (x + y + 3 * z) / 5;
    while (spread(a, x, y, z) > AGREE * a) {
        const double sx = std::sqrt(x), sy = std::sqrt(y), sz = std::sqrt(z);
        const double l = sx * sy + sx * sz + sy * sz;
        sum += power / (sz * (z + l));
        power /= 4;
        x = (x + l) / 4;
        y = (y + l) / 4;
        z = (z + l) / 4;
        a = (x + y + 3 * z) / 5;
    }
    const double dx = (a - x) / a, dy = (a - y) / a, dz = -(dx + dy) / 3;
    const double xy = dx * dy, z2 = dz * dz;
    const double e2 = xy - 6 * z2, e3 = (3 * xy - 8 * z2) * dz, e4 = 3 * (xy - z2) * z2, e5 = xy * z2 * dz;
    return power * jseries(e2, e3, e4, e5) / (a * std::sqrt(a)) + 3 * sum;
}

double carlsonrj(double x, double y, double z, double p) {
    double sum = 0, power = 1, a = (x + y + z + 2 * p) / 5;
    while (std::max(spread(a, x, y, z), std::fabs(a - p)) > AGREE * a) {
        const double sx = std::sqrt(x), sy = std::sqrt(y), sz = std::sqrt(z), sp = std::sqrt(p);
        const double l = sx * sy + sx * sz + sy * sz;
        // R_C of the squares of p(sx+sy+sz) + sx sy sz and sp (p + l), which is the same as 1, 1+e over d
        const double alpha = p * (sx + sy + sz) + sx * sy * sz, beta = sp * (p + l);
        sum += power * carlsonrc(alpha * alpha, beta * beta);
        power /= 4;
        x = (x + l) / 4;
        y = (y + l) / 4;
        z = (z + l) / 4;
        p = (p + l) / 4;
        a = (x + y + z + 2 * p) / 5;
    }
    const double dx = (a - x) / a, dy = (a - y) / a, dz = (a - z) / a, dp = -(dx + dy + dz) / 2;
    const double xyz = dx * dy * dz, p2 = dp * dp;
    const double e2 = dx * dy + dx * dz + dy * dz - 3 * p2, e3 = xyz + 2 * e2 * dp + 4 * p2 * dp;
    const double e4 = (2 * xyz + e2 * dp + 3 * p2 * dp) * dp, e5 = xyz * p2;
    return power * jseries(e2, e3, e4, e5) / (a * std::sqrt(a)) + 3 * sum;
}

namespace {

// phi = pi * halfturns + the rest, |rest| <= pi/2; s, c the sine and cosine of the rest.
struct reducedangle {
    double halfturns, s, c, rest;
};
reducedangle reduce(double phi) {
    const double k = std::nearbyint(phi / PI);
    const double rest = std::fabs(k) < 1e8 ? (dd(phi) - DDPI * k).hi : std::remainder(phi, PI);
    return {k, std::sin(rest), std::cos(rest), rest};
}

// The arguments of the symmetric integrals for sin s, cos c: Delta^2 = 1 - m s^2 without cancellation.
double delta2(double s, double c, double m) { return m > 0.5 ? c * c + (1 - m) * s * s : 1 - m * s * s; }

// True and the default in *result where an incomplete integral has no value.
bool noincomplete(const char* name, const reducedangle& r, double m, bool diverges, double* result) {
    if (m < 1) return false;
    if (m == 1 && r.halfturns == 0 && r.c > 0) return false;
    if (m == 1 && !diverges) return false;
    if (m == 1) {
        *result = outofrange(name, (r.halfturns == 0 ? r.rest : r.halfturns) < 0 ? MAXNEG : MAXPOS);
        return true;
    }
    if (r.halfturns == 0 && delta2(r.s, r.c, m) >= 0) return false;
    *result = outofrange(name, 0);
    return true;
}

} // namespace

double ellipk(double m) {
    if (std::isnan(m)) return m;
    if (m > 1) return outofrange("ELLIPK", 0);
    if (m == 1) return outofrange("ELLIPK", MAXPOS);
    double a = 1, b = std::sqrt(1 - m);
    while (std::fabs(a - b) > 1e-8 * a) { // the arithmetic-geometric mean, DLMF 19.8.5
        const double g = std::sqrt(a * b);
        a = (a + b) / 2;
        b = g;
    }
    return PI / (a + b);
}

double ellipe(double m) {
    if (std::isnan(m)) return m;
    if (m > 1) return outofrange("ELLIPE", 0);
    if (m == 1) return 1;
    const double mc = 1 - m;
    if (std::isinf(mc)) return outofrange("ELLIPE", MAXPOS);
    return cappedorpole("ELLIPE", mc / 3 * (carlsonrd(0, mc, 1) + carlsonrd(0, 1, mc))); // DLMF 19.25.1
}

namespace {

// Where Abramowitz and Stegun 17.7.15 takes n to a value that cancels less; next to m it would cancel itself.
bool moved(double n, double m) { return n < -2 && n < std::fmin(m, 2 * m); }

// The complete third integral for n < 1; nc = 1 - n.
double picomplete(double n, double nc, double m) {
    if (moved(n, m)) {
        const double other = (m - n) / nc, otherc = (1 - m) / nc;
        return picomplete(other, otherc, m) * (n / (n - 1)) * ((m - 1) / (n - m)) + ellipk(m) * (m / (m - n));
    }
    return carlsonrf(0, 1 - m, 1) + n / 3 * carlsonrj(0, 1 - m, 1, nc);
}

} // namespace

double ellippi(double n, double m) {
    if (std::isnan(n + m)) return n + m;
    if (m > 1) return outofrange("ELLIPPI", 0);
    if (m == 1 || n == 1) return outofrange("ELLIPPI", n > 1 ? MAXNEG : MAXPOS);
    if (n > 1) // DLMF 19.6.5, 19.25.2
        return cappedorpole("ELLIPPI", -m / n / 3 * carlsonrj(0, 1 - m, 1, (n - m) / n));
    return cappedorpole("ELLIPPI", picomplete(n, 1 - n, m));
}

namespace {

// The integrals for |phi| <= pi/2.
double fpart(const reducedangle& r, double m) {
    if (m == 1) return std::asinh(r.s / r.c);
    return r.s * carlsonrf(r.c * r.c, delta2(r.s, r.c, m), 1);
}

double epart(const reducedangle& r, double m) {
    if (m == 1) return r.s;
    const double c2 = r.c * r.c, d2 = delta2(r.s, r.c, m), s3 = r.s * r.s * r.s;
    if (m < 0 || m > 1 || r.c == 0 || d2 == 0)
        return r.s * carlsonrf(c2, d2, 1) - m / 3 * s3 * carlsonrd(c2, d2, 1); // DLMF 19.25.9
    return (1 - m) * (r.s * carlsonrf(c2, d2, 1) + m / 3 * s3 * carlsonrd(c2, 1, d2)) +
           m * r.s * r.c / std::sqrt(d2); // DLMF 19.25.10
}

// nc = 1 - n.
double pipart(double n, double nc, const reducedangle& r, double m) {
    const double s2 = r.s * r.s, c2 = r.c * r.c, d2 = delta2(r.s, r.c, m), s3 = s2 * r.s;
    if (n * s2 > 1) { // principal value, Abramowitz and Stegun 17.7.7
        const double p1 = std::sqrt((n - 1) * (1 - m / n)), d = std::sqrt(d2) * r.c, t = p1 * r.s;
        return std::log(std::fabs((d + t) / (d - t))) / (2 * p1) -
               m / n / 3 * s3 * carlsonrj(c2, d2, 1, delta2(r.s, r.c, m / n));
    }
    if (moved(n, m)) {
        const double other = (m - n) / nc, otherc = (1 - m) / nc, p2 = std::sqrt(-n * other);
        return pipart(other, otherc, r, m) * (n / (n - 1)) * ((m - 1) / (n - m)) +
               fpart(r, m) * (m / (m - n)) +
               std::atan(p2 * r.s * r.c / std::sqrt(d2)) * std::sqrt(n / ((m - n) * (n - 1)));
    }
    return r.s * carlsonrf(c2, d2, 1) + n / 3 * s3 * carlsonrj(c2, d2, 1, c2 + nc * s2);
}

} // namespace

double ellipf(double phi, double m) {
    if (std::isnan(phi + m)) return phi + m;
    const reducedangle r = reduce(phi);
    double result;
    if (noincomplete("ELLIPF", r, m, true, &result)) return result;
    return cappedorpole("ELLIPF", fpart(r, m) + (r.halfturns == 0 ? 0 : 2 * r.halfturns * ellipk(m)));
}

double ellipeinc(double phi, double m) {
    if (std::isnan(phi + m)) return phi + m;
    const reducedangle r = reduce(phi);
    double result;
    if (noincomplete("ELLIPE", r, m, false, &result)) return result;
    return cappedorpole("ELLIPE", epart(r, m) + (r.halfturns == 0 ? 0 : 2 * r.halfturns * ellipe(m)));
}

double ellippiinc(double n, double phi, double m) {
    if (std::isnan(n + phi + m)) return n + phi + m;
    const reducedangle r = reduce(phi);
    double result;
    if (noincomplete("ELLIPPI", r, m, true, &result)) return result;
    if (n * r.s * r.s == 1) return outofrange("ELLIPPI", MAXPOS);
    if (n == 1 && r.halfturns != 0) return outofrange("ELLIPPI", r.halfturns < 0 ? MAXNEG : MAXPOS);
    const double turns = r.halfturns == 0 ? 0 : 2 * r.halfturns * ellippi(n, m);
    return cappedorpole("ELLIPPI", pipart(n, 1 - n, r, m) + turns);
}
