/* Builtins of linear algebra: inverse, decompositions, linear equations, norms. The factorisations are those
 * of funcs/linalg.h; here they get their operands, their layout and their words. */
#include "funcs/builtin.h"
#include "funcs/linalg.h"
#include "funcs/matrixoperand.h"
#include "funcs/matrixresult.h"
#include "funcs/operators.h"
#include "funcs/rows.h"
#include "funcs/scratch.h"
#include "funcs/vectorloops.h"
#include "interp/base/fpfault.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace {

using vec = std::vector<double>;

vec copied(const matrixoperand& m) { return vec(m.cell() + 1, m.cell() + 1 + m.count()); }

void needsquare(const matrixoperand& m, const char* name) {
    if (m.rows() != m.cols()) argshape(name);
}

struct svdresult {
    vec w, u, v;
    bool done;
    explicit svdresult(const harray* m) { done = svdcore(cells(m) + 1, m->rows, m->cols, w, u, v); }
};

// X with m X = b, b of `cols` columns; an error with those words where m is singular.
int solution(const matrixoperand& m, const double* b, size_t cols, const char* words) {
    harrayptr x(harrayraw(m.m->rows, uint32_t(cols)));
    double* cell = cells(x.get()) + 1;
    if (!lusolve(m.cell() + 1, m.rows(), b, cols, cell)) tarnerror("%s", words);
    for (size_t k = 0; k < m.rows() * cols; k++) cell[k] = fpcheck(cell[k]);
    return symtabmatrix(0, 0, std::move(x));
}

int inv(const callargs& a) {
    const matrixoperand m(a[1]);
    needsquare(m, a.name());
    const size_t n = m.rows();
    scratch<double> unit(n * n);
    std::fill(unit.begin(), unit.end(), 0.0);
    for (size_t i = 0; i < n; i++) unit[i * n + i] = 1;
    return solution(m, unit.data(), n, "INV: numerically singular matrix");
}

// V diag(1/w, 0 for a w of 0) U'
harrayptr pseudoinverse(const harray* m) {
    const svdresult s(m);
    if (!s.done) tarnerror("INV used svd, which failed");
    const size_t rows = m->rows, cols = m->cols, p = s.w.size();
    const int exponent = squarescale(s.w.data(), p); // of values so small that their inverses overflow
    vec x(cols * rows, 0.0), ut(p * rows);
    for (size_t k = 0; k < p; k++) {
        const double w = std::ldexp(s.w[k], -exponent);
        for (size_t i = 0; i < rows; i++) ut[k * rows + i] = w != 0 ? s.u[i * p + k] / w : 0;
    }
    for (size_t j = 0; j < cols; j++)
        for (size_t k = 0; k < p; k++) axpy(rows, s.v[j * p + k], &ut[k * rows], &x[j * rows]);
    for (double& t : x) t = std::ldexp(t, -exponent);
    return matrixfrom(cols, rows, x.data());
}

int lineq(const callargs& a) {
    const matrixoperand m(a[1]), b(a[2]);
    if (m.rows() != m.cols() || m.rows() != b.rows()) argshape(a.name());
    return solution(m, b.cell() + 1, b.m->cols, "LINEQ: numerically singular matrix");
}

double det(const callargs& a) {
    const matrixoperand m(a[1]);
    needsquare(m, a.name());
    vec lu = copied(m);
    std::vector<size_t> perm;
    if (!lufactor(lu.data(), m.rows(), perm)) return 0;
    return fpcheck(ludeterminant(lu.data(), m.rows(), perm));
}

// A row of singular values, then U, then V.
int svd(const callargs& a) {
    const matrixoperand m(a[1]);
    const svdresult s(m.m);
    if (!s.done) tarnerror("SVD failed to converge");
    vec block = s.w;
    block.insert(block.end(), s.u.begin(), s.u.end());
    block.insert(block.end(), s.v.begin(), s.v.end());
    return matrixresult(1 + m.rows() + m.cols(), s.w.size(), block);
}

/* Two rows with the real and imaginary parts of the eigenvalues, n rows with the real parts of the vectors
 * (one a column), n with their imaginary parts. The largest real part first; of a pair that with the
 * positive imaginary part. */
