// Linear constraints of a fit: a dual active-set method under the metric of the damped normal matrix.
#include "interp/base/fpfault.h"
#include "solvers/fitrun.h"
#include "solvers/leastdistance.h"

#include <algorithm>
#include <cmath>

double constraintcoef(const fitrun& r, int i, int j) {
    return r.cons.coef[size_t(i) * r.cons.width + r.element[j]];
}

bool fitviolated(const fitrun& r, std::vector<double>& violation) {
    bool any = false;
    violation.assign(size_t(r.cons.count), 0);
    for (int i = 0; i < r.cons.count; i++) {
        double sum = 0, size = std::fabs(r.cons.rhs[i]);
        for (int j = 0; j < r.n; j++) {
            const double term = constraintcoef(r, i, j) * r.p[j];
            sum += term;
            size = std::max(size, std::fabs(term));
        }
        double v = sum - r.cons.rhs[i];
        if (r.cons.type[i] > 0) v = -v;
        violation[i] = v;
        any |= r.cons.type[i] == 0 ? std::fabs(v) > 1e-14 * size : v > 0;
    }
    return any;
}

namespace {

struct dualstate {
    int count;
    double guard; // relative addition to the diagonal
    bool project;
    std::vector<double> violation; // > 0: violated
    std::vector<double> g, diag;   // the dual matrix (see symsweep.h) and its diagonal
    std::vector<double> u, prev, multipliers;
    std::vector<char> active;
    symsweepwork work;
};

// c_i' v
double rowtimes(const fitrun& r, int i, const std::vector<double>& v) {
    double sum = 0;
    for (int j = 0; j < r.n; j++) sum += constraintcoef(r, i, j) * v[j];
    return sum;
}

// g(i, k) = c_i' M c_k, M being the identity or the inverse of the damped normal matrix.
void builddual(const fitrun& r, dualstate& d) {
    const int count = d.count;
    d.g.assign(size_t(count) * count, 0);
    d.diag.assign(size_t(count), 0);
    d.active.assign(size_t(count), 0);
    std::vector<double> row(static_cast<size_t>(r.n)), transformed(static_cast<size_t>(r.n));
    for (int k = 0; k < count; k++) {
        for (int j = 0; j < r.n; j++) row[j] = constraintcoef(r, k, j);
        if (d.project)
            transformed = row;
        else
            symmul(r.n, r.normal.data(), row.data(), r.pivots, transformed.data());
        for (int i = 0; i <= k; i++) {
            double entry = rowtimes(r, i, transformed);
            if ((r.cons.type[i] > 0) != (r.cons.type[k] > 0)) entry = -entry;
            d.g[size_t(i) * count + k] = entry;
        }
    }
    for (int i = 0; i < count; i++) {
        const double own = d.g[size_t(i) * count + i];
        d.g[size_t(i) * count + i] = 0;
        if (!(own > 0)) { // a row without effect is cut out
            for (int k = 0; k < count; k++) d.g[size_t(std::min(i, k)) * count + std::max(i, k)] = 0;
            d.violation[i] = 0;
            continue;
        }
        d.diag[i] = (1 + d.guard) * own;
        if (r.cons.type[i] == 0) d.active[i] = 1;
    }
}

double dualentry(const dualstate& d, int i, int k) {
    return d.g[size_t(std::min(i, k)) * d.count + std::max(i, k)];
}

// The largest part of the way to u that keeps the multipliers of inequalities from turning; the index that
// stops it.
double leaving(const fitrun& r, const dualstate& d, int& index) {
    double step = 2;
    for (int i = 0; i < d.count; i++) {
        if (!d.active[i] || r.cons.type[i] == 0 || d.u[i] >= 0) continue;
        const double t = d.prev[i] / (d.prev[i] - d.u[i]);
        if (t < step) {
            step = t;
            index = i;
        }
    }
    return step;
}

int entering(const dualstate& d) {
    double best = 0;
    int index = -1;
    for (int i = 0; i < d.count; i++) {
        if (d.active[i] || d.diag[i] == 0) continue;
        double v = d.violation[i];
        for (int k = 0; k < d.count; k++)
            if (d.active[k]) v -= d.u[k] * dualentry(d, i, k);
        if (v > best) {
            best = v;
            index = i;
        }
    }
    return index;
}

/* The active set grows and shrinks until no row asks to enter. True when u holds the multipliers, false when
 * the row just added would leave at once: then prev holds them. */
bool activeset(const fitrun& r, dualstate& d) {
    const int count = d.count;
    d.u.assign(size_t(count), 0);
    d.prev.assign(size_t(count), 0);
    int last = -1;
    symsweepall(count, d.g.data(), d.diag.data(), 1e-10, d.active, d.work);
    for (int pass = 0; pass < 50 * (count + 2); pass++) { // the bound ends cycles that rounding can make
        symmul(count, d.g.data(), d.violation.data(), d.active, d.u.data());
        int index = -1;
        const double step = leaving(r, d, index);
        if (step <= 1) {
            if (index == last) return false;
            for (int i = 0; i < count; i++)
                d.prev[i] = d.active[i] ? std::max(0.0, step * d.u[i] + (1 - step) * d.prev[i]) : 0;
            symsweepremove(count, d.g.data(), index, d.active);
            continue;
        }
        index = entering(d);
        if (index < 0) return true;
        d.prev = d.u;
        last = index;
        symsweepadd(count, d.g.data(), d.diag.data(), 1e-10, index, d.active, d.work);
    }
    return true;
}

// One refinement against the guard on the diagonal; signs as the rows are written.
void finalmultipliers(const fitrun& r, dualstate& d) {
    std::vector<double> b(size_t(d.count), 0);
    for (int i = 0; i < d.count; i++)
        if (d.active[i]) b[i] = d.guard * d.diag[i] * d.u[i] + d.violation[i];
    symmul(d.count, d.g.data(), b.data(), d.active, d.multipliers.data());
    for (int i = 0; i < d.count; i++)
        if (r.cons.type[i] > 0) d.multipliers[i] = -d.multipliers[i];
}

void movepoint(fitrun& r, const dualstate& d) {
    std::vector<double> b(static_cast<size_t>(r.n)), step(static_cast<size_t>(r.n));
    for (int j = 0; j < r.n; j++) {
        double t = 0;
        for (int i = 0; i < d.count; i++) t += constraintcoef(r, i, j) * d.multipliers[i];
        if (d.project) r.p[j] -= t;
        b[j] = r.dgrad.empty() ? 0 : r.dgrad[j] - t;
    }
    if (d.project) return;
    symmul(r.n, r.normal.data(), b.data(), r.pivots, step.data());
    for (int j = 0; j < r.n; j++) r.p[j] = r.p0[j] + step[j];
}

// A bound on one parameter alone is met exactly where it holds the point: what rounding leaves between them
// would give parameters that have no effect at the bound a tiny one, and the next step a way to anywhere.
void exactbounds(fitrun& r, const std::vector<double>& multipliers) {
    for (int i = 0; i < r.cons.count; i++) {
        int only = -1, terms = 0;
        for (int j = 0; j < r.n; j++)
            if (constraintcoef(r, i, j) != 0) only = j, terms++;
        if (terms != 1) continue;
        const double c = constraintcoef(r, i, only), value = c * r.p[only], rhs = r.cons.rhs[i];
        const int type = r.cons.type[i];
        const bool broken = type == 0 ? value != rhs : type < 0 ? value > rhs : value < rhs;
        if (broken || multipliers[size_t(i)] != 0) r.p[only] = rhs / c;
    }
}

// The multipliers of the pass; r.lagrange takes them where `keep` is set. False where the active set has not
// settled.
bool constrainpass(fitrun& r, bool project, double guard, bool keep) {
    dualstate d{};
    d.count = r.cons.count;
    d.guard = guard;
    d.project = project;
    if (!fitviolated(r, d.violation)) {
        if (keep) r.lagrange.assign(size_t(d.count), 0);
        return true;
    }
    builddual(r, d);
    d.multipliers.assign(size_t(d.count), 0);
    const bool settled = activeset(r, d);
    if (settled) {
        finalmultipliers(r, d);
    } else {
        for (int i = 0; i < d.count; i++) d.multipliers[i] = r.cons.type[i] > 0 ? -d.prev[i] : d.prev[i];
    }
    if (keep) r.lagrange = d.multipliers;
    movepoint(r, d);
    exactbounds(r, d.multipliers);
    return settled;
}

constexpr double GUARDED = 1e-9; // what the guard on the diagonal leaves of a violation

// The row's value less its right side at r.p, and the largest of its terms.
struct rowplace {
    double value, size;
};
rowplace placeof(const fitrun& r, int i) {
    rowplace at{-r.cons.rhs[i], std::fabs(r.cons.rhs[i])};
    for (int j = 0; j < r.n; j++) {
        const double term = constraintcoef(r, i, j) * r.p[j];
        at.value += term;
        at.size = std::max(at.size, std::fabs(term));
    }
    return at;
}

// Whether r.p breaks a row by more than the guard explains.
bool broken(const fitrun& r) {
    for (int i = 0; i < r.cons.count; i++) {
        const auto [value, size] = placeof(r, i);
        const double over = r.cons.type[i] == 0 ? std::fabs(value) : -value * r.cons.type[i];
        if (!(over <= GUARDED * size)) return true; // so is what is no number
    }
    return false;
}

/* The lower triangle L of the metric M = L L': the identity, or the inverse of the damped normal matrix. A
 * parameter that is out of it has a column of zeros. */
std::vector<double> metricfactor(const fitrun& r, bool project) {
    const size_t n = size_t(r.n);
    std::vector<double> l(n * n, 0);
    for (size_t j = 0; j < n; j++) {
        if (project) l[j * n + j] = 1;
        if (project || !r.pivots[j]) continue;
        double pivot = r.normal[j * n + j];
        for (size_t k = 0; k < j; k++) pivot -= l[j * n + k] * l[j * n + k];
        if (!(pivot > 0)) continue;
        l[j * n + j] = std::sqrt(pivot);
        for (size_t i = j + 1; i < n; i++) {
            if (!r.pivots[i]) continue;
            double x = r.normal[i * n + j];
            for (size_t k = 0; k < j; k++) x -= l[i * n + k] * l[j * n + k];
            l[i * n + j] = x / l[j * n + j];
        }
    }
    return l;
}

/* r.p := the point nearest to it in the metric that the first `count` rows leave. An equality is two rows
 * that oppose each other. False: they leave none. */
bool nearest(fitrun& r, bool project, int count) {
    const size_t n = size_t(r.n);
    const std::vector<double> l = metricfactor(r, project);
    std::vector<double> g, h, lambda, z(n, 0);
    std::vector<int> row, sign;
    for (int i = 0; i < count; i++)
        for (int s : {-1, 1}) {
            if (r.cons.type[i] == -s) continue;
            double gap = s * r.cons.rhs[i];
            for (size_t j = 0; j < n; j++) {
                gap -= s * constraintcoef(r, i, int(j)) * r.p[j];
                double x = 0;
                for (size_t k = j; k < n; k++) x += constraintcoef(r, i, int(k)) * l[k * n + j];
                g.push_back(s * x);
            }
            h.push_back(gap);
            row.push_back(i);
            sign.push_back(s);
        }
    if (!leastdistance(n, g, h, lambda)) return false;
    r.lagrange.assign(size_t(r.cons.count), 0);
    for (size_t q = 0; q < h.size(); q++) {
        r.lagrange[size_t(row[q])] -= sign[q] * lambda[q];
        for (size_t j = 0; j < n; j++) z[j] += lambda[q] * g[q * n + j];
    }
    for (size_t i = 0; i < n; i++)
        for (size_t k = 0; k <= i; k++) r.p[i] += l[i * n + k] * z[k];
    exactbounds(r, r.lagrange);
    return true;
}

} // namespace

bool fitstandson(const fitrun& r, int i) {
    const auto [value, size] = placeof(r, i);
    return std::fabs(value) <= GUARDED * size;
}

void fitconstrain(fitrun& r, bool project) {
    const std::vector<double> trial = r.p;
    bool settled = constrainpass(r, project, project ? 1e-9 : 1e-8, true);
    std::vector<double> left;
    if (!project && fitviolated(r, left)) settled &= constrainpass(r, true, 1e-9, false);
    if (settled && !broken(r)) return;
    // Rows that nearly depend on each other are more than the active set can bear.
    const std::vector<double> told = r.p, lagrange = r.lagrange;
    r.p = trial;
    const bool met = nearest(r, project, r.cons.count) && !broken(r);
    if (met) return;
    r.p = std::all_of(told.begin(), told.end(), fpfinite) ? told : trial;
    if (broken(r)) nearest(r, true, r.cons.count);
    r.lagrange = lagrange;
}

int fitcontradiction(fitrun& r) {
    const std::vector<double> p = r.p;
    int count = r.cons.count;
    if (nearest(r, true, count))
        count = 0;
    else
        while (count > 1 && !nearest(r, true, count - 1)) count--;
    r.p = p;
    return count;
}
