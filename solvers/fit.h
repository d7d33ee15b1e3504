/* solvers/fit.h - the statement FIT.
 * Owns:    the pairs of functions and data that its clauses gather, the binding of a model to the iteration,
 * the report. Callers: the statement processor; interp/toclause.cpp for TO. Never:   iterates itself
 * (solvers/fitsolve.h). */
#pragma once

void fittoclause(); // TO: data and function on polstack
void fitstart();    // process cases FIT and WEIGHT
