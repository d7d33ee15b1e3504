// The fit's iteration on plain callbacks: linear constraints against an enumeration of active sets,
// statistics, norms, models that fail.
#include "funcs/vectorloops.h"
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/fitsolve.h"
#include "solvers/precise.h"
#include "solvers/symsweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numeric>
#include <random>

namespace {

using vector = std::vector<double>;

struct testmodel {
    int n = 0;
    std::function<bool(const double* p, size_t i, double& f)> value;
    size_t m = 0;
};

bool values(void* context, const double* p, double* f) {
    const testmodel& t = *static_cast<testmodel*>(context);
    for (size_t i = 0; i < t.m; i++)
        if (!t.value(p, i, f[i])) return false;
    return true;
}

fitresult fit(testmodel& t, const vector& start, const vector& y, const solverconstraints& cons = {},
              fitswitches sw = {}, vector w = {}) {
    fitmodel model;
    model.context = &t;
    model.values = values;
    t.m = y.size();
    if (w.empty()) w.assign(y.size(), 1);
    std::vector<int> element(start.size());
    std::iota(element.begin(), element.end(), 0);
    return fitsolve(model, sw, cons, element, start, y.size(), y.data(), w.data());
}

struct fittest : testing::Test {
    void SetUp() override {
        parserreset();
        report = reportstate{};
        report.recoveryset = true;
    }
};

bool solvesquare(std::vector<vector> a, vector& x) {
    const size_t n = a.size();
    for (size_t k = 0; k < n; k++) {
        size_t p = k;
        for (size_t i = k; i < n; i++)
            if (std::fabs(a[i][k]) > std::fabs(a[p][k])) p = i;
        if (std::fabs(a[p][k]) < 1e-10) return false;
        std::swap(a[p], a[k]);
        for (size_t i = 0; i < n; i++) {
            if (i == k) continue;
            const double m = a[i][k] / a[k][k];
            for (size_t j = k; j <= n; j++) a[i][j] -= m * a[k][j];
        }
    }
    x.resize(n);
    for (size_t k = 0; k < n; k++) x[k] = a[k][n] / a[k][k];
    return true;
}

/* The least |A x - y|^2 under the constraints: over all subsets of rows held as equations, the feasible
 * stationary point with the smallest sum. */
double enumerated(const std::vector<vector>& a, const vector& y, const solverconstraints& c, vector& best) {
    const size_t n = a[0].size();
    double least = INFINITY;
    for (unsigned set = 0; set < 1u << c.count; set++) {
        std::vector<size_t> active;
        bool skip = false;
        for (size_t i = 0; i < size_t(c.count); i++) {
            if (set >> i & 1)
                active.push_back(i);
            else
                skip |= c.type[i] == 0;
        }
        if (skip || active.size() > n) continue;
        const size_t size = n + active.size();
        std::vector<vector> k(size, vector(size + 1, 0));
        for (size_t r = 0; r < a.size(); r++)
            for (size_t i = 0; i < n; i++) {
                for (size_t j = 0; j < n; j++) k[i][j] += a[r][i] * a[r][j];
                k[i][size] += a[r][i] * y[r];
            }
        for (size_t q = 0; q < active.size(); q++) {
            for (size_t j = 0; j < n; j++) k[n + q][j] = k[j][n + q] = c.coef[active[q] * n + j];
            k[n + q][size] = c.rhs[active[q]];
        }
        vector x;
        if (!solvesquare(k, x)) continue;
        bool inside = true;
        for (size_t i = 0; i < size_t(c.count); i++) {
            double v = -c.rhs[i];
            for (size_t j = 0; j < n; j++) v += c.coef[i * n + j] * x[j];
            inside &= c.type[i] == 0 ? std::fabs(v) < 1e-8 : v * c.type[i] > -1e-8;
        }
        if (!inside) continue;
        double sum = 0;
        for (size_t r = 0; r < a.size(); r++) {
            double d = y[r];
            for (size_t j = 0; j < n; j++) d -= a[r][j] * x[j];
            sum += d * d;
        }
        if (sum < least) {
            least = sum;
            best.assign(x.begin(), x.begin() + long(n));
        }
    }
    return least;
}

TEST_F(fittest, constrainedLinearFitsReachTheEnumeratedOptimum) {
    std::mt19937 random(7);
    std::normal_distribution<double> normal;
    std::uniform_int_distribution<int> type(-1, 1);
    int compared = 0, exact = 0;
    for (int trial = 0; trial < 400; trial++) {
        const size_t n = 2 + size_t(trial % 3), m = n + 4;
        std::vector<vector> a(m, vector(n));
        vector y(m), inside(n), start(n);
        for (vector& row : a)
            for (double& x : row) x = normal(random);
        for (double& x : y) x = 3 * normal(random);
        for (double& x : inside) x = normal(random);
        for (double& x : start) x = 2 * normal(random);
        solverconstraints c; // rows that a known point meets, so that the set is not empty
        c.width = int(n);
        c.count = 1 + trial % 4;
        for (int i = 0; i < c.count; i++) {
            double value = 0;
            for (size_t j = 0; j < n; j++) {
                c.coef.push_back(trial % 5 == 0 ? double(j == size_t(i) % n) : normal(random));
                value += c.coef.back() * inside[j];
            }
            c.type.push_back(i == 0 ? type(random) : (i % 2 ? 1 : -1));
            c.rhs.push_back(value - c.type.back() * std::fabs(normal(random)));
        }
        vector best;
        const double least = enumerated(a, y, c, best);
        if (!std::isfinite(least)) continue;
        testmodel t;
        t.n = int(n);
        t.value = [&](const double* p, size_t i, double& f) {
            f = 0;
            for (size_t j = 0; j < n; j++) f += a[i][j] * p[j];
            return true;
        };
        fitswitches sw;
        sw.report = 0;
        sw.tolsos = 1e-14;
        const fitresult r = fit(t, start, y, c, sw);
        EXPECT_NEAR(r.sosq, least, 1e-6 * (1 + least)) << trial;
        for (size_t i = 0; i < size_t(c.count); i++) {
            double v = -c.rhs[i];
            for (size_t j = 0; j < n; j++) v += c.coef[i * n + j] * r.p[j];
            if (c.type[i] == 0)
                EXPECT_NEAR(v, 0, 1e-6) << trial;
            else
                EXPECT_GT(v * c.type[i], -1e-6) << trial;
            if (trial % 5 == 0 && r.lagrange[i] != 0) { // a bound on one parameter: met to the last bit
                EXPECT_EQ(v, 0) << trial;
                exact++;
            }
        }
        compared++;
    }
    EXPECT_GT(compared, 350);
    EXPECT_GT(exact, 50);
}

// Norris, a certified linear regression of NIST (itl.nist.gov/div898/strd): straight line through 36 points;
// here made smaller, with the closed form as the reference.
TEST_F(fittest, lineHasTheClosedFormsErrors) {
    const vector x = {0.2, 337.4, 118.2, 884.6, 10.1, 226.5, 666.3, 996.3},
                 y = {0.1, 338.8, 118.1, 888.0, 9.2, 228.1, 668.5, 998.5};
    testmodel t;
    t.value = [&](const double* p, size_t i, double& f) { return f = p[0] + p[1] * x[i], true; };
    fitswitches sw;
    sw.report = 0;
    sw.tolsos = 1e-15;
    const fitresult r = fit(t, {0, 0.5}, y, {}, sw);
    const double n = double(x.size()), sx = std::accumulate(x.begin(), x.end(), 0.0),
                 sy = std::accumulate(y.begin(), y.end(), 0.0);
    double sxx = 0, sxy = 0;
    for (size_t i = 0; i < x.size(); i++)
        sxx += (x[i] - sx / n) * (x[i] - sx / n), sxy += (x[i] - sx / n) * (y[i] - sy / n);
    const double slope = sxy / sxx, cut = sy / n - slope * sx / n;
    double sos = 0;
    for (size_t i = 0; i < x.size(); i++) sos += std::pow(y[i] - cut - slope * x[i], 2);
    EXPECT_NEAR(r.p[1], slope, 1e-9);
    EXPECT_NEAR(r.p[0], cut, 1e-7);
    EXPECT_NEAR(r.sosq, sos, 1e-9 * sos);
    EXPECT_NEAR(r.stderrors[1], std::sqrt(sos / (n - 2) / sxx), 1e-7);
    EXPECT_NEAR(r.stderrors[0], std::sqrt(sos / (n - 2) * (1 / n + sx * sx / n / n / sxx)), 1e-6);
    EXPECT_EQ(r.converged, 1);
}

TEST_F(fittest, otherNorms) {
    // a constant: norm 1 gives the median, a high norm comes near the middle of the range
    const vector y = {1, 2, 3, 4, 100};
    testmodel t;
    t.value = [](const double* p, size_t, double& f) { return f = p[0], true; };
    fitswitches sw;
    sw.report = 0;
    sw.norm = 1;
    sw.maxiter = 500;
    sw.tolsos = 1e-14;
    EXPECT_NEAR(fit(t, {20}, y, {}, sw).p[0], 3, 1e-3);
    for (double norm : {1.5, 3.0, 4.0, 6.0}) {
        sw.norm = norm;
        const fitresult r = fit(t, {20}, y, {}, sw);
        double slope = 0, size = 0;
        for (double v : y) {
            const double term = std::pow(std::fabs(v - r.p[0]), norm - 1);
            slope += v > r.p[0] ? -term : term;
            size += term;
        }
        EXPECT_NEAR(slope / size, 0, 1e-5) << norm;
        EXPECT_EQ(r.converged, 1) << norm;
    }
}

TEST_F(fittest, standsStillAreTold) {
    testmodel t;
    t.value = [](const double* p, size_t i, double& f) { return f = p[0] * double(i), true; };
    fitswitches sw;
    sw.report = 0;
    sw.maxiter = 0;
    fitresult r = fit(t, {5, 7}, {0, 1, 2, 3}, {}, sw);
    EXPECT_EQ(r.iterations, 0);
    EXPECT_EQ(r.converged, 1);
    EXPECT_EQ(r.p[0], 5);
    EXPECT_FALSE(r.lowered);
    sw.maxiter = 50;
    r = fit(t, {5, 7}, {0, 1, 2, 3}, {}, sw);
    EXPECT_NEAR(r.p[0], 1, 1e-12);
    EXPECT_EQ(r.p[1], 7) << "a parameter without effect stays";
    EXPECT_EQ(r.stderrors[1], MAXPOS);
    EXPECT_EQ(r.dependency[1], 1);
    EXPECT_NEAR(r.sosq, 0, 1e-20);
}

TEST_F(fittest, aModelWithoutAValueIsAFailedTrial) {
    testmodel t; // a square root that the undamped step leaves
    t.value = [](const double* p, size_t i, double& f) {
        return p[0] > 0 && (f = std::sqrt(p[0]) * (1 + double(i)), true);
    };
    fitswitches sw;
    sw.report = 0;
    const fitresult r = fit(t, {100}, {0.1, 0.2, 0.3}, {}, sw);
    EXPECT_NEAR(r.p[0], 0.01, 1e-6);
    EXPECT_FALSE(fit(t, {-1}, {0.1, 0.2, 0.3}, {}, sw).started);
}

TEST_F(fittest, sweptInverseIsTheInverse) {
    std::mt19937 random(3);
    std::normal_distribution<double> normal;
    const int n = 6;
    vector a(n * n), diagonal(n), full(n * n);
    for (int i = 0; i < n; i++)
        for (int j = i; j < n; j++)
            full[i * n + j] = full[j * n + i] = i == j ? 8 + normal(random) : normal(random);
    for (int i = 0; i < n; i++) {
        diagonal[i] = full[i * n + i];
        for (int j = i + 1; j < n; j++) a[i * n + j] = full[i * n + j];
    }
    std::vector<char> active(n, 1);
    symsweepwork<double> work;
    symsweepall(n, a.data(), diagonal.data(), 1e-9, active, work);
    symsweepremove(n, a.data(), 2, active);
    symsweepadd(n, a.data(), diagonal.data(), 1e-9, 2, active, work);
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) {
            double sum = 0;
            for (int k = 0; k < n; k++) sum += full[i * n + k] * symat(a.data(), n, k, j);
            EXPECT_NEAR(sum, i == j, 1e-13);
        }
}

