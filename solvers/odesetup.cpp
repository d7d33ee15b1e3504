// The bound model: switches, symbolic Jacobian, the callbacks through which the stepper sees the functions.
#include "solvers/odesetup.h"

#include "funcs/define.h"
#include "funcs/deriv.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "solvers/odedelay.h"

#include <algorithm>
#include <cmath>

namespace {

enum constantentry { ENTRYZERO = 0, ENTRYONE = -1 }; // else the symbol of a function

struct odestate {
    odesolve* current = nullptr; // the solve whose integration runs
};
odestate ode;

} // namespace

oderunscope::oderunscope(odesolve& solve) : saved(ode.current), savedactive(eval.odeactive) {
    ode.current = &solve;
    eval.odeactive = true;
}

oderunscope::~oderunscope() {
    ode.current = saved;
    eval.odeactive = savedactive;
}

void odesetsymbols(odesolve& solve, double t, const double* y, const double* dy) {
    const odesystem& s = solve.system;
    solve.t = t;
    solve.y = y;
    solve.dy = dy;
    solve.pending = false;
    solve.held = odesolve::UNTRIED; // what is evaluated next may change anything
    for (size_t k = 0; k < s.states.size(); k++) sym(s.derivs[k]).val.rval = dy[k];
    for (size_t k = 0; k < s.states.size(); k++) sym(s.states[k]).val.rval = y[k];
}

void odejacobianconstants(const odesolve& solve, double* jac) {
    for (size_t k = 0; k < solve.jacobian.size(); k++)
        if (solve.jacobian[k] <= 0) jac[k] = solve.jacobian[k] == ENTRYONE;
}

std::vector<int> odejacobianfunctions(const odesolve& solve) {
    std::vector<int> functions;
    for (int entry : solve.jacobian)
        if (entry > 0) functions.push_back(entry);
    return functions;
}

