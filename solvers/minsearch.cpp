// The line search: steps that lower the value enough, by cubics through the trials; the Taylor series test;
// what a step that was taken means for the iteration.
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LEASTSTEP = 1e-15;
constexpr int MOSTTRIALS = 21, ENDOFTRIALS = 200;

/* One search along s. The base is the start of the iteration, or a trial from which it falls ever steeper. */
struct linesearch {
    std::vector<double> base;
    double f0, slope;               // there
    double alpha;                   // of this trial
    double most;                    // room to the next row
    int row;                        // that row, -1: none
    double before = 0, fbefore = 0; // the failed trial before this one
    bool interpolated = false, advanced = false;
    int count = 0;
};

double moveto(minrun& r, const linesearch& l) {
    double length = 0;
    for (size_t i = 0; i < r.x.size(); i++) {
        const double step = l.alpha * r.scale[i] * r.s[i];
        r.x[i] = l.base[i] + step;
        length += step * step;
    }
    return length; // squared
}

/* The minimum of the cubic through two failed trials, of the parabola through one; within 0.05 and 0.95 of
 * the last. */
double interpolatedstep(const linesearch& l, double f) {
    const double a1 = l.alpha, r1 = f - l.f0 - l.slope * a1;
    double next = -l.slope * a1 * a1 / (2 * r1);
    if (l.interpolated) {
        const double a2 = l.before, r2 = l.fbefore - l.f0 - l.slope * a2;
        const double a = (r1 / (a1 * a1) - r2 / (a2 * a2)) / (a1 - a2);
        const double b = (-a2 * r1 / (a1 * a1) + a1 * r2 / (a2 * a2)) / (a1 - a2);
        const double root = b * b - 3 * a * l.slope;
        if (a != 0 && root >= 0)
            next = b <= 0 ? (-b + std::sqrt(root)) / (3 * a) : -l.slope / (b + std::sqrt(root));
    }
    return std::isfinite(next) ? std::clamp(next, 0.05 * a1, 0.95 * a1) : 0.5 * a1;
}

// Shorter after a failed trial; false when the step has become nothing.
bool shorten(const minrun& r, linesearch& l, double f) {
    const double next = interpolatedstep(l, f);
    l.before = l.alpha;
    l.fbefore = f;
    l.interpolated = true;
    l.alpha = next;
    return l.alpha * norm(r.s) >= LEASTSTEP;
}

bool smallmove(const minrun& r) {
    const double factor = r.sw.stochsw ? 10 : 1;
    for (size_t i = 0; i < r.x.size(); i++)
        if (!(std::fabs(r.x[i] - r.xprev[i]) < (std::fabs(r.x[i]) + 1) * r.sw.xtol * factor)) return false;
    return true;
}

bool converged(const minrun& r) {
    int place;
    return minflat(r) && (r.iteration < 2 || smallmove(r)) && minleast(r, place) >= 0;
}

// ---- the end of a step

void keepgoodpoint(minrun& r) {
    if (r.sw.backtracksw < 0 || !(r.fprev - r.f > 0.002 * std::fabs(r.f)) || !(r.f < r.fgood)) return;
    r.xgood = r.x;
    r.fgood = r.f;
    r.goodat = r.iteration;
    r.goodalfa = r.alfa;
    r.justbacktracked = false;
}

// False when the descent has been slow for too long.
bool ratetest(minrun& r) {
    if (r.fprev - r.f < std::fabs(r.f) * r.sw.ftol) {
        if (r.sw.stochsw && r.samples < long(r.sw.ssize) << r.sw.maxsize) r.samples *= 2;
        return ++r.slowcount <= MINMAXSLOW;
    }
    keepgoodpoint(r);
    r.slowcount = 0;
    r.stage = 0;
    return true;
}

nextstep nexthessian(minrun& r) {
    if (r.sw.gradsw != 0) return NEXTITERATION;
    if (r.sw.newhess < 0 || r.iteration - r.hessianat <= r.sw.newhess) {
        minbfgs(r);
        return NEXTITERATION;
    }
    double move = 0;
    for (size_t i = 0; i < r.x.size(); i++) move += (r.x[i] - r.xprev[i]) * (r.x[i] - r.xprev[i]);
    r.hessfloor = move > 0 ? std::min(1e-6, 1e-6 / move) : 1e-6;
    return NEWHESSIAN;
}

nextstep endofstep(minrun& r, const linesearch& l) {
    r.changes = 0;
    const bool blocked = l.row >= 0 && l.alpha >= l.most * (1 - 1e-12) && minadd(r, l.row);
    if (blocked) minevaluate(r, r.x);
    if (!ratetest(r)) return mindelete(r) ? NEWHESSIAN : end(r, MINSLOW);
    // a row is let go where the free variables have little more to gain
    if (blocked || (minflat(r) && mindelete(r))) return NEWHESSIAN;
    return nexthessian(r);
}

// ---- trials

nextstep backtobase(minrun& r, linesearch& l) {
    r.x = l.base;
    r.f = l.f0;
    if (l.advanced) { // the base is a good step itself
        mingradients(r);
        l.alpha = 0;
        return endofstep(r, l);
    }
    r.g = r.gprev;
    tofree(r, r.g, r.reduced);
    return minnodescent(r);
}

/* The decrease that the quadratic model promises: the direction is that of the inverse Hessian, so s'Gs is
 * minus the slope. */
