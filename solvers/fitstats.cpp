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

constexpr long double LONGPIVOTTOL = 1e-16L; // of the longer format

struct longnormal {
    std::vector<long double> a, diagonal, gradient; // J'WJ (see symsweep.h), its diagonal, J'W (y - f)
};

longnormal buildnormal(const fitrun& r) {
    const size_t n = size_t(r.n);
    longnormal normal{std::vector<long double>(n * n, 0), std::vector<long double>(n, 0),
                      std::vector<long double>(n, 0)};
    const size_t m = size_t(r.m);
    for (size_t j = 0; j < n; j++) {
        const double* column = &r.jac[j * m];
        for (size_t i = 0; i < m; i++) {
            const long double a = static_cast<long double>(r.w[i]) * column[i];
            normal.diagonal[j] += a * column[i];
            normal.gradient[j] += a * (r.y[i] - r.fbest[i]);
        }
        for (size_t k = j + 1; k < n; k++) {
            const double* other = &r.jac[k * m];
            long double sum = 0;
            for (size_t i = 0; i < m; i++) sum += static_cast<long double>(r.w[i]) * column[i] * other[i];
            normal.a[j * n + k] = sum;
        }
    }
    return normal;
}

/* The inverse of a symmetric matrix (upper triangle and diagonal) by Cholesky factors of the matrix scaled to
 * a diagonal of 1, which is as exact as the dependence of the parameters lets it be. Rows of a zero diagonal
 * stay zero; pivots are held above LONGPIVOTTOL. */
std::vector<long double> longinverse(const longnormal& normal, size_t n) {
    std::vector<long double> scale(n), l(n * n, 0), inverse(n * n, 0);
    for (size_t j = 0; j < n; j++) scale[j] = normal.diagonal[j] > 0 ? 1 / std::sqrt(normal.diagonal[j]) : 0;
    for (size_t j = 0; j < n; j++) {
        for (size_t i = j; i < n; i++) {
            long double sum = i == j ? (scale[j] > 0 ? 1 : 0) : normal.a[j * n + i] * scale[i] * scale[j];
            for (size_t k = 0; k < j; k++) sum -= l[i * n + k] * l[j * n + k];
            if (i == j)
                l[j * n + j] = std::sqrt(std::max(sum, scale[j] > 0 ? LONGPIVOTTOL : 1.0L));
            else
                l[i * n + j] = sum / l[j * n + j];
        }
    }
    std::vector<long double> e(n);
    for (size_t c = 0; c < n; c++) {
        if (scale[c] == 0) continue;
        for (size_t i = 0; i < n; i++) {
            e[i] = i == c;
            for (size_t k = 0; k < i; k++) e[i] -= l[i * n + k] * e[k];
            e[i] /= l[i * n + i];
        }
        for (size_t i = n; i-- > 0;) {
            for (size_t k = i + 1; k < n; k++) e[i] -= l[k * n + i] * e[k];
            e[i] /= l[i * n + i];
        }
        for (size_t i = 0; i < n; i++) inverse[i * n + c] = e[i] * scale[i] * scale[c];
    }
    return inverse;
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

/* The last undamped step, far below the errors of the parameters: the sum cannot tell it any more, the digits
 * of the parameters can. */
void polish(fitrun& r, const std::vector<long double>& step, const std::vector<long double>& inverse,
            double var) {
    const size_t n = size_t(r.n);
    std::vector<double> p = r.pbest;
    for (size_t j = 0; j < n; j++) {
        const long double error = std::sqrt(std::max(inverse[j * n + j] * var, 0.0L));
        if (!(std::fabs(step[j]) <= 1e-2L * error)) return;
        p[j] = double(p[j] + step[j]);
    }
    if (!r.model.values(r.model.context, p.data(), r.ftrial)) return;
    r.evaluations++;
    double sum = 0;
    for (int i = 0; i < r.m; i++) sum += r.w[i] * (r.y[i] - r.ftrial[i]) * (r.y[i] - r.ftrial[i]);
    if (!(sum <= r.bestsosq * (1 + 1e-9))) return; // what rounding of the model may add
    r.pbest = p;
    std::swap(r.fbest, r.ftrial);
    r.bestsosq = std::min(sum, r.bestsosq);
}

/* The inverse of J'WJ. Parameters that nearly depend on each other cost as many digits of their errors as the
 * matrix has lost to rounding, so it is built anew where the fit has ended, and inverted, in the longer
 * format. */
void invertnormal(fitrun& r, double var) {
    const bool fresh = finaljacobian(r);
    const size_t n = size_t(r.n);
    const longnormal normal = buildnormal(r);
    const std::vector<long double> inverse = longinverse(normal, n);
    std::vector<long double> step(n, 0);
    for (size_t i = 0; i < n; i++)
        for (size_t j = 0; j < n; j++) step[i] += inverse[i * n + j] * normal.gradient[j];
    if (fresh && r.cons.count == 0 && r.converged == 1) polish(r, step, inverse, var);
    for (size_t k = 0; k < n * n; k++) r.normal[k] = double(inverse[k]);
    for (size_t j = 0; j < n; j++) r.ptpdia[j] = double(normal.diagonal[j]);
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
        result.dependency[j] = v > 0 ? 1 - 1 / v : 1;
        result.stderrors[j] = a == 0 ? MAXPOS : std::sqrt(a) * result.rms;
        for (size_t k = 0; k <= j; k++)
            result.covariance[j * n + k] = result.covariance[k * n + j] = r.normal[j * n + k] * var;
    }
    result.deviation = deviationfraction(r);
    result.rsquared = rsquared(r);
}
