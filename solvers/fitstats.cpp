// What a fit tells of its best point: errors, dependencies, covariance, goodness.
#include "interp/base/machine.h"
#include "solvers/fitrun.h"
#include "solvers/precise.h"

#include <algorithm>
#include <cmath>

namespace {

// sum |f| w0 |f - y| over sum |f| w0 |f|
double deviationfraction(const fitrun& r) {
    double off = 0, all = 0;
    for (int i = 0; i < r.m; i++) {
        const double size = std::fabs(r.fbest[i]), weight = size * r.w0[i];
        off += weight * std::fabs(r.fbest[i] - r.y[i]);
        all += weight * size;
    }
    const double fraction = all == 0 ? MAXPOS : off / all;
    return fraction <= MAXPOS ? fraction : MAXPOS; // also where the sums overflow
}

// Without weights. The total sum is taken about the mean in two passes, which loses no digits to
// cancellation.
double rsquared(const fitrun& r) {
    double mean = 0, error = 0, total = 0;
    for (int i = 0; i < r.m; i++) mean += r.y[i] / r.m;
    for (int i = 0; i < r.m; i++) {
        error += (r.y[i] - r.fbest[i]) * (r.y[i] - r.fbest[i]);
        total += (r.y[i] - mean) * (r.y[i] - mean);
    }
    return total == 0 ? 1 : 1 - error / total;
}

// The Jacobian where the fit has ended; false when it is not to be had there at little cost.
bool finaljacobian(fitrun& r) {
    if (!r.model.jacobian || !r.lowered) return false;
    if (r.jacpoint == r.pbest) return true;
    if (!r.model.values(r.model.context, r.pbest.data(), r.ftrial)) return false;
    r.evaluations++;
    r.model.jacobian(r.model.context, r.jac);
    return true;
}

// What rounding in the model may add to the sum, if its terms are as large as its derivatives tell.
double roundingsum(const fitrun& r) {
    constexpr double unit = 0x1p-52;
    double noise = 0;
    for (int i = 0; i < r.m; i++) {
        double size = std::fabs(r.fbest[i]);
        for (int j = 0; j < r.n; j++)
            size += std::fabs(r.jac[size_t(j) * size_t(r.m) + size_t(i)] * r.pbest[j]);
        noise += r.w[i] * size * unit * size * unit;
    }
    return 2 * std::sqrt(r.bestsosq * noise) + noise;
}

/* An undamped step, far below the errors of the parameters: the sum cannot tell it any more, the digits of
 * the parameters can. True when it has been taken and was not yet at the end of the digits. */
bool polish(fitrun& r, const std::vector<double>& step, double var) {
    const size_t n = size_t(r.n);
    std::vector<double> p = r.pbest;
    bool more = false;
    for (size_t j = 0; j < n; j++) {
        const double error = std::sqrt(std::max(r.normal[j * n + j] * var, 0.0));
        if (!(std::fabs(step[j]) <= 1e-2 * error)) return false;
        more |= std::fabs(step[j]) > 1e-9 * std::fabs(p[j]);
        p[j] += step[j];
    }
    const double sum = fitsosq(r, p, 2, more);
    if (!(sum <= r.bestsosq * (1 + 1e-9)) && !(sum <= r.bestsosq + roundingsum(r))) return false;
    r.pbest = p;
    std::swap(r.fbest, r.ftrial);
    r.bestsosq = std::min(sum, r.bestsosq);
    return more;
}

/* The inverse of J'WJ. Parameters that nearly depend on each other cost as many digits of their errors as the
 * matrix has lost to rounding, so it is built anew where the fit has ended, and inverted, at twice the
 * precision. */
void invertnormal(fitrun& r, double var) {
    constexpr int mostpolish = 6; // where the steps shrink slowly, as with large residuals
    const size_t n = size_t(r.n);
    bool more = finaljacobian(r) && r.cons.count == 0 && r.converged == 1;
    for (int pass = 0;; pass++) {
        const precisenormal normal = precisesums(r);
        const precisefactor factor = precisefactors(normal, {});
        r.normal = preciseinverse(factor);
        for (size_t j = 0; j < n; j++) r.ptpdia[j] = normal.a[j * n + j].hi;
        if (!more || pass == mostpolish) return;
        more = polish(r, precisesolve(factor, normal.gradient), var);
        if (!more) return;
        fitjacobian(r);
    }
}

} // namespace

void fitstatistics(fitrun& r, fitresult& result) {
    const size_t n = size_t(r.n);
    const int freedom = std::max(1, r.m - r.n);
    invertnormal(r, r.bestsosq / freedom);
    const double var = r.bestsosq / freedom;
    result.rms = std::sqrt(var);
    result.stderrors.assign(n, 0);
    result.dependency.assign(n, 0);
    result.covariance.assign(n * n, 0);
    for (size_t j = 0; j < n; j++) {
        const double a = r.normal[j * n + j], v = a * r.ptpdia[j];
        result.dependency[j] = v > 0 ? std::max(1 - 1 / v, 0.0) : 1; // rounding can leave v below 1
        result.stderrors[j] = a == 0 ? MAXPOS : std::sqrt(a) * result.rms;
        for (size_t k = 0; k <= j; k++)
            result.covariance[j * n + k] = result.covariance[k * n + j] = r.normal[j * n + k] * var;
    }
    result.deviation = deviationfraction(r);
    result.rsquared = rsquared(r);
}
