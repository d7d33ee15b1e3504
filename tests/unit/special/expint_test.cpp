#include "interp/base/machine.h"
#include "reftable.h"
#include "special/expint.h"

#include <random>

TEST(expint, referencevalues) {
    runreftable("expint.txt", {{"EXPINT", expint},
                               {"EXPINTN", expintn},
                               {"LOGINT", logint},
                               {"SININT", sinint},
                               {"COSINT", cosint},
                               {"SINHINT", sinhint},
                               {"COSHINT", coshint},
                               {"LOGREL", logrel}});
}

TEST(expint, recurrenceandderivatives) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> u(0, 1);
    for (int i = 0; i < 2000; i++) {
        const double p = 15 * u(random), x = 10 * u(random) + 0.01, h = 1e-4 * x / (1 + x);
        EXPECT_LT(referror(p * expintn(p + 1, x) + x * expintn(p, x), std::exp(-x)), 1e-13) << p << ' ' << x;
        const auto slope = [&](double (*f)(double)) { return (f(x + h) - f(x - h)) / (2 * h); };
        const double tol = 1e-8 + 1e-11 / x;
        EXPECT_LT(referror(slope(expint), std::exp(x) / x), tol) << x;
        EXPECT_NEAR(slope(sinint), std::sin(x) / x, tol) << x;
        EXPECT_NEAR(slope(cosint), std::cos(x) / x, tol * (1 + 1 / x)) << x;
    }
}

TEST(expint, branchesmeet) {
    // either side of each change of method, one unit apart: the step must be that of the function
    struct {
        double (*f)(double);
        double x;
    } rows[] = {{expint, 6},      {expint, 12},     {expint, 24},     {expint, 60},      {expint, -1},
                {expint, -2},     {expint, -5},     {expint, -20},    {sinint, 4},       {sinint, 8},
                {cosint, 4},      {cosint, 8},      {sinhint, 2},     {coshint, 2},      {logrel, 0.375},
                {logrel, -0.375}, {cosint, 0.5165}, {cosint, 0.7165}, {coshint, 0.4238}, {coshint, 0.6238}};
    for (const auto& r : rows) {
        const double below = r.f(std::nextafter(r.x, -1e9)), above = r.f(std::nextafter(r.x, 1e9));
        EXPECT_LT(referror(below, above), 3e-14) << r.x;
    }
}

TEST(expint, faults) {
    struct {
        double (*f)(double);
        double x, value;
        spfaultkind kind;
        const char* text;
    } rows[] = {{expint, 0, MAXNEG, SPRANGEWARN, "EXPINT"},
                {expint, 717, MAXPOS, SPRANGEWARN, "EXPINT"},
                {logint, -1, 0, SPRANGEWARN, "LOGINT"},
                {logint, 1, MAXNEG, SPRANGEWARN, "LOGINT"},
                {cosint, 0, MAXNEG, SPRANGEWARN, "COSINT"},
                {coshint, 0, MAXNEG, SPRANGEWARN, "COSHINT"},
                {coshint, 800, MAXPOS, SPRANGEWARN, "COSHINT"},
                {sinhint, -800, MAXNEG, SPRANGEWARN, "SINHINT"},
                {cosint, -2, cosint(2), SPWARN, "COSINT has imaginary part -pi"},
                {coshint, -2, coshint(2), SPWARN, "COSHINT has imaginary part -pi"},
                {logrel, -1, MAXNEG, SPRANGEWARN, "LOGREL"},
                {logrel, -2, 0, SPRANGEWARN, "LOGREL"},
                {logrel, -1 + 0x1p-40, -40 * std::log(2), SPWARN, "LOGREL: reduced precision"}};
    for (const auto& r : rows) {
        spfaultclear();
        EXPECT_LT(referror(r.f(r.x), r.value), 1e-15) << r.text << ' ' << r.x;
        EXPECT_TRUE(notedonly(r.kind, r.text)) << r.text << ' ' << r.x;
    }
    for (auto [n, x, value] : {std::array{1.0, 0.0, MAXPOS}, {0, 0, MAXPOS}, {1, -1, 0}, {2.5, -0.1, 0}}) {
        spfaultclear();
        EXPECT_EQ(expintn(n, x), value) << n << ' ' << x;
        EXPECT_TRUE(notedonly(SPRANGEWARN, "EXPINTN"));
    }
    EXPECT_EQ(expint(-800), 0);
    EXPECT_EQ(expint(MAXNEG), 0);
    EXPECT_NEAR(sinint(MAXPOS), std::acos(0.0), 1e-15);
}
