/* special/chebyshev.h - truncated Chebyshev series, the common means of the special functions.
 * Owns:    the sum of a series (csevl), the choice of its length (inits), the unrolled sum for a length known
 * early. Callers: the routines of special/ and stats/. A table is 1-based: cell 0 is unused, cell 1 counts
 * half. Never:   holds a table. */
#pragma once

#include "special/fault.h"

// Sum of table[1]/2 + table[k+1] T_k(x), k = 1..n-1, by Clenshaw's recurrence (Math. Comp. 9, 1955, 118).
// Errors: n outside 1..1000, x outside [-1,1]; the result is then 0.
double csevl(double x, const double* table, int n);

/* The smallest number of terms to keep so that what is dropped adds up to no more than tol: the
 * last term from the end whose addition brings the sum of magnitudes above tol. A table too short
 * for tol is noted as a warning. Usable at compile time when the table is long enough. */
constexpr int inits(const double* table, int n, double tol) {
    double sum = 0;
    for (int k = n; k > 0; k--) {
        sum += table[k] < 0 ? -table[k] : table[k];
        if (sum > tol) {
            if (k == n) spnote(SPWARN, "inits: tolerance too small\n");
            return k;
        }
    }
    return 1;
}

// The sum of csevl, to the bit, for n fixed at compile time and x known to lie in [-1,1].
template <int n> inline double csevlfixed(double x, const double* table) {
    const double twox = 2 * x;
    double b0 = 0, b1 = 0, b2 = 0;
#pragma GCC unroll 64
    for (int k = n; k > 0; k--) {
        b2 = b1;
        b1 = b0;
        b0 = twox * b1 + (table[k] - b2); // the term to the right needs no waiting for b1
    }
    return 0.5 * (b0 - b2);
}
