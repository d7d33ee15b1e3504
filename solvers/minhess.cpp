// Values, gradients and the inverse Hessian of a minimisation.
#include "interp/base/machine.h"
#include "interp/base/report.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

namespace {

double sample(minrun& r, const std::vector<double>& x) {
    r.fevals++;
    return r.problem.value(r.problem.context, x.data());
}

// The mean of several evaluations; r.spread is their relative standard error.
double samplemean(minrun& r, const std::vector<double>& x) {
    double mean = 0, square = 0;
    for (long k = 1; k <= r.samples; k++) {
        const double f = sample(r, x);
        if (f >= MAXPOS || f <= MAXNEG) return f;
        const double off = f - mean;
        mean += off / double(k);
        square += off * (f - mean);
    }
    if (r.samples > 1)
        r.spread = std::sqrt(square / double(r.samples * (r.samples - 1))) / std::max(std::fabs(mean), 1e-12);
    return mean;
}

// A value outside the domain on one side leaves a one-sided difference.
void differences(minrun& r, const std::vector<double>& x, std::vector<double>& g) {
    std::vector<double> y = x;
    const double f = r.f;
    for (size_t i = 0; i < x.size(); i++) {
        double delta = std::max(std::fabs(x[i]), 1.0) * 0.0001;
        if (r.sw.stochsw) delta *= std::max(10.0, 1e4 * std::cbrt(r.spread));
        y[i] = x[i] + delta;
        const double up = r.sw.stochsw ? samplemean(r, y) : sample(r, y);
        y[i] = x[i] - delta;
        const double down = r.sw.stochsw ? samplemean(r, y) : sample(r, y);
        y[i] = x[i];
        if (up < MAXPOS && down < MAXPOS)
            g[i] = (up - down) / (2 * delta);
        else if (up < MAXPOS)
            g[i] = (up - f) / delta;
        else if (down < MAXPOS)
            g[i] = (f - down) / delta;
        else
            g[i] = 0;
        if (!(std::fabs(g[i]) <= MAXPOS)) g[i] = g[i] > 0 ? 1e300 : -1e300;
    }
}

// May the point be moved by `step` along the free direction? Constraints that are not active stop it.
bool allowed(const minrun& r, const std::vector<double>& x) {
    for (int i = 0; i < r.cons.count; i++)
        if (r.cons.type[size_t(i)] != 0 && rowvalue(r, i, x) < -1e-12) return false;
    return true;
}

// Differences of differences need a wider step than those of an exact gradient.
double freestep(const minrun& r, size_t i) {
    if (r.sw.stochsw) return 0.05 * std::max(std::fabs(r.x[i]), 1.0);
    const bool exact = r.problem.gradient != nullptr;
    if (r.cons.count == 0) return std::max(std::fabs(r.x[i]), 1.0) * (exact ? 1e-8 : 1e-4);
    double norm = 0;
    for (double v : r.x) norm += v * v;
    return std::max(std::sqrt(norm) / r.n, 1.0) * (exact ? 1e-6 : 1e-4);
}

/* Column i of the Hessian in the free space: the difference of reduced gradients along free direction i. */
void hessiancolumn(minrun& r, size_t i, std::vector<double>& column) {
    const size_t nf = size_t(r.nfree());
    std::vector<double> unit(nf, 0), full, y(r.x), gplus(size_t(r.n)), gminus(r.g), free;
    double step = freestep(r, i);
    unit[i] = 1;
    tofull(r, unit, full);
    const auto moved = [&](double by) {
        for (size_t j = 0; j < y.size(); j++) y[j] = r.x[j] + by * full[j];
        return allowed(r, y);
    };
    if (!moved(step)) step = -step;
    for (int k = 0; k < 40 && !moved(step); k++) step /= 4;
    mingradient(r, y, gplus);
    double width = step;
    if (std::abs(r.sw.hessmsw) >= 2 && moved(-step)) {
        mingradient(r, y, gminus);
        width = 2 * step;
    }
    for (size_t j = 0; j < gplus.size(); j++) gplus[j] = (gplus[j] - gminus[j]) / width;
    tofree(r, gplus, column);
}

/* Root-free Cholesky in place of the inverse: A = L D L', pivots held away from zero, then A := inverse of
 * that. Returns the smallest pivot met. */
double minldl(std::vector<double>& a, size_t n, double floor, bool positive) {
    double smallest = MAXPOS;
    std::vector<double> d(n), l(n * n, 0);
    for (size_t j = 0; j < n; j++) {
        double pivot = a[j * n + j];
        for (size_t k = 0; k < j; k++) pivot -= l[j * n + k] * l[j * n + k] * d[k];
        smallest = std::min(smallest, pivot);
        if (std::fabs(pivot) < floor) pivot = pivot < 0 ? -floor : floor;
        if (positive && pivot < 0) pivot = floor;
        d[j] = pivot;
        l[j * n + j] = 1;
        for (size_t i = j + 1; i < n; i++) {
            double sum = a[i * n + j];
            for (size_t k = 0; k < j; k++) sum -= l[i * n + k] * l[j * n + k] * d[k];
            l[i * n + j] = sum / pivot;
        }
    }
    std::vector<double> e(n);
    for (size_t c = 0; c < n; c++) {
        std::fill(e.begin(), e.end(), 0.0);
        e[c] = 1;
        for (size_t i = 0; i < n; i++)
            for (size_t k = 0; k < i; k++) e[i] -= l[i * n + k] * e[k];
        for (size_t i = 0; i < n; i++) e[i] /= d[i];
        for (size_t i = n; i-- > 0;)
            for (size_t k = i + 1; k < n; k++) e[i] -= l[k * n + i] * e[k];
        for (size_t i = 0; i < n; i++) a[i * n + c] = e[i];
    }
    return smallest;
}

// The shift of the diagonal that Gershgorin's circles ask for.
double gershgorinshift(const std::vector<double>& a, size_t n, double pivot) {
    double lo = MAXPOS, hi = MAXNEG;
    for (size_t i = 0; i < n; i++) {
        double off = 0;
        for (size_t j = 0; j < n; j++)
            if (j != i) off += std::fabs(a[i * n + j]);
        lo = std::min(lo, a[i * n + i] - off);
        hi = std::max(hi, a[i * n + i] + off);
    }
    const double shift = (hi - lo) * 1e-8 - lo;
    return std::max(std::min(shift, std::max(std::fabs(pivot), std::fabs(lo))), 1e-6);
}

std::vector<double> freehessian(minrun& r) {
    const size_t nf = size_t(r.nfree());
    std::vector<double> a(nf * nf), column;
    for (size_t i = 0; i < nf; i++) {
        hessiancolumn(r, i, column);
        for (size_t j = 0; j < nf; j++) a[j * nf + i] = column[j];
    }
    for (size_t i = 0; i < nf; i++)
        for (size_t j = 0; j < i; j++) a[i * nf + j] = a[j * nf + i] = (a[i * nf + j] + a[j * nf + i]) / 2;
    return a;
}

} // namespace

