/* funcs/matrixresult.h - matrices made in plain arrays.
 * Owns:    nothing. Callers: the builtins of this room that compute columns and blocks outside of a matrix.
 * Never:   keeps a block it was given. */
#pragma once

#include "funcs/matrixoperand.h"
#include "values/harray.h"

#include <vector>

// A matrix with those cells, row by row; what is not finite is repaired and counted.
harrayptr matrixfrom(size_t rows, size_t cols, const double* x);
// The same as a new temporary.
int matrixresult(size_t rows, size_t cols, const std::vector<double>& x);

std::vector<double> columnof(const matrixoperand& m, size_t j); // j from 0
