#include "unit/vellum/harness.h"
#include "vellum/vellum.h"

#include <cmath>
#include <cstdlib>

namespace {

// What stands between the set-up and the trailer.
std::string bodyof(const std::string& file) {
    const std::string whole = readwhole(file), start = "%%EndSetup\n\n", end = "showpage\n\n";
    const size_t from = whole.find(start) + start.size();
    return whole.substr(from, whole.find(end) - from);
}

std::string lineof(const std::string& whole, const std::string& start) {
    const size_t from = whole.rfind(start);
    return from == std::string::npos ? "" : whole.substr(from, whole.find('\n', from) - from);
}

class PostScript : public Vellum {};

TEST_F(PostScript, aLineReachesThePage) {
    page("PSP", "a.ps");
    DWINDOW(0, 100, 0, 100);
    DVIEWPORT(0, 0.5, 0, 0.5);
    DMOVE(0, 0);
    DDRAW(100, 100);
    DDRAW(100, 0);
    DQUIT(0);
    const std::string whole = readwhole("a.ps");
    EXPECT_EQ(bodyof("a.ps"), "0 0 0 RGB\nB 0 0 M\n1566 1566 L\n1566 0 L\nE\n");
    EXPECT_EQ(lineof(whole, "%%BoundingBox:"), "%%BoundingBox: 20 20 396 396");
    EXPECT_TRUE(whole.ends_with("showpage\n\n%%Trailer\n%%BoundingBox: 20 20 396 396\n%%EOF\n"));
}

TEST_F(PostScript, headerIsExact) {
    page("PSL", "header.ps");
    DQUIT(0);
    const std::string whole = readwhole("header.ps");
    const std::string head =
        "%!PS-Adobe-3.0 EPSF-3.0\n%%Creator: Brindle Works, Inc.\n%%Title: header.ps\n"
        "%%DocumentFonts: Times-Roman Helvetica Courier Symbol\n"
        "%%BoundingBox: 19 19 593 773\n%%EndComments\n\n%%BeginSetup\n/L {lineto} bind def\n";
    EXPECT_EQ(whole.substr(0, head.size()), head);
    const std::string tail =
        "/SYfnt {/Symbol findfont exch scalefont} bind def\n/SY {SYfnt setfont} def\n"
        "20 TR\n1 setlinewidth\n1 setlinecap\n1 setlinejoin\n612 0 translate\n90 rotate\n"
        "20 20 translate\n0.24 0.24 scale\n%%EndSetup\n\n";
    EXPECT_NE(whole.find(tail), std::string::npos);
    EXPECT_TRUE(whole.ends_with("showpage\n\n%%Trailer\n%%EOF\n"));
}

TEST_F(PostScript, coloursOfThePage) {
    page("PSL", "c.ps");
    EXPECT_EQ(DRGBCOLOR(1, 0, 0), 0xf00);
    EXPECT_EQ(DRGBCOLOR(0, 0, 0), 1) << "black is the pen";
    EXPECT_EQ(DRGBCOLOR(1, 1, 1), 0xfff);
    double r, g, b;
    DGETRGB(0, &r, &g, &b);
    EXPECT_EQ(r + g + b, 3) << "index 0 is the paper";
    DCOLOR(99999);
    EXPECT_EQ(DGETCOLOR(), 1);
    DERASE(DSCREENPATCH(), 0); // white paper needs no white
    DERASE(DSCREENPATCH(), 0x0f0);
    DQUIT(0);
    EXPECT_EQ(bodyof("c.ps"), "0 1 0 RGB\n0 0 3133 2383 R\n");
}

TEST_F(PostScript, lineWidthIsInPoints) {
    page("PSP", "w.ps");
    DLINEWIDTH(1.5);
    DQUIT(0);
    EXPECT_EQ(bodyof("w.ps"), "0 0 0 RGB\n6.25 setlinewidth\n");
}

TEST_F(PostScript, nothingIsDrawnOnALeftDevice) {
    page("PSP", "n.ps");
    DGET(DSCREENPATCH(), -1); // ends the page
    DMOVE(0, 0);
    DDRAW(1, 1);
    EXPECT_EQ(bodyof("n.ps"), "0 0 0 RGB\n");
    DQUIT(0);
    EXPECT_EQ(bodyof("n.ps"), "0 0 0 RGB\n");
}

TEST_F(PostScript, clipIsAtTheViewport) {
    page("PSP", "k.ps");
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 0.5, 0, 0.5);
    const auto cross = [] {
        DMOVE(-1, 0.5);
        DDRAW(2, 0.5);
    };
    cross();
    DCLIP(0);
    cross();
    DMOVE(std::nan(""), 0);
    DDRAW(1, 1e308); // no image, no harm
    DQUIT(0);
    EXPECT_EQ(bodyof("k.ps"), "0 0 0 RGB\nB 0 783 M\n1566 783 L\n0 783 M\n2383 783 L\nE\n");
}

TEST_F(PostScript, aFileThatCannotBeOpenedIsAFault) {
    DINI("PSP", nullptr, "no/such/folder/a.ps", 0, 0, 0, 0);
    EXPECT_EQ(fault([] { DGET(DSCREENPATCH(), 1); }),
              "Cannot open Postscript file.\nno/such/folder/a.ps: No such file or directory");
    DQUIT(0);
    EXPECT_EQ(DINI("PSP", nullptr, "b.ps", 0, 0, 0, 0), 1);
}

// Everything the device can write, each kind of page: an interpreter takes it without a word.
TEST_F(PostScript, ghostscriptAcceptsEveryPage) {
    if (std::system("gs --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "gs is not installed";
    for (const char* device : {"PSP", "PSL", "PSH"}) {
        for (const bool empty : {false, true}) {
            page(device, "a.ps");
            if (!empty) {
                DWINDOW(0, 1, 0, 1);
                DVIEWPORT(0.1, 0.6, 0.1, 0.4);
                DCOLOR(DRGBCOLOR(0.2, 0.4, 1));
                DMOVE(0, 0);
                for (int i = 0; i < 2000; i++) DDRAW(i / 2000.0, (i * 7919 % 1000) / 1000.0);
                DPOINT(0.5, 0.5);
                const double polygon[] = {5, 2, 0, 0, 2, 0, 2, 2, 1e300, 0, 0.2, 0.2};
                DPOLYGON(polygon, 0, 0, 1);
                const uint8_t bits[] = {0xf0, 0x0f, 0x33};
                vlpatch* patch = DPATCH(nullptr, 0, 0, 3, 2, 4, bits);
                DSETPATCH(DSCREENPATCH(), patch, 5, 5, -1);
                DSETPATCH(DSCREENPATCH(), patch, 50, 5, 0);
                vlpatch* large = DPATCH(nullptr, 0, 0, 900, 40, 1, nullptr);
                DSETPATCH(DSCREENPATCH(), large, 100, 100, -1);
                DERASE(DPATCH(DSCREENPATCH(), 500, 500, 60, 60, 0, nullptr), 0x123);
                DLINEWIDTH(2);
            }
            DQUIT(0);
            EXPECT_EQ(
                std::system("gs -q -dSAFER -dBATCH -dNOPAUSE -dEPSCrop -sDEVICE=nullpage a.ps > gs.txt 2>&1"),
                0);
            EXPECT_EQ(readwhole("gs.txt"), "") << device << (empty ? ", empty" : "");
        }
    }
}

} // namespace
