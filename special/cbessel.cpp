/* All functions come from I and K in the right half plane, in the manner of D. E. Amos, ACM TOMS 12 (1986)
 * 265: series, Hankel's expansions and continued fractions there, the formulas of DLMF 10.27, 10.11
 * elsewhere. */
#include "special/cbessel.h"

#include "special/besselimpl.h"
#include "special/complexfn.h"
#include "special/complexrange.h"
#include "special/doubledouble.h"
#include "special/elementary.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double FAR = 18;        // |z| from which Hankel's expansions reach exp(-2|z|)
constexpr double MOSTSTEPS = 2e6; // of a recurrence or fraction

// m exp(e): a value that may be beyond the doubles.
struct widecomplex {
    spcomplex m;
    double e = 0;
};
spcomplex narrow(const widecomplex& v) { return {joinexponent(v.m.re, v.e), joinexponent(v.m.im, v.e)}; }
widecomplex operator*(spcomplex f, const widecomplex& v) { return {f * v.m, v.e}; }
widecomplex operator+(const widecomplex& a, const widecomplex& b) {
    if (a.m.re == 0 && a.m.im == 0) return b;
    if (b.m.re == 0 && b.m.im == 0) return a;
    const double e = std::fmax(a.e, b.e);
    return {a.m * std::exp(a.e - e) + b.m * std::exp(b.e - e), e};
}
// exp(i pi t), exact where it can be.
spcomplex turn(double t) { return {cospi(t), sinpi(t)}; }

struct wideik {
    bool good = true;
    widecomplex i, k;
};

// sum of prod (mu - (2j-1)^2)/(k! (8z)^k) with the sign s^k, DLMF 10.17.1; false where it does not settle.
bool hankelseries(double nu, spcomplex z, int s, spcomplex* sum) {
    const double mu = 4 * nu * nu;
    const spcomplex r = spcomplex{s / 8.0, 0} / z;
    spcomplex term = {1, 0};
    *sum = term;
    double last = HUGE_VAL;
    for (int k = 1; k < 300; k++) {
        const double odd = 2.0 * k - 1;
        term = term * r * ((mu - odd * odd) / k);
        const double size = magnitude(term);
        if ((size > last && odd > 2 * nu) || size > 8) return false;
        *sum = *sum + term;
        if (size < 1e-17) return true;
        last = size;
    }
    return false;
}

// sinh(e)/e by its series, |e| < 0.5.
spcomplex sinhover(spcomplex e) {
    const spcomplex square = e * e;
    spcomplex sum = {1, 0};
    for (double k = 14; k > 0; k -= 2) sum = spcomplex{1, 0} + square * sum / (k * (k + 1));
    return sum;
}

// Re z >= 0 from here to the end of the basic pair; z not 0. K of orders mu and mu + 1, |mu| <= 1/2, times
// exp(z).
void temmepair(double mu, spcomplex z, spcomplex* k0, spcomplex* k1) { // |z| <= 2; see besselik.cpp
    const spcomplex b = spcomplex{2, 0} / z, d = clogfn(b), e = mu * d;
    const temmegamma g = temmegammas(mu);
    const double sinc = mu == 0 ? 1 : PI * mu / sinpi(mu);
    const spcomplex grown = cexpfn(e), shrunk = cexpfn(-e);
    const spcomplex cosh = 0.5 * (grown + shrunk);
    const spcomplex sinhc = magnitude(e) < 0.5 ? sinhover(e) : 0.5 * (grown - shrunk) / e;
    spcomplex f = sinc * (g.gam1 * cosh + g.gam2 * (sinhc * d));
    spcomplex p = grown / (2 * g.rplus), q = shrunk / (2 * g.rminus), c = {1, 0}, sum = f, sum1 = p;
    const spcomplex v = 0.25 * (z * z);
    for (int k = 1; k < 60; k++) {
        f = (double(k) * f + p + q) / (double(k) * k - mu * mu);
        c = c * v / k;
        p = p / (k - mu);
        q = q / (k + mu);
        sum = sum + c * f;
        sum1 = sum1 + c * (p - double(k) * f);
        if (magnitude(c * f) < 1e-18 * magnitude(sum)) break;
    }
    const spcomplex ez = cexpfn(z);
    *k0 = ez * sum;
    *k1 = ez * sum1 * b;
}

