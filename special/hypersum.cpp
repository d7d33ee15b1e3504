#include "special/hypersum.h"

#include "special/bigfloat.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int64_t MOSTTERMS = 400000;
constexpr int64_t MOSTBITS = 40000;
constexpr int64_t MOSTWORK = 1000000; // terms times digits: a fifth of a second
constexpr double KEPTBITS = 14;       // cancellation that the 32 digits bear with 27 left

int64_t lastterm(const std::vector<dd>& a) {
    int64_t last = -1;
    for (const dd& p : a)
        if (const int64_t n = endingorder(p); n >= 0) last = last < 0 ? n : std::min(last, n);
    return last;
}

// What a pass over the series found.
struct passresult {
    bool done = false;     // the terms ended or fell below the precision
    bool overflow = false; // beyond the range of 32 digits
    double highest = 0;    // log2 of the largest term or partial sum
    widevalue sum;
};

// From this index on the ratio of the terms shrinks steadily.
double settled(const std::vector<dd>& a, const std::vector<dd>& b) {
    double r = 1;
    for (const dd& p : a) r = std::max(r, 2 - p.hi);
    for (const dd& p : b) r = std::max(r, 2 - p.hi);
    return r;
}

passresult ddpass(const std::vector<dd>& a, const std::vector<dd>& b, dd x, int64_t last, double calm) {
    passresult r;
    dd term = 1, sum = 1;
    double top = 1, before = 1;
    for (int64_t k = 0; k < MOSTTERMS; k++) {
        if (k == last) {
            r.done = true;
            break;
        }
        dd down = dd(double(k + 1));
        for (const dd& p : a) term *= p + double(k);
        for (const dd& p : b) down *= p + double(k);
        term = term * x / down;
        sum += term;
        const double size = std::fabs(term.hi);
        top = std::max(top, std::max(size, std::fabs(sum.hi)));
        if (!(size < 1e280) || std::fabs(down.hi) > 1e280) {
            r.overflow = true;
            return r;
        }
        if (size == 0 || (k > calm && size < before && size < 1e-33 * std::fabs(sum.hi))) {
            r.done = true;
            break;
        }
        if (size < 1e-250) { // it may grow again, as after a lower parameter next to a pole
            r.overflow = true;
            return r;
        }
        before = size;
    }
    r.highest = std::log2(top);
    r.sum = {sum, 0};
    return r;
}

passresult bigpass(const std::vector<dd>& a, const std::vector<dd>& b, dd x, int64_t last, double calm,
                   size_t width) {
    passresult r;
    bigfloat term(1.0), sum(1.0);
    const bigfloat point(x);
    int64_t top = 0, before = 0;
    for (int64_t k = 0; k < MOSTTERMS; k++) {
        if (k == last) {
            r.done = true;
            break;
        }
        bigfloat down(double(k + 1));
        for (const dd& p : a) term = bigmul(term, bigadd(bigfloat(p), bigfloat(double(k)), width), width);
        for (const dd& p : b) down = bigmul(down, bigadd(bigfloat(p), bigfloat(double(k)), width), width);
        term = bigdiv(bigmul(term, point, width), down, width);
        sum = bigadd(sum, term, width);
        top = std::max({top, term.magnitude(), sum.magnitude()});
        if (term.zero() ||
            (k > calm && term.magnitude() <= before && term.magnitude() < sum.magnitude() - 110)) {
            r.done = true;
            break;
        }
        before = term.magnitude();
        if (top > 2 * MOSTBITS || k * int64_t(width) > MOSTWORK) return r;
    }
    r.highest = static_cast<double>(top);
    r.sum.m = sum.value(&r.sum.power);
    return r;
}

double log2of(const widevalue& v) {
    return v.m.hi == 0 ? -1e9 : std::log2(std::fabs(v.m.hi)) + static_cast<double>(v.power);
}

} // namespace

int64_t endingorder(dd a) {
    if (a.lo != 0 || a.hi > 0 || a.hi != std::floor(a.hi) || a.hi < -1e15) return -1;
    return static_cast<int64_t>(-a.hi);
}

double widedouble(const widevalue& v, dd factor, dd e) {
    const dd m = v.m * factor;
    if (m.hi == 0) return 0;
    dd exponent = e + DDLN2 * static_cast<double>(v.power);
    int own;
    std::frexp(m.hi, &own); // the mantissa apart, so that neither part overflows alone
    const dd unit = ddscale(m, -own);
    exponent += DDLN2 * own;
    if (exponent.hi > 712) return std::copysign(HUGE_VAL, m.hi);
    if (exponent.hi < -760) return 0;
    const dd half = ddexp(ddscale(exponent, -1));
    return (unit * half).hi * half.hi + (unit * half).hi * half.lo;
}

