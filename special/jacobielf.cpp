// Jacobi's elliptic functions and zeta.
#include "special/elementary.h"
#include "special/elliptic.h"
#include "special/range.h"

#include <cmath>

namespace {

// The steps of the arithmetic-geometric mean of 1 and sqrt(1-m), from which all follows.
struct agmsteps {
    static constexpr int most = 20;
    int n = 0; // the last index
    double a[most], b[most];
    double k() const { return PI / (a[n] + b[n]); } // the quarter period
};
agmsteps agm(double mc) { // mc = 1 - m
    agmsteps s;
    s.a[0] = 1;
    s.b[0] = std::sqrt(mc);
    while (std::fabs(s.a[s.n] - s.b[s.n]) > 1e-8 * s.a[s.n] && s.n + 1 < agmsteps::most) {
        s.a[s.n + 1] = (s.a[s.n] + s.b[s.n]) / 2;
        s.b[s.n + 1] = std::sqrt(s.a[s.n] * s.b[s.n]);
        s.n++;
    }
    return s;
}

/* 0 < m < 1, |u| <= K: R. Bulirsch's descending transformation on cn/sn (Numer. Math. 7 (1965) 78), in which
 * all terms are positive, so that cn and dn are good relatively. */
jacobivalues bulirsch(double u, const agmsteps& s) {
    if (std::fabs(u) < 1e-9) return {u, 1, 1};
    const double mean = (s.a[s.n] + s.b[s.n]) / 2, angle = u * mean;
    const double sine = std::sin(angle);
    if (sine == 0) return {u, 1, 1};
    double ratio = std::cos(angle) / sine; // cs of the step
    double c = mean * ratio, dn = 1;
    for (int k = s.n; k >= 0; k--) {
        ratio *= c;
        c *= dn;
        dn = (s.b[k] + ratio) / (s.a[k] + ratio);
        ratio = c / s.a[k];
    }
    const double size = 1 / std::sqrt(c * c + 1);
    const double sn = sine > 0 ? size : -size;
    return {sn, c * sn, dn};
}

// The values for 0 <= m <= 1, mc = 1 - m; *halfperiods counts the half periods 2K taken out of u.
jacobivalues ordinary(double u, double m, double mc, double* halfperiods) {
    *halfperiods = 0;
    if (mc == 0) return {std::tanh(u), 1 / std::cosh(u), 1 / std::cosh(u)};
    if (m == 0) return {std::sin(u), std::cos(u), 1};
    const agmsteps s = agm(mc);
    const double period = 2 * s.k();
    *halfperiods = std::nearbyint(u / period);
    jacobivalues v = bulirsch(std::remainder(u, period), s);
    if (std::fmod(*halfperiods, 2) != 0) {
        v.sn = -v.sn;
        v.cn = -v.cn;
    }
    return v;
}

// As ordinary for m <= 1; Abramowitz and Stegun 16.10 for m < 0.
jacobivalues uptoone(double u, double m, double* halfperiods) {
    if (m >= 0) return ordinary(u, m, 1 - m, halfperiods);
    const double root = std::sqrt(1 - m);
    const jacobivalues v = ordinary(u * root, -m / (1 - m), 1 / (1 - m), halfperiods);
    return {v.sn / (v.dn * root), v.cn / v.dn, 1 / v.dn};
}

} // namespace

jacobivalues jacobiall(double u, double m) {
    if (!std::isfinite(u * std::sqrt(1 + std::fabs(m)))) return {NAN, NAN, NAN};
    double ignored;
    if (m <= 1) return uptoone(u, m, &ignored);
    const double root = std::sqrt(m); // Abramowitz and Stegun 16.11
    const jacobivalues v = ordinary(u * root, 1 / m, (m - 1) / m, &ignored);
    return {v.sn / root, v.dn, v.cn};
}

double jacobisn(double u, double m) { return cappedorpole("JACOBISN", jacobiall(u, m).sn); }
double jacobicn(double u, double m) { return cappedorpole("JACOBICN", jacobiall(u, m).cn); }
double jacobidn(double u, double m) { return cappedorpole("JACOBIDN", jacobiall(u, m).dn); }

