#include "interp/base/machine.h"
#include "reftable.h"
#include "special/polyroots.h"

#include <algorithm>
#include <random>

namespace {

// The coefficients of a polynomial with these roots, rounded in each step as a user's would be.
std::vector<spcomplex> withroots(const std::vector<spcomplex>& roots) {
    std::vector<spcomplex> c{{1, 0}};
    for (spcomplex r : roots) {
        c.push_back({0, 0});
        for (size_t k = c.size() - 1; k > 0; k--) c[k] = c[k] - r * c[k - 1];
    }
    return c;
}
std::vector<double> realparts(const std::vector<spcomplex>& c) {
    std::vector<double> r;
    for (spcomplex a : c) r.push_back(a.re);
    return r;
}
std::vector<spcomplex> repeated(std::initializer_list<std::pair<spcomplex, int>> list) {
    std::vector<spcomplex> all;
    for (const auto& [z, times] : list) all.insert(all.end(), times, z);
    return all;
}
// The largest relative distance when each root takes the nearest that is left.
double worst(std::vector<spcomplex> got, const std::vector<spcomplex>& want) {
    if (got.size() != want.size()) return HUGE_VAL;
    double w = 0;
    for (spcomplex r : want) {
        const auto near = std::min_element(got.begin(), got.end(), [r](spcomplex a, spcomplex b) {
            return magnitude(a - r) < magnitude(b - r);
        });
        w = std::fmax(w, magnitude(*near - r) / std::fmax(magnitude(r), 1e-300));
        got.erase(near);
    }
    return w;
}

} // namespace

TEST(polyroots, exactcoefficientsgiveexactroots) {
    const std::vector<spcomplex> cases[] = {
        repeated({{{1, 0}, 1}, {{2, 0}, 1}}),
        repeated({{{1, 0}, 5}}),
        repeated({{{1, 0}, 20}}),
        repeated({{{1, 0}, 4}, {{2, 0}, 3}, {{3, 0}, 2}, {{4, 0}, 1}}),
        repeated({{{0.25, 0}, 4}, {{0.5, 0}, 3}, {{-0.75, 0}, 2}, {{0, 0}, 2}}),
        repeated({{{1, 1}, 3}, {{1, -1}, 3}, {{2, 0}, 1}}),
        repeated({{{1 + 0x1p-10, 0}, 1}, {{1, 0}, 1}, {{1 + 0x1p-11, 0}, 1}, {{3, 0}, 1}}),
        repeated({{{0x1p-80, 0}, 1}, {{0x1p-40, 0}, 1}, {{1, 0}, 1}, {{0x1p40, 0}, 1}, {{0x1p80, 0}, 1}}),
    };
    for (const auto& roots : cases)
        EXPECT_EQ(worst(proot(realparts(withroots(roots))), roots), 0) << roots.size();
    std::vector<spcomplex> wilkinson;
    for (int k = 1; k <= 15; k++) wilkinson.push_back({double(k), 0});
    EXPECT_EQ(worst(proot(realparts(withroots(wilkinson))), wilkinson), 0);
    const auto complex = repeated({{{1, 2}, 3}, {{0, 1}, 2}, {{-3, 0}, 1}});
    EXPECT_EQ(worst(zroot(withroots(complex)), complex), 0);
}

TEST(polyroots, roundedcoefficientsgivethemultiplerootmeant) {
    const std::vector<spcomplex> cases[] = {repeated({{{0.1, 0}, 3}}),
                                            repeated({{{0.1, 0}, 5}, {{0.7, 0}, 2}}),
                                            repeated({{{M_PI, 0}, 4}, {{-M_SQRT2, 0}, 2}}),
                                            repeated({{{1.3, 0}, 3}, {{2.7, 0}, 3}, {{-0.4, 0}, 1}})};
    for (const auto& roots : cases) {
        const std::vector<double> c = realparts(withroots(roots));
        EXPECT_LT(worst(proot(c), roots), 1e-14) << roots.size();
        std::vector<spcomplex> wide;
        for (double a : c) wide.push_back({a, 0});
        EXPECT_LT(worst(zroot(wide), roots), 1e-14) << roots.size();
    }
}

// 1e-10 apart in 10 digits: the two close roots of x^10 - 2 (100 x - 1)^2 stay two (M. Mignotte); mpmath.
TEST(polyroots, closerootsofexactcoefficientsstayapart) {
    const std::vector<spcomplex> z = proot({1, 0, 0, 0, 0, 0, 0, 0, -20000, 400, -2});
    int close = 0;
    for (spcomplex r : z) close += std::fabs(r.re - 0.01) < 1e-10;
    EXPECT_EQ(close, 2);
    std::vector<double> c{1};
    c.resize(51);
    c[50] = -1;
    for (spcomplex r : proot(c)) EXPECT_NEAR(magnitude(r), 1, 1e-15);
}

TEST(polyroots, residualsofrandompolynomialsareroundingerrors) {
    std::mt19937 random(77);
    std::normal_distribution<double> gauss;
    for (int degree : {1, 2, 3, 7, 20, 60, 150}) {
        std::vector<double> c(degree + 1);
        std::vector<spcomplex> wide;
        for (double& a : c) {
            a = gauss(random);
            wide.push_back({a, gauss(random)});
        }
        const std::vector<spcomplex> z = proot(c), w = zroot(wide);
        ASSERT_EQ(z.size(), size_t(degree));
        ASSERT_EQ(w.size(), size_t(degree));
        for (int i = 0; i < degree; i++) {
            spcomplex p, q;
            double bound = 0, wbound = 0;
            for (int k = 0; k <= degree; k++) {
                p = p * z[i] + spcomplex{c[k], 0};
                q = q * w[i] + wide[k];
                bound = bound * magnitude(z[i]) + std::fabs(c[k]);
                wbound = wbound * magnitude(w[i]) + magnitude(wide[k]);
            }
            EXPECT_LT(magnitude(p), 1e-15 * degree * bound);
            EXPECT_LT(magnitude(q), 1e-15 * degree * wbound);
        }
    }
}

TEST(polyroots, orderandconjugates) {
    const std::vector<spcomplex> z = proot({1, -2, 5, 3, -7, 1, 8});
    for (size_t k = 1; k < z.size(); k++) EXPECT_LE(z[k - 1].re, z[k].re);
    double sum = 0;
    for (spcomplex r : z) sum += r.im;
    EXPECT_EQ(sum, 0);
    const std::vector<spcomplex> simple = proot({2, 0, 8, 0, 0});
    ASSERT_EQ(simple.size(), 4u);
    for (const spcomplex& r : simple) EXPECT_TRUE(r.re == 0 && (r.im == 0 || std::fabs(r.im) == 2));
}

TEST(polyroots, badinput) {
    const char* words = "zero degree or highest coefficient equal to zero not allowed";
    for (const std::vector<double>& c : {std::vector<double>{}, {3}, {0, 1, 2}, {1, NAN}, {HUGE_VAL, 1}}) {
        spfaultclear();
        EXPECT_TRUE(proot(c).empty());
        EXPECT_TRUE(notedonly(SPERR, words));
    }
    spfaultclear();
    EXPECT_TRUE(zroot({{0, 0}, {1, 1}}).empty());
    EXPECT_TRUE(notedonly(SPERR, words));
    spfaultclear();
    EXPECT_EQ(proot({1e-300, 1e300})[0].re, MAXNEG);
    EXPECT_TRUE(notedonly(SPRANGEWARN, "PROOT"));
}
