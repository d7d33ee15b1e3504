/* special/complexfn.h - elementary and gamma functions of a complex argument.
 * Owns:    nothing; principal branches of DLMF chapter 4, the argument of z in (-pi, pi]. The odd inverse
 *          functions stay odd on their cuts: arcsin(2) is pi/2 - 1.317i, arcsin(-2) its negative.
 * Callers: anyone. Faults go to special/fault.h; a pole is the range warning under the language's name.
 * Never:   prints. A part too large is MAXPOS or MAXNEG with the range warning. */
#pragma once

#include "special/spcomplex.h"

// a/b; b = 0: the error "complex division by zero" and 0.
spcomplex cdivide(spcomplex a, spcomplex b);

spcomplex cexpfn(spcomplex z);
spcomplex csqrtfn(spcomplex z);
spcomplex clogfn(spcomplex z); // 0: range warning CLOG, real part MAXNEG
spcomplex cpowfn(spcomplex z, spcomplex w);
spcomplex clnrel(spcomplex z); // log(1 + z); a warning where 1 + z loses half the digits of z

/* All elementary functions by number, which is the language's code of the function without its sign:
 *   1 exp          11 sinh    46 arsinh           69 digamma
 *   2 log          12 cosh    47 arcosh           70 gamma
 *   3 log10        13 tanh    48 artanh           17 log gamma
 *  67 log2        113 coth    49 arcoth          269 log(1 + z)
 *   4 square root 112 sech    50 arsech           23 |z|   (real)
 *   5 sin         111 csch    51 arcsch           19 arg z (real)
 *   7 cos          14 arcsin  79 arccot = arctan(1/z)
 *   9 tan          15 arccos  80 arcsec
 *  64 cot          16 arctan  81 arccsc
 *  74 sec
 *  75 csc
 * and 400 plus an operator's token for two arguments: 403 z^w, 404 z w, 405 z/w, 406 z + w, 407 z - w.
 * 2 with w not 0 is the logarithm to base w. Any other number: range warning CMATH and 0. */
spcomplex cmath(double selector, spcomplex z, spcomplex w = {});

spcomplex cpsi(spcomplex z);   // digamma
spcomplex clngam(spcomplex z); // log Gamma, continuous off the negative axis (DLMF 5.4, 5.9)
spcomplex cgamma(spcomplex z);
spcomplex
c9lgmc(spcomplex z); // clngam(z) - (z-1/2) log z + z - log(sqrt(2 pi)), the rest of Stirling's formula
spcomplex cce1(spcomplex z); // E_1(z), DLMF 6.2.1
