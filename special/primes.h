/* special/primes.h - prime numbers.
 * Owns:    factors of a whole number, lists of primes, the count of primes, the n-th prime.
 * Callers: the builtin dispatch, which makes matrices of the lists.
 * Never:   prints; an argument outside the domain is noted in special/fault.h as an error. */
#pragma once

#include <vector>

// The prime factors of n in ascending order, each as often as it divides n; none for 1. Error, and none,
// unless n is whole and 1 <= n < 2^53 - 1.
std::vector<double> factorfn(double n);

// The count of primes up to n, for PRIMES; error, and 0, unless n is whole and 1 <= n < 2^32 - 1.
double primecount(double n);
// Writes the primes up to n in ascending order; `out` has room for primecount(n).
void primesto(double n, double* out);

// The n-th prime, NPRIME(1) = 2; error, and 0, unless n is whole and 1 <= n < 2^27 - 1. At the limit some 50
// ms.
double nprime(double n);
