/* solvers/odestep.h - one integration of an initial value problem, step by step, by reverse communication.
 * Owns:    the history, the step control and the choice between the Adams and the stiff mode, all in one
 * struct. Callers: the driver (solvers/odedriver.h) alone: it does what `request` asks and calls again.
 * Never:   calls the model, prints, or keeps anything outside the struct: integrations may nest.
 *
 * Adams mode: third-order Adams-Bashforth predictor and fourth-order Adams-Moulton corrector, one pass,
 * variable steps. Stiff mode: cubic extrapolation, one Newton pass on a backward differentiation formula: of
 * third order ("gear-tu"), or 0.55 of the third-order and 0.45 of the second-order formula ("gear-shrager").
 * Background: C. W. Gear, Numerical Initial Value Problems in Ordinary Differential Equations (1971). */
#pragma once

#include "solvers/odeloops.h"

#include <vector>

enum oderequest {
    ODESTART = 0,     // start or restart from tcur, y
    ODEDERIV = 1,     // wants dy at tcur, y
    ODEJACOBIAN = 2,  // wants jac (row by row) at tcur, y, dy
    ODESTEPDONE = 3,  // a step was accepted
    ODEOUTPUT = 4,    // tcur is tout; y, dy are the solution there
    ODELAST = 5,      // the same, and tout is tend
    ODETRUNCFAIL = 6, // the step is at its floor: truncation error
    ODECORRFAIL = 7   // the same: corrector error
};

enum odemethod { ODEAUTO = 0, ODEADAMS = 1, ODESHRAGER = 2, ODETU = 3 };

inline constexpr int ODELANES = 8; // systems that go side by side, where it is not one

struct odestepper {
    // exchanged with the driver
    int request = ODESTART;
    int n = 0; // components: the equations of all lanes
    // Component k * lanes + l is equation k of system l; those from `used` on repeat the first.
    int lanes = 1, used = 1;
    double tcur = 0;           // time of y
    double tout = 0, tend = 0; // next output time; time not to be passed
    double *y = nullptr, *dy = nullptr;
    std::vector<double> jac; // by lanes in use; there when it is wanted first
    double errfac = 0;       // relative tolerance; the driver may raise and lower it
    double absfloor = 0;     // smallest magnitude counted in a tolerance
    int method = ODEAUTO;
    bool refreshjac = true; // Jacobians are renewed by need
    bool fixedstep = false; // constant step, no error control

    // step limits and the step, set by the driver at the start
    double h = 0; // step being tried; its sign is the direction
    double hmax = 0, hmin = 0, hswitch = 0, hlimit = 0;

    // for reports
    bool stiff = false;
    long steps = 0;                   // accepted
    double truncerr = 0, correrr = 0; // scaled errors of the last step
    int faileqn = 0;                  // where the step is at its floor: the equation of the worst, from 0
    double tlast = 0;                 // time of the newest accepted step

    /* History: Y[0] is the newest point before the step. The new point stands in y, dy until they are wanted
     * for an output, then in Y[3], dnew (apart). Before, dnew is the derivative at the prediction. */
    double *Y[4] = {}, *D[3] = {}, *dnew = nullptr;
    bool apart = false;
    double tbase = 0;              // accepted time before the step
    double tnext = 0;              // time of the step being tried
    double h1 = 0, h2 = 0, h3 = 0; // last steps, newest first
    double s2 = 0, s3 = 0, s4 = 0; // h+h1, +h2, +h3
    double r2 = 0, r3 = 0, q2 = 0; // h1+h2, h1+h2+h3, h2+h3

    // the step being tried
    double *ypred = nullptr, *ybase = nullptr, *tol = nullptr, *allowed = nullptr, *error = nullptr;
    double* newton = nullptr;
    std::vector<double> lu; // by lanes as jac
    std::vector<int> pivots;
    double pred[4] = {}, corr[4] = {}; // coefficients of the predictor and of the known part
    double cnew = 0;                   // coefficient of the new derivative in the corrector
    double gap[4] = {};                // stiff mode: the formula's own error from y, Y[0], Y[1], Y[2]
    double jnorm = 0;
    bool factored = false, newjac = false, needjac = false;
    int coefcount = 0, failcount = 0;
    long jacinterval = 20, stepssincejac = 0;
    bool latched = false; // a step above hlimit was accepted

    // automatic choice of the mode
    double hsum = 0, href = 0;
    int hcount = 0, hspan = 12, stifftries = 0;
    double stiffness = 0; // sum over a stretch of |h| times the Lipschitz constant met in the Adams mode

    int resume = 0;

    // the vectors above that are pointers: each begins on a line of the cache
    struct alignas(64) line {
        double x[ODELANES];
    };
    std::vector<line> memory;
    std::vector<line> lanelu; // the entries of lu, all lanes of each side by side
    const double* lanefactors = nullptr;
    const odeloops* loops = nullptr;
    int wide = 0; // n rounded up to whole registers

    odestepper() = default;
    odestepper(odestepper&&) = default;
    odestepper& operator=(odestepper&&) = default;
};

void odestepsize(odestepper& s, int n); // makes room for n equations and forgets all
void odestep(odestepper& s);

/* LU by partial pivoting, no scaling; multipliers are stored negated below the diagonal. pivots[n-1] is the
 * sign of the permutation, 0 when a pivot is exactly zero. a: n by n, row by row. */
void ludecomp(double* a, int n, int* pivots);
void lusolve(const double* lu, int n, const int* pivots, double* b);
// v := -beta v, then v[i] += beta (J v)[i] in place from the first row on: two terms of the series of (J -
// 1/beta)^-1.
void neumann(const double* jac, int n, double beta, double* v);