void steedpair(double mu, spcomplex z, spcomplex* k0, spcomplex* k1) { // 2 < |z|; see besselik.cpp
    const double a1 = 0.25 - mu * mu;
    const spcomplex one = {1, 0};
    spcomplex b = 2 * (one + z), d = one / b, h = d, delta = d, q2 = one, s;
    spcomplex q1, q = {a1, 0};
    double a = -a1, c = a1;
    s = one + q * delta;
    for (int k = 2; k < 100000; k++) {
        a -= 2.0 * (k - 1);
        c = -a * c / k;
        const spcomplex qnew = (q1 - b * q2) / a;
        q1 = q2;
        q2 = qnew;
        q = q + c * qnew;
        b.re += 2;
        d = one / (b + a * d);
        delta = (b * d - one) * delta;
        h = h + delta;
        s = s + q * delta;
        if (magnitude(q * delta) < 1e-17 * magnitude(s)) break;
    }
    *k0 = csqrtfn(spcomplex{PI / 2, 0} / z) / s;
    *k1 = *k0 * (spcomplex{mu + 0.5, 0} + z - a1 * h) / z;
}

// Gamma(nu)/2 (2/z)^nu, all that is left of K_nu next to 0, nu >= 1.
widecomplex kleading(double nu, spcomplex z) {
    const double e = ddloggamma(nu).hi + nu * std::log(2 / magnitude(z));
    return {0.5 * polar(1, -nu * argument(z)), e};
}

// K of orders nu and nu + 1 (nu >= 0) by upward recurrence, with a common exponent; the factor exp(-z) is in.
bool kpair(double nu, spcomplex z, widecomplex* k0, widecomplex* k1) {
    const double up = std::nearbyint(nu), mu = nu - up;
    if (up > MOSTSTEPS) return false;
    spcomplex a, b;
    const double size = magnitude(z);
    if (size < 1e-100 && nu >= 1) {
        *k0 = kleading(nu, z);
        *k1 = kleading(nu + 1, z);
        return true;
    }
    if (size <= 2) {
        temmepair(mu, z, &a, &b);
    } else {
        spcomplex s0, s1;
        if (size >= FAR && hankelseries(mu, z, 1, &s0) && hankelseries(mu + 1, z, 1, &s1)) {
            const spcomplex front = csqrtfn(spcomplex{PI / 2, 0} / z);
            a = front * s0;
            b = front * s1;
        } else {
            steedpair(mu, z, &a, &b);
        }
    }
    double e = -z.re;
    const spcomplex r = spcomplex{2, 0} / z;
    for (double k = 1; k <= up; k++) {
        const spcomplex t = (mu + k) * (r * b) + a;
        a = b;
        b = t;
        if (const double big = std::fabs(b.re) + std::fabs(b.im); big > 1e100) {
            a = a / big;
            b = b / big;
            e += std::log(big);
        }
    }
    const spcomplex phase = {std::cos(z.im), -std::sin(z.im)};
    *k0 = {phase * a, e};
    *k1 = {phase * b, e};
    return true;
}

// I_{nu+1}/I_nu by its continued fraction (DLMF 10.33.1); it converges where nu or the steps pass |z|.
bool iratio(double nu, spcomplex z, spcomplex* ratio) {
    const spcomplex r = spcomplex{2, 0} / z, one = {1, 0};
    spcomplex b = (nu + 1) * r, f = b, c = b, d;
    for (double k = 2; k < MOSTSTEPS; k++) {
        b = (nu + k) * r;
        d = one / (b + d);
        c = b + one / c;
        const spcomplex step = c * d;
        f = f * step;
        if (std::fabs(step.re - 1) + std::fabs(step.im) < 1e-16) {
            *ratio = one / f;
            return true;
        }
    }
    return false;
}

