/* solvers/odeloops.h - the loops of a step over all components of the solution, compiled for several
 * processors. Owns:    nothing. Callers: solvers/odestep.cpp alone. Never:   decides: it computes values,
 * tolerances and scaled errors, with the same bits on every processor. */
#pragma once

struct odestepper;

/* All work on s.wide components, n rounded up to whole registers; those behind n are 0 and have no error. The
 * worst error is returned: what is no number is worse than any. */
struct odeloops {
    int width = 0; // doubles in a register
    void (*adamspredict)(odestepper& s) = nullptr;
    void (*stiffpredict)(odestepper& s) = nullptr;
    void (*adamscorrect)(odestepper& s) = nullptr;
    // The tolerance, errfac times the size of y; error: a ninth of what the prediction was off, by it.
    double (*truncation)(odestepper& s) = nullptr;
    /* What one step may add to the error: within tol, by perchange times errfac times the move in one of the
     * last three steps, not below share of tol nor below rounding. */
    void (*allowance)(odestepper& s, double perchange, double share) = nullptr;
    // The error of the blended formula and of the backward formula in this step, by what is allowed; each
    // component keeps the larger of this and its error so far.
    double (*blendederror)(odestepper& s) = nullptr;
    double (*backwarderror)(odestepper& s) = nullptr;
    // Solves by the factors of ODELANES lanes; the exchanges of rows have been made.
    void (*lanesolve)(odestepper& s) = nullptr;
    // What the corrector leaves, by `allowed`.
    double (*residual)(odestepper& s, const double* allowed) = nullptr;
    // How far dy is from the derivative at the prediction, by tol.
    double (*derivativemove)(odestepper& s) = nullptr;
};

const odeloops& odeloopsbest();
