/* solvers/minreport.h - what MINIMIZE and MAXIMIZE say at the end.
 * Owns:    the closing report and the warnings behind it. Callers: solvers/minimize.cpp.
 * Never:   changes a result. */
#pragma once

#include "solvers/minsolve.h"

#include <vector>

void minreport(const minresult& r, const minswitches& sw, bool constrained); // under report bit 512
// What a reader of "Converged." should know besides.
void minwarnings(const minproblem& problem, const minresult& r, const std::vector<double>& start);
