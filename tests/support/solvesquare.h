// tests/support/solvesquare.h - small linear systems, for answers found by enumeration.
#pragma once

#include <cmath>
#include <utility>
#include <vector>

// Solves the square system whose right side is the last column, by elimination; false when it is singular.
inline bool solvesquare(std::vector<std::vector<double>> a, std::vector<double>& x) {
    const size_t n = a.size();
    for (size_t k = 0; k < n; k++) {
        size_t p = k;
        for (size_t i = k; i < n; i++)
            if (std::fabs(a[i][k]) > std::fabs(a[p][k])) p = i;
        if (std::fabs(a[p][k]) < 1e-10) return false;
        std::swap(a[p], a[k]);
        for (size_t i = 0; i < n; i++) {
            if (i == k) continue;
            const double m = a[i][k] / a[k][k];
            for (size_t j = k; j <= n; j++) a[i][j] -= m * a[k][j];
        }
    }
    x.resize(n);
    for (size_t k = 0; k < n; k++) x[k] = a[k][n] / a[k][k];
    return true;
}
