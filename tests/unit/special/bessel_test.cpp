#include "interp/base/machine.h"
#include "reftable.h"
#include "special/bessel.h"
#include "special/besselimpl.h"

#include <random>

TEST(bessel, referencevalues) {
    runreftable("bessel.txt", {{"BESSJ", bessj},
                               {"BESSY", bessy},
                               {"BESSI", bessi},
                               {"BESSK", bessk},
                               {"BESKES", beskes},
                               {"BESIES", besies},
                               {"ABESSJ", abessj},
                               {"ABESSY", abessy},
                               {"ABESSI", abessi},
                               {"ABESSK", abessk}});
}

TEST(bessel, sphericalandintegrals) {
    runreftable("sphbessel.txt", {{"SPBJ", spbj},
                                  {"SPBY", spby},
                                  {"SPBI", spbi},
                                  {"SPBK", spbk},
                                  {"IBESSI0", ibessi0},
                                  {"IBESSJOXI", ibessjoxi}});
}

namespace {
// A random order in [0, top) and argument, from many scales.
struct scatter {
    std::mt19937 random{20};
    double uniform(double a, double b) { return std::uniform_real_distribution<double>(a, b)(random); }
    double scaled(double a, double b) { return std::exp(uniform(std::log(a), std::log(b))); }
};
} // namespace

TEST(bessel, wronskians) {
    scatter s;
    for (int i = 0; i < 3000; i++) {
        const double nu = s.uniform(0, 1) < 0.3 ? std::floor(s.uniform(0, 40)) : s.uniform(0, 40);
        const double x = s.scaled(0.05, 2000);
        double j, y, jp, yp;
        bessjynu(nu, x, &j, &y, &jp, &yp);
        const double cross = bessj(nu + 1, x) * y - j * bessy(nu + 1, x); // DLMF 10.5.2
        if (std::isfinite(cross) && std::fabs(y) < 1e280) {
            EXPECT_NEAR(cross * 3.14159265358979323846 * x / 2, 1, 2e-13 * (1 + x)) << nu << " " << x;
        }
        const double ik = besies(nu, x) * beskes(nu + 1, x) + besies(nu + 1, x) * beskes(nu, x); // 10.28.2
        if (beskes(nu + 1, x) < 1e280 && besies(nu, x) > 1e-280) {
            EXPECT_NEAR(ik * x, 1, 1e-12) << nu << " " << x;
        }
    }
}

TEST(bessel, negativeordersreflect) {
    scatter s;
    for (int i = 0; i < 500; i++) {
        const double nu = s.uniform(0, 12), x = s.scaled(0.3, 60);
        const double a = bessj(-nu - 1, x) + bessj(-nu + 1, x), b = -2 * nu / x * bessj(-nu, x);
        EXPECT_NEAR(a, b, 1e-12 * (std::fabs(bessj(-nu - 1, x)) + std::fabs(b) + 1)) << nu << " " << x;
        EXPECT_EQ(bessk(-nu, x), bessk(nu, x));
    }
}

// The expansion about the turning point against the recurrence from orders that other roads reach.
TEST(bessel, largeordersneartheturningpoint) {
    for (double nu : {4200.0, 20000.5, 90000.25})
        for (double off : {-3.0, -0.4, 0.0, 1.1, 4.0}) {
            const double x = nu + off * std::cbrt(nu);
            const besjy turning = turningjy(nu, x);
            ASSERT_TRUE(turning.good);
            // mean of the neighbours: J(nu-1) + J(nu+1) = 2 nu/x J(nu)
            const besjy below = turningjy(nu - 1, x), above = turningjy(nu + 1, x);
            EXPECT_NEAR((below.j + above.j) / (2 * nu / x * turning.j), 1, 1e-11) << nu << " " << off;
            EXPECT_NEAR((below.y + above.y) / (2 * nu / x * turning.y), 1, 1e-10) << nu << " " << off;
            EXPECT_NEAR((above.j * turning.y - turning.j * above.y) * 3.14159265358979323846 * x / 2, 1,
                        1e-10);
        }
    // the mean over a period of cos(n t - x sin t), 18 digits
    const struct {
        double n, x, j;
    } rows[] = {{1000, 1000.5, 0.046778033080712406},
                {120000, 120003.5, 0.009658593646494873},
                {120000, 119900, 0.0003663603785027068},
                {1000000, 1000100, 0.0065343127009255195}};
    for (const auto& r : rows) EXPECT_NEAR(bessj(r.n, r.x) / r.j, 1, 1e-12) << r.n << " " << r.x;
}

