/* solvers/minrun.h - the state of one minimisation, shared by the files of the iteration.
 * Owns:    the vectors of a run. Callers: solvers/min*.cpp alone. Never: included elsewhere. */
#pragma once

#include "solvers/minsolve.h"

inline constexpr int MINMAXIT = 1000, MINMAXSLOW = 16;

struct minrun {
    const minproblem& problem;
    minswitches sw;
    int n;
    solverconstraints cons; // rows a.x >= b (type 1) and a.x = b (type 0)

    std::vector<double> x, g, xprev, gprev, xbest, xgood; // point, gradient, start of the iteration...
    double f = 0, fprev = 0, fbest = 0, fgood = 0;
    std::vector<double> reduced, reducedprev; // gradient in the free space
    std::vector<double> H;                    // inverse Hessian of the free space
    std::vector<double> scale, d, s;          // d: direction in the free space; s: in full space
    std::vector<double> conjugate;            // last Polak-Ribiere direction
    std::vector<double> Z;                    // n by n; columns from nact on span the free space
    std::vector<double> R;                    // factor of the active rows, n by nact
    std::vector<int> active;                  // rows, in the order they were added
    int nfree() const { return n - int(active.size()); }

    int scaleindex = -1, slowcount = 0, bfgscount = 0, backtracks = 0;
    int iteration = 0, goodat = 0, lastreset = -100;
    double avgstep = 0, hessfloor = 1e-6, alfa = -1, goodalfa = -1;
    bool justbacktracked = false, newdirection = false;
    int stage = 0;     // of the fall-backs: 1 steepest descent was tried, 2 the best point
    double spread = 0; // of the values, relative (stochastic mode)
    long samples = 1;
    long fevals = 0, gevals = 0;

    minrun(const minproblem& p, const minswitches& switches, const solverconstraints& constraints)
        : problem(p), sw(switches), n(p.n), cons(constraints) {}
};

inline bool reports(const minrun& r, int bit) { return (r.sw.reptsw & bit) != 0; }

double minvalue(minrun& r, const std::vector<double>& x); // tracks the best point
void mingradient(minrun& r, const std::vector<double>& x, std::vector<double>& g);
double rowvalue(const minrun& r, int i, const std::vector<double>& x); // a.x - b
// The basis for the active rows; false when the last one depends on those before it.
bool minbasis(minrun& r);
void tofree(const minrun& r, const std::vector<double>& full,
            std::vector<double>& free); // Z'v on the free columns
void tofull(const minrun& r, const std::vector<double>& free, std::vector<double>& full); // Z v
bool minfeasible(minrun& r);     // moves x into the feasible set, equalities active; false when it is empty
bool minadd(minrun& r, int row); // false when the row depends on the active ones
double minleast(const minrun& r,
                int& place); // the least multiplier of an active inequality, and where it stands
void mindelete(minrun& r, int place);
double minmaxstep(const minrun& r, int& row); // the step along s to the nearest inactive row
void minhessian(minrun& r);                   // H from differences, or the identity
void minidentity(minrun& r);
