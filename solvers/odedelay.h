/* solvers/odedelay.h - the solution at an earlier time of the integration that runs.
 * Owns:    nothing. Callers: the hook of the evaluator in solvers/odesetup.cpp. Never: steps. */
#pragma once

#include "solvers/odesetup.h"

/* State (or derivative) k at time q: constant before the start, else straight lines between the rows of
 * output that stand; so it is as accurate as the list of output times. */
double odedelay(const odesolve& solve, double q, int k, bool state);
