#include "solvers/odeensemble.h"

#include "funcs/trinode.h"
#include "interp/base/symtab.h"

#include <algorithm>

/* Component k * FLATLANES + l of the stepper is state k in lane l. So the lanes of a state lie side by side,
 * and the stepper, whose tests ask for the worst component, holds every lane to its own tolerance. Common
 * steps leave both sides of a difference nearly the same error. */

namespace {

static_assert(FLATLANES == ODELANES);

constexpr int MOSTGIVENUP = 2;                // runs in a row, then it is not tried again
constexpr size_t MOSTCELLS = size_t(1) << 23; // of output: 64 MB

struct ensemblejob {
    odeensemble& e;
    odesolve& solve;
    const double* sets;
    std::vector<const double*> derivative; // where a run leaves each
    int states() const { return solve.system.neq(); }
};

void run(ensemblejob& job, flatprogram& program) {
    if (!flatlanesrun(program, job.e.used)) throw odegivenup{};
}

// Makes a program of `before` other inputs ready, if it can be; lanes that are not in use repeat the first
// set.
bool hold(const ensemblejob& job, flatprogram* program, int before) {
    if (!program || !flatholdlanes(*program)) return false;
    const size_t n = job.e.parms.size();
    double* lane = flatlanesin(*program) + before * FLATLANES;
    for (size_t j = 0; j < n; j++)
        for (int l = 0; l < FLATLANES; l++) *lane++ = job.sets[size_t(l < job.e.used ? l : 0) * n + j];
    return true;
}

void copylanes(const double* from, double* to) {
    for (int l = 0; l < FLATLANES; l++) to[l] = from[l];
}

void setstates(const ensemblejob& job, flatprogram& program, double t, const double* y) {
    double* in = flatlanesin(program);
    for (int l = 0; l < FLATLANES; l++) *in++ = t;
    std::copy_n(y, job.states() * FLATLANES, in);
}

void startvalues(void* context, double* y) {
    ensemblejob& job = *static_cast<ensemblejob*>(context);
    std::fill_n(flatlanesin(*job.e.start), FLATLANES, job.solve.system.t0);
    run(job, *job.e.start);
    for (int k = 0; k < job.states(); k++)
        copylanes(flatlanesout(*job.e.start, size_t(k)), y + k * FLATLANES);
}

void derivatives(void* context, double t, const double* y, double* dy) {
    ensemblejob& job = *static_cast<ensemblejob*>(context);
    setstates(job, *job.e.righthand, t, y);
    run(job, *job.e.righthand);
    for (int k = 0; k < job.states(); k++) copylanes(job.derivative[size_t(k)], dy + k * FLATLANES);
}

void jacobians(void* context, double t, const double* y, const double*, double* jac) {
    ensemblejob& job = *static_cast<ensemblejob*>(context);
    const odesolve& solve = job.solve;
    setstates(job, *job.e.jacobian, t, y);
    run(job, *job.e.jacobian);
    const size_t entries = solve.jacobian.size();
    for (size_t l = 0; l < size_t(job.e.used); l++, jac += entries) {
        odejacobianconstants(solve, jac);
        for (size_t k = 0; k < solve.jacplace.size(); k++)
            jac[solve.jacplace[k]] = flatlanesout(*job.e.jacobian, k)[l];
    }
}

void outputfunctions(void* context, double t, const double* y, const double*, double* values) {
    ensemblejob& job = *static_cast<ensemblejob*>(context);
    setstates(job, *job.e.extras, t, y);
    run(job, *job.e.extras);
    for (size_t k = 0; k < job.solve.system.outputs.size(); k++)
        copylanes(flatlanesout(*job.e.extras, k), values + k * FLATLANES);
}

flatptr program(const std::vector<int>& functions, const std::vector<int>& states,
                const std::vector<int>& parms) {
    flatrequest request;
    request.functions = functions;
    request.nargs = 1;
    request.symbols = states;
    request.symbols.insert(request.symbols.end(), parms.begin(), parms.end());
    return flatcompile(request);
}

// What cannot be compiled is refused where it is to be run.
void compile(ensemblejob& job) {
    const odesystem& s = job.solve.system;
    std::vector<int> functions;
    for (size_t k = 0; k < s.states.size(); k++)
        if (job.solve.rhsplace[k] >= 0) functions.push_back(s.derivs[k]);
    job.e.righthand = program(functions, s.states, job.e.parms);
    if (job.solve.jacobianprogram)
        job.e.jacobian = program(odejacobianfunctions(job.solve), s.states, job.e.parms);
    job.e.start = program(s.states, {}, job.e.parms);
    if (!s.outputs.empty()) job.e.extras = program(s.outputs, s.states, job.e.parms);
}

// Where a derivative is another state, it stands among the inputs, behind the time.
void placederivatives(ensemblejob& job) {
    flatprogram& program = *job.e.righthand;
    for (size_t k = 0; k < size_t(job.states()); k++) {
        const int place = job.solve.rhsplace[k];
        job.derivative.push_back(place < 0 ? flatlanesin(program) + (1 + job.solve.nextstate[k]) * FLATLANES
                                           : flatlanesout(program, size_t(place)));
    }
}

// The states' symbols take the end of the last lane, as if each set had been integrated by itself.
void settle(ensemblejob& job) {
    const odestepper& s = job.e.run.s;
    const size_t n = size_t(job.states()), last = size_t(job.e.used) - 1;
    std::vector<double> y(n), dy(n);
    for (size_t k = 0; k < n; k++) {
        y[k] = s.y[k * FLATLANES + last];
        dy[k] = s.dy[k * FLATLANES + last];
    }
    odesetsymbols(job.solve, s.tcur, y.data(), dy.data());
}

void integrate(ensemblejob& job, const double* times, long ntimes) {
    odeensemble& e = job.e;
    const oderunscope scope(job.solve);
    const size_t n = size_t(job.states()), outputs = job.solve.system.outputs.size();
    if (!e.righthand) compile(job);
    const int before = job.states() + 1;
    if (!hold(job, e.start.get(), 1) || !hold(job, e.righthand.get(), before) ||
        (e.extras && !hold(job, e.extras.get(), before)))
        throw odegivenup{};
    placederivatives(job);
    const size_t columns = 1 + (2 * n + outputs) * FLATLANES;
    if (size_t(ntimes) > MOSTCELLS / columns) throw odegivenup{};
    if (!e.out || e.out->rows != ntimes || e.out->cols != columns)
        e.out.reset(harraynew(uint32_t(ntimes), uint32_t(columns)));
    odemodel model;
    model.n = int(n) * FLATLANES;
    model.nextra = int(outputs) * FLATLANES;
    model.t0 = job.solve.system.t0;
    model.context = &job;
    model.start = startvalues;
    model.deriv = derivatives;
    model.jacobian = hold(job, e.jacobian.get(), before) ? jacobians : nullptr;
    model.extras = outputfunctions;
    model.lanes = FLATLANES;
    model.used = e.used;
    model.silent = true;
    odeintegrate(model, job.solve.switches, times, ntimes, e.out.get(), e.run);
    if (!e.run.complete) throw odegivenup{};
    settle(job);
}

} // namespace

bool odeensemblerun(odeensemble& e, odesolve& solve, const double* sets, int count, const double* times,
                    long ntimes) {
    if (e.givenup >= MOSTGIVENUP || solve.switches.report != 0 || count < 1 || count > FLATLANES)
        return false;
    e.used = count;
    ensemblejob job{e, solve, sets, {}};
    try {
        integrate(job, times, ntimes);
    } catch (const odegivenup&) {
        e.givenup++;
        return false;
    }
    e.givenup = 0;
    return true;
}

double odeensemblevalue(const odeensemble& e, const odesystem& system, size_t row, int column, int lane) {
    const int of = column - 1; // states and their derivatives in pairs, then output functions
    const bool paired = of < 2 * system.neq();
    const int place = paired ? 2 * (of / 2 * FLATLANES + lane) + of % 2 : of * FLATLANES + lane;
    return at(e.out.get(), row + 1, size_t(place) + 2);
}
