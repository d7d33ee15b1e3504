#include "interp/base/machine.h"
#include "reftable.h"
#include "special/elementary.h"
#include "special/gamma.h"

#include <random>

TEST(gamma, referencevalues) {
    runreftable("gamma.txt",
                {{"GAMMA", gammafn}, {"LOGGAMMA", loggamma}, {"DIGAMMA", digamma}, {"PGAMMA", pgamma}});
}

TEST(gamma, wholeargumentsareexact) {
    double f = 1;
    for (int n = 1; n <= 19; n++) {
        EXPECT_EQ(gammafn(n), f) << n; // up to 18!, the last below 2^53
        f *= n;
    }
    EXPECT_EQ(loggamma(1), 0);
    EXPECT_EQ(loggamma(2), 0);
}

TEST(gamma, limitsarethoseofthedoubles) {
    const gammalimits g = gamlim();
    EXPECT_NEAR(g.xmin, -170.56, 0.01);
    EXPECT_NEAR(g.xmax, 171.61, 0.01);
    spfaultclear();
    EXPECT_TRUE(std::isfinite(gammafn(g.xmax)));
    EXPECT_EQ(gammafn(-200.5), 0);
    EXPECT_EQ(spfaults.count, 0);
    EXPECT_EQ(gammafn(171.7), MAXPOS);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "GAMMA"));
    spfaultclear();
    EXPECT_EQ(gammafn(-1e-320), MAXNEG);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "GAMMA"));
}

TEST(gamma, polesandforbiddenarguments) {
    struct {
        const char* name;
        double (*f)(double);
        double x, value;
    } rows[] = {{"GAMMA", gammafn, 0, 0},
                {"GAMMA", gammafn, -1, 0},
                {"GAMMA", gammafn, -10, 0},
                {"GAMMA", gammafn, -11, 0},
                {"GAMMA", gammafn, -169, 0},
                {"LOGGAMMA", loggamma, -1, 0},
                {"LOGGAMMA", loggamma, -0.5, 0},
                {"LOGGAMMA", loggamma, 1e307, MAXPOS},
                {"DIGAMMA", digamma, 0, 0},
                {"DIGAMMA", digamma, -30, 0},
                {"DIGAMMA", digamma, 1e-320, MAXNEG},
                {"GAMMA", gammafn, MAXPOS, MAXPOS},
                {"DIGAMMA", digamma, MAXNEG, 0}};
    for (const auto& r : rows) {
        spfaultclear();
        EXPECT_EQ(r.f(r.x), r.value) << r.name << ' ' << r.x;
        EXPECT_TRUE(notedonly(SPRANGEWARN, r.name)) << r.name << ' ' << r.x;
    }
    spfaultclear();
    EXPECT_EQ(loggamma(0), MAXPOS);
    EXPECT_EQ(spfaults.count, 0);
    for (double n : {-1.0, 1.5, std::nan("")}) {
        spfaultclear();
        EXPECT_EQ(pgamma(n, 2), 0);
        EXPECT_TRUE(notedonly(SPRANGEWARN, "PGAMMA"));
    }
}

TEST(gamma, nearapoleprecisioniswarnedof) {
    spfaultclear();
    EXPECT_LT(referror(gammafn(-3 + 0x1p-30), -178956970.87601961), 1e-14);
    EXPECT_TRUE(notedonly(SPWARN, "gamma(x) precision reduced: x too close to -integer"));
    spfaultclear();
    digamma(-3 + 0x1p-30);
    EXPECT_TRUE(notedonly(SPWARN, "digamma: x too near an integer: reduced precision"));
}

TEST(gamma, functionalidentities) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> u(0, 1);
    for (int i = 0; i < 2000; i++) {
        const double x = u(random) * 160, y = u(random) * 30 - 15;
        spfaultclear();
        EXPECT_LT(referror(gammafn(x + 1), x * gammafn(x)), 1e-13) << x;
        EXPECT_LT(referror(gammafn(y) * gammafn(1 - y) * sinpi(y), PI), 1e-12) << y;
        EXPECT_LT(referror(gammafn(y) * rgamma(y), 1), 1e-13) << y;
        EXPECT_NEAR(digamma(x + 1) - digamma(x), 1 / x, 1e-13 * (1 + 1 / x)) << x;
        int sign;
        EXPECT_NEAR(loggammasign(y, &sign), std::log(std::fabs(gammafn(y))), 1e-12) << y;
        EXPECT_EQ(sign, gammafn(y) > 0 ? 1 : -1) << y;
        const double a = u(random) * 40, b = 10 + u(random) * 100;
        EXPECT_NEAR(loggammaratio(a, b), loggamma(b) - loggamma(a + b), 1e-12) << a << ' ' << b;
    }
    EXPECT_LT(referror(loggammaratio(1e-12, 30), -1e-12 * digamma(30)), 1e-11);
}
