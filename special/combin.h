/* special/combin.h - the functions of combinatorics.
 * Owns:    factorials, binomial and multinomial coefficients, the numbers of Stirling, Catalan, Bernoulli,
 * Euler, of partitions, harmonic numbers, the parity of a permutation. Callers: the builtin dispatch, the
 * routines of special/ and stats/. Never:   prints; an argument outside the domain is noted in
 * special/fault.h. Results are exact up to 2^53. */
#pragma once

// In all of these an argument that should be whole and is not, or is negative, gives a range warning and 0,
// and overflow a range warning and MAXPOS (or MAXNEG).

double fact(double x); // x!, Gamma(x+1) for a fraction; only the negative whole numbers are refused
// n over k for real n and k (DLMF 1.2.6): for whole k n(n-1)..(n-k+1)/k!, 0 below k = 0; otherwise
// Gamma(n+1)/(Gamma(k+1) Gamma(n-k+1)).
double bincoef(double n, double k);
// (k[0]+..+k[n-1])! / (k[0]! .. k[n-1]!)
double mulcoef(const double* k, int n);
double stirl1(double n, double k); // signed Stirling numbers of the first kind, DLMF 26.8.1
double stirl2(double n, double k); // Stirling numbers of the second kind, DLMF 26.8.4
double catnum(double n);           // Catalan numbers 1, 1, 2, 5, 14, ..
double bernum(double n);           // Bernoulli numbers B(n), B(1) = -1/2 (DLMF 24.2.1)
double eulnum(double n);           // Euler numbers E(n), E(2) = -1 (DLMF 24.2.6)
double partu(double n);            // unrestricted partitions of n (DLMF 26.2)
double partd(double n);            // partitions of n into distinct parts
double harnum(double x);           // 1 + 1/2 + .. + 1/x; for a fraction psi(x+1) + gamma
// 1 for an even permutation of 1..n, -1 for an odd one; anything else a range warning and 0.
double parity(const double* p, int n);