double minvalue(minrun& r, const std::vector<double>& x) {
    const double f = r.sw.stochsw ? samplemean(r, x) : sample(r, x);
    if (f < r.fbest) {
        r.fbest = f;
        r.xbest = x;
    }
    return f;
}

void mingradient(minrun& r, const std::vector<double>& x, std::vector<double>& g) {
    r.gevals++;
    if (r.problem.gradient)
        r.problem.gradient(r.problem.context, x.data(), g.data());
    else
        differences(r, x, g);
}

void minidentity(minrun& r) {
    const size_t nf = size_t(r.nfree());
    r.H.assign(nf * nf, 0);
    for (size_t i = 0; i < nf; i++) r.H[i * nf + i] = 1;
}

void minhessian(minrun& r) {
    const size_t nf = size_t(r.nfree());
    r.bfgscount = 0;
    r.avgstep = 0;
    if (r.sw.hessmsw == 0) {
        if (reports(r, 8)) tarnprint("computing Hessian = I.\n");
        return minidentity(r);
    }
    std::vector<double> a = freehessian(r);
    if (std::all_of(a.begin(), a.end(), [](double v) { return std::fabs(v) < 1e-12; })) return minidentity(r);
    r.H = a;
    const bool positive = r.sw.hessmsw > 0 && r.sw.preconditionsw != 2;
    const double pivot = minldl(r.H, nf, r.hessfloor, positive);
    if (r.sw.hessmsw > 0 || pivot >= 0) return;
    const double shift = gershgorinshift(a, nf, pivot);
    for (size_t i = 0; i < nf; i++) a[i * nf + i] += shift;
    tarnprint("\nforce hessian to be positive definite\n");
    r.H = a;
    minldl(r.H, nf, r.hessfloor, true);
}

std::vector<double> mintruehessian(const minproblem& problem, const std::vector<double>& x) {
    minrun r(problem, {}, {});
    r.x = x;
    r.g.assign(x.size(), 0);
    r.f = r.fbest = minvalue(r, x);
    minbasis(r);
    mingradient(r, x, r.g);
    return freehessian(r);
}
