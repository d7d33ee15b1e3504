// The font files that the build makes, read by a reader of the tests' own, and the library's reader on
// damaged ones.
#include "unit/vellum/fontbytes.h"
#include "unit/vellum/recorder.h"
#include "vellum/vlfont.h"

#include <random>

namespace {

constexpr int faces = 15, capital = 2800;
// Faces 1 to 4 are drawn by strokes; 3, 9 and 10 have one width.
constexpr bool filledface(int k) { return k >= 5; }
constexpr bool fixedface(int k) { return k == 3 || k == 9 || k == 10; }

const fontbytes& built() {
    static const fontbytes file(TARNSTARTDIR "vlfonts.0");
    return file;
}

TEST(FontFile, facesAreComplete) {
    ASSERT_EQ(built().fonts(), uint32_t(faces));
    for (int k = 1; k <= faces; k++) {
        const fontbytes::entry e = built().font(k);
        EXPECT_EQ(e.height, uint32_t(capital));
        EXPECT_EQ(e.flags & 1, filledface(k) ? 1u : 0u) << k;
        EXPECT_EQ((e.flags >> 1) & 1, fixedface(k) ? 0u : 1u) << k;
        size_t most = 0;
        for (int c = 32; c < 127; c++) {
            const fontbytes::glyph g = built().glyphof(k, c);
            ASSERT_TRUE(g.present) << k << ' ' << char(c);
            EXPECT_EQ(g.points.empty(), c == ' ') << k << ' ' << char(c);
            EXPECT_GT(g.advance, 0);
            most = std::max(most, g.points.size());
        }
        EXPECT_LE(most, e.maxpoints);
    }
}

TEST(FontFile, textFacesHaveTheLettersOfWesternEurope) {
    for (const int k : {1, 2, 3, 5, 6, 7, 8, 9, 10, 13, 14}) {
        for (int c = 192; c < 256; c++) {
            const bool left = c == 208 || c == 215 || c == 222 || c == 240 || c == 247 || c == 254;
            EXPECT_EQ(built().glyphof(k, c).present, !left) << k << ' ' << c;
        }
        EXPECT_EQ(built().glyphof(k, 233).points.size() > built().glyphof(k, 'e').points.size(), true);
    }
}

TEST(FontFile, figuresAreEquallyWide) {
    for (int k = 1; k <= faces; k++) {
        for (char c = '0'; c <= '9'; c++) {
            EXPECT_EQ(built().glyphof(k, c).advance, built().glyphof(k, '0').advance) << k << c;
        }
        if (!fixedface(k)) continue;
        for (int c = 32; c < 127; c++)
            EXPECT_EQ(built().glyphof(k, c).advance, built().glyphof(k, 'x').advance);
    }
}

// Letters stand on the line and reach their heights; ink keeps near its advance.
TEST(FontFile, lettersHaveTheirProportions) {
    for (const int k : {1, 3, 5, 6, 9, 10, 13, 14}) {
        for (const char c : std::string("EFHILTZ")) {
            const fontbytes::glyph g = built().glyphof(k, c);
            EXPECT_NEAR(g.low, 0, 2) << k << c;
            EXPECT_NEAR(g.high, capital, 2) << k << c;
        }
        for (const char c : std::string("uvwxz")) EXPECT_NEAR(built().glyphof(k, c).high, 2000, 2) << k << c;
        for (const char c : std::string("gpqy")) EXPECT_LT(built().glyphof(k, c).low, -700) << k << c;
        for (int c = 33; c < 127; c++) {
            const fontbytes::glyph g = built().glyphof(k, c);
            EXPECT_GT(g.left, -0.1 * capital) << k << char(c);
            EXPECT_LT(g.right, g.advance + 0.06 * capital) << k << char(c);
            EXPECT_EQ(g.left, g.toldleft);
            EXPECT_EQ(g.right, g.toldright);
        }
    }
}

// The bars of a filled letter are as thick as the face says: H is two stems and a bar.
TEST(FontFile, stemsHaveTheWidthOfTheFace) {
    const double pens[][3] = {{5, 84, 74}, {6, 132, 112}, {9, 78, 70}, {13, 52, 48}};
    for (const auto& [face, stem, bar] : pens) {
        const fontbytes::glyph g = built().glyphof(int(face), 'H');
        const double between = g.right - g.left - 8 * stem; // units of the file: 4 to one of the source
        double ink = 0;
        for (int y = 0; y < 200; y++) // by scan lines: overlapping shapes count once
            for (int x = 0; x < 400; x++)
                ink += g.covers(g.left + (x + 0.5) / 400 * (g.right - g.left), (y + 0.5) / 200 * capital);
        ink *= (g.right - g.left) / 400 * capital / 200;
        const double expected = 2 * 4 * stem * capital + between * 4 * bar;
        EXPECT_NEAR(ink / expected, 1, 0.02) << face;
    }
}

// No shape of a filled glyph overlaps itself: the even-odd rule and the winding rule agree.
TEST(FontFile, shapesDoNotOverlapThemselves) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> u(0, 1);
    for (int k = 5; k <= faces; k++) {
        for (int c = 33; c < 256; c++) {
            const fontbytes::glyph g = built().glyphof(k, c);
            int differ = 0;
            for (int i = 0; i < 150; i++) {
                const double x = g.left + u(random) * (g.right - g.left),
                             y = g.low + u(random) * (g.high - g.low);
                differ += g.overlaps(x, y);
            }
            EXPECT_LE(differ, 1) << k << ' ' << char(c);
        }
    }
}

