/* solvers/odeensemble.h - one system for several sets of parameters, integrated side by side by one sequence
 * of steps. Owns:    the programs that take the parameters as inputs, the output of all lanes. Callers: FIT's
 * differences (solvers/fitbind.h). Never:   tells anything: where an integration of one set would have
 * something to tell (a fault, a step at its floor, a key), it gives up, and each set is integrated alone. */
#pragma once

#include "solvers/odesetup.h"

#include <vector>

struct odeensemble {
    std::vector<int> parms;                     // symbols of the parameters: scalars
    flatptr start, righthand, jacobian, extras; // of the time, the states and the parameters
    int givenup = 0;                            // runs in a row
    int used = 0;                               // lanes of the last run
    harrayptr out;
    oderun run;
};

/* Integrates for `count` sets of parameters (1..FLATLANES, one behind the other in `sets`), over times, with
 * the switches of `solve`, which has been prepared by odeinit. Each lane keeps the tolerance that it would
 * keep alone. False where that cannot be done; nothing has been told then, and the symbols of the states may
 * hold anything. The symbols of the parameters are not touched. */
bool odeensemblerun(odeensemble& e, odesolve& solve, const double* sets, int count, const double* times,
                    long ntimes);
// Column as from odecolumn, row and lane from 0.
double odeensemblevalue(const odeensemble& e, const odesystem& system, size_t row, int column, int lane);
