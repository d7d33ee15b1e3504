// Rings, units and the limits that follow the data, without a statement around them.
#include "funcs/builtin.h"
#include "interp/base/hooks.h"
#include "interp/base/numtext.h"
#include "interp/base/report.h"
#include "plot/adjust.h"
#include "plot/plotobj.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

class PlotObjects : public testing::Test {
protected:
    void SetUp() override {
        hooksreset();
        report = {};
        report.recoveryset = true;
        console.write = [](const char* text, size_t n) { output.append(text, n); };
        output.clear();
        symtabstart();
        valuesstart();
        funcsstart();
        plotobjstart();
        parserreset();
        clausereset();
    }
    void TearDown() override {
        symtabstart(); // lets go of all records
        hooksreset();
    }

    static std::string errorof(const std::function<void()>& run) {
        output.clear();
        try {
            run();
        } catch (const recoveryjump&) {}
        return output;
    }

    static int makewindow(const char* name, window w = defaultwindow()) {
        const int idx = symtabenter(name);
        windowenter(idx, w);
        return idx;
    }

    static int makecurve(const char* name, int win, std::vector<double> points, int kind = TOKDRAW) {
        curve c;
        c.kind = int16_t(kind);
        c.data.reset(harraynew(uint32_t(points.size() / 2), 2));
        std::copy(points.begin(), points.end(), cells(c.data.get()) + 1);
        const int idx = symtabenter(name);
        curveenter(idx, std::move(c));
        joinring(idx, win);
        return idx;
    }

    static std::string ring(int win) {
        std::string names;
        for (int k = ringnext(win); k; k = ringnext(k)) names += std::string(sym(k).name) + " ";
        return names;
    }

    static inline std::string output;
};

// ---- rings ----

TEST_F(PlotObjects, NewestMemberStandsBehindTheWindow) {
    const int w = makewindow("W");
    EXPECT_EQ(sym(w).index, w);
    EXPECT_EQ(ringnext(w), 0);
    for (const char* name : {"C1", "C2", "C3"}) makecurve(name, w, {0, 0});
    EXPECT_EQ(ring(w), "C3 C2 C1 ");
    for (const char* name : {"C1", "C2", "C3"}) EXPECT_EQ(getwindow(symtabenter(name)), w);
    EXPECT_EQ(sym(symtabenter("C1")).index, w);
}

TEST_F(PlotObjects, LeavingTheRingFromAnyPlace) {
    for (const char* gone : {"C1", "C2", "C3"}) {
        SetUp();
        const int w = makewindow("W");
        for (const char* name : {"C1", "C2", "C3"}) makecurve(name, w, {0, 0});
        const int idx = symtabenter(gone);
        leavering(idx);
        EXPECT_EQ(sym(idx).index, idx);
        EXPECT_EQ(windowofmember(idx), 0);
        std::string rest = "C3 C2 C1 ";
        EXPECT_EQ(ring(w), rest.erase(rest.find(gone), 3)) << gone;
    }
}

TEST_F(PlotObjects, DeletingMembersAndTheWindow) {
    const int w = makewindow("W"), c1 = makecurve("C1", w, {0, 0, 50, 50});
    makecurve("C2", w, {0, 0, 900, 900});
    titleenter(symtabenter("T1"), title());
    joinring(symtabenter("T1"), w);
    adjustwindow(w);
    EXPECT_EQ(windowof(w).wxmax, 900);
    symtabdelete(symtablookup("C2")); // the limits shrink to what is left
    EXPECT_EQ(windowof(w).wxmax, 50);
    EXPECT_EQ(symtablookup("C2"), -1);
    EXPECT_EQ(ring(w), "T1 C1 ");
    symtabdelete(c1); // without data the limits stay
    EXPECT_EQ(windowof(w).wxmax, 50);
    symtabdelete(w);
    for (const char* name : {"W", "C1", "T1"}) EXPECT_EQ(symtablookup(name), -1) << name;
}

