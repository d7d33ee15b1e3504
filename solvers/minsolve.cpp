#include "solvers/minsolve.h"

#include "interp/base/machine.h"
#include "interp/base/report.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

double dot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0;
    for (size_t i = 0; i < a.size(); i++) sum += a[i] * b[i];
    return sum;
}

double norm(const std::vector<double>& v) { return std::sqrt(dot(v, v)); }

double largest(const std::vector<double>& v) {
    double most = 0;
    for (double x : v) most = std::max(most, std::fabs(x));
    return most;
}

namespace {

void reportiteration(const minrun& r) {
    if (!reports(r, 4)) return;
    tarnprint("\nbegin iteration %d\nx: ", r.iteration);
    for (double v : r.x) tarnprint("%7.6e ", v);
    tarnprint("f(x): %7.6e\n", r.f);
    tarnprint("g(x): ");
    for (double v : r.g) tarnprint("%7.6e ", v);
    tarnprint("\n");
}

nextstep iterate(minrun& r) {
    if (r.iteration >= MINMAXIT) return end(r, MINITERATIONS);
    if (minpolled(r)) return ENDED;
    r.iteration++;
    if (r.iteration > MINMAXIT / 2 && r.hessfloor > 1e-12) r.hessfloor *= 0.1;
    reportiteration(r);
    tofree(r, r.g, r.reduced);
    if (r.nfree() == 0) return mindelete(r) ? NEWHESSIAN : end(r, MINSMALLSTEP);
    const nextstep next = mindirection(r);
    return next == LINESEARCH ? minsearch(r) : next;
}

// NEWSTART: a variable was scaled, the Hessian is to be made of its gradients.
nextstep makehessian(minrun& r) {
    if (r.sw.gradsw != 0 || r.nfree() == 0) return NEXTITERATION;
    minhessian(r);
    r.scaleindex = -1;
    return minscale(r);
}

void loop(minrun& r) {
    nextstep next = NEWHESSIAN;
    int hessians = 0; // a run that only makes Hessians goes nowhere
    while (next != ENDED) {
        if (next == NEWSTART) minevaluate(r, r.x);
        if (next == NEXTITERATION)
            next = iterate(r);
        else
            next = ++hessians > 4 * MINMAXIT ? end(r, MINITERATIONS) : makehessian(r);
    }
}

// Rows of at most become rows of at least.
void turnrows(minrun& r) {
    for (size_t i = 0; i < size_t(r.cons.count); i++) {
        if (r.cons.type[i] >= 0) continue;
        for (size_t j = 0; j < size_t(r.n); j++)
            r.cons.coef[i * size_t(r.n) + j] = -r.cons.coef[i * size_t(r.n) + j];
        r.cons.rhs[i] = -r.cons.rhs[i];
        r.cons.type[i] = 1;
    }
}

bool start(minrun& r, const std::vector<double>& x) {
    const size_t n = size_t(r.n);
    r.x = r.xbest = r.xgood = r.xprev = x;
    r.g.assign(n, 0);
    r.scale.assign(n, 1);
    r.depends.assign(size_t(r.cons.count), 0);
    r.fbest = r.fgood = MAXPOS;
    r.samples = std::max(r.sw.ssize, r.sw.stochsw ? 2 : 1);
    if (r.sw.gradsw != 0) r.sw.preconditionsw = -2;
    turnrows(r);
    minbasis(r);
    if (r.cons.count > 0 && !minfeasible(r)) return false;
    minevaluate(r, r.x);
    r.xgood = r.xbest = r.x;
    r.fgood = r.f;
    return true;
}

// Without the scales of the variables.
std::vector<double> plainhessian(const minrun& r) {
    std::vector<double> h = r.H;
    const size_t n = size_t(r.n);
    for (size_t i = 0; i < n; i++)
        for (size_t j = 0; j < n; j++) h[i * n + j] *= r.scale[i] * r.scale[j];
    return h;
}

minresult finish(minrun& r) {
    minresult result;
    if (r.active.empty() && r.sw.gradsw == 0 && r.fbest >= r.f && !r.H.empty())
        result.hinverse = plainhessian(r);
    // on constraints the last point stands exactly, the best one perhaps within their margin
    const double margin = r.active.empty() ? 0 : 1e-9 * std::max(std::fabs(r.f), 1.0);
    if (r.fbest < r.f - margin || r.ecode == MINUNBOUNDED) {
        r.x = r.xbest;
        minsettle(r);
    }
    // a row that nearly depends on the active ones may have been passed by: back to the nearest point allowed
    if (r.cons.count > 0 && r.ecode != MININFEASIBLE && !minmeetsall(r)) {
        r.fbest = MAXPOS;
        minfeasible(r);
    }
    r.f = minvalue(r, r.x);
    std::fill(r.scale.begin(), r.scale.end(), 1.0);
    mingradient(r, r.x, r.g);
    result.x = r.x;
    result.g = r.g;
    result.f = r.f;
    result.ecode = r.ecode;
    for (int row : r.active) result.active.push_back(row + 1);
    result.fevals = r.fevals;
    result.gevals = r.gevals;
    result.iterations = r.iteration;
    result.reptsw = r.sw.reptsw;
    return result;
}

} // namespace

minresult minsolve(const minproblem& problem, const minswitches& switches,
                   const solverconstraints& constraints, const std::vector<double>& x) {
    minrun r(problem, switches, constraints);
    if (!start(r, x))
        r.ecode = MININFEASIBLE;
    else if (r.f <= MAXNEG)
        r.ecode = MINUNBOUNDED;
    else
        loop(r);
    return finish(r);
}