namespace {

// The ratio that the last two letters of a name stand for, n being 1: sc = sn/cn (Abramowitz and
// Stegun 16.3).
double ratio(const char (&name)[9], double u, double m) {
    const jacobivalues v = jacobiall(u, m);
    const auto part = [&v](char letter) {
        return letter == 'S' ? v.sn : letter == 'C' ? v.cn : letter == 'D' ? v.dn : 1.0;
    };
    const double p = part(name[6]), q = part(name[7]);
    return q == 0 ? outofrange(name, MAXPOS) : cappedorpole(name, p / q);
}

} // namespace

double jacobins(double u, double m) { return ratio("JACOBINS", u, m); }
double jacobinc(double u, double m) { return ratio("JACOBINC", u, m); }
double jacobind(double u, double m) { return ratio("JACOBIND", u, m); }
double jacobisc(double u, double m) { return ratio("JACOBISC", u, m); }
double jacobisd(double u, double m) { return ratio("JACOBISD", u, m); }
double jacobics(double u, double m) { return ratio("JACOBICS", u, m); }
double jacobicd(double u, double m) { return ratio("JACOBICD", u, m); }
double jacobids(double u, double m) { return ratio("JACOBIDS", u, m); }
double jacobidc(double u, double m) { return ratio("JACOBIDC", u, m); }

double jacobiam(double u, double m) {
    if (!std::isfinite(u * std::sqrt(1 + std::fabs(m)))) return outofrange("JACOBIAM", 0);
    if (m > 1) return std::asin(jacobiall(u, m).sn); // swings between the turning points
    if (m == 0) return u;
    if (m == 1) return std::atan(std::sinh(u));
    double halfperiods;
    const jacobivalues v = uptoone(u, m, &halfperiods);
    const double sign = std::fmod(halfperiods, 2) == 0 ? 1 : -1;
    return halfperiods * PI + std::atan2(sign * v.sn, sign * v.cn);
}

// Z = sum of c_n sin(phi_n) over the steps of the mean, Abramowitz and Stegun 17.6.8, 17.6.10.
double jzeta(double u, double m) {
    if (!std::isfinite(u) || !std::isfinite(m)) return NAN;
    if (m > 1) return outofrange("JZETA", 0);
    if (m == 1) return std::tanh(u);
    const agmsteps s = agm(1 - m);
    double ignored;
    const jacobivalues v = uptoone(std::remainder(u, 2 * s.k()), m, &ignored);
    double phi = std::atan2(v.sn, v.cn), tangent = v.sn / v.cn;
    double c = m / (2 * (1 + s.b[0])), sum = 0; // c_1; then c_{n+1} = c_n^2/(4 a_{n+1})
    double a = 1, b = s.b[0];
    for (int n = 0; n < agmsteps::most; n++) { // the angle phi grows by an angle of the same quadrant
        const double turns = std::nearbyint(phi / PI);
        phi += std::atan(b / a * tangent) + turns * PI;
        tangent = std::tan(phi);
        const double term = c * std::sin(phi);
        sum += term;
        if (std::fabs(c) < 1e-18 * std::fabs(sum) || c == 0) break;
        const double g = std::sqrt(a * b);
        a = (a + b) / 2;
        b = g;
        c = c * c / (2 * (a + b));
    }
    return cappedorpole("JZETA", sum);
}

double jacobielf(double u, double m, double selector) {
    static constexpr double (*functions[])(double, double) = {
        jacobisn, jacobicn, jacobidn, jacobins, jacobinc, jacobind, jacobisc, jacobisd,
        jacobics, jacobicd, jacobids, jacobidc, jacobiam, jzeta,    ellipf,   ellipeinc};
    if (selector == 17) return ellipk(m);
    if (selector == 18) return ellipe(m);
    if (!isinteger(selector) || selector < 1 || selector > 18) return outofrange("JACOBIELF", 0);
    return functions[static_cast<int>(selector) - 1](u, m);
}