TEST(bessel, sequencesagreewiththefunctions) {
    double j[40], y[40];
    for (double nu : {0.0, 0.5, 3.3})
        for (double x : {0.4, 3.0, 17.2, 120.0}) {
            besj(nu, x, 40, j);
            besy(nu, x, 40, y);
            for (int k = 0; k < 40; k++) {
                const double scale = std::hypot(bessj(nu + k, x), x > nu + k ? bessy(nu + k, x) : 0);
                EXPECT_NEAR(j[k], bessj(nu + k, x), 1e-12 * scale) << nu + k << " " << x;
                EXPECT_NEAR(y[k] / bessy(nu + k, x), 1, 1e-11 * (1 + x / std::fabs(y[k] * x)))
                    << nu + k << " " << x;
            }
        }
    besj(1000, 0.5, 3, j); // all underflow
    EXPECT_EQ(j[0], 0);
    EXPECT_EQ(j[2], 0);
    double k0, k1;
    for (double nu : {0.0, 0.3, 0.5, 0.51, 0.99})
        for (double x : {0.2, 1.99, 2.01, 40.0}) {
            rnknus(nu, x, &k0, &k1);
            EXPECT_NEAR(k0 / beskes(nu, x), 1, 1e-14);
            EXPECT_NEAR(k1 / beskes(nu + 1, x), 1, 1e-14);
        }
}

TEST(bessel, edgesanddefaults) {
    const struct {
        const char* name;
        double (*f)(double, double);
        double nu, x, result;
        bool noted;
    } rows[] = {
        {"BESSJ", bessj, 0, 0, 1, false},         {"BESSJ", bessj, -3, 0, 0, false},
        {"BESSJ", bessj, 2.5, 0, 0, false},       {"BESSJ", bessj, -2.5, 0, MAXPOS, true},
        {"BESSJ", bessj, 2.5, -1, 0, true},       {"BESSJ", bessj, 2000.5, 1, 0, false},
        {"BESSY", bessy, 0, 0, MAXNEG, true},     {"BESSY", bessy, 1, -2, 0, true},
        {"BESSY", bessy, 1000, 1, MAXNEG, true},  {"BESSI", bessi, 0, 0, 1, false},
        {"BESSI", bessi, 0, 800, MAXPOS, true},   {"BESSI", bessi, 0.5, -1, 0, true},
        {"BESSI", bessi, 3.5, 800, MAXPOS, true}, {"BESSI", bessi, 1e10, 1000, 0, false},
        {"BESSK", bessk, 0, 0, MAXPOS, true},     {"BESSK", bessk, 2, -1, 0, true},
        {"BESSK", bessk, 0, 800, 0, false},       {"BESSK", bessk, 1000, 1, MAXPOS, true},
        {"BESKES", beskes, 1, 0, MAXPOS, true},   {"BESKS", besks, 1.5, -1, 0, true},
        {"ABESSY", abessy, 1, 0, MAXNEG, true},   {"SPBJ", spbj, 0, 0, 1, false},
        {"SPBY", spby, 2, 0, MAXNEG, true},       {"SPBK", spbk, 1, 0, MAXPOS, true},
        {"SPBI", spbi, 2.5, -1, 0, true},         {"SPBJ", spbj, 0.5, -1, 0, true},
    };
    for (const auto& r : rows) {
        spfaultclear();
        EXPECT_EQ(r.f(r.nu, r.x), r.result) << r.name << " " << r.nu << " " << r.x;
        EXPECT_EQ(spfaults.count, r.noted) << r.name << " " << r.nu << " " << r.x;
        EXPECT_EQ(notedonly(SPRANGEWARN, r.name), r.noted) << r.name << " " << r.nu << " " << r.x;
        EXPECT_TRUE(std::isnan(r.f(r.nu, std::nan("")))) << r.name;
    }
    EXPECT_EQ(bessj(1e300, 1e-300), 0);
    EXPECT_EQ(bessj(0.5, HUGE_VAL), 0);
    spfaultclear();
    EXPECT_EQ(ibessjoxi(0), MAXPOS);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "IBESSJOXI"));
    spfaultclear();
    EXPECT_EQ(ibessi0(800), MAXPOS);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "IBESSI0"));
}

TEST(bessel, paritiesofwholeorders) {
    for (int n = 0; n < 6; n++)
        for (double x : {0.3, 5.0, 30.0}) {
            const double sign = n % 2 ? -1 : 1;
            EXPECT_EQ(bessj(n, -x), sign * bessj(n, x));
            EXPECT_EQ(bessj(-n, x), sign * bessj(n, x));
            EXPECT_EQ(bessj(-n, -x), bessj(n, x));
            EXPECT_EQ(bessi(n, -x), sign * bessi(n, x));
            EXPECT_EQ(bessi(-n, x), bessi(n, x));
            EXPECT_EQ(spbj(n, -x), sign * spbj(n, x));
            EXPECT_EQ(spby(n, -x), -sign * spby(n, x));
        }
}