// (z/2)^nu/Gamma(nu+1) sum of (z^2/4)^k/(k! (nu+1)_k) in 32 digits: the terms cancel by exp(|z| - Re z) at
// most.
widecomplex iseries(double nu, spcomplex z) {
    const dd x = z.re / 2, y = z.im / 2;
    const ddcomplex v = {x * x - y * y, x * y * 2.0};
    ddcomplex term = {1, 0}, sum = {1, 0};
    for (int k = 1; k < 3000; k++) {
        term = term * v / ((dd(nu) + double(k)) * double(k));
        sum = sum + term;
        if (std::fabs(term.re.hi) + std::fabs(term.im.hi) <
            1e-20 * (std::fabs(sum.re.hi) + std::fabs(sum.im.hi)))
            break;
    }
    const double larger = std::fmax(std::fabs(x.hi), std::fabs(y.hi));
    const int power = larger > 0 && std::isfinite(larger) ? std::ilogb(larger) : 0; // no square underflows
    const dd u = ddscale(x, -power), w = ddscale(y, -power);
    const dd size = ddlog(u * u + w * w) / 2.0 + DDLN2 * power;
    const dd e = dd(nu) * size - ddloggamma(dd(nu) + 1.0);
    // the turn by nu times the argument, a multiple of pi/2 taken out exactly on the axes
    const spcomplex front = z.re == 0 ? turn(z.im > 0 ? nu / 2 : -nu / 2) : polar(1, nu * argument(z));
    return {(1 + e.lo) * (front * spcomplex{sum.re.hi, sum.im.hi}), e.hi};
}

bool ifar(double nu, spcomplex z, widecomplex* i) { // DLMF 10.40.5, both exponentials
    spcomplex up, down;
    if (magnitude(z) < FAR || !hankelseries(nu, z, -1, &up) || !hankelseries(nu, z, 1, &down)) return false;
    const spcomplex front = spcomplex{1, 0} / csqrtfn(2 * PI * z);
    const spcomplex phase = {std::cos(z.im), std::sin(z.im)};
    const spcomplex side = z.im >= 0 ? turn(nu + 0.5) : turn(-nu - 0.5);
    *i = widecomplex{front * phase * up, z.re} + widecomplex{front * side * conjugate(phase) * down, -z.re};
    return true;
}

wideik basicpair(double nu, spcomplex z) { // nu >= 0
    wideik r;
    if (z.im == 0) {
        const double i = besiraw(nu, z.re, 1), k = beskraw(nu, z.re, 1);
        if (std::isfinite(k)) return {true, {{i, 0}, z.re}, {{k, 0}, -z.re}};
    }
    const double size = magnitude(z), v = size * size / 4;
    widecomplex next;
    r.good = kpair(nu, z, &r.k, &next);
    if (size < 25 || v < nu + 1) {
        r.i = iseries(nu, z);
        return r;
    }
    if (ifar(nu, z, &r.i)) return r;
    spcomplex ratio;
    r.good = r.good && iratio(nu, z, &ratio);
    // the Wronskian, DLMF 10.28.2
    if (r.good) r.i = {spcomplex{1, 0} / (z * (next.m + ratio * r.k.m)), -next.e};
    return r;
}

// I and K anywhere off 0, nu >= 0: DLMF 10.34.1 and 10.34.2 with m = 1 or -1 on the left.
wideik modifiedpair(double nu, spcomplex z) {
    if (z.im < 0 || (z.im == 0 && std::signbit(z.im) && z.re >= 0)) {
        wideik r = modifiedpair(nu, {z.re, -z.im});
        r.i.m = conjugate(r.i.m);
        r.k.m = conjugate(r.k.m);
        return r;
    }
    if (z.re >= 0) return basicpair(nu, z);
    wideik r = basicpair(nu, {-z.re, -z.im});
    const widecomplex i = r.i;
    r.i = turn(nu) * i;
    r.k = turn(-nu) * r.k + spcomplex{0, -PI} * i;
    return r;
}

struct widehankel {
    bool good = true;
    widecomplex j, h1;
};
// J and H(1) for Re z >= 0, Im z >= 0, nu >= 0: DLMF 10.27.6 and 10.27.8 at w = -iz.
widehankel quadrant(double nu, spcomplex z) {
    const wideik p = modifiedpair(nu, {z.im, -z.re});
    return {p.good, turn(nu / 2) * p.i, spcomplex{0, -2 / PI} * turn(-nu / 2) * p.k};
}

struct allkinds {
    bool good = true;
    widecomplex j, y, h1, h2;
};

allkinds byconjugate(allkinds a) {
    for (widecomplex* v : {&a.j, &a.y, &a.h1, &a.h2}) v->m = conjugate(v->m);
    std::swap(a.h1, a.h2);
    return a;
}

