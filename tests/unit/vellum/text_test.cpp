// Text: where strokes fall, how the pen moves, measures, pictures of glyphs, bitmaps.
#include "unit/vellum/fontbytes.h"
#include "unit/vellum/recorder.h"
#include "vellum/vlfont.h"
#include "vellum/vlletters.h"

namespace {

class Text : public RecordedText {
protected:
    static vlpoint pen() {
        vlpoint p{};
        DGETPOS(&p.x, &p.y, nullptr);
        return p;
    }
    static vlpoint write(double x, double y, const char* s) {
        DMOVE(x, y);
        DTEXT(s);
        return {pen().x - x, pen().y - y};
    }
    static vltextsize size(const char* s, int font = -1000) {
        vltextsize out;
        DTEXTSIZE(&out, s, font);
        return out;
    }
    // The box of all that was drawn.
    static recordedline box() {
        recordedline b{{1e9, 1e9}, {-1e9, -1e9}};
        const auto add = [&](vlpoint p) {
            if (p.x >= 1e300) return;
            b.a = {std::min(b.a.x, p.x), std::min(b.a.y, p.y)};
            b.b = {std::max(b.b.x, p.x), std::max(b.b.y, p.y)};
        };
        for (const recordedline& l : recorded.lines) add(l.a), add(l.b);
        for (const recordedpolygon& p : recorded.polygons)
            for (const vlpoint q : p) add(q);
        return b;
    }
};

TEST_F(Text, thePenMovesByTheWidths) {
    const fontbytes file(TARNSTARTDIR "vlfonts.0");
    const std::string s = "Residual 12.5";
    for (const int f : {1, 3, 5, 8, 10}) {
        DFONT(f);
        DCHARSIZE(0.028);
        double width = 0;
        for (const char c : s) width += file.glyphof(f, c).advance * 0.028 / 2800;
        const vlpoint moved = write(0.1, 0.2, s.c_str());
        EXPECT_NEAR(moved.x, width, 1e-12) << f;
        EXPECT_EQ(moved.y, 0);
        EXPECT_NEAR(size(s.c_str()).width, width, 1e-12);
    }
}

TEST_F(Text, inkIsWhereItIsMeasured) {
    for (const int f : {1, 2, 5, 7, 9}) {
        recorded = {};
        DFONT(f);
        DCHARSIZE(0.05);
        const vltextsize told = size("Egypt");
        write(0.3, 0.4, "Egypt");
        const recordedline b = box();
        EXPECT_NEAR(b.a.x - 0.3, told.left, 3e-4) << f;
        EXPECT_NEAR(b.b.x - 0.3, told.right, 3e-4) << f;
        EXPECT_NEAR(b.b.y - 0.4, told.ascent, 3e-4) << f;
        EXPECT_NEAR(0.4 - b.a.y, told.descent, 3e-4) << f;
    }
    EXPECT_NEAR(size("HEFI", 5).ascent, 0.05, 1e-12); // the height of capitals is the character size
    EXPECT_NEAR(size("1", 5).descent, 0, 1e-12);
    EXPECT_EQ(size("", 5).width, 0);
}

TEST_F(Text, measuresScaleWithTheSize) {
    DCHARSIZE(0.01);
    const vltextsize small = size("Wave", 6);
    DCHARSIZE(0.25);
    const vltextsize large = size("Wave", 6);
    EXPECT_NEAR(large.width, 25 * small.width, 1e-9);
    EXPECT_NEAR(large.ascent, 25 * small.ascent, 1e-9);
    EXPECT_NEAR(large.right, 25 * small.right, 1e-9);
}

TEST_F(Text, filledFacesAreShapesAndStrokedOnesLines) {
    DFONT(5);
    write(0.1, 0.1, "H");
    EXPECT_EQ(recorded.polygons.size(), 3u);
    EXPECT_TRUE(recorded.lines.empty());
    recorded = {};
    DFONT(1);
    write(0.1, 0.1, "H");
    EXPECT_EQ(recorded.lines.size(), 3u);
    EXPECT_TRUE(recorded.polygons.empty());
}

TEST_F(Text, aLineStyleDoesNotTouchText) {
    DLINESTYLE(0.001, 0.001, 0.001, 0, 0, 0.1, 0);
    DFONT(1);
    write(0.1, 0.1, "H");
    EXPECT_EQ(recorded.lines.size(), 3u);
    EXPECT_TRUE(recorded.polygons.empty());
}

TEST_F(Text, controlCharactersMoveThePen) {
    DFONT(1);
    DCHARSIZE(0.03);
    const double w = size("W").width, i = size("i").width;
    EXPECT_NEAR(write(0.1, 0.9, "W\n").x, w, 1e-12);
    EXPECT_NEAR(write(0.1, 0.9, "W\n").y, -1.666667 * 0.03, 1e-12);
    EXPECT_NEAR(write(0.1, 0.9, "WW\r").x, 0, 1e-12);
    EXPECT_NEAR(write(0.1, 0.9, "W\n\ri").x, i, 1e-12);
    EXPECT_NEAR(write(0.1, 0.9, "Wi\b").x, w, 1e-12);
    EXPECT_NEAR(write(0.1, 0.9, "\001\002").x, 0, 1e-12);
}

TEST_F(Text, startsBeyondTheWindowDrawNothing) {
    DFONT(5);
    DCLIP(1);
    write(1.01, 0.5, "H");
    write(0.5, 1.01, "H");
    EXPECT_TRUE(recorded.polygons.empty());
    write(0.99, 0.5, "H");
    EXPECT_FALSE(recorded.polygons.empty());
}

TEST_F(Text, turnsWithTheTransform) {
    DFONT(5);
    DCHARSIZE(0.05);
    const double w = size("Tarn").width;
    DMOVE(0.5, 0.5);
    DROTATE(90);
    DTRANSFORMON(1);
    DTEXT("Tarn");
    EXPECT_NEAR(pen().x, 0.5, 1e-9);
    EXPECT_NEAR(pen().y, 0.5 + w, 1e-9);
    const recordedline b = box();
    EXPECT_NEAR(b.b.x, 0.5, 0.002);
    EXPECT_NEAR(b.a.x, 0.5 - 0.0507, 0.002);
    EXPECT_GT(b.a.y, 0.499);
}

TEST_F(Text, keepsItsShapeInAnyWindow) {
    DFONT(5);
    DCHARSIZE(0.05);
    write(0.25, 0.5, "Rgb");
    const recordedline plain = box();
    recorded = {};
    DWINDOW(0, 4000, 10, 10.001);
    DMOVE(1000, 10.0005);
    DTEXT("Rgb");
    const recordedline other = box();
    EXPECT_NEAR(other.a.x, plain.a.x, 1e-9);
    EXPECT_NEAR(other.b.y, plain.b.y, 1e-9);
}

TEST_F(Text, aNegativeSizeMirrors) {
    DFONT(1);
    DCHARSIZE(-0.05);
    EXPECT_EQ(DGETCHARSIZE(), -0.05);
    EXPECT_LT(write(0.5, 0.5, "L").x, 0);
    EXPECT_LE(box().b.x, 0.5);
    DCHARSIZE(0);
    DCHARSIZE(NAN);
    EXPECT_EQ(DGETCHARSIZE(), -0.05);
}

// Smaller text keeps nearer to its outlines; large text has no more points than show.
TEST_F(Text, theCacheStartsAnewAndTextStillDraws) {
    DFONT(5);
    DCHARSIZE(0.02);
    write(0.1, 0.1, "Sample");
    const auto first = recorded.polygons;
    for (int k = 0; k < 4; k++) {
        DCHARSIZE(0.01 + 0.001 * k);
        for (int c = 33; c < 127; c++) write(0.1, 0.5, std::string(1, char(c)).c_str());
    }
    EXPECT_LE(vlfontstate().glyphs.size(), vlfonts::mostglyphs);
    recorded = {};
    DCHARSIZE(0.02);
    write(0.1, 0.1, "Sample");
    ASSERT_EQ(recorded.polygons.size(), first.size());
    for (size_t i = 0; i < first.size(); i++) ASSERT_EQ(recorded.polygons[i].size(), first[i].size());
}

TEST_F(Text, coloursAndPicturesKeepText) {
    DFONT(1);
    DCHARSIZE(0.05);
    write(0.1, 0.1, "Tag");
    const size_t direct = recorded.lines.size();
    const recordedline plain = box();
    vlpicture* picture = DNEWPIC();
    write(0.1, 0.1, "Tag");
    DCLOSEPIC();
    DSETFONTPATH("/nowhere"); // a picture needs no font file
    recorded = {};
    DPSHOW(picture, nullptr);
    EXPECT_EQ(recorded.lines.size(), direct);
    EXPECT_NEAR(box().a.x, plain.a.x, 2e-4);
    EXPECT_NEAR(box().b.y, plain.b.y, 2e-4);
}

TEST_F(Text, filledTextInAPicture) {
    DFONT(6);
    DCHARSIZE(0.1);
    vlpicture* picture = DNEWPIC();
    write(0.1, 0.1, "I");
    DCLOSEPIC();
    recorded = {};
    DPSHOW(picture, nullptr);
    EXPECT_NEAR(double(recorded.lines.size()), 101, 2); // a line for each dot of its height
    for (const recordedline& l : recorded.lines) EXPECT_NEAR(l.length(), 132.0 / 700 * 0.1, 3e-4);
}

TEST_F(Text, nativeFontsGoToTheDevice) {
    DFONT(-7);
    DCHARSIZE(0.02);
    const vlpoint moved = write(0.1, 0.1, "Native");
    ASSERT_EQ(recorded.texts.size(), 1u);
    EXPECT_EQ(recorded.texts[0], "Native");
    EXPECT_NEAR(moved.x, 1.5 * 0.02 * 6, 1e-12);
    EXPECT_NEAR(size("Native").width, 0.02 * 6, 1e-12); // the device has no measure of its own
    EXPECT_NEAR(size("Native").ascent, 0.02, 1e-12);
}

struct letterrow {
    const char* bytes;
    int code;
    bool symbol;
};
TEST_F(Text, lettersOfUtf8) {
    const letterrow rows[] = {
        {"a", 'a', false},         {"\xc2\xb5", 'm', true},     {"\xce\xb1", 'a', true},
        {"\xc2\xb0", 176, true},   {"\xe2\x89\xa4", 163, true}, {"\xe2\x88\x92", '-', false},
        {"\xff", 0xff, false},     {"\xc3", 0xc3, false},       {"\xe2\x89", 0xe2, false},
        {"\xc3\xa9", 0xe9, false}, {"\xc2\xb2", 0xb2, false},   {"\xc2\x80", 0xc2, false}};
    for (const letterrow& row : rows) {
        vlletters letters(row.bytes);
        const vlletter got = letters.next();
        EXPECT_EQ(got.code, row.code) << row.bytes;
        EXPECT_EQ(got.symbol, row.symbol) << row.bytes;
    }
    EXPECT_NEAR(size("\xce\xa9", 6).width, size("W", 12).width, 1e-12);
}

// ---- Bitmap text

class BitmapText : public Vellum {
protected:
    void SetUp() override {
        Vellum::SetUp();
        DSETFONTPATH(TARNSTARTDIR);
        memory(80, 40, 8);
    }
    void TearDown() override {
        DSETFONTPATH("");
        Vellum::TearDown();
    }
    // The pixels of a rectangle as rows from the top: # 1, o 2, - 3, . the paper.
    static std::string rows(int x, int y, int w, int h) {
        std::string out;
        for (int j = h - 1; j >= 0; j--) {
            for (int i = 0; i < w; i++) {
                const uint32_t p = DPIXEL(DSCREENPATCH(), x + i, y + j, 0, 0);
                out += p == ink ? '#' : p == back ? 'o' : '.';
            }
            out += '\n';
        }
        return out;
    }
    static int count(const std::string& s, char c) { return int(std::count(s.begin(), s.end(), c)); }
    static uint32_t ink, back;
    static void learncolours() {
        DWINDOW(0, 1, 0, 1);
        DCOLOR(1);
        DPOINT(0, 0);
        ink = DPIXEL(DSCREENPATCH(), 0, 0, 0, 0);
        DCOLOR(2);
        DPOINT(0, 0);
        back = DPIXEL(DSCREENPATCH(), 0, 0, 0, 0);
        DERASE(DSCREENPATCH(), 0);
    }
};
uint32_t BitmapText::ink, BitmapText::back;

TEST_F(BitmapText, standsOnItsBaseline) {
    learncolours();
    DENQBTXT("L", 1, -1, 1, 10, 20, 0, 0);
    EXPECT_EQ(rows(10, 16, 8, 16),
              "........\n........\n.#......\n.#......\n.#......\n.#......\n.#......\n.#......\n"
              ".#......\n.#......\n.#......\n.######.\n........\n........\n........\n........\n");
}

TEST_F(BitmapText, coloursMayBeTransparent) {
    learncolours();
    double q[10];
    DQFONT(q, 'L', 1);
    EXPECT_EQ(q[1], 8);
    EXPECT_EQ(q[2], 16);
    EXPECT_EQ(q[3], 12);
    EXPECT_EQ(q[4], 1);
    EXPECT_EQ(q[5], 7);
    const int bits = 9 + 6;
    const int modes[][4] = {{1, 2, bits, 128 - bits}, {1, -1, bits, 0},
                            {-1, 2, 0, 128 - bits},   {-1, -1, 0, 0},
                            {1, 1, 128, 0},           {2, 2, 0, 128}}; // equal colours are a bar
    for (const auto& [fg, bg, fore, ground] : modes) {
        DERASE(DSCREENPATCH(), 0);
        DENQBTXT("L", fg, bg, 1, 10, 20, 0, 0);
        const std::string all = rows(0, 0, 80, 40);
        EXPECT_EQ(count(all, '#'), fore);
        EXPECT_EQ(count(all, 'o'), ground);
    }
}

TEST_F(BitmapText, stepsAndEnds) {
    learncolours();
    const auto inkof = [](const char* s, int x, int xspace) {
        DERASE(DSCREENPATCH(), 0);
        DENQBTXT(s, 1, -1, 1, x, 20, xspace, 0);
        return rows(0, 0, 80, 40);
    };
    EXPECT_EQ(inkof("L\bL", 10, 0), inkof("L", 10, 0));
    EXPECT_EQ(inkof(" L", 10, 3), inkof("L", 21, 0));
    EXPECT_EQ(inkof("\rL", 10, 0), inkof("L", 10, 0));
    EXPECT_EQ(count(inkof("LLLLLLLLLLLLLLLLLLLLLL", 0, 0), '#'), 10 * 15);
    EXPECT_EQ(count(inkof("L", 200, 0), '#'), 0);
    EXPECT_EQ(count(inkof("L", -1000, 0), '#'), 0);
}

TEST_F(BitmapText, theDefaultSuitsTheDevice) {
    double q[10];
    DQFONT(q, 'A', 0);
    EXPECT_EQ(q[1] * 100 + q[2], 816);
    DQFONT(q, 'A', 3);
    EXPECT_EQ(q[1] * 100 + q[2], 3050);
    DQUIT(0);
    vlsetdeviceoperations(VLLJ2P, recorderoperations());
    page("LJ2P", "a.lj");
    DQFONT(q, 'A', 0);
    EXPECT_EQ(q[1] * 100 + q[2], 3050);
    DFONT(-3);
    EXPECT_EQ(fault([&] { DQFONT(q, 'A', -1); }),
              "\nDENQBTXT: Font info unavailable for current (hardware) font");
    DQUIT(0);
    vlsetdeviceoperations(VLLJ2P, nullptr);
}

} // namespace
