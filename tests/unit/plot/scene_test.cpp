#include "interp/base/report.h"
#include "plot/scene.h"
#include "unit/plot/epspage.h"

#include <gtest/gtest.h>

namespace {

constexpr double PIXEL = 1.0 / 3133; // of a landscape page, screen-normal
constexpr double NEAR = 1.5 * PIXEL;

class scenepages : public testing::Test {
protected:
    void SetUp() override {
        sceneroomsstart();
        win = plainwindow("W");
    }
    void TearDown() override { symtabdeleteall(); }
    window& w() { return windowof(win); }
    int win = 0;
};

void expectbox(const epsbox& box, double x0, double x1, double y0, double y1, double tolerance = NEAR) {
    EXPECT_NEAR(box.x0, x0, tolerance);
    EXPECT_NEAR(box.x1, x1, tolerance);
    EXPECT_NEAR(box.y0, y0, tolerance);
    EXPECT_NEAR(box.y1, y1, tolerance);
}

std::string failure(const char* plotdev = "PSL") {
    std::string told;
    report.capture = &told;
    report.recoveryset = true;
    try {
        plotpage(plotdev);
        told = "none";
    } catch (const recoveryjump&) {}
    report.capture = nullptr;
    return told;
}

// ---- clipping and boxes

TEST_F(scenepages, TheWorldLimitsStandAtTheEdgesOfTheImage) {
    newcurve(win, "C1", TOKDRAW, {0, 0, 10, 10});
    const epspage page = plotpage("PSL");
    ASSERT_EQ(segments(page), 1u);
    expectbox(inkbox(page), 0.2, 0.8, 0.15, 0.6);
}

TEST_F(scenepages, ACurveIsCutAtTheImageOrAtTheFrame) {
    const int c = newcurve(win, "C1", TOKDRAW, {-100, 5, 100, 5});
    expectbox(inkbox(plotpage("PSL")), 0.2, 0.8, 0.375, 0.375);
    curveof(c).wclipsw = 0;
    expectbox(inkbox(plotpage("PSL")), 0, 1, 0.375, 0.375);
    w().fxmin = 0.1, w().fxmax = 0.9;
    expectbox(inkbox(plotpage("PSL")), 0.1, 0.9, 0.375, 0.375);
}

TEST_F(scenepages, AnAxisKeepsItsPlaceWhenTheWindowChanges) {
    newcurve(win, "A1", TOKXAXIS, {0, -1, 10, -1});
    expectbox(inkbox(plotpage("PSL")), 0.2, 0.8, 0.105, 0.105);
    w().wxmin = 100, w().wxmax = 200, w().wymin = -5, w().wymax = 5;
    expectbox(inkbox(plotpage("PSL")), 0.2, 0.8, 0.105, 0.105);
}

TEST_F(scenepages, BoxesGoAroundImageAndFrame) {
    w().imagebox = 1;
    expectbox(inkbox(plotpage("PSL")), 0.2, 0.8, 0.15, 0.6);
    w().framebox = 1;
    const epspage page = plotpage("PSL");
    EXPECT_EQ(segments(page), 8u);
    expectbox(inkbox(page), 0, 1, 0, 0.75);
}

TEST_F(scenepages, WhatIsBlankedIsNotDrawn) {
    const int c = newcurve(win, "C1", TOKDRAW, {0, 0, 10, 10});
    const int t = newtitle(win, "T1", "text");
    curveof(c).blanked = titleof(t).blanked = 1;
    EXPECT_TRUE(plotpage("PSL").marks.empty());
    curveof(c).blanked = 0;
    w().blanked = 1;
    EXPECT_TRUE(plotpage("PSL").marks.empty());
}

TEST_F(scenepages, PointsWithoutAPlaceAreGaps) {
    newcurve(win, "C1", TOKDRAW, {0, 0, 1, 0, 2, NAN, 3, 0, 4, 0, 5, MAXPOS, 6, 0, 7, 0, HUGE_VAL, 0});
    const epspage page = plotpage("PSL");
    EXPECT_EQ(segments(page), 3u);
    EXPECT_NEAR(inklength(page), 3 * 0.06, 3 * NEAR);
}

// ---- lines

struct linecase {
    int type;
    double inked;           // part of the length that is drawn
    size_t atleast, atmost; // segments
};
class linetypes : public scenepages, public testing::WithParamInterface<linecase> {};

// A level line of 0.6; lengths of dashes are fractions of the frame's width, which is 1.
TEST_P(linetypes, DrawsTheRightPartOfALine) {
    const linecase& row = GetParam();
    curveof(newcurve(win, "C1", TOKDRAW, {0, 5, 10, 5})).linetype = int16_t(row.type);
    const epspage page = plotpage("PSL");
    EXPECT_NEAR(inklength(page), row.inked * 0.6, 0.02);
    EXPECT_GE(segments(page), row.atleast);
    EXPECT_LE(segments(page), row.atmost);
}
INSTANTIATE_TEST_SUITE_P(types, linetypes,
                         testing::Values(linecase{0, 0, 0, 0}, linecase{1, 1, 1, 1}, linecase{2, 0.5, 29, 31},
                                         linecase{3, 0.75, 14, 16}, linecase{4, 2.0 / 3, 19, 21}));

TEST_F(scenepages, UnjoinedLinesTakeRowsByPairs) {
    const int c = newcurve(win, "C1", TOKDRAW, {0, 0, 1, 0, 5, 5, 6, 5, 9, 9});
    curveof(c).linetype = 5;
    const epspage page = plotpage("PSL");
    EXPECT_EQ(segments(page), 2u);
    EXPECT_NEAR(inklength(page), 2 * 0.06, 2 * NEAR);
}

TEST_F(scenepages, DelimiterRowsPartTheirPolylines) {
    // The last stretch is empty: the mark stands at the end again.
    const int c = newcurve(win, "C1", TOKDRAW, {MAXPOS, 1, 0, 0, 1, 0, MAXPOS, 0.4, 0, 5, 10, 5, MAXPOS, 1});
    for (const int type : {6, 11}) {
        curveof(c).linetype = int16_t(type);
        EXPECT_NEAR(inklength(plotpage("PSL")), 0.06 + 0.6, 0.01) << type;
    }
    // Control 0.4: dashes of 0.0401 with gaps of 0.01.
    for (const int type : {7, 12}) {
        curveof(c).linetype = int16_t(type);
        EXPECT_NEAR(inklength(plotpage("PSL")), 0.06 + 0.6 * 0.8, 0.02) << type;
    }
    curveof(c).linetype = 10;
    EXPECT_NEAR(inklength(plotpage("PSL")), 0.33, 0.03);
}

TEST_F(scenepages, ASmoothedLineGoesThroughItsPoints) {
    const int c = newcurve(win, "C1", TOKDRAW, {MAXPOS, 1, 0, 0, 5, 8, 10, 0});
    curveof(c).linetype = 11;
    const epspage page = plotpage("PSL");
    EXPECT_GT(segments(page), 20u);
    const epsbox box = inkbox(page);
    EXPECT_NEAR(box.y1, 0.15 + 0.45 * 0.8, 0.01);
    EXPECT_NEAR(box.x0, 0.2, NEAR);
    EXPECT_NEAR(box.x1, 0.8, NEAR);
}

TEST_F(scenepages, AWideLineIsFilled) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {2, 5, 8, 5}));
    c.linetype = CUSTOMLINE;
    c.thick = 0.02;
    const epspage page = plotpage("PSL");
    ASSERT_FALSE(page.marks.empty());
    EXPECT_TRUE(page.marks[0].filled);
    expectbox(inkbox(page), 0.32, 0.68, 0.365, 0.385);
    c.thick = -0.02; // the plain line
    expectbox(inkbox(plotpage("PSL")), 0.32, 0.68, 0.375, 0.375);
}

