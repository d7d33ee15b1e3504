/* special/sincolumn.h - sine and cosine, of one number or of many, with the same bits.
 * Owns:    the method and its table.
 * Callers: the builtins SIN and COS; compiled code that runs them over rows.
 * Never:   reports: every finite argument has a value. */
#pragma once

#include <cstddef>

double sinone(double x);
double cosone(double x);
void sincolumn(const double* x, double* y, size_t n); // y[i] = sinone(x[i])
void coscolumn(const double* x, double* y, size_t n);
