/* special/polyroots.h - the roots of polynomials.
 * Owns:    nothing.
 * Callers: anyone.
 * Never:   prints; faults go to special/fault.h. */
#pragma once

#include "special/spcomplex.h"

#include <vector>

/* All roots of c[0] z^n + c[1] z^(n-1) + .. + c[n], each as often as it is multiple, by rising real, then
 * imaginary part. The roots are those of the coefficients as they stand, to the last digits, however close
 * together; but where a coefficient uses the last bits of a double (so that it may be a rounded number),
 * roots that coincide within that rounding are given as one multiple root. proot: real roots have the
 * imaginary part 0, the others come in exactly conjugate pairs. Errors: "zero degree or highest coefficient
 * equal to zero not allowed", for a number that is not finite too; "failed to converge" (proot), "ZROOT: did
 * not converge" (zroot). The result is then empty. */
std::vector<spcomplex> proot(const std::vector<double>& c);
std::vector<spcomplex> zroot(const std::vector<spcomplex>& c);
