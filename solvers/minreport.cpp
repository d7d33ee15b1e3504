#include "solvers/minreport.h"

#include "interp/base/machine.h"
#include "interp/base/report.h"

#include <cmath>

namespace {

void printvector(const char* head, const char* indent, const std::vector<double>& v) {
    tarnprint("%s", head);
    for (size_t i = 0; i < v.size(); i++) {
        if (i > 0 && i % 7 == 0) tarnprint("%s", indent);
        tarnprint("%7.6e ", v[i]);
    }
    tarnprint(")\n");
}

void printexit(const minresult& r, size_t n) {
    tarnprint("ecode = %hd, ", short(r.ecode));
    switch (r.ecode) {
    case MINCONVERGED: tarnprint("Converged.\n"); break;
    case MINSLOW:
        tarnprint("Exit due to slow rate of convergence.\n");
        tarnprint("Try a smaller tolerance value or a larger maxslow value.\n");
        break;
    case MINSMALLSTEP:
        if (r.active.size() == n) {
            tarnprint("Converged.\n");
            tarnprint("number of constraints is equal to the number of variables\n");
            tarnprint("Solution point is on the boundary of the constraints.\n");
        } else {
            tarnprint("Exit due to small stepsizes, probably in a flat place.\n");
            tarnprint("The answer may be very close to a solution.\n");
            tarnprint("Try a larger value of eps or rho\n");
        }
        break;
    case MINITERATIONS:
        tarnprint("Exit due to running out of iterations.\n");
        tarnprint("Try a larger value of maxit\n");
        break;
    case MININFEASIBLE:
        tarnprint("Exit due to lack of a feasible region\n");
        tarnprint("Check your constraint set\n");
        break;
    case MINUNBOUNDED: tarnprint("Exit because a MAXNEG fct value occurred.\n"); break;
    case MINSPREAD:
    case MININTERRUPTED: tarnprint("\n"); break;
    }
}

// Within what a search takes for no step at all.
bool near(const std::vector<double>& a, const std::vector<double>& b) {
    for (size_t i = 0; i < a.size(); i++)
        if (!(std::fabs(a[i] - b[i]) <= 1e-3 * (std::fabs(b[i]) + 1))) return false;
    return true;
}

} // namespace

void minreport(const minresult& r, const minswitches& sw, bool constrained) {
    if (!(r.reptsw & 512)) return;
    tarnprint("\nThe function value is: %7.6e\n", r.f);
    printvector("Argument(s): (", "\n              ", r.x);
    printvector("Gradient: (", "\n           ", r.g);
    printexit(r, r.x.size());
    tarnprint("# of function evaluations: %ld\n", r.fevals);
    tarnprint("# of gradient evaluations: %ld\n", r.gevals);
    if (sw.newhess == 0)
        tarnprint("# of Newton iterations: %hd\n", short(r.iterations));
    else
        tarnprint("# of Quasi-Newton iterations: %hd\n", short(r.iterations));
    if (!constrained) return;
    if (r.active.empty()) return tarnprint("There are no active constraints.\n");
    tarnprint("The following constraints are active: ");
    for (int i : r.active) tarnprint("%d ", i);
    tarnprint("\n");
}

void minwarnings(const minproblem& problem, const minresult& r, const std::vector<double>& start) {
    if (r.f >= MAXPOS) return tarnwarn("MINIMIZE: the function has no value at the start; try another one");
    if (r.ecode != MINCONVERGED || !r.active.empty() || (r.iterations > 1 && !near(r.x, start))) return;
    std::vector<double> h = mintruehessian(problem, r.x);
    if (!(mininverse(h, r.x.size()) > 0))
        tarnwarn("MINIMIZE: the function is flat where the search began, which need not be an extremum");
}