int eigen(const callargs& a) {
    const matrixoperand m(a[1]);
    needsquare(m, a.name());
    const size_t n = m.rows();
    vec h = copied(m), wr, wi, vr, vi;
    if (!eigencore(h, n, wr, wi, vr, vi)) tarnerror("EIGEN: iteration failed to converge");
    std::vector<size_t> order(n);
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t i, size_t j) {
        return wr[i] != wr[j] ? wr[i] > wr[j] : std::fabs(wi[i]) > std::fabs(wi[j]);
    });
    vec block((2 * n + 2) * n);
    for (size_t j = 0; j < n; j++) {
        const size_t from = order[j];
        block[j] = wr[from];
        block[n + j] = wi[from];
        for (size_t i = 0; i < n; i++) {
            block[(2 + i) * n + j] = vr[i * n + from];
            block[(2 + n + i) * n + j] = vi[i * n + from];
        }
    }
    return matrixresult(2 * n + 2, n, block);
}

// Rows k.. of the columns from.. of r (n columns) turned by the reflection in v and beta.
void reflectfrom(vec& r, size_t n, size_t k, size_t from, const vec& v, double beta, vec& work) {
    if (beta == 0) return;
    const size_t width = n - from;
    work.assign(width, 0);
    for (size_t i = 0; i < v.size(); i++) axpy(width, v[i], &r[(k + i) * n + from], work.data());
    for (size_t i = 0; i < v.size(); i++) axpy(width, -beta * v[i], work.data(), &r[(k + i) * n + from]);
}

/* QRFAC(A), A m by n: with p = min(m, n), Q (m by p, orthonormal columns; columns of 0 fill it up to n) and
 * under it R (p by n, upper triangular, no diagonal element negative); A = Q R. (Householder reflections:
 * Golub, Van Loan, Matrix Computations, 4th ed., alg. 5.2.1.) */
int qrfac(const callargs& a) {
    const matrixoperand given(a[1]);
    const size_t m = given.rows(), n = given.cols(), p = std::min(m, n);
    vec r = copied(given), q(m * p, 0.0), beta(p), work;
    const int exponent = squarescale(r.data(), r.size());
    if (exponent != 0)
        for (double& x : r) x = std::ldexp(x, -exponent);
    std::vector<vec> v(p);
    for (size_t k = 0; k < p; k++) {
        for (size_t i = k; i < m; i++) v[k].push_back(r[i * n + k]);
        double alpha = 0;
        beta[k] = reflector(v[k].data(), m - k, 1, alpha);
        if (k + 1 < n) reflectfrom(r, n, k, k + 1, v[k], beta[k], work);
        r[k * n + k] = alpha;
    }
    for (size_t k = 0; k < p; k++) q[k * p + k] = 1;
    for (size_t k = p; k-- > 0;) reflectfrom(q, p, k, k, v[k], beta[k], work);
    vec block((m + p) * n, 0.0);
    for (size_t k = 0; k < p; k++) {
        const double sign = r[k * n + k] < 0 ? -1 : 1;
        for (size_t i = 0; i < m; i++) block[i * n + k] = sign * q[i * p + k] + 0.0; // no -0
        for (size_t j = k; j < n; j++) block[(m + k) * n + j] = sign * std::ldexp(r[k * n + j], exponent);
    }
    return matrixresult(m + p, n, block);
}

double rank(const callargs& a) {
    const svdresult s(matrixoperand(a[1]).m);
    if (!s.done) tarnerror("svd failed in RANK");
    return double(std::count_if(s.w.begin(), s.w.end(), [](double w) { return w != 0; }));
}

double cond(const callargs& a) {
    const svdresult s(matrixoperand(a[1]).m);
    if (!s.done) tarnerror("COND: svd analysis failed to converge");
    double least = MAXPOS;
    for (const double w : s.w)
        if (w > 0) least = std::min(least, w);
    if (least == 0) tarnwarn("a singular value is 0.0: the strict condition number is infinite");
    return s.w.empty() ? 0 : fpdiv(s.w[0], least);
}

// (sum of |x|^p)^(1/p) without overflow on the way; the largest for p = MAXPOS, their number for p = 0.
double vectornorm(const double* x, size_t n, size_t stride, double p) {
    double most = 0, sum = 0;
    for (size_t i = 0; i < n; i++) most = std::max(most, std::fabs(x[i * stride]));
    if (p == 0) {
        for (size_t i = 0; i < n; i++) sum += x[i * stride] != 0;
        return sum;
    }
    if (p >= MAXPOS || most == 0) return most;
    if (p == 1) {
        for (size_t i = 0; i < n; i++) sum += std::fabs(x[i * stride]);
        return sum;
    }
    for (size_t i = 0; i < n; i++) {
        const double t = std::fabs(x[i * stride]) / most;
        sum += p == 2 ? t * t : std::pow(t, p);
    }
    return most * (p == 2 ? std::sqrt(sum) : std::pow(sum, 1 / p));
}

