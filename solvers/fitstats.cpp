// What a fit tells of its best point: errors, dependencies, covariance, goodness.
#include "interp/base/machine.h"
#include "solvers/fitrun.h"

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
    return all == 0 ? MAXPOS : off / all;
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

/* The inverse of J'WJ at the best point. Parameters that nearly depend on each other cost as many digits of
 * their errors as the matrix has lost to rounding, so it is built anew where the fit has ended, and inverted,
 * in the longer format. */
void invertnormal(fitrun& r) {
    if (r.model.jacobian && r.lowered && r.model.values(r.model.context, r.pbest.data(), r.ftrial.data()))
        r.model.jacobian(r.model.context, r.jac.data());
    const size_t n = size_t(r.n);
    std::vector<long double> normal(n * n, 0), diagonal(n, 0);
    for (size_t i = 0; i < size_t(r.m); i++) {
        const double* row = &r.jac[i * n];
        for (size_t j = 0; j < n; j++) {
            const long double a = (long double)r.w[i] * row[j];
            diagonal[j] += a * row[j];
            for (size_t k = j + 1; k < n; k++) normal[j * n + k] += a * row[k];
        }
    }
    symsweepwork<long double> work;
    symsweepall<long double>(r.n, normal.data(), diagonal.data(), PIVOTTOL, r.pivots, work);
    for (size_t k = 0; k < n * n; k++) r.normal[k] = double(normal[k]);
    for (size_t j = 0; j < n; j++) r.ptpdia[j] = double(diagonal[j]);
}

} // namespace

void fitstatistics(fitrun& r, fitresult& result) {
    const size_t n = size_t(r.n);
    const double var = r.bestsosq / std::max(1, r.m - r.n);
    result.rms = std::sqrt(var);
    invertnormal(r);
    result.stderrors.assign(n, 0);
    result.dependency.assign(n, 0);
    result.covariance.assign(n * n, 0);
    for (size_t j = 0; j < n; j++) {
        const double a = r.normal[j * n + j], v = a * r.ptpdia[j];
        result.dependency[j] = v > 0 ? 1 - 1 / v : 1;
        result.stderrors[j] = a == 0 ? MAXPOS : std::sqrt(a) * result.rms;
        for (size_t k = 0; k <= j; k++)
            result.covariance[j * n + k] = result.covariance[k * n + j] = r.normal[j * n + k] * var;
    }
    result.deviation = deviationfraction(r);
    result.rsquared = rsquared(r);
}
