/* special/expint.h - exponential, logarithmic, sine and cosine integrals.
 * Owns:    Ei, E_n, li, Si, Ci, Shi, Chi, and log(1+x) with its warning.
 * Callers: the builtin dispatch, the routines of special/ and stats/.
 * Never:   prints; an argument outside the domain is noted in special/fault.h. */
#pragma once

// Ei(x), the principal value of the integral of exp(t)/t from -infinity to x (DLMF 6.2.5). 0: range warning
// and MAXNEG; overflow: range warning and MAXPOS.
double expint(double x);
// E_n(x), the integral of exp(-x t)/t^n from 1 to infinity (DLMF 8.19.3), order first; x >= 0, for whole
// n <= 0 also x < 0. Elsewhere a range warning and 0, where it is infinite and MAXPOS.
double expintn(double n, double x);
// li(x), the principal value of the integral of 1/log(t) from 0 to x (DLMF 6.2.8), x >= 0; 1: range warning
// and MAXNEG.
double logint(double x);
double sinint(double x); // Si(x), the integral of sin(t)/t from 0 to x
// Ci(x) = gamma + log(x) + the integral of (cos(t)-1)/t from 0 to x. Below 0 the real part Ci(-x), with
// a warning; 0: range warning and MAXNEG.
double cosint(double x);
double sinhint(double x); // Shi(x), the integral of sinh(t)/t from 0 to x
double coshint(double x); // Chi(x), as cosint with cosh
// log(1+x), x > -1, by Chebyshev series near 0; a warning where less than half the digits are left.
double logrel(double x);
