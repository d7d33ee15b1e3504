/* special/errorfn.h - the error function, its complement, their inverses and repeated integrals.
 * Owns:    erf, erfc, the scaled erfc, both inverses, i^n erfc.
 * Callers: the builtin dispatch, the routines of special/ and stats/.
 * Never:   prints; an argument outside the domain is noted in special/fault.h. */
#pragma once

double erffn(double x);  // 2/sqrt(pi) times the integral of exp(-t^2) from 0 to x
double erfcfn(double x); // 1 - erf(x), without cancellation
double erfcx(double x);  // exp(x^2) erfc(x); inf below -26.7

// The x with erf(x) = p. Outside [-1,1] a range warning and 0; MAXPOS at 1, MAXNEG at -1.
double erfinv(double p);
// The x with erfc(x) = q. Outside [0,2] a range warning and 0; MAXPOS at 0, MAXNEG at 2.
double erfcinv(double q);

// i^n erfc(x), the n-fold integral of erfc from x to infinity (Abramowitz and Stegun 7.2.1, DLMF 7.18), order
// first; n = -1, 0, 1, ..., else a range warning and 0.
double ierfc(double n, double x);