TEST_F(scenepages, FaultsOfLinesAreTold) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {0, 0, 10, 10}));
    c.linetype = 13;
    EXPECT_NE(failure().find("##Error: invalid linetype"), std::string::npos);
    c.linetype = 1;
    c.pointtype = 32;
    EXPECT_NE(failure().find("##Error: invalid pointtype"), std::string::npos);
    c.pointtype = -2;
    EXPECT_NE(failure().find("##Error: invalid pointtype"), std::string::npos);
    c.pointtype = 0;
    symbol& flatness = sym(symtabenter("FLATNESS"));
    flatness.type = SCALAR;
    flatness.val.rval = -1;
    EXPECT_EQ(failure(), "none");
    c.linetype = 11;
    EXPECT_NE(failure().find("##Error: FLATNESS must be non-negative."), std::string::npos);
    FILE* left = fopen(plotfilepath().c_str(), "r"); // no half of a picture stays behind
    EXPECT_EQ(left, nullptr);
}

// ---- points

struct pointcase {
    int type;
    double x0, x1, y0, y1; // of the mark, in halves of the size
    size_t lines;          // 0: filled
};
class pointtypes : public scenepages, public testing::WithParamInterface<pointcase> {};

TEST_P(pointtypes, HasItsShape) {
    const pointcase& row = GetParam();
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {5, 5}));
    c.pointtype = int16_t(row.type);
    c.ptsize = 0.04;
    const double half = 0.02;
    const epspage page = plotpage("PSL");
    expectbox(inkbox(page), 0.5 + row.x0 * half, 0.5 + row.x1 * half, 0.375 + row.y0 * half,
              0.375 + row.y1 * half);
    ASSERT_EQ(page.marks.size(), 1u);
    EXPECT_EQ(page.marks[0].filled, row.lines == 0);
    if (row.lines != 0) { EXPECT_EQ(segments(page), row.lines); }
}
const double S3 = std::sqrt(3.0) / 2, C18 = std::cos(M_PI / 10), C36 = std::cos(M_PI / 5),
             C22 = std::cos(M_PI / 8);
