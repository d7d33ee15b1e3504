#include "unit/vellum/harness.h"
#include "vellum/vldevice.h"

#include <cmath>
#include <vector>

namespace {

class Frame : public Vellum {};
class View : public Vellum {
protected:
    // The end points of the plain lines that a drawing records, in normal units.
    template <class Draw> static std::vector<double> lines(Draw draw) {
        vlpicture* p = DNEWPIC();
        draw();
        DCLOSEPIC();
        std::vector<double> ends;
        double x = 0, y = 0;
        for (const uint32_t word : DPICWORDS(p)) {
            const auto part = [](uint32_t v) { return int32_t(v << 17) / 2147483648.0; };
            const double nx = part(word >> 15), ny = part(word);
            if (word >> 30 == 1) ends.insert(ends.end(), {x, y, nx, ny});
            x = nx;
            y = ny;
        }
        DKILL(p, -1);
        return ends;
    }
    static void expectnear(const std::vector<double>& got, const std::vector<double>& want) {
        ASSERT_EQ(got.size(), want.size());
        for (size_t i = 0; i < got.size(); i++) EXPECT_NEAR(got[i], want[i], 1e-4) << i;
    }
    void SetUp() override {
        Vellum::SetUp();
        memory(100, 100, 8);
        DWINDOW(0, 10, 0, 10);
        DVIEWPORT(0, 1, 0, 0.5);
    }
};

TEST_F(Frame, devicesOpenOnceAndKeepTheirSizes) {
    EXPECT_EQ(fault([] { DINI("NODEV", nullptr, nullptr, 0, 0, 0, 0); }), "DINI: Not a valid display");
    EXPECT_EQ(DINI("VGAC", nullptr, nullptr, 0, 0, 0, 0), 0) << "a row without operations";
    EXPECT_EQ(DDEVICENUMBER(nullptr), -1);
    int colours = 0;
    ASSERT_EQ(DINI("PSL", &colours, "a.ps", 5, 4, 0, 0), 1);
    EXPECT_EQ(colours, 4096);
    vlpatch* screen = DSCREENPATCH();
    EXPECT_EQ(DINI("PSL", &colours, "b.ps", 0, 0, 0, 0), 1);
    EXPECT_EQ(DSCREENPATCH(), screen) << "open already";
    EXPECT_EQ(DDEVICE(nullptr)->xpix, 1500);
    EXPECT_DOUBLE_EQ(DDEVICE(nullptr)->yaspect, 0.8);
    DQUIT(0);
    DINI("PSL", nullptr, "a.ps", 0, 0, 0, 0);
    EXPECT_EQ(DDEVICE(nullptr)->xpix, 1500) << "the record keeps what was set";
    DQUIT(0);
    EXPECT_EQ(DINI("PSL", nullptr, "a.ps", 10.444444, 7.944444, 3133, 2383), 1);
    DQUIT(0);
    EXPECT_EQ(DINI("PSP", nullptr, "a.ps", 1e9, 1, 0, 0), 0);
    EXPECT_EQ(DINI("PSP", nullptr, "a.ps", 0, 0, 40000, 10), 0);
}

TEST_F(Frame, picturesOutliveAChangeOfDevice) {
    memory(10, 10, 8);
    vlpicture* p = DNEWPIC();
    DCLOSEPIC();
    page("PSP", "a.ps");
    EXPECT_EQ(DPICSTATE(p), 1);
    DQUIT(0);
    EXPECT_EQ(fault([&] { DPICSTATE(p); }), "Illegal picture pointer argument provided in DPICSTATE");
}

TEST_F(Frame, namesAndNumbersOfDevices) {
    EXPECT_EQ(DDEVICENUMBER("PSP"), 8);
    EXPECT_EQ(DDEVICENUMBER("PSL"), 9);
    EXPECT_EQ(DDEVICENUMBER("lj2l"), 14);
    EXPECT_EQ(DDEVICENUMBER("MSWDEV"), 16);
    EXPECT_EQ(DDEVICENUMBER("MACD"), 19);
    EXPECT_EQ(DDEVICENUMBER("END"), -1);
    for (int i = 0; DDEVICENAME(i); i++) EXPECT_EQ(DDEVICENUMBER(DDEVICENAME(i)), i);
}

TEST_F(Frame, faultsWithoutAHandlerEndTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(
        {
            DERROR(nullptr);
            DINI("NODEV", nullptr, nullptr, 0, 0, 0, 0);
        },
        testing::ExitedWithCode(1), "VELLUM ERROR: DINI: Not a valid display");
    EXPECT_EXIT(
        {
            DINI("PSP", nullptr, "/dev/full", 0, 0, 0, 0);
            DGET(DSCREENPATCH(), 1);
            DQUIT(0);
        },
        testing::ExitedWithCode(1), "ERROR writing into PostScript file\\.");
}

// -1 ends a page by the device's own operation before it is left; -3 and -2 leave it at once.
TEST_F(Frame, aPageEndsBeforeItIsLeft) {
    static std::string calls;
    vldeviceops ops{};
    ops.init = [](vldevice*) { return 1; };
    ops.open = [](int flag) { calls += std::to_string(flag) + ' '; };
    ops.endpage = [] { calls += "end "; };
    vlsetdeviceoperations(VLXDEV, &ops);
    *DDEVICE("XDEV") = {"XDEV", 10, 10, 100, 100, 1, 1, 1000, 1000, 24, 4, 4, 4, 13, 0, 4096, 1};
    page("XDEV", nullptr);
    for (const int flag : {-1, 1, -2, 1, -3}) DGET(DSCREENPATCH(), flag);
    EXPECT_EQ(calls, "1 end -1 1 -2 1 -3 ");
    DQUIT(0);
    vlsetdeviceoperations(VLXDEV, nullptr);
}

TEST_F(Frame, illegalInputOperations) {
    memory(10, 10, 8);
    EXPECT_EQ(fault([] { DQEV(6, nullptr, 0, 0, 0); }), "Illegal DQEV Op value");
    EXPECT_EQ(fault([] { DQEV(0, nullptr, 0, 0, 2); }), "Illegal DQEV Flush Op value");
    EXPECT_EQ(DQEV(0, nullptr, 0, 0, 0), 0);
}

TEST_F(View, badViewportsAndWindowsLeaveTheOld) {
    DVIEWPORT(0.5, 0.5, 0, 1);
    DVIEWPORT(0, 1, 0.5, 0.2);
    DVIEWPORT(0, std::nan(""), 0, 1);
    DWINDOW(3, 3, 0, 1);
    DWINDOW(0, INFINITY, 0, 1);
    double v[4], w[4];
    DGETVIEWPORT(v);
    DGETWINDOW(w);
    EXPECT_EQ(std::vector<double>(v, v + 4), (std::vector<double>{0, 1, 0, 0.5}));
    EXPECT_EQ(std::vector<double>(w, w + 4), (std::vector<double>{0, 10, 0, 10}));
    EXPECT_DOUBLE_EQ(DXSCALE(), 0.1);
    EXPECT_DOUBLE_EQ(DYSCALE(), 0.05);
}

TEST_F(View, worldWindowsMayFall) {
    DWINDOW(10, 0, 0, 10);
    expectnear(lines([] {
                   DMOVE(10, 0);
                   DDRAW(8, 10);
               }),
               {0, 0, 0.2, 0.5});
    double x0 = -5, y0 = 5, x1 = 15, y1 = 5;
    EXPECT_EQ(DCLIPLINE(&x0, &y0, &x1, &y1), 1);
    EXPECT_EQ(x0, 0);
    EXPECT_EQ(x1, 10);
    y0 = y1 = 11;
    EXPECT_EQ(DCLIPLINE(&x0, &y0, &x1, &y1), 0);
}

TEST_F(View, stepsOfThePen) {
    expectnear(lines([] {
                   DMOVE(1, 2);
                   DDRAWR(1, 2);
                   DMOVER(1, 0);
                   DDRAWN(0.1, 0.1);
               }),
               {0.1, 0.1, 0.2, 0.2, 0.3, 0.2, 0.4, 0.3});
    double x, y, z;
    DGETPOS(&x, &y, &z);
    EXPECT_NEAR(x, 4, 1e-12);
    EXPECT_NEAR(y, 6, 1e-12);
}

// A shape in normal lengths about a point of the world: the transform acts on steps, not on the point.
TEST_F(View, transformedStepsKeepTheirPlace) {
    DMOVE(5, 5);
    DSCALE(1 / DXSCALE(), 1 / DYSCALE(), 1);
    DTRANSFORMON(1);
    expectnear(lines([] {
                   DDRAWR(0.1, 0);
                   DDRAWR(0, 0.1);
               }),
               {0.5, 0.25, 0.6, 0.25, 0.6, 0.25, 0.6, 0.35});
}

TEST_F(View, rotationsComposeFromTheRight) {
    DWINDOW(-10, 10, -10, 10);
    DVIEWPORT(0, 1, 0, 1);
    DTRANSLATE(2, 0, 0);
    DROTATE(90);
    DTRANSFORMON(1);
    expectnear(lines([] {
                   DMOVE(1, 0);
                   DDRAW(4, 0);
               }),
               {0.6, 0.55, 0.6, 0.7});
    double m[16], inverse[16];
    const double axis[3] = {1, 2, 3}, none[3] = {0, 0, 0};
    DROTATEMAT(m, axis, 77);
    DROTATEMAT(inverse, axis, -77);
    for (int i = 0; i < 3; i++) {
        for (int j = 0; j < 3; j++) EXPECT_NEAR(m[4 * i + j], inverse[4 * j + i], 1e-15);
    }
    DROTATEMAT(m, none, 77);
    EXPECT_EQ(m[0] + m[5] + m[10] + m[15], 4);
    EXPECT_EQ(m[1], 0);
}

// The eye looks along z: x' = x / z. What lies behind it is cut off, not mirrored.
TEST_F(View, perspectiveIsCutAtTheNearPlane) {
    DWINDOW(-1, 1, -1, 1);
    DVIEWPORT(0, 1, 0, 1);
    const double eye[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0};
    DTRANSFORM(eye);
    DTRANSFORMON(1);
    expectnear(lines([] {
                   DMOVE3(0, 1, 2);
                   DDRAW3(1, 1, 4);
               }),
               {0.5, 0.75, 0.625, 0.625});
    expectnear(lines([] {
                   DMOVE3(0, 0.5, 1);
                   DDRAW3(0, 0.5, -1); // goes up and out of the window before it passes the eye
               }),
               {0.5, 0.75, 0.5, 1});
    EXPECT_TRUE(lines([] {
                    DMOVE3(0, 0, -1);
                    DDRAW3(1, 1, -2);
                }).empty());
}

TEST_F(View, numbersThatAreNotFiniteDrawNothing) {
    for (const double bad : {std::nan(""), double(INFINITY), -double(INFINITY)}) {
        EXPECT_TRUE(lines([=] {
                        DMOVE(1, 1);
                        DDRAW(bad, 2);
                        DDRAW(2, bad);
                    }).empty());
    }
    DCLIP(0);
    const auto ends = lines([] {
        DMOVE(5, 5);
        DDRAW(1e300, 5);
        DDRAW(-1e308, 5);
        DDRAW(5, 1e308);
    });
    for (const double v : ends) EXPECT_LE(std::fabs(v), 1);
}

} // namespace
