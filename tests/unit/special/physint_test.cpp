#include "interp/base/machine.h"
#include "reftable.h"
#include "special/hbpower.h"
#include "special/physint.h"
#include "special/quadrature.h"

#include <random>

TEST(physint, referencevalues) {
    runreftable("physint.txt", {{"SIEVERT", sievert}, {"ABRAM", abram}, {"CABRAM", 4, [](const double* a) {
                                                                             const complexpair f =
                                                                                 cabram(a[0], a[1], a[2]);
                                                                             return a[3] == 0 ? f.re : f.im;
                                                                         }}});
}

TEST(physint, abramowitzrecurrence) {
    // 2 f[m] = (m-1) f[m-2] + x f[m-3], Abramowitz and Stegun 27.5.3
    std::mt19937 random(11);
    std::uniform_real_distribution<double> u(0, 1);
    for (int i = 0; i < 200; i++) {
        const double m = 3 + 10 * u(random), x = 20 * u(random);
        EXPECT_LT(referror(2 * abram(m, x), (m - 1) * abram(m - 2, x) + x * abram(m - 3, x)), 1e-13)
            << m << ' ' << x;
        const complexpair up = cabram(m, x, 0.5 * x), down = cabram(m, x, -0.5 * x);
        EXPECT_LT(referror(up.re, down.re), 1e-13);
        EXPECT_LT(referror(up.im, -down.im), 1e-13);
    }
}

TEST(physint, faults) {
    const auto check = [](const char* name, double value, double result) {
        EXPECT_EQ(result, value) << name;
        EXPECT_TRUE(notedonly(SPRANGEWARN, name)) << name;
        spfaultclear();
    };
    spfaultclear();
    check("SIEVERT", 0, sievert(-1, 1));
    check("SIEVERT", 0, sievert(1, 1.6));
    check("ABRAM", 0, abram(1, -1));
    check("ABRAM", MAXPOS, abram(-1, 0));
    check("CABRAM", 0, cabram(1, -0.5, 1).re);
    EXPECT_EQ(abram(2, MAXPOS), 0);
    EXPECT_EQ(sievert(MAXPOS, 1), 0);
}

namespace {
double power(double x, void* context) { return std::pow(x, *static_cast<double*>(context)); }
double step(double x, void*) { return x > 0.3 ? 1 : 0; }
double oddsine(double x, void*) { return std::sin(x); }
double nested(double x, void*) {
    double n = 2;
    return qromb(power, &n, 0, x, {});
}
} // namespace

TEST(quadrature, rombergandthirds) {
    for (double n : {0.0, 1.0, 2.0, 5.0, 9.0}) {
        double k = n;
        spfaultclear();
        EXPECT_NEAR(qromb(power, &k, 0, 2, {}), std::pow(2, n + 1) / (n + 1), 1e-9);
        EXPECT_LT(referror(quadthirds(power, &k, 0, 2, 1e-15), std::pow(2, n + 1) / (n + 1)), 1e-14);
        EXPECT_EQ(spfaults.count, 0);
    }
    EXPECT_NEAR(qromb(oddsine, nullptr, -3, 3, {}), 0, 1e-15);
    EXPECT_NEAR(qromb(nested, nullptr, 0, 1, {}), 1 / 12., 1e-11);
    EXPECT_EQ(qromb(oddsine, nullptr, 1, 1, {}), 0);
    EXPECT_EQ(spfaults.count, 0);
    EXPECT_NEAR(qromb(step, nullptr, 0, 1, {1e-10, 12, 5}), 0.7, 1e-3);
    EXPECT_TRUE(notedonly(SPERR, "QROMB failed--too many steps"));
    spfaultclear();
    EXPECT_NEAR(quadthirds(step, nullptr, 0, 1, 1e-15), 0.7, 1e-3);
    EXPECT_EQ(spfaults.count, 2);
    EXPECT_STREQ(spfaults.at[0].text, "Numerical integral failed to reach specified accuracy");
    EXPECT_STREQ(spfaults.at[1].text, " for subdivision near 3^(-7)");
}

TEST(hbpower, exponentialcurvesagainstschoenfeld) {
    // for proportional hazards the statistic has mean log(ratio) sqrt(events/4), D. Schoenfeld, Biometrics 39
    // (1983) 499
    double t[200], s1[200], s2[200];
    for (int k = 0; k < 200; k++) {
        t[k] = 0.02 * (k + 1);
        s1[k] = std::exp(-0.5 * t[k]);
        s2[k] = std::exp(-0.4 * t[k]);
    }
    const survivalcurve control = {t, s1, 200}, treated = {t, s2, 200};
    const double n = 400, events = n * (1 - s1[199]) + n * (1 - s2[199]);
    const double shift = std::log(0.5 / 0.4) * std::sqrt(events / 4);
    for (double sides : {1.0, 2.0}) {
        const double z = sides == 1 ? 1.6448536269514722 : 1.959963984540054;
        const double expected = 0.5 * std::erfc((z - shift) / std::sqrt(2.0));
        EXPECT_NEAR(hbpower(control, treated, {0.05, n, 1, sides, 20, 0}), expected, 0.01) << sides;
    }
    EXPECT_NEAR(hbpower(control, control, {}), 0.05, 1e-12); // no difference: the level
    EXPECT_NEAR(hbpower(control, control, {0.1, 30, 2, 2, 20, 1}), 0.1, 1e-12);
    EXPECT_GT(hbpower(control, treated, {0.05, 800, 1, 1, 20, 0}),
              hbpower(control, treated, {0.05, 400, 1, 1, 20, 0}));
    spfaultclear();
    EXPECT_EQ(hbpower(control, treated, {1.5, 30, 1, 1, 20, 0}), 0);
    EXPECT_TRUE(notedonly(SPRANGEERR, "HBPOWER"));
    spfaultclear();
    const survivalcurve bad = {s1, s1, 200}; // times that fall
    EXPECT_EQ(hbpower(control, bad, {}), 0);
    EXPECT_TRUE(notedonly(SPSHAPEERR, "HBPOWER"));
}
