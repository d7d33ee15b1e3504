/* special/orthopoly.h - orthogonal polynomials, Legendre functions, Bernoulli polynomials.
 * Owns:    nothing; definitions of DLMF 18.3 and Abramowitz and Stegun 22, the order first, the argument
 * last. Callers: anyone. Never:   prints. An order that is no whole number from 0 on is the error "polynomial
 * order must be a positive integer", parameters outside the orthogonal range are the error "parameters
 * invalid"; the result is then 0. A value too large is MAXPOS or MAXNEG with the range warning. */
#pragma once

double jacobi1(double n, double a, double b, double x); // P_n^(a,b)(x), a, b > -1
double jacobi2(double n, double p, double q, double x); // G_n(p, q, x), monic on [0, 1], p - q > -1, q > 0
// C_n^(a)(x), a > -1/2; a = 0 is the limit 2 T_n(x)/n, 1 for n = 0 (A&S 22.2.3).
double gegenp(double n, double a, double x);
double cheb1(double n, double x); // T_n(x)
double cheb2(double n, double x); // U_n(x)
double laguerre(double n, double x);
double alaguerre(double n, double a, double x); // L_n^(a)(x), a > -1
double hermite(double n, double x);             // H_n(x), leading coefficient 2^n
double hermite2(double n, double x);            // He_n(x), monic
double charlier(double n, double a, double x);  // C_n(x; a), 1 at x = 0, a > 0 (DLMF 18.19)
double bernpol(double n, double x);             // B_n(x), DLMF 24.2

// Legendre functions. The degree of leg and aleg may be any real number, as P of degree -n-1 is that of n;
// a degree or order that is no whole number needs x > -1.
double leg(double n, double x); // P_n(x)
// P_n^m(x): for |x| <= 1 Ferrers' function with the factor (-1)^m (DLMF 14.7.10), for |x| > 1
// (x^2-1)^(m/2) times the m-th derivative of P_n (DLMF 14.7.11); a negative order by DLMF 14.9.3, 14.9.13.
double aleg(double n, double m, double x);
// The same by the recurrence in the degree l from P_m^m, whole 0 <= m, l; its derivative by x; and the
// derivative of P_m^m(x), where the recurrence starts. A pole of the derivative is MAXPOS or MAXNEG with a
// warning.
double plem(double l, double m, double x);
double plemder(double l, double m, double x);
double peqder(double m, double x);