TEST_F(PlotObjects, WindowOfTheStatement) {
    EXPECT_STREQ(sym(getwindow(0)).name, "W");
    EXPECT_EQ(clause.insym, symtablookup("W"));
    clausereset();
    clause.insym = int16_t(symtabenter("W2"));
    EXPECT_STREQ(sym(getwindow(0)).name, "W2");
    EXPECT_EQ(windowof(clause.insym).wxmax, 10);
    const int x = symtabenter("X");
    sym(x).type = SCALAR;
    clause.insym = int16_t(x);
    EXPECT_EQ(errorof([] { getwindow(0); }), "##Error: X is not a window\n");
}

TEST_F(PlotObjects, StandardWindowIsReadWhereThereIsNone) {
    static int asked;
    asked = 0;
    upper.usequietly = [](const char* file) {
        EXPECT_STREQ(file, "DW.SAV");
        window w = defaultwindow();
        w.wxmax = 77;
        if (asked++ < 2) windowenter(symtabenter("W"), w);
    };
    EXPECT_EQ(windowof(getwindow(0)).wxmax, 77);
    EXPECT_EQ(windowof(getwindow(0)).wxmax, 77);
    EXPECT_EQ(asked, 1);
    symtabdelete(symtablookup("W"));
    clausereset();
    clause.insym = int16_t(symtabenter("W")); // by IN
    EXPECT_EQ(windowof(getwindow(0)).wxmax, 77);
    symtabdelete(symtablookup("W"));
    clausereset();
    EXPECT_EQ(windowof(getwindow(0)).wxmax, 10); // the file has none
    EXPECT_EQ(asked, 3);
}

// ---- units ----

TEST_F(PlotObjects, UnitsToNormal) {
    screenresize(8, 10); // upright: the height is 1
    window w;
    w.wxmin = -1, w.wxmax = 3, w.wymin = 100, w.wymax = 200;
    w.fxmin = 0.2, w.fxmax = 0.6, w.fymin = 0.1, w.fymax = 0.9;
    w.ixmin = 0.3, w.ixmax = 0.5, w.iymin = 0.2, w.iymax = 0.8;
    EXPECT_DOUBLE_EQ(screen.aspectx, 0.8);
    EXPECT_DOUBLE_EQ(screen.aspecty, 1);
    const struct {
        int units;
        double x, y, normalx, normaly; // by hand from the meaning of each unit
    } rows[] = {{TOKFRACT, 0.5, 0.5, 0.4, 0.5},   {TOKINCHES, 2, 5, 0.2, 0.5},
                {TOKFFRACT, 0.5, 0.25, 0.4, 0.3}, {TOKFINCHES, 1, 2, 0.3, 0.3},
                {TOKWORLD, 0, 150, 0.35, 0.5},    {TOKIFRACT, 1, 0.5, 0.5, 0.5},
                {TOKWORLD, -5, 400, 0.1, 2.0}};
    for (const auto& row : rows) {
        double x1 = row.x, x2 = row.x, y1 = row.y, y2 = row.y;
        convertunits(x1, x2, y1, y2, w, row.units, UNITSNORMAL);
        EXPECT_NEAR(x1, row.normalx, 1e-15) << row.units;
        EXPECT_NEAR(y2, row.normaly, 1e-15) << row.units;
        convertunits(x1, x2, y1, y2, w, UNITSNORMAL, row.units);
        EXPECT_NEAR(x2, row.x, 1e-13) << row.units;
        EXPECT_NEAR(y1, row.y, 1e-12) << row.units;
    }
    double v = 0;
    for (const auto& [in, out] :
         {std::pair(0, 0), std::pair<int, int>(TOKFRACT, TOKINCHES), std::pair(0, 17)})
        EXPECT_EQ(errorof([&, i = in, o = out] { convertunits(v, v, v, v, w, i, o); }),
                  "##Error: bad inunits/outunits pairing\n");
}