INSTANTIATE_TEST_SUITE_P(
    types, pointtypes,
    testing::Values(pointcase{1, 0, 0, -1, 1, 1}, pointcase{2, -1, 1, -1, 1, 2},
                    pointcase{3, -S3, S3, -0.5, 1, 3}, pointcase{4, -1, 1, -1, 1, 4},
                    pointcase{5, -C18, C18, -C36, 1, 10}, pointcase{6, -1, 1, 0, 0, 1},
                    pointcase{7, -C22, C22, -C22, C22, 8}, pointcase{8, -1, 1, -1, 1, 2},
                    pointcase{9, -1, 0, 0, 0, 1}, pointcase{10, 0, 1, 0, 0, 1}, pointcase{11, 0, 0, 0, 1, 1},
                    pointcase{12, 0, 0, -1, 0, 1}, pointcase{14, -1, 1, -0.125, 0.125, 4},
                    pointcase{15, 0, 0, 0, 0, 1}, pointcase{16, -1, 1, -1, 1, 4},
                    pointcase{21, 0, 0, 0, 1, 1}, pointcase{22, 0, 1, 0, 0, 1}, pointcase{23, 0, 15, 0, 0, 1},
                    pointcase{24, -15, 0, 0, 0, 1}, pointcase{25, 0, 0, 0, 11.25, 1},
                    pointcase{26, 0, 0, -11.25, 0, 1}, pointcase{-3, -S3, S3, -0.5, 1, 0},
                    pointcase{-4, -1, 1, -1, 1, 0}, pointcase{-5, -C18, C18, -C36, 1, 0},
                    pointcase{-7, -C22, C22, -C22, C22, 0}, pointcase{-16, -1, 1, -1, 1, 0}));

TEST_F(scenepages, ACircleIsRound) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {5, 5}));
    c.pointtype = 13;
    c.ptsize = 0.04;
    const epspage page = plotpage("PSL");
    for (const epspoint& p : page.marks.at(0).pieces.at(0))
        EXPECT_NEAR(std::hypot(p.x - 0.5, p.y - 0.375), 0.02, NEAR);
    EXPECT_NEAR(inklength(page), 2 * M_PI * 0.02, 0.001);
    c.pointtype = -13;
    EXPECT_TRUE(plotpage("PSL").marks.at(0).filled);
}

TEST_F(scenepages, ErrorBarsReachAsFarAsTheWorldSays) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {5, 5}));
    c.ptsize = SIZEBYPOINT;
    c.ptsizes = matrixwith(1, 3, {1, 2, 0.02});
    c.pointtype = 18; // 1 up, 2 down: the image is 0.45 high for 10
    expectbox(inkbox(plotpage("PSL")), 0.49, 0.51, 0.375 - 0.09, 0.375 + 0.045);
    c.pointtype = 17; // 1 right, 2 left
    expectbox(inkbox(plotpage("PSL")), 0.5 - 0.12, 0.5 + 0.06, 0.365, 0.385);
    c.ptsizes = matrixwith(1, 1, {1});
    expectbox(inkbox(plotpage("PSL")), 0.44, 0.56, 0.375, 0.375);
}

