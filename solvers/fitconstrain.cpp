// Linear constraints of a fit: a dual active-set method under the metric of the damped normal matrix.
#include "solvers/fitrun.h"

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
    symsweepwork<double> work;
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

// The multipliers of the pass; r.lagrange takes them where `keep` is set.
void constrainpass(fitrun& r, bool project, double guard, bool keep) {
    dualstate d{};
    d.count = r.cons.count;
    d.guard = guard;
    d.project = project;
    if (!fitviolated(r, d.violation)) {
        if (keep) r.lagrange.assign(size_t(d.count), 0);
        return;
    }
    builddual(r, d);
    d.multipliers.assign(size_t(d.count), 0);
    if (activeset(r, d)) {
        finalmultipliers(r, d);
    } else {
        for (int i = 0; i < d.count; i++) d.multipliers[i] = r.cons.type[i] > 0 ? -d.prev[i] : d.prev[i];
    }
    if (keep) r.lagrange = d.multipliers;
    movepoint(r, d);
    exactbounds(r, d.multipliers);
}

} // namespace

void fitconstrain(fitrun& r, bool project) {
    constrainpass(r, project, project ? 1e-9 : 1e-8, true);
    std::vector<double> left;
    if (!project && fitviolated(r, left)) constrainpass(r, true, 1e-9, false);
}
