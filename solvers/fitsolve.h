/* solvers/fitsolve.h - weighted least squares by the Marquardt-Levenberg iteration.
 * Owns:    the iteration, the damping sweep, the fall-back to steepest descent, linear constraints, the
 * statistics. Callers: FIT (solvers/fit.h), which binds a statement's functions and data to the callbacks.
 * Never:   knows a symbol or a function: the model is a table of callbacks. All state is in the structs.
 *
 * Method: D. W. Marquardt, SIAM J. Appl. Math. 11 (1963) 431. Constraints by a dual active set, as D.
 * Goldfarb and A. Idnani, Math. Programming 27 (1983) 1. Norms other than 2 by reweighting (E. J.
 * Schlossmacher, JASA 68 (1973)). */
#pragma once

#include "solvers/symsweep.h"
#include "special/doubledouble.h"
#include "values/harray.h"

#include <vector>

// Linear constraints in the solver's form: row value = / <= / >= rhs for type 0 / -1 / +1.
struct solverconstraints {
    int count = 0;
    int width = 0;            // row stride of coef: parameters as the statement names them
    std::vector<double> coef; // count by width
    std::vector<double> rhs;
    std::vector<int> type;
};

inline constexpr int FITTOGETHER = 8; // points at which a model may be evaluated together

struct fitmodel {
    void* context = nullptr;
    // Model values at p, all m of them; false when the model has none there (the trial counts as failed).
    bool (*values)(void* context, const double* p, double* f) = nullptr;
    // Model values at `count` points, 1..FITTOGETHER, one behind the other in `points` and f, in one pass;
    // false when they are not to be had so: then `values` tells. Null: never.
    bool (*several)(void* context, const double* points, int count, double* f) = nullptr;
    // Values and symbolic Jacobian (as below) at p in one pass; false when they are not to be had so: then
    // `values` tells. Null: never.
    bool (*both)(void* context, const double* p, double* f, double* jac) = nullptr;
    // Symbolic Jacobian where the last evaluation was: n columns of m derivatives, one behind the other;
    // null: central differences.
    void (*jacobian)(void* context, double* jac) = nullptr;
    // Residuals y - f and the Jacobian (as above) at p, at twice the precision; false where they are not to
    // be had so, or not at a cost that a fit can bear. Null: never.
    bool (*precise)(void* context, const dd* p, dd* resid, dd* jac) = nullptr;
    // User weights w0 at p, where weight functions are given; null: they stay.
    void (*weights)(void* context, const double* p, double* w0) = nullptr;
    // Prints the parameters p, a line each (reports).
    void (*printparms)(void* context, const double* p) = nullptr;
};

struct fitswitches {
    int maxiter = 100; // MAXITER
    int report = 8;    // LSQRPT: 1 iterations, 2 probes, 4 parameters with those, 8 final report, 16 gradient
    double norm = 2;   // FITNORM
    double tolsos = 1e-10; // TOLSOS
    bool descent = false;  // DGRADSW
};

struct fitresult {
    std::vector<double> p;                       // best point
    harrayptr memory;                            // of the next two
    const double *resid = nullptr, *w = nullptr; // there, m of each: y less the model, weights in force
    double sosq = 0;                             // best weighted sum of squares
    double rms = 0, deviation = 0, rsquared = 0;
    std::vector<double> stderrors, dependency, covariance; // covariance: n by n
    std::vector<double> lagrange;                          // multipliers of the constraints
    int iterations = 0;
    int converged = 0;     // 1 converged, 2 limit reached
    bool lowered = false;  // some step lowered the sum
    bool started = false;  // the model had values at the start
    bool retried = false;  // the first search went astray, a more careful one found this
    int report = 0;        // LSQRPT as R left it
    int contradiction = 0; // a constraint, from 1, that those before it rule out: then there is no result
};

/* p: start values, n; y: observed values, m; w0: user weights, m: they must outlive the result. Result.p is
 * the best point; parameters are not stored anywhere else. `element` tells for each of the n slots which
 * parameter of the constraints it belongs to. */
fitresult fitsolve(const fitmodel& model, const fitswitches& switches, const solverconstraints& constraints,
                   const std::vector<int>& element, const std::vector<double>& p, size_t m, const double* y,
                   const double* w0);