bool hypersum(const std::vector<dd>& a, const std::vector<dd>& b, dd x, widevalue* sum) {
    const int64_t last = lastterm(a);
    if (last == 0 || x.hi == 0) {
        *sum = {1, 0};
        return true;
    }
    if (last > MOSTTERMS) return false;
    const double calm = settled(a, b);
    if (calm > MOSTTERMS && last < 0) return false;
    passresult r = ddpass(a, b, x, last, calm);
    if (!r.done && !r.overflow) return false;
    *sum = r.sum;
    if (r.done && r.highest - log2of(r.sum) < KEPTBITS) return true;
    int64_t bits = r.overflow ? 2400 : static_cast<int64_t>(r.highest) + 160;
    while (bits <= MOSTBITS) {
        r = bigpass(a, b, x, last, calm, static_cast<size_t>(bits / 32 + 2));
        if (!r.done) return false;
        *sum = r.sum;
        if (r.sum.m.hi == 0) return true; // an exact zero for all that can be told
        const double lost = r.highest - log2of(r.sum);
        if (lost + 100 < static_cast<double>(bits)) return true;
        bits = std::max(2 * bits, static_cast<int64_t>(lost) + 160);
    }
    return false;
}

namespace {

// Coefficients of the operators z^k d^k/dz^k in prod (theta + p_i): the recurrence of Stirling's numbers.
std::vector<dd> thetapolynomial(const std::vector<dd>& p) {
    std::vector<dd> s{dd(1)};
    for (const dd& shift : p) { // (theta + p) z^k D^k = z^(k+1) D^(k+1) + (k + p) z^k D^k
        std::vector<dd> next(s.size() + 1, dd(0));
        for (size_t k = 0; k < s.size(); k++) {
            next[k + 1] += s[k];
            next[k] += s[k] * (shift + double(k));
        }
        s = next;
    }
    return s;
}

/* The equation sum over k of (alpha_k - beta_k z) z^(k-1) D^k F = beta_0 F, k = 1..order, at a point: the
 * Taylor coefficients of F there from the first `order` of them. */
struct equation {
    size_t order;
    std::vector<dd> alpha, beta;

    equation(const std::vector<dd>& a, const std::vector<dd>& b) : order(a.size()) {
        std::vector<dd> lower{dd(0)};
        for (const dd& p : b) lower.push_back(p - 1.0);
        alpha = thetapolynomial(lower);
        beta = thetapolynomial(a);
    }

