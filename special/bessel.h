/* special/bessel.h - Bessel functions of real order and argument, spherical ones, two integrals.
 * Owns:    nothing; definitions of DLMF chapter 10, the order first and the argument last.
 * Callers: anyone. An argument outside the domain is noted in special/fault.h under the function's name.
 * Never:   gives a complex value: where the function is complex the result is 0 with a warning. */
#pragma once

// Any real order, negative included. A negative argument needs an integer order (J, I).
// At argument 0: Y is MAXNEG and K is MAXPOS, and so are J and I of negative fractional order.
// A result too large is MAXPOS or MAXNEG with the range warning, one too small is 0.
double bessj(double nu, double x);
double bessy(double nu, double x); // x > 0
double bessi(double nu, double x);
double bessk(double nu, double x); // x > 0

// Orders 0 and 1, any argument (Y, K: x > 0; nothing is noted).
double bessj0(double x);
double bessj1(double x);
double bessy0(double x);
double bessy1(double x);
double bessi0(double x);
double bessi1(double x);
double bessk0(double x);
double bessk1(double x);

double beskes(double nu, double x); // exp(x) K_nu(x), x > 0
double besies(double nu, double x); // exp(-|x|) I_nu(x)
double besks(double nu, double x);  // K_nu(x), the unscaled companion of beskes

// The same functions by the expansions for a large argument (Hankel, DLMF 10.17, 10.40) or a large
// order (Debye, DLMF 10.19, 10.41) wherever those reach full accuracy, and as above elsewhere.
double abessj(double nu, double x);
double abessy(double nu, double x);
double abessi(double nu, double x);
double abessk(double nu, double x);

// J, Y and their derivatives by the argument, nu >= 0, x > 0. Overflow gives infinities.
void bessjynu(double nu, double x, double* j, double* y, double* jp, double* yp);
// I_nu(x), nu >= 0, x >= 0.
double bessinu(double nu, double x);
// exp(x) K_nu(x) and exp(x) K_{nu+1}(x), |nu| <= 1/2 or 0 <= nu < 1, x > 0.
void rnknus(double nu, double x, double* k0, double* k1);
// Y_nu(x) and Y_{nu+1}(x), nu >= 0, x > 0.
void besynu(double nu, double x, double* y0, double* y1);
// out[k] = J, Y of order nu + k, k = 0 .. n-1; nu >= 0, x > 0.
void besj(double nu, double x, int n, double* out);
void besy(double nu, double x, int n, double* out);

// Spherical functions, sqrt(pi/(2x)) times J, Y, I, K of order n + 1/2 (DLMF 10.47: j, y, i(1), k).
// Order n any real number; a negative argument needs an integer n.
double spbj(double n, double x);
double spby(double n, double x); // x = 0: MAXNEG
double spbi(double n, double x);
double spbk(double n, double x); // x > 0

double ibessi0(double x);   // integral of I_0 from 0 to x
double ibessjoxi(double x); // integral of J_0(t)/t from x to infinity, x > 0 (Abramowitz and Stegun 11.1)
