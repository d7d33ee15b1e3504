#include "solvers/fitsolve.h"

#include "funcs/vectorloops.h"
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/fitrun.h"

#include <algorithm>
#include <cmath>

namespace {

void reportgradient(const fitrun& r) {
    if (!(r.sw.report & 16)) return;
    tarnprint("     dgrad              ptpdia\n");
    for (int j = 0; j < r.n; j++) tarnprint("  : %12.6lf  : %12.6lf\n", r.dgrad[j], r.ptpdia[j]);
}

} // namespace

void reportparms(const fitrun& r, const std::vector<double>& p) {
    if ((r.sw.report & 4) && r.model.printparms) r.model.printparms(r.model.context, p.data());
}

namespace {

// Q and R at the end of an iteration.
void pollkeys(fitrun& r) {
    const bool toggled = parser.reporttoggle;
    keypoll();
    if (parser.reporttoggle != toggled) r.sw.report = parser.reporttoggle ? 15 : 8;
}

/* A fit that began at its constrained minimum has lowered nothing, and no point has brought its multipliers
 * along: they are those of the step that the constraints have held back. */
void takemultipliers(fitrun& r) {
    if (r.lowered || r.converged != 1 || r.lagrangefirst.empty()) return;
    for (int i = 0; i < r.cons.count; i++)
        r.lagrangebest[size_t(i)] = fitstandson(r, i) ? r.lagrangefirst[size_t(i)] : 0;
}

// Ends an iteration; true when the fit has ended.
bool fitfinish(fitrun& r) {
    r.converged = r.oldsosq - r.bestsosq <= r.oldsosq * r.sw.tolsos ? 1 : 0;
    r.p = r.pbest;
    pollkeys(r);
    if (parser.interrupted) {
        r.sw.maxiter = 0;
        r.converged = 0;
        tarnprint("FIT INTERRUPTED BY Q\n");
    }
    if (r.sw.maxiter <= 0) r.iteration = 0;
    if (r.iteration < r.sw.maxiter && r.converged != 1) {
        r.iteration++;
        return false;
    }
    if (r.converged == 0) r.converged = 2;
    takemultipliers(r);
    return true;
}

} // namespace

nextmove finished(fitrun& r) { return fitfinish(r) ? STOP : NEXTITERATION; }

void dampedstep(fitrun& r) {
    symsweepall(r.n, r.normal.data(), r.damped.data(), r.pivottol, r.pivots, r.work);
    symmul(r.n, r.normal.data(), r.dgrad.data(), r.pivots, r.p.data());
    for (int j = 0; j < r.n; j++) r.p[j] += r.p0[j];
}

namespace {

void marquardtstep(fitrun& r, double e) {
    for (int j = 0; j < r.n; j++) r.damped[j] = r.ptpdia[j] * (1 + e);
    dampedstep(r);
}

void descentstep(fitrun& r, double e) {
    const double divisor = std::exp2(std::log10(e) + 1);
    for (int j = 0; j < r.n; j++) r.p[j] = r.p0[j] + r.dgrad[j] / divisor;
}

double steplength(const fitrun& r) {
    double s = 0;
    for (int j = 0; j < r.n; j++) s += (r.p[j] - r.p0[j]) * (r.p[j] - r.p0[j]) * r.ptpdia[j];
    return s;
}

// The first probe tells from the worst dependency which damping begins to matter: smaller factors are passed
// over.
void jumpuseless(fitrun& r, double e) {
    double worst = 1;
    for (int j = 0; j < r.n; j++) worst = std::max(worst, r.normal[size_t(j) * r.n + j] * r.ptpdia[j]);
    const double v = 1 / (std::sqrt(2.0 * r.n) * worst);
    if (v > e) r.eps = EPSFACTOR * v;
}

} // namespace

double promisedgain(const fitrun& r) {
    const size_t n = size_t(r.n);
    double gain = 0;
    for (size_t j = 0; j < n; j++) {
        const double d = r.p[j] - r.p0[j];
        double row = d * r.ptpdia[j];
        for (size_t k = j + 1; k < n; k++) row += 2 * r.normal[j * n + k] * (r.p[k] - r.p0[k]);
        gain += d * (2 * r.dgrad[j] - row);
    }
    return gain;
}