TEST_F(scenepages, ADecadeHasItsTicksAtTheLogarithms) {
    curve& c = curveof(newcurve(win, "C1", TOKXAXIS, {0, 0, 5, 0, 10, 0}));
    c.linetype = 0;
    c.pointtype = 19;
    const epspage page = plotpage("PSL");
    std::vector<double> ticks;
    for (const epsmark& mark : page.marks)
        for (const auto& piece : mark.pieces) ticks.push_back(piece[0].x);
    ASSERT_EQ(ticks.size(), 19u);
    for (int decade = 0; decade < 2; decade++)
        for (int k = 1; k <= 9; k++)
            EXPECT_NEAR(ticks[size_t(9 * decade + k - 1)], 0.2 + 0.3 * (decade + std::log10(k)), NEAR);
    c.data = matrixwith(1, 2, {5, 5});
    EXPECT_TRUE(plotpage("PSL").marks.empty());
}

TEST_F(scenepages, NormalTicksStandAcrossTheCurve) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {0, 0, 10, 10}));
    c.linetype = 0;
    c.pointtype = 21;
    c.ptsize = 0.04;
    const epspage page = plotpage("PSL");
    const double length = std::hypot(0.6, 0.45); // the curve as it is seen; the tick on its left, 0.02 long
    const auto& tick = page.marks.at(0).pieces.at(0);
    EXPECT_NEAR(tick[1].x - tick[0].x, std::max(-0.02 * 0.45 / length, 0.2 - tick[0].x), NEAR);
    EXPECT_NEAR(std::fabs(tick[1].y - tick[0].y), 0.02 * 0.6 / length, 0.02);
}

TEST_F(scenepages, SizesGoByRowAndBeginAgain) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {2, 2, 5, 5, 8, 8}));
    c.linetype = 0;
    c.pointtype = 4;
    c.ptsize = SIZEBYPOINT;
    c.ptsizes = matrixwith(2, 1, {0.02, 0.04});
    const epspage page = plotpage("PSL");
    std::vector<double> widths;
    for (const epsmark& mark : page.marks)
        for (size_t k = 0; k < mark.pieces.size(); k++) {
            epsmark one;
            one.pieces = {mark.pieces[k]};
            widths.push_back(inkbox(one).width());
        }
    ASSERT_EQ(widths.size(), 3u);
    EXPECT_NEAR(widths[0], 0.02, NEAR);
    EXPECT_NEAR(widths[1], 0.04, NEAR);
    EXPECT_NEAR(widths[2], 0.02, NEAR);
}

TEST_F(scenepages, ACharacterStandsWithItsMiddleOnThePoint) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {5, 5}));
    c.pointtype = 1000 + 'H';
    c.ptsize = 0.05;
    const epsbox box = inkbox(plotpage("PSL"));
    EXPECT_NEAR(box.midx(), 0.5, 0.004);
    EXPECT_NEAR(box.midy(), 0.375, 0.008);
    EXPECT_GT(box.height(), 0.03);
}

// ---- titles

TEST_F(scenepages, TitlesArePlacedByTheirAnchor) {
    const int t = newtitle(win, "T1", "HHHH");
    title& title = titleof(t);
    title.size = 0.04;
    title.y = 0.5; // of the frame of 0.75
    const epsbox left = inkbox(plotpage("PSL"));
    EXPECT_NEAR(left.x0, 0.5, 0.01);
    EXPECT_NEAR(left.y0, 0.375, 0.003);
    title.hplace = 0;
    EXPECT_NEAR(inkbox(plotpage("PSL")).midx(), 0.5, 0.005);
    title.hplace = 1;
    EXPECT_NEAR(inkbox(plotpage("PSL")).x1, 0.5, 0.01);
    title.vplace = 1;
    EXPECT_LT(inkbox(plotpage("PSL")).y1, 0.38);
}

TEST_F(scenepages, AnAngleTurnsATitleAboutItsAnchor) {
    title& t = titleof(newtitle(win, "T1", "HHHH"));
    t.size = 0.04;
    const epsbox level = inkbox(plotpage("PSL"));
    t.angle = 90;
    const epsbox up = inkbox(plotpage("PSL"));
    EXPECT_NEAR(up.width(), level.height(), NEAR);
    EXPECT_NEAR(up.height(), level.width(), NEAR);
    EXPECT_NEAR(up.y0 - 0.375, level.x0 - 0.5, NEAR);
    EXPECT_NEAR(0.5 - up.x0, level.y1 - 0.375, NEAR);
}

