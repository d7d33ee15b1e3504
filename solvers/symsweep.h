/* solvers/symsweep.h - the inverse of a symmetric matrix, one index at a time.
 * Owns:    nothing: it works in the caller's array.
 * Callers: FIT for its normal matrix under every damping factor, and for the dual of its constraints.
 * Never:   reports singularity: a pivot is held above tolerance times its diagonal.
 *
 * One n by n array, row by row, holds both: the strict upper triangle the off-diagonal entries, which stay,
 * the lower triangle with the diagonal the inverse of the active part. The diagonal of the matrix is a vector
 * of its own, so that a new damping factor costs a new diagonal alone. Method: bordering, as in the sweep
 * operator (J. H. Goodnight, The American Statistician 33 (1979) 149). */
#pragma once

#include <vector>

struct symsweepwork {
    std::vector<double> column, times; // scratch, kept over calls
};

inline double& symat(double* a, int n, int i, int k) { return i >= k ? a[i * n + k] : a[k * n + i]; }
inline double symat(const double* a, int n, int i, int k) { return i >= k ? a[i * n + k] : a[k * n + i]; }

// Inverts anew over the indices whose flag is set and whose diagonal is not 0.
void symsweepall(int n, double* a, const double* diagonal, double tolerance, std::vector<char>& active,
                 symsweepwork& work);
// Adds index i to the inverse, or takes it out.
void symsweepadd(int n, double* a, const double* diagonal, double tolerance, int i, std::vector<char>& active,
                 symsweepwork& work);
void symsweepremove(int n, double* a, int i, std::vector<char>& active);
// result := inverse times v over the active indices; 0 elsewhere.
void symmul(int n, const double* a, const double* v, const std::vector<char>& active, double* result);
