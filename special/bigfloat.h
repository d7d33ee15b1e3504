/* special/bigfloat.h - floating-point numbers of chosen length, for sums that cancel beyond 32 digits.
 * Owns:    the digits of its numbers.
 * Callers: the hypergeometric sums and the polynomial roots.
 * Never:   overflows; results are cut, not rounded, to `width` digits of 32 bits. */
#pragma once

#include "special/doubledouble.h"

#include <cstdint>
#include <vector>

struct bigfloat {
    bool negative = false;
    int64_t exponent = 0;        // of the lowest digit: value = sum of digit[i] 2^(32 (i + exponent))
    std::vector<uint32_t> digit; // lowest first, no 0 at either end; none for zero

    bigfloat() = default;
    bigfloat(double x); // exact; x finite
    bigfloat(dd x);     // exact

    bool zero() const { return digit.empty(); }
    // The value with an error below 1e-31, as first 2^power; power is 0 for zero.
    dd value(int64_t* power) const;
    // floor of the logarithm to base 2 of the magnitude; the least number there is for zero.
    int64_t magnitude() const;
};

bigfloat bigadd(const bigfloat& a, const bigfloat& b, size_t width);
bigfloat bigmul(const bigfloat& a, const bigfloat& b, size_t width);
bigfloat bigdiv(const bigfloat& a, const bigfloat& b, size_t width); // b not zero
bigfloat bigscale(bigfloat a, int64_t power);                        // a 2^power, exact
inline bigfloat bigneg(bigfloat a) {
    a.negative = !a.negative;
    return a;
}
