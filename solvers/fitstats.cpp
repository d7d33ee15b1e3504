// What a fit tells of its best point: errors, dependencies, covariance, goodness.
#include "interp/base/fpfault.h"
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
        off += weight * std::fabs(r.resid[i]);
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
        error += r.resid[i] * r.resid[i];
        total += (r.y[i] - mean) * (r.y[i] - mean);
    }
    const double square = total == 0 ? 1 : 1 - error / total;
    return fpfinite(square) ? square : MAXNEG; // where the sums overflow
}

} // namespace

void fitstatistics(fitrun& r, fitresult& result) {
    const size_t n = size_t(r.n);
    const int freedom = std::max(1, r.m - r.n);
    fitlastdigits(r);
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
