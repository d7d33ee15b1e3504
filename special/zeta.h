/* special/zeta.h - the zeta function, its relatives, and the functions made of them.
 * Owns:    Riemann and Hurwitz zeta, Dirichlet's lambda and beta, the dilogarithm, Clausen's integral.
 * Callers: the builtin dispatch, the routines of special/ and stats/.
 * Never:   prints; an argument outside the domain is noted in special/fault.h. */
#pragma once

// The Riemann zeta function of real s (DLMF 25.2); 1: range warning and MAXPOS.
double zeta(double s);
// lambda(s) = 1 + 3^-s + 5^-s + .. = (1 - 2^-s) zeta(s) (Abramowitz and Stegun 23.2.20); 1: range warning and
// MAXPOS.
double lambdafn(double s);
// Dirichlet's (Catalan's) beta(s) = 1 - 3^-s + 5^-s - .. (Abramowitz and Stegun 23.2.21); beta(2) is
// Catalan's constant.
double betacat(double s);
// The sum of (q+k)^-s over k >= 0; s > 1, q > 0, not checked.
double hurwitz(double s, double q);
// q^s hurwitz(s,q): what remains when the leading term is one.
double hurwitzscaled(double s, double q);

// Li2(x) = x + x^2/4 + x^3/9 + .. (DLMF 25.12.1). Above 1 the real part, with a warning that there is an
// imaginary part -pi log(x).
double dilog(double x);
// Cl2(x) = sin(x) + sin(2x)/4 + sin(3x)/9 + .. (Abramowitz and Stegun 27.8.1), any x.
double clausen(double x);
