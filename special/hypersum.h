/* special/hypersum.h - sums of hypergeometric series, whatever they cancel.
 * Owns:    nothing.
 * Callers: the hypergeometric, Struve and Legendre functions.
 * Never:   continues a series beyond its circle of convergence: see hypcontinue. */
#pragma once

#include "special/doubledouble.h"

#include <cstdint>
#include <vector>

// The number m 2^power.
struct widevalue {
    dd m;
    int64_t power = 0;
};
// The product with exp(e) and a factor as a double; 0 or infinity beyond the doubles.
double widedouble(const widevalue& v, dd factor = 1, dd e = 0);

/* The sum over k of prod (a_i)_k / prod (b_j)_k x^k/k!, with an error near 1e-27 of the result: first in 32
 * digits, and if its terms cancel more than those carry, in as many digits as they need. False if the terms
 * do not become small (divergence, or more than some 100000 terms). A series that an a_i = -n ends has n+1
 * terms; b_j = 0, -1, .. is allowed where such an end comes first. */
bool hypersum(const std::vector<dd>& a, const std::vector<dd>& b, dd x, widevalue* sum);

/* The function with p = q + 1 numerator parameters (2 or 3) continued from its circle along the real axis to
 * x below 1, by Taylor's series of its differential equation; 1 - x is given apart, exact for x near 1. False
 * where the parameters are so large that errors would grow beyond the 32 digits. */
bool hypcontinue(const std::vector<dd>& a, const std::vector<dd>& b, dd x, dd oneminusx, widevalue* value);

// n for a parameter -n, n = 0, 1, ..; -1 for any other.
int64_t endingorder(dd a);
