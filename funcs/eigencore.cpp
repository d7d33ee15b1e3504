#include "funcs/eigenimpl.h"
#include "funcs/linalg.h"
#include "funcs/vectorloops.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

namespace {

constexpr int MAXSWEEPS = 30;
constexpr double ZEROELEMENT = 1.044776e-31; // an element no larger counts as zero in the reduction

// Rows and columns scaled by powers of two until their norms agree; no rounding.
void balance(eigenwork& w) {
    const size_t n = w.n;
    w.scale.assign(n, 1);
    std::vector<double> c(n);
    for (bool settled = false; !settled;) {
        settled = true;
        for (size_t i = 0; i < n; i++) {
            double r = 0, col = 0;
            for (size_t j = 0; j < n; j++)
                if (j != i) {
                    col += std::fabs(w.at(j, i));
                    r += std::fabs(w.at(i, j));
                }
            if (col == 0 || r == 0 || !std::isfinite(col + r)) continue;
            const double sum = col + r;
            double f = 1;
            for (; col < r / 2 && f < 0x1p1000; col *= 4) f *= 2;
            for (; col >= r * 2 && f > 0x1p-1000; col /= 4) f /= 2;
            if ((col + r) / f >= 0.95 * sum) continue;
            settled = false;
            w.scale[i] *= f;
            for (size_t j = 0; j < n; j++) w.at(i, j) /= f;
            for (size_t j = 0; j < n; j++) w.at(j, i) *= f;
        }
    }
}

/* Stabilised elementary similarity transformations: the multipliers stay below the subdiagonal until the
 * transformation is put together. */
void hessenberg(eigenwork& w, std::vector<size_t>& pivot) {
    const size_t n = w.n;
    pivot.assign(n, 0);
    std::vector<double> y(n);
    for (size_t m = 1; m + 1 < n; m++) {
        size_t p = m;
        for (size_t i = m + 1; i < n; i++)
            if (std::fabs(w.at(i, m - 1)) > std::fabs(w.at(p, m - 1))) p = i;
        pivot[m] = p;
        if (p != m) {
            std::swap_ranges(w.row(p) + m - 1, w.row(p) + n, w.row(m) + m - 1); // not the multipliers
            for (size_t j = 0; j < n; j++) std::swap(w.at(j, p), w.at(j, m));
        }
        const double x = w.at(m, m - 1);
        if (std::fabs(x) <= ZEROELEMENT) {
            for (size_t i = m; i < n; i++) w.at(i, m - 1) = 0;
            continue;
        }
        for (size_t i = m + 1; i < n; i++) {
            y[i] = w.at(i, m - 1) / x;
            w.at(i, m - 1) = y[i];
            if (y[i] != 0) axpy(n - m, -y[i], w.row(m) + m, w.row(i) + m);
        }
        for (size_t j = 0; j < n; j++) w.at(j, m) += dotproduct(n - m - 1, &y[m + 1], w.row(j) + m + 1);
    }
}

void buildtransformation(eigenwork& w, const std::vector<size_t>& pivot) {
    const size_t n = w.n;
    std::vector<double> z(n * n, 0.0);
    for (size_t i = 0; i < n; i++) z[i * n + i] = 1;
    for (size_t m = n >= 2 ? n - 2 : 0; m >= 1; m--) {
        for (size_t i = m + 1; i < n; i++) {
            z[i * n + m] = w.at(i, m - 1);
            w.at(i, m - 1) = 0;
        }
        const size_t p = pivot[m];
        if (p == m) continue;
        for (size_t j = m; j < n; j++) {
            z[m * n + j] = z[p * n + j];
            z[p * n + j] = 0;
        }
        z[p * n + m] = 1;
    }
    w.zt.resize(n * n);
    for (size_t i = 0; i < n; i++)
        for (size_t j = 0; j < n; j++) w.zt[j * n + i] = z[i * n + j];
}

// The first column of the double-shift step: p, q, r at the row m where it may begin.
struct shiftstart {
    size_t m;
    double p, q, r;
};
shiftstart beginning(eigenwork& w, size_t l, size_t en, double x, double y, double prod) {
    for (size_t m = en - 2;; m--) {
        const double z = w.at(m, m), rr = x - z, ss = y - z;
        shiftstart s{m, (rr * ss - prod) / w.at(m + 1, m) + w.at(m, m + 1), w.at(m + 1, m + 1) - z - rr - ss,
                     w.at(m + 2, m + 1)};
        const double size = std::fabs(s.p) + std::fabs(s.q) + std::fabs(s.r);
        s.p /= size;
        s.q /= size;
        s.r /= size;
        if (m == l) return s;
        const double u = std::fabs(w.at(m, m - 1)) * (std::fabs(s.q) + std::fabs(s.r));
        const double v =
            std::fabs(s.p) * (std::fabs(w.at(m - 1, m - 1)) + std::fabs(z) + std::fabs(w.at(m + 1, m + 1)));
        if (u <= DBL_EPSILON * v) return s;
    }
}

// I - (1, q, r)'(x, y, z) on the rows or columns k to k + 2, or on two of them
struct reflection {
    size_t k;
    double x, y, z, q, r;
    bool three;

