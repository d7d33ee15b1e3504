// Dashes, ticks and phase of the line generator, and wide lines as polygons, by what a device gets.
#include "unit/vellum/recorder.h"
#include "vellum/vlgenlin.h"
#include "vellum/vlribbon.h"

#include <random>

namespace {

class Generator : public Recorded {};

// The part of [from, to] that a dash pattern starting at `from` with a phase draws.
std::vector<std::pair<double, double>> dashesof(const double style[3], double from, double to,
                                                double phase = 0) {
    std::vector<std::pair<double, double>> out;
    const double period = style[0] + style[1] + style[2] + style[1];
    for (double at = from - phase; at < to; at += period) {
        const double starts[2] = {at, at + style[0] + style[1]}, lengths[2] = {style[0], style[2]};
        for (int i = 0; i < 2; i++) {
            const double a = std::max(starts[i], from), b = std::min(starts[i] + lengths[i], to);
            if (b - a > 1e-12) out.emplace_back(a, b);
        }
    }
    return out;
}

void polyline(const std::vector<vlpoint>& points) {
    DMOVE(points[0].x, points[0].y);
    for (size_t i = 1; i < points.size(); i++) DDRAW(points[i].x, points[i].y);
    DFLUSH();
}

TEST_F(Generator, noStyleGoesStraightThrough) {
    DLINESTYLE(0.1, 0, 0.1, 0, 0, 0, 1); // segs and fill do not count
    EXPECT_EQ(vl.gen.line, nullptr);
    polyline({{0.1, 0.1}, {0.1, 0.1 + 1e-6}, {0.9, 0.9}});
    EXPECT_EQ(recorded.lines.size(), 2u);
    double style[7];
    DGETLINESTYLE(style);
    EXPECT_EQ(style[0], 0.1);
    EXPECT_EQ(style[6], 1);
}

TEST_F(Generator, dashesHaveTheirLengths) {
    const double patterns[][3] = {{0.01, 0.01, 0.01}, {0.03, 0.01, 0.01}, {0.03, 0.005, 0.002},
                                  {0.1, 0.3, 0.2},    {0, 0.01, 0.02},    {2, 0.1, 2}};
    for (const auto& p : patterns) {
        recorded = {};
        DLINESTYLE(p[0], p[1], p[2], 0, 0, 0, 0);
        polyline({{0.1, 0.5}, {0.83, 0.5}});
        const auto expected = dashesof(p, 0.1, 0.83);
        ASSERT_EQ(recorded.lines.size(), expected.size()) << p[0];
        for (size_t i = 0; i < expected.size(); i++) {
            EXPECT_NEAR(recorded.lines[i].a.x, expected[i].first, 1e-9);
            EXPECT_NEAR(recorded.lines[i].b.x, expected[i].second, 1e-9);
        }
    }
}

// Along a path with corners the drawn lengths are those of the straight pattern, however the path is split.
TEST_F(Generator, phaseGoesOnOverCorners) {
    const double pattern[3] = {0.013, 0.007, 0.021};
    const std::vector<vlpoint> path = {{0.1, 0.1}, {0.4, 0.1}, {0.4, 0.33}, {0.12, 0.61}, {0.9, 0.9}};
    for (const int split : {1, 3, 7}) {
        recorded = {};
        DLINESTYLE(pattern[0], pattern[1], pattern[2], 0, 0, 0, 0);
        std::vector<vlpoint> points = {path[0]};
        double total = 0;
        for (size_t i = 1; i < path.size(); i++) {
            const vlpoint a = path[i - 1], b = path[i];
            total += std::hypot(b.x - a.x, b.y - a.y);
            for (int k = 1; k <= split; k++)
                points.push_back({a.x + (b.x - a.x) * k / split, a.y + (b.y - a.y) * k / split});
        }
        polyline(points);
        double drawn = 0, expected = 0;
        for (const recordedline& l : recorded.lines) drawn += l.length();
        for (const auto& [a, b] : dashesof(pattern, 0, total)) expected += b - a;
        EXPECT_NEAR(drawn, expected, 1e-9) << split;
    }
}

TEST_F(Generator, aNewLineBeginsThePatternAnew) {
    DLINESTYLE(0.05, 0.05, 0.05, 0, 0, 0, 0);
    DMOVE(0.1, 0.1);
    DDRAW(0.17, 0.1);
    DMOVE(0.1, 0.3);
    DDRAW(0.17, 0.3);
    DFLUSH();
    ASSERT_EQ(recorded.lines.size(), 2u);
    EXPECT_NEAR(recorded.lines[1].a.x, 0.1, 1e-12);
    EXPECT_NEAR(recorded.lines[1].length(), 0.05, 1e-12);
}

struct tickrow {
    double tick1, tick2;
    double low1, high1, low2, high2; // ends of the first and the second tick, from the line
};
const tickrow tickrows[] = {
    {-0.02, 0, -0.02, 0, 0, 0},
    {-0.02, -0.03, -0.02, 0, 0, 0.03},
    {-0.02, 0.03, -0.02, 0, -0.03, 0},
    {0.02, -0.03, 0, 0.02, 0, 0.03},
    {0.02, 0.04, -0.01, 0.01, -0.02, 0.02},
};

TEST_F(Generator, ticksStandInTheMiddleOfGaps) {
    for (const tickrow& row : tickrows) {
        recorded = {};
        DLINESTYLE(0, 0.1, 0, row.tick1, row.tick2, 0, 0);
        polyline({{0.1, 0.5}, {0.3, 0.5}});
        EXPECT_EQ(recorded.dots.size(), 0u);
        ASSERT_EQ(recorded.lines.size(), row.tick2 == 0 ? 1u : 2u) << row.tick1 << ' ' << row.tick2;
        const double ends[2][2] = {{row.low1, row.high1}, {row.low2, row.high2}};
        for (size_t i = 0; i < recorded.lines.size(); i++) {
            const recordedline l = recorded.lines[i];
            EXPECT_NEAR(l.a.x, 0.15 + 0.1 * double(i), 1e-9);
            EXPECT_NEAR(l.b.x, l.a.x, 1e-12);
            EXPECT_NEAR(std::min(l.a.y, l.b.y) - 0.5, ends[i][0], 1e-9);
            EXPECT_NEAR(std::max(l.a.y, l.b.y) - 0.5, ends[i][1], 1e-9);
        }
    }
}

TEST_F(Generator, segsOfNoLengthAreDots) {
    DLINESTYLE(0, 0.01, 0, 0, 0, 0, 0);
    polyline({{0.1, 0.5}, {0.1995, 0.5}});
    EXPECT_EQ(recorded.lines.size(), 0u);
    ASSERT_EQ(recorded.dots.size(), 10u);
    EXPECT_NEAR(recorded.dots[3].x, 0.13, 1e-9);
}

TEST_F(Generator, aLineOfNoLengthDrawsNothing) {
    for (const double gap : {0.0, 0.01}) {
        DLINESTYLE(0.01, gap, 0.01, -0.01, 0, 0, 0);
        polyline({{0.5, 0.5}, {0.5, 0.5}});
    }
    EXPECT_TRUE(recorded.lines.empty() && recorded.polygons.empty());
}

// Nearer points are passed over, but not the end of the line, and not in a window of small numbers.
TEST_F(Generator, nearPointsAreDropped) {
    const auto draw = [](double unit) {
        recorded = {};
        DWINDOW(0, unit, 0, unit);
        DLINESTYLE(1, 0.1, 1, 0, 0, 0, 0);
        std::vector<vlpoint> points;
        for (int i = 0; i <= 1000; i++) points.push_back({unit * (0.1 + 0.0005 * i), unit * 0.2});
        polyline(points);
        return recorded.lines;
    };
    const auto lines = draw(1);
    EXPECT_LT(lines.size(), 110u);
    EXPECT_NEAR(lines.back().b.x, 0.6, 1e-12);
    const auto small = draw(1e-6);
    EXPECT_GT(small.size(), 80u);
    EXPECT_NEAR(small.back().b.x, 0.6, 1e-9);
}

// A line that goes far beyond the window is walked only where it is seen, with the phase it would have.
TEST_F(Generator, farLinesKeepTheirPhase) {
    const double pattern[3] = {0.02, 0.01, 0.005};
    DLINESTYLE(pattern[0], pattern[1], pattern[2], 0, 0, 0, 0);
    const double away = 45000 * 0.045; // whole periods
    polyline({{-away, 0.5}, {away, 0.5}, {away * 1e6, 1e9}, {1e300, 1e300}});
    const auto expected = dashesof(pattern, 0, 1);
    ASSERT_NEAR(double(recorded.lines.size()), double(expected.size()), 1);
    double drawn = 0, sum = 0;
    for (const recordedline& l : recorded.lines) drawn += l.length();
    for (const auto& [a, b] : expected) sum += b - a;
    EXPECT_NEAR(drawn, sum, 1e-5);
    EXPECT_NEAR(recorded.lines[1].a.x, expected[1].first, 1e-6);
}

TEST_F(Generator, badStylesAndPointsDoNoHarm) {
    const double bad[] = {NAN, INFINITY, -INFINITY, 1e-300, -1, 1e300};
    for (const double v : bad) {
        for (int field = 0; field < 7; field++) {
            double s[7] = {0.01, 0.01, 0.01, 0.01, 0.01, 0.01, 0};
            s[field] = v;
            DLINESTYLE(s[0], s[1], s[2], s[3], s[4], s[5], s[6]);
            polyline({{0.1, 0.1}, {v, 0.5}, {0.5, v}, {0.2, 0.2}, {0.9, 0.3}});
        }
    }
    DLINESTYLE(1e-9, 1e-9, 1e-9, 0, 0, 0, 0); // finer than any device: a solid line
    recorded = {};
    polyline({{0.1, 0.1}, {0.9, 0.1}});
    EXPECT_EQ(recorded.lines.size(), 1u);
}

// ---- Wide lines

struct centreline {
    std::vector<vlpoint> points;
    double distance(vlpoint q) const {
        double least = 1e9;
        for (size_t i = 1; i < points.size(); i++)
            least = std::min(least, distanceto(points[i - 1], points[i], q));
        return least;
    }
    // The distance from the pieces that q lies beside, not beyond.
    double beside(vlpoint q) const {
        double least = 1e9;
        for (size_t i = 1; i < points.size(); i++) {
            const vlpoint a = points[i - 1], b = points[i];
            const double along = (q.x - a.x) * (b.x - a.x) + (q.y - a.y) * (b.y - a.y);
            const double square = (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
            if (along > 0 && along < square) least = std::min(least, distanceto(a, b, q));
        }
        return least;
    }
};

// Whatever turns a wide line takes, all that lies within its half width is painted, and nothing far from it.
void checkcover(const centreline& line, double thick, std::mt19937& random) {
    recorded = {};
    DLINESTYLE(0, 0, 0, 0, 0, thick, 0);
    polyline(line.points);
    const double w = std::fabs(thick) / 2;
    std::uniform_real_distribution<double> u(0, 1);
    int missed = 0, strayed = 0;
    for (int i = 0; i < 3000; i++) {
        const vlpoint q{u(random), u(random)};
        const double d = line.distance(q);
        if (line.beside(q) < 0.99 * w && !covered(q)) missed++;
        if (d > vlmitrelimit * w && covered(q)) strayed++;
    }
    EXPECT_EQ(missed, 0) << line.points.size() << " points, thick " << thick;
    EXPECT_EQ(strayed, 0);
}

TEST_F(Generator, wideLinesHaveNoHoles) {
    std::mt19937 random(4);
    std::uniform_real_distribution<double> u(0.1, 0.9), turn(-1, 1);
    for (int trial = 0; trial < 40; trial++) {
        centreline jumps, walk;
        for (int i = 0; i < 8; i++) jumps.points.push_back({u(random), u(random)});
        vlpoint at{0.5, 0.5};
        double heading = 0;
        for (int i = 0; i < 140; i++) {
            walk.points.push_back(at);
            heading += turn(random);
            at = {at.x + 0.008 * std::cos(heading), at.y + 0.008 * std::sin(heading)};
        }
        const double thick = trial % 2 ? 0.03 : -0.03;
        checkcover(jumps, thick, random);
        checkcover(walk, thick, random);
    }
}

// A line is parted only where its outline would cross itself: few polygons, and each crossing closed.
TEST_F(Generator, aWideLineIsWholeWhereItCrossesItself) {
    DLINESTYLE(0, 0, 0, 0, 0, 0.06, 0);
    polyline({{0.1, 0.5}, {0.9, 0.5}, {0.5, 0.9}, {0.5, 0.1}});
    EXPECT_TRUE(covered({0.5, 0.5}));
    EXPECT_TRUE(covered({0.52, 0.48}));
    EXPECT_LE(recorded.polygons.size(), 3u);
    recorded = {};
    polyline({{0.1, 0.5}, {0.9, 0.5}, {0.9, 0.9}, {0.5, 0.9}});
    EXPECT_EQ(recorded.polygons.size(), 1u);
}

TEST_F(Generator, longWideLinesJoinTheirParts) {
    std::mt19937 random(5);
    for (const double thick : {0.004, 0.02, 0.06, -0.02}) {
        centreline spiral;
        for (int i = 0; i <= 400; i++) {
            const double a = 0.04 * i, r = 0.08 + 0.00095 * i;
            spiral.points.push_back({0.5 + r * std::cos(a), 0.5 + r * std::sin(a)});
        }
        checkcover(spiral, thick, random);
        EXPECT_GT(recorded.polygons.size(), 5u);
    }
}

TEST_F(Generator, aClosedLineIsJoinedWhereItBegan) {
    DLINESTYLE(0, 0, 0, 0, 0, 0.1, 0);
    polyline({{0.2, 0.2}, {0.8, 0.2}, {0.8, 0.8}, {0.2, 0.8}, {0.2, 0.2}});
    EXPECT_TRUE(covered({0.155, 0.155})); // the outer corner of the mitre
    EXPECT_TRUE(covered({0.845, 0.155}));
    EXPECT_FALSE(covered({0.145, 0.2}));
    EXPECT_FALSE(covered({0.3, 0.3}));
}

TEST_F(Generator, fillChoosesInsideAndBoundary) {
    const auto draw = [](double fill) {
        recorded = {};
        DLINESTYLE(0, 0, 0, 0, 0, 0.1, fill);
        polyline({{0.2, 0.5}, {0.8, 0.5}});
        return std::pair(recorded.polygons.size(), recorded.lines.size());
    };
    EXPECT_EQ(draw(0), std::pair(size_t(1), size_t(0)));
    EXPECT_EQ(draw(1), std::pair(size_t(1), size_t(4)));
    EXPECT_EQ(draw(-1), std::pair(size_t(0), size_t(4)));
    EXPECT_NEAR(recorded.lines[0].length() + recorded.lines[2].length(), 1.2, 1e-9);
}

TEST_F(Generator, thinnerThanADotIsALine) {
    DLINESTYLE(0, 0, 0, 0, 0, 0.001, 0);
    polyline({{0.2, 0.5}, {0.8, 0.5}});
    EXPECT_EQ(recorded.lines.size(), 1u);
    EXPECT_EQ(recorded.polygons.size(), 0u);
}

// A world window of other proportions does not change widths.
TEST_F(Generator, widthIsNormalInAnyWindow) {
    DWINDOW(0, 1000, 0, 0.001);
    DLINESTYLE(0, 0, 0, 0, 0, 0.02, 0);
    polyline({{200, 0.0001}, {700, 0.0009}});
    ASSERT_EQ(recorded.polygons.size(), 1u);
    EXPECT_NEAR(std::fabs(polygonarea(recorded.polygons[0])), 0.02 * std::hypot(0.5, 0.8), 1e-9);
}

TEST_F(Generator, aStyleEndsWhereAnotherBegins) {
    DLINESTYLE(0, 0, 0, 0, 0, 0.02, 0);
    DMOVE(0.1, 0.1);
    DDRAW(0.4, 0.1);
    EXPECT_EQ(recorded.polygons.size(), 0u);
    DLINESTYLE(0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(recorded.polygons.size(), 1u);
    DMOVE(0.1, 0.2);
    DDRAW(0.4, 0.2);
    EXPECT_EQ(recorded.lines.size(), 1u);
}

// A device that stops the drawing: the line is given up, and the next one is drawn.
TEST_F(Generator, anErrorOfTheDeviceEndsTheLine) {
    vldeviceops failing = *recorderoperations();
    failing.polygon = [](const double*, size_t, const double*) { vlerror("no paper"); };
    DLINESTYLE(0, 0, 0, 0, 0, 0.02, 0);
    DMOVE(0.1, 0.1);
    DDRAW(0.4, 0.1);
    vl.ops = &failing;
    EXPECT_EQ(fault([] { DFLUSH(); }), "no paper");
    vl.ops = recorderoperations();
    polyline({{0.1, 0.5}, {0.4, 0.5}});
    ASSERT_EQ(recorded.polygons.size(), 1u);
    EXPECT_NEAR(recorded.polygons[0][0].y, 0.5, 0.0101);
}

} // namespace
