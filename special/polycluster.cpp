/* Close roots: the polynomial is moved, in as many digits as it takes, to the zero of its (m-1)st derivative
 * amidst the m roots. There a multiple root shows by m vanishing coefficients; roots that are merely close
 * become well separated small roots of a polynomial whose coefficients are good relatively. */
#include "special/polyaberth.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

struct bigcomplex {
    bigfloat re, im;
};
bigcomplex big(ddcomplex z, int64_t power) {
    return {bigscale(bigfloat(z.re), power), bigscale(bigfloat(z.im), power)};
}
bigcomplex add(const bigcomplex& a, const bigcomplex& b, size_t w) {
    return {bigadd(a.re, b.re, w), bigadd(a.im, b.im, w)};
}
bigcomplex mul(const bigcomplex& a, const bigcomplex& b, size_t w) {
    return {bigadd(bigmul(a.re, b.re, w), bigneg(bigmul(a.im, b.im, w)), w),
            bigadd(bigmul(a.re, b.im, w), bigmul(a.im, b.re, w), w)};
}
int64_t log2of(const bigcomplex& a) { return std::max(a.re.magnitude(), a.im.magnitude()); }

// The value over 2^power, rounded to 106 bits; what is far below 1 is lost.
ddcomplex scaled(const bigcomplex& a, int64_t power) {
    const auto part = [power](const bigfloat& x) {
        int64_t own;
        const dd m = x.value(&own);
        if (x.zero() || own - power < -1000) return dd(0);
        return ddscale(m, static_cast<int>(std::min<int64_t>(own - power, 900)));
    };
    return {part(a.re), part(a.im)};
}
ddcomplex rounded(const bigcomplex& a) { return scaled(a, 0); }

// The first `count` coefficients, rising, of the polynomial c (falling powers) about `centre`.
std::vector<bigcomplex> moved(const std::vector<bigcomplex>& c, const bigcomplex& centre, size_t count,
                              size_t w) {
    std::vector<bigcomplex> b = c, q;
    const size_t n = c.size() - 1;
    for (size_t k = 0; k < count; k++) {
        for (size_t j = 1; j <= n - k; j++) b[j] = add(b[j], mul(centre, b[j - 1], w), w);
        q.push_back(b[n - k]);
    }
    return q;
}

struct closeroots {
    const std::vector<bigcomplex>& c; // the polynomial
    std::vector<ddcomplex>& z;        // the results
};

// Some roots at base + offset 2^scale: first those of the members (their places in the result), then all
// others.
struct rootgroup {
    bigcomplex base;
    int64_t scale;
    std::vector<ddcomplex> offset;
    std::vector<int> members;
};

// From `centre` to the zero of the derivative of order m - 1 next to it, by Newton's iteration with growing
// width.
bigcomplex towardscentre(const std::vector<bigcomplex>& c, bigcomplex centre, size_t m, size_t width) {
    size_t w = std::min<size_t>(6, width);
    for (int k = 0; k < 40; k++) {
        const std::vector<bigcomplex> q = moved(c, centre, m + 1, w);
        const int64_t up = log2of(q[m - 1]), down = log2of(q[m]), here = log2of(centre);
        if (up == LLONG_MIN || down == LLONG_MIN) return centre;
        const ddcomplex ratio = scaled(q[m - 1], up) / scaled(q[m], down); // the size is taken apart
        const ddcomplex step = ratio * (dd(-1.0) / dd(double(m)));
        const bigcomplex move = big(step, up - down);
        centre = add(centre, move, width);
        const int64_t accuracy = here - log2of(move);
        const auto bits = static_cast<int64_t>(32 * w);
        if (log2of(move) == LLONG_MIN || (w == width && accuracy > bits - 80)) return centre;
        if (accuracy > bits / 2 - 40) w = std::min(2 * w, width);
    }
    return centre;
}

bool settle(const closeroots& all, const rootgroup& group, int depth);

// The polynomial with the rising coefficients q in t = z/2^unit, such that the m smallest roots have |t|
// <= 1.
struct smallpolynomial {
    std::vector<ddcomplex> falling;
    std::vector<double> logradius; // of the roots t, base 2
    int64_t unit;
};
smallpolynomial magnified(const std::vector<bigcomplex>& q, size_t m) {
    std::vector<double> size;
    for (const bigcomplex& a : q) {
        const int64_t l = log2of(a);
        size.push_back(l == LLONG_MIN ? -HUGE_VAL : static_cast<double>(l));
    }
    smallpolynomial p{{}, binilogradii(size), 0};
    p.unit = static_cast<int64_t>(std::ceil(p.logradius[m - 1]));
    double top = -HUGE_VAL;
    for (size_t k = 0; k < q.size(); k++) top = std::fmax(top, size[k] + double(p.unit) * double(k));
    for (size_t k = q.size(); k-- > 0;)
        p.falling.push_back(scaled(q[k], static_cast<int64_t>(top) - p.unit * static_cast<int64_t>(k)));
    while (p.falling.size() > m + 1 && magnitude(p.falling[0]) < 1e-280) p.falling.erase(p.falling.begin());
    for (double& r : p.logradius) r -= double(p.unit);
    return p;
}

