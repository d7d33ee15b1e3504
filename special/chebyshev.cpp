#include "special/chebyshev.h"

double csevl(double x, const double* table, int n) {
    if (n < 1 || n > 1000) {
        spnote(SPERR, "CSEVL: number of terms must be 1 < n < 1000");
        return 0;
    }
    if (!(x >= -1 && x <= 1)) {
        spnote(SPERR, "CSEVL: value must be in -1 <= x <= 1");
        return 0;
    }
    const double twox = 2 * x;
    double b0 = 0, b1 = 0, b2 = 0;
    for (int k = n; k > 0; k--) {
        b2 = b1;
        b1 = b0;
        b0 = twox * b1 + (table[k] - b2);
    }
    return 0.5 * (b0 - b2);
}
