// The fit's iteration on plain callbacks: linear constraints against an enumeration of active sets,
// statistics, norms, models that fail.
#include "funcs/vectorloops.h"
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/fitsolve.h"
#include "solvers/precise.h"
#include "solvers/symsweep.h"
#include "support/solvesquare.h"

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
    std::function<double(const double* p)> weight; // of every observation; empty: the fit's own
    size_t m = 0;
};

void weights(void* context, const double* p, double* w0) {
    const testmodel& t = *static_cast<testmodel*>(context);
    for (size_t i = 0; i < t.m; i++) w0[i] = t.weight(p);
}

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
    if (t.weight) model.weights = weights;
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

double rowvalue(const solverconstraints& c, size_t i, const double* x) {
    double v = -c.rhs[i];
    for (size_t j = 0; j < size_t(c.width); j++) v += c.coef[i * size_t(c.width) + j] * x[j];
    return v;
}

double worstviolation(const solverconstraints& c, const double* x) {
    double worst = 0;
    for (size_t i = 0; i < size_t(c.count); i++) {
        const double v = rowvalue(c, i, x);
        worst = std::max(worst, c.type[i] == 0 ? std::fabs(v) : -v * c.type[i]);
    }
    return worst;
}

// A linear model, its data and constraints, for the enumeration.
struct linearproblem {
    std::vector<vector> a;
    vector y;
    solverconstraints c;
    size_t n() const { return a[0].size(); }
    double sum(const double* x) const {
        double total = 0;
        for (size_t r = 0; r < a.size(); r++) {
            double d = y[r];
            for (size_t j = 0; j < n(); j++) d -= a[r][j] * x[j];
            total += d * d;
        }
        return total;
    }
};

// The stationary point with the rows of `active` held as equations; false where they depend on each other.
bool stationary(const linearproblem& p, const std::vector<size_t>& active, vector& x) {
    const size_t n = p.n(), size = n + active.size();
    std::vector<vector> k(size, vector(size + 1, 0));
    for (size_t r = 0; r < p.a.size(); r++)
        for (size_t i = 0; i < n; i++) {
            for (size_t j = 0; j < n; j++) k[i][j] += p.a[r][i] * p.a[r][j];
            k[i][size] += p.a[r][i] * p.y[r];
        }
    for (size_t q = 0; q < active.size(); q++) {
        for (size_t j = 0; j < n; j++) k[n + q][j] = k[j][n + q] = p.c.coef[active[q] * n + j];
        k[n + q][size] = p.c.rhs[active[q]];
    }
    return solvesquare(k, x);
}

/* The least sum under the constraints: over all sets of at most n rows held as equations, the feasible
 * stationary point with the smallest sum. Equalities need not all be held: those that others imply are met
 * anyway. */
void enumerate(const linearproblem& p, std::vector<size_t>& active, size_t from, double& least) {
    vector x;
    if (stationary(p, active, x) && worstviolation(p.c, x.data()) < 1e-8)
        least = std::min(least, p.sum(x.data()));
    if (active.size() == p.n()) return;
    for (size_t i = from; i < size_t(p.c.count); i++) {
        active.push_back(i);
        enumerate(p, active, i + 1, least);
        active.pop_back();
    }
}

// What the rows of a random problem are like beside each other.
enum rowkind { ANY, BOUNDS, CORNER, COPIES, OPPOSITE, EQUALITIES, MANY, KINDS };

linearproblem randomproblem(std::mt19937& random, rowkind kind, size_t n) {
    std::normal_distribution<double> normal;
    linearproblem p{std::vector<vector>(n + 4, vector(n)), vector(n + 4), {}};
    for (vector& row : p.a)
        for (double& x : row) x = normal(random);
    for (double& x : p.y) x = 3 * normal(random);
    vector inside(n); // meets all rows
    for (double& x : inside) x = normal(random);
    const auto add = [&](const double* row, int type, double slack) {
        double value = 0;
        for (size_t j = 0; j < n; j++) {
            p.c.coef.push_back(row[j]);
            value += row[j] * inside[j];
        }
        p.c.type.push_back(type);
        p.c.rhs.push_back(value - type * slack);
        p.c.count++;
    };
    p.c.width = int(n);
    vector row(n);
    const size_t count = kind == MANY ? 40 : 1 + random() % 4;
    for (size_t i = 0; i < count; i++) {
        for (size_t j = 0; j < n; j++) row[j] = kind == BOUNDS ? double(j == i % n) : normal(random);
        const int type = kind == EQUALITIES ? i % 2 - 1 : random() % 2 ? 1 : -1;
        const double slack = kind == CORNER ? 0 : std::fabs(normal(random));
        add(row.data(), type, slack);
        if (kind == COPIES) { // the row again, at twice its size, and turned round
            for (double& x : row) x *= 2;
            add(row.data(), type, 2 * slack);
            for (double& x : row) x = -x;
            add(row.data(), -type, 2 * slack);
        }
        if (kind == OPPOSITE) add(row.data(), -type, 0); // between two sides, or on the one where they meet
    }
    return p;
}

