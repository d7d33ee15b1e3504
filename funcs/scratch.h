/* funcs/scratch.h - large working memory of one computation.
 * Owns:    its block, taken from and given back to the blocks of matrices, which stay mapped and warm.
 * Callers: builtins whose working memory is as large as a matrix. Never: fills the memory. */
#pragma once

#include "values/harray.h"

#include <type_traits>

// n elements, of no particular value; an error as for a matrix of that size.
template <typename T> struct scratch {
    static_assert(alignof(T) <= alignof(double) && std::is_trivially_destructible_v<T>);
    explicit scratch(size_t n) : size(n), block(harrayraw(cellsfor(n), 1)) {}
    T* data() { return reinterpret_cast<T*>(cells(block.get()) + 1); }
    T& operator[](size_t i) { return data()[i]; }
    T* begin() { return data(); }
    T* end() { return data() + size; }
    void swap(scratch& other) { block.swap(other.block); } // of the same size

    const size_t size;

private:
    static uint32_t cellsfor(size_t n) {
        const size_t count = (n * sizeof(T) + sizeof(double) - 1) / sizeof(double);
        return count < UINT32_MAX ? uint32_t(count) : UINT32_MAX; // more than a matrix may have: an error
    }
    harrayptr block;
};
