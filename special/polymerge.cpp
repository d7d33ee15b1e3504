/* Multiple roots of polynomials with rounded coefficients. The exact roots of such a polynomial lie spread
 * about the multiple root that was meant. As in Z. Zeng's method the different roots of a supposed structure
 * of multiplicities are fitted to the coefficients by Gauss and Newton's method, a well-conditioned problem,
 * and the structure is accepted if it gives the coefficients back within their rounding. The structures tried
 * come from joining the exact roots by their distances. */
#include "special/polyaberth.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double EPS = 1.2e-16;
constexpr size_t MOSTROOTS = 80; // of a degree above, the work is not worth it

struct multipleroot {
    ddcomplex z;
    int times;
};

std::vector<ddcomplex> product(const std::vector<multipleroot>& roots) { // monic, powers falling
    std::vector<ddcomplex> c{{1, 0}};
    for (const multipleroot& r : roots)
        for (int k = 0; k < r.times; k++) {
            c.push_back({0, 0});
            for (size_t j = c.size() - 1; j > 0; j--) c[j] = c[j] - r.z * c[j - 1];
        }
    return c;
}

// c divided by z - r, the remainder dropped.
std::vector<ddcomplex> quotient(std::vector<ddcomplex> c, ddcomplex r) {
    for (size_t k = 1; k + 1 < c.size(); k++) c[k] = c[k] + r * c[k - 1];
    c.pop_back();
    return c;
}

using column = std::vector<spcomplex>;
spcomplex inner(const column& a, const column& b) {
    spcomplex s;
    for (size_t k = 0; k < a.size(); k++) s = s + conjugate(a[k]) * b[k];
    return s;
}

// The least-squares solution of columns x = right side by modified Gram-Schmidt; empty if they are dependent.
std::vector<spcomplex> leastsquares(std::vector<column> q, column right) {
    const size_t n = q.size();
    std::vector<column> r(n, column(n));
    std::vector<spcomplex> x(n);
    for (size_t j = 0; j < n; j++) {
        const double before = std::sqrt(inner(q[j], q[j]).re);
        for (size_t i = 0; i < j; i++) {
            r[i][j] = inner(q[i], q[j]);
            for (size_t k = 0; k < q[j].size(); k++) q[j][k] = q[j][k] - r[i][j] * q[i][k];
        }
        const double norm = std::sqrt(inner(q[j], q[j]).re);
        if (!(norm > 1e-13 * before)) return {};
        r[j][j] = {norm, 0};
        for (spcomplex& v : q[j]) v = v / norm;
        x[j] = inner(q[j], right);
        for (size_t k = 0; k < right.size(); k++) right[k] = right[k] - x[j] * q[j][k];
    }
    for (size_t j = n; j-- > 0;) {
        for (size_t i = j + 1; i < n; i++) x[j] = x[j] - r[j][i] * x[i];
        x[j] = x[j] / r[j][j];
    }
    return x;
}

// The monic coefficients given and what each may be wrong by.
struct roundedpolynomial {
    std::vector<ddcomplex> c;
    std::vector<double> allowed;
};

// The largest error of the coefficients in units of what is allowed; the weighted errors as a column.
double errorof(const roundedpolynomial& p, const std::vector<ddcomplex>& c, column* weighted) {
    double worst = 0;
    weighted->clear();
    for (size_t k = 1; k < c.size(); k++) {
        const spcomplex e = todouble(p.c[k] - c[k]) / p.allowed[k];
        weighted->push_back(e);
        worst = std::max(worst, magnitude(e));
    }
    return worst;
}

