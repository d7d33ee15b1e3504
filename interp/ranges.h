/* interp/ranges.h - matrices written out in a statement: ranges and LIST.
 * Owns:    the rules of a range's length and last element.
 * Callers: the rows of `:` and LIST.
 * Never:   touches polstack. Operands of a range are released; the result is a temporary column. */
#pragma once

#include "values/harray.h"

#include <cstdint>

int rangeof(int a, int b);                      // a:b, by ones towards b
int rangebystep(int a, int b, int step);        // a:b:step; the sign of the step is that of b - a
int rangebycount(int a, int b, int n);          // a:b!n, n points with both ends
int listof(const int16_t* operands, int count); // a column of all scalars and elements; operands stay

// The same of numbers.
harrayptr rangematrix(double a, double b);
harrayptr stepmatrix(double a, double b, double step);
harrayptr countmatrix(double a, double b, double n);
