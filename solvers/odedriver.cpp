#include "solvers/odedriver.h"

#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

// No state is known better than to a few units in its last place: a smaller ERRFAC would end in steps of no
// length.
constexpr double LEASTTOLERANCE = 4 * DBL_EPSILON;

struct odejob {
    const odemodel& model;
    odeswitches sw;
    oderun& run;
    double errfac0;
    odejob(const odemodel& m, const odeswitches& switches, oderun& r)
        : model(m), sw(switches), run(r), errfac0(std::max(switches.errfac, LEASTTOLERANCE)) {}
    double hnominal = 0.1;
    int disasters = 0;   // times that the step could not shrink
    long forcedat = -10; // accepted steps when the solution was last forced on
    double stride = 10;  // steps that it is forced on by
    bool reporting = false;
    bool finished = false;
    std::vector<double> keptdy;
};

double along(const odejob& job, double t) { return t * job.run.dir; }

void derivative(odejob& job) {
    odestepper& s = job.run.s;
    job.run.nderiv++;
    job.model.deriv(job.model.context, s.tcur, s.y, s.dy);
}

void silence(const odejob& job) {
    if (job.model.silent) throw odegivenup{};
}

// Forward differences; a column for each state.
void numericjacobian(odejob& job) {
    odestepper& s = job.run.s;
    job.keptdy.assign(s.dy, s.dy + s.n);
    for (int i = 0; i < s.n; i++) {
        const double kept = s.y[i];
        double d = std::fabs(kept);
        if (d < 1e-8) d = 1e-7;
        d *= 0.005;
        s.y[i] += d;
        derivative(job);
        for (int k = 0; k < s.n; k++) s.jac[size_t(k) * s.n + i] = (s.dy[k] - job.keptdy[k]) / d;
        s.y[i] = kept;
    }
    std::copy(job.keptdy.begin(), job.keptdy.end(), s.dy);
}

void jacobian(odejob& job) {
    odestepper& s = job.run.s;
    job.run.njac++;
    s.jac.resize(size_t(s.n) * size_t(s.n / s.lanes));
    if (job.sw.report == 1 || job.sw.report == 2)
        tarnprint("t:%lg jacobian evaluation:%ld\n", s.tcur, job.run.njac);
    if (job.sw.jacsw == 1 && job.model.jacobian)
        return job.model.jacobian(job.model.context, s.tcur, s.y, s.dy, s.jac.data());
    silence(job);
    numericjacobian(job);
}

void finish(odejob& job) {
    if (job.finished) return;
    job.finished = true;
    const oderun& run = job.run;
    if (!job.reporting) return;
    tarnprint("t = %lg, # steps = %ld\n", run.s.tcur, run.s.steps);
    tarnprint(" # system derivative evaluations = %ld, ", run.nderiv);
    tarnprint("# jacobian evaluations = %ld\n", run.njac);
}

void reportstep(odejob& job) {
    const odestepper& s = job.run.s;
    if (job.sw.report != 1 && job.sw.report != 2) return;
    tarnprint("t: %lg step #: %ld step: %lg ", s.tcur, s.steps, s.h);
    tarnprint("%s\n", !s.stiff ? "adams" : s.method == ODETU ? "gear-tu" : "gear-shrager");
    if (job.sw.report != 2) return;
    for (int i = 0; i < s.n; i++) tarnprint("y, dy [%hd]: %lg, %lg\n", short(i + 1), s.y[i], s.dy[i]);
}

void stepdone(odejob& job) {
    odestepper& s = job.run.s;
    // a raised tolerance falls back by a factor of 10^0.2 on each good step
    if (s.errfac > job.errfac0) s.errfac = std::max(job.errfac0, 0.63095742 * s.errfac);
    const bool toggled = parser.reporttoggle;
    keypoll();
    if (parser.reporttoggle != toggled) {
        silence(job);
        job.sw.report = job.sw.report ? 0 : 2;
    }
    if (job.sw.report > 0) job.reporting = true;
    if (parser.interrupted) {
        tarnprint("INTEGRATE INTERRUPTED BY Q\n");
        job.run.interrupted = true;
        job.reporting = true;
        return finish(job);
    }
    reportstep(job);
}

