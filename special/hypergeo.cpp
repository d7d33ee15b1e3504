#include "special/hypergeo.h"

#include "special/hypersum.h"
#include "special/range.h"

#include <algorithm>
#include <cmath>

namespace {

using parameters = std::vector<dd>;

// What a function came to: a number m 2^power exp(e), or why not.
struct hypervalue {
    enum { GOOD, POLE, NONE } kind = GOOD;
    widevalue v;
    dd e = 0;
};
hypervalue good(const widevalue& v, dd e = 0) { return {hypervalue::GOOD, v, e}; }
hypervalue pole() { return {hypervalue::POLE, {}, 0}; }
hypervalue none() { return {hypervalue::NONE, {}, 0}; }

double settle(const char* name, const hypervalue& r) {
    if (r.kind != hypervalue::GOOD) return outofrange(name, r.kind == hypervalue::POLE ? MAXPOS : 0);
    return cappedorpole(name, widedouble(r.v, 1, r.e));
}

hypervalue summed(const parameters& a, const parameters& b, dd x, dd e = 0) {
    widevalue v;
    return hypersum(a, b, x, &v) ? good(v, e) : none();
}

// The order at which the series ends, -1 if it does not.
int64_t ending(const parameters& a) {
    int64_t last = -1;
    for (const dd& p : a)
        if (const int64_t n = endingorder(p); n >= 0) last = last < 0 ? n : std::min(last, n);
    return last;
}

// True if a lower parameter 0, -1, .. makes a term infinite before the series ends.
bool infinite(const parameters& a, const parameters& b) {
    const int64_t last = ending(a);
    for (const dd& p : b)
        if (const int64_t n = endingorder(p); n >= 0 && (last < 0 || n < last)) return true;
    return false;
}

// Takes out equal parameters above and below.
void cancel(parameters& a, parameters& b) {
    for (size_t i = 0; i < b.size();) {
        const auto equal = [&](const dd& p) { return p.hi == b[i].hi && p.lo == b[i].lo; };
        const auto at = std::find_if(a.begin(), a.end(), equal);
        if (at == a.end() || endingorder(b[i]) >= 0) {
            i++;
            continue;
        }
        a.erase(at);
        b.erase(b.begin() + static_cast<std::ptrdiff_t>(i));
    }
}

// Gauss' sum at 1, DLMF 15.4.20.
hypervalue gausssum(dd a, dd b, dd c) {
    const dd s = c - a - b;
    if (s.hi <= 0) return pole();
    int sign = 1, one;
    dd e = 0;
    for (const dd& p : {c, s}) {
        e += ddloggamma(p, &one);
        sign *= one;
    }
    for (const dd& p : {c - a, c - b}) {
        e -= ddloggamma(p, &one);
        if (one == 0) return good({0, 0});
        sign *= one;
    }
    return good({sign, 0}, e);
}

// Gamma(c) Gamma(s)/(Gamma(c-a) Gamma(c-b)) F(a, b; 1-s; y) with s = c-a-b: one term of DLMF 15.8.4.
bool gaussterm(dd a, dd b, dd c, dd s, dd y, hypervalue* t) {
    int sign[4];
    dd e = ddloggamma(c, &sign[0]) + ddloggamma(s, &sign[1]) - ddloggamma(c - a, &sign[2]) -
           ddloggamma(c - b, &sign[3]);
    widevalue v;
    if (!hypersum({a, b}, {dd(1) - s}, y, &v)) return false;
    v.m = v.m * double(sign[0] * sign[1] * sign[2] * sign[3]);
    *t = good(v, e);
    return true;
}

/* 2F1 next to 1 by two series in y = 1 - x, DLMF 15.8.4. False where c-a-b is near a whole number or the two
 * cancel, so that 32 digits would not be enough. */
bool gaussnearone(dd a, dd b, dd c, dd y, hypervalue* r) {
    const dd s = c - a - b;
    if (std::fabs((s - std::nearbyint(s.hi)).hi) < 1e-5 || std::fabs(s.hi) > 1e5) return false;
    hypervalue t, u;
    if (!gaussterm(a, b, c, s, y, &t) || !gaussterm(c - a, c - b, c, -s, y, &u)) return false;
    u.e += s * ddlog(y);
    if (t.v.m.hi == 0 || u.v.m.hi == 0) {
        *r = t.v.m.hi == 0 ? u : t;
        return true;
    }
    const dd size = u.e - t.e + DDLN2 * double(u.v.power - t.v.power);
    if (std::fabs(size.hi) > 300) { // far beyond what the numbers m can make good
        *r = size.hi > 0 ? u : t;
        return true;
    }
    const dd second = u.v.m * ddexp(size), sum = t.v.m + second;
    if (std::fabs(sum.hi) < 1e-8 * std::fmax(std::fabs(second.hi), std::fabs(t.v.m.hi))) return false;
    *r = good({sum, t.v.power}, t.e);
    return true;
}

// 2F1 for x < 1, y = 1 - x, neither c a pole nor the series a polynomial.
hypervalue gauss(dd a, dd b, dd c, dd x, dd y) {
    if (endingorder(c - a) >= 0 || endingorder(c - b) >= 0) // a polynomial by Euler's transformation, 15.8.1
        return summed({c - a, c - b}, {c}, x, (c - a - b) * ddlog(y));
    if (x.hi < -0.5) { // Pfaff's, 15.8.1, with the smaller of a and b before: regular at infinity
        if (b < a) std::swap(a, b);
        hypervalue r = gauss(a, c - b, c, -x / y, dd(1) / y);
        r.e = r.e - a * ddlog(y);
        return r;
    }
    if (x.hi <= 0.75) return summed({a, b}, {c}, x);
    if (hypervalue r; gaussnearone(a, b, c, y, &r)) return r;
    dd e = 0;
    if ((c - a - b).hi < 0) { // Euler's: finite at 1
        e = (c - a - b) * ddlog(y);
        a = c - a;
        b = c - b;
    }
    widevalue v;
    if (hypcontinue({a, b}, {c}, x, y, &v)) return good(v, e);
    return x.hi < 0.999 ? summed({a, b}, {c}, x, e) : none();
}

} // namespace