    void rows(size_t count, size_t stride, double* first) const { // along rows that lie `stride` apart
        if (three)
            reflect3(count, x, y, z, q, r, first, first + stride, first + 2 * stride);
        else
            reflect2(count, x, y, q, first, first + stride);
    }
    void cells(double* c) const { // of one row
        double t = x * c[0] + y * c[1];
        if (three) {
            t += z * c[2];
            c[2] -= t * r;
        }
        c[0] -= t;
        c[1] -= t * q;
    }
};

void doublestep(eigenwork& w, size_t l, size_t en, double x, double y, double prod,
                std::vector<reflection>& done) {
    const size_t n = w.n;
    auto [m, p, q, r] = beginning(w, l, en, x, y, prod);
    for (size_t i = m + 2; i <= en; i++) {
        w.at(i, i - 2) = 0;
        if (i > m + 2) w.at(i, i - 3) = 0;
    }
    done.clear();
    for (size_t k = m; k < en; k++) {
        const bool three = k + 1 < en;
        double size = 1;
        if (k > m) {
            p = w.at(k, k - 1);
            q = w.at(k + 1, k - 1);
            r = three ? w.at(k + 2, k - 1) : 0;
            size = std::fabs(p) + std::fabs(q) + std::fabs(r);
            if (size == 0) continue;
            p /= size;
            q /= size;
            r /= size;
        }
        const double s = std::copysign(std::sqrt(p * p + q * q + r * r), p);
        if (k > m)
            w.at(k, k - 1) = -s * size;
        else if (l != m)
            w.at(k, k - 1) = -w.at(k, k - 1);
        p += s;
        const reflection f{k, p / s, q / s, r / s, q / p, r / p, three};
        done.push_back(f);
        f.rows(n - k, n, w.row(k) + k);
        // columns: only the rows of the active block now, as the next reflection needs them
        const size_t last = std::min(en, k + 3);
        for (size_t i = m; i <= last; i++) f.cells(w.row(i) + k);
    }
    for (size_t i = 0; i < m; i++)
        for (const reflection& f : done) f.cells(w.row(i) + f.k);
    for (const reflection& f : done) f.rows(n, n, &w.zt[f.k * n]);
}

// The 2 by 2 block at rows en - 1 and en has settled: its eigenvalues, and if they are real, zero below them.
void settlepair(eigenwork& w, size_t en, double shift, std::vector<double>& wr, std::vector<double>& wi) {
    const size_t n = w.n, na = en - 1;
    double x = w.at(en, en);
    const double y = w.at(na, na), prod = w.at(en, na) * w.at(na, en);
    const double p = (y - x) / 2, q = p * p + prod, root = std::sqrt(std::fabs(q));
    x += shift;
    w.at(en, en) = x;
    w.at(na, na) = y + shift;
    if (q < 0) {
        wr[na] = wr[en] = x + p;
        wi[na] = root;
        wi[en] = -root;
        return;
    }
    const double z = p + std::copysign(root, p);
    wr[na] = wr[en] = x + z;
    if (z != 0) wr[en] = x - prod / z;
    wi[na] = wi[en] = 0;
    const double below = w.at(en, na), length = std::hypot(below, z);
    if (length == 0) return;
    const double s = below / length, c = z / length; // row na := c row na + s row en
    rotate(n - na, c, s, w.row(na) + na, w.row(en) + na);
    for (size_t i = 0; i <= en; i++) {
        const double g = w.at(i, na);
        w.at(i, na) = c * g + s * w.at(i, en);
        w.at(i, en) = c * w.at(i, en) - s * g;
    }
    rotate(n, c, s, &w.zt[na * n], &w.zt[en * n]);
    w.at(en, na) = 0;
}

/* Of two real shifts the one nearer to the corner counts, twice: two that differ can hold each other up for
 * ever. (D. Day, How the QR algorithm fails to converge and how to fix it, Sandia report SAND96-0913J.) */
void nearshift(double& x, double& y, double& prod) {
    const double half = (y - x) / 2, square = half * half + prod;
    if (square < 0) return;
    const double far = half + std::copysign(std::sqrt(square), half);
    if (far != 0) x -= prod / far;
    y = x;
    prod = 0;
}

// Where the block that ends at row en begins: the element before its first row counts as zero, and becomes
// so.
size_t blockstart(eigenwork& w, size_t en, double norm) {
    for (size_t l = en; l > 0; l--) {
        double s = std::fabs(w.at(l - 1, l - 1)) + std::fabs(w.at(l, l));
        if (s == 0) s = norm;
        if (std::fabs(w.at(l, l - 1)) > DBL_EPSILON * s) continue;
        w.at(l, l - 1) = 0;
        return l;
    }
    return 0;
}

// A step of other shifts than those of the corner, for a block that does not settle.
void exceptionalshift(eigenwork& w, size_t en, double& shift, double& x, double& y, double& prod) {
    shift += x;
    for (size_t i = 0; i <= en; i++) w.at(i, i) -= x;
    const double s = std::fabs(w.at(en, en - 1)) + std::fabs(w.at(en - 1, en - 2));
    x = y = 0.75 * s;
    prod = -0.4375 * s * s;
}

bool quasitriangular(eigenwork& w, double norm, std::vector<double>& wr, std::vector<double>& wi) {
    double shift = 0;
    std::vector<reflection> done;
    size_t left =
        MAXSWEEPS * std::max<size_t>(10, w.n); // shared: one that settles late may use what others left
    for (long last = long(w.n) - 1, sweeps = 0; last >= 0; sweeps++) {
        const size_t en = size_t(last), l = blockstart(w, en, norm);
        if (l + 1 >= en) {
            if (l == en) {
                wr[en] = w.at(en, en) += shift;
                wi[en] = 0;
            } else {
                settlepair(w, en, shift, wr, wi);
            }
            last = long(l) - 1;
            sweeps = -1;
            continue;
        }
        if (left-- == 0) return false;
        double x = w.at(en, en), y = w.at(en - 1, en - 1), prod = w.at(en, en - 1) * w.at(en - 1, en);
        nearshift(x, y, prod);
        if (sweeps % 10 == 9) exceptionalshift(w, en, shift, x, y, prod);
        doublestep(w, l, en, x, y, prod, done);
    }
    return true;
}

struct eigensolution {
    std::vector<double> wr, wi, vr, vi;
    double spread = 1; // of the factors of balancing
};

bool solved(std::vector<double>& a, size_t n, bool balanced, eigensolution& e) {
    eigenwork w{n, a, {}, std::vector<double>(n, 1)};
    if (balanced) balance(w);
    if (n > 0) {
        const auto [least, greatest] = std::minmax_element(w.scale.begin(), w.scale.end());
        e.spread = *greatest / *least;
    }
    double most = 0;
    for (const double x : a) most = std::max(most, std::fabs(x));
    int exponent = 0;
    if (most > 0x1p100 || (most > 0 && most < 0x1p-50)) {
        std::frexp(most, &exponent);
        for (double& x : a) x = std::ldexp(x, -exponent);
    }
    std::vector<size_t> pivot;
    hessenberg(w, pivot);
    buildtransformation(w, pivot);
    double norm = 0;
    for (size_t i = 0; i < n; i++)
        for (size_t j = i ? i - 1 : 0; j < n; j++) norm += std::fabs(w.at(i, j));
    e.wr.assign(n, 0);
    e.wi.assign(n, 0);
    if (!quasitriangular(w, norm, e.wr, e.wi)) return false;
    eigenvectors(w, norm, e.wr, e.wi, e.vr, e.vi);
    for (size_t i = 0; i < n; i++) {
        e.wr[i] = std::ldexp(e.wr[i], exponent);
        e.wi[i] = std::ldexp(e.wi[i], exponent);
    }
    return true;
}

// The largest component of A v - lambda v over all vectors, in parts of the largest element of A.
double residual(const std::vector<double>& a, size_t n, const eigensolution& e) {
    double size = 0, worst = 0;
    for (const double x : a) size = std::max(size, std::fabs(x));
    std::vector<double> re(n), im(n);
    for (size_t i = 0; i < n; i++) {
        for (size_t j = 0; j < n; j++) {
            const double wr = e.wr[j] / size, wi = e.wi[j] / size;
            re[j] = -(wr * e.vr[i * n + j] - wi * e.vi[i * n + j]);
            im[j] = -(wr * e.vi[i * n + j] + wi * e.vr[i * n + j]);
        }
        for (size_t k = 0; k < n; k++) {
            axpy(n, a[i * n + k] / size, &e.vr[k * n], re.data());
            axpy(n, a[i * n + k] / size, &e.vi[k * n], im.data());
        }
        for (size_t j = 0; j < n; j++) worst = std::max({worst, std::fabs(re[j]), std::fabs(im[j])});
    }
    return worst;
}

} // namespace

/* Balancing can do harm where it makes small elements large that only rounding made (D. S. Watkins, A case
 * where balancing is harmful, ETNA 23 (2006) 1): when it changed much and the vectors do not fit, the matrix
 * as it stands is tried, and the better answer taken. */
bool eigencore(std::vector<double>& a, size_t n, std::vector<double>& wr, std::vector<double>& wi,
               std::vector<double>& vr, std::vector<double>& vi) {
    const std::vector<double> given = a;
    eigensolution e, plain;
    bool done = solved(a, n, true, e);
    const double size = done && e.spread > 0x1p10 ? residual(given, n, e) : 0;
    if (!done || size > 1e-14 * double(n)) {
        a = given;
        if (solved(a, n, false, plain) && (!done || residual(given, n, plain) < size)) {
            e = std::move(plain);
            done = true;
        }
    }
    wr = std::move(e.wr);
    wi = std::move(e.wi);
    vr = std::move(e.vr);
    vi = std::move(e.vi);
    return done;
}
