#include "interp/base/machine.h"
#include "reftable.h"
#include "special/errorfn.h"

#include <random>

TEST(errorfn, referencevalues) {
    runreftable("errorfn.txt",
                {{"ERF", erffn}, {"ERFC", erfcfn}, {"ERFI", erfinv}, {"ERFCI", erfcinv}, {"IERFC", ierfc}});
}

TEST(errorfn, againstthelibrary) {
    std::mt19937 random(4);
    std::uniform_real_distribution<double> u(-6, 26);
    for (int i = 0; i < 5000; i++) {
        const double x = u(random);
        EXPECT_LT(referror(erffn(x), std::erf(x)), 1e-15) << x;
        EXPECT_LT(referror(erfcfn(x), std::erfc(x)), 2e-15) << x;
        EXPECT_LT(referror(erfcx(x), std::exp(x * x) * std::erfc(x)), 1e-12) << x;
    }
}

TEST(errorfn, inversesgoround) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> u(0, 1);
    for (int i = 0; i < 5000; i++) {
        const double p = 2 * u(random) - 1, q = std::exp(-600 * u(random));
        EXPECT_LT(referror(erffn(erfinv(p)), p), 1e-14) << p;
        EXPECT_LT(referror(erfcfn(erfcinv(q)), q), 1e-12) << q; // condition 2x^2
        EXPECT_EQ(erfinv(-p), -erfinv(p));
    }
    EXPECT_GT(erfcinv(5e-324), 27);
}

TEST(errorfn, endsandforbiddenarguments) {
    struct {
        double (*f)(double);
        double x, value;
        const char* name; // of the range warning, or none
    } rows[] = {{erfinv, 1, MAXPOS, nullptr},  {erfinv, -1, MAXNEG, nullptr}, {erfcinv, 0, MAXPOS, nullptr},
                {erfcinv, 2, MAXNEG, nullptr}, {erfinv, 1.1, 0, "ERFI"},      {erfcinv, -0.1, 0, "ERFCI"},
                {erfcinv, 2.1, 0, "ERFCI"},    {erffn, MAXPOS, 1, nullptr},   {erfcfn, MAXPOS, 0, nullptr},
                {erfcfn, MAXNEG, 2, nullptr}};
    for (const auto& r : rows) {
        spfaultclear();
        EXPECT_EQ(r.f(r.x), r.value) << r.x;
        EXPECT_TRUE(r.name ? notedonly(SPRANGEWARN, r.name) : spfaults.count == 0) << r.x;
    }
    for (double n : {-2.0, 0.5, std::nan("")}) {
        spfaultclear();
        EXPECT_EQ(ierfc(n, 1), 0);
        EXPECT_TRUE(notedonly(SPRANGEWARN, "IERFC"));
    }
    EXPECT_EQ(ierfc(1e9, 0.5), 0); // underflow, at once
    EXPECT_EQ(ierfc(1e9, -3), 0);
    spfaultclear();
    EXPECT_EQ(ierfc(300, -1e5), MAXPOS);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "IERFC"));
}
