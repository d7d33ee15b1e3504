/* funcs/dft.h - the discrete Fourier transform of any length, on plain arrays.
 * Owns:    nothing. Callers: the builtins of series. Never:   scales, or sees a symbol. */
#pragma once

#include <complex>
#include <vector>

/* x[k] := sum over j of x[j] exp(sign 2 pi i j k / n), sign -1 or 1. Passes of small factors in the order of
 * Stockham; a length with a large prime factor goes through a convolution (L. I. Bluestein, IEEE Trans. Audio
 * Electroacoust. 18 (1970) 451). */
void dft(std::vector<std::complex<double>>& x, int sign);
