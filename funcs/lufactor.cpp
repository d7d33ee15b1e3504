#include "funcs/linalg.h"
#include "funcs/scratch.h"
#include "funcs/vectorloops.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace {

constexpr size_t PANEL =
    16; // columns that are eliminated before the rest of the matrix is brought up to date

size_t pivotrow(const double* a, size_t n, size_t k) {
    size_t p = k;
    for (size_t i = k + 1; i < n; i++)
        if (std::fabs(a[i * n + k]) > std::fabs(a[p * n + k])) p = i;
    return p;
}

// row -= sum over k of l[k] * rows[k], four rows at a time
void subtractrows(size_t count, size_t width, const double* l, const double* rows, size_t stride,
                  double* row) {
    size_t k = 0;
    for (; k + 4 <= count; k += 4) {
        const double a[4] = {-l[k], -l[k + 1], -l[k + 2], -l[k + 3]};
        axpy4(width, a, rows + k * stride, stride, row);
    }
    for (; k < count; k++) axpy(width, -l[k], rows + k * stride, row);
}

// Eliminates columns from..to below the diagonal, within those columns alone.
bool factorpanel(double* a, size_t n, size_t from, size_t to, std::vector<size_t>& perm) {
    for (size_t k = from; k < to; k++) {
        const size_t p = pivotrow(a, n, k);
        if (p != k) {
            std::swap_ranges(a + p * n, a + p * n + n, a + k * n);
            std::swap(perm[p], perm[k]);
        }
        const double pivot = a[k * n + k];
        if (pivot == 0) return false;
        for (size_t i = k + 1; i < n; i++) {
            const double l = a[i * n + k] /= pivot;
            if (l != 0)
                for (size_t j = k + 1; j < to; j++) a[i * n + j] -= l * a[k * n + j];
        }
    }
    return true;
}

constexpr double WIDEST = 0x1p1000; // beyond it and its inverse, sums of products may leave the range

/* Elimination in the wide exponent range of long double, past factors of 0: for elements at the ends of the
 * range of a double, where products on the way would overflow or vanish. */
bool widesolve(const double* given, size_t n, const double* right, size_t k, double* result) {
    std::vector<long double> a(given, given + n * n), x(right, right + n * k);
    const auto subtract = [](size_t count, long double f, const long double* from, long double* to) {
        for (size_t j = 0; f != 0 && j < count; j++)
            if (from[j] != 0) to[j] -= f * from[j];
    };
    for (size_t c = 0; c < n; c++) {
        size_t p = c;
        for (size_t i = c + 1; i < n; i++)
            if (std::fabs(a[i * n + c]) > std::fabs(a[p * n + c])) p = i;
        if (a[p * n + c] == 0) return false;
        std::swap_ranges(&a[p * n], &a[p * n] + n, &a[c * n]);
        std::swap_ranges(&x[p * k], &x[p * k] + k, &x[c * k]);
        for (size_t i = c + 1; i < n; i++) {
            const long double f = a[i * n + c] / a[c * n + c];
            subtract(n - c - 1, f, &a[c * n] + c + 1, &a[i * n] + c + 1);
            subtract(k, f, &x[c * k], &x[i * k]);
        }
    }
    for (size_t i = n; i-- > 0;) {
        for (size_t c = i + 1; c < n; c++) subtract(k, a[i * n + c], &x[c * k], &x[i * k]);
        for (size_t j = 0; j < k; j++) result[i * k + j] = double(x[i * k + j] /= a[i * n + i]);
    }
    return true;
}

} // namespace

bool lufactor(double* a, size_t n, std::vector<size_t>& perm) {
    perm.resize(n);
    std::iota(perm.begin(), perm.end(), size_t(0));
    for (size_t from = 0; from < n; from += PANEL) {
        const size_t to = std::min(n, from + PANEL), width = n - to;
        if (!factorpanel(a, n, from, to, perm)) return false;
        if (width == 0) break;
        for (size_t i = from + 1; i < to; i++)
            subtractrows(i - from, width, a + i * n + from, a + from * n + to, n, a + i * n + to);
        for (size_t i = to; i < n; i++)
            subtractrows(to - from, width, a + i * n + from, a + from * n + to, n, a + i * n + to);
    }
    return true;
}

void lusubstitute(const double* lu, size_t n, const std::vector<size_t>& perm, double* b, size_t k) {
    scratch<double> given(n * k);
    std::copy_n(b, n * k, given.data());
    for (size_t i = 0; i < n; i++) std::copy_n(given.data() + perm[i] * k, k, b + i * k);
    for (size_t i = 1; i < n; i++) subtractrows(i, k, lu + i * n, b, k, b + i * k);
    for (size_t i = n; i-- > 0;) {
        subtractrows(n - i - 1, k, lu + i * n + i + 1, b + (i + 1) * k, k, b + i * k);
        const double pivot = lu[i * n + i];
        for (size_t j = 0; j < k; j++) b[i * k + j] /= pivot;
    }
}

double ludeterminant(const double* lu, size_t n, const std::vector<size_t>& perm) {
    double product = 1; // times 2^exponent: the product of some of the factors may be out of range
    long exponent = 0;
    std::vector<char> seen(n, 0);
    for (size_t i = 0; i < n; i++) {
        int factor = 0, shift = 0;
        product = std::frexp(product * std::frexp(lu[i * n + i], &factor), &shift);
        exponent += factor + shift;
        size_t length = 0; // of the cycle that starts here
        for (size_t j = i; !seen[j]; j = perm[j], length++) seen[j] = 1;
        if (length > 0 && length % 2 == 0) product = -product;
    }
    return std::ldexp(product, int(std::clamp(exponent, -100000L, 100000L)));
}

bool lusolve(const double* a, size_t n, const double* b, size_t k, double* x) {
    double most = 0;
    for (size_t i = 0; i < n * n; i++) most = std::max(most, std::fabs(a[i]));
    if (most < WIDEST && (most > 1 / WIDEST || most == 0)) {
        scratch<double> lu(n * n);
        std::copy_n(a, n * n, lu.data());
        std::vector<size_t> perm;
        if (!lufactor(lu.data(), n, perm)) return false;
        std::copy_n(b, n * k, x);
        lusubstitute(lu.data(), n, perm, x, k);
        if (std::all_of(x, x + n * k, [](double t) { return std::isfinite(t); })) return true;
    }
    return widesolve(a, n, b, k, x);
}
