/* special/hypergeo.h - hypergeometric functions of real parameters and argument.
 * Owns:    nothing; definitions of DLMF chapters 13, 15, 16, the parameters first and the argument last.
 * Callers: anyone. Outside the domain: the range warning under the language's name and 0, or MAXPOS at a
 * pole. Never:   gives a complex value. */
#pragma once

// Gauss' function 2F1(a, b; c; x), x <= 1 (x = 1: c - a - b > 0), any x where it is a polynomial.
double hgeof(double a, double b, double c, double x);
// The generalised function 3F2(a1, a2, a3; b1, b2; x), x <= 1 (x = 1: b1 + b2 - a1 - a2 - a3 > 0).
double ghgeof(double a1, double a2, double a3, double b1, double b2, double x);
// pFq(a; b; x) with p and q parameters, p <= q + 1 or a polynomial.
double hyppfq(const double* a, int p, const double* b, int q, double x);
// Kummer's function M(a, b, x) = 1F1(a; b; x).
double chm(double a, double b, double x);
// The confluent function U(a, b, x), x > 0 (x = 0: b < 1), any x where it is a polynomial.
double chu(double a, double b, double x);
double r9chu(double a, double b, double x); // x^a U(a, b, x), x > 0
