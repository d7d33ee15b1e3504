/* values/harray.h - numeric matrices and the checked allocator.
 * Owns:    the one-block layout, the making and freeing of matrices, small arithmetic helpers.
 * Callers: every room that holds a matrix; each matrix has exactly one owner.
 * Never:   evaluates, prints a result, or shares storage. */
#pragma once

#include "interp/base/symtab.h"

#include <cstddef>
#include <cstdint>
#include <memory>

/* One block of rows*cols + 1 cells; cell 0 holds the shape, cells 1..rows*cols the elements row by row.
 * cells(m)[k], k from 1, is element k in reading order. */
struct harray {
    uint32_t rows, cols;
};
static_assert(sizeof(harray) == sizeof(double));

inline double* cells(harray* m) { return reinterpret_cast<double*>(m); }
inline const double* cells(const harray* m) { return reinterpret_cast<const double*>(m); }
inline size_t harraycount(const harray* m) { return size_t(m->rows) * m->cols; }
inline double& at(harray* m, size_t i, size_t j) {
    return cells(m)[(i - 1) * m->cols + j];
} // 1-based, unchecked
inline double at(const harray* m, size_t i, size_t j) { return cells(m)[(i - 1) * m->cols + j]; }

harray* harraynew(uint32_t rows, uint32_t cols); // zeroed; errors as xalloc
harray* harrayraw(uint32_t rows, uint32_t cols); // not zeroed: for results of which every cell is written
void harrayfree(harray* m);                      // null passes
harray* harraydup(const harray* m);              // null for null
harray* harraygrow(harray* m, uint32_t rows, uint32_t cols); // m is freed; error "Cannot shrink an array"
void harrayzero(harray* m);
double harrayelem(const harray* m, uint32_t i, uint32_t j); // wraps subscripts beyond the shape
void printharray(const harray* m);

struct harraydelete {
    void operator()(harray* m) const { harrayfree(m); }
};
using harrayptr = std::unique_ptr<harray, harraydelete>; // the owner of a matrix that is being made

// The matrix that an entry of type MATRIX holds; null while its value is pending (funcs/pending.h).
inline harray* matrixof(int idx) { return static_cast<harray*>(sym(idx).val.ptr); }
int symtabmatrix(int free1, int free2, harrayptr m); // wraps m as a temporary MATRIX entry

void* xalloc(long num, int size); // zeroed; negative num: null instead of an error
void xfree(void* p);
void* xrealloc(void* p, long bytes, bool soft);
char* xstrdup(const char* s);

inline double dmax(double a, double b) { return a < b ? b : a; }
inline double dmin(double a, double b) { return b < a ? b : a; }
inline int imax(int a, int b) { return a < b ? b : a; }
inline int imin(int a, int b) { return b < a ? b : a; }
inline double dsquare(double x) { return x * x; }
int dexponent(double x);           // unbiased binary exponent, from the bits
double powu(double x, uint32_t n); // binary powering
double powi(double x, int n);      // integer power with the system's rules for 0^0 and overflow

void valuesstart(); // sets the kinds of MATRIX and STRINGMATRIX and the operand hooks
