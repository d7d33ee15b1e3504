#include "interp/base/machine.h"
#include "reftable.h"
#include "special/elementary.h"
#include "special/zeta.h"

#include <random>

TEST(zeta, referencevalues) {
    runreftable(
        "zeta.txt",
        {{"ZETA", zeta}, {"LAMBDA", lambdafn}, {"BETACAT", betacat}, {"DILOG", dilog}, {"CLAUSEN", clausen}});
}

TEST(zeta, polesandoverflow) {
    struct {
        const char* name;
        double (*f)(double);
        double x, value;
    } rows[] = {{"ZETA", zeta, 1, MAXPOS},
                {"LAMBDA", lambdafn, 1, MAXPOS},
                {"ZETA", zeta, -1e4 - 1, MAXNEG},
                {"BETACAT", betacat, -1e4, MAXPOS},
                {"LAMBDA", lambdafn, -1e4 - 1, MAXPOS}};
    for (const auto& r : rows) {
        spfaultclear();
        EXPECT_EQ(r.f(r.x), r.value) << r.name << ' ' << r.x;
        EXPECT_TRUE(notedonly(SPRANGEWARN, r.name)) << r.name << ' ' << r.x;
    }
    for (double s : {-2.0, -40.0, -1e6, MAXNEG}) EXPECT_EQ(zeta(s), 0) << s;
    for (double s : {0.0, -2.0, -1e6}) EXPECT_EQ(lambdafn(s), 0) << s;
    for (double s : {-1.0, -31.0, -1e6 - 1}) EXPECT_EQ(betacat(s), 0) << s;
    for (auto f : {zeta, lambdafn, betacat}) EXPECT_EQ(f(MAXPOS), 1);
}

TEST(zeta, dilogarithmidentities) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> u(0, 1);
    for (int i = 0; i < 1000; i++) {
        const double x = u(random);
        EXPECT_NEAR(dilog(x) + dilog(-x), 0.5 * dilog(x * x), 4e-16) << x;
        EXPECT_NEAR(dilog(-x) + dilog(-1 / x), -PI * PI / 6 - 0.5 * std::log(x) * std::log(x), 4e-15) << x;
        const double t = 6 * u(random);
        EXPECT_NEAR(clausen(2 * t), 2 * clausen(t) - 2 * clausen(PI - t), 1e-14) << t; // duplication
    }
    spfaultclear();
    EXPECT_NEAR(dilog(2), PI * PI / 4, 1e-15);
    EXPECT_TRUE(notedonly(SPWARN, "DILOG has imaginary part -pi*log(x)"));
}
