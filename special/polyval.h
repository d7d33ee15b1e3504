/* special/polyval.h - polynomials with constant coefficients.
 * Owns:    nothing.
 * Callers: routines with coefficient tables in powers of the argument.
 * Never:   checks the range of the argument. */
#pragma once

// c[0] + c[1] t + ... as two interleaved Horner chains, which run side by side in the processor.
template <int N> inline double polyval(const double (&c)[N], double t) {
    const double t2 = t * t;
    double even = 0, odd = 0;
    for (int k = N - 1; k >= 0; k--) {
        if (k % 2)
            odd = odd * t2 + c[k];
        else
            even = even * t2 + c[k];
    }
    return even + t * odd;
}