TEST_F(PlotObjects, LengthsToNormal) {
    screenresize(10, 7.5);
    window w;
    w.wxmin = 0, w.wxmax = 4, w.wymin = 0, w.wymax = 10;
    w.fxmin = 0.2, w.fxmax = 0.6;
    w.ixmin = 0.3, w.ixmax = 0.5, w.iymin = 0.2, w.iymax = 0.7;
    const struct {
        int units;
        double normal; // of the length 2
    } rows[] = {{TOKFRACT, 2},   {TOKINCHES, 0.2}, {TOKFFRACT, 0.8},       {TOKFINCHES, 2},
                {TOKWORLD, 0.1}, {TOKIFRACT, 0.4}, {UNITSWORLDHEIGHT, 0.1}};
    for (const auto& row : rows) EXPECT_NEAR(sizetonormal(2, row.units, w), row.normal, 1e-15) << row.units;
}

TEST_F(PlotObjects, AxesStretchWithTheirWindow) {
    window w = defaultwindow();
    curve axis;
    axis.kind = TOKXAXIS;
    double x = 5, y = 0;
    axistonormal(x, y, w, axis);
    const double normalx = x, normaly = y;
    w.wxmin = 100, w.wxmax = 1100, w.wymin = -7, w.wymax = 3; // the same place, other numbers
    x = 5, y = 0;
    axistonormal(x, y, w, axis);
    EXPECT_NEAR(x, normalx, 1e-15);
    EXPECT_NEAR(y, normaly, 1e-15);
    axis.kind = TOKDRAW; // a curve stays at its numbers
    x = 600, y = -2;
    axistonormal(x, y, w, axis);
    EXPECT_NEAR(x, 0.5, 1e-15);
    EXPECT_NEAR(y, screen.aspecty / 2, 1e-15);
}

// ---- round numbers ----

TEST_F(PlotObjects, NiceNumbers) {
    const struct {
        double a, b, nice;
    } rows[] = {{970000, 1067000, 1000000}, // more digits in b
                {628319, 691150, 650000},   // a five where one fits
                {123, 123, 123},
                {120, 129, 120}, // a zero that cuts nothing stays
                {121, 129, 125},
                {121, 124, 121},
                {1234, 1900, 1500},
                {1710, 1900, 1800},
                {1001, 1999, 1500},
                {15, 50, 50},
                {0.4, 7, 0},
                {1e-20, 5, 1e-20},
                {1e20, 1e21, 1e20},
                {5, 1e20, 5}};
    for (const auto& row : rows) EXPECT_EQ(nicenumber(row.a, row.b), row.nice) << row.a << " " << row.b;
}

TEST_F(PlotObjects, NiceNumbersLieBetween) {
    std::mt19937 random(5);
    for (int n = 0; n < 20000; n++) {
        const double a = double(random() % 1000000), b = a + double(random() % 1000000);
        const double nice = nicenumber(a, b);
        EXPECT_GE(nice, a) << a << " " << b;
        EXPECT_LE(nice, b) << a << " " << b;
    }
}

TEST_F(PlotObjects, NiceBoundsGoOutByATenthAtMost) {
    std::mt19937 random(7);
    for (int n = 0; n < 20000; n++) {
        const double lo = (int(random() % 2000) - 1000) * 0.37, hi = lo + double(random() % 5000 + 1) * 0.113;
        double nicelo, nicehi;
        nicebounds(lo, hi, 100000, nicelo, nicehi);
        const double d = (hi - lo) * 0.1000001;
        EXPECT_LE(nicelo, lo);
        EXPECT_GE(nicehi, hi);
        EXPECT_GE(nicelo, lo - d) << lo << " " << hi;
        EXPECT_LE(nicehi, hi + d) << lo << " " << hi;
    }
    double lo, hi;
    nicebounds(0.5, 10, 100000, lo, hi); // 0 is nearer than a tenth
    EXPECT_EQ(lo, 0);
    nicebounds(-1.7e308, 1.7e308, 100000, lo, hi);
    EXPECT_EQ(lo, -1.7e308);
    EXPECT_EQ(hi, 1.7e308);
}

