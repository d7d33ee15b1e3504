#include "reftable.h"
#include "special/elementary.h"

TEST(elementary, multiplesofpi) {
    for (double n : {0.0, 1.0, -3.0, 1e15}) EXPECT_EQ(sinpi(n), 0) << n;
    for (double n : {0.5, -7.5, 1e15 + 0.5}) EXPECT_EQ(cospi(n), 0) << n;
    EXPECT_EQ(cospi(1e15 + 1), -1);
    EXPECT_EQ(sinpi(-1e15 - 0.5), -1);
    for (double x = -1; x <= 1; x += 1.0 / 64) {
        EXPECT_NEAR(sinpi(x), std::sin(PI * x), 5e-16) << x;
        EXPECT_NEAR(cospi(x), std::cos(PI * x), 5e-16) << x;
        EXPECT_EQ(sinpi(x + 4096), sinpi(x)) << x;
    }
}

TEST(elementary, deviance) { runreftable("elementary.txt", {{"LOG1PMX", log1pmx}}); }
