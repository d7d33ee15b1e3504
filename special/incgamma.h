/* special/incgamma.h - the incomplete gamma functions, regularised.
 * Owns:    P(a,x), Q(a,x), the derivative of P by a.
 * Callers: the builtin dispatch, the routines of special/ and stats/.
 * Never:   prints; an argument outside the domain is noted in special/fault.h. */
#pragma once

// P(a,x), the integral of t^(a-1) exp(-t) / Gamma(a) from 0 to x (DLMF 8.2.4); a >= 0, x >= 0, else a range
// warning and 0.
double igamma(double a, double x);
// Q(a,x) = 1 - P(a,x), with full relative accuracy in the upper tail.
double igammac(double a, double x);
// The derivative of P(a,x) by a; domain as igamma.
double jgamma(double a, double x);

// x^a exp(-x) / Gamma(a+1), a > 0, x > 0: the common factor of these functions and of the densities made of
// them.
double gammaterm(double a, double x);
// P by its power series and Q by its continued fraction. Error when a is too large for a thousand terms.
double gser(double a, double x);
double gcf(double a, double x);
