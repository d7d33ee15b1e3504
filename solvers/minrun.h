/* solvers/minrun.h - the state of one minimisation, shared by the files of the iteration.
 * Owns:    the vectors of a run. Callers: solvers/min*.cpp alone. Never: included elsewhere.
 *
 * minsolve.cpp: start, loop, end. mindirection.cpp: the direction, its check, the scale index. minsearch.cpp:
 * the line search. minfallback.cpp: what follows a direction that does not descend. minhess.cpp: values,
 * gradients, the inverse Hessian. minconstrain.cpp: the active rows. */
#pragma once

#include "solvers/minsolve.h"

#include <vector>

inline constexpr int MINMAXIT = 1000, MINMAXSLOW = 16;

// What the loop does next.
enum nextstep {
    LINESEARCH,    // the direction is good
    SCALEINDEX,    // the inverse Hessian is bad: repair it, then take its direction
    NEWHESSIAN,    // make it anew at x
    NEWSTART,      // evaluate at x first
    NEXTITERATION, // go on from x
    ENDED          // ecode tells why
};

struct minrun {
    const minproblem& problem;
    minswitches sw;
    int n;
    solverconstraints cons; // rows a.x >= b (type 1) and a.x = b (type 0)

    // Points. With PRECONDITIONSW 2 the iteration walks in y, x = scale * y, and gradients are by y.
    std::vector<double> x, g;         // where the iteration stands
    std::vector<double> xprev, gprev; // at the start of the iteration
    std::vector<double> xbest, xgood; // best ever evaluated; kept for backtracking
    double f = 0, fprev = 0, fbest = 0, fgood = 0;
    std::vector<double> reduced;                // gradient in the free space
    std::vector<double> scale, d, s;            // d: direction in the free space; s: in full space
    double alfa = -1, goodalfa = -1;            // cosine between gradient and direction; at the good point
    std::vector<double> conjugate, reducedprev; // Polak-Ribiere: the last direction and its gradient

    // The inverse Hessian of the free space.
    std::vector<double> H;
    int scaleindex = -1; // -2 trusted, -1 under the Taylor series test, above 0 bad and conditioned
    int bfgscount = 0;   // updates since it was made
    int hessianat = 0, lastreset = -100; // iterations: when it was made, when its index was last reset
    double avgstep = 0;                  // running size of the direction
    double hessfloor = 1e-6;             // smallest pivot magnitude
    int rescaled = 0, perturbed = 0;     // how often a variable was scaled, the start was moved

    // Active rows.
    std::vector<double> Z;     // n by n; columns from active.size() on span the free space
    std::vector<double> R;     // factor of the active rows, n by n
    std::vector<int> active;   // in the order they were added
    std::vector<char> depends; // on the active rows: it cannot be added to them
    double relax = 0;          // by how much, relatively, an active row is missed
    int changes = 0;           // of the active rows since x last moved
    int nfree() const { return n - int(active.size()); }

    // Progress.
    int iteration = 0, goodat = 0, slowcount = 0;
    bool justbacktracked = false;
    int stage = 0;     // of the fall-backs since the last good step
    double spread = 0; // of the values, relative; of the gradient against its noise (stochastic mode)
    double gradientnoise = 0;
    long samples = 1;
    long fevals = 0, gevals = 0;
    minexit ecode = MINCONVERGED;

    minrun(const minproblem& p, const minswitches& switches, const solverconstraints& constraints)
        : problem(p), sw(switches), n(p.n), cons(constraints) {}
};

inline bool reports(const minrun& r, int bit) { return (r.sw.reptsw & bit) != 0; }
inline nextstep end(minrun& r, minexit code) {
    r.ecode = code;
    return ENDED;
}

// ---- vectors
double dot(const std::vector<double>& a, const std::vector<double>& b);
double norm(const std::vector<double>& v);
double largest(const std::vector<double>& v); // magnitude

// ---- minhess.cpp
double minvalue(minrun& r, const std::vector<double>& x); // MAXPOS: none there; tracks the best point
void mingradient(minrun& r, const std::vector<double>& x, std::vector<double>& g); // by y
void minevaluate(minrun& r, const std::vector<double>& x);                         // x, f, g, reduced
void mingradients(minrun& r);                                                      // g, reduced at x
void minhessian(minrun& r); // H from differences, or the identity
void minidentity(minrun& r);
void minbfgs(minrun& r); // the update for the step from xprev to x

// ---- minconstrain.cpp
double rowvalue(const minrun& r, int i, const std::vector<double>& x); // a.x - b
bool minbasis(minrun& r); // for the active rows; false when the last one depends on those before it
void tofree(const minrun& r, const std::vector<double>& full, std::vector<double>& free); // Z'v, free columns
void tofull(const minrun& r, const std::vector<double>& free, std::vector<double>& full); // Z v
bool minfeasible(minrun& r);     // moves x into the feasible set, equalities active; false when it is empty
bool minmeetsall(const minrun& r);
bool minadd(minrun& r, int row); // false when the row depends on the active ones
// The least multiplier of an active inequality, and where it stands; 0 when none is below zero.
double minleast(const minrun& r, int& place);
bool mindelete(minrun& r); // lets go the row of the least multiplier; false when none is negative
double minmaxstep(const minrun& r, int& row); // the step along s to the nearest inactive row
void minrelax(minrun& r);                     // brings x back onto the active rows
void minsettle(minrun& r);                    // the rows that hold at x stay active, the others do not

// ---- mindirection.cpp
nextstep mindirection(minrun& r); // d and its check: LINESEARCH, SCALEINDEX, NEWHESSIAN, NEWSTART, ENDED
nextstep minscale(minrun& r);     // judges the inverse Hessian: NEXTITERATION or NEWSTART

// ---- minsearch.cpp
bool minpolled(minrun& r); // true when Q was pressed
nextstep minsearch(minrun& r);
bool minflat(const minrun& r);       // is the reduced gradient within its tolerance?
bool minnoisehides(const minrun& r); // stochastic mode: is what is left of the gradient lost in its noise?

// ---- minfallback.cpp
nextstep minnodescent(minrun& r); // at the start of the iteration
