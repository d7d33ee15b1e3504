/* funcs/calls.h - the reduction of a call: builtins, user functions, subscripts, functions over rows.
 * Owns:    the check of a call against the builtin's signature, and the choice between its scalar and matrix
 * forms. Callers: process() for F(...) and F ON M; the evaluator and definitions check arguments. Never:
 * computes: rows of the table and the evaluator do. */
#pragma once

struct harray;

// The callee stands on polstack below its arguments, argnumber() of them; all are replaced by the result.
void builtincall();

// Holds the operands above polstack position p against the signature of the builtin there; error if they do
// not fit.
void checkargs(int p);

/* Functions over the rows of a matrix M: polstack holds n operands ending at its top, n - 1 functions and M
 * (a scalar counts as 1 by 1). Undefined derivatives are made; solutions of differential equations come from
 * one integration. ONVALUES   the n operands are replaced by a column, the one function at each row ONPOINTS
 * returns a temporary matrix: the points, then a column for each function; operands stay ONCOLUMNS  the same
 * without the points ONSCALAR   pushes the value of the one function at the one point on the scalar stack;
 * operands stay Returns 0 where nothing is said. */
enum onopmode { ONVALUES = 0, ONPOINTS = 1, ONCOLUMNS = 2, ONSCALAR = 3 };
int onop(int n, int mode);

/* What the room of differential equations takes over. Fills columns firstcol.. of result (one a function,
 * firstcol from 1) and returns true if any of the functions is a solution, its derivative or depends on one;
 * else false. */
struct onophooks {
    bool (*solutions)(const int* functions, int count, const harray* points, int mode, harray* result,
                      int firstcol);
};
extern onophooks onopfns;