// ---- adjustment ----

TEST_F(PlotObjects, LimitsFollowTheDataByTheirCodes) {
    const struct {
        int code;
        double wmin, wmax, xmin, xmax; // limits before and after; the data lie in 2.3 .. 8.6
    } rows[] = {{0, 0, 10, 0, 10},
                {0, 4, 5, 4, 5},
                {1, 0, 10, 2.3, 8.6}, // moves in...
                {1, 4, 5, 4, 5},      // ...but not out
                {2, 0, 10, 0, 10},
                {2, 4, 5, 2.3, 8.6},
                {3, 0, 5, 2.3, 8.6},
                {3, 4, 20, 2.3, 8.6},
                {7, 0, 10, 2.3 - 0.315, 8.6 + 0.315}, // 5 % of 6.3
                {11, 0, 5, 2, 9},
                {9, 4, 20, 4, 9},
                {10, 4, 20, 2, 20}};
    for (const auto& row : rows) {
        SetUp();
        window w = defaultwindow();
        std::fill(w.adjust, w.adjust + 4, int8_t(row.code));
        w.wxmin = row.wmin, w.wxmax = row.wmax;
        const int win = makewindow("W", w);
        makecurve("C1", win, {2.3, 0, 8.6, 1});
        adjustwindow(win);
        EXPECT_DOUBLE_EQ(windowof(win).wxmin, row.xmin) << row.code << " " << row.wmin;
        EXPECT_DOUBLE_EQ(windowof(win).wxmax, row.xmax) << row.code << " " << row.wmax;
    }
}

TEST_F(PlotObjects, EachLimitHasItsOwnCode) {
    window w = defaultwindow();
    w.adjust[0] = 0, w.adjust[1] = 3, w.adjust[2] = 11, w.adjust[3] = 7;
    const int win = makewindow("W", w);
    makecurve("C1", win, {20, 3.7, 40, 8.7});
    adjustwindow(win);
    EXPECT_EQ(windowof(win).wxmin, 0);
    EXPECT_EQ(windowof(win).wxmax, 40);
    EXPECT_DOUBLE_EQ(windowof(win).wymin, 3.5);
    EXPECT_EQ(windowof(win).wymax, 8.7); // no rounding, and the other code's rounding takes the 5 % away
}

TEST_F(PlotObjects, WhatCountsAsData) {
    const int win = makewindow("W");
    makecurve("W.XAXIS", win, {-500, 0, 500, 0}, TOKXAXIS);
    adjustwindow(win);
    EXPECT_EQ(windowof(win).wxmax, 10); // axes are no data
    const int c = makecurve("C1", win, {MAXPOS, 0, 1, 2, 3, 4, MAXPOS, 1, 5, 3});
    curveof(c).linetype = 7;
    adjustwindow(win);
    EXPECT_EQ(windowof(win).wxmin, 1); // delimiters are none
    EXPECT_EQ(windowof(win).wxmax, 5);
    curveof(c).linetype = 1; // nor is what has no answer
    makecurve("C2", win, {2, MAXPOS, 9, 1});
    adjustwindow(win);
    EXPECT_EQ(windowof(win).wxmax, 9);
    EXPECT_EQ(windowof(win).wymax, 4);
}

TEST_F(PlotObjects, OnePointGetsRoom) {
    window w = defaultwindow();
    std::fill(w.adjust, w.adjust + 4, int8_t(3));
    const int win = makewindow("W", w);
    makecurve("C1", win, {5, 1e17});
    adjustwindow(win);
    EXPECT_EQ(windowof(win).wxmin, 4.5);
    EXPECT_EQ(windowof(win).wxmax, 5.5);
    EXPECT_LT(windowof(win).wymin, 1e17); // half a unit would be lost in such a number
    EXPECT_GT(windowof(win).wymax, 1e17);
}