TEST_F(scenepages, ShiftDividesTheRoomThatIsLeft) {
    title& t = titleof(newtitle(win, "T1", "HHHH"));
    t.x = 0;
    t.shift = 0.5;
    EXPECT_NEAR(inkbox(plotpage("PSL")).midx(), 0.5, 0.005);
    t.shift = 1;
    EXPECT_NEAR(inkbox(plotpage("PSL")).x1, 1, 0.01);
    t.x = 1;
    t.shift = -0.5; // along the line the other way
    EXPECT_NEAR(inkbox(plotpage("PSL")).midx(), 0.5, 0.005);
}

TEST_F(scenepages, ATitleOutsideTheFrameIsLeftOut) {
    for (const double edge : {0.1, 0.3, 0.7}) { // its edges belong to the frame
        w().fxmin = edge - 0.1 / 3, w().fxmax = edge + 0.1, w().fymin = edge / 3, w().fymax = edge;
        title& corner = titleof(newtitle(win, "CORNER", "HHHH"));
        corner.x = corner.y = 1;
        corner.hplace = corner.vplace = 1;
        EXPECT_FALSE(plotpage("PSL").marks.empty()) << edge;
        symtabdelete(symtablookup("CORNER"));
    }
    title& t = titleof(newtitle(win, "T1", "HHHH"));
    t.x = 1.5;
    EXPECT_TRUE(plotpage("PSL").marks.empty());
}

// Each text beside a plain one that must look the same, or the way in which they differ.
struct escapecase {
    const char* text;
    const char* plain;
    double x0, x1, y0, y1; // how much the box differs, in sizes
};
class escapes : public scenepages, public testing::WithParamInterface<escapecase> {};
TEST_P(escapes, ChangeTheText) {
    const escapecase& row = GetParam();
    title& t = titleof(newtitle(win, "T1", row.plain));
    t.size = 0.04;
    const epsbox plain = inkbox(plotpage("PSL"));
    t.text = row.text;
    const epsbox box = inkbox(plotpage("PSL"));
    const double s = 0.04;
    expectbox(box, plain.x0 + row.x0 * s, plain.x1 + row.x1 * s, plain.y0 + row.y0 * s, plain.y1 + row.y1 * s,
              2.5 * PIXEL);
}
INSTANTIATE_TEST_SUITE_P(
    table, escapes,
    testing::Values(escapecase{"H'", "H''", 0, 0, 0, 0}, // at the end it stands for itself, too
                    escapecase{"H'EH", "HH", 0, 0, 0, 0}, escapecase{"'1UH", "H", 0, 0, 1, 1},
                    escapecase{"'.5DH", "H", 0, 0, -0.5, -0.5}, escapecase{"'1U'2DH", "H", 0, 0, -1, -1},
                    escapecase{"'1UH'RH", "HH", 0, 0, 0, 1}, escapecase{"HH'2B", "HH", 0, 0, 0, 0},
                    escapecase{"HH'2BHH", "HH", 0, 0, 0, 0}, escapecase{"HH'1B'1FH", "HHH", 0, 0, 0, 0},
                    escapecase{"H'MH", "H", 0, 0, -1.666667, 0},
                    escapecase{"H'CM'CJH", "H", 0, 0, -1.666667, 0}, escapecase{"'3IH", "H", 0, 0, 0, 0},
                    // a letter of two bytes is one letter
                    escapecase{"H\xC3\xA4'1B\xC3\xA4", "H\xC3\xA4", 0, 0, 0, 0},
                    escapecase{"'3I\xC3\xA4H", "\xC3\xA4H", 0, 0, 0, 0},
                    escapecase{"'90A'0AH", "H", 0, 0, 0, 0}, escapecase{"'Y'YH", "H", 0, 0, 0, 0},
                    escapecase{"'Z'ZH", "H", 0, 0, 0, 0}, escapecase{"'QH", "H", 0, 0, 0, 0},
                    escapecase{"'-1DH", "H", 0, 0, 1, 1}));

