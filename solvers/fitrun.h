/* solvers/fitrun.h - the state of one fit, shared by the files of the iteration.
 * Owns:    the vectors of a run. Callers: solvers/fit*.cpp alone. Never: included elsewhere. */
#pragma once

#include "solvers/fitsolve.h"

inline constexpr double EPSMIN = 1e-10, EPSMAX = 10000, EPSFACTOR = 10; // the damping factor and its limits
inline constexpr double PIVOTTOL = 1e-9;
inline constexpr size_t BLOCK = 512; // observations at a time: their part of each column stays in the cache

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
    symsweepwork work;
    double eps = EPSMIN, bestsosq = 0, oldsosq = 0;
    int iteration = 1, converged = 0;
    long evaluations = 0;
    bool lowered = false;
    std::vector<double> lagrange, lagrangebest, lagrangefirst; // of the first probe of the iteration
    unsigned faults = 0, bestfaults = 0; // floating-point faults of the last evaluation, of the best one
    double pivottol = PIVOTTOL;
    unsigned faultlimit = ~0U; // an evaluation with more counts as failed

    fitrun(const fitmodel& model_, const fitswitches& switches, const solverconstraints& constraints,
           const std::vector<int>& element_, const double* y_, int n_, int m_)
        : model(model_), sw(switches), cons(constraints), element(element_), y(y_), n(n_), m(m_) {}
};

// ---- at a point (fitpoint.cpp)

/* One evaluation at p into r.ftrial: the weighted sum of |y - f|^norm. MAXPOS when the model failed or Q was
 * pressed. With `derivatives` the Jacobian there is taken along where one pass gives both. */
double fitsosq(fitrun& r, const std::vector<double>& p, double norm, bool derivatives = false);
void fitweights(fitrun& r, bool plain);
void fitjacobian(fitrun& r);
// J'WJ and J'W resid. Derivatives that overflow are taken as very steep ones.
void normalequations(fitrun& r);

// ---- the iteration (fitsolve.cpp)

enum nextmove { NEXTITERATION, STOP, SEARCHON, PROBEON };

void beginiteration(fitrun& r);
void dampedstep(fitrun& r);           // r.p := the step under the diagonal r.damped
double promisedgain(const fitrun& r); // by which the linear model promises to lower the sum
bool improves(fitrun& r, double sos); // takes a better point; whether by enough to end the iteration
nextmove finished(fitrun& r);
void reportparms(const fitrun& r, const std::vector<double>& p);
void reportprobe(const fitrun& r, double e, double sos, bool steepest);

// ---- a second try (fitcareful.cpp)

/* Where a try has ended. */
struct fitattempt {
    std::vector<double> p, lagrange;
    double sosq = 0;
    unsigned faults = 0;
    int iteration = 1, converged = 0;
    bool lowered = false;
};
fitattempt thisattempt(const fitrun& r);
/* Whether the iteration ended without an answer although the start gave hope of one: at the limit, where a
 * parameter has lost its effect on the model, or where arithmetic overflows. sensitivity: the diagonal of
 * J'WJ at the start. */
bool astray(const fitrun& r, const fitattempt& start, const std::vector<double>& sensitivity);
/* Once more from the start, with steps held to where the linear model serves, in up to three ways. The best
 * end stays; true if it is a new one. */
bool carefulfit(fitrun& r, const fitattempt& start, const std::vector<double>& sensitivity);

double constraintcoef(const fitrun& r, int i, int j); // of constraint i for slot j
/* Moves r.p into the feasible set. project: in the plain metric; else the trial step is replaced by the
 * constrained step under the metric of the damped normal matrix. */
void fitconstrain(fitrun& r, bool project);
// The first row, from 1, that contradicts those before it; 0: there is none.
int fitcontradiction(fitrun& r);
bool fitstandson(const fitrun& r, int i); // does r.p meet constraint i as an equation?
// Violations at r.p, positive where a row is broken; false when none is.
bool fitviolated(const fitrun& r, std::vector<double>& violation);

// ---- the end

/* Where the fit has ended: r.normal := the inverse of J'WJ, r.ptpdia its diagonal, r.resid := y less the
 * model. Takes the last digits of the parameters and the sum along where they are to be had. */
void fitlastdigits(fitrun& r);
void fitstatistics(fitrun& r, fitresult& result);