// Data farther apart, or nearer together, than any scale reaches still give limits that can be drawn.
TEST_F(PlotObjects, ExtremeRangesCanBeDrawn) {
    const std::initializer_list<double> extremes[] = {{-1e308, 1e308, 1e308, -1e308},
                                                      {1e-320, 5e-324, 3e-320, 0},
                                                      {0, -MAXPOS / 1.0000001, 1, MAXPOS / 1.0000001}};
    for (const int code : {3, 7, 11, 15}) {
        for (const auto& points : extremes) {
            SetUp();
            window w = defaultwindow();
            std::fill(w.adjust, w.adjust + 4, int8_t(code));
            const int win = makewindow("W", w);
            makecurve("C1", win, points);
            adjustwindow(win);
            const window& now = windowof(win);
            for (const double extent : {now.wxmax - now.wxmin, now.wymax - now.wymin}) {
                EXPECT_GT(extent, 1e-290) << code;
                EXPECT_LE(extent, MAXPOS) << code;
            }
        }
    }
}

TEST_F(PlotObjects, MatchedScales) {
    for (const int code : {12, 13, 14, 15}) {
        for (const auto& points : {std::vector<double>{0, 0, 10, 3}, {0, 0, 3, 10}, {-5, -5, 5, 5}}) {
            SetUp();
            window w = defaultwindow();
            std::fill(w.adjust, w.adjust + 4, int8_t(code));
            w.wxmin = w.wymin = code == 13 ? -1e3 : 0.1, w.wxmax = w.wymax = code == 13 ? 1e3 : 0.2;
            const int win = makewindow("W", w);
            makecurve("C1", win, points);
            adjustwindow(win);
            const window& now = windowof(win);
            if (code == 12) {
                EXPECT_EQ(now.wxmin, 0.1);
                continue;
            }
            const double x = (now.ixmax - now.ixmin) / (now.wxmax - now.wxmin);
            const double y = (now.iymax - now.iymin) / (now.wymax - now.wymin);
            EXPECT_NEAR(x / y, 1, 1e-12) << code;
            EXPECT_LE(now.wxmin, points[0]);
            EXPECT_GE(now.wymax, points[3]);
        }
    }
}

// ---- marks ----

// An axis with labels that chooses its marks.
int choosingaxis(int win, const char* name, int kind) {
    curve axis;
    axis.kind = int16_t(kind);
    axis.wclipsw = OWNMARKS;
    axis.labels.reset(harraynew(1, 1));
    const int idx = symtabenter(name);
    curveenter(idx, std::move(axis));
    joinring(idx, win);
    return idx;
}

// The distance of marks is 1, 2 or 5 times a power of ten.
bool isroundstep(double step) {
    const double digit = step / std::pow(10, std::floor(std::log10(step) + 1e-6));
    return std::abs(digit - 1) < 1e-6 || std::abs(digit - 2) < 1e-6 || std::abs(digit - 5) < 1e-6;
}

