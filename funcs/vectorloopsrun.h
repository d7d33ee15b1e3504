/* funcs/vectorloopsrun.h - the bodies of funcs/vectorloops.h, compiled once for each kind of processor.
 * Owns:    nothing. Callers: funcs/vectorloops.cpp includes it inside a namespace a kind. Never: included
 * elsewhere. */

void axpy(size_t n, double alpha, const double* __restrict x, double* __restrict y) {
    for (size_t i = 0; i < n; i++) y[i] += alpha * x[i];
}

void axpy4(size_t n, const double* __restrict a, const double* __restrict x, size_t stride,
           double* __restrict y) {
    const double a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    const double *x0 = x, *x1 = x + stride, *x2 = x + 2 * stride, *x3 = x + 3 * stride;
    for (size_t i = 0; i < n; i++) y[i] = (((y[i] + a0 * x0[i]) + a1 * x1[i]) + a2 * x2[i]) + a3 * x3[i];
}

void rotate(size_t n, double c, double s, double* __restrict x, double* __restrict y) {
    for (size_t i = 0; i < n; i++) {
        const double p = x[i], q = y[i];
        x[i] = c * p + s * q;
        y[i] = c * q - s * p;
    }
}

// Eight partial sums, added in a fixed order.
double dotproduct(size_t n, const double* x, const double* y) {
    double sum[8] = {};
    size_t i = 0;
    for (; i + 8 <= n; i += 8)
        for (size_t k = 0; k < 8; k++) sum[k] += x[i + k] * y[i + k];
    for (size_t k = 0; i < n; i++, k++) sum[k] += x[i] * y[i];
    return ((sum[0] + sum[4]) + (sum[2] + sum[6])) + ((sum[1] + sum[5]) + (sum[3] + sum[7]));
}

// Eight sums, each with what its roundings lost.
void dotproduct2(size_t n, const double* x, const double* y, double* total) {
    constexpr double split = 134217729.0; // 2^27 + 1: a product's rounding error by halves of its factors
    double sum[8] = {}, lost[8] = {};
    const auto addeight = [&](const double* a, const double* b) {
        for (size_t k = 0; k < 8; k++) {
            const double p = a[k] * b[k], ta = split * a[k], tb = split * b[k];
            const double ah = ta - (ta - a[k]), al = a[k] - ah, bh = tb - (tb - b[k]), bl = b[k] - bh;
            const double e = ((ah * bh - p) + ah * bl + al * bh) + al * bl;
            const double t = sum[k] + p, z = t - sum[k];
            lost[k] += e + ((sum[k] - (t - z)) + (p - z));
            sum[k] = t;
        }
    };
    size_t i = 0;
    for (; i + 8 <= n; i += 8) addeight(x + i, y + i);
    double a[8] = {}, b[8] = {};
    for (size_t k = 0; i + k < n; k++) a[k] = x[i + k], b[k] = y[i + k];
    addeight(a, b);
    dd all(total[0], total[1]);
    for (size_t k = 0; k < 8; k++) all += ddsum(sum[k], lost[k]);
    total[0] = all.hi;
    total[1] = all.lo;
}

void reflect3(size_t n, double x, double y, double z, double q, double r, double* __restrict a,
              double* __restrict b, double* __restrict c) {
    for (size_t i = 0; i < n; i++) {
        const double t = x * a[i] + y * b[i] + z * c[i];
        a[i] -= t;
        b[i] -= t * q;
        c[i] -= t * r;
    }
}

void reflect2(size_t n, double x, double y, double q, double* __restrict a, double* __restrict b) {
    for (size_t i = 0; i < n; i++) {
        const double t = x * a[i] + y * b[i];
        a[i] -= t;
        b[i] -= t * q;
    }
}

constexpr looptable loops = {axpy, axpy4, rotate, dotproduct, dotproduct2, reflect3, reflect2};
