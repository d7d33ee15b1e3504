// The outline of a wide line, measured: areas, distances from the centre line, joins at every angle.
#include "unit/vellum/recorder.h"
#include "vellum/vlribbon.h"

#include <random>

namespace {

recordedpolygon ribbonof(const std::vector<vlpoint>& points, double w, int roundsegs) {
    const int n = int(points.size()), room = BDRYSIZE(n, roundsegs);
    recordedpolygon out(size_t(room), {-7, -7});
    const int rcnt = vlribbon(points.data(), n, w, roundsegs, out.data());
    EXPECT_LT(rcnt, room);
    EXPECT_GE(rcnt, 1);
    out.resize(size_t(rcnt));
    return out;
}

double outlinearea(recordedpolygon p) {
    p.pop_back(); // repeats the first
    return std::fabs(polygonarea(p));
}

std::vector<vlpoint> bent(double degrees) {
    const double a = degrees * std::numbers::pi / 180;
    return {{-1, 0}, {0, 0}, {std::cos(a), std::sin(a)}};
}

// A mitred line has the area of its length times its width, whatever its corners.
TEST(Ribbon, mitresAtAllAngles) {
    constexpr double w = 0.03;
    for (int degrees = 0; degrees < 360; degrees++) {
        const recordedpolygon p = ribbonof(bent(degrees), w, 1);
        EXPECT_EQ(p.front().x, p.back().x);
        EXPECT_EQ(p.front().y, p.back().y);
        const double turn = std::fabs(std::remainder(degrees, 360)) * std::numbers::pi / 180;
        if (std::cos(turn / 2) * vlmitrelimit < 1.0001) continue; // a reversal: below
        EXPECT_NEAR(outlinearea(p), 2 * 2 * w, 1e-12) << degrees;
        EXPECT_EQ(p.size(), 7u);
    }
}

TEST(Ribbon, mitredEdgesKeepTheirDistance) {
    constexpr double w = 0.05;
    for (const int degrees : {10, 45, 90, 135, 160, 200, 270, 300, 350}) {
        const std::vector<vlpoint> line = bent(degrees);
        const recordedpolygon p = ribbonof(line, w, 1);
        for (const vlpoint q : p) { // each point lies on an edge line of one segment at least
            const vlpoint d = line[2];
            const double first = std::fabs(q.y), second = std::fabs(d.x * q.y - d.y * q.x);
            EXPECT_TRUE(std::fabs(first - w) < 1e-12 || std::fabs(second - w) < 1e-12) << degrees;
        }
    }
}

// A round join is half a circle over the gap between the offset points, in nine pieces.
TEST(Ribbon, roundJoinsAtAllAngles) {
    constexpr double w = 0.03;
    constexpr int pieces = 9;
    for (int degrees = 2; degrees < 359; degrees++) {
        const double turn = std::fabs(std::remainder(degrees, 360)) * std::numbers::pi / 180;
        if (std::cos(turn / 2) * vlmitrelimit < 1.0001) continue;
        const double radius = w * std::sin(turn / 2);
        const double tip = w * std::sin(turn / 2) * std::tan(turn / 2); // of the mitre beyond the gap's chord
        const double cap = pieces / 2.0 * radius * radius * std::sin(std::numbers::pi / pieces);
        const recordedpolygon p = ribbonof(bent(degrees), w, pieces);
        EXPECT_NEAR(outlinearea(p), 4 * w - radius * tip + cap, 1e-12) << degrees;
        EXPECT_EQ(p.size(), 7u + pieces);
    }
}

TEST(Ribbon, aReversalHasACapAndNoSpike) {
    constexpr double w = 0.05;
    for (const double degrees : {180.0, 179.99, 180.01, 175.0, 185.0, 169.0}) {
        for (const int roundsegs : {1, 9}) {
            const recordedpolygon p = ribbonof(bent(degrees), w, roundsegs);
            double furthest = 0;
            for (const vlpoint q : p) furthest = std::max(furthest, q.x);
            EXPECT_LE(furthest, w * 1.1) << degrees << ' ' << roundsegs;
            EXPECT_GT(furthest, roundsegs > 1 ? 0.9 * w : -w) << degrees;
        }
    }
}

TEST(Ribbon, straightPiecesAddNothing) {
    const recordedpolygon p = ribbonof({{0, 0}, {0.3, 0.1}, {0.6, 0.2}, {0.9, 0.3}}, 0.1, 9);
    EXPECT_EQ(p.size(), 9u);
    EXPECT_NEAR(outlinearea(p), 0.2 * std::hypot(0.9, 0.3), 1e-12);
}

TEST(Ribbon, lonePointsAndRepeats) {
    EXPECT_EQ(ribbonof({{0.5, 0.25}}, 0.1, 9).size(), 1u);
    const recordedpolygon same = ribbonof({{0.5, 0.25}, {0.5, 0.25}, {0.5, 0.25}}, 0.1, 1);
    ASSERT_EQ(same.size(), 1u);
    EXPECT_EQ(same[0].y, 0.25);
    const recordedpolygon p = ribbonof({{0, 0}, {0, 0}, {1, 0}, {1, 0}, {1, 1}, {1, 1}}, 0.1, 1);
    EXPECT_NEAR(outlinearea(p), 0.4, 1e-12);
}

// Tiny pieces and wild turns: the outline has finite points within its bound.
TEST(Ribbon, anyLineFitsItsBound) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> u(-1, 1);
    for (int trial = 0; trial < 20000; trial++) {
        const int n = 1 + trial % 12;
        std::vector<vlpoint> points;
        for (int i = 0; i < n; i++) {
            const double size = std::pow(10.0, 4 * u(random) - 4);
            vlpoint next{size * u(random), size * u(random)};
            if (i > 0 && trial % 3 == 0) next = points[size_t(i) - 1]; // repeats
            if (i > 1 && trial % 5 == 0) next = points[size_t(i) - 2]; // there and back
            points.push_back(next);
        }
        const double w = std::pow(10.0, 2 * u(random) - 3);
        for (const vlpoint q : ribbonof(points, w, trial % 2 ? 9 : 1))
            ASSERT_TRUE(std::isfinite(q.x) && std::isfinite(q.y) && q.x != -7);
    }
}

