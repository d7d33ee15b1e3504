/* funcs/matmultiles.h - the innermost loop of the matrix product, by processor.
 * Owns:    the tiles of sums that are held in vector registers.
 * Callers: matmul.cpp.
 * Never:   changes the order of a sum or fuses a product into it: all kinds give the same bits. */
#pragma once

#include <cstddef>

/* A tile is rows by cols sums, stored row by row. run adds `depth` terms to each: term k of cell (i, j) is
 * a[k * rows + i] * b[k * cols + j]. */
struct matmultiles {
    size_t rows, cols;
    void (*run)(size_t depth, const double* a, const double* b, double* tile);
};

const matmultiles& matmulbesttiles();  // of this processor
const matmultiles* matmulkinds(int k); // the k-th kind that this processor has, from 0; null beyond
