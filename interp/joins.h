/* interp/joins.h - matrices put together and turned: & stacks, &' sets side by side, ' transposes.
 * Owns:    how the smaller operand is stretched (its own rows or columns repeat).
 * Callers: the rows of these operators.
 * Never:   touches polstack. Operands are released; numbers and strings are not mixed. */
#pragma once

int joinbelow(int a, int b);  // a above b
int joinbeside(int a, int b); // a left of b
int transposeof(int a);
