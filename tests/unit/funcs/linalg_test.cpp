// Factorisations of general matrices: residuals at rounding level over easy, graded, deficient and huge ones.
#include "funcs/linalg.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <functional>
#include <random>
#include <string>

namespace {

using vec = std::vector<double>;

vec randommatrix(size_t m, size_t n, unsigned seed) {
    std::mt19937_64 g(seed);
    vec a(m * n);
    for (double& x : a) x = double(g() >> 11) * 0x1p-53 - 0.5;
    return a;
}
double largest(const vec& a) {
    double most = 0;
    for (const double x : a) most = std::max(most, std::fabs(x));
    return most;
}
// The largest element of x'x - I for the columns of x.
double orthogonality(const vec& x, size_t m, size_t p) {
    double worst = 0;
    for (size_t j = 0; j < p; j++)
        for (size_t k = 0; k < p; k++) {
            double sum = j == k ? -1 : 0;
            for (size_t i = 0; i < m; i++) sum += x[i * p + j] * x[i * p + k];
            worst = std::max(worst, std::fabs(sum));
        }
    return worst;
}

struct matrixcase {
    std::string name;
    size_t m, n;
    vec a;
};

std::vector<matrixcase> cases() {
    std::vector<matrixcase> all;
    for (const auto& [m, n] : {std::pair<size_t, size_t>{1, 1},
                               {1, 7},
                               {7, 1},
                               {2, 2},
                               {6, 4},
                               {4, 6},
                               {40, 40},
                               {60, 20},
                               {20, 60},
                               {120, 120}})
        all.push_back({"random", m, n, randommatrix(m, n, unsigned(m * 1000 + n))});
    const auto shaped = [&](const char* name, size_t m, size_t n, double (*f)(double, double)) {
        vec a(m * n);
        for (size_t i = 0; i < m; i++)
            for (size_t j = 0; j < n; j++) a[i * n + j] = f(double(i), double(j));
        all.push_back({name, m, n, a});
    };
    shaped("zero", 4, 3, [](double, double) { return 0.0; });
    shaped("ones", 9, 9, [](double, double) { return 1.0; });
    shaped("identity", 8, 8, [](double i, double j) { return double(i == j); });
    shaped("rank 2", 12, 9, [](double i, double j) { return i + 3 * j; });
    shaped("Hilbert", 12, 12, [](double i, double j) { return 1 / (i + j + 1); });
    shaped("graded", 10, 10, [](double i, double j) { return std::pow(10, -3 * (i + j)) * (1 + i * j); });
    shaped("huge", 5, 5, [](double i, double j) { return 1e300 * std::cos(1 + i * 7 + j * j); });
    shaped("tiny", 5, 5, [](double i, double j) { return 1e-300 * std::cos(1 + i * 7 + j * j); });
    shaped("wide range", 6, 6, [](double i, double j) { return i == j ? std::pow(10, 100 * (i - 3)) : 0; });
    shaped("nilpotent", 10, 10, [](double i, double j) { return double(j == i + 1); });
    shaped("bidiagonal with zeros", 10, 10,
           [](double i, double j) { return i == j ? double(int(i) % 3 != 0) : double(j == i + 1); });
    return all;
}

TEST(svdcore, rebuildsTheMatrixFromOrthonormalFactors) {
    for (const matrixcase& c : cases()) {
        SCOPED_TRACE(c.name + " " + std::to_string(c.m) + " by " + std::to_string(c.n));
        vec w, u, v;
        ASSERT_TRUE(svdcore(c.a.data(), c.m, c.n, w, u, v));
        const size_t p = std::min(c.m, c.n);
        ASSERT_EQ(w.size(), p);
        EXPECT_TRUE(std::is_sorted(w.rbegin(), w.rend()));
        EXPECT_GE(w.back(), 0);
        EXPECT_LT(orthogonality(u, c.m, p), 1e-13);
        EXPECT_LT(orthogonality(v, c.n, p), 1e-13);
        const double size = std::max(largest(c.a), DBL_MIN);
        for (size_t i = 0; i < c.m; i++)
            for (size_t j = 0; j < c.n; j++) {
                double sum = -c.a[i * c.n + j] / size;
                for (size_t k = 0; k < p; k++) sum += u[i * p + k] * (w[k] / size) * v[j * p + k];
                ASSERT_NEAR(sum, 0, 2e-15 * double(std::max(c.m, c.n)) + 1e-14) << i << ", " << j;
            }
    }
}

// Values from numpy.linalg.svd and, for the Hilbert matrix, mpmath with 50 digits.
TEST(svdcore, knownValues) {
    vec w, u, v;
    const vec spd = {4, 1, 2, 1, 3, 0, 2, 0, 5};
    ASSERT_TRUE(svdcore(spd.data(), 3, 3, w, u, v));
    const double values[] = {6.669079088282288, 3.476023602918134, 1.854897308799577};
    for (int k = 0; k < 3; k++) EXPECT_NEAR(w[size_t(k)], values[k], 1e-14);
    vec hilbert(64);
    for (size_t k = 0; k < 64; k++) hilbert[k] = 1.0 / double(k / 8 + k % 8 + 1);
    ASSERT_TRUE(svdcore(hilbert.data(), 8, 8, w, u, v));
    EXPECT_NEAR(w[0], 1.6959389969219498, 1e-14);
    EXPECT_NEAR(w[7], 1.1115389663724424e-10, 1e-15);
}

size_t rankof(size_t m, size_t n, const vec& a) {
    vec w, u, v;
    EXPECT_TRUE(svdcore(a.data(), m, n, w, u, v));
    return size_t(std::count_if(w.begin(), w.end(), [](double x) { return x != 0; }));
}

// What rounding alone leaves is exactly 0; what the elements determine stays, however small.
TEST(svdcore, valuesOfRoundingAloneAreZero) {
    EXPECT_EQ(rankof(2, 2, {1, 2, 2, 4}), 1u);
    EXPECT_EQ(rankof(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}), 2u);
    EXPECT_EQ(rankof(3, 2, {0.1, 0.3, 0.2, 0.6, 0.3, 0.9}), 1u) << "singular but for the rounding of tenths";
    EXPECT_EQ(rankof(3, 3, {1, 2, 0, 3, 6, 0, 5, 10, 0}), 1u);
    for (const size_t n : {5, 20, 90}) {
        EXPECT_EQ(rankof(n, n, vec(n * n, 1.0)), 1u) << n;
        vec a(n * n);
        for (size_t k = 0; k < n * n; k++) a[k] = double(k + 1);
        EXPECT_EQ(rankof(n, n, a), 2u) << n;
    }
    EXPECT_EQ(rankof(2, 2, {1, 1, 1, 1 + 0x1p-48}), 2u);
    EXPECT_EQ(rankof(2, 2, {1, 1, 0, 1e-20}), 2u);
    EXPECT_EQ(rankof(2, 2, {1, 1e-20, 1e-20, 1e-30}), 2u);
    EXPECT_EQ(rankof(4, 4, {1e150, 0, 0, 0, 0, 1e-150, 0, 0, 0, 0, 1e-300, 0, 0, 0, 0, 1}), 4u);
}

