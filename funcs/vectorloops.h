/* funcs/vectorloops.h - the inner loops of linear algebra, compiled for several processors.
 * Owns:    nothing. Callers: funcs/lufactor.cpp, svdcore.cpp, eigencore.cpp; fits. Never: contracts or
 * reorders a sum within one element, so that every processor gives the same digits. */
#pragma once

#include <cstddef>

void axpy(size_t n, double alpha, const double* x, double* y); // y += alpha x
// y += a0 x0 + a1 x1 + a2 x2 + a3 x3, rows xk at distance `stride`
void axpy4(size_t n, const double* a, const double* x, size_t stride, double* y);
// (x, y) := (c x + s y, c y - s x)
void rotate(size_t n, double c, double s, double* x, double* y);
double dotproduct(size_t n, const double* x, const double* y);
// sum[0] + sum[1] += x y with about 32 digits: T. Ogita, S. M. Rump, S. Oishi, SIAM J. Sci. Comput. 26 (2005)
void dotproduct2(size_t n, const double* x, const double* y, double* sum);
// t = x a + y b + z c; a -= t, b -= q t, c -= r t: a reflection of three rows, and of two
void reflect3(size_t n, double x, double y, double z, double q, double r, double* a, double* b, double* c);
void reflect2(size_t n, double x, double y, double q, double* a, double* b);
