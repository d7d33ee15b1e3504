// Values, gradients and the inverse Hessian of a minimisation.
#include "interp/base/machine.h"
#include "interp/base/report.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int MOSTSHIFTS = 10;      // of the diagonal, to make a Hessian definite
constexpr double MINSIGNAL = 1e300; // sums and multiples of MAXPOS and MAXNEG are signals like these

double sample(minrun& r, const std::vector<double>& x) {
    r.fevals++;
    const double f = r.problem.value(r.problem.context, x.data());
    if (std::fabs(f) < MINSIGNAL) return f;
    return f < 0 ? MAXNEG : MAXPOS;
}

struct samplestats {
    double mean, variance; // of the mean
};

samplestats samplemean(minrun& r, const std::vector<double>& x, long samples) {
    double mean = 0, square = 0;
    for (long k = 1; k <= samples; k++) {
        const double f = sample(r, x);
        if (f >= MAXPOS || f <= MAXNEG) return {f, 0};
        const double off = f - mean;
        mean += off / double(k);
        square += off * (f - mean);
    }
    return {mean, square / (double(samples) * double(std::max(samples - 1, 1L)))};
}

bool isvalue(double f) { return std::fabs(f) < MINSIGNAL; }

// Outside the domain on one side: the parabola through the values on the other.
double onesided(minrun& r, std::vector<double>& y, size_t i, double delta, double f1) {
    const double x = y[i], f0 = sample(r, y);
    y[i] = x + 2 * delta;
    const double f2 = sample(r, y);
    y[i] = x;
    if (!isvalue(f0)) return 0;
    return isvalue(f2) ? (4 * f1 - 3 * f0 - f2) / (2 * delta) : (f1 - f0) / delta;
}

void differences(minrun& r, const std::vector<double>& x, std::vector<double>& g) {
    std::vector<double> y = x;
    for (size_t i = 0; i < x.size(); i++) {
        const double delta = std::max(std::fabs(x[i]), 1.0) * 0.0001;
        y[i] = x[i] + delta;
        const double up = sample(r, y);
        y[i] = x[i] - delta;
        const double down = sample(r, y);
        y[i] = x[i];
        if (isvalue(up) && isvalue(down))
            g[i] = (up - down) / (2 * delta);
        else if (isvalue(up))
            g[i] = onesided(r, y, i, delta, up);
        else
            g[i] = isvalue(down) ? onesided(r, y, i, -delta, down) : 0;
    }
}

/* Of means of samples, over a step that grows with the noise. r.gradientnoise is the mean square of the
 * components in units of their errors: an F ratio, about 1 where the gradient is nothing but noise. */
void noisydifferences(minrun& r, const std::vector<double>& x, std::vector<double>& g) {
    std::vector<double> y = x;
    const long samples = std::max(r.samples, long(r.sw.nsize));
    const double wide = std::max(10.0, 1e4 * std::cbrt(r.spread));
    double ratio = 0;
    for (size_t i = 0; i < x.size(); i++) {
        const double delta = std::max(std::fabs(x[i]), 1.0) * 0.0001 * wide;
        y[i] = x[i] + delta;
        const samplestats up = samplemean(r, y, samples);
        y[i] = x[i] - delta;
        const samplestats down = samplemean(r, y, samples);
        y[i] = x[i];
        g[i] = isvalue(up.mean) && isvalue(down.mean) ? (up.mean - down.mean) / (2 * delta) : 0;
        const double variance = (up.variance + down.variance) / (4 * delta * delta);
        ratio += variance > 0 ? g[i] * g[i] / variance : 0;
    }
    r.gradientnoise = ratio / r.n;
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
        for (size_t j = 0; j < y.size(); j++) y[j] = r.x[j] + by * r.scale[j] * full[j];
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
    return std::max(std::min(shift, std::fabs(pivot)), 1e-6);
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
    double f;
    if (r.sw.stochsw) {
        const samplestats stats = samplemean(r, x, r.samples);
        f = stats.mean;
        r.spread = std::sqrt(stats.variance) / std::max(std::fabs(f), 1e-12);
    } else
        f = sample(r, x);
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
    else if (r.sw.stochsw)
        noisydifferences(r, x, g);
    else
        differences(r, x, g);
    for (size_t i = 0; i < g.size(); i++) g[i] = std::isnan(g[i]) ? 0 : g[i] * r.scale[i];
}

