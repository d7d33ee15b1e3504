/* solvers/fitrun.h - the state of one fit, shared by the files of the iteration.
 * Owns:    the vectors of a run. Callers: solvers/fit*.cpp alone. Never: included elsewhere. */
#pragma once

#include "solvers/fitsolve.h"

inline constexpr double EPSMIN = 1e-10, EPSMAX = 10000, EPSFACTOR = 10; // the damping factor and its limits
inline constexpr double PIVOTTOL = 1e-9;

struct fitrun {
    const fitmodel& model;
    fitswitches sw;
    const solverconstraints& cons;
    const std::vector<int>& element;
    const double* y;
    int n, m;

    std::vector<double> p, pbest, p0; // trial point, best point, start of the iteration
    harrayptr memory;     // of all arrays of m, as one block: the next fit of the size finds it warm
    const double *w0, *w; // user weights, weights in force
    double *ownw0, *ownw; // where they are computed; null: they are the caller's
    double *ftrial, *fbest, *resid;
    double *jac, *jactrial; // n columns of m derivatives: at jacpoint; where the last trial was
    std::vector<double> lastpoint, jacpoint; // where the last evaluation was; where a symbolic Jacobian was
    bool trialjac = false;                   // jactrial belongs to the last evaluation
    std::vector<double> normal, ptpdia, damped; // J'WJ (see symsweep.h), its diagonal, the diagonal in use
    std::vector<double> dgrad;                  // J'W resid
    std::vector<char> pivots;
    symsweepwork<double> work;
    double eps = EPSMIN, bestsosq = 0, oldsosq = 0;
    int iteration = 1, converged = 0;
    long evaluations = 0;
    bool lowered = false;
    std::vector<double> lagrange, lagrangebest;

    fitrun(const fitmodel& model_, const fitswitches& switches, const solverconstraints& constraints,
           const std::vector<int>& element_, const double* y_, int n_, int m_)
        : model(model_), sw(switches), cons(constraints), element(element_), y(y_), n(n_), m(m_) {}
};

double constraintcoef(const fitrun& r, int i, int j); // of constraint i for slot j
/* Moves r.p into the feasible set. project: in the plain metric; else the trial step is replaced by the
 * constrained step under the metric of the damped normal matrix. */
void fitconstrain(fitrun& r, bool project);
void fitstatistics(fitrun& r, fitresult& result);
