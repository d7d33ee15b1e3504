#include "unit/vellum/harness.h"

namespace {

class LaserJet : public Vellum {
protected:
    // What a drawing writes behind the prolog and before the form feed; escapes as ~.
    template <class Draw> static std::string written(const char* device, Draw draw) {
        page(device, "a.lj");
        DWINDOW(0, 300, 0, 300);
        const double inch = 300 / (DDEVICE(nullptr)->xpix / DDEVICE(nullptr)->xaspect);
        DVIEWPORT(0, inch, 0, inch); // a world unit is a dot
        draw();
        DQUIT(0);
        std::string s = readwhole("a.lj");
        for (char& c : s) c = c == '\33' ? '~' : c;
        const size_t prolog = s.find('F') + 1;
        EXPECT_TRUE(s.ends_with('\f') || s.size() == prolog);
        return s.substr(prolog, s.size() - prolog - (s.ends_with('\f') ? 1 : 0));
    }
};

void line(double x0, double y0, double x1, double y1) {
    DMOVE(x0, y0);
    DDRAW(x1, y1);
}

TEST_F(LaserJet, prologOfEachPage) {
    const std::pair<const char*, std::string> prologs[] = {
        {"LJ2P", "~&l0O~&l0E~&l0L~*t300R~&l8C~&l66F"},
        {"LJ2L", "~&l1O~&l0E~&l0L~*t300R~&l8C~&l51F"},
        {"lj2p", "~&l0O~&l0E~&l0L~*t300R~&l4.0000C~&l127F"},
        {"lj2l", "~&l1O~&l0E~&l0L~*t300R~&l4.0000C~&l96F"},
    };
    for (const auto& [device, prolog] : prologs) {
        page(device, "a.lj");
        DQUIT(0);
        std::string s = readwhole("a.lj");
        for (char& c : s) c = c == '\33' ? '~' : c;
        EXPECT_EQ(s, prolog);
    }
}

TEST_F(LaserJet, twoLinesEnterHpglOnce) {
    EXPECT_EQ(written("LJ2P",
                      [] {
                          line(0, 0, 150, 150);
                          DDRAW(300, 0);
                          line(30, 30, 30, 60);
                      }),
              "~*c5640x7519Y~*p49x82Y~*c0T~%1BPW0,0PUSP1PA0,0PD508,508PD1016,0PU102,102PD102,203~%0A");
}

TEST_F(LaserJet, whiteLinesUsePenNought) {
    EXPECT_EQ(written("LJ2L",
                      [] {
                          line(0, 0, 300, 0);
                          DCOLOR(0);
                          DDRAW(300, 300);
                      }),
              "~*c7632x5724Y~*p0x56Y~*c0T~%1BPW0,0PUSP1PA0,0PD1016,0PUSP0PA1016,0PD1016,1016~%0A");
}

TEST_F(LaserJet, rasterLeavesHpglFirst) {
    const std::string s = written("LJ2P", [] {
        line(0, 0, 300, 0);
        const uint8_t bits[] = {0b01101000}; // two rows of three from the bottom: 0 1 1 below 0 1 0
        DSETPATCH(DSCREENPATCH(), DPATCH(nullptr, 0, 0, 3, 2, 1, bits), 10, 20, -1);
    });
    const std::string end = "PD1016,0~%0A~*p59x3193Y~*r1A~*b1W" + std::string(1, char(0x40)) + "~*b1W" +
                            std::string(1, char(0x60)) + "~*rB";
    EXPECT_TRUE(s.ends_with(end)) << s;
}

TEST_F(LaserJet, areasAreFilledRectangles) {
    EXPECT_EQ(written("LJ2P",
                      [] {
                          DERASE(DPATCH(DSCREENPATCH(), 0, 0, 100, 50, 0, nullptr), 1);
                          DERASE(DPATCH(DSCREENPATCH(), 0, 0, 10, 5, 0, nullptr), 0);
                      }),
              "~*v0T~*p49X~*p3165Y~*c100A~*c50B~*c0P~*v1T~*p49X~*p3210Y~*c10A~*c5B~*c1P");
}

TEST_F(LaserJet, nativeTextChoosesItsFontOnce) {
    EXPECT_EQ(written("LJ2P",
                      [] {
                          DFONT(-3);
                          DCHARSIZE(12 / (10.4433 * 72));
                          DMOVE(30, 30);
                          DTEXT("bold");
                          DMOVE(30, 60);
                          DTEXT("twice");
                      }),
              "~(0N~(s0P~(s10.00H~(s12.0V~(s0S~(s3B~(s4099T~*p79X~*p3184Ybold~*p79X~*p3154Ytwice");
}

TEST_F(LaserJet, aFileThatCannotBeOpenedIsAFault) {
    DINI("LJ2P", nullptr, "no/such/folder/a.lj", 0, 0, 0, 0);
    EXPECT_EQ(fault([] { DGET(DSCREENPATCH(), 1); }),
              "error opening Laserjet output file\nno/such/folder/a.lj: No such file or directory");
}

// What a full disk has refused is told once: the end of the page says nothing more.
TEST_F(LaserJet, aFullDiskIsToldOfOnce) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
    page("LJ2L", "/dev/full");
    const auto draw = [] {
        for (int i = 0; i < 20000; i++) {
            DMOVE(0, 0);
            DDRAW(i % 2, 1);
        }
    };
    EXPECT_EQ(fault(draw), "error writing Laserjet output file\n/dev/full: No space left on device");
    EXPECT_EQ(fault([] { DQUIT(0); }), "");
    EXPECT_EQ(DDEVICENUMBER(nullptr), -1);
}

} // namespace