TEST_F(PlotObjects, MarksAreRoundAndLieWithinTheLimits) {
    std::mt19937 random(3);
    const int win = makewindow("W");
    const int idx = choosingaxis(win, "W.XAXIS", TOKXAXIS);
    for (int n = 0; n < 3000; n++) {
        const double size = std::pow(10, int(random() % 40) - 20);
        window& w = windowof(win);
        w.wxmin = (double(random() % 20001) - 10000) * size;
        w.wxmax = w.wxmin + (double(random() % 20001) - 10000.5) * size;
        adjustwindow(win);
        const curve& c = curveof(idx);
        const double lo = std::min(w.wxmin, w.wxmax), hi = std::max(w.wxmin, w.wxmax),
                     slack = (hi - lo) * 1e-8;
        const uint32_t marks = c.data->rows;
        ASSERT_GE(marks, 2u) << w.wxmin << " " << w.wxmax;
        ASSERT_LE(marks, 11u);
        ASSERT_EQ(c.labels->rows, marks);
        const double step = (at(c.data.get(), marks, 1) - at(c.data.get(), 1, 1)) / (marks - 1);
        EXPECT_TRUE(isroundstep(std::abs(step))) << step;
        EXPECT_EQ(step > 0, w.wxmax > w.wxmin);
        for (uint32_t i = 1; i <= marks; i++) {
            const double v = at(c.data.get(), i, 1);
            EXPECT_GE(v, lo - slack);
            EXPECT_LE(v, hi + slack);
            EXPECT_NEAR(std::remainder(v, step), 0, std::abs(step) * 1e-9 + std::abs(v / step * v) * 1e-15);
            EXPECT_EQ(cells(c.labels.get())[i], v);
            EXPECT_EQ(at(c.data.get(), i, 2), w.wymin);
        }
        EXPECT_LT(lo - slack, std::min(at(c.data.get(), 1, 1), at(c.data.get(), marks, 1)));
    }
}

TEST_F(PlotObjects, LabelsTellTheirMarksExactly) {
    std::mt19937 random(4);
    const int win = makewindow("W");
    const int idx = choosingaxis(win, "W.YAXIS", TOKYAXIS);
    for (int n = 0; n < 2000; n++) {
        window& w = windowof(win);
        w.wymin = (double(random() % 20001) - 10000) * std::pow(10, int(random() % 30) - 15);
        w.wymax = w.wymin + (1 + double(random() % 1000)) * std::max(1e-15, std::abs(w.wymin) * 1e-6);
        adjustwindow(win);
        const curve& c = curveof(idx);
        const int16_t* f = c.format;
        for (uint32_t i = 1; i <= c.labels->rows; i++) {
            const double v = cells(c.labels.get())[i];
            const std::string text = numstring(v, numberformat{f[0], f[1], f[2], f[3], f[4], f[5], ""});
            EXPECT_NEAR(std::stod(text), v, std::abs(v) * 1e-12) << w.wymin << " " << w.wymax;
        }
    }
}

// ---- copies ----

TEST_F(PlotObjects, CopiesAreIndependent) {
    const int w = makewindow("W"), c = makecurve("C1", w, {1, 2, 3, 4});
    makecurve("W.XAXIS", w, {0, 0, 1, 0}, TOKXAXIS);
    makecurve("SHAPE", w, {5, 6});
    title t;
    t.text = "top";
    titleenter(symtabenter("W.TOP"), t);
    joinring(symtabenter("W.TOP"), w);
    const int w2 = symtabenter("W2");
    copywindow(w, w2);
    EXPECT_EQ(ring(w), "W.TOP SHAPE W.XAXIS C1 ");
    EXPECT_EQ(ring(w2), "W2.TOP SHAPEA W2.XAXIS C2 ");
    cells(curveof(c).data.get())[1] = 99;
    titleof(symtablookup("W.TOP")).text = "changed";
    symtabdelete(w);
    EXPECT_EQ(cells(curveof(symtablookup("C2")).data.get())[1], 1);
    EXPECT_EQ(titleof(symtablookup("W2.TOP")).text, "top");
    EXPECT_EQ(ring(w2), "W2.TOP SHAPEA W2.XAXIS C2 ");
}

TEST_F(PlotObjects, CopiesFindFreeNames) {
    const int w = makewindow("W");
    makecurve("W.XAXIS", w, {0, 0, 1, 0}, TOKXAXIS);
    makecurve("ABCDEFGHIJKLMNOPQRSTUVWXYZA", w, {0, 0});
    sym(symtabenter("W2.XAXIS")).type = SCALAR;
    const int w2 = symtabenter("W2");
    copywindow(w, w2);
    EXPECT_EQ(ring(w2), "C1 W2A.XAXIS ");
}

} // namespace
