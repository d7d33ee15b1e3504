#include "solvers/symsweep.h"

#include <algorithm>

namespace {

// Adds index i to the inverse; indices from `limit` on are not looked at.
void symborder(int n, double* a, const double* diagonal, double tolerance, int i, int limit,
               std::vector<char>& active, symsweepwork& work) {
    std::vector<double>&c = work.column, &t = work.times;
    c.resize(size_t(n));
    t.resize(size_t(n));
    active[i] = 0;
    for (int v = 0; v < limit; v++) c[v] = v == i ? diagonal[i] : v < i ? a[v * n + i] : a[i * n + v];
    double s = diagonal[i];
    for (int v = 0; v < limit; v++) {
        if (!active[v]) continue;
        double sum = 0;
        for (int u = 0; u < limit; u++)
            if (active[u]) sum += symat(a, n, v, u) * c[u];
        t[v] = sum;
        s -= c[v] * sum;
    }
    s = std::max(s, tolerance * diagonal[i]);
    const double pivot = 1 / s;
    a[i * n + i] = pivot;
    for (int v = 0; v < limit; v++) {
        if (!active[v]) continue;
        const double entry = -pivot * t[v];
        symat(a, n, i, v) = entry;
        for (int u = 0; u <= v; u++)
            if (active[u]) a[v * n + u] -= entry * t[u];
    }
    active[i] = 1;
}

} // namespace

void symsweepall(int n, double* a, const double* diagonal, double tolerance, std::vector<char>& active,
                 symsweepwork& work) {
    for (int i = 0; i < n; i++) std::fill(a + i * n, a + i * n + i + 1, 0.0);
    for (int i = 0; i < n; i++)
        if (active[i] && diagonal[i] != 0) symborder(n, a, diagonal, tolerance, i, i, active, work);
}

void symsweepadd(int n, double* a, const double* diagonal, double tolerance, int i, std::vector<char>& active,
                 symsweepwork& work) {
    symborder(n, a, diagonal, tolerance, i, n, active, work);
}

void symsweepremove(int n, double* a, int i, std::vector<char>& active) {
    active[i] = 0;
    const double pivot = a[i * n + i];
    for (int v = 0; v < n; v++) {
        if (!active[v]) continue;
        const double ratio = symat(a, n, i, v) / pivot;
        for (int u = 0; u <= v; u++)
            if (active[u]) a[v * n + u] -= symat(a, n, i, u) * ratio;
    }
    for (int v = 0; v < n; v++) symat(a, n, i, v) = 0;
}

void symmul(int n, const double* a, const double* v, const std::vector<char>& active, double* result) {
    for (int i = 0; i < n; i++) {
        double sum = 0;
        if (active[i])
            for (int k = 0; k < n; k++)
                if (active[k]) sum += symat(a, n, i, k) * v[k];
        result[i] = sum;
    }
}