TEST_F(scenepages, EscapesScaleTheText) {
    title& t = titleof(newtitle(win, "T1", "H"));
    t.size = 0.04;
    const epsbox plain = inkbox(plotpage("PSL"));
    const auto boxof = [&](const char* text) {
        t.text = text;
        return inkbox(plotpage("PSL"));
    };
    EXPECT_NEAR(boxof("'2SH").height(), 2 * plain.height(), 2 * NEAR);
    EXPECT_NEAR(boxof("'2SH").width(), 2 * plain.width(), 2 * NEAR);
    EXPECT_NEAR(boxof("'2HH").height(), 2 * plain.height(), 2 * NEAR);
    EXPECT_NEAR(boxof("'2HH").width(), plain.width(), NEAR);
    EXPECT_NEAR(boxof("'2WH").width(), 2 * plain.width(), 2 * NEAR);
    EXPECT_NEAR(boxof("'2WH").height(), plain.height(), NEAR);
    EXPECT_NEAR(boxof("'90AH").width(), plain.height(), NEAR);
    // X: the cell of the M holds each of the letters behind it.
    t.text = "MM";
    const double step = inkbox(plotpage("PSL")).x1;
    t.text = "M'XiM";
    EXPECT_GT(inkbox(plotpage("PSL")).x1, step);
    EXPECT_TRUE(plotpage("PSL").text.find("nan") == std::string::npos);
}

TEST_F(scenepages, BarsAndUnderlinesGoAlongWithTheirLetters) {
    title& t = titleof(newtitle(win, "T1", "HH"));
    t.size = 0.04;
    const epsbox plain = inkbox(plotpage("PSL"));
    const size_t lines = segments(plotpage("PSL"));
    t.text = "'ZHH";
    EXPECT_EQ(segments(plotpage("PSL")), lines + 2);
    EXPECT_NEAR(inkbox(plotpage("PSL")).y0, plain.y0 - 0.2 * 0.04, NEAR);
    t.text = "'YHH'Y";
    EXPECT_EQ(segments(plotpage("PSL")), lines + 2);
    EXPECT_NEAR(inkbox(plotpage("PSL")).height(), 0.04, 0.01);
}

TEST_F(scenepages, OddEscapesDoNoHarm) {
    title& t = titleof(newtitle(win, "T1", ""));
    for (const char* text : {"'", "''", "'1e9", "'1e308U'1e308UH", "'-1SH", "'0SH", "'1e9IH", "'-5IH",
                             "'1e9B", "'C", "'--A", "'.", "'1e30WH", "'-1e9OH", "'1e9F'1e9FH"}) {
        t.text = text;
        EXPECT_NO_THROW(plotpage("PSL")) << text;
    }
}

// ---- labels

TEST_F(scenepages, LabelsTellThePresentWindow) {
    curve& c = curveof(newcurve(win, "A1", TOKXAXIS, {0, 0, 10, 0}));
    c.linetype = 0;
    c.labels = matrixwith(2, 1, {0, 10});
    c.hplace = 0;
    c.vplace = 1;
    const epsbox digits = inkbox(plotpage("PSL"));
    EXPECT_LT(digits.y1, 0.155);
    EXPECT_NEAR(digits.midx(), 0.5, 0.01);
    w().wxmin = 100, w().wxmax = 110; // "100" is wider than "0"
    EXPECT_LT(inkbox(plotpage("PSL")).x0, digits.x0);
    c.labels = matrixwith(3, 2, {7, 2, 8, 9, 9, 0}); // rows 9 and 0 of the data are not there
    EXPECT_GT(inkbox(plotpage("PSL")).x0, 0.7);
}

// The strokes of all labels together, and of each by itself: what a label shows does not hang on the others.
TEST_F(scenepages, LabelsOfManyDecadesAreNotTakenForRounding) {
    curve& c = curveof(newcurve(win, "A1", TOKAXIS, {0, 0, 5, 0, 10, 0}));
    c.linetype = 0;
    const auto strokes = [&](std::initializer_list<double> labels) {
        c.labels = matrixwith(uint32_t(labels.size()), 1, labels);
        return plotpage("PSL").marks.size();
    };
    const size_t each = strokes({1e-150}) + strokes({1}) + strokes({1e150});
    EXPECT_EQ(strokes({1e-150, 1, 1e150}), each);
    EXPECT_EQ(strokes({1e150, 1, 1e-150}), each);
    EXPECT_EQ(strokes({-1, 1e-17, 1}), strokes({-1, 0, 1})) << "a residue of rounding is 0";
}

