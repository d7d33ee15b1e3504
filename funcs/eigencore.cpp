#include "funcs/linalg.h"
#include "funcs/vectorloops.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <climits>
#include <cmath>
#include <complex>
#include <numeric>
#include <utility>

namespace {

constexpr int MAXSWEEPS = 30;
constexpr double ZEROELEMENT = 1.044776e-31; // an element no larger counts as zero in the reduction

using cplx = std::complex<double>;

/* h is reduced in place to Hessenberg and then to quasi-triangular form; row j of zt is column j of the
 * transformation, so that both sides of a similarity run along rows. */
struct eigenwork {
    size_t n;
    std::vector<double>& h;
    std::vector<double> zt, scale;
    double* row(size_t i) { return &h[i * n]; }
    double& at(size_t i, size_t j) { return h[i * n + j]; }
};

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

bool quasitriangular(eigenwork& w, double norm, std::vector<double>& wr, std::vector<double>& wi) {
    double shift = 0;
    std::vector<reflection> done;
    size_t left =
        MAXSWEEPS * std::max<size_t>(10, w.n); // shared: one that settles late may use what others left
    for (long last = long(w.n) - 1; last >= 0;) {
        const size_t en = size_t(last);
        for (int sweeps = 0;; sweeps++) {
            size_t l = en;
            for (; l > 0; l--) {
                double s = std::fabs(w.at(l - 1, l - 1)) + std::fabs(w.at(l, l));
                if (s == 0) s = norm;
                if (std::fabs(w.at(l, l - 1)) <= DBL_EPSILON * s) {
                    w.at(l, l - 1) = 0;
                    break;
                }
            }
            if (l == en) {
                wr[en] = w.at(en, en) += shift;
                wi[en] = 0;
                last--;
                break;
            }
            if (l + 1 == en) {
                settlepair(w, en, shift, wr, wi);
                last -= 2;
                break;
            }
            if (left-- == 0) return false;
            double x = w.at(en, en), y = w.at(en - 1, en - 1), prod = w.at(en, en - 1) * w.at(en - 1, en);
            nearshift(x, y, prod);
            if (sweeps % 10 == 9) { // exceptional shift
                shift += x;
                for (size_t i = 0; i <= en; i++) w.at(i, i) -= x;
                const double s = std::fabs(w.at(en, en - 1)) + std::fabs(w.at(en - 1, en - 2));
                x = y = 0.75 * s;
                prod = -0.4375 * s * s;
            }
            doublestep(w, l, en, x, y, prod, done);
        }
    }
    return true;
}

/* The vector of one eigenvalue of the quasi-triangular form, by substitution from row `top` down to the
 * first; re and im hold it (im stays 0 for a real one). */
struct backsubstitution {
    eigenwork& w;
    const std::vector<double>& wi;
    double least; // a divisor no smaller than this
    std::vector<double> re, im;

