#include "unit/vellum/harness.h"

#include <algorithm>
#include <cmath>

namespace {

// The rows of a memory patch of depth 1 to 8 from the top, a digit a pixel.
std::string pixels(vlpatch* patch) {
    int w, h;
    DPATCHSIZE(patch, &w, &h, nullptr);
    std::string s;
    for (int y = h - 1; y >= 0; y--) {
        for (int x = 0; x < w; x++) s += "0123456789abcdef"[DPIXEL(patch, x, y, 0, 0) & 15];
        s += '\n';
    }
    return s;
}

class Picture : public Vellum {};
class Patch : public Vellum {};

uint32_t move(int x, int y) { return uint32_t(x & 0x7fff) << 15 | uint32_t(y & 0x7fff); }
uint32_t line(int x, int y) { return 0x40000000u | move(x, y); }
uint32_t point(int x, int y) { return 0x80000000u | move(x, y); }
constexpr int one = 16384; // a normal unit

TEST_F(Picture, wordsOfMovesLinesAndPoints) {
    memory(100, 100, 8);
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* p = DNEWPIC();
    DMOVE(0, 0);
    DDRAW(0.25, 0.5);
    DDRAW(0.5, 0.5);
    DDRAW(0.75, 0.5); // the same direction: still a word of its own
    DPOINT(0.125, 0.25);
    DCOLOR(3);
    DMOVE(0.125, 0.25);
    DDRAW(0, 0.25);
    DLINEWIDTH(1);
    DLINEWIDTH(0);
    EXPECT_EQ(DPICWORDS(p), (std::vector<uint32_t>{move(0, 0), line(one / 4, one / 2), line(one / 2, one / 2),
                                                   line(3 * one / 4, one / 2), point(one / 8, one / 4),
                                                   0xc0000003, line(0, one / 4), 0xe0000003, 0xe0000000}));
    EXPECT_EQ(DPICSTATE(p), -1);
}

// The line before a call of a patch is recorded before it, also when a style holds it back.
TEST_F(Picture, aPatchIsCalledBehindTheLineBeforeIt) {
    memory(100, 100, 8);
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 1, 0, 1);
    vlpatch* patch = DPATCH(nullptr, 0, 0, 2, 2, 8, nullptr);
    vlpicture* p = DNEWPIC();
    DLINESTYLE(1, 0.5, 1, 0, 0, 0, 0);
    DMOVE(0, 0);
    DDRAW(0.25, 0.5);
    DENQPATCH(patch);
    const auto words = DPICWORDS(p);
    ASSERT_EQ(words.size(), 4u);
    EXPECT_EQ(words[1], line(one / 4, one / 2));
    EXPECT_EQ(words[2] & 0xfc000000, 0xd0000000);
    DLINESTYLE(0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(DPICWORDS(p).size(), 4u);
}

TEST_F(Picture, linesBeyondTheWordsRangeGoOnByAMove) {
    memory(100, 100, 8);
    DCLIP(0);
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* p = DNEWPIC();
    DMOVE(0.5, 0);
    DDRAW(4.5, 1); // leaves the range at x = 1
    DDRAW(-0.5, 0.25);
    const auto words = DPICWORDS(p);
    ASSERT_EQ(words.size(), 4u);
    EXPECT_EQ(words[0], move(one / 2, 0));
    EXPECT_EQ(words[1] >> 30, 1u);
    EXPECT_EQ(words[1] >> 15 & 0x7fff, 16383u);
    EXPECT_EQ(words[2] >> 30, 0u);
    EXPECT_EQ(words[2] >> 15 & 0x7fff, 16383u);
    EXPECT_EQ(words[3], line(-one / 2, one / 4));
}

TEST_F(Picture, aFullChunkHasNoEmptyNext) {
    memory(100, 100, 8);
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* p = DNEWPIC();
    DMOVE(0, 0);
    for (int i = 1; i < 600; i++) {
        DDRAW(i % 2, i / 1000.0);
        ASSERT_EQ(DPICWORDS(p).size(), size_t(i) + 1);
    }
    const auto words = DPICWORDS(p);
    DCLOSEPIC();
    EXPECT_EQ(DPICSTATE(p), 1);
    DAPPEND(p, 0);
    EXPECT_EQ(DPICSTATE(p), -1);
    DDRAW(0.5, 0.5);
    const auto longer = DPICWORDS(p);
    EXPECT_TRUE(std::equal(words.begin(), words.end(), longer.begin()));
    EXPECT_EQ(longer.size(), words.size() + 3) << "colour, move, line";
}

TEST_F(Picture, isPlayedOntoPixels) {
    memory(5, 5, 4);
    DWINDOW(0, 4, 0, 4);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* p = DNEWPIC();
    DMOVE(0, 0);
    DDRAW(4, 4);
    DCOLOR(2);
    DMOVE(0, 4);
    DDRAW(4, 4);
    DCLOSEPIC();
    EXPECT_EQ(pixels(DSCREENPATCH()), "00000\n00000\n00000\n00000\n00000\n") << "recorded only";
    DPOST(p, 0);
    EXPECT_EQ(DPICSTATE(p), 2);
    EXPECT_EQ(pixels(DSCREENPATCH()), "22222\n00010\n00100\n01000\n10000\n");
    EXPECT_EQ(DGETCOLOR(), 2) << "the client's colour stays";
    DUNPOST(p, 3);
    EXPECT_EQ(pixels(DSCREENPATCH()), "33333\n33333\n33333\n33333\n33333\n");
    DPICPOSITION(p, 0.25, 0);
    DPSHOW(p, nullptr);
    EXPECT_EQ(pixels(DSCREENPATCH()), "32222\n33331\n33313\n33133\n31333\n");
}

TEST_F(Picture, isPlayedIntoAPatchOfAnySize) {
    memory(50, 50, 8);
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* p = DNEWPIC();
    DMOVE(0, 1);
    DDRAW(1, 0);
    DCLOSEPIC();
    vlpatch* small = DPATCH(nullptr, 0, 0, 3, 3, 1, nullptr);
    DPSHOW(p, small);
    EXPECT_EQ(pixels(small), "100\n010\n001\n");
    EXPECT_EQ(DCURRENTPATCH(), DSCREENPATCH());
    for (const int depth : {1, 2, 4, 8, 12, 15, 16, 24, 32}) {
        vlpatch* patch = DPATCH(nullptr, 0, 0, 41, 23, depth, nullptr);
        DERASE(patch, 0);
        DPSHOW(p, patch);
        const uint32_t paper = DPIXEL(patch, 5, 0, 0, 0), pen = DPIXEL(patch, 40, 0, 0, 0);
        EXPECT_EQ(paper, depth < 12 ? 0 : (uint64_t(1) << std::min(depth, 24)) - 1) << depth;
        EXPECT_EQ(pen, depth < 12 ? 1 : 0) << depth;
    }
}

TEST_F(Picture, prioritiesAscend) {
    memory(3, 1, 4);
    DWINDOW(0, 1, -1, 1);
    DVIEWPORT(0, 1, 0, 0.5);
    vlpicture* p[3];
    for (int i = 0; i < 3; i++) {
        p[i] = DNEWPIC();
        DCOLOR(4 + i);
        DMOVE(i / 2.0, -1);
        DDRAW(1, -1);
        DCLOSEPIC();
    }
    DPOST(p[0], 0);
    DPOST(p[1], 0);
    DPOST(p[2], 0);
    DPOST(p[2], 0); // already posted
    DPSHOW(nullptr, nullptr);
    EXPECT_EQ(pixels(DSCREENPATCH()), "444\n") << "of equals the newest is played first";
    DPRIORITY(p[2], 2);
    DPRIORITY(p[1], 1);
    DPSHOW(nullptr, nullptr);
    EXPECT_EQ(pixels(DSCREENPATCH()), "456\n");
    DUNPOST(p[1], 0);
    EXPECT_EQ(pixels(DSCREENPATCH()), "446\n");
    DKILL(p[2], 0);
    EXPECT_EQ(pixels(DSCREENPATCH()), "444\n");
}

TEST_F(Picture, openAndPostedDrawsAsItRecords) {
    memory(3, 1, 4);
    DWINDOW(0, 1, -1, 1);
    DVIEWPORT(0, 1, 0, 0.5);
    vlpicture* p = DNEWPIC();
    DPOST(p, 0);
    EXPECT_EQ(DPICSTATE(p), 0);
    DMOVE(0, -1);
    DDRAW(0.5, -1);
    EXPECT_EQ(pixels(DSCREENPATCH()), "110\n");
    EXPECT_EQ(DPICWORDS(p).size(), 2u);
    DTOPPATCH(DSCREENPATCH());
    EXPECT_EQ(DPICSTATE(p), -1) << "a change of the target unposts";
    DCLOSEPIC();
    DAPPEND(p, 1);
    EXPECT_EQ(DPICSTATE(p), 0);
    DNEWPIC();
    EXPECT_EQ(DPICSTATE(p), 2);
}

TEST_F(Picture, calledPicturesAreTurnedAndPlaced) {
    memory(9, 9, 4);
    DWINDOW(0, 8, 0, 8);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* arrow = DNEWPIC();
    DMOVE(0, 0);
    DDRAW(3, 0);
    DDRAW(3, 1);
    vlpicture* scene = DNEWPIC();
    DMOVE(1, 1);
    DENQPIC(arrow);
    double x, y;
    DGETPOS(&x, &y, nullptr);
    EXPECT_NEAR(x, 4, 1e-3) << "the pen moves by the last point of the picture";
    EXPECT_NEAR(y, 2, 1e-3);
    DROTATE(90);
    DTRANSFORMON(1);
    DTRANSFORMON(0);
    DMOVE(8, 4);
    DTRANSFORMON(1);
    DENQPIC(arrow);
    DRESETTRANSFORM();
    DCLOSEPIC();
    DPSHOW(scene, nullptr);
    EXPECT_EQ(pixels(DSCREENPATCH()), "000000000\n000000011\n000000001\n000000001\n000000001\n"
                                      "000000000\n000010000\n011110000\n000000000\n");
}

TEST_F(Picture, aCalledPictureLivesAsLongAsItsCallers) {
    memory(9, 9, 4);
    vlpicture* called = DNEWPIC();
    DMOVE(0, 0);
    DDRAW(1, 1);
    vlpicture* one_ = DNEWPIC();
    DENQPIC(called);
    vlpicture* two = DNEWPIC();
    DENQPIC(called);
    DENQPIC(called);
    DCLOSEPIC();
    DKILL(called, -1);
    EXPECT_EQ(DPICSTATE(called), 3);
    EXPECT_EQ(fault([&] { DPOST(called, 0); }), "Illegal picture pointer argument provided in DPOST");
    DKILL(one_, -1);
    EXPECT_EQ(DPICSTATE(called), 3);
    DKILL(two, -1);
    EXPECT_EQ(fault([&] { DPICSTATE(called); }), "Illegal picture pointer argument provided in DPICSTATE");
}

TEST_F(Picture, cannotCallItself) {
    memory(9, 9, 4);
    vlpicture* inner = DNEWPIC();
    vlpicture* outer = DNEWPIC();
    DENQPIC(inner);
    EXPECT_EQ(fault([&] { DENQPIC(outer); }), "DENQPIC: a picture cannot call itself");
    DAPPEND(inner, 0);
    EXPECT_EQ(fault([&] { DENQPIC(outer); }), "DENQPIC: a picture cannot call itself");
}

TEST_F(Picture, badHandlesNameTheCall) {
    memory(9, 9, 4);
    vlpicture* p = DNEWPIC();
    vlpatch* patch = DPATCH(nullptr, 0, 0, 2, 2, 1, nullptr);
    DKILL(p, -1);
    DKILLPATCH(patch);
    EXPECT_EQ(DCURRENTPICTURE(), nullptr);
    EXPECT_EQ(fault([&] { DKILL(p, -1); }), "Illegal picture pointer argument provided in DKILL");
    EXPECT_EQ(fault([&] { DPSHOW(p, nullptr); }), "Illegal picture pointer argument provided in DPSHOW");
    EXPECT_EQ(fault([&] { DERASE(patch, 0); }), "Illegal picture pointer argument provided in DERASE");
    EXPECT_EQ(fault([&] { DTOPPATCH(reinterpret_cast<vlpatch*>(p)); }),
              "Illegal picture pointer argument provided in DTOPPATCH");
    EXPECT_EQ(fault([&] { DPRIORITY(nullptr, 1); }),
              "Illegal picture pointer argument provided in DPRIORITY");
}

TEST_F(Patch, badSizesAndParents) {
    memory(20, 10, 8);
    const auto bad = [](vlpatch* parent, int x, int y, int w, int h, int depth) {
        return fault([&] { DPATCH(parent, x, y, w, h, depth, nullptr); });
    };
    const char* message = "Invalid patch specifications in DPATCH";
    EXPECT_EQ(bad(nullptr, 0, 0, 0, 5, 1), message);
    EXPECT_EQ(bad(nullptr, 0, 0, 40000, 5, 1), message);
    EXPECT_EQ(bad(nullptr, 0, 0, 5, 5, 7), "VELLUM: unsupported display mode requested");
    EXPECT_EQ(bad(DSCREENPATCH(), -1, 0, 5, 5, 0), message);
    EXPECT_EQ(bad(DSCREENPATCH(), 16, 0, 5, 5, 0), message);
    EXPECT_EQ(bad(DSCREENPATCH(), 15, 5, 5, 5, 0), "");
}

TEST_F(Patch, everyDepthKeepsItsPixelsApart) {
    memory(20, 10, 8);
    for (const int depth : {1, 2, 4, 8, 12, 15, 16, 24, 32}) {
        const uint32_t all = uint32_t((uint64_t(1) << depth) - 1);
        vlpatch* patch = DPATCH(nullptr, 0, 0, 7, 5, depth, nullptr);
        const auto value = [&](int x, int y) {
            return uint32_t(x * 2654435761u + unsigned(y) * 40503u) & all;
        };
        for (int y = 0; y < 5; y++) {
            for (int x = 0; x < 7; x++) DPIXEL(patch, x, y, value(x, y), all);
        }
        for (int y = 0; y < 5; y++) {
            for (int x = 0; x < 7; x++) ASSERT_EQ(DPIXEL(patch, x, y, 0, 0), value(x, y)) << depth;
        }
        DPIXEL(patch, 3, 3, 0, 1); // one bit alone
        EXPECT_EQ(DPIXEL(patch, 3, 3, 0, 0), value(3, 3) & ~1u);
        EXPECT_EQ(DPATCHBITS(patch).size(), size_t(35 * depth / 8 + 5));
        EXPECT_EQ(fault([&] { DPIXEL(patch, 7, 0, 0, 0); }), "Specified pixel is outside patch in DPIXEL\n");
        EXPECT_EQ(fault([&] { DPIXEL(patch, 0, -1, 0, 0); }), "Specified pixel is outside patch in DPIXEL\n");
    }
}

TEST_F(Patch, copiesTheOverlapOnly) {
    memory(4, 3, 4);
    const uint8_t bits[] = {0x12, 0x30}; // 2 by 2: 1 2 below 3 0
    vlpatch* source = DPATCH(nullptr, 0, 0, 2, 2, 4, bits);
    DSETPATCH(DSCREENPATCH(), source, 3, 2, -1);
    DSETPATCH(DSCREENPATCH(), source, -1, -1, -1);
    EXPECT_EQ(pixels(DSCREENPATCH()), "0001\n0000\n0000\n");
    DERASE(DSCREENPATCH(), 7);
    DSETPATCH(DSCREENPATCH(), source, 1, 0, 0); // 0 is left out
    EXPECT_EQ(pixels(DSCREENPATCH()), "7777\n7377\n7127\n");
    DSETPATCH(DSCREENPATCH(), source, 4, 0, -1);
    DSETPATCH(DSCREENPATCH(), source, 2000000000, 2000000000, -1);
    EXPECT_EQ(pixels(DSCREENPATCH()), "7777\n7377\n7127\n");
}

TEST_F(Patch, rasterOperationsHaveTheirTruthTables) {
    memory(2, 2, 4);
    const auto result = [](int op, int operand, uint32_t pixel) {
        vlpatch* patch = DPATCH(nullptr, 0, 0, 1, 1, 4, nullptr);
        DPIXEL(patch, 0, 0, pixel, 15);
        DDOPS(patch, op, operand);
        const uint32_t r = DPIXEL(patch, 0, 0, 0, 0);
        DKILLPATCH(patch);
        return r;
    };
    const uint32_t s = 0b1100, d = 0b1010;
    const uint32_t expected[16] = {0,        s & d,    s & ~d, s,      ~s & d, d,      s ^ d,    s | d,
                                   ~(s | d), ~(s ^ d), ~d,     s | ~d, ~s,     ~s | d, ~(s & d), 15};
    for (int op = 0; op < 16; op++) EXPECT_EQ(result(op, int(s), d), expected[op] & 15) << op;
    EXPECT_EQ(fault([] { DDOPS(DSCREENPATCH(), 16, 0); }), "Invalid raster operation specified to DDOPS");
}

TEST_F(Patch, childrenDrawIntoTheirRoot) {
    memory(6, 5, 4);
    vlpatch* child = DPATCH(DSCREENPATCH(), 1, 1, 4, 3, 0, nullptr);
    vlpatch* grandchild = DPATCH(child, 1, 1, 2, 2, 0, nullptr);
    DERASE(child, 2);
    DERASE(grandchild, 3);
    EXPECT_EQ(pixels(DSCREENPATCH()), "000000\n023320\n023320\n022220\n000000\n");
    DTOPPATCH(grandchild);
    DWINDOW(0, 1, 0, 1);
    DCLIP(0);
    DMOVE(-5, -5);
    DDRAW(5, 5); // no farther than the patch, clip or no clip
    EXPECT_EQ(pixels(DSCREENPATCH()), "000000\n023120\n021320\n022220\n000000\n");
    DKILLPATCH(child);
    EXPECT_EQ(DCURRENTPATCH(), DSCREENPATCH());
    EXPECT_EQ(fault([&] { DERASE(grandchild, 0); }), "Illegal picture pointer argument provided in DERASE");
}

// The same scene at every depth: what is pen in one is pen in the others.
TEST_F(Patch, takesASceneAtEveryDepth) {
    page("PSP", "a.ps");
    std::string first;
    for (const int depth : {1, 2, 4, 8, 12, 15, 16, 24, 32}) {
        vlpatch* patch = DPATCH(nullptr, 0, 0, 60, 40, depth, nullptr);
        DERASE(patch, 0);
        DTOPPATCH(patch);
        DWINDOW(-3, 3, -2, 2);
        const double triangle[] = {3, 2, -2, -1, 2, -1, 0, 1.5};
        DPOLYGON(triangle, 0, 0, 1);
        DLINESTYLE(0, 0, 0, 0, 0, 0.05, 0);
        DMOVE(-3, -2);
        DDRAW(3, 2);
        DLINESTYLE(0, 0, 0, 0, 0, 0, 0);
        const uint32_t paper = DPIXEL(patch, 0, 39, 0, 0);
        std::string shape;
        for (int y = 0; y < 40; y++) {
            for (int x = 0; x < 60; x++) shape += DPIXEL(patch, x, y, 0, 0) == paper ? '.' : '#';
            shape += '\n';
        }
        if (first.empty()) first = shape;
        EXPECT_EQ(shape, first) << depth;
    }
    const auto drawn = std::count(first.begin(), first.end(), '#');
    EXPECT_GT(drawn, 350);
    EXPECT_LT(drawn, 750);
    DTOPPATCH(DSCREENPATCH());
}

TEST_F(Patch, ofAnotherDepthIsConverted) {
    memory(2, 1, 24);
    const int red = DRGBCOLOR(1, 0, 0);
    EXPECT_EQ(red, 0xff0000);
    DCOLOR(red);
    vlpatch* fifteen = DPATCH(nullptr, 0, 0, 2, 1, 15, nullptr);
    DERASE(fifteen, red);
    EXPECT_EQ(DPIXEL(fifteen, 0, 0, 0, 0), 31u << 10);
    DSETPATCH(DSCREENPATCH(), fifteen, 0, 0, -1);
    EXPECT_EQ(DPIXEL(DSCREENPATCH(), 1, 0, 0, 0), 0xff0000u);
}

} // namespace
