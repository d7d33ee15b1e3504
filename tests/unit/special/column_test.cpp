// Functions that run on columns of numbers: good to a little over half a unit in the last place, and each
// number the same bits as alone, whatever stands beside it.
#include "special/expcolumn.h"
#include "special/sincolumn.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

struct columncase {
    const char* name;
    double (*one)(double);
    void (*column)(const double*, double*, size_t);
    long double (*reference)(long double);
    double low, high;
};
const columncase cases[] = {{"exp", expone, expcolumn, std::exp, -689, 689},
                            {"exp near 0", expone, expcolumn, std::exp, -0.02, 0.02},
                            {"sin", sinone, sincolumn, std::sin, -1e6, 1e6},
                            {"sin of a turn", sinone, sincolumn, std::sin, -7, 7},
                            {"sin near 0", sinone, sincolumn, std::sin, -0.2, 0.2},
                            {"cos", cosone, coscolumn, std::cos, -1e6, 1e6},
                            {"cos of a turn", cosone, coscolumn, std::cos, -7, 7}};

// Distance in units in the last place of a.
double unitsoff(double a, long double exact) {
    const double unit = std::nextafter(std::fabs(a), INFINITY) - std::fabs(a);
    return double(std::fabs(a - exact) / unit);
}

TEST(Column, WithinAHairOfHalfAUnit) {
    std::mt19937_64 random(3);
    for (const auto& c : cases) {
        double worst = 0, at = 0;
        for (int k = 0; k < 60000; k++) {
            double x = c.low + (c.high - c.low) * double(random() >> 11) * 0x1p-53;
            if (k % 3 == 0 && c.column != expcolumn) // next to the zeros and the extremes
                x = double(random() % 400000) * 1.5707963267948966 +
                    (double(random() >> 11) * 0x1p-53 - 0.5) * 1e-3;
            const double off = unitsoff(c.one(x), c.reference(x));
            if (off > worst) worst = off, at = x;
        }
        EXPECT_LT(worst, 0.56) << c.name << " of " << at;
    }
}

TEST(Column, EachNumberAsAlone) {
    std::mt19937_64 random(4);
    const double special[] = {0.0,   -0.0,  5e-324, 1e-300, 0.125, 0.7853981633974483, 1e6, 1e7, 1e300,
                              689.9, 690.1, -745,   710,    -1e9};
    for (const auto& c : cases) {
        for (int round = 0; round < 300; round++) {
            std::vector<double> x(1 + random() % 60), y(x.size());
            for (double& v : x) {
                v = c.low + (c.high - c.low) * double(random() >> 11) * 0x1p-53;
                if (round % 2 && random() % 8 == 0) v = special[random() % std::size(special)];
            }
            c.column(x.data(), y.data(), x.size());
            for (size_t k = 0; k < x.size(); k++)
                ASSERT_EQ(std::bit_cast<uint64_t>(y[k]), std::bit_cast<uint64_t>(c.one(x[k])))
                    << c.name << " of " << x[k];
        }
    }
}

TEST(Column, KnownValues) {
    EXPECT_EQ(expone(0), 1);
    EXPECT_EQ(expone(1), 2.718281828459045);
    EXPECT_EQ(expone(-1), 0.36787944117144233);
    EXPECT_EQ(expone(710), INFINITY);
    EXPECT_EQ(expone(-746), 0);
    EXPECT_EQ(expone(709.782712893384), std::exp(709.782712893384));
    EXPECT_EQ(sinone(0.5235987755982989), 0.5);
    EXPECT_EQ(sinone(1.5707963267948966), 1);
    EXPECT_EQ(sinone(3.141592653589793), 1.2246467991473532e-16);
    EXPECT_TRUE(std::signbit(sinone(-0.0)));
    EXPECT_EQ(cosone(0), 1);
    EXPECT_EQ(cosone(1.5707963267948966), 6.123233995736766e-17);
    EXPECT_EQ(cosone(1.0471975511965976), 0.5000000000000001);
}

} // namespace