// ---- The library's reader

class Fonts : public RecordedText {
protected:
    static void writefile(const std::string& name, const std::string& bytes) {
        std::ofstream(name, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
    }
    // The files of the current directory are the system's.
    static void here() {
        DSETFONTPATH("/nowhere");
        DSETFONTPATH("");
    }
    static void drawall() {
        DCHARSIZE(0.03);
        for (const int f : {1, 5, 0, 7, 33}) {
            DFONT(f);
            DMOVE(0.1, 0.5);
            for (int c = 1; c < 256; c++) DTEXT(std::string(1, char(c)).c_str());
        }
        DENQBTXT("Hamburgefonstiv", 1, 0, 1, 10, 10, 0, 0);
        double q[10];
        for (int c = -1; c < 130; c++) DQFONT(q, c, 2);
    }
};

TEST_F(Fonts, fontsThatAreNotThereAreFontOne) {
    EXPECT_EQ(DFONT(5), 1);
    EXPECT_EQ(DGETFONT(), 5);
    for (const int f : {34, 99, -1, -15, -1000, 20000}) {
        EXPECT_EQ(DFONT(f), 0) << f;
        EXPECT_EQ(DGETFONT(), 1);
    }
    EXPECT_EQ(DFONT(-14), 1);
    EXPECT_EQ(DGETFONT(), -14);
    DDEVICE(nullptr)->ishardware = 0;
    EXPECT_EQ(DFONT(-3), 0);
}

TEST_F(Fonts, aFileThatIsNotThereIsToldOf) {
    DSETFONTPATH("/nowhere");
    const std::string strokes = "Unable to open VELLUM stroked font file (vlfonts.0)\n"
                                "/nowhere/vlfonts.0: No such file or directory";
    EXPECT_EQ(fault([] { DFONT(5); }), strokes);
    EXPECT_EQ(fault([] { DTEXT("a"); }), strokes);
    EXPECT_EQ(
        fault([] { DENQBTXT("a", 1, 0, 1, 0, 0, 0, 0); }),
        "Unable to open VELLUM bitmap font file (bfontfile)\n/nowhere/vlbfonts.0: No such file or directory");
    EXPECT_EQ(fault([] { DFONT(101); }),
              "Unable to open user font file (font0)\nfont0: No such file or directory");
    DSETFONTPATH(TARNSTARTDIR);
    EXPECT_EQ(DFONT(5), 1);
}

TEST_F(Fonts, theUsersFileIsFont0) {
    writefile("font0", readwhole(TARNSTARTDIR "vlfonts.0"));
    EXPECT_EQ(DFONT(106), 1);
    vltextsize user, system;
    DTEXTSIZE(&user, "Sample", 106);
    DTEXTSIZE(&system, "Sample", 6);
    EXPECT_EQ(user.width, system.width);
}

// A file of one font is font 0: its table at 21.
TEST_F(Fonts, aFileOfOneFont) {
    std::string one(20, '\0');
    const auto put = [&](size_t offset, uint32_t v, int size) {
        if (one.size() < offset - 1 + size_t(size)) one.resize(offset - 1 + size_t(size));
        for (int i = 0; i < size; i++) one[offset - 1 + size_t(i)] = char(v >> (8 * i));
    };
    put(1, 21, 4);
    put(5, 100, 4);
    put(9, 8, 4);
    put(21 + 4 * 255, 0, 4);
    const uint32_t at = uint32_t(one.size()) + 1;
    put(21 + 4 * 'A', at, 4);
    const int16_t glyph[] = {3, 80, 0, 50, 0, 0, 50, 0, 50, 100};
    for (size_t i = 0; i < std::size(glyph); i++) put(at + 2 * uint32_t(i), uint16_t(glyph[i]), 2);
    writefile("vlfonts.0", one);
    here();
    EXPECT_EQ(DFONT(0), 1);
    DCHARSIZE(0.1);
    DMOVE(0.2, 0.3);
    DTEXT("A");
    ASSERT_EQ(recorded.lines.size(), 2u);
    EXPECT_NEAR(recorded.lines[1].b.x, 0.25, 1e-9);
    EXPECT_NEAR(recorded.lines[1].b.y, 0.4, 1e-9);
    double x;
    DGETPOS(&x, nullptr, nullptr);
    EXPECT_NEAR(x, 0.28, 1e-9);
}

// A file that was cut off is told of before a letter is left out.
TEST_F(Fonts, aFileThatIsCutOffIsToldOf) {
    const std::string whole = readwhole(TARNSTARTDIR "vlfonts.0");
    const std::string damaged = "Unable to open VELLUM stroked font file (vlfonts.0)\nvlfonts.0 is damaged";
    for (const size_t left : {size_t(300), whole.size() / 20}) {
        writefile("vlfonts.0", whole.substr(0, left));
        here();
        EXPECT_EQ(fault(drawall), damaged) << left;
    }
}

TEST_F(Fonts, damagedFilesNeverCrash) {
    const std::string stroked = readwhole(TARNSTARTDIR "vlfonts.0"),
                      bitmap = readwhole(TARNSTARTDIR "vlbfonts.0");
    std::mt19937 random(9);
    for (int trial = 0; trial < 60; trial++) {
        std::string a = stroked, b = bitmap;
        if (trial % 2) {
            a.resize(random() % (trial % 4 == 1 ? 2000 : a.size()));
            b.resize(random() % b.size());
        }
        for (int i = 0; i < 400 && !a.empty() && !b.empty(); i++) {
            a[random() % (i % 2 ? std::min<size_t>(a.size(), 1500) : a.size())] = char(random());
            b[random() % (i % 2 ? std::min<size_t>(b.size(), 1500) : b.size())] = char(random());
        }
        writefile("vlfonts.0", a);
        writefile("vlbfonts.0", b);
        here();
        const std::string told = fault(drawall);
        EXPECT_TRUE(told.empty() || told.starts_with("Unable to open VELLUM")) << told;
    }
    DSETFONTPATH(TARNSTARTDIR);
    EXPECT_EQ(fault(drawall), "");
}

} // namespace