namespace {

// The sum that the linear model promises for the step.
double promisedsum(fitrun& r) {
    const size_t m = size_t(r.m);
    double* d = r.ftrial; // its values have been taken
    std::copy_n(r.resid, m, d);
    for (size_t j = 0; j < size_t(r.n); j++) axpy(m, r.p0[j] - r.p[j], &r.jac[j * m], d);
    double sum = 0;
    for (size_t i = 0; i < m; i++) sum += r.w[i] * d[i] * d[i];
    return sum;
}

void begindescent(fitrun& r, bool& steepest) {
    steepest = true;
    r.eps = 0.1;
    double a = 0, b = 0;
    for (int j = 0; j < r.n; j++) {
        a += r.p[j] * r.p[j];
        b += r.dgrad[j] * r.dgrad[j];
    }
    if (b == 0) return;
    const double factor = std::sqrt(std::max(a, 0.004) / b);
    for (double& g : r.dgrad) g *= factor;
}

} // namespace

bool improves(fitrun& r, double sos) {
    if (!(sos < r.bestsosq)) return false;
    r.lowered = true;
    r.bestsosq = sos;
    std::swap(r.fbest, r.ftrial);
    r.pbest = r.p;
    r.lagrangebest = r.lagrange;
    r.bestfaults = r.faults;
    return sos < (1 - r.sw.tolsos) * r.oldsosq;
}

void reportprobe(const fitrun& r, double e, double sos, bool steepest) {
    if (!(r.sw.report & 2)) return;
    tarnprint("%s eps = %le\n      sum of squares = %1.13lg\n",
              steepest ? " steepest-descent search" : " Marquardt-Levenberg line search probe:", e, sos);
    reportparms(r, r.p);
}

namespace {

struct sweepstate {
    bool steepest = false;
    double firststep = 0; // length of the step at the last probe that was evaluated
};

// The Marquardt part of a probe before its evaluation; PROBEON to evaluate.
nextmove trymarquardt(fitrun& r, sweepstate& sweep, double e) {
    const double s = steplength(r);
    if (e == EPSMIN) r.lagrangefirst = r.lagrange;
    if (s == 0) return finished(r);
    if (e == EPSMIN) {
        sweep.firststep = s;
        jumpuseless(r, e);
    } else if (10 * s > sweep.firststep) {
        return SEARCHON;
    } else {
        sweep.firststep = s;
    }
    return PROBEON;
}

nextmove probe(fitrun& r, sweepstate& sweep) {
    const double e = r.eps;
    r.eps = EPSFACTOR * e;
    if (e <= EPSMAX) {
        if (sweep.steepest)
            descentstep(r, e);
        else
            marquardtstep(r, e);
        if (r.cons.count > 0) fitconstrain(r, false);
        if (!sweep.steepest) {
            const nextmove move = trymarquardt(r, sweep, e);
            if (move != PROBEON) return move;
        }
    }
    // The weights already carry the norm. The Jacobian at the trial point will be wanted if it is taken.
    const bool promising = sweep.steepest || promisedgain(r) > r.sw.tolsos * r.oldsosq;
    const double sos = fitsosq(r, r.p, 2, promising);
    reportprobe(r, e, sos, sweep.steepest);
    if (improves(r, sos)) return finished(r);
    if (r.eps > EPSMAX || sweep.steepest) {
        if (!r.sw.descent || sweep.steepest) return finished(r);
        begindescent(r, sweep.steepest);
        return SEARCHON;
    }
    if (r.sw.descent && e > EPSMIN && promisedsum(r) > (1 - r.sw.tolsos) * r.oldsosq)
        begindescent(r, sweep.steepest);
    return SEARCHON;
}

} // namespace

