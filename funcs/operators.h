/* funcs/operators.h - the binary operators of the language on numbers, matrices and strings.
 * Owns:    what each operator yields, and the repair of its floating-point faults.
 * Callers: process() reduces by binop; evaluators and matrix routines use the arithmetic on plain doubles.
 * Never:   parses; assigns to a name. */
#pragma once

#include "interp/base/fpfault.h"
#include "interp/base/tokens.h"
#include "values/harray.h"

#include <cmath>

[[gnu::cold]] double powfault(double x, double y, double result);

/* x to the power y, for every ^ of the language. The square is the product, so that it is rounded correctly.
 * 0^0 is a domain error that yields 1; 0 to a negative power a singularity, MAXPOS; a negative number to a
 * broken power a domain error, 0; overflow is repaired by the sign. */
inline double fppow(double x, double y) {
    const double r = y == 2 ? x * x : std::pow(x, y);
    return fpfinite(r) && (x != 0 || y != 0) ? r : powfault(x, y, r);
}

double scalarop(double x, double y, int op); // op: a token number; 0 for one that has no meaning on numbers

// The operands are already popped; they are released, and the result is pushed on polstack.
void binop(int op, int a, int b);

// The operator #: cross products of the rows of two matrices; operands and result as for binop.
void hashop(int a, int b);

// IF c THEN a ELSE b with a matrix c: the three operands on polstack are replaced by a matrix of the shape of
// c, each cell taken from a where c is not 0 and from b where it is; a smaller a or b recycles.
void ifmatrixselect();

// m to the whole power n; cols by rows for n = -1, otherwise square, padded with zeros.
harrayptr matrixpower(const harray* m, double n);

// The pseudo-inverse by singular values, from the room of matrix functions.
struct operatorhooks {
    harrayptr (*pseudoinverse)(const harray* m);
};
extern operatorhooks operatorfns;
