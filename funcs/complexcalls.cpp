/* Builtins on complex matrices: two columns (real and imaginary part) for each column of numbers. */
#include "funcs/builtin.h"
#include "funcs/matrixoperand.h"
#include "funcs/matrixresult.h"
#include "funcs/rows.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <iterator>
#include <vector>

namespace {

using cplx = std::complex<double>;
using cvec = std::vector<cplx>;

struct complexmatrix {
    size_t rows, cols;
    cvec z;
};

complexmatrix complexoperand(const callargs& a, int k) {
    const matrixoperand m(a[k]);
    if (m.cols() % 2) argshape(a.name());
    complexmatrix c{m.rows(), m.cols() / 2, cvec(m.count() / 2)};
    for (size_t i = 0; i < c.z.size(); i++) c.z[i] = {m.cell()[2 * i + 1], m.cell()[2 * i + 2]};
    return c;
}

int temporary(size_t rows, size_t cols, const cvec& z) { // std::complex lies as two doubles
    return symtabmatrix(0, 0, matrixfrom(rows, 2 * cols, reinterpret_cast<const double*>(z.data())));
}

double size1(cplx z) { return std::fabs(z.real()) + std::fabs(z.imag()); }

// Gaussian elimination with partial pivoting on a and all right sides b; false when a pivot is 0.
bool eliminate(complexmatrix& a, complexmatrix& b) {
    const size_t n = a.rows, k = b.cols;
    for (size_t c = 0; c < n; c++) {
        size_t p = c;
        for (size_t i = c + 1; i < n; i++)
            if (size1(a.z[i * n + c]) > size1(a.z[p * n + c])) p = i;
        if (size1(a.z[p * n + c]) == 0) return false;
        std::swap_ranges(&a.z[p * n], &a.z[p * n] + n, &a.z[c * n]);
        std::swap_ranges(&b.z[p * k], &b.z[p * k] + k, &b.z[c * k]);
        for (size_t i = c + 1; i < n; i++) {
            const cplx f = a.z[i * n + c] / a.z[c * n + c];
            if (f == 0.0) continue;
            for (size_t j = c + 1; j < n; j++) a.z[i * n + j] -= f * a.z[c * n + j];
            for (size_t j = 0; j < k; j++) b.z[i * k + j] -= f * b.z[c * k + j];
        }
    }
    for (size_t i = n; i-- > 0;)
        for (size_t j = 0; j < k; j++) {
            for (size_t c = i + 1; c < n; c++) b.z[i * k + j] -= a.z[i * n + c] * b.z[c * k + j];
            b.z[i * k + j] /= a.z[i * n + i];
        }
    return true;
}

int cinv(const callargs& a) {
    complexmatrix m = complexoperand(a, 1);
    if (m.rows != m.cols) argshape(a.name());
    complexmatrix x{m.rows, m.rows, cvec(m.rows * m.rows)};
    for (size_t i = 0; i < m.rows; i++) x.z[i * m.rows + i] = 1;
    if (!eliminate(m, x)) tarnerror("CINV: numerically singular matrix");
    return temporary(x.rows, x.cols, x.z);
}

int clineq(const callargs& a) {
    complexmatrix m = complexoperand(a, 1), b = complexoperand(a, 2);
    if (m.rows != m.cols || m.rows != b.rows) argshape(a.name());
    if (!eliminate(m, b)) tarnerror("CLINEQ: numerically singular matrix");
    return temporary(b.rows, b.cols, b.z);
}

// CPRODUCT(A, B)
int cproduct(const callargs& a) {
    const complexmatrix x = complexoperand(a, 1), y = complexoperand(a, 2);
    if (x.cols != y.rows) argshape(a.name());
    cvec r(x.rows * y.cols);
    for (size_t i = 0; i < x.rows; i++)
        for (size_t k = 0; k < x.cols; k++)
            for (size_t j = 0; j < y.cols; j++)
                r[i * y.cols + j] += x.z[i * x.cols + k] * y.z[k * y.cols + j];
    return temporary(x.rows, y.cols, r);
}

constexpr valuerow values[] = {{-701, cinv}, {-700, clineq}, {-699, cproduct}};

} // namespace

void complexrows() { builtinadd(values, int(std::size(values))); }
