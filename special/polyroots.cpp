#include "special/polyroots.h"

#include "special/complexrange.h"
#include "special/polyaberth.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

constexpr double ENOUGH = 1e-18; // relative radius of a disc that needs no further digits

// The polynomial with z = 2^unit t and the largest coefficient about 1, powers falling.
struct scaledpolynomial {
    std::vector<spcomplex> c;
    int unit = 0;
};

scaledpolynomial scale(const std::vector<spcomplex>& c) {
    const int n = static_cast<int>(c.size()) - 1;
    const auto log2of = [](spcomplex a) { return std::ilogb(std::fmax(std::fabs(a.re), std::fabs(a.im))); };
    scaledpolynomial r;
    r.unit = static_cast<int>(std::lround(double(log2of(c[n]) - log2of(c[0])) / n));
    int top = INT32_MIN;
    for (int k = 0; k <= n; k++)
        if (c[k].re != 0 || c[k].im != 0) top = std::max(top, log2of(c[k]) + r.unit * (n - k));
    for (int k = 0; k <= n; k++) {
        const int shift = r.unit * (n - k) - top;
        r.c.push_back({std::ldexp(c[k].re, shift), std::ldexp(c[k].im, shift)});
    }
    return r;
}

// True if x fills a double to its last eight bits, as a number does that was rounded.
bool looksrounded(double x) {
    uint64_t bits;
    static_assert(sizeof bits == sizeof x);
    memcpy(&bits, &x, sizeof bits);
    return (bits & 0xff) != 0;
}

// The roots of a polynomial whose ends are not 0; empty if they do not settle.
std::vector<ddcomplex> solve(const std::vector<spcomplex>& c) {
    std::vector<ddcomplex> wide, z;
    for (const spcomplex& a : c) wide.push_back(todd(a));
    if (c.size() == 2) return {todd(-c[1]) / todd(c[0])};
    aberth(wide, z); // stalls at close roots, which come next
    const std::vector<double> radius = smithradii(wide, z, 3e-32);
    for (const std::vector<int>& group : discgroups(z, radius)) {
        if (group.size() == 1 && radius[group[0]] <= ENOUGH * magnitude(z[group[0]])) continue;
        if (!resolvegroup(c, group, z)) return {};
    }
    bool rounded = false;
    for (const spcomplex& a : c) rounded = rounded || looksrounded(a.re) || looksrounded(a.im);
    if (rounded) mergerounded(wide, z);
    return z;
}

// Parts that are 0 for all the digits there are.
spcomplex clean(ddcomplex a, int unit) {
    const double size = magnitude(a);
    spcomplex z = todouble(a);
    if (std::fabs(z.re) < 1e-25 * size) z.re = 0;
    if (std::fabs(z.im) < 1e-25 * size) z.im = 0;
    return {std::ldexp(z.re, unit), std::ldexp(z.im, unit)};
}

bool allroots(const char* name, const std::vector<spcomplex>& given, const char* notsettled,
              std::vector<spcomplex>* roots) {
    std::vector<spcomplex> c = given;
    bool good = c.size() >= 2 && (c[0].re != 0 || c[0].im != 0);
    for (const spcomplex& a : c) good = good && std::isfinite(a.re) && std::isfinite(a.im);
    if (!good) {
        spnote(SPERR, "zero degree or highest coefficient equal to zero not allowed");
        return false;
    }
    while (c.back().re == 0 && c.back().im == 0) {
        c.pop_back();
        roots->push_back({0, 0});
    }
    if (c.size() == 1) return true;
    const scaledpolynomial p = scale(c);
    const std::vector<ddcomplex> z = solve(p.c);
    if (z.empty()) {
        spnote(SPERR, "%s", notsettled);
        roots->clear();
        return false;
    }
    for (const ddcomplex& r : z) roots->push_back(capcomplex(name, clean(r, p.unit)));
    return true;
}

void order(std::vector<spcomplex>& z) {
    std::sort(z.begin(), z.end(),
              [](spcomplex a, spcomplex b) { return a.re != b.re ? a.re < b.re : a.im < b.im; });
}

// Roots of a real polynomial: each takes as its conjugate the one nearest to it, itself if it is real.
void pairup(std::vector<spcomplex>& z) {
    std::vector<char> done(z.size(), 0);
    for (size_t i = 0; i < z.size(); i++) {
        if (done[i]) continue;
        size_t best = i;
        double least = 2 * std::fabs(z[i].im);
        for (size_t j = i + 1; j < z.size(); j++) {
            const double d = magnitude(z[j] - conjugate(z[i]));
            if (done[j] || d >= least) continue;
            least = d;
            best = j;
        }
        done[i] = done[best] = true;
        if (best == i) {
            z[i].im = 0;
            continue;
        }
        z[i] = {(z[i].re + z[best].re) / 2, (z[i].im - z[best].im) / 2};
        z[best] = conjugate(z[i]);
    }
}

} // namespace

std::vector<spcomplex> zroot(const std::vector<spcomplex>& c) {
    std::vector<spcomplex> z;
    if (allroots("ZROOT", c, "ZROOT: did not converge", &z)) order(z);
    return z;
}

std::vector<spcomplex> proot(const std::vector<double>& c) {
    std::vector<spcomplex> wide, z;
    for (double a : c) wide.push_back({a, 0});
    if (!allroots("PROOT", wide, "failed to converge", &z)) return z;
    pairup(z);
    order(z);
    return z;
}