// All four for nu >= 0, z not 0.
allkinds cylinder(double nu, spcomplex z) {
    if (z.im < 0) return byconjugate(cylinder(nu, conjugate(z)));
    allkinds a;
    if (z.re >= 0) {
        if (z.im == 0) {
            const double j = besjraw(nu, z.re), y = besyraw(nu, z.re);
            if (std::isfinite(y)) return {true, {{j, 0}, 0}, {{y, 0}, 0}, {{j, y}, 0}, {{j, -y}, 0}};
        }
        const widehankel q = quadrant(nu, z);
        a.good = q.good;
        a.j = q.j;
        a.h1 = q.h1;
        a.y = spcomplex{0, -1} * a.h1 + spcomplex{0, 1} * a.j;
        a.h2 = spcomplex{2, 0} * a.j + spcomplex{-1, 0} * a.h1;
        return a;
    }
    // z = (-z) exp(i pi), -z below or on the positive axis: DLMF 10.11.1, 10.11.2
    const allkinds o = cylinder(nu, z.im == 0 ? spcomplex{-z.re, 0} : -z);
    a.good = o.good;
    a.j = turn(nu) * o.j;
    a.y = turn(-nu) * o.y + spcomplex{0, 2 * cospi(nu)} * o.j;
    a.h1 = spcomplex{-1, 0} * (turn(-nu) * o.h2); // DLMF 10.11.5
    a.h2 = spcomplex{2, 0} * a.j + spcomplex{-1, 0} * a.h1;
    return a;
}

allkinds anyorder(double nu, spcomplex z) {
    const allkinds p = cylinder(std::fabs(nu), z);
    if (nu >= 0) return p;
    const spcomplex c = {cospi(nu), 0}, s = {sinpi(-nu), 0}; // DLMF 10.4.6, 10.4.7
    const spcomplex minus = {-s.re, 0};
    return {p.good, c * p.j + minus * p.y, s * p.j + c * p.y, turn(-nu) * p.h1, turn(nu) * p.h2};
}

spcomplex poleat0(const char* name, double kind, double nu) {
    const bool whole = isinteger(nu);
    if (kind == 1 || kind == 3) {
        if (nu == 0) return {1, 0};
        if (nu > 0 || whole) return {};
        rangewarn(name);
        return {MAXPOS, 0};
    }
    rangewarn(name);
    return {kind == 2 ? MAXNEG : kind == 4 ? MAXPOS : 0, kind == 5 ? MAXNEG : kind == 6 ? MAXPOS : 0};
}

// A function of kind 1 to 6, any real order, z not 0; false where no method reaches.
bool ofkind(double kind, double nu, spcomplex z, widecomplex* v) {
    if (kind == 3 || kind == 4) {
        const wideik p = modifiedpair(std::fabs(nu), z);
        *v = kind == 4 ? p.k : p.i;
        if (kind == 3 && nu < 0 && !isinteger(nu))
            *v = p.i + spcomplex{2 / PI * sinpi(-nu), 0} * p.k; // DLMF 10.27.2
        return p.good;
    }
    const allkinds a = anyorder(nu, z);
    *v = kind == 1 ? a.j : kind == 2 ? a.y : kind == 5 ? a.h1 : a.h2;
    return a.good;
}

spcomplex anykind(const char* name, double kind, double nu, spcomplex z) {
    if (std::isnan(nu) || isnotanumber(z)) return {NAN, NAN};
    if (std::isinf(nu) || std::isinf(z.re) || std::isinf(z.im) || !isinteger(kind) || kind < 1 || kind > 6) {
        rangewarn(name);
        return {};
    }
    z.im += 0.0; // no -0: the cut is continued from above
    if (z.re == 0 && z.im == 0) return poleat0(name, kind, nu);
    widecomplex v;
    const bool good = ofkind(kind, nu, z, &v);
    const spcomplex r = narrow(v);
    if (good && !isnotanumber(r)) return capcomplex(name, r);
    rangewarn(name);
    return {};
}

} // namespace

bool cbesswide(double kind, double nu, spcomplex z, spcomplex* m, double* e) {
    widecomplex v;
    const bool good = ofkind(kind, nu, z, &v);
    *m = v.m;
    *e = v.e;
    return good;
}

spcomplex cbess(double kind, double nu, spcomplex z) { return anykind("CBESS", kind, nu, z); }
spcomplex cbessj(double nu, spcomplex z) { return anykind("CBESSJ", 1, nu, z); }

void cjyhbs(double nu, spcomplex z, spcomplex* j, spcomplex* y, spcomplex* h1, spcomplex* h2) {
    *j = anykind("CBESS", 1, nu, z);
    *y = anykind("CBESS", 2, nu, z);
    *h1 = anykind("CBESS", 5, nu, z);
    *h2 = anykind("CBESS", 6, nu, z);
}