double hgeof(double a, double b, double c, double x) {
    if (std::isnan(a + b + c + x)) return NAN;
    if (std::isinf(a + b + c)) return outofrange("HGEOF", 0);
    const parameters up{a, b}, low{c};
    if (x == 0 || a == 0 || b == 0) return 1;
    if (infinite(up, low)) return settle("HGEOF", pole());
    if (ending(up) >= 0) return settle("HGEOF", summed(up, low, x));
    if (x > 1 || std::isinf(x)) return settle("HGEOF", none());
    if (x == 1) return settle("HGEOF", gausssum(a, b, c));
    return settle("HGEOF", gauss(a, b, c, x, ddsum(1, -x)));
}

namespace {

// The tables of Levin's u-transform, the newest entries last: numerators above, denominators below.
struct levintables {
    std::vector<dd> above, below;
    // The transform with one more partial sum, that up to term number n.
    dd with(dd sum, dd term, double n) {
        const dd weight = dd(1) / (term * n), shrink = dd(n - 1) / dd(n);
        above.push_back(sum * weight);
        below.push_back(weight);
        const size_t top = above.size() - 1;
        dd power = dd(1) / dd(n);           // shrink^(j-2)/n
        for (size_t j = 1; j <= top; j++) { // E. J. Weniger, Comput. Phys. Rep. 10 (1989) 189, 7.2-8
            const dd factor = j == 1 ? dd(1) : power * (n - double(j));
            above[top - j] = above[top - j + 1] - factor * above[top - j];
            below[top - j] = below[top - j + 1] - factor * below[top - j];
            if (j > 1) power *= shrink;
        }
        return above[0] / below[0];
    }
};

/* Levin's u-transform of the series at 1, whose terms fall like k^(-s-1), s = sum b - sum a > 0 (D. Levin,
 * Int. J. Comput. Math. B3 (1973) 371), from a term where the fall is regular. */
bool levinsum(const parameters& a, const parameters& b, widevalue* value) {
    constexpr int orders = 60;
    double start = 5;
    for (const dd& p : a) start = std::max(start, 3 * std::fabs(p.hi));
    for (const dd& p : b) start = std::max(start, 3 * std::fabs(p.hi));
    if (start > 20000) return false;
    dd term = 1, sum = 1;
    levintables tables;
    double best = HUGE_VAL;
    dd last = 0, result = 0;
    for (int k = 0; k < start + orders; k++) {
        dd ratio = dd(1) / dd(double(k + 1));
        for (const dd& p : a) ratio *= p + double(k);
        for (const dd& p : b) ratio /= p + double(k);
        term *= ratio;
        sum += term;
        if (k < start) continue;
        if (term.hi == 0) break;
        const dd now = tables.with(sum, term, k + 1);
        const double change = std::fabs((now - last).hi);
        if (change < best) {
            best = change;
            result = now;
        }
        last = now;
    }
    *value = {result, 0};
    return best < 1e-14 * std::fabs(result.hi);
}

hypervalue atone(const parameters& a, const parameters& b) {
    dd s = 0;
    for (const dd& p : b) s += p;
    for (const dd& p : a) s -= p;
    if (s.hi <= 0) return pole();
    if (a.size() == 1) return s.hi > 0 ? good({0, 0}) : pole(); // (1 - x)^(-a), a < 0
    if (a.size() == 2) return gausssum(a[0], a[1], b[0]);
    widevalue v;
    return levinsum(a, b, &v) ? good(v) : none();
}

// p = q + 1.
hypervalue singular(const parameters& a, const parameters& b, double x) {
    if (x > 1 || std::isinf(x)) return none();
    if (x == 1) return atone(a, b);
    const dd y = ddsum(1, -x);
    if (a.size() == 1) return good({1, 0}, -a[0] * ddlog(y));
    if (a.size() == 2) return gauss(a[0], a[1], b[0], x, y);
    if (std::fabs(x) <= 0.75) return summed(a, b, x);
    widevalue v;
    if (hypcontinue(a, b, x, y, &v)) return good(v);
    return std::fabs(x) < 0.999 ? summed(a, b, x) : none();
}

// M(a, b, x), not a polynomial: Kummer's transformation for x < 0, and the expansion 13.7.2 far out there.
hypervalue kummer(dd a, dd b, double x) {
    if (x >= 0) return x > 20000 ? none() : summed({a}, {b}, x);
    const dd c = b - a;
    if (endingorder(c) >= 0) return summed({c}, {b}, -x, x);
    if (x < -50) {
        dd term = 1, sum = 1;
        double top = 1;
        for (int k = 0; k < 500; k++) {
            const dd next = term * (a + double(k)) * (dd(1) - c + double(k)) / (dd(k + 1.0) * -x);
            if (std::fabs(next.hi) > std::fabs(term.hi) && k > 2 && k > -a.hi && k > c.hi) break;
            term = next;
            sum += term;
            top = std::fmax(top, std::fabs(term.hi));
            if (top > 1e25) break;
            if (std::fabs(term.hi) > 1e-22 * std::fabs(sum.hi)) continue;
            if (top > 1e12 * std::fabs(sum.hi)) break;
            int sb, sc;
            const dd e = ddloggamma(b, &sb) - ddloggamma(c, &sc) - a * ddlog(-x);
            return good({sum * double(sb * sc), 0}, e);
        }
    }
    return -x > 20000 ? none() : summed({c}, {b}, -x, x);
}

hypervalue generalised(parameters a, parameters b, double x) {
    cancel(a, b);
    if (x == 0) return good({1, 0});
    if (infinite(a, b)) return pole();
    if (ending(a) >= 0) return summed(a, b, x);
    if (a.size() == b.size() + 1) return singular(a, b, x);
    if (a.size() > b.size() + 1 || std::isinf(x)) return none();
    if (a.size() == 1 && b.size() == 1) return kummer(a[0], b[0], x);
    if (a.empty() && b.empty()) return good({1, 0}, x);
    return summed(a, b, x);
}

} // namespace

double hyppfq(const double* a, int p, const double* b, int q, double x) {
    double check = x;
    for (int k = 0; k < p; k++) check += a[k];
    for (int k = 0; k < q; k++) check += b[k];
    if (std::isnan(check)) return NAN;
    if (std::isinf(check - x)) return outofrange("GHGEOF", 0);
    return settle("GHGEOF", generalised(parameters(a, a + p), parameters(b, b + q), x));
}

double ghgeof(double a1, double a2, double a3, double b1, double b2, double x) {
    const double a[] = {a1, a2, a3}, b[] = {b1, b2};
    return hyppfq(a, 3, b, 2, x);
}

double chm(double a, double b, double x) {
    if (std::isnan(a + b + x)) return NAN;
    if (std::isinf(a + b)) return outofrange("CHM", 0);
    return settle("CHM", generalised({a}, {b}, x));
}
