/* funcs/stringops.h - operators and builtins on strings.
 * Owns:    repetition, joining and comparison of strings; the string builtins that need no higher room.
 * Callers: binop hands over when an operand is a string; the call path finds the builtins by their rows.
 * Never:   changes an operand: every result is a new temporary. */
#pragma once

#include "funcs/builtin.h"

/* op: the token number of the operator; a, b: operands, already popped, one at least a string. A scalar
 * beside a string is taken as its text, always by the format -1, 8, 0, 0, 2, 0. Releases a and b, pushes the
 * result:
 *
 *   3 (^)      n copies of the string, one behind the other; n is truncated, below 1 there are none
 *   6 (+)      the second behind the first
 *   8 to 12    the comparison byte by byte, 1 or 0
 *
 * Any other operator is an error, and so is any other operand. */
void stringbinop(int op, int a, int b);

void stringopsstart(); // adds the rows of the string builtins