namespace {

bool isfunction(int idx) { return sym(idx).type == USERFUNCTION; }

// Inputs of a program: the time, then the states.
const double* inputs(odesolve& solve, double t, const double* y) {
    solve.in[0] = t;
    std::copy_n(y, solve.system.states.size(), solve.in.begin() + 1);
    return solve.in.data();
}

void takederivatives(const odesolve& solve, const double* y, double* dy) {
    for (size_t k = 0; k < solve.rhsplace.size(); k++)
        dy[k] = solve.rhsplace[k] < 0 ? y[solve.nextstate[k]] : solve.work[size_t(solve.rhsplace[k])];
}

// Where a derivative is another state, it stands among the inputs.
bool hold(odesolve& solve) {
    if (!flathold(*solve.righthand)) return false;
    solve.heldout.clear();
    for (size_t k = 0; k < solve.rhsplace.size(); k++)
        solve.heldout.push_back(solve.rhsplace[k] < 0
                                    ? flatheldin(*solve.righthand) + 1 + solve.nextstate[k]
                                    : flatheldout(*solve.righthand, size_t(solve.rhsplace[k])));
    return true;
}

/* Evaluations of the right-hand side in a row: nothing looks at the symbols meanwhile, so they take the
 * values of the last one alone. */
bool heldfunc(odesolve& solve, double t, const double* y, double* dy) {
    if (solve.held == odesolve::UNTRIED) solve.held = hold(solve) ? odesolve::HELD : odesolve::NOTHELD;
    if (solve.held == odesolve::NOTHELD) return false;
    const size_t n = solve.heldout.size();
    double* in = flatheldin(*solve.righthand);
    *in++ = t;
    for (size_t k = 0; k < n; k++) in[k] = y[k];
    if (!flatheldrun(*solve.righthand)) return false;
    for (size_t k = 0; k < n; k++) dy[k] = *solve.heldout[k];
    return solve.pending = true;
}

struct settlescope {
    odesolve& solve;
    ~settlescope() {
        if (!solve.pending) return;
        const double* in = flatheldin(*solve.righthand);
        std::vector<double> dy;
        for (const double* at : solve.heldout) dy.push_back(*at);
        odesetsymbols(solve, in[0], in + 1, dy.data());
    }
};

void odefunc(void* context, double t, const double* y, double* dy) {
    odesolve& solve = *static_cast<odesolve*>(context);
    if (heldfunc(solve, t, y, dy)) return;
    const bool never = solve.held == odesolve::NOTHELD;
    odesetsymbols(solve, t, y, dy);
    if (never) solve.held = odesolve::NOTHELD;
    flatrun(*solve.righthand, inputs(solve, t, y), solve.work.data());
    takederivatives(solve, y, dy);
}

void odejacobian(void* context, double t, const double* y, const double* dy, double* jac) {
    odesolve& solve = *static_cast<odesolve*>(context);
    odesetsymbols(solve, t, y, dy);
    flatrun(*solve.jacobianprogram, inputs(solve, t, y), solve.work.data());
    odejacobianconstants(solve, jac);
    for (size_t k = 0; k < solve.jacplace.size(); k++) jac[solve.jacplace[k]] = solve.work[k];
}

void odeextras(void* context, double t, const double* y, const double* dy, double* values) {
    odesolve& solve = *static_cast<odesolve*>(context);
    odesetsymbols(solve, t, y, dy);
    if (solve.extras) return flatrun(*solve.extras, inputs(solve, t, y), values);
    for (size_t k = 0; k < solve.system.outputs.size(); k++)
        values[k] = callvalue(solve.system.outputs[k], &t, 1);
}

// A start value after those that its expression mentions.
void startvalue(odesolve& solve, size_t k, std::vector<char>& done, double* y) {
    if (done[k]) return;
    done[k] = 1;
    const odesystem& s = solve.system;
    const int state = s.states[k];
    for (size_t j = 0; j < s.states.size(); j++)
        if (j != k && treeuses(funcbody(state), s.states[j])) startvalue(solve, j, done, y);
    const double x = evalref(funcbody(state), parser.poltop);
    if (eval.matrixflag)
        tarnerror(further("the start of %s", nametext(state).c_str()),
                  "illegal use of matrix in user function");
    y[k] = sym(state).val.rval = x;
}

void odestartvalues(void* context, double* y) {
    odesolve& solve = *static_cast<odesolve*>(context);
    std::vector<char> done(solve.system.states.size(), 0);
    for (size_t k = 0; k < done.size(); k++) startvalue(solve, k, done, y);
    // a derivative that is read before it was computed has a value, not the mark of an undefined one
    for (int derivative : solve.system.derivs)
        if (sym(derivative).val.rval == UNDEFINEDMARK) sym(derivative).val.rval = 0;
}

// A freshly made derivative that is only 0 or 1 needs no function.
int constantderivative(int f) {
    const trinode body = tri(funcbody(f));
    if (body.op != TREEIDENTITY || !issymbolref(body.left) || sym(body.left).type != CONSTANT) return 1;
    const double value = sym(body.left).val.rval;
    if (value != 0 && value != 1) return 1;
    symtabdelete(f);
    return value == 0 ? ENTRYZERO : ENTRYONE;
}

// The entry (i, j) of the Jacobian; false when its function can have no name.
bool jacobianentry(const odesystem& s, size_t i, size_t j, int& entry) {
    const int f = s.derivs[i];
    if (!isfunction(f)) {
        entry = f == s.states[j] ? ENTRYONE : ENTRYZERO;
        return true;
    }
    entry = ENTRYZERO;
    if (!functiondepends(f, s.states[j])) return true;
    const std::string name = derivname(f, s.states[j]);
    if (name.size() > MAXNAME) {
        tarnwarn("jacobian derivative name is too long.");
        return false;
    }
    const int known = symtablookup(name.c_str());
    if (known > 0 && isfunction(known)) {
        entry = known;
        return true;
    }
    const int made = makederiv(f, s.states[j]);
    if (made < 1) tarnerror("jacobian derivative cannot be computed.");
    const int constant = constantderivative(made);
    entry = constant == 1 ? made : constant;
    return true;
}

// False when the differentiator cannot serve: the driver then takes differences.
bool jacobiantable(odesolve& solve) {
    const odesystem& s = solve.system;
    const size_t n = s.states.size();
    solve.jacobian.assign(n * n, ENTRYZERO);
    for (size_t i = 0; i < n; i++)
        for (size_t j = 0; j < n; j++)
            if (!jacobianentry(s, i, j, solve.jacobian[i * n + j])) return false;
    return true;
}

flatptr program(const odesystem& s, const std::vector<int>& functions) {
    flatrequest request;
    request.functions = functions;
    request.nargs = 1;
    request.symbols = s.states;
    return flatcompile(request);
}

void compilerighthand(odesolve& solve) {
    const odesystem& s = solve.system;
    std::vector<int> functions;
    solve.rhsplace.assign(s.states.size(), -1);
    solve.nextstate.assign(s.states.size(), -1);
    for (size_t k = 0; k < s.states.size(); k++) {
        if (!isfunction(s.derivs[k])) {
            solve.nextstate[k] =
                int(std::find(s.states.begin(), s.states.end(), s.derivs[k]) - s.states.begin());
            continue;
        }
        solve.rhsplace[k] = int(functions.size());
        functions.push_back(s.derivs[k]);
    }
    solve.righthand = program(s, functions);
}

void compilejacobian(odesolve& solve) {
    solve.jacplace.clear();
    for (size_t k = 0; k < solve.jacobian.size(); k++)
        if (solve.jacobian[k] > 0) solve.jacplace.push_back(int(k));
    solve.jacobianprogram = program(solve.system, odejacobianfunctions(solve));
}

void compileextras(odesolve& solve) {
    solve.extras.reset();
    for (int f : solve.system.outputs)
        if (sym(f).type < 0 || formalcount(f) != 1) return; // each call tells what is wrong with it
    if (!solve.system.outputs.empty()) solve.extras = program(solve.system, solve.system.outputs);
}

odeswitches readswitches() {
    odeswitches sw;
    const auto whole = [](const char* name, double absent) {
        return int(std::trunc(symtabscalar(name, absent)));
    };
    sw.method = whole("METHOD", 0);
    sw.jacsw = whole("JACSW", 1);
    sw.disaster = whole("DISASTERSW", 0);
    sw.report = whole("ODERPT", 0);
    sw.mandatory = whole("MANDSW", 0) != 0;
    sw.errfac = symtabscalar("ERRFAC", 1e-6);
    if (!(sw.errfac > 0)) tarnerror("ERRFAC must be positive.");
    return sw;
}

/* Called by the evaluator while an integration runs. Without arguments: is idx one of its states or
 * derivatives? Else its value at an earlier time. */
bool odecall(int idx, const double* args, int nargs, double& result) {
    if (!ode.current) return false;
    const odesystem& s = ode.current->system;
    for (size_t k = 0; k < s.states.size(); k++) {
        if (idx != s.states[k] && idx != s.derivs[k]) continue;
        if (nargs > 0) result = odedelay(*ode.current, args[0], int(k), idx == s.states[k]);
        return true;
    }
    return false;
}

} // namespace

void odeinit(odesolve& solve) {
    solve.switches = readswitches();
    const size_t n = solve.system.states.size();
    solve.in.assign(n + 1, 0);
    solve.work.assign(n * n + n, 0);
    solve.jacobian.clear();
    if (solve.switches.jacsw == 1 && solve.switches.method != ODEADAMS) {
        if (jacobiantable(solve))
            compilejacobian(solve);
        else
            solve.switches.jacsw = 0;
    }
    compilerighthand(solve);
    compileextras(solve);
}

bool oderunover(odesolve& solve, const double* times, long ntimes, harray* out) {
    const oderunscope scope(solve);
    solve.held = odesolve::UNTRIED;
    solve.pending = false;
    const settlescope settle{solve};
    odemodel model;
    model.n = solve.system.neq();
    model.nextra = int(solve.system.outputs.size());
    model.t0 = solve.system.t0;
    model.context = &solve;
    model.start = odestartvalues;
    model.deriv = odefunc;
    model.jacobian = solve.jacobianprogram ? odejacobian : nullptr;
    model.extras = odeextras;
    odeintegrate(model, solve.switches, times, ntimes, out, solve.run);
    return solve.run.complete;
}

void odecallstart() { upper.odecall = odecall; }
