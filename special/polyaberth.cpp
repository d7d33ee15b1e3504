#include "special/polyaberth.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double EPS53 = 1.2e-16, EPS106 = 3e-32;

double extent(spcomplex z) { return magnitude(z); }
double extent(ddcomplex z) { return magnitude(z); }

template <class C> C real(double x);
template <> spcomplex real<spcomplex>(double x) { return {x, 0}; }
template <> ddcomplex real<ddcomplex>(double x) { return {x, 0}; }

ddcomplex negative(ddcomplex a) { return {-a.re, -a.im}; }
spcomplex negative(spcomplex a) { return -a; }

/* p/p' at z, and |p| with the sum of the magnitudes of its terms, both over |z|^n for |z| > 1, where the
 * polynomial is summed in 1/z. */
template <class C> struct polyvalue {
    C newton;
    double size, terms;
    bool flat; // p' vanishes
};
template <class C> polyvalue<C> evaluate(const std::vector<C>& c, C z) {
    const int n = static_cast<int>(c.size()) - 1;
    const double r = extent(z);
    const bool inverse = r > 1;
    const C x = inverse ? real<C>(1) / z : z;
    const double ax = inverse ? 1 / r : r;
    C p = real<C>(0), slope = real<C>(0);
    double terms = 0;
    for (int k = 0; k <= n; k++) {
        const C& a = inverse ? c[n - k] : c[k];
        slope = slope * x + p;
        p = p * x + a;
        terms = terms * ax + extent(a);
    }
    polyvalue<C> v{real<C>(0), extent(p), terms, false};
    // of the reversed polynomial q: p/p' = z q/(n q - q'/z)
    const C down = inverse ? p * real<C>(n) + negative(slope * x) : slope;
    v.flat = extent(down) == 0;
    if (!v.flat) v.newton = inverse ? z * p / down : p / down;
    return v;
}

// One pass over the roots that are not done yet; returns how many are left.
template <class C>
int sweep(const std::vector<C>& c, std::vector<C>& z, const std::vector<int>& active, std::vector<char>& done,
          double eps) {
    int left = 0;
    const double n = static_cast<double>(c.size());
    for (int i : active) {
        if (done[i]) continue;
        const polyvalue<C> v = evaluate(c, z[i]);
        if (v.size <= eps * n * v.terms) {
            done[i] = true;
            continue;
        }
        left++;
        if (v.flat) { // off the stationary point
            z[i] = z[i] * real<C>(1 + 1e-3) + real<C>(1e-300);
            continue;
        }
        C repulsion = real<C>(0);
        for (size_t j = 0; j < z.size(); j++) {
            if (static_cast<int>(j) == i) continue;
            const C d = z[i] + negative(z[j]);
            if (extent(d) > 0) repulsion = repulsion + real<C>(1) / d;
        }
        const C down = real<C>(1) + negative(v.newton * repulsion);
        const C step = extent(down) > 0 ? v.newton / down : v.newton;
        z[i] = z[i] + negative(step);
        if (extent(step) <= eps * extent(z[i])) done[i] = true;
    }
    return left;
}

template <class C>
bool iterate(const std::vector<C>& c, std::vector<C>& z, const std::vector<int>& active, double eps,
             int passes) {
    std::vector<char> done(z.size(), 0);
    for (int k = 0; k < passes; k++)
        if (sweep(c, z, active, done, eps) == 0) return true;
    return false;
}

std::vector<int> everyindex(size_t n) {
    std::vector<int> all(n);
    for (size_t k = 0; k < n; k++) all[k] = static_cast<int>(k);
    return all;
}

} // namespace

// The upper convex hull of the points (k, size[k]): its slopes are the logarithms of the root magnitudes.
std::vector<double> binilogradii(const std::vector<double>& size) {
    std::vector<int> hull;
    const int n = static_cast<int>(size.size()) - 1;
    for (int k = 0; k <= n; k++) {
        if (!std::isfinite(size[k])) continue; // a zero coefficient
        while (hull.size() >= 2) {
            const int a = hull[hull.size() - 2], b = hull.back();
            if ((size[b] - size[a]) * (k - a) > (size[k] - size[a]) * (b - a)) break;
            hull.pop_back();
        }
        hull.push_back(k);
    }
    std::vector<double> radii;
    for (size_t h = 1; h < hull.size(); h++) {
        const int a = hull[h - 1], b = hull[h];
        for (int k = a; k < b; k++) radii.push_back((size[a] - size[b]) / (b - a));
    }
    return radii;
}

bool aberth(const std::vector<ddcomplex>& c, std::vector<ddcomplex>& z) {
    const size_t n = c.size() - 1;
    std::vector<double> size(n + 1);
    for (size_t k = 0; k <= n; k++) size[k] = std::log2(magnitude(c[n - k]));
    const std::vector<double> radii = binilogradii(size);
    std::vector<spcomplex> start(n), coefficients(n + 1);
    for (size_t k = 0; k <= n; k++) coefficients[k] = todouble(c[k]);
    for (size_t k = 0; k < n; k++)
        start[k] = polar(std::exp2(radii[k]), 0.7 + 2.399963229728653 * double(k) + 0.1 / double(n));
    const std::vector<int> all = everyindex(n);
    iterate(coefficients, start, all, EPS53, 100 + static_cast<int>(n));
    z.resize(n);
    for (size_t k = 0; k < n; k++) z[k] = todd(start[k]);
    return aberthdd(c, z, all);
}

bool aberthdd(const std::vector<ddcomplex>& c, std::vector<ddcomplex>& z, const std::vector<int>& active) {
    return iterate(c, z, active, EPS106, 200 + 4 * static_cast<int>(c.size()));
}

std::vector<double> smithradii(const std::vector<ddcomplex>& c, const std::vector<ddcomplex>& z,
                               double noise) {
    const size_t n = z.size();
    std::vector<double> radius(n);
    for (size_t i = 0; i < n; i++) {
        const polyvalue<ddcomplex> v = evaluate(c, z[i]);
        const double r = magnitude(z[i]);
        double l = std::log(v.size + noise * double(n) * v.terms) + (r > 1 ? double(n) * std::log(r) : 0) +
                   std::log(double(n)) - std::log(magnitude(c[0]));
        for (size_t j = 0; j < n; j++) {
            if (j == i) continue;
            const ddcomplex d = z[i] - z[j];
            l -= std::log(std::max(magnitude(d), 1e-33 * r + 1e-300));
        }
        radius[i] = std::exp(l);
    }
    return radius;
}

std::vector<std::vector<int>> discgroups(const std::vector<ddcomplex>& z, const std::vector<double>& radius) {
    const size_t n = z.size();
    std::vector<int> owner(n, -1);
    std::vector<std::vector<int>> groups;
    for (size_t first = 0; first < n; first++) {
        if (owner[first] >= 0) continue;
        const int id = static_cast<int>(groups.size());
        std::vector<int> group{static_cast<int>(first)};
        owner[first] = id;
        for (size_t k = 0; k < group.size(); k++)
            for (size_t j = 0; j < n; j++) {
                const ddcomplex d = z[group[k]] - z[j];
                if (owner[j] >= 0 || magnitude(d) > radius[group[k]] + radius[j]) continue;
                owner[j] = id;
                group.push_back(static_cast<int>(j));
            }
        groups.push_back(group);
    }
    return groups;
}
