/* A second try at a fit that went astray. The sweep of damping factors takes any step that lowers the sum of
 * squares, also one that leads to where the model is flat. Here a step must keep what the linear model
 * promises: the damping follows the ratio of the two (H. B. Nielsen, Damping Parameter in Marquardt's Method,
 * IMM-REP-1999-05, Technical University of Denmark), and each parameter is damped by the most that it has
 * ever mattered (J. J. More, Numerical Analysis, Lecture Notes in Mathematics 630 (1978) 105). Steps bend
 * with the valley, and are refused where it bends more than they go (M. K. Transtrum, J. P. Sethna,
 * arXiv:1201.5885 (2012)). */
#include "funcs/vectorloops.h"
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "solvers/fitrun.h"
#include "solvers/precise.h"

#include <algorithm>
#include <cmath>

namespace {

// Valleys differ in which of these ways gets along them.
struct manner {
    bool bends;     // steps follow the curve of the valley
    bool remembers; // parameters are damped by the most that they ever mattered, not by what they do now
};
constexpr manner manners[] = {{true, true}, {false, true}, {true, false}};

struct caution {
    manner how;
    double damping, growth;
    std::vector<double> scale; // of the damping, by parameter
    precisenormal normal;
    precisefactor factor;
};

constexpr double LARGESTDAMPING = 1e20, LEASTRATIO = 1e-3, MOSTBEND = 0.75, CAREFULPIVOT = 1e-14;

/* Adds to the step v from p0 to p what the model bends along it, in terms of the parameters. False where it
 * bends too much. */
bool bend(fitrun& r, const caution& c) {
    constexpr double along = 0.1;
    const size_t n = size_t(r.n), m = size_t(r.m);
    std::vector<double> v(n), near(n), g(n), a(n);
    for (size_t j = 0; j < n; j++) {
        v[j] = r.p[j] - r.p0[j];
        near[j] = r.p0[j] + along * v[j];
    }
    if (!(fitsosq(r, near, 2) < MAXPOS)) return false;
    double* bent = r.ftrial; // minus the second derivative along v, weighted
    for (size_t i = 0; i < m; i++) bent[i] = (bent[i] - r.fbest[i]) / along;
    for (size_t j = 0; j < n; j++) axpy(m, -v[j], r.jac + j * m, bent);
    for (size_t i = 0; i < m; i++) bent[i] *= -2 / along * r.w[i];
    for (size_t j = 0; j < n; j++) g[j] = dotproduct(m, r.jac + j * m, bent);
    a = precisesolve(c.factor, std::vector<dd>(g.begin(), g.end()));
    double bends = 0, goes = 0;
    for (size_t j = 0; j < n; j++) {
        bends += c.scale[j] * a[j] * a[j];
        goes += c.scale[j] * v[j] * v[j];
        r.p[j] += a[j] / 2;
    }
    return bends <= MOSTBEND * MOSTBEND * goes;
}

/* Under constraints the step is that of the iteration; else it has all digits that dependence leaves it.
 * Returns what the linear model promises for it: without constraints from J'WJ d = g - added d, which loses
 * no digits. */
double carefulstep(fitrun& r, caution& c) {
    const size_t n = size_t(r.n);
    std::vector<double> added(n);
    for (size_t j = 0; j < n; j++) added[j] = c.damping * c.scale[j];
    if (r.cons.count > 0) {
        for (size_t j = 0; j < n; j++) r.damped[j] = r.ptpdia[j] + added[j];
        dampedstep(r);
        fitconstrain(r, false);
        return promisedgain(r);
    }
    c.factor = precisefactors(c.normal, added);
    const std::vector<double> step = precisesolve(c.factor, c.normal.gradient);
    double gain = 0;
    for (size_t j = 0; j < n; j++) {
        r.p[j] = r.p0[j] + step[j];
        gain += step[j] * (c.normal.gradient[j].hi + added[j] * step[j]);
    }
    return gain;
}

nextmove carefulprobe(fitrun& r, caution& c) {
    const double promised = carefulstep(r, c);
    if (!(promised > r.sw.tolsos * r.oldsosq)) return finished(r);
    const bool serves = r.cons.count > 0 || !c.how.bends || bend(r, c);
    const double sos = serves ? fitsosq(r, r.p, 2, true) : MAXPOS;
    reportprobe(r, c.damping, sos, false);
    const double ratio = (r.oldsosq - sos) / promised;
    if (ratio > LEASTRATIO) {
        improves(r, sos);
        c.damping *= std::max(1.0 / 3, 1 - std::pow(2 * ratio - 1, 3));
        c.growth = 2;
        return finished(r);
    }
    c.damping *= c.growth;
    c.growth *= 2;
    return c.damping > LARGESTDAMPING ? finished(r) : SEARCHON;
}

nextmove carefuliteration(fitrun& r, caution& c) {
    beginiteration(r);
    if (r.cons.count == 0) c.normal = precisesums(r);
    for (size_t j = 0; j < size_t(r.n); j++)
        c.scale[j] = c.how.remembers ? std::max(c.scale[j], r.ptpdia[j]) : r.ptpdia[j];
    nextmove move;
    do move = carefulprobe(r, c);
    while (move == SEARCHON);
    return move;
}

// Takes up a point again, with the model's values and derivatives there.
void goback(fitrun& r, const fitattempt& to) {
    r.p = r.pbest = to.p;
    r.lagrange = r.lagrangebest = to.lagrange;
    fitweights(r, true);
    fitsosq(r, r.p, 2, true);
    std::swap(r.fbest, r.ftrial);
    r.bestsosq = to.sosq;
    r.bestfaults = to.faults;
    r.iteration = to.iteration;
    r.converged = to.converged;
    r.lowered = to.lowered;
}

// Whether a parameter that mattered at the start matters no more.
bool lostparameter(const fitrun& r, const std::vector<double>& sensitivity) {
    constexpr double gone = 1e-30;
    for (size_t j = 0; j < size_t(r.n); j++)
        if (r.ptpdia[j] < gone * sensitivity[j]) return true;
    return false;
}

// Whether the end is a minimum, not a place on a long way.
bool settled(const fitrun& r, const std::vector<double>& sensitivity) {
    constexpr double determined = 1e9;
    if (r.converged != 1 || lostparameter(r, sensitivity)) return false;
    const size_t n = size_t(r.n);
    const std::vector<double> inverse = preciseinverse(precisefactors(precisesums(r), {}));
    for (size_t j = 0; j < n; j++)
        if (inverse[j * n + j] * r.ptpdia[j] > determined) return false;
    return true;
}

} // namespace

