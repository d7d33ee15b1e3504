#include "solvers/minsolve.h"

#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

namespace {

// What an iteration asks for next.
enum nextstep { LINESEARCH, NEWHESSIAN, NEXTITERATION, ENDED };

struct minloop {
    minrun& r;
    minexit ecode = MINCONVERGED;
    bool interrupted = false;

    nextstep end(minexit code) {
        ecode = code;
        return ENDED;
    }
};

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

void scaledgradient(minrun& r) {
    mingradient(r, r.x, r.g);
    if (r.sw.preconditionsw == 2)
        for (size_t i = 0; i < r.g.size(); i++) r.g[i] *= r.scale[i];
    tofree(r, r.g, r.reduced);
}

// True when Q was pressed.
bool polled(minloop& m) {
    const bool toggled = parser.reporttoggle;
    keypoll();
    if (parser.reporttoggle != toggled) m.r.sw.reptsw = m.r.sw.reptsw == 1023 ? 512 : 1023;
    if (!parser.interrupted) return false;
    if (!m.interrupted) tarnprint("MINIMIZE INTERRUPTED BY Q\n");
    return m.interrupted = true;
}

void reportiteration(const minrun& r) {
    if (!reports(r, 4)) return;
    tarnprint("\nbegin iteration %d\nx: ", r.iteration);
    for (double v : r.x) tarnprint("%7.6e ", v);
    tarnprint("f(x): %7.6e\n", r.f);
    tarnprint("g(x): ");
    for (double v : r.g) tarnprint("%7.6e ", v);
    tarnprint("\n");
}

double gradientlimit(const minrun& r) {
    if (r.sw.stochsw) return std::max(r.sw.gtol, r.spread) * 100 * r.n;
    return r.active.empty() ? r.sw.gtol : 10 * r.sw.gtol;
}

// ---- the direction

void downhill(minrun& r) {
    r.d.resize(r.reduced.size());
    for (size_t i = 0; i < r.d.size(); i++) r.d[i] = -r.reduced[i];
}

void newtondirection(minrun& r) {
    const size_t nf = r.reduced.size();
    r.d.assign(nf, 0);
    for (size_t i = 0; i < nf; i++)
        for (size_t j = 0; j < nf; j++) r.d[i] -= r.H[i * nf + j] * r.reduced[j];
}

// Polak and Ribiere; a direction that does not descend starts again from the gradient.
void conjugatedirection(minrun& r) {
    downhill(r);
    if (r.conjugate.size() == r.d.size() && r.reducedprev.size() == r.d.size() &&
        r.iteration % (r.n + 1) != 0) {
        double up = 0;
        for (size_t i = 0; i < r.d.size(); i++) up += (r.reduced[i] - r.reducedprev[i]) * r.reduced[i];
        const double beta = std::max(0.0, up / std::max(dot(r.reducedprev, r.reducedprev), 1e-300));
        for (size_t i = 0; i < r.d.size(); i++) r.d[i] += beta * r.conjugate[i];
        if (dot(r.d, r.reduced) >= 0) downhill(r);
    }
    r.conjugate = r.d;
    r.reducedprev = r.reduced;
}

double cosine(const minrun& r) {
    const double gm = largest(r.reduced), dm = largest(r.d);
    double gd = 0, gg = 0, dd = 0;
    for (size_t i = 0; i < r.d.size(); i++) {
        const double g = r.reduced[i] / gm, d = r.d[i] / dm;
        gd += g * d;
        gg += g * g;
        dd += d * d;
    }
    return gd / std::sqrt(gg * dd);
}

// More weight on the diagonal turns a poor direction towards the gradient.
void repairdiagonal(minrun& r) {
    const size_t nf = r.reduced.size();
    const double ratio = norm(r.d) / norm(r.reduced), a = r.alfa;
    const double m = a < 0.2 ? (0.2 * std::sqrt((1 - a * a) / 0.96) + a) * ratio : 2 * a * ratio;
    if (!(m > 0)) return;
    for (size_t i = 0; i < nf; i++) {
        const double scale = r.active.empty() ? r.scale[i] : 1;
        r.H[i * nf + i] += m / (scale * scale);
        r.d[i] -= m * r.reduced[i];
    }
    if (reports(r, 64)) tarnprint("alfa: modifying diagonal of inverse Hessian.\n");
}

// Keeps only a sane diagonal of the inverse Hessian.
void condition(minrun& r) {
    if (reports(r, 64)) tarnprint("conditioning inverse Hessian.\n");
    const size_t nf = size_t(r.nfree());
    std::vector<double> freex;
    tofree(r, r.x, freex);
    double lo = MAXPOS, hi = 0;
    for (size_t i = 0; i < nf; i++) {
        lo = std::min(lo, std::fabs(r.H[i * nf + i]));
        hi = std::max(hi, std::fabs(r.H[i * nf + i]));
    }
    for (size_t i = 0; i < nf; i++) {
        const double X = std::max(std::fabs(freex[i]), 1.0), G = std::max(std::fabs(r.reduced[i]), 1.0);
        const double k = std::max(r.scaleindex, 1);
        const double a = std::cbrt(std::fabs(r.H[i * nf + i])) * std::cbrt(lo) * std::cbrt(hi);
        const double b = std::max(3 - k, 0.0) * 10 * std::sqrt(X) / G, c = k * 0.001 * X / G;
        const double entry = std::max(c, std::min(a, b));
        for (size_t j = 0; j < nf; j++) r.H[i * nf + j] = 0;
        r.H[i * nf + i] = entry;
    }
    r.bfgscount = 0;
}

/* The state of the inverse Hessian: -2 trusted, -1 trusted under a test against the Taylor series, above 0
 * bad. */
void judgescale(minrun& r) {
    if (r.scaleindex < 0) {
        if (r.sw.preconditionsw == -1) return;
        const size_t nf = size_t(r.nfree());
        double lo = MAXPOS, hi = 0;
        for (size_t i = 0; i < nf; i++) {
            lo = std::min(lo, std::fabs(r.H[i * nf + i]));
            hi = std::max(hi, std::fabs(r.H[i * nf + i]));
        }
        const double ratio = hi == 0   ? 1
                             : lo == 0 ? MAXPOS
                                       : hi / lo / std::max(std::fabs(r.sw.preconditionsw), 1e-6);
        const bool sane = r.sw.preconditionsw != 0 && ratio < std::pow(10, std::min(r.nfree() + 2, 10));
        r.scaleindex = !sane ? 2 : r.nfree() >= 2 && ratio >= 400.0 * (r.nfree() - 1) ? -1 : -2;
        if (reports(r, 64)) tarnprint("setting inverse Hessian scale index: %d\n", r.scaleindex);
    }
    if (r.scaleindex > 0) condition(r);
}

// A step beyond all measure of those before it means that the updates have gone wrong.
bool absurdstep(minrun& r) {
    const double length = norm(r.d);
    if (r.bfgscount == 0) return false;
    if (r.bfgscount < 4) {
        if (r.avgstep > 0 && length > 5000 * r.avgstep / r.bfgscount + 5) return true;
        r.avgstep = r.avgstep > 0 ? (r.avgstep + length) / 2 : length;
        return false;
    }
    if (length > r.n * r.avgstep * 37.5 + 5) return true;
    r.avgstep = 0.75 * r.avgstep + 0.25 * length;
    return false;
}

void resetscale(minrun& r) {
    if (reports(r, 64)) tarnprint("alfa: reset scale index to %d\n", 2);
    r.lastreset = r.iteration;
    r.scaleindex = 2;
    r.slowcount = 0;
    judgescale(r);
    newtondirection(r);
    r.scaleindex = -2;
}

nextstep checkdirection(minloop& m) {
    minrun& r = m.r;
    if (largest(r.reduced) == 0) return r.active.empty() ? m.end(MINCONVERGED) : LINESEARCH;
    if (largest(r.d) == 0) downhill(r);
    r.alfa = cosine(r);
    if (r.iteration == 1 && norm(r.d) < r.nfree() * 1e-15) {
        if (norm(r.reduced) < std::sqrt(r.nfree()) * r.sw.gtol) return m.end(MINCONVERGED);
        if (reports(r, 8)) tarnprint("inverse Hessian = I in 1st iteration\n");
        minidentity(r);
        downhill(r);
        r.alfa = -1;
        return LINESEARCH;
    }
    if (absurdstep(r)) return NEWHESSIAN;
    if ((r.bfgscount == 0 && r.scaleindex > 0) || r.alfa <= -0.2) return LINESEARCH;
    if (r.alfa >= 0 && r.scaleindex > -2) {
        resetscale(r);
        return LINESEARCH;
    }
    if (r.alfa < 0 && r.slowcount < 2) return LINESEARCH;
    if (r.slowcount >= 2 && r.iteration - r.lastreset >= 10)
        resetscale(r);
    else
        repairdiagonal(r);
    return LINESEARCH;
}

nextstep direction(minloop& m) {
    minrun& r = m.r;
    tofree(r, r.g, r.reduced);
    if (r.sw.gradsw == 1 && r.active.empty())
        conjugatedirection(r);
    else if (r.sw.gradsw != 0)
        downhill(r);
    else {
        newtondirection(r);
        return checkdirection(m);
    }
    r.alfa = -1;
    return largest(r.reduced) == 0 && r.active.empty() ? m.end(MINCONVERGED) : LINESEARCH;
}

// ---- ways out when no direction descends

bool maybacktrack(const minrun& r) {
    if (r.sw.backtracksw == 0) return true;
    const int since = r.iteration - r.goodat;
    return r.sw.backtracksw != -1 && r.nfree() != 1 && !r.justbacktracked &&
           (since < 7 || since * std::fabs(r.goodalfa) <= 0.25) && since < 17 &&
           (since < 5 || r.active.empty());
}

void evaluateat(minrun& r, const std::vector<double>& x) {
    r.x = x;
    r.f = minvalue(r, r.x);
    scaledgradient(r);
}

void backtrack(minrun& r) {
    tarnprint("Backtracking to start of iteration %d\n", r.goodat);
    tarnprint("The x vector is:\n");
    for (double v : r.xgood) tarnprint("%f\n", v);
    if (reports(r, 8)) tarnprint("inverse Hessian = I in backtrack.\n");
    evaluateat(r, r.xgood);
    std::fill(r.scale.begin(), r.scale.end(), 1.0);
    minidentity(r);
    r.justbacktracked = true;
    r.backtracks++;
    r.goodat = r.iteration;
}

/* The direction does not descend: at the end of a search that is how a minimum looks. */
nextstep nodescent(minloop& m) {
    minrun& r = m.r;
    tofree(r, r.g, r.reduced);
    if (largest(r.reduced) <= gradientlimit(r)) {
        int place;
        if (r.active.empty() || minleast(r, place) >= 0 || place < 0) return m.end(MINCONVERGED);
        mindelete(r, place);
        return NEWHESSIAN;
    }
    if (r.sw.backtracksw == -2) return m.end(MINSMALLSTEP);
    int place = -1;
    if (!r.active.empty() && minleast(r, place) < 0 && place >= 0) {
        mindelete(r, place);
        return NEWHESSIAN;
    }
    r.stage++;
    if (r.stage == 1 && r.sw.gradsw == 0 && r.sw.hessmsw != 0) return NEWHESSIAN;
    if (r.stage <= 2 && maybacktrack(r) && r.active.empty() && r.fgood < r.f) {
        backtrack(r);
        return NEXTITERATION;
    }
    if (r.stage <= 2) {
        if (reports(r, 8)) tarnprint("Steepest descending: inverse Hessian = I\n");
        minidentity(r);
        r.scaleindex = -2;
        return NEXTITERATION;
    }
    if (r.stage == 3 && r.fbest < r.f) {
        evaluateat(r, r.xbest);
        minidentity(r);
        return NEXTITERATION;
    }
    return m.end(MINSMALLSTEP);
}

// ---- the line search

struct trials {
    double alpha, f;                // this trial
    double before = 0, fbefore = 0; // the one before it, when there was one
    int count = 0;
    bool interpolated = false;
};

void moveto(minrun& r, double alpha) {
    for (size_t i = 0; i < r.x.size(); i++) r.x[i] = r.xprev[i] + alpha * r.scale[i] * r.s[i];
}

/* The minimum of the cubic through two failed trials, of the parabola through one; within 0.05 and 0.95 of
 * the last. */
double interpolatedstep(const trials& t, double f0, double slope) {
    double next;
    const double a1 = t.alpha, r1 = t.f - f0 - slope * a1;
    if (!t.interpolated) {
        next = -slope * a1 * a1 / (2 * r1);
    } else {
        const double a2 = t.before, r2 = t.fbefore - f0 - slope * a2;
        const double a = (r1 / (a1 * a1) - r2 / (a2 * a2)) / (a1 - a2);
        const double b = (-a2 * r1 / (a1 * a1) + a1 * r2 / (a2 * a2)) / (a1 - a2);
        const double root = b * b - 3 * a * slope;
        if (a == 0 || root < 0)
            next = -slope * a1 * a1 / (2 * r1);
        else
            next = b <= 0 ? (-b + std::sqrt(root)) / (3 * a) : -slope / (b + std::sqrt(root));
    }
    return std::isfinite(next) ? std::clamp(next, 0.05 * a1, 0.95 * a1) : 0.5 * a1;
}

bool smallmove(const minrun& r) {
    const double factor = r.sw.stochsw ? 10 : 1;
    for (size_t i = 0; i < r.x.size(); i++)
        if (!(std::fabs(r.x[i] - r.xprev[i]) < (std::fabs(r.x[i]) + 1) * r.sw.xtol * factor)) return false;
    return true;
}

bool converged(minloop& m) {
    minrun& r = m.r;
    if (largest(r.reduced) > gradientlimit(r)) return false;
    if (r.iteration >= 2 && !smallmove(r)) return false;
    int place;
    return r.active.empty() || minleast(r, place) >= 0 || place < 0;
}

void bfgs(minrun& r) {
    const size_t nf = size_t(r.nfree());
    std::vector<double> p(r.x.size()), q(r.x.size()), v, w;
    for (size_t i = 0; i < p.size(); i++) {
        p[i] = (r.x[i] - r.xprev[i]) / r.scale[i];
        q[i] = r.g[i] - r.gprev[i];
    }
    tofree(r, p, v);
    tofree(r, q, w);
    const double ys = dot(v, w);
    if (!(ys > 1e-14 * norm(v) * norm(w))) return; // the update would lose positive definiteness
    std::vector<double> hw(nf, 0);
    for (size_t i = 0; i < nf; i++)
        for (size_t j = 0; j < nf; j++) hw[i] += r.H[i * nf + j] * w[j];
    const double factor = (1 + dot(w, hw) / ys) / ys;
    for (size_t i = 0; i < nf; i++)
        for (size_t j = 0; j < nf; j++)
            r.H[i * nf + j] += factor * v[i] * v[j] - (v[i] * hw[j] + hw[i] * v[j]) / ys;
    r.bfgscount++;
    if (reports(r, 64)) tarnprint("BFGS-updating inverse Hessian.\n");
}

// The rate of descent, the point to come back to, the Hessian of the next iteration.
nextstep endofstep(minloop& m, bool blocked, int row) {
    minrun& r = m.r;
    r.stage = 0;
    if (r.fprev - r.f < std::fabs(r.f) * r.sw.ftol) {
        if (++r.slowcount > MINMAXSLOW) return m.end(MINSLOW);
        if (r.sw.stochsw && r.samples < long(r.sw.ssize) << std::max(r.sw.maxsize, 0)) r.samples *= 2;
    } else {
        if (r.sw.backtracksw >= 0 && r.fprev - r.f > 0.002 * std::fabs(r.f) && r.f < r.fgood) {
            r.xgood = r.x;
            r.fgood = r.f;
            r.goodat = r.iteration;
            r.goodalfa = r.alfa;
            r.justbacktracked = false;
        }
        r.slowcount = 0;
    }
    if (blocked && minadd(r, row)) {
        r.f = minvalue(r, r.x);
        scaledgradient(r);
        return NEWHESSIAN;
    }
    int place = -1;
    if (!r.active.empty() && largest(r.reduced) <= gradientlimit(r) && minleast(r, place) < 0 && place >= 0) {
        mindelete(r, place);
        return NEWHESSIAN;
    }
    if (r.sw.gradsw != 0) return NEXTITERATION;
    if (r.sw.newhess < 0 || r.bfgscount < r.sw.newhess) {
        bfgs(r);
        return NEXTITERATION;
    }
    double move = 0;
    for (size_t i = 0; i < r.x.size(); i++) move += (r.x[i] - r.xprev[i]) * (r.x[i] - r.xprev[i]);
    r.hessfloor = move > 0 ? std::min(1e-6, 1e-6 / move) : 1e-6;
    return NEWHESSIAN;
}

bool spreadends(const minrun& r) {
    if (!r.sw.stochsw || r.spread <= 0 || r.iteration < 3) return false;
    // what is left of the descent, measured in the spread of the means
    const double left = std::fabs(r.fprev - r.f) / std::max(std::fabs(r.f), 1e-12) / r.spread;
    return left * left < r.sw.critical && r.samples >= long(r.sw.ssize) << std::max(r.sw.maxsize, 0);
}

nextstep goodtrial(minloop& m, trials& t, double slope, double most, int row, bool& extend) {
    minrun& r = m.r;
    scaledgradient(r);
    extend = false;
    if (converged(m)) return m.end(MINCONVERGED);
    if (spreadends(r)) return m.end(MINSPREAD);
    const double newslope = dot(r.s, r.g);
    const bool blocked = row >= 0 && t.alpha >= most * (1 - 1e-12);
    if (newslope < slope && !t.interpolated && t.count < 21 && !blocked &&
        2 * t.alpha <= std::min(most, 1e10)) {
        extend = true; // it falls ever steeper
        return LINESEARCH;
    }
    return endofstep(m, blocked, row);
}

// Shorter after a failed trial; false when the step has become nothing.
bool shorten(const minrun& r, trials& t, double f0, double slope, double f) {
    t.f = f;
    const double next = f >= MAXPOS ? 0.5 * t.alpha : interpolatedstep(t, f0, slope);
    if (f < MAXPOS) {
        t.before = t.alpha;
        t.fbefore = f;
        t.interpolated = true;
    }
    t.alpha = next;
    return t.alpha * norm(r.s) >= 1e-15;
}

nextstep backtostart(minloop& m) {
    minrun& r = m.r;
    r.x = r.xprev;
    r.f = r.fprev;
    r.g = r.gprev;
    return r.sw.backtracksw == -2 ? m.end(MINSMALLSTEP) : nodescent(m);
}

nextstep search(minloop& m, double slope, double most, int row) {
    minrun& r = m.r;
    trials t{std::min(most, 1.0), 0};
    double lastgood = 0, fgood = 0;
    for (t.count = 1; t.count < 200; t.count++) {
        if (polled(m)) return m.end(MINCONVERGED);
        moveto(r, t.alpha);
        if (reports(r, 256)) tarnprint("search %d, step length %e\n", t.count, t.alpha);
        const double f = minvalue(r, r.x);
        if (f <= MAXNEG) return m.end(MINUNBOUNDED);
        if (lastgood > 0 && !(f < fgood)) { // the extension went too far: the trial before it is the step
            moveto(r, t.alpha = lastgood);
            r.f = fgood;
            scaledgradient(r);
            return endofstep(m, false, row);
        }
        const double c = f - r.fprev - std::min(t.alpha, 1.0) * std::max(slope, -1.0) * 0.0001;
        if (!(c < 0) || f >= MAXPOS) {
            if (!shorten(r, t, r.fprev, slope, f)) return backtostart(m);
            continue;
        }
        r.f = f;
        bool extend;
        const nextstep next = goodtrial(m, t, slope, most, row, extend);
        if (!extend) return next;
        lastgood = t.alpha;
        fgood = f;
        t.alpha *= 2;
    }
    return backtostart(m);
}

nextstep linesearch(minloop& m) {
    minrun& r = m.r;
    tofull(r, r.d, r.s);
    const double slope = dot(r.s, r.g);
    if (!(slope < 0)) return nodescent(m);
    int row = -1;
    const double most = minmaxstep(r, row);
    if (row >= 0 && most <= 1e-9) {
        if (!minadd(r, row)) return m.end(MINSMALLSTEP);
        r.f = minvalue(r, r.x);
        scaledgradient(r);
        return NEWHESSIAN;
    }
    r.xprev = r.x;
    r.gprev = r.g;
    r.fprev = r.f;
    return search(m, slope, most, row);
}

// All variables are held by constraints: the end, unless one of them may be let go.
nextstep nofreedom(minloop& m) {
    int place;
    if (minleast(m.r, place) >= 0 || place < 0) return m.end(MINSMALLSTEP);
    mindelete(m.r, place);
    return NEWHESSIAN;
}

nextstep iterate(minloop& m) {
    minrun& r = m.r;
    if (r.iteration >= MINMAXIT) return m.end(MINITERATIONS);
    if (polled(m)) return m.end(MINCONVERGED);
    r.iteration++;
    if (r.iteration > MINMAXIT / 2 && r.hessfloor > 1e-12) r.hessfloor *= 0.1;
    reportiteration(r);
    if (r.nfree() == 0) return nofreedom(m);
    const nextstep next = direction(m);
    return next == LINESEARCH ? linesearch(m) : next;
}

void loop(minloop& m) {
    minrun& r = m.r;
    nextstep next = NEWHESSIAN;
    int hessians = 0;
    while (next != ENDED) {
        if (next == NEWHESSIAN && r.sw.gradsw == 0 && r.nfree() > 0) {
            // a run that only makes Hessians goes nowhere
            if (++hessians > 4 * MINMAXIT) return void(m.end(MINITERATIONS));
            r.scaleindex = -1;
            minhessian(r);
            judgescale(r);
            if (r.scaleindex > 0) r.scaleindex = -2;
        }
        next = iterate(m);
    }
}

bool start(minrun& r, const std::vector<double>& x) {
    const size_t n = size_t(r.n);
    r.x = r.xbest = r.xgood = r.xprev = x;
    r.g.assign(n, 0);
    r.scale.assign(n, 1);
    r.fbest = r.fgood = MAXPOS;
    r.samples = std::max(r.sw.ssize, r.sw.stochsw ? 2 : 1);
    if (r.sw.gradsw != 0) r.sw.preconditionsw = -2;
    for (int i = 0; i < r.cons.count; i++) { // rows of at most become rows of at least
        if (r.cons.type[size_t(i)] >= 0) continue;
        for (size_t j = 0; j < n; j++) r.cons.coef[size_t(i) * n + j] = -r.cons.coef[size_t(i) * n + j];
        r.cons.rhs[size_t(i)] = -r.cons.rhs[size_t(i)];
        r.cons.type[size_t(i)] = 1;
    }
    minbasis(r);
    if (r.cons.count > 0 && !minfeasible(r)) return false;
    r.f = minvalue(r, r.x);
    r.fgood = r.f;
    r.xgood = r.xbest = r.x;
    scaledgradient(r);
    return true;
}

minresult finish(minloop& m) {
    minrun& r = m.r;
    minresult result;
    const bool free = r.active.empty() && r.sw.gradsw == 0 && r.fbest >= r.f;
    // on constraints the last point stands exactly, the best one perhaps within their margin
    const double margin = r.active.empty() ? 0 : 1e-9 * std::max(std::fabs(r.f), 1.0);
    if (r.fbest < r.f - margin || m.ecode == MINUNBOUNDED) r.x = r.xbest;
    r.f = r.problem.value(r.problem.context, r.x.data());
    r.fevals++;
    mingradient(r, r.x, r.g);
    result.x = r.x;
    result.g = r.g;
    result.f = r.f;
    result.ecode = m.ecode;
    for (int row : r.active) result.active.push_back(row + 1);
    result.fevals = r.fevals;
    result.gevals = r.gevals;
    result.iterations = r.iteration;
    result.reptsw = r.sw.reptsw;
    result.interrupted = m.interrupted;
    if (free) result.hinverse = r.H;
    return result;
}

} // namespace

minresult minsolve(const minproblem& problem, const minswitches& switches,
                   const solverconstraints& constraints, const std::vector<double>& x) {
    minrun r(problem, switches, constraints);
    minloop m{r};
    if (!start(r, x))
        m.ecode = MININFEASIBLE;
    else if (r.f <= MAXNEG)
        m.ecode = MINUNBOUNDED;
    else
        loop(m);
    return finish(m);
}