TEST(Ribbon, foldsAreFoundWhereAPieceIsShort) {
    EXPECT_FALSE(vlfolds({0, 0}, {1, 0}, {1, 1}, 0.1));
    EXPECT_TRUE(vlfolds({0, 0}, {1, 0}, {1, 0.15}, 0.1));
    EXPECT_TRUE(vlfolds({0.85, 0}, {1, 0}, {1, 1}, 0.1));
    EXPECT_TRUE(vlfolds({0, 0}, {1, 0}, {0, 0.001}, 0.1));
    EXPECT_FALSE(vlfolds({0, 0}, {0.01, 0}, {0.02, 0}, 0.1));
}

// Both ends that meet at a corner lie under the join, as far as it is of use: a device that mixes colours at
// edges shows no seam there.
TEST(Ribbon, joinsReachIntoBothParts) {
    constexpr double w = 0.05, near = 0.01 * w;
    for (int degrees = 0; degrees < 360; degrees++) {
        const std::vector<vlpoint> line = bent(degrees);
        for (const int roundsegs : {1, 9}) {
            recordedpolygon join(size_t(roundsegs) + 5);
            const int n = vljoin(line[0], line[1], line[2], w, roundsegs, join.data());
            ASSERT_LE(n, roundsegs + 5);
            join.resize(size_t(n));
            const vlpoint d = line[2];
            const double outer = d.y > 0 ? -1 : 1; // left of the line, or right
            for (double f = 0.05; f < 0.9; f += 0.1) {
                const vlpoint before{-near, outer * f * w};
                const vlpoint after{near * d.x - outer * f * w * d.y, near * d.y + outer * f * w * d.x};
                EXPECT_TRUE(inside(join, before)) << degrees << ' ' << roundsegs << ' ' << f;
                EXPECT_TRUE(inside(join, after)) << degrees << ' ' << roundsegs << ' ' << f;
            }
        }
    }
}

} // namespace
