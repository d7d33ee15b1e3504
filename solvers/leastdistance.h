/* solvers/leastdistance.h - the point nearest to the origin that linear inequalities leave.
 * Owns:    nothing. Callers: FIT, where its own way with constraints has not met them. Never: knows a
 * parameter. Method: C. L. Lawson, R. J. Hanson, Solving Least Squares Problems (1974), chapter 23, by their
 * nonnegative least squares; it does not mind rows that repeat, oppose or imply each other. */
#pragma once

#include <cstddef>
#include <vector>

/* The least |z| with g z >= h; g: a row for each h, of `width` columns. The rows' multipliers are not
 * negative, and z is their sum over the rows of g. False: no z meets them all. */
bool leastdistance(size_t width, std::vector<double> g, std::vector<double> h,
                   std::vector<double>& multipliers);
