/* solvers/symsweep.h - the inverse of a symmetric matrix, one index at a time.
 * Owns:    nothing: it works in the caller's array.
 * Callers: FIT for its normal matrix under every damping factor, and for the dual of its constraints.
 * Never:   reports singularity: a pivot is held above tolerance times its diagonal.
 *
 * One n by n array, row by row, holds both: the strict upper triangle the off-diagonal entries, which stay,
 * the lower triangle with the diagonal the inverse of the active part. The diagonal of the matrix is a vector
 * of its own, so that a new damping factor costs a new diagonal alone. Method: bordering, as in the sweep
 * operator (J. H. Goodnight, The American Statistician 33 (1979) 149). */
#pragma once

#include <algorithm>
#include <vector>

template <class T> struct symsweepwork {
    std::vector<T> column, times; // scratch, kept over calls
};

template <class T> T& symat(T* a, int n, int i, int k) { return i >= k ? a[i * n + k] : a[k * n + i]; }
template <class T> T symat(const T* a, int n, int i, int k) { return i >= k ? a[i * n + k] : a[k * n + i]; }

// Adds index i to the inverse; indices from `limit` on are not looked at.
template <class T>
void symborder(int n, T* a, const T* diagonal, double tolerance, int i, int limit, std::vector<char>& active,
               symsweepwork<T>& work) {
    std::vector<T>&c = work.column, &t = work.times;
    c.resize(size_t(n));
    t.resize(size_t(n));
    active[i] = 0;
    for (int v = 0; v < limit; v++) c[v] = v == i ? diagonal[i] : v < i ? a[v * n + i] : a[i * n + v];
    T s = diagonal[i];
    for (int v = 0; v < limit; v++) {
        if (!active[v]) continue;
        T sum = 0;
        for (int u = 0; u < limit; u++)
            if (active[u]) sum += symat(a, n, v, u) * c[u];
        t[v] = sum;
        s -= c[v] * sum;
    }
    s = std::max(s, T(tolerance) * diagonal[i]);
    const T pivot = 1 / s;
    a[i * n + i] = pivot;
    for (int v = 0; v < limit; v++) {
        if (!active[v]) continue;
        const T entry = -pivot * t[v];
        symat(a, n, i, v) = entry;
        for (int u = 0; u <= v; u++)
            if (active[u]) a[v * n + u] -= entry * t[u];
    }
    active[i] = 1;
}

// Inverts anew over the indices whose flag is set and whose diagonal is not 0.
template <class T>
void symsweepall(int n, T* a, const T* diagonal, double tolerance, std::vector<char>& active,
                 symsweepwork<T>& work) {
    for (int i = 0; i < n; i++) std::fill(a + i * n, a + i * n + i + 1, T(0));
    for (int i = 0; i < n; i++)
        if (active[i] && diagonal[i] != 0) symborder(n, a, diagonal, tolerance, i, i, active, work);
}

template <class T>
void symsweepadd(int n, T* a, const T* diagonal, double tolerance, int i, std::vector<char>& active,
                 symsweepwork<T>& work) {
    symborder(n, a, diagonal, tolerance, i, n, active, work);
}

template <class T> void symsweepremove(int n, T* a, int i, std::vector<char>& active) {
    active[i] = 0;
    const T pivot = a[i * n + i];
    for (int v = 0; v < n; v++) {
        if (!active[v]) continue;
        const T ratio = symat(a, n, i, v) / pivot;
        for (int u = 0; u <= v; u++)
            if (active[u]) a[v * n + u] -= symat(a, n, i, u) * ratio;
    }
    for (int v = 0; v < n; v++) symat(a, n, i, v) = 0;
}

// result := inverse times v over the active indices; 0 elsewhere.
template <class T> void symmul(int n, const T* a, const T* v, const std::vector<char>& active, T* result) {
    for (int i = 0; i < n; i++) {
        T sum = 0;
        if (active[i])
            for (int k = 0; k < n; k++)
                if (active[k]) sum += symat(a, n, i, k) * v[k];
        result[i] = sum;
    }
}
