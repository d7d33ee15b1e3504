/* special/cbessel.h - Bessel functions of real order and complex argument; Kelvin functions.
 * Owns:    nothing; principal branches of DLMF chapter 10, on the cut (negative axis) continued from above.
 * Callers: anyone; the order first, the argument last.
 * Never:   prints. A pole or overflow is noted as the range warning under the language's name. */
#pragma once

#include "special/spcomplex.h"

// kind 1 J, 2 Y, 3 I, 4 K, 5 H(1), 6 H(2); any real order. Another kind: range warning CBESS and 0.
spcomplex cbess(double kind, double nu, spcomplex z);
spcomplex cbessj(double nu, spcomplex z);
// J, Y and the Hankel functions at once.
void cjyhbs(double nu, spcomplex z, spcomplex* j, spcomplex* y, spcomplex* h1, spcomplex* h2);

// Kelvin functions of real order (DLMF 10.61), x > 0, for a whole order and selector 1, 2, 5, 6 also x <= 0.
// selector 1 ber, 2 bei, 3 ker, 4 kei, 5..8 their derivatives by x.
double kelvin(double nu, double x, double selector = 1);