    // c[k][j]: coefficient of h^j in (alpha_k - beta_k z) z^(k-1) at z = x + h; y = 1 - x. For the highest k,
    // alpha = beta = 1, the factor 1 - z is y - h without cancellation.
    std::vector<std::vector<dd>> about(dd x, dd y) const {
        std::vector<std::vector<dd>> c(order + 1);
        for (size_t k = 1; k <= order; k++) {
            const dd at = k == order ? y : alpha[k] - beta[k] * x;
            const dd slope = -beta[k];
            c[k] = {at, slope};
            for (size_t i = 1; i < k; i++) { // times x + h
                std::vector<dd> next(c[k].size() + 1, dd(0));
                for (size_t j = 0; j < c[k].size(); j++) {
                    next[j] += c[k][j] * x;
                    next[j + 1] += c[k][j];
                }
                c[k] = next;
            }
        }
        return c;
    }
};

// The equation about x in steps of h: c[k][j] for the unknowns F^(n) h^n/n!, which neither over- nor
// underflow.
std::vector<std::vector<dd>> inunitsof(dd h, const equation& e, dd x, dd y) {
    auto c = e.about(x, y);
    for (size_t k = 1; k <= e.order; k++) {
        dd power = 1;
        for (size_t i = k; i < e.order; i++) power *= h;
        for (dd& v : c[k]) {
            v *= power;
            power *= h;
        }
    }
    return c;
}

// The coefficient t[n] that the equation gives from those before; beta0 is in the units of c.
dd nextcoefficient(const std::vector<std::vector<dd>>& c, dd beta0, const std::vector<dd>& t) {
    const size_t order = c.size() - 1, n = t.size(), m = n - order;
    dd rest = beta0 * t[m], lead = c[order][0];
    for (size_t k = 1; k <= order; k++)
        for (size_t j = k == order ? 1 : 0; j < c[k].size() && j <= m; j++) {
            dd v = c[k][j] * t[m - j + k];
            for (size_t i = 0; i < k; i++) v *= double(m - j + k - i);
            rest -= v;
        }
    for (size_t i = 0; i < order; i++) lead *= double(n - i);
    return rest / lead;
}

// F^(k)/k!, k below the order, at x moved to x + h in one step. False if the terms grow too much.
bool taylorstep(const equation& e, dd x, dd y, dd h, std::vector<dd>& f) {
    const auto c = inunitsof(h, e, x, y);
    dd beta0 = e.beta[0], power = 1;
    std::vector<dd> t, moved(e.order, dd(0));
    for (const dd& v : f) {
        t.push_back(v * power);
        power *= h;
        beta0 *= h;
    }
    double top = 0;
    for (size_t n = 0; n < 2000; n++) {
        if (n >= t.size()) t.push_back(nextcoefficient(c, beta0, t));
        double size = 0, now = 0;
        dd v = t[n]; // times C(n, k)
        for (size_t k = 0; k < e.order && k <= n; k++) {
            moved[k] += v;
            size = std::max(size, std::fabs(v.hi));
            now = std::max(now, std::fabs(moved[k].hi));
            v = v * double(n - k) / dd(double(k + 1));
        }
        top = std::max(top, size);
        if (n > 20 && top > 1e9 * now) return false;
        if (n <= 10 || size > 1e-33 * now) continue;
        power = 1;
        for (size_t k = 0; k < e.order; k++) {
            f[k] = moved[k] / power;
            power *= h;
        }
        return true;
    }
    return false;
}

// F^(k)/k! at a point where the series serves, all with one power of two taken out.
bool derivatives(std::vector<dd> a, std::vector<dd> b, dd at, std::vector<dd>& f, int64_t* scale) {
    widevalue v;
    dd factor = 1;
    for (size_t k = 0; k < f.size(); k++) {
        if (!hypersum(a, b, at, &v)) return false;
        if (k == 0) *scale = v.power;
        if (std::llabs(v.power - *scale) > 900) return false;
        f[k] = ddscale(v.m, static_cast<int>(v.power - *scale)) * factor;
        for (dd& p : a) factor *= p, p += 1.0;
        for (dd& p : b) factor /= p, p += 1.0;
        factor /= dd(double(k + 1));
    }
    return true;
}

// The size of f is brought near 1; the power of two that was taken out.
int rescale(std::vector<dd>& f) {
    int own = 0;
    std::frexp(std::max(std::fabs(f[0].hi), 1e-300), &own);
    for (dd& t : f) t = ddscale(t, -own);
    return own;
}

} // namespace

bool hypcontinue(const std::vector<dd>& a, const std::vector<dd>& b, dd x, dd oneminusx, widevalue* value) {
    // Errors grow like the other solutions at 0, x^(1-b): the way is made short enough for some 14 digits.
    double power = 1;
    for (const dd& p : a) power = std::max(power, std::fabs(p.hi));
    for (const dd& p : b) power = std::max(power, std::fabs(p.hi) + 1);
    const double nearest = 1 - 30 / power;
    dd at = x.hi > 0 ? dd(std::max(0.75, nearest)) : dd(-std::max(0.5, std::min(nearest, 0.95)));
    if (std::fabs(x.hi) < std::fabs(at.hi)) return hypersum(a, b, x, value);
    if (power * std::log(x.hi / at.hi) > 32 || power > 1e5) return false;
    dd y = dd(1) - at;
    const equation e(a, b);
    std::vector<dd> f(e.order);
    int64_t scale = 0;
    if (!derivatives(a, b, at, f, &scale)) return false;
    double share = 0.5;
    for (int steps = 0; steps < 20000; steps++) {
        const double radius = std::min(std::fabs(at.hi), y.hi);
        const dd left = x.hi > 0 ? y - oneminusx : x - at;
        dd h = std::copysign(share * radius, left.hi);
        const bool arrives = std::fabs(left.hi) <= std::fabs(h.hi);
        if (arrives) h = left;
        if (!taylorstep(e, at, y, h, f)) {
            share /= 2;
            if (share < 1e-5) return false;
            continue;
        }
        if (arrives) {
            *value = {f[0], scale};
            return true;
        }
        at += h;
        y = y - h;
        scale += rescale(f);
    }
    return false;
}
