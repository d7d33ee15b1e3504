// Linear programs against an enumeration of vertices, textbook cases, degenerate and equality-only ones.
#include "solvers/linprog.h"
#include "support/solvesquare.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

solverconstraints rows(int width, std::vector<double> coef, std::vector<int> type, std::vector<double> rhs) {
    solverconstraints c;
    c.count = int(rhs.size());
    c.width = width;
    c.coef = std::move(coef);
    c.type = std::move(type);
    c.rhs = std::move(rhs);
    return c;
}

bool feasible(const solverconstraints& c, const std::vector<double>& x, double tolerance) {
    for (double v : x)
        if (v < -tolerance) return false;
    for (int i = 0; i < c.count; i++) {
        double sum = -c.rhs[size_t(i)];
        for (int j = 0; j < c.width; j++) sum += c.coef[size_t(i * c.width + j)] * x[size_t(j)];
        if (c.type[size_t(i)] == 0 ? std::fabs(sum) > tolerance : sum * c.type[size_t(i)] < -tolerance)
            return false;
    }
    return true;
}

// The best vertex of n = 3 variables, over all triples of rows and bounds taken as equations. NAN: none is
// feasible.
double bestvertex(const std::vector<double>& cost, const solverconstraints& c) {
    std::vector<std::vector<double>> planes;
    for (int i = 0; i < c.count; i++)
        planes.push_back(
            {c.coef[size_t(i * 3)], c.coef[size_t(i * 3 + 1)], c.coef[size_t(i * 3 + 2)], c.rhs[size_t(i)]});
    for (int j = 0; j < 3; j++) planes.push_back({double(j == 0), double(j == 1), double(j == 2), 0});
    double best = NAN;
    for (size_t a = 0; a < planes.size(); a++)
        for (size_t b = a + 1; b < planes.size(); b++)
            for (size_t d = b + 1; d < planes.size(); d++) {
                std::vector<double> x;
                if (!solvesquare({planes[a], planes[b], planes[d]}, x) || !feasible(c, x, 1e-7)) continue;
                const double value = cost[0] * x[0] + cost[1] * x[1] + cost[2] * x[2];
                if (!(value <= best)) best = value;
            }
    return best;
}

