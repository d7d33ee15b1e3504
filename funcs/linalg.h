/* funcs/linalg.h - dense linear algebra on plain arrays, row by row, 0-based.
 * Owns:    factorisations of general matrices. Callers: the matrix builtins, matrix powers, regression,
 * solvers. Never:   sees a symbol, prints, or keeps state. Failure is a result. */
#pragma once

#include <cstddef>
#include <vector>

/* LU factors by partial pivoting: row i of the product of the factors is row perm[i] of a. False when a pivot
 * is exactly zero. (G. H. Golub, C. F. Van Loan, Matrix Computations, 4th ed., alg. 3.4.1, rows in the inner
 * loop.) */
bool lufactor(double* a, size_t n, std::vector<size_t>& perm);
// Solves for all k right sides at once: b is n by k and takes the solution.
void lusubstitute(const double* lu, size_t n, const std::vector<size_t>& perm, double* b, size_t k);
double ludeterminant(const double* lu, size_t n, const std::vector<size_t>& perm);
/* x (n by k) with a x = b, for any range of elements: infinite where it is beyond the largest number. False
 * when a pivot is exactly zero. */
bool lusolve(const double* a, size_t n, const double* b, size_t k, double* x);

/* The reflection I - beta v v' that turns x (n elements `stride` apart) into (alpha, 0...). v overwrites x,
 * v[0] = 1 included; returns beta, 0 where nothing is to be done (x stays). The square of no element may
 * overflow. */
double reflector(double* x, size_t n, size_t stride, double& alpha);
// What to take off the binary exponents of all elements so that their squares stay in range; 0 if they do.
int squarescale(const double* a, size_t count);

/* Singular values w (descending, not negative) of a (m by n, any shape), with p = min(m, n): u is m by p, v
 * is n by p, both with orthonormal columns; a = u diag(w) v'. A value that is rounding alone is exactly 0;
 * one beyond the largest number is infinite. False when a value has not settled in 30 sweeps. (Householder
 * bidiagonalisation and implicit-shift QR: G. H. Golub, C. Reinsch, Numer. Math. 14 (1970) 403.) */
bool svdcore(const double* a, size_t m, size_t n, std::vector<double>& w, std::vector<double>& u,
             std::vector<double>& v);

/* Eigenvalues wr + i wi of a (n by n, destroyed), conjugate pairs together, and the right eigenvectors as
 * columns vr + i vi of unit length (n by n). False when 30 sweeps an eigenvalue have not settled them all.
 * (Balancing, elimination to Hessenberg form, double-shift QR: J. H. Wilkinson, C. Reinsch, Handbook for
 * Automatic Computation II, Linear Algebra (1971), contributions II/11, II/13, II/15.) */
bool eigencore(std::vector<double>& a, size_t n, std::vector<double>& wr, std::vector<double>& wi,
               std::vector<double>& vr, std::vector<double>& vi);
