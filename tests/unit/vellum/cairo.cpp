#include "unit/vellum/harness.h"

#include <cmath>
#include <cstdlib>
#include <vector>

// Cairo 1.16 loses some bytes when a recorded page becomes a PDF; the sanitizer is told that they are not
// ours.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libcairo\nleak:libpixman\nleak:libfontconfig\n";
}

namespace {

class Cairo : public Vellum {
protected:
    void SetUp() override {
        Vellum::SetUp();
        if (DINI("PNG", nullptr, "probe.png", 0, 0, 0, 0) == 0) GTEST_SKIP() << "cairo is not there";
        DQUIT(0);
    }
    static void draw(const char* device, const char* file) {
        page(device, file);
        DWINDOW(0, 1, 0, 1);
        DVIEWPORT(0.1, 0.3, 0.1, 0.4);
        DCOLOR(DRGBCOLOR(1, 0, 0));
        const double square[] = {4, 2, 0, 0, 1, 0, 1, 1, 0, 1};
        DPOLYGON(square, 0, 0, 1);
        DCOLOR(1);
        DMOVE(0, 0);
        DDRAW(1, 1);
        DQUIT(0);
    }
};

// A picture file as it is read back: width, height, and the parts of every pixel.
struct image {
    int w = 0, h = 0;
    std::string rgb;
    std::vector<int> at(int x, int y) const {
        const size_t i = 3 * (size_t(y) * size_t(w) + size_t(x));
        return {uint8_t(rgb[i]), uint8_t(rgb[i + 1]), uint8_t(rgb[i + 2])};
    }
};

image readpng(const std::string& file) {
    image out;
    const std::string script = TESTDATADIR "/../unit/vellum/readpng.py";
    if (std::system(("python3 " + script + " " + file + " rgb").c_str()) != 0) return out;
    const std::string whole = readwhole("rgb");
    std::istringstream(whole) >> out.w >> out.h;
    out.rgb = whole.substr(whole.find('\n') + 1);
    return out;
}

TEST_F(Cairo, pngHasTheSizeAskedForAndTheRightPixels) {
    int colours = 0;
    ASSERT_EQ(DINI("PNG", &colours, "a.png", 3, 2, 300, 200), 1);
    EXPECT_EQ(colours, 32768);
    DGET(DSCREENPATCH(), 1);
    DWINDOW(0, 300, 0, 200);
    DVIEWPORT(0, 1, 0, 2 / 3.0);
    DCOLOR(DRGBCOLOR(0, 0, 1));
    const double square[] = {4, 2, 30, 20, 90, 20, 90, 100, 30, 100};
    DPOLYGON(square, 0, 0, 1);
    DCOLOR(1);
    DLINEWIDTH(2.16); // three pixels at 100 to the inch
    DMOVE(0, 150.75);
    DDRAW(300, 150.75);
    DQUIT(0);
    const image png = readpng("a.png");
    ASSERT_EQ(png.w, 300);
    ASSERT_EQ(png.h, 200);
    EXPECT_EQ(png.at(60, 200 - 60), (std::vector<int>{0, 0, 255}));
    EXPECT_EQ(png.at(200, 100), (std::vector<int>{255, 255, 255}));
    EXPECT_EQ(png.at(150, 49), (std::vector<int>{0, 0, 0}));
}

TEST_F(Cairo, portraitIsTheBoxOfTheDrawing) {
    draw("PNGP", "a.png");
    const image png = readpng("a.png");
    // A fifth and three tenths of the longer side, and the half width of the line around it.
    EXPECT_NEAR(png.w, 0.2 * 1566, 4);
    EXPECT_NEAR(png.h, 0.3 * 1566, 4);
    draw("SVGP", "a.svg");
    EXPECT_NE(readwhole("a.svg").find("width=\"153"), std::string::npos) << readwhole("a.svg").substr(0, 300);
    draw("SVG", "b.svg");
    EXPECT_NE(readwhole("b.svg").find("viewBox=\"0 0 753.92 573.92\""), std::string::npos)
        << readwhole("b.svg").substr(0, 300);
}

TEST_F(Cairo, theSameDrawingIsTheSameFile) {
    for (const char* device : {"PNG", "PNGP", "PDF", "PDFP"}) {
        draw(device, "one");
        draw(device, "two");
        EXPECT_EQ(readwhole("one"), readwhole("two")) << device;
        EXPECT_GT(readwhole("one").size(), 500u);
    }
}

TEST_F(Cairo, ghostscriptReadsThePdf) {
    if (std::system("gs --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "gs is not installed";
    for (const char* device : {"PDF", "PDFP"}) {
        draw(device, "a.pdf");
        EXPECT_EQ(std::system("gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=nullpage a.pdf > gs.txt 2>&1"), 0);
        EXPECT_EQ(readwhole("gs.txt"), "");
    }
}

TEST_F(Cairo, aFileThatCannotBeWrittenIsAFault) {
    DINI("SVG", nullptr, "no/such/folder/a.svg", 0, 0, 0, 0);
    EXPECT_EQ(fault([] { DGET(DSCREENPATCH(), 1); }),
              "Cannot open plot file.\nno/such/folder/a.svg: No such file or directory");
    DQUIT(0);
    if (!std::filesystem::exists("/dev/full")) return;
    page("PNG", "/dev/full");
    EXPECT_EQ(fault([] { DQUIT(0); }), "Cannot write plot file.\n/dev/full: No space left on device");
    EXPECT_EQ(DDEVICENUMBER(nullptr), -1) << "the device is closed all the same";
}

// Letters of bits are dots of their own two colours, whatever colour lines have.
TEST_F(Cairo, bitmapLettersHaveTheirOwnColours) {
    DSETFONTPATH(TARNSTARTDIR);
    int colours = 0;
    ASSERT_EQ(DINI("PNG", &colours, "a.png", 1, 0.5, 100, 50), 1);
    DGET(DSCREENPATCH(), 1);
    const int red = DRGBCOLOR(1, 0, 0), blue = DRGBCOLOR(0, 0, 1);
    DCOLOR(DRGBCOLOR(0, 1, 0));
    DENQBTXT("L", red, blue, 1, 10, 20, 0, 0);
    DENQBTXT("L", red, red, 1, 40, 20, 0, 0);
    EXPECT_EQ(DGETCOLOR(), DRGBCOLOR(0, 1, 0));
    DMOVE(-1, -1);
    DDRAW(-1, -1);
    DQUIT(0);
    DSETFONTPATH("");
    const image png = readpng("a.png");
    ASSERT_EQ(png.h, 50);
    const auto is = [&](int x, int y, std::vector<int> rgb) { // round dots: their middles
        std::vector<int> at = png.at(x, 49 - y);
        for (size_t k = 0; k < 3; k++)
            if (std::abs(at[k] - rgb[k]) > 90) return false;
        return true;
    };
    EXPECT_TRUE(is(11, 24, {255, 0, 0})); // the stem
    EXPECT_TRUE(is(14, 24, {0, 0, 255}));
    EXPECT_TRUE(is(44, 24, {255, 0, 0}));
}

TEST_F(Cairo, patchesAndNativeTextReachEveryForm) {
    for (const char* device : {"PNG", "SVGP", "PDFP"}) {
        page(device, "a");
        const uint8_t bits[] = {0x1b};
        DSETPATCH(DSCREENPATCH(), DPATCH(nullptr, 0, 0, 2, 2, 2, bits), 10, 10, 0);
        DPOINT(0.1, 0.1);
        DQUIT(0);
        EXPECT_GT(readwhole("a").size(), 100u);
    }
}

} // namespace