double predicted(const linesearch& l) { return -l.slope * l.alpha * (1 - 0.5 * l.alpha); }

/* Is the inverse Hessian good enough for constraints to be trusted to it? LINESEARCH: it is, and f is the
 * value of the trial. */
nextstep taylortest(minrun& r, linesearch& l, double& f) {
    for (;; l.alpha *= 0.2) {
        moveto(r, l);
        f = minvalue(r, r.x);
        if (f < MAXPOS) break;
        if (l.alpha * norm(r.s) < LEASTSTEP) return backtobase(r, l);
    }
    if (f <= MAXNEG) return end(r, MINUNBOUNDED);
    const double promised = predicted(l), rounding = 1e-13 * std::fabs(f);
    const double ratio = promised > rounding ? (l.f0 - f) / promised : 1;
    if (ratio >= 0.25 && ratio <= 4) {
        if (reports(r, 64)) tarnprint("TST: reset scale index to -2\n");
        r.scaleindex = -2;
        return LINESEARCH;
    }
    if (reports(r, 64)) tarnprint("Taylor Series Test: reset scale index to 2\n");
    r.x = l.base;
    r.f = l.f0;
    if (r.bfgscount > 0) minhessian(r);
    r.scaleindex = 2;
    r.lastreset = r.iteration;
    return minscale(r);
}

// A trial that lowers the value enough. LINESEARCH: it falls ever steeper, the search goes on from here.
nextstep goodtrial(minrun& r, linesearch& l, double f) {
    r.f = f;
    mingradients(r);
    if (converged(r)) return end(r, MINCONVERGED);
    if (minnoisehides(r)) return end(r, MINSPREAD);
    const double slope = dot(r.s, r.g), left = l.most - l.alpha;
    if (slope >= l.slope || l.interpolated || l.count >= MOSTTRIALS || !(left > 0) || 2 * l.alpha > 1e10)
        return endofstep(r, l);
    l.base = r.x;
    l.f0 = f;
    l.slope = slope;
    l.most = left;
    l.alpha = std::min(2 * l.alpha, left);
    l.advanced = true;
    return LINESEARCH;
}

nextstep trial(minrun& r, linesearch& l, double length, double f) {
    if (f >= MAXPOS) { // outside the function's domain
        l.alpha *= 0.5;
        return l.alpha * norm(r.s) >= LEASTSTEP ? LINESEARCH : backtobase(r, l);
    }
    if (f <= MAXNEG) return end(r, MINUNBOUNDED);
    if (length < LEASTSTEP && r.sw.backtracksw != -2) return backtobase(r, l);
    l.count++;
    if (reports(r, 256)) tarnprint("search %d, step length %e\n", l.count, std::sqrt(length));
    const double c = f - l.f0 - std::min(l.alpha, 1.0) * std::max(l.slope, -1.0) * 0.0001;
    if (c < 0) return goodtrial(r, l, f);
    return shorten(r, l, f) ? LINESEARCH : backtobase(r, l);
}

nextstep search(minrun& r, linesearch& l) {
    const bool tested = r.sw.gradsw == 0 && !r.active.empty() && r.scaleindex == -1;
    double f = 0;
    if (tested) {
        const nextstep next = taylortest(r, l, f);
        if (next != LINESEARCH) return next;
    }
    for (int k = 0; k < ENDOFTRIALS; k++) {
        if (minpolled(r)) {
            r.x = l.base;
            r.f = l.f0;
            return ENDED;
        }
        const double length = moveto(r, l);
        if (!r.active.empty()) minrelax(r);
        if (k > 0 || !tested) f = minvalue(r, r.x);
        const nextstep next = trial(r, l, length, f);
        if (next != LINESEARCH) return next;
    }
    return backtobase(r, l);
}

} // namespace

bool minpolled(minrun& r) {
    const bool toggled = parser.reporttoggle;
    keypoll();
    if (parser.reporttoggle != toggled) r.sw.reptsw = r.sw.reptsw == 1023 ? 512 : 1023;
    if (!parser.interrupted) return false;
    tarnprint("MINIMIZE INTERRUPTED BY Q\n");
    r.ecode = MININTERRUPTED;
    return true;
}

bool minflat(const minrun& r) {
    const double limit = r.sw.stochsw       ? std::min(r.sw.gtol, r.spread) * 100 * r.n
                         : r.active.empty() ? r.sw.gtol
                                            : 10 * r.sw.gtol;
    return largest(r.reduced) <= limit;
}

bool minnoisehides(const minrun& r) {
    return r.sw.stochsw && r.gradientnoise > 0 && r.gradientnoise < r.sw.critical;
}

nextstep minsearch(minrun& r) {
    tofull(r, r.d, r.s);
    const double slope = dot(r.s, r.g);
    r.xprev = r.x;
    r.gprev = r.g;
    r.fprev = r.f;
    if (!(slope < 0)) return minnodescent(r);
    int row = -1;
    const double most = minmaxstep(r, row);
    if (row < 0 || most > 1e-9) {
        linesearch l{r.x, r.f, slope, std::min(most, 1.0), most, row};
        return search(r, l);
    }
    if (!minadd(r, row)) {
        r.depends[size_t(row)] = 1;
        return NEXTITERATION;
    }
    minevaluate(r, r.x);
    return NEWHESSIAN;
}
