/* solvers/minsolve.h - a local minimum of a function of many variables under linear constraints.
 * Owns:    the iteration: Newton and quasi-Newton directions, line search, active constraints, exits.
 * Callers: MINIMIZE and MAXIMIZE (solvers/minimize.cpp) and tests.
 * Never:   knows a symbol: the function is a callback. All state is in the structs.
 *
 * Methods: an inverse Hessian from differences of gradients, updated by BFGS (C. G. Broyden, J. Inst. Maths
 * Applics 6 (1970) 76; R. Fletcher, Computer J. 13 (1970) 317); constraints by an active set on a null-space
 * basis made of Householder reflections (P. E. Gill and W. Murray, Math. Programming 7 (1974) 311); line
 * search by safeguarded cubics. Stochastic mode: central differences of sample means (J. Kiefer and J.
 * Wolfowitz, Ann. Math. Statist. 23 (1952) 462), with samples that grow as the noise hides the descent (T.
 * Homem-de-Mello, ACM TOMACS 13 (2003) 108). */
#pragma once

#include "solvers/fitsolve.h"

#include <vector>

struct minswitches {
    double gtol = 1e-6;     // EPS: gradient
    double ftol = 1e-5;     // TOLERANCE: relative decrease that counts as slow
    double xtol = 1e-3;     // RHO: step
    double backtracksw = 1; // 0 at once, -1 never, -2 exit instead
    int hessmsw = 2; // 0 identity, 1 one-sided, 2 central gradient differences; negative: forced definite
    double preconditionsw = 1; // 0 none, -1 off, 2 scales variables, -2 forced by gradsw
    int reptsw = 512;
    int newhess = -1; // iterations between new Hessians; negative: never by count
    int gradsw = 0;   // 0 Newton or BFGS, 1 Polak-Ribiere, 2 steepest descent
    int ssize = 1, maxsize = 5,
        nsize = 10; // stochastic mode: samples of an evaluation; their growth; of a spread
    int stochsw = 0;
    double critical = 0; // of the spread, when the stochastic mode may end
};

struct minproblem {
    int n = 0;
    void* context = nullptr;
    // MAXPOS: outside the function's domain, a shorter step is taken. MAXNEG: the run stops.
    double (*value)(void* context, const double* x) = nullptr;
    // Null: central differences.
    void (*gradient)(void* context, const double* x, double* g) = nullptr;
};

enum minexit {
    MINCONVERGED = 0,
    MINSLOW = 1,
    MINSMALLSTEP = 2,
    MINITERATIONS = 3,
    MININFEASIBLE = 4,
    MINUNBOUNDED = 5,  // a value of MAXNEG
    MINSPREAD = 6,     // stochastic mode: the noise hides what is left
    MININTERRUPTED = 7 // by Q
};

struct minresult {
    std::vector<double> x, g;
    double f = 0;
    minexit ecode = MINCONVERGED;
    std::vector<int> active; // numbers of active constraints, from 1, in the order they were added
    long fevals = 0, gevals = 0;
    int iterations = 0;
    int reptsw = 512;             // as R left it
    std::vector<double> hinverse; // n by n inverse Hessian of an unconstrained end, empty when there is none
};

minresult minsolve(const minproblem& problem, const minswitches& switches,
                   const solverconstraints& constraints, const std::vector<double>& start);
// Hessian of the function at x by differences of gradients, n by n.
std::vector<double> mintruehessian(const minproblem& problem, const std::vector<double>& x);
// Inverts the symmetric n by n matrix in place, pivots held away from zero; returns the smallest of them.
double mininverse(std::vector<double>& a, size_t n);