// Product of the eigenvectors with A against lambda times them; each of unit length.
void checkeigen(const matrixcase& c, double tolerance) {
    SCOPED_TRACE(c.name + " " + std::to_string(c.n));
    const size_t n = c.n;
    vec h = c.a, wr, wi, vr, vi;
    ASSERT_TRUE(eigencore(h, n, wr, wi, vr, vi));
    const double size = std::max(largest(c.a), DBL_MIN);
    double trace = 0, sum = 0;
    for (size_t i = 0; i < n; i++) {
        trace += c.a[i * n + i] / size;
        sum += wr[i] / size;
        double length = 0;
        for (size_t k = 0; k < n; k++)
            length += vr[k * n + i] * vr[k * n + i] + vi[k * n + i] * vi[k * n + i];
        EXPECT_NEAR(length, 1, 1e-13);
        for (size_t k = 0; k < n; k++) {
            double re = -(wr[i] * vr[k * n + i] - wi[i] * vi[k * n + i]) / size;
            double im = -(wr[i] * vi[k * n + i] + wi[i] * vr[k * n + i]) / size;
            for (size_t j = 0; j < n; j++) {
                re += c.a[k * n + j] / size * vr[j * n + i];
                im += c.a[k * n + j] / size * vi[j * n + i];
            }
            ASSERT_NEAR(re, 0, tolerance) << i << ", " << k;
            ASSERT_NEAR(im, 0, tolerance) << i << ", " << k;
        }
    }
    EXPECT_NEAR(sum, trace, tolerance * double(n));
}

