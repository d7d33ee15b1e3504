// Minimisation on plain callbacks: the classic test functions, linear constraints against an enumeration of
// active sets, domains, exits.
#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/minsolve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <random>

namespace {

using vector = std::vector<double>;
using function = std::function<double(const double*)>;

struct mintest : testing::Test {
    std::string out;
    void SetUp() override {
        parserreset();
        report = reportstate{};
        report.recoveryset = true;
        report.capture = &out;
    }
    void TearDown() override { report = reportstate{}; }
};

struct testproblem {
    function f;
    size_t n;
};

double call(void* context, const double* x) { return static_cast<testproblem*>(context)->f(x); }

// Central differences of fourth order: as good as a gradient by formula.
void gradient(void* context, const double* x, double* g) {
    const testproblem& t = *static_cast<testproblem*>(context);
    vector y(x, x + t.n);
    for (size_t i = 0; i < t.n; i++) {
        const double h = 1e-3 * std::max(1.0, std::fabs(x[i]));
        double v[4];
        const double at[4] = {-2, -1, 1, 2};
        for (int k = 0; k < 4; k++) {
            y[i] = x[i] + at[k] * h;
            v[k] = t.f(y.data());
        }
        y[i] = x[i];
        g[i] = (v[0] - 8 * v[1] + 8 * v[2] - v[3]) / (12 * h);
    }
}

minresult minimum(const function& f, const vector& start, const solverconstraints& c = {},
                  minswitches sw = {}, bool exact = true) {
    testproblem t{f, start.size()};
    minproblem p;
    p.n = int(start.size());
    p.context = &t;
    p.value = call;
    if (exact) p.gradient = gradient;
    return minsolve(p, sw, c, start);
}

double sq(double x) { return x * x; }

// J. J. More, B. S. Garbow, K. E. Hillstrom, ACM TOMS 7 (1981) 17: functions, starts, minima.
const struct {
    const char* name;
    function f;
    vector start, x;
    double least;
} classics[] = {
    {"Rosenbrock",
     [](const double* x) { return 100 * sq(x[1] - x[0] * x[0]) + sq(1 - x[0]); },
     {-1.2, 1},
     {1, 1},
     0},
    {"Beale",
     [](const double* x) {
         return sq(1.5 - x[0] * (1 - x[1])) + sq(2.25 - x[0] * (1 - x[1] * x[1])) +
                sq(2.625 - x[0] * (1 - x[1] * x[1] * x[1]));
     },
     {1, 1},
     {3, 0.5},
     0},
    {"Wood",
     [](const double* x) {
         return 100 * sq(x[1] - x[0] * x[0]) + sq(1 - x[0]) + 90 * sq(x[3] - x[2] * x[2]) + sq(1 - x[2]) +
                10 * sq(x[1] + x[3] - 2) + 0.1 * sq(x[1] - x[3]);
     },
     {-3, -1, -3, -1},
     {1, 1, 1, 1},
     0},
    {"Helical valley",
     [](const double* x) {
         const double turn = std::atan2(x[1], x[0]) / (2 * M_PI);
         return 100 * (sq(x[2] - 10 * turn) + sq(std::hypot(x[0], x[1]) - 1)) + x[2] * x[2];
     },
     {-1, 0.01, 0},
     {1, 0, 0},
     0},
    {"Powell singular",
     [](const double* x) {
         return sq(x[0] + 10 * x[1]) + 5 * sq(x[2] - x[3]) + sq(sq(x[1] - 2 * x[2])) +
                10 * sq(sq(x[0] - x[3]));
     },
     {3, -1, 0, 1},
     {},
     0},
    {"Box 3D",
     [](const double* x) {
         double sum = 0;
         for (int i = 1; i <= 10; i++) {
             const double t = 0.1 * i;
             sum += sq(std::exp(-t * x[0]) - std::exp(-t * x[1]) - x[2] * (std::exp(-t) - std::exp(-10 * t)));
         }
         return sum;
     },
     {0, 10, 20},
     {},
     0},
    {"Brown and Dennis",
     [](const double* x) {
         double sum = 0;
         for (int i = 1; i <= 20; i++) {
             const double t = i / 5.0;
             sum += sq(sq(x[0] + t * x[1] - std::exp(t)) + sq(x[2] + x[3] * std::sin(t) - std::cos(t)));
         }
         return sum;
     },
     {25, 5, -5, -1},
     {},
     85822.20162635},
    {"Rosenbrock, 10 variables",
     [](const double* x) {
         double sum = 0;
         for (int i = 0; i < 10; i += 2) sum += 100 * sq(x[i + 1] - x[i] * x[i]) + sq(1 - x[i]);
         return sum;
     },
     {-1.2, 1, -1.2, 1, -1.2, 1, -1.2, 1, -1.2, 1},
     {1, 1, 1, 1, 1, 1, 1, 1, 1, 1},
     0},
    {"Trigonometric of 5",
     [](const double* x) {
         double cosines = 5, sum = 0;
         for (int i = 0; i < 5; i++) cosines -= std::cos(x[i]);
         for (int i = 0; i < 5; i++) sum += sq(cosines + (i + 1) * (1 - std::cos(x[i])) - std::sin(x[i]));
         return sum;
     },
     {0.2, 0.2, 0.2, 0.2, 0.2},
     {},
     NAN},
};

TEST_F(mintest, classicFunctionsReachTheirMinima) {
    for (const auto& c : classics)
        for (const bool exact : {true, false})
            for (const int mode : {0, 1}) {
                if (mode && c.start == vector{0, 10, 20}) continue; // a flat valley: gradients alone crawl
                minswitches sw;
                sw.gradsw = mode;
                sw.xtol = 1e-4;
                sw.ftol = mode ? 1e-9 : 1e-5;
                const minresult r = minimum(c.f, c.start, {}, sw, exact);
                const std::string what =
                    std::string(c.name) + (exact ? "" : " differences") + (mode ? " conjugate" : "");
                if (std::isnan(c.least))
                    EXPECT_LT(r.f, 1e-2) << what;
                else
                    EXPECT_NEAR(r.f, c.least, (mode ? 1e-4 : 1e-6) * (1 + c.least))
                        << what << " ecode " << r.ecode;
                for (size_t i = 0; i < c.x.size() && mode == 0; i++)
                    EXPECT_NEAR(r.x[i], c.x[i], 1e-3) << what;
            }
}

TEST_F(mintest, aQuadraticTakesOneNewtonStep) {
    const auto f = [](const double* x) { return sq(x[0] + 2 * x[1] - 7) + sq(2 * x[0] + x[1] - 5); }; // Booth
    const minresult r = minimum(f, {0, 0});
    EXPECT_EQ(r.ecode, MINCONVERGED);
    EXPECT_LE(r.iterations, 2);
    EXPECT_NEAR(r.x[0], 1, 1e-6);
    EXPECT_NEAR(r.x[1], 3, 1e-6);
}

solverconstraints rows(int width, vector coef, std::vector<int> type, vector rhs) {
    solverconstraints c;
    c.count = int(rhs.size());
    c.width = width;
    c.coef = std::move(coef);
    c.type = std::move(type);
    c.rhs = std::move(rhs);
    return c;
}

// W. Hock, K. Schittkowski, Test Examples for Nonlinear Programming Codes, LNEMS 187 (1981), by number.
TEST_F(mintest, constrainedProblemsOfHockAndSchittkowski) {
    const struct {
        int number;
        function f;
        vector start;
        solverconstraints c;
        double least;
        vector x;
    } cases[] = {
        {35,
         [](const double* x) {
             return 9 - 8 * x[0] - 6 * x[1] - 4 * x[2] + 2 * x[0] * x[0] + 2 * x[1] * x[1] + x[2] * x[2] +
                    2 * x[0] * x[1] + 2 * x[0] * x[2];
         },
         {0.5, 0.5, 0.5},
         rows(3, {1, 1, 2, 1, 0, 0, 0, 1, 0, 0, 0, 1}, {-1, 1, 1, 1}, {3, 0, 0, 0}),
         1.0 / 9,
         {4.0 / 3, 7.0 / 9, 4.0 / 9}},
        {21,
         [](const double* x) { return 0.01 * x[0] * x[0] + x[1] * x[1] - 100; },
         {-1, -1},
         rows(2, {10, -1, 1, 0, 1, 0, 0, 1, 0, 1}, {1, 1, -1, 1, -1}, {10, 2, 50, -50, 50}),
         -99.96,
         {2, 0}},
        {28,
         [](const double* x) { return sq(x[0] + x[1]) + sq(x[1] + x[2]); },
         {-4, 1, 1},
         rows(3, {1, 2, 3}, {0}, {1}),
         0,
         {0.5, -0.5, 0.5}},
        {37,
         [](const double* x) { return -x[0] * x[1] * x[2]; },
         {10, 10, 10},
         rows(3, {1, 2, 2, 1, 2, 2, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 0, 1, 0, 0, 0, 1},
              {-1, 1, 1, 1, 1, -1, -1, -1}, {72, 0, 0, 0, 0, 42, 42, 42}),
         -3456,
         {24, 12, 12}},
        {48,
         [](const double* x) { return sq(x[0] - 1) + sq(x[1] - x[2]) + sq(x[3] - x[4]); },
         {3, 5, -3, 2, -2},
         rows(5, {1, 1, 1, 1, 1, 0, 0, 1, -2, -2}, {0, 0}, {5, -3}),
         0,
         {1, 1, 1, 1, 1}},
        {76,
         [](const double* x) {
             return x[0] * x[0] + 0.5 * x[1] * x[1] + x[2] * x[2] + 0.5 * x[3] * x[3] - x[0] * x[2] +
                    x[2] * x[3] - x[0] - 3 * x[1] + x[2] - x[3];
         },
         {0.5, 0.5, 0.5, 0.5},
         rows(4, {1, 2, 1, 1, 3, 1, 2, -1, 0, 1, 4, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
              {-1, -1, 1, 1, 1, 1, 1}, {5, 4, 1.5, 0, 0, 0, 0}),
         -4.681818181818,
         {}},
    };
    for (const auto& k : cases)
        for (const bool exact : {true, false}) {
            const minresult r = minimum(k.f, k.start, k.c, {}, exact);
            EXPECT_NEAR(r.f, k.least, 1e-5 * (1 + std::fabs(k.least))) << k.number << " ecode " << r.ecode;
            for (size_t i = 0; i < k.x.size(); i++) EXPECT_NEAR(r.x[i], k.x[i], 2e-3) << k.number;
        }
}

// Against the projections that can be written down.
TEST_F(mintest, rowsThatDependOnEachOther) {
    const auto distance = [](double a, double b) {
        return [a, b](const double* x) { return sq(x[0] - a) + sq(x[1] - b); };
    };
    const struct {
        const char* what;
        function f;
        vector start;
        solverconstraints c;
        vector x;
        minexit ecode;
    } cases[] = {
        {"the same row three times",
         distance(3, 3),
         {0, 0},
         rows(2, {1, 1, 2, 2, 1, 1}, {-1, -1, -1}, {2, 4, 2}),
         {1, 1},
         MINCONVERGED},
        {"the same equality twice",
         distance(3, 3),
         {0, 0},
         rows(2, {1, 1, 2, 2}, {0, 0}, {2, 4}),
         {1, 1},
         MINCONVERGED},
        {"equalities that contradict",
         distance(3, 3),
         {0, 0},
         rows(2, {1, 1, 2, 2}, {0, 0}, {2, 5}),
         {0, 0},
         MININFEASIBLE},
        {"a row without coefficients that holds",
         distance(3, 3),
         {0, 0},
         rows(2, {0, 0, 1, 1}, {-1, -1}, {1, 2}),
         {1, 1},
         MINCONVERGED},
        {"a row without coefficients that does not",
         distance(3, 3),
         {0, 0},
         rows(2, {0, 0}, {1}, {1}),
         {0, 0},
         MININFEASIBLE},
        {"rows a ten millionth apart",
         distance(1e4, -1.1e4),
         {-5, 6},
         rows(2, {1, 1, 1, 1 + 1e-7}, {1, 1}, {0, 0}),
         {10499.9995, -10499.99845},
         MINCONVERGED},
        {"five rows through one corner",
         distance(-1, -1),
         {1, 0.5},
         rows(2, {1, 0, 0, 1, 1, 1, 1, 2, 2, 1}, {1, 1, 1, 1, 1}, {0, 0, 0, 0, 0}),
         {0, 0},
         MINSMALLSTEP},
        {"an equality and its two inequalities",
         distance(3, 1),
         {9, 9},
         rows(2, {1, -1, 1, -1, 1, -1}, {0, 1, -1}, {0, 0, 0}),
         {2, 2},
         MINCONVERGED},
    };
    for (const auto& k : cases)
        for (const int mode : {0, 1}) {
            minswitches sw;
            sw.gradsw = mode;
            sw.reptsw = 0;
            const minresult r = minimum(k.f, k.start, k.c, sw);
            EXPECT_EQ(r.ecode, k.ecode) << k.what << mode;
            for (size_t i = 0; i < 2; i++)
                EXPECT_NEAR(r.x[i], k.x[i], 1e-6 * (1 + std::fabs(k.x[i]))) << k.what << mode;
        }
}

int occurrences(const std::string& text, const std::string& what) {
    int count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) count++;
    return count;
}

/* The test against the Taylor series: constraints active, an inverse Hessian whose diagonal entries lie 400
 * to 10,000 apart in two free directions. */
TEST_F(mintest, taylorSeriesTest) {
    const auto valley = [](double x, double y) { return std::sqrt(1 + x * x) + 16 * y * y; };
    const struct {
        const char* what;
        function f;
        int trusted, bad;
        minexit ecode;
        double least;
    } cases[] = {
        {"a quadratic", [](const double* x) { return sq(x[0] - 1) + 1000 * sq(x[1]) + sq(x[2]); }, 1, 0,
         MINCONVERGED, 0},
        {"a Newton step that leads far beyond",
         [&](const double* x) { return valley(x[0], x[1]) + sq(x[2]); }, 0, 1, MINCONVERGED, 1},
        // the steps are cut to a fifth until there is a value
        {"outside the domain beyond -2",
         [&](const double* x) { return x[0] < -2 ? MAXPOS : valley(x[0], x[1]) + sq(x[2]); }, 1, 0,
         MINCONVERGED, 1},
        {"no bound beyond -2",
         [&](const double* x) { return x[0] < -2 ? MAXNEG : valley(x[0], x[1]) + sq(x[2]); }, 0, 0,
         MINUNBOUNDED, MAXNEG},
    };
    for (const auto& k : cases) {
        out.clear();
        minswitches sw;
        sw.reptsw = 1023;
        const minresult r = minimum(k.f, {3, 0.1, 0}, rows(3, {0, 0, 1}, {0}, {0}), sw);
        EXPECT_EQ(occurrences(out, "TST: reset scale index to -2\n"), k.trusted) << k.what << out;
        EXPECT_EQ(occurrences(out, "Taylor Series Test: reset scale index to 2\n"), k.bad) << k.what << out;
        EXPECT_EQ(r.ecode, k.ecode) << k.what;
        EXPECT_NEAR(r.f, k.least, 1e-6) << k.what;
    }
    out.clear(); // without a constraint there is no such test
    minswitches sw;
    sw.reptsw = 1023;
    minimum(cases[0].f, {3, 0.1, 0}, {}, sw);
    EXPECT_EQ(occurrences(out, "TST") + occurrences(out, "Taylor"), 0);
}

// Each message under its bit alone.
TEST_F(mintest, reportBits) {
    const char* const texts[] = {"\nbegin iteration 1\nx: 3.000000e+00 1.000000e-01 0.000000e+00 f(x): ",
                                 "\ng(x): ",
                                 "computing Hessian = I.\n",
                                 "\n---add constraint 1\n",
                                 "\n---delete constraint 2",
                                 "setting inverse Hessian scale index: ",
                                 "BFGS-updating inverse Hessian.\n",
                                 "search 1, step length "};
    const struct {
        int bit;
        std::vector<int> said; // of texts
    } cases[] = {{0, {}},  {1, {}},      {2, {}},   {4, {0, 1}}, {8, {2}}, {16, {3, 4}},
                 {32, {}}, {64, {5, 6}}, {128, {}}, {256, {7}},  {512, {}}};
    const auto f = [](const double* x) { return std::sqrt(1 + x[0] * x[0]) + 16 * sq(x[1] - 2) + sq(x[2]); };
    for (const auto& k : cases) {
        out.clear();
        minswitches sw;
        sw.reptsw = k.bit;
        sw.hessmsw = k.bit == 8 ? 0 : 2;
        // the second row is met on the way to the minimum of the first two variables and left again
        const minresult r = minimum(f, {3, 0.1, 0}, rows(3, {0, 0, 1, 1, -0.2, 0}, {0, 1}, {0, -0.45}), sw);
        EXPECT_EQ(r.ecode, MINCONVERGED) << k.bit;
        for (int t = 0; t < int(std::size(texts)); t++)
            EXPECT_EQ(out.find(texts[t]) != std::string::npos,
                      std::find(k.said.begin(), k.said.end(), t) != k.said.end())
                << "bit " << k.bit << ": " << texts[t] << out;
    }
}

/* A gradient that points uphill within the circle of 0.5: no direction descends there. What the switch makes
 * of it. */
TEST_F(mintest, waysOutWhenNoDirectionDescends) {
    const struct {
        double backtracksw;
        bool back, steepest;
        minexit ecode;
    } cases[] = {{1, true, true, MINSMALLSTEP},
                 {-1, false, true, MINSMALLSTEP},
                 {-2, false, false, MINSMALLSTEP},
                 {0, true, false, MINITERATIONS}};
    struct lying {
        // the height keeps the later steps from counting as good
        static double value(void*, const double* x) { return 1e4 + sq(x[0]) + 4 * sq(x[1]) + sq(sq(x[0])); }
        static void gradient(void*, const double* x, double* g) {
            const double sign = sq(x[0]) + sq(x[1]) < 0.25 ? -1 : 1;
            g[0] = sign * (2 * x[0] + 4 * x[0] * x[0] * x[0]);
            g[1] = sign * 8 * x[1];
        }
    };
    for (const auto& k : cases) {
        out.clear();
        minswitches sw;
        sw.reptsw = 1023;
        sw.backtracksw = k.backtracksw;
        const minresult r = minsolve({2, nullptr, lying::value, lying::gradient}, sw, {}, {5, 3});
        EXPECT_EQ(r.ecode, k.ecode) << k.backtracksw << out.substr(0, 3000);
        EXPECT_LT(r.f, 1e4 + 0.5) << k.backtracksw;
        const size_t back = out.find("Backtracking to start of iteration ");
        EXPECT_EQ(back != std::string::npos, k.back) << k.backtracksw;
        if (k.back) {
            EXPECT_NE(out.find("\nThe x vector is:\n", back), std::string::npos);
            EXPECT_NE(out.find("inverse Hessian = I in backtrack.\n", back), std::string::npos);
        }
        EXPECT_EQ(out.find("Steepest descending: inverse Hessian = I\n") != std::string::npos, k.steepest)
            << k.backtracksw;
    }
}

TEST_F(mintest, kindsOfHessian) {
    const auto saddle = [](const double* x) { return sq(sq(x[0])) / 4 - sq(x[0]) / 2 + sq(x[1]); };
    const auto steep = [](const double* x) {
        return sq(x[0] - 1) + 1e8 * sq(x[1] - 2) + sq(sq(x[0] - x[1] / 2));
    };
    const struct {
        const char* what;
        function f;
        vector start;
        int hessmsw;
        double preconditionsw;
        int newhess;
        const char *said, *unsaid;
        double least;
    } cases[] = {
        {"forced definite",
         saddle,
         {0.1, 1},
         -2,
         1,
         -1,
         "\nforce hessian to be positive definite\n",
         "variable",
         -0.25},
        {"one-sided, forced",
         saddle,
         {0.1, 1},
         -1,
         1,
         -1,
         "\nforce hessian to be positive definite\n",
         "variable",
         -0.25},
        {"negative pivots become positive", saddle, {0.1, 1}, 2, 1, -1, "BFGS", "force", -0.25},
        {"the identity", saddle, {0.1, 1}, 0, 1, -1, "computing Hessian = I.\n", "force", -0.25},
        {"a hook that is empty", saddle, {0.1, 1}, 3, 1, -1, "BFGS", "force", -0.25},
        {"Newton", saddle, {0.5, 1}, 2, 1, 0, "setting inverse Hessian scale index: -2\n", "BFGS", -0.25},
        {"a new one each third iteration", saddle, {0.5, 1}, 2, 1, 2, "BFGS", "force", -0.25},
        {"conditioned", steep, {3, 5}, 2, 1, -1, "conditioning inverse Hessian.\n", "variable", 0},
        {"not conditioned", steep, {3, 5}, 2, -1, -1, "BFGS", "conditioning", 0},
        {"always conditioned",
         saddle,
         {0.5, 1},
         2,
         0,
         -1,
         "setting inverse Hessian scale index: 2\n",
         "variable",
         -0.25},
        {"variable 2 is scaled",
         steep,
         {3, 5},
         2,
         2,
         -1,
         "setting inverse Hessian scale index: 2\n",
         "conditioning",
         0},
    };
    for (const auto& k : cases) {
        out.clear();
        minswitches sw;
        sw.reptsw = 1023;
        sw.hessmsw = k.hessmsw;
        sw.preconditionsw = k.preconditionsw;
        sw.newhess = k.newhess;
        const minresult r = minimum(k.f, k.start, {}, sw);
        EXPECT_NEAR(r.f, k.least, 1e-6) << k.what << " ecode " << r.ecode << out.substr(0, 2000);
        EXPECT_NE(out.find(k.said), std::string::npos) << k.what << out.substr(0, 2000);
        EXPECT_EQ(out.find(k.unsaid), std::string::npos) << k.what;
    }
}

// Q at any evaluation: the best point so far, inside the constraints.
TEST_F(mintest, interruptedAnywhere) {
    for (const bool constrained : {false, true})
        for (int at = 1; at < 60; at++) {
            parserreset();
            int count = 0;
            double best = MAXPOS;
            const auto f = [&](const double* x) {
                if (++count == at) parser.interrupted = true;
                const double value = 100 * sq(x[1] - x[0] * x[0]) + sq(1 - x[0]);
                if (x[0] + x[1] <= 1.5 + 1e-9) best = std::min(best, value);
                return value;
            };
            minswitches sw;
            sw.reptsw = 0;
            const auto c = constrained ? rows(2, {1, 1}, {-1}, {1.5}) : solverconstraints{};
            struct exact {
                static void gradient(void*, const double* x, double* g) {
                    g[0] = -400 * x[0] * (x[1] - x[0] * x[0]) - 2 * (1 - x[0]);
                    g[1] = 200 * (x[1] - x[0] * x[0]);
                }
            };
            testproblem t{f, 2};
            const minresult r = minsolve({2, &t, call, exact::gradient}, sw, c, {-1.2, 1});
            if (r.ecode != MININTERRUPTED) break; // it was over before
            EXPECT_LE(r.f, best * (1 + 1e-6) + (constrained ? 1e-6 : 0)) << constrained << " " << at;
            EXPECT_EQ(occurrences(out, "MINIMIZE INTERRUPTED BY Q\n"), 1) << at;
            EXPECT_LE(constrained ? r.x[0] + r.x[1] : 0, 1.5 + 1e-8) << at;
            out.clear();
        }
}

TEST_F(mintest, exits) {
    const auto bowl = [](const double* x) { return sq(x[0]) + sq(x[1]); };
    minresult r = minimum(bowl, {1, 1}, rows(2, {1, 0, 1, 0}, {1, -1}, {2, 1}));
    EXPECT_EQ(r.ecode, MININFEASIBLE);
    r = minimum(bowl, {5, 5}, rows(2, {1, 0, 0, 1}, {0, 0}, {2, 3}));
    EXPECT_EQ(r.ecode, MINSMALLSTEP) << "every variable is held";
    EXPECT_EQ(r.active.size(), 2u);
    EXPECT_NEAR(r.f, 13, 1e-9);
    r = minimum([](const double* x) { return x[0] < -5 ? MAXNEG : x[0]; }, {1});
    EXPECT_EQ(r.ecode, MINUNBOUNDED);
    // outside its domain the function has MAXPOS; the step is cut without a word
    r = minimum([](const double* x) { return x[0] <= 0 ? MAXPOS : x[0] - std::log(x[0]); }, {1e-3}, {}, {},
                false);
    EXPECT_NEAR(r.x[0], 1, 1e-3);
    r = minimum([](const double*) { return 4.0; }, {1, 2});
    EXPECT_EQ(r.ecode, MINCONVERGED);
    EXPECT_EQ(r.f, 4);
}

TEST_F(mintest, noisyFunctionsComeNearTheirMinimum) {
    std::mt19937 random(11);
    std::normal_distribution<double> noise(0, 0.01);
    minswitches sw;
    sw.stochsw = 1;
    sw.ssize = 4;
    sw.critical = 0.5;
    const minresult r =
        minimum([&](const double* x) { return sq(x[0] - 2) + 2 * sq(x[1] + 1) + 3 + noise(random); }, {0, 0},
                {}, sw, false);
    EXPECT_NEAR(r.x[0], 2, 0.2);
    EXPECT_NEAR(r.x[1], -1, 0.2);
}

} // namespace