// The inverse of the Hilbert matrix has whole entries (M.-D. Choi, Amer. Math. Monthly 90 (1983) 301); at n =
// 10 it loses 13 digits.
TEST_F(fittest, preciseInverseKeepsItsDigits) {
    const int n = 10;
    precisenormal normal{n, std::vector<dd>(n * n), std::vector<dd>(n)};
    for (int i = 0; i < n; i++)
        for (int j = i; j < n; j++) normal.a[i * n + j] = dd(1) / dd(i + j + 1);
    const vector inverse = preciseinverse(precisefactors(normal, {}));
    EXPECT_EQ(inverse[0], 100);
    EXPECT_EQ(inverse[1], -4950);
    EXPECT_EQ(inverse[n * n - 1], 19.0 * 48620 * 48620);
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) EXPECT_EQ(inverse[i * n + j], std::round(inverse[i * n + j])) << i << j;
}

TEST_F(fittest, longSumsOfProductsLoseNothing) {
    for (size_t n : {1, 3, 8, 9, 40, 513}) {
        vector x(n), y(n);
        for (size_t i = 0; i < n; i++) { // pairs that cancel, with a last product that stays
            x[i] = i + 1 == n ? 1 : (i % 2 ? -1 : 1) * (1e15 + double(i / 2));
            y[i] = i + 1 == n ? 0.1 : 3 + double(i / 2) / 7;
        }
        if (n % 2 == 0) x[n - 2] = 0;
        double sum[2] = {0, 0};
        dotproduct2(n, x.data(), y.data(), sum);
        EXPECT_NEAR(sum[0] + sum[1], 0.1, 1e-13) << n << ": a plain sum is off by halves";
    }
}