    cplx residual(size_t i, size_t from, size_t to, bool complex) {
        const double* t = w.row(i) + from;
        const size_t k = to - from + 1;
        return {dotproduct(k, t, &re[from]), complex ? dotproduct(k, t, &im[from]) : 0};
    }
    cplx divided(cplx a, cplx b) const { return a / (std::abs(b) < least ? cplx(least, 0) : b); }
    // Two equations, m row by row, by elimination from the largest coefficient: only the last pivot may be
    // lifted, or the two unknowns would not fit each other.
    std::pair<cplx, cplx> pairsolved(std::array<cplx, 4> m, cplx f, cplx g) const {
        const size_t big = size_t(
            std::max_element(m.begin(), m.end(), [](cplx a, cplx b) { return std::abs(a) < std::abs(b); }) -
            m.begin());
        if (big >= 2) { // from the second row
            std::swap(m[0], m[2]);
            std::swap(m[1], m[3]);
            std::swap(f, g);
        }
        if (big % 2) { // for the second unknown
            std::swap(m[0], m[1]);
            std::swap(m[2], m[3]);
        }
        const cplx pivot = std::abs(m[0]) < least ? cplx(least) : m[0], l = m[2] / pivot;
        const cplx second = divided(g - l * f, m[3] - l * m[1]), first = (f - m[1] * second) / pivot;
        return big % 2 ? std::pair(second, first) : std::pair(first, second);
    }
    void put(size_t i, cplx x) {
        re[i] = x.real();
        im[i] = x.imag();
    }
    void rescale(size_t from, size_t to) {
        double most = 0;
        for (size_t i = from; i <= from + 1 && i <= to; i++)
            most = std::max({most, std::fabs(re[i]), std::fabs(im[i])});
        if (most < 0x1p300) return;
        for (size_t i = from; i <= to; i++) {
            re[i] /= most;
            im[i] /= most;
        }
    }
    void solve(size_t next, size_t top, cplx lambda) { // rows next - 1 down to 0
        const bool complex = lambda.imag() != 0;
        for (size_t i = next; i-- > 0;) {
            const cplx r = residual(i, next, top, complex);
            if (wi[i] == 0) {
                put(i, divided(-residual(i, i + 1, top, complex), w.at(i, i) - lambda));
                rescale(i, top);
                next = i;
                continue;
            }
            const size_t k = i - 1; // the pair of rows k and i
            const cplx f = -residual(k, i + 1, top, complex);
            const auto [xk, xi] =
                pairsolved({w.at(k, k) - lambda, w.at(k, i), w.at(i, k), w.at(i, i) - lambda}, f, -r);
            put(k, xk);
            put(i, xi);
            rescale(k, top);
            next = k;
            i = k;
        }
    }
};

// Each component times its power of two, and all times one that brings the largest near 1: none is lost on
// the way.
void rescaled(const std::vector<double>& scale, std::vector<double>& re, std::vector<double>& im) {
    const auto exponent = [&](size_t i) { return std::ilogb(std::max(std::fabs(re[i]), std::fabs(im[i]))); };
    int most = INT_MIN;
    for (size_t i = 0; i < re.size(); i++)
        if (re[i] != 0 || im[i] != 0) most = std::max(most, exponent(i) + std::ilogb(scale[i]));
    if (most == INT_MIN) return;
    for (size_t i = 0; i < re.size(); i++) {
        re[i] = std::ldexp(re[i], std::ilogb(scale[i]) - most);
        im[i] = std::ldexp(im[i], std::ilogb(scale[i]) - most);
    }
}

// Unit length; of a complex vector the largest component real.
void normalise(std::vector<double>& re, std::vector<double>& im, bool complex) {
    double most = 0;
    cplx largest = 1;
    for (size_t i = 0; i < re.size(); i++) {
        const double size = complex ? std::hypot(re[i], im[i]) : std::fabs(re[i]);
        if (size > most) {
            most = size;
            largest = {re[i], im[i]};
        }
    }
    if (most == 0) return;
    double sum = 0;
    for (size_t i = 0; i < re.size(); i++)
        sum += (re[i] / most) * (re[i] / most) + (complex ? (im[i] / most) * (im[i] / most) : 0);
    const double length = most * std::sqrt(sum);
    const cplx turn = complex ? std::conj(largest / most) : cplx(1, 0);
    for (size_t i = 0; i < re.size(); i++) {
        const cplx z = cplx(re[i] / length, im[i] / length) * turn;
        re[i] = z.real();
        im[i] = complex ? z.imag() : 0;
    }
}

void eigenvectors(eigenwork& w, double norm, const std::vector<double>& wr, const std::vector<double>& wi,
                  std::vector<double>& vr, std::vector<double>& vi) {
    const size_t n = w.n;
    backsubstitution b{w, wi, std::max(DBL_EPSILON * norm, DBL_MIN), {}, {}};
    vr.assign(n * n, 0);
    vi.assign(n * n, 0);
    std::vector<double> re(n), im(n);
    for (size_t en = 0; en < n; en++) {
        const bool complex = wi[en] != 0;
        const size_t top = complex ? en + 1 : en; // of a pair the first has the positive imaginary part
        const cplx lambda(wr[en], wi[en]);
        b.re.assign(n, 0);
        b.im.assign(n, 0);
        if (complex) {
            const double a = w.at(en, en), up = w.at(en, top), down = w.at(top, en), d = w.at(top, top);
            const bool upper = std::fabs(up) >= std::fabs(down);
            b.put(en, upper ? cplx(up) : lambda - d);
            b.put(top, upper ? lambda - a : cplx(down));
        } else {
            b.re[en] = 1;
        }
        b.solve(en, top, lambda);
        std::fill(re.begin(), re.end(), 0.0);
        std::fill(im.begin(), im.end(), 0.0);
        for (size_t k = 0; k <= top; k++) {
            axpy(n, b.re[k], &w.zt[k * n], re.data());
            if (complex) axpy(n, b.im[k], &w.zt[k * n], im.data());
        }
        rescaled(w.scale, re, im);
        normalise(re, im, complex);
        for (size_t i = 0; i < n; i++) {
            vr[i * n + en] = re[i];
            vi[i * n + en] = im[i];
            if (complex) {
                vr[i * n + top] = re[i];
                vi[i * n + top] = -im[i];
            }
        }
        en = top;
    }
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
