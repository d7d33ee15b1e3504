/* funcs/dft.h - the discrete Fourier transform of any length, on plain arrays.
 * Owns:    nothing. Callers: the builtins of series. Never:   scales, or sees a symbol. */
#pragma once

#include <complex>
#include <vector>

/* x[k] := sum over j of x[j] exp(sign 2 pi i j k / n), sign -1 or 1. Passes of small factors in the order of
 * Stockham; a length with a large prime factor goes through a convolution (L. I. Bluestein, IEEE Trans. Audio
 * Electroacoust. 18 (1970) 451). */
void dft(std::complex<double>* x, size_t n, int sign);
inline void dft(std::vector<std::complex<double>>& x, int sign) { dft(x.data(), x.size(), sign); }

/* y[k], k = 0..n/2 (n at least 1): the transform of sign -1 of n real numbers `stride` apart; those beyond
 * are the conjugates. For an even length by a complex transform of half of it. */
void realdft(const double* x, size_t stride, size_t n, std::complex<double>* y);