// A number whose first digits are cut off is another number.
TEST_F(scenepages, ChosenLabelsStayInTheFrame) {
    w().fxmin = 0.15;
    w().wymin = 123456789000, w().wymax = 123456789010;
    std::fill(w().adjust, w().adjust + 4, int8_t(0));
    curve& c = curveof(newcurve(win, "W.YAXIS", TOKYAXIS, {0, 123456789000}));
    c.linetype = 0;
    c.hplace = 1;
    c.wclipsw = OWNMARKS;
    c.labels = matrixwith(1, 1, {0});
    adjustwindow(win);
    const epsbox held = inkbox(plotpage("PSL"));
    EXPECT_GE(held.x0, 0.15 - NEAR);
    EXPECT_GT(held.width(), 0.13) << "twelve digits";
    c.wclipsw = 0; // labels of the user's own stand where they are put
    EXPECT_LT(inkbox(plotpage("PSL")).width(), 0.06);
}

// ---- pages

TEST_F(scenepages, PagesDifferByTheTurnAlone) {
    newcurve(win, "C1", TOKDRAW, {0, 0, 10, 10});
    const epsbox wide = inkbox(plotpage("PSL")), tall = inkbox(plotpage("PSP"));
    const double scale = 7.944444 / 10.444444; // the width of the tall page, which the picture fills
    expectbox(tall, wide.x0 * scale, wide.x1 * scale, wide.y0 * scale, wide.y1 * scale);
}

TEST_F(scenepages, SizesOnATallPageKeepTheirProportion) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {5, 5}));
    c.pointtype = 4;
    title& t = titleof(newtitle(win, "T1", "H"));
    t.size = 0.05;
    const double scale = 7.944444 / 10.444444;
    const epsbox wide = inkbox(plotpage("PSL")), tall = inkbox(plotpage("PSP"));
    expectbox(tall, wide.x0 * scale, wide.x1 * scale, wide.y0 * scale, wide.y1 * scale, 3 * PIXEL);
}

TEST_F(scenepages, ColoursFoldOnPlainPagesOnly) {
    curve& c = curveof(newcurve(win, "C1", TOKDRAW, {0, 0, 10, 10}));
    struct {
        const char* device;
        int color;
        double r, g, b;
    } rows[] = {{"PSL", 2, 0, 0, 0},  {"PSCL", 2, 1, 0, 0},  {"PSCL", 4, 0, 0, 1},  {"PSCL", 1, 0, 0, 0},
                {"PSCL", 0, 0, 0, 0}, {"PSCPX", 1, 0, 0, 0}, {"PSCPX", 3, 0, 1, 0}, {"PSP", 0, 0, 0, 0}};
    for (const auto& row : rows) {
        c.linecolor = int16_t(row.color);
        const epspage page = plotpage(row.device);
        ASSERT_EQ(page.marks.size(), 1u) << row.device << row.color;
        EXPECT_NEAR(page.marks[0].r, row.r, 0.01) << row.device << row.color;
        EXPECT_NEAR(page.marks[0].g, row.g, 0.01) << row.device << row.color;
        EXPECT_NEAR(page.marks[0].b, row.b, 0.01) << row.device << row.color;
        EXPECT_EQ(c.linecolor, row.color); // the objects keep their colours
    }
}

TEST_F(scenepages, WindowsAreDrawnInTheOrderOfTheirPriorities) {
    newcurve(win, "C1", TOKDRAW, {0, 1, 10, 1});
    const int other = plainwindow("V");
    newcurve(other, "C2", TOKDRAW, {0, 9, 10, 9});
    curveof(symtablookup("C2")).linecolor = 2;
    const auto first = [] { return plotpage("PSCL").marks.at(0).r; };
    const bool symbolorder = win < other;
    EXPECT_EQ(first() > 0.5, !symbolorder);
    w().priority = symbolorder ? 1 : -1;
    EXPECT_EQ(first() > 0.5, symbolorder);
    EXPECT_EQ(plotpage("PSCL", win).marks.size(), 1u);
}

TEST_F(scenepages, ATallOrSquareScreenFitsOnAWidePage) {
    screenresize(8, 8);
    w().fymax = 1;
    w().framebox = 1;
    const double height = 7.944444 / 10.444444;
    expectbox(inkbox(plotpage("PSL")), 0, height, 0, height);
}

} // namespace
