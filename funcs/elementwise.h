/* funcs/elementwise.h - an operator on every cell of two matrices.
 * Owns:    the blocks of cells, the wrap of a smaller matrix, the repair of faulted blocks.
 * Callers: binop; matrix routines that need an operator on whole matrices.
 * Never:   multiplies matrices; knows a symbol. */
#pragma once

#include "values/harray.h"

/* Cell (i, j) of the result is a(i, j) op b(i, j); op is a token number as scalarop takes it. The result has
 * the greater number of rows and of columns, and a smaller matrix recycles. Faults are counted and told of
 * cell by cell in reading order. `room`, if given, is a or b when the caller has no more use for it and it
 * has the shape of the result: the result then takes its block, and the owner must let go of it. */
harrayptr elementwise(int op, const harray* a, const harray* b, harray* room = nullptr);