TEST(eigencore, vectorsSatisfyTheirEquation) {
    for (const matrixcase& c : cases())
        if (c.m == c.n) checkeigen(c, 1e-14 * double(c.n) + 1e-14);
    checkeigen({"random", 200, 200, randommatrix(200, 200, 5)}, 5e-12);
    vec jordan(64 * 64, 0.0), permutation(50 * 50, 0.0), companion(100, 0.0);
    for (size_t i = 0; i < 64; i++) {
        jordan[i * 65] = 2;
        if (i < 63) jordan[i * 65 + 1] = 1;
    }
    checkeigen({"Jordan block", 64, 64, jordan}, 1e-13);
    for (size_t i = 0; i < 50; i++) permutation[i * 50 + (i + 1) % 50] = 1;
    checkeigen({"cyclic permutation", 50, 50, permutation}, 1e-13);
    const double cubes[10] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 1}; // x^10 = 1
    for (size_t j = 0; j < 10; j++) companion[j] = cubes[j];
    for (size_t i = 1; i < 10; i++) companion[i * 10 + i - 1] = 1;
    checkeigen({"companion", 10, 10, companion}, 1e-14);
    // two real shifts that differ hold each other up (D. Day, SAND96-0913J)
    for (const double h : {1e-2, 1e-6, 1e-9, 1e-15})
        checkeigen({"held up", 4, 4, {0, 1, 0, 0, 1, 0, h, 0, 0, -h, 0, 1, 0, 0, 1, 0}}, 1e-14);
    vec bipartite(100), small(81, 0.0); // eigenvalues in pairs of opposite sign settle late
    for (unsigned seed = 1; seed <= 200; seed++) {
        std::mt19937_64 g(seed);
        for (size_t k = 0; k < 100; k++) bipartite[k] = (k / 10 + k) % 2 ? double(g() % 2) : 0;
        checkeigen({"bipartite", 10, 10, bipartite}, 1e-13);
    }
    // vectors and reflections whose elements span the range of a double
    for (size_t i = 0; i < 9; i++)
        for (size_t j = 0; j < 9; j++)
            if ((i * 7 + j * 5) % 4 == 0) small[i * 9 + j] = std::pow(10, -double((i * 37 + j * 61) % 300));
    vec h = small, wr, wi, vr, vi, u, v;
    ASSERT_TRUE(eigencore(h, 9, wr, wi, vr, vi));
    for (size_t j = 0; j < 9; j++) {
        double length = 0;
        for (size_t i = 0; i < 9; i++)
            length += vr[i * 9 + j] * vr[i * 9 + j] + vi[i * 9 + j] * vi[i * 9 + j];
        EXPECT_NEAR(length, 1, 1e-14);
    }
    ASSERT_TRUE(svdcore(small.data(), 9, 9, wr, u, v));
    EXPECT_LT(orthogonality(u, 9, 9), 1e-14);
    EXPECT_LT(orthogonality(v, 9, 9), 1e-14);
    // balancing makes the small elements large (D. S. Watkins, ETNA 23 (2006) 1)
    checkeigen({"harmed by balancing", 5, 5, {0, 3.2573e-13,  0, 1, 0, 1,           0, 1, 0, -1.282e-13,
                                              0, -1.7633e-13, 0, 1, 0, -3.9219e-13, 0, 1, 0, 4.843e-14,
                                              0, 1,           0, 1, 0}},
               1e-13);
    checkeigen({"wide range",
                4,
                4,
                {410.2, 2.5e-09, 2e-12, -3.8e-12, -4.07e+19, 2.15e+18, 1.8e-09, -117662962, 1.2e-07, 3500452,
                 -2196.6, -43.7, -3.9e-19, 1.27e+19, -1.9e-11, 4.8e-09}},
               1e-13);
    // D^-1 R D for powers of ten: bad scaling that balancing takes out
    vec bad = randommatrix(6, 6, 3);
    for (size_t i = 0; i < 6; i++)
        for (size_t j = 0; j < 6; j++) bad[i * 6 + j] *= std::pow(10, 4 * (double(i) - double(j)));
    checkeigen({"badly scaled", 6, 6, bad}, 1e-14);
}