// A far start that goes astray, and Q after each of its evaluations in turn: the report belongs to its point.
TEST_F(fittest, interruptedAnywhereTheResultIsWhole) {
    const vector x = {1, 2, 3, 5, 7, 10}, y = {109, 149, 149, 191, 213, 224}; // BoxBOD of NIST's collection
    fitswitches sw;
    sw.report = 0;
    sw.tolsos = 1e-12;
    bool ended = false;
    int retried = 0;
    for (int stop = 1; !ended && stop < 2000; stop++) {
        parserreset();
        int evaluations = 0;
        const auto model = [&](const double* p, size_t i) { return p[0] * (1 - std::exp(-p[1] * x[i])); };
        testmodel t;
        t.value = [&](const double* p, size_t i, double& f) {
            if (i == 0 && ++evaluations == stop) parser.interrupted = true;
            f = model(p, i);
            return std::isfinite(f);
        };
        const fitresult r = fit(t, {1, 1}, y, {}, sw);
        ended = !parser.interrupted;
        retried += r.retried;
        double sum = 0;
        for (size_t i = 0; i < y.size(); i++) {
            EXPECT_EQ(r.resid[i], y[i] - model(r.p.data(), i)) << stop;
            sum += r.resid[i] * r.resid[i];
        }
        ASSERT_NEAR(r.sosq, sum, 1e-9 * sum) << stop;
        EXPECT_TRUE(!ended || std::fabs(r.sosq - 1168.0088766) < 1e-4) << r.sosq;
    }
    EXPECT_TRUE(ended);
    EXPECT_GT(retried, 0);
}

} // namespace
