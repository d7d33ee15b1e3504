/* solvers/precise.h - the normal equations of a fit at twice the working precision.
 * Owns:    the sums, their factors, steps and inverses. Callers: solvers/fit*.cpp.
 * Never:   evaluates the model. Parameters that depend on each other cost twice as many digits in J'WJ as in
 * J; here they are there to lose. */
#pragma once

#include "solvers/fitrun.h"
#include "special/doubledouble.h"

#include <vector>

struct precisenormal {
    int n = 0;
    std::vector<dd> a;        // J'WJ, n by n, the upper triangle with the diagonal
    std::vector<dd> gradient; // J'W (y - f)
};
precisenormal precisesums(const fitrun& r);                                 // at r.fbest, with r.jac
precisenormal precisesums(const fitrun& r, const dd* resid, const dd* jac); // columns as r.jac

/* L D L' of J'WJ with `added` on its diagonal, scaled by powers of two to a diagonal near 1; a pivot is held
 * above 1e-28. Rows of a zero diagonal stay zero. */
struct precisefactor {
    int n = 0;
    std::vector<dd> l, d; // unit lower triangle; d 0: the row is left out
    std::vector<double> scale;
};
precisefactor precisefactors(const precisenormal& normal, const std::vector<double>& added);
std::vector<double> precisesolve(const precisefactor& factor, const std::vector<dd>& b);
std::vector<double> preciseinverse(const precisefactor& factor); // n by n