TEST(linprog, textbookCases) {
    const struct {
        const char* what;
        std::vector<double> cost;
        solverconstraints c;
        lpoutcome outcome;
        double optimum;
        std::vector<double> x;
    } cases[] = {
        {"product mix (Hillier and Lieberman)",
         {3, 5},
         rows(2, {1, 0, 0, 2, 3, 2}, {-1, -1, -1}, {4, 12, 18}),
         LPOPTIMAL,
         36,
         {2, 6}},
        {"diet", {-0.6, -1}, rows(2, {10, 4, 5, 5, 2, 6}, {1, 1, 1}, {20, 20, 12}), LPOPTIMAL, -2.8, {3, 1}},
        {"equalities alone",
         {1, 2, 3},
         rows(3, {1, 1, 1, 1, -1, 0}, {0, 0}, {6, 1}),
         LPOPTIMAL,
         16,
         {1, 0, 5}},
        {"the same row twice", {1, 1}, rows(2, {1, 1, 1, 1}, {0, 0}, {2, 2}), LPOPTIMAL, 2, {}},
        {"negative right side", {-1, -1}, rows(2, {-1, -1}, {-1}, {-3}), LPOPTIMAL, -3, {}},
        {"no room", {1, 1}, rows(2, {1, 1, 1, 1}, {-1, 1}, {1, 2}), LPINFEASIBLE, 0, {}},
        {"no room beside a row of large numbers",
         {1, 1},
         rows(2, {0, 1, 1, 0, 1, 0}, {0, -1, 1}, {1e6, 1, 1.5}),
         LPINFEASIBLE,
         0,
         {}},
        {"no room by a little, in large coefficients",
         {1, 1},
         rows(2, {-1e4, -2e4}, {0}, {0.01}),
         LPINFEASIBLE,
         0,
         {}},
        {"no room by rounding alone",
         {1, 1},
         rows(2, {1e4, 3e4, 1e4, 3e4}, {-1, 1}, {1e4 / 3, 1e4 / 3 * (1 + 1e-15)}),
         LPOPTIMAL,
         1.0 / 3,
         {}},
        {"no end", {1, 1}, rows(2, {1, -1}, {-1}, {1}), LPUNBOUNDED, 0, {}},
        {"no rows, falling costs", {-1, -2}, rows(2, {}, {}, {}), LPOPTIMAL, 0, {0, 0}},
        // E. M. L. Beale's cycling example, Naval Res. Logist. Quart. 2 (1955) 269
        {"cycling",
         {0.75, -150, 0.02, -6},
         rows(4, {0.25, -60, -0.04, 9, 0.5, -90, -0.02, 3, 0, 0, 1, 0}, {-1, -1, -1}, {0, 0, 1}),
         LPOPTIMAL,
         0.05,
         {0.04, 0, 1, 0}},
        // K. T. Marshall and J. W. Suurballe, Naval Res. Logist. Quart. 16 (1969) 121
        {"cycling of Marshall and Suurballe",
         {10, -57, -9, -24},
         rows(4, {0.5, -5.5, -2.5, 9, 0.5, -1.5, -0.5, 1, 1, 0, 0, 0}, {-1, -1, -1}, {0, 0, 1}),
         LPOPTIMAL,
         1,
         {1, 0, 1, 0}},
        // H. W. Kuhn's, as in M. L. Balinski and A. W. Tucker, SIAM Review 11 (1969) 347
        {"cycling of Kuhn",
         {2, 3, -1, -12},
         rows(4, {-2, -9, 1, 9, 1.0 / 3, 1, -1.0 / 3, -2, 2, 3, -1, -12}, {-1, -1, -1}, {0, 0, 2}),
         LPOPTIMAL,
         2,
         {}},
        // V. Klee and G. J. Minty's cube in three variables
        {"cube",
         {100, 10, 1},
         rows(3, {1, 0, 0, 20, 1, 0, 200, 20, 1}, {-1, -1, -1}, {1, 100, 10000}),
         LPOPTIMAL,
         10000,
         {0, 0, 10000}},
        {"badly scaled",
         {3e-9, 5e-9},
         rows(2, {1e7, 0, 0, 2e-7, 3, 2}, {-1, -1, -1}, {4e7, 12e-7, 18}),
         LPOPTIMAL,
         36e-9,
         {2, 6}},
    };
    for (const auto& k : cases) {
        std::vector<double> x;
        double optimum = 0;
        ASSERT_EQ(linprog(k.cost, k.c, x, optimum), k.outcome) << k.what;
        if (k.outcome != LPOPTIMAL) continue;
        EXPECT_NEAR(optimum, k.optimum, 1e-9 * std::fabs(k.optimum) + 1e-15) << k.what;
        EXPECT_TRUE(feasible(k.c, x, 1e-8)) << k.what;
        for (size_t j = 0; j < k.x.size(); j++) EXPECT_NEAR(x[j], k.x[j], 1e-8) << k.what;
    }
}

TEST(linprog, agreesWithTheBestVertex) {
    std::mt19937 random(20240501);
    std::uniform_int_distribution<int> whole(-5, 5), type(-1, 1);
    int optimal = 0, infeasible = 0;
    for (int trial = 0; trial < 3000; trial++) {
        solverconstraints c;
        c.width = 3;
        c.count = 2 + trial % 4;
        for (int i = 0; i < c.count; i++) {
            for (int j = 0; j < 3; j++) c.coef.push_back(whole(random));
            c.type.push_back(type(random));
            c.rhs.push_back(whole(random)); // zeros among them: degenerate corners
        }
        // a box keeps every program bounded
        for (int j = 0; j < 3; j++) {
            for (int k = 0; k < 3; k++) c.coef.push_back(j == k);
            c.type.push_back(-1);
            c.rhs.push_back(10);
            c.count++;
        }
        const std::vector<double> cost = {double(whole(random)), double(whole(random)),
                                          double(whole(random))};
        std::vector<double> x;
        double optimum = 0;
        const lpoutcome outcome = linprog(cost, c, x, optimum);
        const double best = bestvertex(cost, c);
        if (std::isnan(best)) {
            EXPECT_EQ(outcome, LPINFEASIBLE) << trial;
            infeasible++;
            continue;
        }
        ASSERT_EQ(outcome, LPOPTIMAL) << trial;
        EXPECT_NEAR(optimum, best, 1e-7 * (1 + std::fabs(best))) << trial;
        EXPECT_TRUE(feasible(c, x, 1e-7)) << trial;
        optimal++;
    }
    EXPECT_GT(optimal, 500);
    EXPECT_GT(infeasible, 500);
}

} // namespace
