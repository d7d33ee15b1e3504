#include "interp/base/machine.h"
#include "reftable.h"
#include "special/orthopoly.h"

TEST(orthopoly, referencevalues) {
    runreftable("orthopoly.txt", {{"JACOBI1", jacobi1},
                                  {"JACOBI2", jacobi2},
                                  {"GEGENP", gegenp},
                                  {"CHEB1", cheb1},
                                  {"CHEB2", cheb2},
                                  {"LAGUERRE", laguerre},
                                  {"ALAGUERRE", alaguerre},
                                  {"HERMITE", hermite},
                                  {"HERMITE2", hermite2},
                                  {"CHARLIER", charlier},
                                  {"BERNPOL", bernpol},
                                  {"LEG", leg},
                                  {"ALEG", aleg},
                                  {"PLEM", plem},
                                  {"PLEMDER", plemder},
                                  {"PEQDER", peqder}});
}

// Values that are whole numbers come out exactly: Abramowitz and Stegun table 22.3 to 22.12 at simple points.
TEST(orthopoly, wholevaluesareexact) {
    EXPECT_EQ(cheb1(5, 0.5), 0.5);
    EXPECT_EQ(cheb1(7, 3), 64 * 2187 - 112 * 243 + 56 * 27 - 7 * 3);
    EXPECT_EQ(cheb2(4, -1), 5);
    EXPECT_EQ(hermite(6, 1), 184);
    EXPECT_EQ(hermite2(4, 2), -5);
    EXPECT_EQ(laguerre(2, 4), 1);
    EXPECT_EQ(leg(2, 0.5), -0.125);
    EXPECT_EQ(leg(4, 1), 1);
    EXPECT_EQ(leg(-3, 0.5), leg(2, 0.5));
    EXPECT_EQ(aleg(2, 2, 0), 3);
    EXPECT_EQ(aleg(1, 1, 0), -1); // Ferrers' function has the factor (-1)^m
    EXPECT_EQ(aleg(2, 3, 0.5), 0);
    EXPECT_EQ(charlier(9, 2, 0), 1);
    EXPECT_EQ(bernpol(1, 0.25), -0.25);
    EXPECT_EQ(bernpol(5, 1), 0);
    EXPECT_DOUBLE_EQ(bernpol(2, 3), 6 + 1.0 / 6);
}

TEST(orthopoly, familiesmeet) {
    for (double x : {-0.95, -0.2, 0.37, 0.999, 1.6})
        for (int n : {0, 1, 4, 11, 80}) {
            const double p = leg(n, x), size = std::fabs(p) + 1e-3;
            EXPECT_NEAR(jacobi1(n, 0, 0, x), p, 1e-12 * size) << n << " " << x;
            EXPECT_NEAR(gegenp(n, 0.5, x), p, 1e-12 * size) << n << " " << x;
            EXPECT_NEAR(gegenp(n, 1, x), cheb2(n, x), 1e-12 * std::fabs(cheb2(n, x)) + 1e-12)
                << n << " " << x;
            EXPECT_NEAR(plem(n, 0, x), p, 1e-14 * size);
            EXPECT_EQ(plem(n, 2, x), aleg(n, 2, x));
            // the derivative against the equation (1-x^2) P'' - 2x P' + n(n+1) P = 0 through P_n^2 and P_n^1
            if (std::fabs(x) < 1 && n >= 2) {
                const double s = 1 - x * x, second = aleg(n, 2, x) / s, first = plemder(n, 0, x);
                EXPECT_NEAR(s * second - 2 * x * first + n * (n + 1.0) * p, 0, 1e-11 * n * n)
                    << n << " " << x;
            }
        }
    for (double x : {-2.0, 0.3, 5.0}) // A&S 22.5.40: Hermite from Laguerre
        EXPECT_NEAR(alaguerre(6, -0.5, x * x) * 4096 * 720 / hermite(12, x), 1, 1e-12);
}

TEST(orthopoly, legendreatwholeandnearwholedegreesjoin) {
    for (double x : {-0.6, 0.2, 0.9, 3.0}) {
        EXPECT_NEAR(leg(5 + 1e-13, x), leg(5, x), 1e-11 * (1 + std::fabs(leg(5, x))));
        EXPECT_NEAR(aleg(5 + 1e-13, 2, x), aleg(5, 2, x), 1e-10 * (1 + std::fabs(aleg(5, 2, x))));
        EXPECT_NEAR(aleg(5 + 1e-13, -2, x), aleg(5, -2, x), 1e-11 * (1 + std::fabs(aleg(5, -2, x))));
    }
}

TEST(orthopoly, largeordersstayfinite) {
    EXPECT_NEAR(cheb1(1e6, 0.3), std::cos(1e6 * std::acos(0.3)), 1e-9);
    EXPECT_LT(std::fabs(leg(100000, 0.1)), 0.01);
    EXPECT_GT(std::fabs(hermite2(290, 0.5)), 1e280);
    spfaultclear();
    EXPECT_EQ(std::fabs(hermite(1000, 3)), MAXPOS);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "HERMITE"));
    spfaultclear();
    EXPECT_EQ(laguerre(1e9, 1), 0);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "ALAGUERRE"));
}

TEST(orthopoly, badordersandparameters) {
    const std::function<double()> badorders[] = {
        [] { return jacobi1(-1, 0, 0, 0.5); }, [] { return jacobi2(2.5, 1, 1, 0.5); },
        [] { return gegenp(-3, 1, 0.5); },     [] { return cheb1(0.5, 0.5); },
        [] { return cheb2(-2, 0.5); },         [] { return laguerre(-1, 2); },
        [] { return hermite(1.5, 2); },        [] { return hermite2(-1, 2); },
        [] { return charlier(-1, 1, 2); },     [] { return bernpol(-1, 2); },
        [] { return plem(2.5, 1, 0.1); },      [] { return plemder(2, -1, 0.1); },
        [] { return peqder(1.5, 0.1); }};
    for (const auto& f : badorders) {
        spfaultclear();
        EXPECT_EQ(f(), 0);
        EXPECT_TRUE(notedonly(SPERR, "polynomial order must be a positive integer"));
    }
    const std::function<double()> badparameters[] = {
        [] { return jacobi1(2, -1, 0, 0.5); }, [] { return jacobi2(2, 1, 2, 0.5); },
        [] { return jacobi2(2, 1, 0, 0.5); },  [] { return gegenp(2, -0.5, 0.5); },
        [] { return alaguerre(2, -1, 0.5); },  [] { return charlier(2, 0, 0.5); }};
    for (const auto& f : badparameters) {
        spfaultclear();
        EXPECT_EQ(f(), 0);
        EXPECT_TRUE(notedonly(SPERR, "parameters invalid"));
    }
    const struct {
        const char* name;
        std::function<double()> call;
        double want;
    } ends[] = {{"PLEMDER", [] { return plemder(3, 1, 1); }, MAXPOS},
                {"PLEMDER", [] { return plemder(2, 1, -1); }, MAXPOS},
                {"PEQDER", [] { return peqder(1, -1); }, MAXNEG},
                {"LEG", [] { return leg(0.5, -2); }, 0}};
    for (const auto& r : ends) {
        spfaultclear();
        EXPECT_EQ(r.call(), r.want) << r.name;
        EXPECT_TRUE(notedonly(SPRANGEWARN, r.name)) << r.name;
    }
    EXPECT_EQ(plemder(4, 0, -1), -10);
    EXPECT_EQ(plemder(4, 2, 1), -90);
    EXPECT_EQ(plemder(4, 3, 1), 0);
}
