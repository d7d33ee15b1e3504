// What a fit computes at a point: the sum of squares, weights, the Jacobian, the normal equations.
#include "funcs/vectorloops.h"
#include "interp/base/fpfault.h"
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "solvers/fitrun.h"

#include <algorithm>
#include <cmath>

namespace {

// sum of w |y - f|^norm
double weightedsum(const fitrun& r, const double* f, double norm) {
    const size_t m = size_t(r.m);
    double sum = 0, d[BLOCK], weighted[BLOCK];
    for (size_t from = 0; from < m; from += BLOCK) {
        const size_t count = std::min(BLOCK, m - from);
        const double *y = r.y + from, *w = r.w + from;
        for (size_t i = 0; i < count; i++) d[i] = y[i] - f[from + i];
        if (norm == 2) {
            for (size_t i = 0; i < count; i++) weighted[i] = w[i] * d[i];
            sum += dotproduct(count, weighted, d);
        } else {
            for (size_t i = 0; i < count; i++)
                sum += w[i] * (norm == 1 ? std::fabs(d[i]) : std::pow(std::fabs(d[i]), norm));
        }
    }
    return sum;
}

bool allfinite(const std::vector<double>& v) { return std::all_of(v.begin(), v.end(), fpfinite); }

} // namespace

double fitsosq(fitrun& r, const std::vector<double>& p, double norm, bool derivatives) {
    if (r.evaluations >= 1 && parser.interrupted) return MAXPOS;
    if (!allfinite(p)) return MAXPOS;
    r.evaluations++;
    r.lastpoint = p;
    const unsigned before = fp.total;
    r.trialjac = derivatives && r.model.both && r.model.both(r.model.context, p.data(), r.ftrial, r.jactrial);
    if (!r.trialjac && !r.model.values(r.model.context, p.data(), r.ftrial)) return MAXPOS;
    r.faults = fp.total - before;
    if (r.faults > r.faultlimit) return MAXPOS;
    const double sum = weightedsum(r, r.ftrial, norm);
    return sum <= MAXPOS ? sum : MAXPOS;
}

// Weights in force: the user's, and for another norm than 2 those that make its sum quadratic at the best
// point.
void fitweights(fitrun& r, bool plain) {
    if (r.model.weights) r.model.weights(r.model.context, r.p.data(), r.ownw0);
    r.w = r.w0;
    if (plain || r.sw.norm == 2) return;
    for (int i = 0; i < r.m; i++) {
        const double d = std::fabs(r.fbest[i] - r.y[i]);
        r.ownw[i] = d != 0 ? r.w0[i] * std::pow(d, r.sw.norm - 2) : r.w0[i];
    }
    r.w = r.ownw;
}

namespace {

double differencestep(double t) { return std::fabs(t) >= 1e-8 ? 0.01 * std::fabs(t) : 1e-9; }

// A side on which the model fails is left out; with both gone the parameter has no effect here.
void differences(fitrun& r, int j) {
    std::vector<double> p = r.p, plus(size_t(r.m));
    const double t = r.p[j], delta = differencestep(t);
    p[j] = t + delta;
    const bool up = fitsosq(r, p, 2) < MAXPOS;
    std::copy_n(up ? r.ftrial : r.fbest, r.m, plus.begin());
    p[j] = t - delta;
    const bool down = fitsosq(r, p, 2) < MAXPOS;
    const double* minus = down ? r.ftrial : r.fbest;
    const double width = (up + down) * delta;
    double* column = &r.jac[size_t(j) * size_t(r.m)];
    for (int i = 0; i < r.m; i++) column[i] = width > 0 ? (plus[i] - minus[i]) / width : 0;
}

// The same for `count` parameters from j on, where the model can be evaluated at all their points together.
bool differencestogether(fitrun& r, int j, int count) {
    if (!r.model.several || parser.interrupted) return false;
    const size_t n = size_t(r.n), m = size_t(r.m);
    std::vector<double> points, f(2 * size_t(count) * m);
    for (int k = j; k < j + count; k++)
        for (double sign : {1.0, -1.0}) {
            points.insert(points.end(), r.p.begin(), r.p.end());
            points[points.size() - n + size_t(k)] += sign * differencestep(r.p[k]);
        }
    if (!allfinite(points) || !r.model.several(r.model.context, points.data(), 2 * count, f.data()))
        return false;
    for (int k = 0; k < 2 * count; k++)
        if (!(weightedsum(r, &f[size_t(k) * m], 2) <= MAXPOS)) return false;
    r.evaluations += 2 * count;
    r.lastpoint.assign(points.end() - long(n), points.end());
    for (int k = 0; k < count; k++) {
        const double width = 2 * differencestep(r.p[j + k]);
        const double *plus = &f[size_t(2 * k) * m], *minus = plus + m;
        double* column = r.jac + size_t(j + k) * m;
        for (size_t i = 0; i < m; i++) column[i] = (plus[i] - minus[i]) / width;
    }
    return true;
}

// Central differences.
void numericjacobian(fitrun& r) {
    for (int j = 0; j < r.n; j += FITTOGETHER / 2) {
        const int count = std::min(FITTOGETHER / 2, r.n - j);
        if (differencestogether(r, j, count)) continue;
        for (int k = j; k < j + count; k++) differences(r, k);
    }
}

} // namespace

// A symbolic Jacobian is taken where the last evaluation was: most often with it.
void fitjacobian(fitrun& r) {
    if (!r.model.jacobian) return numericjacobian(r);
    if (r.trialjac)
        std::swap(r.jac, r.jactrial);
    else
        r.model.jacobian(r.model.context, r.jac);
    r.trialjac = false;
    r.jacpoint = r.lastpoint;
}

namespace {

// A block of observations at a time, so that its part of each column stays in the cache.
void addupnormal(fitrun& r) {
    const size_t n = size_t(r.n), m = size_t(r.m);
    std::fill(r.normal.begin(), r.normal.end(), 0.0);
    std::fill(r.ptpdia.begin(), r.ptpdia.end(), 0.0);
    std::fill(r.dgrad.begin(), r.dgrad.end(), 0.0);
    double weighted[BLOCK];
    for (size_t from = 0; from < m; from += BLOCK) {
        const size_t count = std::min(BLOCK, m - from);
        for (size_t j = 0; j < n; j++) {
            const double* column = r.jac + j * m + from;
            for (size_t i = 0; i < count; i++) weighted[i] = r.w[from + i] * column[i];
            r.dgrad[j] += dotproduct(count, weighted, r.resid + from);
            r.ptpdia[j] += dotproduct(count, weighted, column);
            for (size_t k = j + 1; k < n; k++)
                r.normal[j * n + k] += dotproduct(count, weighted, r.jac + k * m + from);
        }
    }
}

} // namespace

void normalequations(fitrun& r) {
    constexpr double steepest = 1e100; // its square can still be added up
    for (int i = 0; i < r.m; i++) r.resid[i] = r.y[i] - r.fbest[i];
    addupnormal(r);
    if (allfinite(r.ptpdia) && allfinite(r.dgrad) && allfinite(r.normal)) return;
    for (size_t k = 0; k < size_t(r.n) * size_t(r.m); k++)
        r.jac[k] = std::isnan(r.jac[k]) ? 0 : std::clamp(r.jac[k], -steepest, steepest);
    addupnormal(r);
}
