// Fills, hatching, smooth curves and arcs.
#include "unit/vellum/recorder.h"
#include "vellum/vlspline.h"

namespace {

class Polygon : public Recorded {};

const std::vector<double> ring = { // a square with a square hole: area 0.15
    11,    2, 0.1, 0.1, 0.5, 0.1, 0.5, 0.5, 0.1, 0.5, 0.1, 0.1,
    1e300, 0, 0.3, 0.3, 0.4, 0.3, 0.4, 0.4, 0.3, 0.4, 0.3, 0.3};
const std::vector<double> star = {6, 2, 0.2, 0.1, 0.5, 0.9, 0.8, 0.1, 0.1, 0.6, 0.9, 0.6, 0.2, 0.1};

double totallength() {
    double sum = 0;
    for (const recordedline& l : recorded.lines) sum += l.length();
    return sum;
}

TEST_F(Polygon, goesWholeToTheDevice) {
    DPOLYGON(ring.data(), 0, 0, 1);
    ASSERT_EQ(recorded.polygons.size(), 1u);
    EXPECT_EQ(recorded.polygons[0].size(), 11u);
    EXPECT_TRUE(covered({0.2, 0.2}));
    EXPECT_FALSE(covered({0.35, 0.35}));
    EXPECT_TRUE(recorded.lines.empty());
}

// The lines of a hatching times their distance are the area.
TEST_F(Polygon, hatchLinesMeasureTheArea) {
    for (const double angle : {0.0, 30.0, 45.0, 90.0, -17.0, 200.0}) {
        recorded = {};
        DPOLYGON(ring.data(), 0.001, angle, 1);
        EXPECT_NEAR(totallength() * 0.001, 0.15, 0.0005) << angle;
        for (const recordedline& l : recorded.lines) {
            const vlpoint middle{(l.a.x + l.b.x) / 2, (l.a.y + l.b.y) / 2};
            ASSERT_FALSE(middle.x > 0.301 && middle.x < 0.399 && middle.y > 0.301 && middle.y < 0.399);
            const double across = std::sin(angle * std::numbers::pi / 180) * (l.b.x - l.a.x) -
                                  std::cos(angle * std::numbers::pi / 180) * (l.b.y - l.a.y);
            ASSERT_NEAR(across, 0, 1e-12);
        }
    }
}

TEST_F(Polygon, starIsEvenOdd) {
    DPOLYGON(star.data(), 0.002, 0, 1);
    for (const recordedline& l : recorded.lines) {
        if (l.a.y > 0.45 && l.a.y < 0.55) { EXPECT_FALSE(l.a.x < 0.49 && l.b.x > 0.51) << l.a.y; }
    }
    EXPECT_GT(recorded.lines.size(), 400u);
}

TEST_F(Polygon, anOpenPictureGetsLinesADotApart) {
    vlpicture* picture = DNEWPIC();
    DPOLYGON(ring.data(), 0, 0, 1);
    DCLOSEPIC();
    EXPECT_TRUE(recorded.polygons.empty());
    recorded = {};
    DPSHOW(picture, nullptr);
    // 0.4 of 1000 dots, a hundredth more: 404 lines, a quarter of which the hole cuts in two.
    EXPECT_NEAR(double(recorded.lines.size()), 404 * 1.25, 1);
    EXPECT_NEAR(totallength() * 0.4 / 404, 0.15, 0.002);
}

// A device that takes few points gets parts, which together cover the polygon and nothing else.
TEST_F(Polygon, aLongPolygonGoesInParts) {
    std::vector<double> gear = {2 * 720 + 1, 2};
    for (const double radius : {0.4, 0.2}) {
        if (radius == 0.2) gear.insert(gear.end(), {1e300, 0});
        for (int i = 0; i < 720; i++) {
            const double a = i * std::numbers::pi / 360, r = radius + 0.03 * std::sin(30 * a);
            gear.insert(gear.end(), {0.5 + r * std::cos(a), 0.5 + r * std::sin(a)});
        }
    }
    vldeviceops few = *recorderoperations();
    few.maxpolygon = 100;
    vl.ops = &few;
    DPOLYGON(gear.data(), 0, 0, 1);
    vl.ops = recorderoperations();
    const auto parts = recorded.polygons;
    EXPECT_TRUE(recorded.lines.empty());
    EXPECT_GT(parts.size(), 14u);
    for (const recordedpolygon& p : parts) EXPECT_LE(p.size(), 100u);
    for (int i = 0; i < 4000; i++) {
        const vlpoint q{(i % 63 + 0.37) / 63, (i / 63 + 0.41) / 64};
        const double a = std::atan2(q.y - 0.5, q.x - 0.5), r = std::hypot(q.x - 0.5, q.y - 0.5);
        const double wave = 0.03 * std::sin(30 * a);
        if (std::fabs(r - 0.4 - wave) < 0.002 || std::fabs(r - 0.2 - wave) < 0.002) continue;
        ASSERT_EQ(covered(q), r < 0.4 + wave && r > 0.2 + wave) << q.x << ' ' << q.y;
    }
}

TEST_F(Polygon, linesAreKeptWithoutBeingDrawn) {
    DPOLYGON(ring.data(), 0.05, 0, 2);
    EXPECT_TRUE(recorded.lines.empty() && recorded.polygons.empty());
    ASSERT_EQ(DGETHATCH().size(), 4u * (8 + 2));
    EXPECT_NEAR(DGETHATCH()[0], 0.1, 1e-12);
    EXPECT_NEAR(DGETHATCH()[1], 0.125, 1e-12);
    DPOLYGON(ring.data(), 0.05, 0, 3);
    EXPECT_EQ(recorded.lines.size(), 10u);
}

TEST_F(Polygon, normalUnitsPassTheWindowBy) {
    DWINDOW(0, 1000, 0, 1000);
    const double world[] = {3, 2, 100, 100, 300, 100, 100, 300},
                 normal[] = {3, 2, 0.1, 0.1, 0.3, 0.1, 0.1, 0.3};
    DPOLYGON(world, 0, 0, 1);
    DPOLYGON(normal, 0, 0, 1 | 4);
    ASSERT_EQ(recorded.polygons.size(), 2u);
    for (size_t i = 0; i < 3; i++) EXPECT_NEAR(recorded.polygons[0][i].x, recorded.polygons[1][i].x, 1e-12);
}

TEST_F(Polygon, whatIsNoPolygonOfThePlaneIsLeft) {
    const double space[] = {3, 3, 0, 0, 0, 1, 0, 0, 1, 1, 0}, empty[] = {0, 2};
    DPOLYGON(space, 0, 0, 1);
    DPOLYGON(empty, 0, 0, 1);
    const double breaks[] = {3, 2, 1e300, 0, 1e300, 0, 1e300, 0}, point[] = {1, 2, 0.5, 0.5};
    DPOLYGON(breaks, 0.01, 0, 1);
    DPOLYGON(point, 0.01, 0, 1);
    const double nan[] = {4, 2, 0.1, 0.1, NAN, 0.5, 0.5, INFINITY, 0.4, 0.1};
    DPOLYGON(nan, 0.01, 10, 3);
    DPOLYGON(nan, NAN, NAN, 3);
    EXPECT_TRUE(recorded.polygons.size() <= 1);
}

TEST_F(Polygon, aFineHatchingOfAHugeOneEnds) {
    const double huge[] = {4, 2, -1e6, -1e6, 1e6, -1e6, 1e6, 1e6, -1e6, 1e6};
    DPOLYGON(huge, 1e-12, 33, 1);
    DPOLYGON(huge, 0, 0, 1);
    EXPECT_LT(recorded.lines.size(), 300000u);
}

// ---- Curves

// Values of SciPy's CubicSpline(t, xy, bc_type='natural') over the lengths of the chords.
TEST(Spline, naturalCubic) {
    const vlpoint points[] = {{0, 0}, {1, 2}, {3, 1}, {4, 4}};
    const vlspline s = vlsplinemake(points, 0, false);
    const double expected[][3] = {
        {0.1, 0.240604685086328, 0.97281920052709}, {0.3, 1.04106527297815, 2.00020148329789},
        {0.45, 2.07989101526482, 1.49045654660173}, {0.6, 3.07821592544287, 0.992789510453346},
        {0.85, 3.84993174798895, 2.38150820507637}, {1, 4, 4}};
    for (const auto& [u, x, y] : expected) {
        EXPECT_NEAR(vlsplineat(s, u).x, x, 1e-12) << u;
        EXPECT_NEAR(vlsplineat(s, u).y, y, 1e-12) << u;
    }
}

TEST(Spline, closedCurveIsSmoothWhereItCloses) {
    std::vector<vlpoint> circle;
    for (int i = 0; i <= 12; i++)
        circle.push_back({std::cos(i * std::numbers::pi / 6), std::sin(i * std::numbers::pi / 6)});
    for (const double tension : {0.0, 1.0}) {
        const vlspline s = vlsplinemake(circle, tension, true);
        for (int i = 0; i <= 100; i++) {
            const vlpoint p = vlsplineat(s, i / 100.0);
            EXPECT_NEAR(std::hypot(p.x, p.y), 1, tension == 0 ? 3e-4 : 1e-2);
        }
        const double e = 1e-6;
        const vlpoint before = vlsplineat(s, 1 - e), at = vlsplineat(s, 0), after = vlsplineat(s, e);
        EXPECT_NEAR((after.y - at.y) / e, (at.y - before.y) / e, 1e-3);
        EXPECT_NEAR((after.x - at.x) / e, (at.x - before.x) / e, 1e-3);
    }
}

TEST(Spline, tensionDrawsTheCurveToItsChords) {
    const vlpoint points[] = {{0, 0}, {0.1, 1}, {0.2, 1}, {0.5, 0}, {1, 0.3}, {1, 1}};
    double last = 1e9;
    for (const double tension : {0.0, 1.0, 3.0, 10.0, 50.0, 1000.0, 1e6}) {
        const vlspline s = vlsplinemake(points, tension, false);
        double away = 0;
        for (int i = 0; i <= 2000; i++) {
            const vlpoint p = vlsplineat(s, i / 2000.0);
            double least = 1e9;
            for (int k = 1; k < 6; k++) least = std::min(least, distanceto(points[k - 1], points[k], p));
            away = std::max(away, least);
        }
        for (size_t k = 0; k < 6; k++) {
            const vlpoint p = vlsplineat(s, s.knots[k] / s.knots.back());
            EXPECT_NEAR(p.x, points[k].x, 1e-12);
            EXPECT_NEAR(p.y, points[k].y, 1e-12);
        }
        EXPECT_LT(away, last);
        last = away;
    }
    EXPECT_LT(last, 1e-5);
    // The series of small tension meets the formulas.
    const vlspline a = vlsplinemake(points, 0.2, false), b = vlsplinemake(points, 0.2000001, false);
    for (int i = 0; i <= 50; i++) EXPECT_NEAR(vlsplineat(a, i / 50.0).y, vlsplineat(b, i / 50.0).y, 1e-7);
}

TEST(Spline, fewPoints) {
    EXPECT_EQ(vlsplineat(vlsplinemake({}, 0, false), 0.5).x, 0);
    const vlpoint one[] = {{3, 4}};
    EXPECT_EQ(vlsplineat(vlsplinemake(one, 0, true), 0.5).y, 4);
    const vlpoint two[] = {{0, 0}, {2, 4}, {2, 4}};
    EXPECT_NEAR(vlsplineat(vlsplinemake(two, 0, false), 0.25).y, 1, 1e-12);
    EXPECT_NEAR(vlsplineat(vlsplinemake(two, 5, true), 0.25).x, 0.5, 1e-12);
}

TEST_F(Polygon, splinesPassAllPointsEvenWhenTheyAreMany) {
    std::vector<double> poly = {500, 2};
    for (int i = 0; i < 500; i++) {
        poly.push_back(0.1 + 0.8 * i / 499);
        poly.push_back(0.5 + 0.3 * std::sin(i * 0.4));
    }
    std::vector<double> params(100);
    for (size_t i = 0; i < 100; i++) params[i] = double(i) / 99;
    DSPLINE(poly.data(), params.data(), 100, 0, 0, 1, 1, 0);
    for (int i = 0; i < 500; i++) {
        const vlpoint q{poly[size_t(2 + 2 * i)], poly[size_t(3 + 2 * i)]};
        double least = 1e9;
        for (const recordedline& l : recorded.lines) least = std::min(least, distanceto(l.a, l.b, q));
        EXPECT_LT(least, 0.01) << i;
    }
    EXPECT_NEAR(recorded.lines.front().a.x, 0.1, 1e-12);
    EXPECT_NEAR(recorded.lines.back().b.x, 0.9, 1e-12);
}

TEST_F(Polygon, arcsLieOnTheirEllipse) {
    const double ranges[][3] = {{0, 360, 360}, {30, 100, 70}, {270, 90, 180}, {350, 10, 20}, {-90, 45, 135}};
    for (const auto& [a0, a1, sweep] : ranges) {
        recorded = {};
        DARC(0.5, 0.5, 0.3, 0.1, a0, a1);
        double swept = 0;
        for (const recordedline& l : recorded.lines) {
            const double a = std::atan2((l.a.y - 0.5) / 0.1, (l.a.x - 0.5) / 0.3);
            const double b = std::atan2((l.b.y - 0.5) / 0.1, (l.b.x - 0.5) / 0.3);
            swept += std::remainder(b - a, 2 * std::numbers::pi) * 180 / std::numbers::pi;
            EXPECT_NEAR(std::hypot((l.b.x - 0.5) / 0.3, (l.b.y - 0.5) / 0.1), 1, 1e-9);
        }
        EXPECT_NEAR(swept, sweep, 1e-6) << a0 << ' ' << a1;
        EXPECT_NEAR(recorded.lines[0].a.x, 0.5 + 0.3 * std::cos(a0 * std::numbers::pi / 180), 1e-9);
        EXPECT_LT(recorded.lines[0].length(), 4 / std::numbers::pi / 1000 * 1.01);
    }
    DARC(0.5, 0.5, 0, 0, 0, 360);
    DARC(0.5, 0.5, NAN, 1, 0, INFINITY);
}

} // namespace
