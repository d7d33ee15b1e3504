/* special/expcolumn.h - the exponential, of one number or of many, with the same bits.
 * Owns:    the method and its table.
 * Callers: the builtin EXP; compiled code that runs it over rows.
 * Never:   reports: overflow is infinity, underflow is gradual. */
#pragma once

#include <cstddef>

double expone(double x);
void expcolumn(const double* x, double* y, size_t n); // y[i] = expone(x[i])
