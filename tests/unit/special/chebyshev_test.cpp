#include "reftable.h"
#include "special/chebyshev.h"

#include <cmath>
#include <random>

namespace {
// exp(x) on [-1,1]: 2 I_0(1), 2 I_1(1), ... (Abramowitz and Stegun 9.6.34, values of table 9.8 and mpmath)
constexpr double expcs[] = {0,
                            2.5321317555040166712,
                            1.1303182079849700544,
                            .27149533953407656237,
                            .044336849848663804953,
                            .0054742404420937326503,
                            .00054292631191394375036,
                            4.4977322954295146655e-5,
                            3.1984364624019905059e-6,
                            1.9921248066727957259e-7,
                            1.1036771725517344326e-8,
                            5.5058960796737471681e-10,
                            2.4979566169849825224e-11,
                            1.0391522306785703254e-12,
                            3.9912633564144015257e-14,
                            1.4237580108256544177e-15};
} // namespace

TEST(chebyshev, sumsaknownseries) {
    for (double x : {-1.0, -0.7, 0.0, 0.3, 1.0}) EXPECT_NEAR(csevl(x, expcs, 15), std::exp(x), 2e-15) << x;
    EXPECT_EQ(csevl(0.3, expcs, 1), expcs[1] / 2);
}

TEST(chebyshev, unrolledsumisthesametothebit) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> u(-1, 1);
    for (int i = 0; i < 1000; i++) {
        const double x = u(random);
        EXPECT_EQ(csevlfixed<15>(x, expcs), csevl(x, expcs, 15));
        EXPECT_EQ(csevlfixed<2>(x, expcs), csevl(x, expcs, 2));
    }
}

TEST(chebyshev, refusesbadcalls) {
    for (int n : {0, -5, 1001}) {
        spfaultclear();
        EXPECT_EQ(csevl(0.5, expcs, n), 0);
        EXPECT_TRUE(notedonly(SPERR, "CSEVL: number of terms must be 1 < n < 1000"));
    }
    for (double x : {1.0000000000000002, -1.1, std::nan("")}) {
        spfaultclear();
        EXPECT_EQ(csevl(x, expcs, 15), 0);
        EXPECT_TRUE(notedonly(SPERR, "CSEVL: value must be in -1 <= x <= 1"));
    }
}

TEST(chebyshev, keepstheshortestserieswithintolerance) {
    constexpr int atcompiletime = inits(expcs, 15, 1e-9);
    EXPECT_EQ(atcompiletime, 10);
    spfaultclear();
    EXPECT_EQ(inits(expcs, 15, 1e-14), 14);
    EXPECT_EQ(inits(expcs, 15, 100), 1);
    EXPECT_EQ(spfaults.count, 0);
    EXPECT_EQ(inits(expcs, 15, 1e-20), 15);
    EXPECT_TRUE(notedonly(SPWARN, "inits: tolerance too small\n"));
}