fitresult fitlinear(const linearproblem& p, const vector& start) {
    testmodel t;
    t.n = int(p.n());
    t.value = [&](const double* x, size_t i, double& f) {
        f = 0;
        for (size_t j = 0; j < p.n(); j++) f += p.a[i][j] * x[j];
        return true;
    };
    fitswitches sw;
    sw.report = 0;
    sw.tolsos = 1e-14;
    return fit(t, start, p.y, p.c, sw);
}

TEST_F(fittest, constrainedLinearFitsReachTheEnumeratedOptimum) {
    std::mt19937 random(7);
    std::normal_distribution<double> normal;
    int exact = 0;
    for (int trial = 0; trial < 700; trial++) {
        const rowkind kind = rowkind(trial % KINDS);
        const linearproblem p = randomproblem(random, kind, kind == MANY ? 2 : 2 + size_t(trial % 3));
        vector start(p.n());
        for (double& x : start) x = 2 * normal(random);
        double least = INFINITY;
        std::vector<size_t> active;
        enumerate(p, active, 0, least);
        ASSERT_TRUE(std::isfinite(least)) << trial;
        const fitresult r = fitlinear(p, start);
        EXPECT_NEAR(r.sosq, least, 1e-6 * (1 + least)) << trial << " kind " << kind;
        EXPECT_LT(worstviolation(p.c, r.p.data()), 1e-6) << trial << " kind " << kind;
        for (size_t i = 0; kind == BOUNDS && i < size_t(p.c.count); i++) {
            if (r.lagrange[i] == 0) continue;
            EXPECT_EQ(rowvalue(p.c, i, r.p.data()), 0)
                << trial << ": a bound on one parameter is met to the last bit";
            exact++;
        }
    }
    EXPECT_GT(exact, 50);
}

// A row that positive multiples of others rule out, behind them and before further ones.
TEST_F(fittest, theRowThatContradictsIsNamed) {
    std::mt19937 random(5);
    std::normal_distribution<double> normal;
    for (int trial = 0; trial < 200; trial++) {
        linearproblem p = randomproblem(random, rowkind(trial % MANY), 2 + size_t(trial % 3));
        const vector start(p.n(), 0.5);
        ASSERT_EQ(fitlinear(p, start).contradiction, 0) << trial;
        const int before = p.c.count;
        vector sum(p.n(), 0);
        double right = 0;
        for (int i = 0; i < before; i++) { // as rows of the form at most
            const double factor = (p.c.type[i] > 0 ? -1 : 1) * std::fabs(normal(random));
            for (size_t j = 0; j < p.n(); j++) sum[j] += factor * p.c.coef[size_t(i) * p.n() + j];
            right += factor * p.c.rhs[i];
        }
        p.c.coef.insert(p.c.coef.end(), sum.begin(), sum.end());
        p.c.rhs.push_back(right + 0.01 * (1 + std::fabs(right)));
        p.c.type.push_back(1);
        p.c.count++;
        for (size_t j = 0; j < p.n(); j++) p.c.coef.push_back(normal(random));
        p.c.rhs.push_back(0);
        p.c.type.push_back(-1);
        p.c.count++;
        EXPECT_EQ(fitlinear(p, start).contradiction, before + 1) << trial;
    }
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
    symsweepwork work;
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

// A far start that goes astray, and Q after each of its evaluations in turn: the report belongs to its point,
// and so do weights that depend on it.
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
        t.weight = [](const double* p) { return 2 + std::sin(p[0]); };
        const fitresult r = fit(t, {1, 1}, y, {}, sw);
        ended = !parser.interrupted;
        retried += r.retried;
        double sum = 0;
        for (size_t i = 0; i < y.size(); i++) {
            EXPECT_EQ(r.resid[i], y[i] - model(r.p.data(), i)) << stop;
            EXPECT_EQ(r.w[i], t.weight(r.p.data())) << stop;
            sum += r.resid[i] * r.resid[i];
        }
        ASSERT_NEAR(r.sosq, sum * t.weight(r.p.data()), 1e-9 * r.sosq) << stop;
        EXPECT_TRUE(!ended || std::fabs(sum - 1168.0088766) < 1e-4) << sum;
    }
    EXPECT_TRUE(ended);
    EXPECT_GT(retried, 0);
}

} // namespace
