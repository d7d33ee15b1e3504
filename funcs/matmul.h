/* funcs/matmul.h - the matrix product.
 * Owns:    the packed panels and the register tiles.
 * Callers: the operator *, matrix powers, linear algebra and statistics.
 * Never:   reorders a sum: every cell is ((0 + a1 b1) + a2 b2) + ... as the plain loop gives it, bit for bit.
 */
#pragma once

#include "values/harray.h"

// a.cols equals b.rows. Faults are repaired where they arise, in the order of the plain loop.
harrayptr matmul(const harray* a, const harray* b);