void storerow(odejob& job) {
    oderun& run = job.run;
    const odestepper& s = run.s;
    double* row = &at(run.out, size_t(run.row) + 1, 1);
    *row++ = run.times[run.row];
    for (int i = 0; i < s.n; i++) {
        *row++ = s.y[i];
        *row++ = s.dy[i];
    }
    if (job.model.nextra) job.model.extras(job.model.context, s.tcur, s.y, s.dy, row);
    if (job.sw.report == 2) tarnprint("storing for t = %lg\n", run.times[run.row]);
    run.row++;
}

void turn(odejob& job) {
    silence(job);
    odestepper& s = job.run.s;
    s.request = ODESTART;
    job.run.dir = -job.run.dir;
    s.h = 0.5 * s.hlimit * job.run.dir;
    tarnprint("switching directions during integration\n");
}

void output(odejob& job) {
    oderun& run = job.run;
    odestepper& s = run.s;
    do storerow(job);
    while (run.row < run.ntimes && run.times[run.row] == s.tcur);
    if (run.row >= run.ntimes) {
        run.complete = true;
        return finish(job);
    }
    s.tout = run.times[run.row];
    if (!job.sw.mandatory) return;
    if (along(job, s.tout) < along(job, s.tlast)) turn(job);
    s.tend = s.tout;
}

/* Past a place that no step gets over: the solution is carried on unchanged, by ten steps; where the next try
 * fails at once again, by twice as many each time, so that a floor of tiny steps comes to an end. */
void force(odejob& job) {
    odestepper& s = job.run.s;
    job.stride = s.steps - job.forcedat <= 5 ? 2 * job.stride : 10;
    job.forcedat = s.steps;
    if (std::fabs(s.h) >= std::fabs(s.tcur - s.tout)) {
        s.tcur = s.tout;
    } else {
        s.tcur += job.stride * s.h;
        if (along(job, s.tcur) > along(job, s.tout)) s.tcur = s.tout;
    }
    if (job.sw.mandatory) s.tend = s.tout;
    s.request = ODESTART;
}

void constantstep(odejob& job) {
    odestepper& s = job.run.s;
    tarnprint("accuracy lost due to jump (lipshitz violation)\n");
    tarnprint("solution forced with constant stepsize\n");
    job.sw.disaster = 4;
    s.fixedstep = true;
    s.hmin = s.hlimit = 0.2 * job.hnominal;
    s.h = job.run.dir * s.hmin;
    s.absfloor *= 1000;
    s.errfac = 0.1;
    s.stiff = false;
    force(job);
}

void reportdisaster(const odejob& job) {
    const odestepper& s = job.run.s;
    tarnprint("\nt = %lg, errfac = %lg, ", s.tcur, s.errfac);
    const bool truncation = s.request == ODETRUNCFAIL;
    const double error = std::fabs(truncation ? s.truncerr : s.correrr); // what is no number has one look
    tarnprint("eqn # %hd, ", short(s.faileqn + 1));
    tarnprint(truncation ? "truncation error = %lg\n" : "corrector error = %lg\n", error);
}

void raisetolerance(odejob& job) {
    odestepper& s = job.run.s;
    tarnprint("tolerance will be increased in order to proceed ");
    tarnprint("with the deq solution. \n");
    if (s.errfac < 0.1) return;
    tarnprint("solution of deq system forced past a possible ");
    tarnprint("singularity near %lg.\n", s.tcur);
    tarnprint("accuracy may be lost\n");
    for (int i = 0; i < s.n; i++) tarnprint(" dy[%hd]: %lg\n", short(i + 1), s.dy[i]);
    force(job);
}

/* The step is at its floor. DISASTERSW tells what to do; the stepper goes on where its request is not
 * changed. */
void disaster(odejob& job) {
    silence(job);
    odestepper& s = job.run.s;
    int& mode = job.sw.disaster;
    if (mode == 4 || mode == 5) return force(job);
    if (mode < 0) {
        s.errfac *= 10;
        if (mode != -1 || s.errfac <= 1.2) {
            if (s.errfac >= 0.1) force(job);
            return;
        }
        mode = 0;
    }
    reportdisaster(job);
    if (mode >= 6) return force(job);
    s.errfac *= 10;
    job.disasters++;
    if ((mode == 0 && s.errfac > 1.2) || (mode == 2 && job.disasters >= 6)) {
        tarnprint("terminating deq solution\n");
        return finish(job);
    }
    if ((mode == 1 && s.errfac > 1.2) || (mode == 3 && job.disasters >= 6)) return constantstep(job);
    raisetolerance(job);
}

