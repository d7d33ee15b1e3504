// VIEW on a screen that only notes what it is told to show.
#include "plot/display.h"

#include "interp/base/hooks.h"
#include "interp/base/report.h"
#include "plot/scene.h"
#include "unit/plot/epspage.h"
#include "vellum/vldevice.h"

#include <gtest/gtest.h>

namespace {

struct shownarea {
    double x, y, w, h;
    int color;
};
struct fakescreen {
    bool there = true;
    int lines = 0, keys = 0;
    int width = 1000, height = 800;
    std::vector<shownarea> erased;
    std::vector<int> linecolors;
};
fakescreen shown;

const vldeviceops* fakeoperations() {
    static vldeviceops ops{};
    ops.init = [](vldevice*) { return int(shown.there); };
    ops.drawline = [](double, double, double, double) {
        shown.lines++;
        shown.linecolors.push_back(DGETCOLOR());
    };
    ops.erasearea = [](double x, double y, double w, double h, int color) {
        shown.erased.push_back({x, y, w, h, color});
    };
    return &ops;
}

class views : public testing::Test {
protected:
    void SetUp() override {
        shown = fakescreen{};
        vlsetdeviceoperations(VLMSWDEV, fakeoperations());
        displayfns.screenpixels = [](int& width, int& height) {
            width = shown.width, height = shown.height;
            return true;
        };
        sceneroomsstart();
        console.getkey = [](bool) {
            shown.keys++;
            return 13;
        };
        symbol& device = sym(symtabenter("DISPLAY"));
        device.type = STRINGTYPE;
        device.val.ptr = xstrdup("MSWDEV");
    }
    void TearDown() override {
        symtabdeleteall();
        DQUIT(0);
        vlsetdeviceoperations(VLMSWDEV, nullptr);
        displayfns = displayhooks{};
        hooksreset();
        screenresize(10, 7.5);
    }
    void open() { getdisplay("MSWDEV", 0, true); }
    int window() {
        const int win = plainwindow("W");
        newcurve(win, "C1", TOKDRAW, {0, 0, 10, 10});
        return win;
    }
};

TEST_F(views, TheScreenTakesSevenTenthsOfThePlatforms) {
    open();
    EXPECT_EQ(display.graphicsfail, GRAPHICSUP);
    EXPECT_EQ(display.viewxpix, 700);
    EXPECT_EQ(display.viewypix, 560);
    EXPECT_DOUBLE_EQ(screen.aspectx, 1);
    EXPECT_DOUBLE_EQ(screen.aspecty, 0.8);
    open(); // and the same again when it is selected anew
    EXPECT_EQ(display.viewxpix, 700);
}

TEST_F(views, ViewShowsAndWaitsAndChangesAreShownAfterIt) {
    open();
    window();
    redisplay(REDISPLAYCHANGE); // nothing stands there yet
    EXPECT_EQ(shown.lines, 0);
    redisplay(REDISPLAYVIEW);
    EXPECT_EQ(shown.lines, 1);
    EXPECT_EQ(shown.keys, 1);
    redisplay(REDISPLAYCHANGE);
    EXPECT_EQ(shown.lines, 2);
    EXPECT_EQ(shown.keys, 1);
    upper.indofile = [] { return true; };
    redisplay(REDISPLAYCHANGE);
    EXPECT_EQ(shown.lines, 2);
    closeview(-1);
    upper.indofile = [] { return false; };
    redisplay(REDISPLAYCHANGE);
    EXPECT_EQ(shown.lines, 2);
}

TEST_F(views, ABatchDoesNotWait) {
    open();
    window();
    report.batch = true;
    redisplay(REDISPLAYVIEW);
    EXPECT_EQ(shown.lines, 1);
    EXPECT_EQ(shown.keys, 0);
}

TEST_F(views, GroundsAreClearedOnTheScreenButNotOnAPage) {
    open();
    struct window& w = windowof(window());
    w.imagecolor = 5;
    w.fxmin = 0.1, w.fymax = 0.75;
    redisplay(REDISPLAYVIEW);
    ASSERT_FALSE(shown.erased.empty());
    const shownarea& last = shown.erased.back();
    EXPECT_EQ(last.color, 5);
    EXPECT_NEAR(last.x, 0.2 * 700, 1);
    EXPECT_NEAR(last.y, 0.15 * 700, 1);
    EXPECT_NEAR(last.w, 0.6 * 700, 1);
    EXPECT_NEAR(last.h, 0.45 * 700, 1);
    EXPECT_EQ(plotpage("PSCL").text.find(" R\n"), std::string::npos);
}

TEST_F(views, TheColourOfTheScreenLiesBehindTheWindows) {
    open();
    window();
    symbol& ground = sym(symtabenter("SCREENCOLOR"));
    ground.type = SCALAR;
    ground.val.rval = 7;
    redisplay(REDISPLAYVIEW);
    ASSERT_FALSE(shown.erased.empty());
    EXPECT_EQ(shown.erased.back().color, 7);
}

TEST_F(views, ColourNamesAreThoseOfTheDevice) {
    open();
    const int red = int(symtabscalar("RED", -1));
    double r, g, b;
    DGETRGB(red, &r, &g, &b);
    EXPECT_NEAR(r, 1, 0.01);
    EXPECT_NEAR(g + b, 0, 0.01);
    curveof((window(), symtablookup("C1"))).linecolor = int16_t(red);
    redisplay(REDISPLAYVIEW);
    EXPECT_EQ(shown.linecolors.back(), red);
    const epspage page = plotpage("PSCL"); // the same colour on paper
    EXPECT_NEAR(page.marks.at(0).r, 1, 0.01);
    EXPECT_NEAR(page.marks.at(0).g, 0, 0.01);
}

TEST_F(views, PlotBringsTheScreenBack) {
    open();
    window();
    redisplay(REDISPLAYVIEW);
    EXPECT_EQ(plotpage("PSL").marks.size(), 1u);
    EXPECT_EQ(display.graphicsfail, GRAPHICSUP);
    EXPECT_EQ(DDEVICENUMBER(nullptr), int(VLMSWDEV));
    EXPECT_DOUBLE_EQ(scene.plotscale, 1);
    redisplay(REDISPLAYVIEW);
    EXPECT_EQ(shown.lines, 2);
}

TEST_F(views, APlotThatFailsBringsTheScreenBackToo) {
    open();
    curve& c = curveof((window(), symtablookup("C1")));
    redisplay(REDISPLAYVIEW);
    EXPECT_THROW(plotto("PSL", "/no/such/folder/plot.ps"), recoveryjump); // when the page is opened
    c.linetype = 13;
    EXPECT_THROW(plotto("PSL", plotfilepath()), recoveryjump); // in the middle of it
    c.linetype = 1;
    EXPECT_EQ(DDEVICENUMBER(nullptr), int(VLMSWDEV));
    EXPECT_DOUBLE_EQ(scene.plotscale, 1);
    EXPECT_TRUE(scene.backgrounds);
    const int before = shown.lines;
    redisplay(REDISPLAYVIEW);
    EXPECT_EQ(shown.lines, before + 1);
    EXPECT_EQ(DGETCOLOR(), 1);
}

TEST_F(views, AnotherSizeKeepsWindowsInTheirFractions) {
    open();
    struct window& w = windowof(window());
    w.fxmin = 0.5, w.fxmax = 1, w.fymin = 0.4, w.fymax = 0.8;
    setviewsize(4, 8);
    EXPECT_DOUBLE_EQ(screen.aspectx, 0.5);
    EXPECT_NEAR(w.fxmin, 0.25, 1e-12);
    EXPECT_NEAR(w.fxmax, 0.5, 1e-12);
    EXPECT_NEAR(w.fymin, 0.5, 1e-12);
    EXPECT_NEAR(w.fymax, 1, 1e-12);
}

TEST_F(views, WithoutAScreenViewIsToldOnceAndPlotWorks) {
    shown.there = false;
    open();
    EXPECT_EQ(display.graphicsfail, GRAPHICSFAILED);
    window();
    std::string told;
    report.capture = &told;
    redisplay(REDISPLAYCHANGE);
    EXPECT_EQ(told, "");
    redisplay(REDISPLAYVIEW);
    EXPECT_NE(told.find("Graphics not available."), std::string::npos);
    told.clear();
    redisplay(REDISPLAYVIEW);
    EXPECT_EQ(told, "");
    report.capture = nullptr;
    EXPECT_EQ(plotpage("PSL").marks.size(), 1u);
}

TEST_F(views, ADoFileIsAskedWhetherItGoesOn) {
    shown.there = false;
    open();
    upper.indofile = [] { return true; };
    console.getkey = [](bool) { return int('n'); };
    EXPECT_THROW(redisplay(REDISPLAYVIEW), recoveryjump);
    display.graphicsfail = GRAPHICSFAILED;
    console.getkey = [](bool) { return int('y'); };
    EXPECT_NO_THROW(redisplay(REDISPLAYVIEW));
}

} // namespace