// x^3 - 6x^2 + 11x - 6, a rotation with a factor, and a defective matrix with the threefold eigenvalue 1.
TEST(eigencore, knownValues) {
    const struct {
        size_t n;
        vec a, re, im;
        double tolerance;
    } rows[] = {{3, {6, -11, 6, 1, 0, 0, 0, 1, 0}, {1, 2, 3}, {0, 0, 0}, 1e-13},
                {3, {0, -1, 0, 1, 0, 0, 0, 0, 2}, {0, 0, 2}, {-1, 1, 0}, 1e-15},
                {3, {1, 1, 0, 0, 1, 1, 0, 0, 1}, {1, 1, 1}, {0, 0, 0}, 1e-15},
                {2, {1, -1e-200, 1e200, 1}, {1, 1}, {-1, 1}, 1e-14}};
    for (const auto& row : rows) {
        vec h = row.a, wr, wi, vr, vi;
        ASSERT_TRUE(eigencore(h, row.n, wr, wi, vr, vi));
        std::vector<std::pair<double, double>> found;
        for (size_t i = 0; i < row.n; i++) found.push_back({std::round(wr[i] * 1e6), wi[i]});
        std::sort(found.begin(), found.end());
        std::sort(wr.begin(), wr.end());
        for (size_t i = 0; i < row.n; i++) {
            EXPECT_NEAR(wr[i], row.re[i], row.tolerance);
            EXPECT_NEAR(found[i].second, row.im[i], row.tolerance);
        }
    }
}

TEST(lufactor, solvesForAllRightSides) {
    for (const size_t n : {1, 2, 15, 16, 17, 33, 100}) {
        const vec a = randommatrix(n, n, unsigned(n)), x = randommatrix(n, 3, 9);
        vec lu = a, b(n * 3, 0.0);
        for (size_t i = 0; i < n; i++)
            for (size_t j = 0; j < n; j++)
                for (size_t k = 0; k < 3; k++) b[i * 3 + k] += a[i * n + j] * x[j * 3 + k];
        std::vector<size_t> perm;
        ASSERT_TRUE(lufactor(lu.data(), n, perm));
        lusubstitute(lu.data(), n, perm, b.data(), 3);
        for (size_t k = 0; k < n * 3; k++) EXPECT_NEAR(b[k], x[k], 1e-11) << n;
    }
    vec outofrange = {1e200, 0, 0, 0, 0, 1e200, 0, 0, 0, 0, 1e-200, 0, 0, 0, 0, -1e-190};
    std::vector<size_t> perm;
    ASSERT_TRUE(lufactor(outofrange.data(), 4, perm));
    EXPECT_NEAR(ludeterminant(outofrange.data(), 4, perm), -1e10, 1e-4);
    vec lu = {0, 2, 3, 0};
    ASSERT_TRUE(lufactor(lu.data(), 2, perm));
    EXPECT_EQ(ludeterminant(lu.data(), 2, perm), -6);
    vec singular = {1, 2, 2, 4};
    EXPECT_FALSE(lufactor(singular.data(), 2, perm));
    vec cycle = {0, 1, 0, 0, 0, 1, 1, 0, 0}; // an even permutation
    ASSERT_TRUE(lufactor(cycle.data(), 3, perm));
    EXPECT_EQ(ludeterminant(cycle.data(), 3, perm), 1);
}

// Elements at the ends of the range: the solution is right wherever it can be told.
TEST(lusolve, widestRange) {
    const struct {
        size_t n;
        vec a, b, x;
    } rows[] = {{2, {1.7e308, 1.7e308, -1.7e308, 1.7e308}, {1.7e308, 1.7e308}, {0, 1}},
                {2, {5e-324, 1e-323, 1e-323, 5e-324}, {1.5e-323, 1.5e-323}, {1, 1}},
                {3, {1e300, 0, 0, 0, 1e-300, 0, 0, 0, 1}, {1e300, 1, 3}, {1, 1e300, 3}},
                {2, {1e-320, 0, 0, 1}, {1, 2}, {INFINITY, 2}},
                {2, {1, 0, 1, 1e-310}, {1, 1}, {1, 0}}};
    for (const auto& row : rows) {
        vec b(row.n);
        ASSERT_TRUE(lusolve(row.a.data(), row.n, row.b.data(), 1, b.data()));
        for (size_t i = 0; i < row.n; i++)
            if (row.x[i] == INFINITY)
                EXPECT_EQ(b[i], INFINITY);
            else
                EXPECT_NEAR(b[i], row.x[i], 1e-15 * std::fabs(row.x[i])) << row.a[0];
    }
    const vec singular = {1e308, 1e308, 1e308, 1e308}, b = {1, 1};
    vec x(2);
    EXPECT_FALSE(lusolve(singular.data(), 2, b.data(), 1, x.data()));
}

} // namespace
