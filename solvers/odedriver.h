/* solvers/odedriver.h - an integration from its start values to its last output time.
 * Owns:    the output matrix while it is filled, the report lines, the treatment of steps that cannot shrink
 * further. Callers: INTEGRATE, FIT, MINIMIZE and solutions called inside expressions, through
 * solvers/odesetup.h. Never:   knows a symbol: the model is a table of callbacks. */
#pragma once

#include "solvers/odestep.h"
#include "values/harray.h"

// Thrown out of an integration that is to be silent where it would have something to tell.
struct odegivenup {};

struct odemodel {
    int n = 0;      // components
    int nextra = 0; // output functions
    double t0 = 0;  // start point
    void* context = nullptr;
    void (*start)(void* context, double* y) = nullptr;
    void (*deriv)(void* context, double t, const double* y, double* dy) = nullptr;
    // Row by row, lane by lane; null: forward differences, which a silent model does not take.
    void (*jacobian)(void* context, double t, const double* y, const double* dy, double* jac) = nullptr;
    void (*extras)(void* context, double t, const double* y, const double* dy, double* values) = nullptr;
    // Systems side by side, n being the equations of all; see odestepper.
    int lanes = 1, used = 1;
    bool silent = false; // callbacks may throw odegivenup too
};

// The switches of the user, read once a solve.
struct odeswitches {
    int method = 0;         // METHOD: odemethod
    int jacsw = 1;          // JACSW: 1 symbolic, 2 never renewed by need, else numeric
    int disaster = 0;       // DISASTERSW
    int report = 0;         // ODERPT
    double errfac = 1e-6;   // ERRFAC
    bool mandatory = false; // MANDSW: land on each output time
};

/* What an integration is doing; a model whose right-hand side looks back in time reads it. Times are output
 * times from 0; rows[i] of the output matrix: t; y1, dy1, y2, dy2...; the output functions. */
struct oderun {
    odestepper s;
    const double* times = nullptr;
    long ntimes = 0;
    long row = 0; // output rows stored
    harray* out = nullptr;
    int dir = 1;
    double t0 = 0;
    std::vector<double> y0; // start values
    long nderiv = 0, njac = 0;
    bool complete = false; // every row is stored
    bool interrupted = false;
};

/* Fills `out` (ntimes rows, 2n + nextra + 1 columns, cleared first) with the solution at `times`, in their
 * order. Rows behind an early end stay zero; run.complete tells. */
void odeintegrate(const odemodel& model, const odeswitches& switches, const double* times, long ntimes,
                  harray* out, oderun& run);