void serve(odejob& job) {
    switch (job.run.s.request) {
    case ODEDERIV: return derivative(job);
    case ODEJACOBIAN: return jacobian(job);
    case ODESTEPDONE: return stepdone(job);
    case ODEOUTPUT:
    case ODELAST: return output(job);
    case ODETRUNCFAIL:
    case ODECORRFAIL: return disaster(job);
    default: return finish(job);
    }
}

// The distance to the first output time away from the start; sets the direction.
double firstdistance(oderun& run) {
    run.dir = 1;
    for (long k = 0; k < run.ntimes; k++) {
        if (run.times[k] == run.t0) continue;
        run.dir = run.times[k] > run.t0 ? 1 : -1;
        return std::fabs(run.times[k] - run.t0);
    }
    return 0;
}

double totalspan(odejob& job) {
    const oderun& run = job.run;
    double span = std::fabs(run.times[0] - run.t0);
    for (long k = 1; k < run.ntimes; k++) {
        const double step = run.times[k] - run.times[k - 1];
        span += std::fabs(step);
        if (step * run.dir < 0) job.sw.mandatory = true;
    }
    if ((run.times[0] - run.t0) * run.dir < 0) job.sw.mandatory = true;
    return span;
}

void steplimits(odejob& job) {
    oderun& run = job.run;
    odestepper& s = run.s;
    const double first = firstdistance(run);
    const double span = totalspan(job);
    job.hnominal = span / double(std::max(run.ntimes, 80L));
    if (job.hnominal == 0) job.hnominal = 0.1;
    s.hswitch = 0.98 * job.hnominal;
    s.hlimit = 0.01 * job.hnominal * s.errfac + s.absfloor;
    s.hmax = span == 0 ? 1 : 0.025 * span;
    if (job.sw.disaster == 4) {
        s.hmin = s.hlimit = s.h = 0.25 * job.hnominal;
    } else {
        s.hmin = 1e-35;
        s.h = std::max(0.0005 * std::fabs(run.t0), 1e-12);
    }
    s.h = std::min(s.h, s.hlimit);
    // far from 0 no first step below what the step control would lift it to at once, with no history for it
    s.h = std::max(s.h, 1e-12 * std::fabs(run.t0));
    if (first > 0) s.h = std::min(s.h, first);
    s.h *= run.dir;
}

// The formulas divide by products of three steps, which must not vanish in rounding.
void checkspan(double t0, const double* times, long ntimes) {
    constexpr double least = 1e-90;
    double span = 0;
    for (long i = 0; i < ntimes; i++) span = std::max(span, std::fabs(times[i] - t0));
    if (span > 0 && span < least)
        tarnerror("INTEGRATE: all times lie within %g of the start; measure time in a smaller unit", span);
}

void begin(odejob& job, const double* times, long ntimes, harray* out) {
    checkspan(job.model.t0, times, ntimes);
    oderun& run = job.run;
    const odemodel& model = job.model;
    odestepsize(run.s, model.n);
    odestepper& s = run.s;
    s.lanes = model.lanes;
    s.used = model.used;
    run.times = times;
    run.ntimes = ntimes;
    run.out = out;
    run.t0 = model.t0;
    harrayzero(out);
    s.tcur = model.t0;
    model.start(model.context, s.y);
    run.y0.assign(s.y, s.y + s.n);
    derivative(job);
    s.method = job.sw.method;
    s.stiff = s.method == ODESHRAGER || s.method == ODETU;
    s.errfac = job.errfac0;
    s.absfloor = MACHEPS;
    s.refreshjac = job.sw.jacsw != 2;
    s.fixedstep = job.sw.disaster == 4;
    s.tout = times[0];
    s.tend = times[ntimes - 1];
    steplimits(job);
    if (job.sw.mandatory) s.tend = s.tout;
}

} // namespace

void odeintegrate(const odemodel& model, const odeswitches& switches, const double* times, long ntimes,
                  harray* out, oderun& run) {
    run = oderun{};
    if (ntimes == 0) {
        run.complete = true;
        return;
    }
    odejob job(model, switches, run);
    job.reporting = switches.report > 0;
    begin(job, times, ntimes, out);
    while (!job.finished) {
        odestep(run.s);
        serve(job);
    }
}
