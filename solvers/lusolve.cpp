// LU factors of small dense systems, and the series that replaces them for small steps.
#include "solvers/odestep.h"

#include <cmath>
#include <utility>

void ludecomp(double* a, int n, int* pivots) {
    int sign = 1;
    bool singular = false;
    for (int k = 0; k < n; k++) {
        int p = k;
        for (int i = k + 1; i < n; i++)
            if (std::fabs(a[i * n + k]) > std::fabs(a[p * n + k])) p = i;
        if (k < n - 1) pivots[k] = p;
        double* top = a + k * n;
        if (p != k) {
            sign = -sign;
            for (int j = 0; j < n; j++) std::swap(a[p * n + j], top[j]);
        }
        if (top[k] == 0) {
            singular = true;
            continue;
        }
        for (int i = k + 1; i < n; i++) {
            double* row = a + i * n;
            if (row[k] == 0) continue;
            const double m = row[k] = -row[k] / top[k];
            for (int j = k + 1; j < n; j++) row[j] += m * top[j];
        }
    }
    pivots[n - 1] = singular ? 0 : sign;
}

void lusolve(const double* lu, int n, const int* pivots, double* b) {
    // whole rows were exchanged, so the multipliers stand in their final order
    for (int k = 0; k < n - 1; k++) std::swap(b[k], b[pivots[k]]);
    for (int i = 1; i < n; i++) {
        double sum = b[i];
        for (int j = 0; j < i; j++) sum += lu[i * n + j] * b[j];
        b[i] = sum;
    }
    for (int i = n - 1; i >= 0; i--) {
        double sum = b[i];
        for (int j = i + 1; j < n; j++) sum -= lu[i * n + j] * b[j];
        b[i] = sum / lu[i * n + i];
    }
}

void neumann(const double* jac, int n, double beta, double* v) {
    for (int i = 0; i < n; i++) v[i] *= -beta;
    for (int i = 0; i < n; i++) {
        double sum = 0;
        for (int j = 0; j < n; j++) sum += jac[i * n + j] * v[j];
        v[i] += beta * sum;
    }
}