// Fits the roots in place; true if the coefficients come back within their rounding.
bool fit(const roundedpolynomial& p, std::vector<multipleroot>& roots) {
    column error;
    double last = HUGE_VAL;
    for (int pass = 0; pass < 8; pass++) {
        const std::vector<ddcomplex> c = product(roots);
        const double worst = errorof(p, c, &error);
        if (worst <= 1 && worst > last / 2) return true;
        if (!(worst < 10 * last)) return false;
        last = worst;
        std::vector<column> jacobian;
        for (const multipleroot& r : roots) { // d(product)/dz = -times product/(x - z)
            const std::vector<ddcomplex> d = quotient(c, r.z);
            column j;
            for (size_t k = 0; k < d.size(); k++) j.push_back(todouble(d[k]) * (-r.times / p.allowed[k + 1]));
            jacobian.push_back(j);
        }
        const std::vector<spcomplex> step = leastsquares(jacobian, error);
        if (step.empty()) return false;
        for (size_t k = 0; k < roots.size(); k++) roots[k].z = roots[k].z + todd(step[k]);
    }
    return last <= 1;
}

struct link {
    double distance;
    int a, b;
};

// The pairs of one group, nearest first, that join different parts.
std::vector<link> joints(const std::vector<ddcomplex>& z, const std::vector<std::vector<int>>& groups) {
    std::vector<link> all;
    for (const std::vector<int>& g : groups)
        for (size_t i = 0; i < g.size(); i++)
            for (size_t j = 0; j < i; j++) all.push_back({magnitude(z[g[i]] - z[g[j]]), g[i], g[j]});
    std::sort(all.begin(), all.end(), [](const link& x, const link& y) {
        return x.distance != y.distance ? x.distance < y.distance : x.a != y.a ? x.a < y.a : x.b < y.b;
    });
    std::vector<int> owner(z.size());
    for (size_t k = 0; k < z.size(); k++) owner[k] = static_cast<int>(k);
    std::vector<link> used;
    for (const link& l : all) {
        const int from = owner[l.a], to = owner[l.b];
        if (from == to) continue;
        for (int& o : owner)
            if (o == from) o = to;
        used.push_back(l);
    }
    return used;
}

// The owners after the first `count` joints.
std::vector<int> joined(size_t n, const std::vector<link>& links, size_t count) {
    std::vector<int> owner(n);
    for (size_t k = 0; k < n; k++) owner[k] = static_cast<int>(k);
    for (size_t l = 0; l < count; l++) {
        const int from = owner[links[l].a], to = owner[links[l].b];
        for (int& o : owner)
            if (o == from) o = to;
    }
    return owner;
}

std::vector<multipleroot> means(const std::vector<ddcomplex>& z, const std::vector<int>& owner) {
    std::vector<multipleroot> roots;
    for (size_t k = 0; k < z.size(); k++) {
        multipleroot r{{0, 0}, 0};
        for (size_t j = 0; j < z.size(); j++)
            if (owner[j] == static_cast<int>(k)) {
                r.z = r.z + z[j];
                r.times++;
            }
        if (r.times == 0) continue;
        r.z = r.z / dd(double(r.times));
        roots.push_back(r);
    }
    return roots;
}

} // namespace

void mergerounded(const std::vector<ddcomplex>& c, std::vector<ddcomplex>& z) {
    const size_t n = z.size();
    if (n > MOSTROOTS) return;
    const std::vector<link> links = joints(z, discgroups(z, smithradii(c, z, EPS)));
    if (links.empty()) return;
    roundedpolynomial p;
    std::vector<multipleroot> sizes;
    for (const ddcomplex& r : z) sizes.push_back({{-magnitude(r), 0}, 1});
    const std::vector<ddcomplex> bound = product(sizes);
    for (size_t k = 0; k <= n; k++) {
        p.c.push_back(c[k] / c[0]);
        p.allowed.push_back(EPS * double(n + 1) / 2 *
                            std::max(magnitude(p.c[k]), 0.01 * magnitude(bound[k])));
    }
    for (size_t count = links.size(); count > 0; count--) {
        std::vector<multipleroot> roots = means(z, joined(n, links, count));
        if (!fit(p, roots)) continue;
        size_t k = 0;
        for (const multipleroot& r : roots)
            for (int j = 0; j < r.times; j++) z[k++] = r.z;
        return;
    }
}