void mingradients(minrun& r) {
    mingradient(r, r.x, r.g);
    tofree(r, r.g, r.reduced);
}

void minevaluate(minrun& r, const std::vector<double>& x) {
    r.x = x;
    r.f = minvalue(r, r.x);
    mingradients(r);
}

void minidentity(minrun& r) {
    const size_t nf = size_t(r.nfree());
    r.H.assign(nf * nf, 0);
    for (size_t i = 0; i < nf; i++) r.H[i * nf + i] = 1;
    r.bfgscount = 0;
}

/* H := (I - v w'/ys) H (I - w v'/ys) + v v'/ys, with the step v and the change of the gradient w in the free
 * space. */
void minbfgs(minrun& r) {
    const size_t nf = size_t(r.nfree());
    std::vector<double> p(r.x.size()), q(r.x.size()), v, w, hw(nf, 0);
    for (size_t i = 0; i < p.size(); i++) {
        p[i] = (r.x[i] - r.xprev[i]) / r.scale[i];
        q[i] = r.g[i] - r.gprev[i];
    }
    tofree(r, p, v);
    tofree(r, q, w);
    double ys = dot(v, w);
    if (ys == 0) ys = 1;
    for (size_t i = 0; i < nf; i++)
        for (size_t j = 0; j < nf; j++) hw[i] += r.H[i * nf + j] * w[j];
    const double factor = (1 + dot(w, hw) / ys) / ys;
    for (size_t i = 0; i < nf; i++)
        for (size_t j = 0; j < nf; j++)
            r.H[i * nf + j] += factor * v[i] * v[j] - (v[i] * hw[j] + hw[i] * v[j]) / ys;
    r.bfgscount++;
    if (reports(r, 64)) tarnprint("BFGS-updating inverse Hessian.\n");
}

void minhessian(minrun& r) {
    const size_t nf = size_t(r.nfree());
    r.bfgscount = 0;
    r.hessianat = r.iteration;
    if (r.sw.hessmsw == 0) { // Z'Z is the identity: the columns of Z are orthogonal
        if (reports(r, 8)) tarnprint("computing Hessian = I.\n");
        return minidentity(r);
    }
    std::vector<double> a = freehessian(r);
    double most = 0;
    for (double v : a) most = std::isfinite(v) ? std::max(most, std::fabs(v)) : MAXPOS;
    if (most < 1e-12 || most >= MAXPOS) return minidentity(r);
    r.H = a;
    double pivot = minldl(r.H, nf, r.hessfloor, r.sw.hessmsw > 0 && r.sw.preconditionsw != 2);
    for (int k = 0; k < MOSTSHIFTS && r.sw.hessmsw < 0 && pivot < 0; k++) {
        const double shift = gershgorinshift(a, nf, pivot);
        for (size_t i = 0; i < nf; i++) a[i * nf + i] += shift;
        if (r.sw.reptsw) tarnprint("\nforce hessian to be positive definite\n");
        r.H = a;
        pivot = minldl(r.H, nf, r.hessfloor, false);
    }
}

std::vector<double> mintruehessian(const minproblem& problem, const std::vector<double>& x) {
    minrun r(problem, {}, {});
    r.x = x;
    r.g.assign(x.size(), 0);
    r.scale.assign(x.size(), 1);
    r.f = minvalue(r, x);
    minbasis(r);
    mingradients(r);
    return freehessian(r);
}

double mininverse(std::vector<double>& a, size_t n) { return minldl(a, n, 1e-12, false); }
