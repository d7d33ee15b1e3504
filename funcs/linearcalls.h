/* funcs/linearcalls.h - what the matrix builtins of several files share.
 * Owns:    nothing. Callers: the files of this room that return matrices made in plain arrays.
 * Never:   keeps a block it was given. */
#pragma once

#include "values/harray.h"

// A matrix with those cells, row by row; what is not finite is repaired and counted.
harrayptr matrixfrom(size_t rows, size_t cols, const double* x);