// The roots t (the first `m` are sought) split into groups that 106 bits do not part: each goes one level
// down.
bool descend(const closeroots& all, const bigcomplex& centre, const smallpolynomial& p,
             const std::vector<ddcomplex>& t, const std::vector<int>& members, int depth) {
    const size_t m = members.size();
    std::vector<double> radius = smithradii(p.falling, t, 3e-32);
    std::fill(radius.begin() + static_cast<std::ptrdiff_t>(m), radius.end(), 0.0);
    for (const std::vector<int>& g : discgroups(t, radius)) {
        rootgroup below{centre, p.unit, {}, {}};
        std::vector<char> taken(t.size(), 0);
        for (int k : g) {
            if (static_cast<size_t>(k) >= m) continue;
            below.members.push_back(members[k]);
            below.offset.push_back(t[k]);
            taken[k] = true;
        }
        if (below.members.empty()) continue;
        if (below.members.size() == 1) {
            all.z[below.members[0]] = rounded(add(centre, big(below.offset[0], p.unit), 400));
            continue;
        }
        for (size_t k = 0; k < t.size(); k++)
            if (!taken[k]) below.offset.push_back(t[k]);
        if (!settle(all, below, depth + 1)) return false;
    }
    return true;
}

// The roots near the centre: those of the members are the small ones of the moved polynomial q (rising).
bool smallroots(const closeroots& all, const bigcomplex& centre, const std::vector<bigcomplex>& q,
                const std::vector<ddcomplex>& others, int64_t otherscale, const std::vector<int>& members,
                int depth) {
    const size_t m = members.size();
    const smallpolynomial p = magnified(q, m);
    std::vector<ddcomplex> t;
    std::vector<int> active;
    for (size_t k = 0; k < m; k++) {
        t.push_back(todd(polar(std::exp2(p.logradius[k]), 0.4 + 2.399963229728653 * double(k))));
        active.push_back(static_cast<int>(k));
    }
    const auto shift = static_cast<int>(std::clamp<int64_t>(otherscale - p.unit, -900, 900));
    for (const ddcomplex& o : others) t.push_back({ddscale(o.re, shift), ddscale(o.im, shift)});
    return aberthdd(p.falling, t, active) && descend(all, centre, p, t, members, depth);
}

// Sets to 0 those of the first m coefficients of q, the polynomial c about `centre`, that are 0 but for
// rounding.
void clearnoise(const std::vector<bigcomplex>& c, const bigcomplex& centre, size_t m, size_t width,
                std::vector<bigcomplex>& q) {
    std::vector<bigcomplex> sizes; // the same polynomial with magnitudes bounds what is rounded
    for (const bigcomplex& a : c) sizes.push_back({bigfloat(magnitude(rounded(a))), bigfloat()});
    const std::vector<bigcomplex> bound =
        moved(sizes, {bigfloat(magnitude(rounded(centre))), bigfloat()}, m, 3);
    const auto kept = static_cast<int64_t>(32 * (width - 2)) - 20;
    for (size_t k = 0; k < m; k++)
        if (log2of(q[k]) < log2of(bound[k]) - kept) q[k] = {};
}

bool settle(const closeroots& all, const rootgroup& group, int depth) {
    if (depth > 8) return false;
    const size_t m = group.members.size(), width = 4 * m + 8;
    ddcomplex mean = {0, 0};
    for (size_t k = 0; k < m; k++) mean = mean + group.offset[k];
    mean = mean / dd(double(m));
    const bigcomplex start = add(group.base, big(mean, group.scale), width);
    const bigcomplex centre = towardscentre(all.c, start, m, width);
    std::vector<bigcomplex> q = moved(all.c, centre, all.c.size(), width);
    clearnoise(all.c, centre, m, width, q);
    size_t zero = 0; // so many roots are the centre itself
    while (zero < m && log2of(q[zero]) == LLONG_MIN) all.z[group.members[zero++]] = rounded(centre);
    if (zero == m) return true;
    q.erase(q.begin(), q.begin() + static_cast<std::ptrdiff_t>(zero));
    std::vector<ddcomplex> others;
    for (size_t k = m; k < group.offset.size(); k++) others.push_back(group.offset[k] - mean);
    const std::vector<int> rest(group.members.begin() + static_cast<std::ptrdiff_t>(zero),
                                group.members.end());
    return smallroots(all, centre, q, others, group.scale, rest, depth);
}

} // namespace

bool resolvegroup(const std::vector<spcomplex>& c, const std::vector<int>& group, std::vector<ddcomplex>& z) {
    std::vector<bigcomplex> coefficients;
    for (const spcomplex& a : c) coefficients.push_back({bigfloat(a.re), bigfloat(a.im)});
    rootgroup g{bigcomplex(), 0, {}, group};
    for (int k : group) g.offset.push_back(z[k]);
    for (size_t k = 0; k < z.size(); k++)
        if (std::find(group.begin(), group.end(), static_cast<int>(k)) == group.end())
            g.offset.push_back(z[k]);
    return settle({coefficients, z}, g, 0);
}