double length(const callargs& a) {
    const matrixoperand m(a[1]);
    const double p = a.scalar(2, 2);
    if (!(p >= 0)) tarnerror("LENGTH: norm must be non-negative");
    return fpcheck(vectornorm(m.cell() + 1, m.count(), 1, p));
}

double dualexponent(double p) { return p >= MAXPOS ? 1 : p == 1 ? MAXPOS : p / (p - 1); }

// The vector of q-norm 1 whose product with x is the p-norm of x, p and q dual.
void dualvector(vec& x, double p) {
    const double size = vectornorm(x.data(), x.size(), 1, p);
    if (size == 0) return;
    for (double& t : x) t = std::copysign(std::pow(std::fabs(t) / size, p - 1), t);
}

/* The norm of A subordinate to the p-norm of vectors for a general p > 1: the power method from each unit
 * vector of the columns with the largest norms. It climbs to a local maximum. (N. J. Higham, Numer. Math. 62
 * (1992) 539.) */
double powernorm(const matrixoperand& m, double p) {
    const size_t rows = m.rows(), cols = m.cols();
    const double* a = m.cell() + 1;
    double best = 0;
    for (size_t start = 0; start < std::min<size_t>(cols + 1, 20); start++) {
        vec x(cols, start == cols ? std::pow(double(cols), -1 / p) : 0.0), y(rows);
        if (start < cols) x[start] = 1;
        double size = 0;
        for (int step = 0; step < 200; step++) {
            for (size_t i = 0; i < rows; i++) y[i] = dotproduct(cols, a + i * cols, x.data());
            const double now = vectornorm(y.data(), rows, 1, p);
            if (now <= size * (1 + 1e-15)) break;
            size = now;
            dualvector(y, p);
            std::fill(x.begin(), x.end(), 0.0);
            for (size_t i = 0; i < rows; i++) axpy(cols, y[i], a + i * cols, x.data());
            dualvector(x, dualexponent(p));
        }
        best = std::max(best, size);
    }
    return best;
}

double mnorm(const callargs& a) {
    const matrixoperand m(a[1]);
    const double p = a.scalar(2, 2);
    if (!(p >= 1)) argrange(a.name());
    if (m.count() == 0) return 0;
    if (m.cols() == 1) return fpcheck(vectornorm(m.cell() + 1, m.count(), 1, p));
    if (m.rows() == 1) return fpcheck(vectornorm(m.cell() + 1, m.count(), 1, dualexponent(p)));
    if (p == 2) {
        const svdresult s(m.m);
        if (!s.done) tarnerror("MNORM: svd failed to converge");
        return fpcheck(s.w[0]);
    }
    double most = 0;
    if (p == 1)
        for (size_t j = 1; j <= m.cols(); j++)
            most = std::max(most, vectornorm(m.cell() + j, m.rows(), m.cols(), 1));
    else if (p >= MAXPOS)
        for (size_t i = 0; i < m.rows(); i++)
            most = std::max(most, vectornorm(m.cell() + 1 + i * m.cols(), m.cols(), 1, 1));
    else
        most = powernorm(m, p);
    return fpcheck(most);
}

double mrho(const callargs& a) {
    const matrixoperand m(a[1]);
    needsquare(m, a.name());
    vec h = copied(m), wr, wi, vr, vi;
    if (!eigencore(h, m.rows(), wr, wi, vr, vi)) tarnerror("MRHO(M) eigen() did not converge");
    double most = 0;
    for (size_t i = 0; i < wr.size(); i++) most = std::max(most, std::hypot(wr[i], wi[i]));
    return fpcheck(most);
}

constexpr numberrow numbers[] = {{-403, det},   {-421, cond}, {-422, rank},
                                 {-423, mnorm}, {-424, mrho}, {-446, length}};
constexpr valuerow values[] = {{-601, inv}, {-602, svd}, {-607, eigen}, {-608, lineq}, {-757, qrfac}};

} // namespace

void linearrows() {
    builtinadd(numbers, int(std::size(numbers)));
    builtinadd(values, int(std::size(values)));
    operatorfns.pseudoinverse = pseudoinverse;
}
