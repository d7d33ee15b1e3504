#include "interp/base/machine.h"
#include "reftable.h"
#include "special/elementary.h"

TEST(elementary, referencevalues) {
    runreftable("elementary.txt", {{"COTAN", cotan},
                                   {"SEC", secant},
                                   {"COSEC", cosecant},
                                   {"ACOTAN", acotan},
                                   {"ASEC", asecant},
                                   {"ACOSEC", acosecant},
                                   {"COTANH", cotanh},
                                   {"SECH", sech},
                                   {"COSECH", cosech},
                                   {"ACOTANH", acotanh},
                                   {"ASECH", asech},
                                   {"ACOSECH", acosech},
                                   {"SIND", sind},
                                   {"COSD", cosd},
                                   {"TAND", tand},
                                   {"ASIND", asind},
                                   {"ACOSD", acosd},
                                   {"ATAND", atand}});
}

TEST(elementary, wholedegreesareexact) {
    const double sines[] = {0, 0.5, 1, 0.5, 0, -0.5, -1, -0.5},
                 degrees[] = {0, 30, 90, 150, 180, 210, 270, 330};
    for (double turn : {-720.0, 0.0, 360.0, 3.6e12})
        for (int k = 0; k < 8; k++) {
            EXPECT_EQ(sind(degrees[k] + turn), sines[k]) << degrees[k] + turn;
            EXPECT_EQ(cosd(degrees[k] - 90 + turn), sines[k]) << degrees[k] - 90 + turn;
        }
    EXPECT_EQ(tand(45), 1);
    EXPECT_EQ(tand(135), -1);
    EXPECT_EQ(tand(180), 0);
}

TEST(elementary, modulusandrounding) {
    const double rows[][3] = {{7, 3, 1},     {-7, 3, 2}, {7, -3, -2}, {-7, -3, -1},
                              {5.5, 1, 0.5}, {4, 0, 4},  {0, 5, 0}};
    for (const auto& r : rows) EXPECT_EQ(modulus(r[0], r[1]), r[2]) << r[0] << ' ' << r[1];
    const double ups[][3] = {{1.21, 1, 1.3},     {-1.21, 1, -1.3}, {1.1, 1, 1.1},   {0.1 + 0.2, 1, 0.3},
                             {2, 0, 2},          {2.0001, 0, 3},   {-0.5, 0, -1},   {1234, -2, 1300},
                             {1200, -2, 1200},   {0, 3, 0},        {1e20, 2, 1e20}, {1e-5, 400, 1e-5},
                             {MAXPOS, 2, MAXPOS}};
    for (const auto& r : ups) EXPECT_EQ(rdup(r[0], r[1]), r[2]) << r[0] << ' ' << r[1];
}

TEST(elementary, polesanddomains) {
    struct {
        const char* name;
        double (*f)(double);
        double x, value;
    } rows[] = {
        {"COTAN", cotan, 0, MAXPOS},     {"COSEC", cosecant, 0, MAXPOS},   {"COTANH", cotanh, 0, MAXPOS},
        {"COSECH", cosech, 0, MAXPOS},   {"ACOTANH", acotanh, -1, MAXNEG}, {"ACOTANH", acotanh, 0.5, 0},
        {"ASECH", asech, 0, MAXPOS},     {"ASECH", asech, 1.1, 0},         {"ASECH", asech, -0.1, 0},
        {"ACOSECH", acosech, 0, MAXPOS}, {"ASEC", asecant, 0.5, 0},        {"ACOSEC", acosecant, -0.9, 0},
        {"TAND", tand, 90, MAXPOS},      {"TAND", tand, -270, MAXPOS}};
    for (const auto& r : rows) {
        spfaultclear();
        EXPECT_EQ(r.f(r.x), r.value) << r.name << ' ' << r.x;
        EXPECT_TRUE(notedonly(SPRANGEWARN, r.name)) << r.name << ' ' << r.x;
    }
    EXPECT_EQ(acotan(0), PI / 2);
    for (double n : {0.0, 1.0, -3.0, 1e15}) EXPECT_EQ(sinpi(n), 0) << n;
    for (double n : {0.5, -7.5, 1e15 + 0.5}) EXPECT_EQ(cospi(n), 0) << n;
    EXPECT_EQ(cospi(1e15 + 1), -1);
}
