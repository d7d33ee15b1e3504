/* funcs/matrixoperand.h - an operand seen as a matrix, in place.
 * Owns:    the 1 by 1 stand-in of a scalar, for as long as it lives.
 * Callers: operators and builtins that take a scalar or a matrix alike.
 * Never:   copies a matrix, or makes an entry in the symbol table. */
#pragma once

#include "values/harray.h"

// entry: an element of polstack, negative for a cell of the scalar stack, 0 for an argument not given (m is
// null). An operand that is neither scalar nor matrix, or has no value yet, is an error.
struct matrixoperand {
    harray* m;
    explicit matrixoperand(int entry);
    matrixoperand(const matrixoperand&) = delete;
    matrixoperand& operator=(const matrixoperand&) = delete;

    size_t rows() const { return m->rows; }
    size_t cols() const { return m->cols; }
    size_t count() const { return harraycount(m); }
    const double* cell() const { return cells(m); } // cell()[k], k from 1

private:
    double one[2];
};

// A warning that the operand has no value, if it is a name that has none: to follow the refusal of an
// operand.
void tellundefined(int entry);

double scalaroperand(int entry); // a scalar's value; one that has none yet is an error