fitattempt thisattempt(const fitrun& r) {
    return {r.pbest, r.lagrangebest, r.bestsosq, r.bestfaults, r.iteration, r.converged, r.lowered};
}

bool astray(const fitrun& r, const fitattempt& start, const std::vector<double>& sensitivity) {
    constexpr int manyiterations = 50;
    if (parser.interrupted || r.sw.maxiter <= 0 || r.sw.norm != 2 || start.sosq >= MAXPOS) return false;
    if (r.bestfaults > start.faults || lostparameter(r, sensitivity)) return true;
    return r.converged != 1 && r.iteration >= manyiterations;
}

bool carefulfit(fitrun& r, const fitattempt& start, const std::vector<double>& sensitivity) {
    const fitattempt first = thisattempt(r);
    fitattempt best = first;
    bool better = false, last = false;
    r.faultlimit = start.faults;
    r.pivottol = CAREFULPIVOT;
    for (const manner& how : manners) {
        goback(r, start);
        caution c{how, 1e-4, 2, {}, {}, {}};
        c.scale.assign(size_t(r.n), 0);
        while (carefuliteration(r, c) != STOP) {}
        last = r.lowered && r.bestsosq < best.sosq;
        if (last) best = thisattempt(r), better = true;
        if (parser.interrupted || settled(r, sensitivity)) break;
    }
    r.faultlimit = ~0U;
    r.pivottol = PIVOTTOL;
    if (last) return true;
    const bool pressed = parser.interrupted; // the way back is still wanted
    parser.interrupted = false;
    goback(r, better ? best : first);
    fitjacobian(r);
    parser.interrupted = pressed;
    return better;
}