void beginiteration(fitrun& r) {
    fitjacobian(r);
    r.p0 = r.p;
    fitweights(r, false);
    if (r.sw.norm != 2 || r.model.weights) { // the sum to beat is the one under the new weights
        r.bestsosq = 0;
        for (int i = 0; i < r.m; i++) {
            const double d = r.y[i] - r.fbest[i];
            r.bestsosq += d * d * r.w[i];
        }
    }
    if (r.sw.report & 1) tarnprint("Begin iteration %hd bestsosq=%le\n", short(r.iteration), r.bestsosq);
    reportparms(r, r.p);
    r.oldsosq = r.bestsosq;
    normalequations(r);
    reportgradient(r);
    // Under a norm above 2 the weights move against the step; a part of it is Newton's step (D. L. Kahng,
    // 1972).
    if (r.sw.norm > 2)
        for (double& g : r.dgrad) g /= r.sw.norm - 1;
}

namespace {

nextmove iteration(fitrun& r) {
    beginiteration(r);
    r.eps = EPSMIN;
    if (r.sw.maxiter <= 0) return finished(r);
    sweepstate sweep;
    nextmove move;
    do move = probe(r, sweep);
    while (move == SEARCHON);
    return move;
}

void allocate(fitrun& r, const std::vector<double>& p, const double* w0) {
    const size_t n = size_t(r.n), m = size_t(r.m);
    const bool weights = r.model.weights, norm = r.sw.norm != 2, both = r.model.both;
    r.memory.reset(harrayraw(uint32_t(3 + weights + norm + n * (1 + both)), uint32_t(m)));
    double* at = cells(r.memory.get()) + 1;
    const auto take = [&](bool wanted, size_t arrays) {
        return wanted ? at += arrays * m, at - arrays * m : nullptr;
    };
    r.ftrial = take(true, 1);
    r.fbest = take(true, 1);
    r.resid = take(true, 1);
    r.ownw0 = take(weights, 1);
    r.ownw = take(norm, 1);
    r.jac = take(true, n);
    r.jactrial = take(both, n);
    std::fill_n(r.ftrial, 2 * m, 0.0); // a model that has no value at the start leaves them so
    if (weights) std::copy_n(w0, m, r.ownw0);
    r.w0 = r.w = weights ? r.ownw0 : w0;
    r.p = r.pbest = r.p0 = p;
    r.normal.assign(n * n, 0);
    r.ptpdia.assign(n, 0);
    r.damped = r.dgrad = r.ptpdia;
    r.pivots.assign(n, 1);
    r.lagrange.assign(size_t(r.cons.count), 0);
    r.lagrangebest = r.lagrange;
}

void takeresult(fitrun& r, fitresult& result) {
    result.p = r.pbest;
    result.resid = r.resid;
    result.w = r.w;
    result.memory = std::move(r.memory);
    result.sosq = r.bestsosq;
    result.lagrange = r.lagrangebest;
    result.iterations = r.iteration;
    result.converged = r.converged;
    result.lowered = r.lowered;
    result.report = r.sw.report;
}

} // namespace

fitresult fitsolve(const fitmodel& model, const fitswitches& switches, const solverconstraints& constraints,
                   const std::vector<int>& element, const std::vector<double>& p, size_t m, const double* y,
                   const double* w0) {
    fitrun r(model, switches, constraints, element, y, int(p.size()), int(m));
    allocate(r, p, w0);
    fitresult result;
    if (r.cons.count > 0) {
        result.contradiction = fitcontradiction(r);
        if (result.contradiction) return result;
        fitconstrain(r, true);
    }
    r.pbest = r.p;
    fitweights(r, true);
    r.bestsosq = r.oldsosq = fitsosq(r, r.p, r.sw.norm, true);
    std::swap(r.fbest, r.ftrial);
    r.bestfaults = r.faults;
    result.started = r.bestsosq < MAXPOS;
    const fitattempt start = thisattempt(r);
    const nextmove first = iteration(r);
    const std::vector<double> sensitivity = r.ptpdia;
    if (first != STOP)
        while (iteration(r) != STOP) {}
    if (astray(r, start, sensitivity)) result.retried = carefulfit(r, start, sensitivity);
    fitstatistics(r, result);
    takeresult(r, result);
    return result;
}
