/* solvers/odesetup.h - the system of differential equations that a statement means.
 * Owns:    the deduction of states and equations from what is mentioned, the bound model, solutions inside
 * expressions. Callers: INTEGRATE and ITERATE, FIT and MINIMIZE; the evaluator and onop through hooks. Never:
 * steps (solvers/odestep.h) or prints but for its errors. One solve at a time; a nested one saves this one.
 */
#pragma once

#include "funcs/flatcode.h"
#include "solvers/odedriver.h"
#include "values/harray.h"

#include <vector>

inline constexpr int MAXEQUATIONS = 500, MAXODETREES = 2000, MAXODEFUNCTIONS = 200;

struct odesystem {
    std::vector<int> states; // symbol of each state; equation k has state k
    std::vector<int> derivs; // its derivative: a function, or another state where an order was reduced
    int var = 0;             // the independent variable, 0 until found
    double t0 = 0;           // common start point
    std::vector<int>
        outputs; // functions to compute at output points; those that depend on the solution first
    int ndependent = 0;
    /* For each function of the caller's list: -(2k-1) the derivative of equation k, -2k its state (k from
     * 1), 1.. ndependent a function of the solution, above that an independent one, 0 unclassified. */
    std::vector<int> code;
    bool active() const { return !states.empty(); }
    int neq() const { return int(states.size()); }
};

/* What stands around one solve, from the deduction to the end. */
struct odesolve {
    odesystem system;
    odeswitches switches;
    std::vector<int> jacobian; // symbol of the derivative function for (i, j), or 0 / 1 for a constant entry
    flatptr righthand, jacobianprogram, extras;
    std::vector<double> in, work;
    std::vector<int> rhsplace, jacplace; // equation or entry that each output of a program belongs to
    std::vector<int> nextstate;          // of an equation without a function: its derivative is this state
    enum { UNTRIED, HELD, NOTHELD } held = UNTRIED; // see flathold
    std::vector<const double*> heldout;             // where a held run leaves each derivative
    bool pending = false; // the symbols are still to take the last evaluation's values
    oderun run;
    const double* y = nullptr; // where the states stand now
    const double* dy = nullptr;
    double t = 0;
    bool running = false;
};

/* Deduces the system from `names` (functions, states, derivatives, builtins). nargs: 0, or the arguments with
 * which each must be usable. Throws the stated errors; no system found leaves states empty. */
odesystem odededuce(const std::vector<int>& names, int nargs);
// Throws the stated error unless f (a function, state or builtin) can be called with nargs scalars; 0: no
// check.
void odeusable(int f, int nargs);
/* The result that the builtin layer asks for: 0 no state or derivative listed; 1 every equation named, no
 * plain function; 2 not all named, no plain function; 3 all named and a plain function; 4 a plain function
 * and not all named. */
int odecoverage(const odesystem& system, const std::vector<int>& names);

// Reads the switches, prepares the Jacobian and the programs. ERRFAC not positive: "ERRFAC must be positive."
void odeinit(odesolve& solve);
/* Integrates over times into out: t; y1, dy1...; the outputs. False when it ended early. The states' symbols
 * keep their last values. */
bool oderunover(odesolve& solve, const double* times, long ntimes, harray* out);
inline int odecolumns(const odesystem& s) { return 2 * s.neq() + int(s.outputs.size()) + 1; }
// 0-based column of caller's function k in the output matrix.
int odecolumn(const odesystem& system, size_t k);

/* The evaluator around an integration of `solve`: names of its system stand for the solution. What was before
 * comes back on every way out; integrations may nest. */
struct oderunscope {
    odesolve* const saved;
    const bool savedactive;
    explicit oderunscope(odesolve& solve);
    ~oderunscope();
    oderunscope(const oderunscope&) = delete;
};
// The entries of the symbolic Jacobian that are numbers; the functions of the others, as jacplace places
// them.
void odejacobianconstants(const odesolve& solve, double* jac);
std::vector<int> odejacobianfunctions(const odesolve& solve);
// The solution is at t, y, dy: the symbols of the system take these values.
void odesetsymbols(odesolve& solve, double t, const double* y, const double* dy);

void odestart(); // builtins, hooks
