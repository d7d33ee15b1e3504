/* The last digits of a fit. The iteration ends where the sum of squares falls no more, which its parameters
 * reach with half the digits of the arithmetic; undamped steps take them further, up to the rounding of the
 * model. Where that rounding is to be seen in the result, the steps go on with a model evaluated at twice the
 * precision, at parameters that are held so. */
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "solvers/fitrun.h"
#include "solvers/precise.h"

#include <algorithm>
#include <cmath>

namespace {

// The Jacobian where the fit has ended; false when it is not to be had there at little cost.
bool finaljacobian(fitrun& r) {
    if (!r.model.jacobian || !r.lowered) return false;
    if (r.jacpoint == r.pbest) return true;
    if (!r.model.values(r.model.context, r.pbest.data(), r.ftrial)) return false;
    r.evaluations++;
    r.model.jacobian(r.model.context, r.jac);
    return true;
}

// The squares of what rounding may add to the model's values, if its terms are as large as its derivatives
// tell: weighted and summed.
double roundingsquares(const fitrun& r) {
    constexpr double unit = 0x1p-52;
    const size_t m = size_t(r.m);
    double noise = 0, size[BLOCK];
    for (size_t from = 0; from < m; from += BLOCK) {
        const size_t count = std::min(BLOCK, m - from);
        for (size_t i = 0; i < count; i++) size[i] = std::fabs(r.fbest[from + i]);
        for (size_t j = 0; j < size_t(r.n); j++) {
            const double* column = r.jac + j * m + from;
            const double p = r.pbest[j];
            for (size_t i = 0; i < count; i++) size[i] += std::fabs(column[i] * p);
        }
        for (size_t i = 0; i < count; i++) noise += r.w[from + i] * (size[i] * unit) * (size[i] * unit);
    }
    return noise;
}

double variance(const fitrun& r) { return r.bestsosq / std::max(1, r.m - r.n); }

double standarderror(const fitrun& r, size_t j) {
    return std::sqrt(std::max(r.normal[j * size_t(r.n) + j] * variance(r), 0.0));
}

/* Undamped steps shrink by a factor where residuals are large, and may turn over each time. The factor by
 * which the next is to be longer follows from two steps in a row (A. C. Aitken, Proc. Roy. Soc. Edinburgh 46
 * (1926) 289), measured in the errors of the parameters. */
struct quickening {
    std::vector<double> last;
    double factor = 1;
    void apply(const fitrun& r, std::vector<double>& step) {
        constexpr double least = 0.25, most = 4;
        double along = 0, before = 0;
        for (size_t j = 0; j < last.size(); j++) {
            const double own = r.normal[j * last.size() + j];
            if (!(own > 0)) continue;
            along += step[j] * last[j] / own;
            before += last[j] * last[j] / own;
        }
        if (before > 0) factor = std::clamp(factor / std::max(1 - along / before, least), least, most);
        last = step;
        for (double& s : step) s *= factor;
    }
};

/* An undamped step, far below the errors of the parameters: the sum cannot tell it any more, the digits of
 * the parameters can. True when it has been taken and was not yet at the end of the digits. */
bool polish(fitrun& r, const std::vector<double>& step) {
    const size_t n = size_t(r.n);
    std::vector<double> p = r.pbest;
    bool more = false;
    for (size_t j = 0; j < n; j++) {
        if (!(std::fabs(step[j]) <= 1e-2 * standarderror(r, j))) return false;
        more |= std::fabs(step[j]) > 1e-9 * std::fabs(p[j]);
        p[j] += step[j];
    }
    const double sum = fitsosq(r, p, 2, more);
    if (!(sum <= r.bestsosq * (1 + 1e-9))) {
        const double noise = roundingsquares(r);
        if (!(sum <= r.bestsosq + 2 * std::sqrt(r.bestsosq * noise) + noise)) return false;
    }
    r.pbest = p;
    std::swap(r.fbest, r.ftrial);
    r.bestsosq = std::min(sum, r.bestsosq);
    return more;
}

void takenormal(fitrun& r, const precisenormal& normal, const precisefactor& factor) {
    const size_t n = size_t(r.n);
    r.normal = preciseinverse(factor);
    for (size_t j = 0; j < n; j++) r.ptpdia[j] = normal.a[j * n + j].hi;
}

/* The inverse of J'WJ. Parameters that nearly depend on each other cost as many digits of their errors as the
 * matrix has lost to rounding, so it is built anew where the fit has ended, and inverted, at twice the
 * precision. */
void invertnormal(fitrun& r) {
    constexpr int mostpolish = 12; // where the steps shrink slowly, as with large residuals
    bool more = finaljacobian(r) && r.cons.count == 0 && r.converged == 1;
    quickening quick;
    for (int pass = 0;; pass++) {
        const precisenormal normal = precisesums(r);
        const precisefactor factor = precisefactors(normal, {});
        takenormal(r, normal, factor);
        if (!more || pass == mostpolish) return;
        std::vector<double> step = precisesolve(factor, normal.gradient);
        quick.apply(r, step);
        more = polish(r, step);
        if (!more) return;
        fitjacobian(r);
    }
}

// ---- at twice the precision

bool unconstrained(const fitrun& r) {
    return std::all_of(r.lagrangebest.begin(), r.lagrangebest.end(), [](double l) { return l == 0; });
}

/* Whether the model's rounding, by the bound of Cauchy and Schwarz, can be seen within ten digits of a
 * parameter, its error or the sum. */
bool roundingshows(const fitrun& r) {
    constexpr double seen = 1e-10, unit = 0x1p-52;
    const double noise = roundingsquares(r);
    if (2 * std::sqrt(noise) > seen * std::sqrt(r.bestsosq)) return true;
    for (size_t j = 0; j < size_t(r.n); j++) {
        const double own = r.normal[j * size_t(r.n) + j];
        if (own * r.ptpdia[j] * unit * unit > seen * seen) return true;
        if (std::sqrt(own * noise) > seen * std::max(std::fabs(r.pbest[j]), 1e-3 * standarderror(r, j)))
            return true;
    }
    return false;
}

struct preciseplace {
    std::vector<dd> p, resid, jac;
    dd sum;
};

bool evaluate(const fitrun& r, preciseplace& at) {
    at.resid.resize(size_t(r.m));
    at.jac.resize(size_t(r.m) * size_t(r.n));
    if (!r.model.precise(r.model.context, at.p.data(), at.resid.data(), at.jac.data())) return false;
    at.sum = 0;
    for (int i = 0; i < r.m; i++) at.sum += at.resid[size_t(i)] * at.resid[size_t(i)] * r.w[i];
    return std::isfinite(at.sum.hi);
}

// Whether it is the model of the fit: its residuals are those of the double's model but for rounding.
bool samemodel(const fitrun& r, const preciseplace& at) {
    double off = 0;
    for (int i = 0; i < r.m; i++) {
        const double d = r.y[i] - r.fbest[i] - todouble(at.resid[size_t(i)]);
        off += r.w[i] * d * d;
    }
    return off <= 1e-12 * r.bestsosq + 1e6 * roundingsquares(r);
}

// A step within the errors of the parameters, or within what rounding may have hidden, is one to take.
bool worthwhile(const fitrun& r, const preciseplace& at, const std::vector<double>& step, double noise) {
    bool more = false;
    for (size_t j = 0; j < step.size(); j++) {
        const double size = std::fabs(step[j]), error = standarderror(r, j);
        const double hidden = 100 * std::sqrt(r.normal[j * step.size() + j] * noise);
        if (!(size <= std::max(error, hidden))) return false;
        if (size > 1e-16 * std::fabs(at.p[j].hi) || size > 1e-8 * error) more = true;
    }
    return more;
}

void takeplace(fitrun& r, const preciseplace& at) {
    for (size_t i = 0; i < size_t(r.m); i++) {
        r.resid[i] = todouble(at.resid[i]);
        r.fbest[i] = todouble(dd(r.y[i]) - at.resid[i]);
    }
    for (size_t j = 0; j < size_t(r.n); j++) r.pbest[j] = todouble(at.p[j]);
    r.bestsosq = todouble(at.sum);
}

bool feasible(fitrun& r, const preciseplace& at) {
    for (size_t j = 0; j < size_t(r.n); j++) r.p[j] = todouble(at.p[j]);
    std::vector<double> violation;
    return r.cons.count == 0 || !fitviolated(r, violation);
}

// Whether the step is worth taking; `next` is where it leads.
bool lowers(fitrun& r, const preciseplace& at, const std::vector<double>& step, double noise,
            preciseplace& next) {
    if (!worthwhile(r, at, step, noise)) return false;
    next.p = at.p;
    for (size_t j = 0; j < step.size(); j++) next.p[j] += dd(step[j]);
    return feasible(r, next) && evaluate(r, next) && next.sum < at.sum;
}

/* Steps to the end of the digits; without `moves` the point stays, and only what is told of it is got. */
void refine(fitrun& r, bool moves) {
    constexpr int mostpasses = 16;
    const double noise = roundingsquares(r);
    preciseplace at, next;
    quickening quick;
    at.p.assign(r.pbest.begin(), r.pbest.end());
    if (!evaluate(r, at) || !samemodel(r, at)) return;
    takeplace(r, at);
    for (int pass = 0;; pass++) {
        const precisenormal normal = precisesums(r, at.resid.data(), at.jac.data());
        const precisefactor factor = precisefactors(normal, {});
        takenormal(r, normal, factor);
        if (!moves || pass == mostpasses) return;
        const std::vector<double> plain = precisesolve(factor, normal.gradient);
        std::vector<double> step = plain;
        quick.apply(r, step);
        if (!lowers(r, at, step, noise, next)) {
            if (quick.factor == 1 || !lowers(r, at, plain, noise, next)) return;
            quick.factor = 1;
        }
        std::swap(at, next);
        takeplace(r, at);
    }
}

// Weights that depend on parameters are those at the end, not at the start of the last iteration.
void settleweights(fitrun& r) {
    r.p = r.pbest;
    fitweights(r, true);
    r.bestsosq = 0;
    for (int i = 0; i < r.m; i++) r.bestsosq += r.w[i] * (r.y[i] - r.fbest[i]) * (r.y[i] - r.fbest[i]);
}

} // namespace

void fitlastdigits(fitrun& r) {
    if (r.model.weights && r.sw.norm == 2 && r.bestsosq < MAXPOS) settleweights(r);
    invertnormal(r);
    for (int i = 0; i < r.m; i++) r.resid[i] = r.y[i] - r.fbest[i];
    if (!r.model.precise || r.sw.norm != 2 || !unconstrained(r) || parser.interrupted) return;
    if (r.model.jacobian && !roundingshows(r)) return;
    refine(r, r.lowered && r.converged == 1);
}
