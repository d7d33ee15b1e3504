#include "vellum/vlpath.h"

#include "unit/vellum/harness.h"

#include <cstdlib>

namespace {

class Path : public Vellum {
protected:
    VLPathBuffer p;

    void SetUp() override {
        Vellum::SetUp();
        VLPathInit(&p);
    }
    std::string printed() {
        vlwriter out("path.txt", [] { FAIL(); });
        VLPathDoPrint(&p, out);
        out.close();
        return readwhole("path.txt");
    }
};

const std::string black = "0 0 0 RGB\n";

TEST_F(Path, linesOfOnePath) {
    VLPathMoveTo(&p, 1.4f, 2.6f);
    VLPathLineTo(&p, 10, 20);
    VLPathMoveTo(&p, 10, 20); // stays in the path
    VLPathLineTo(&p, -3.5f, 30);
    VLPathMoveTo(&p, 5, 5);
    VLPathDotAt(&p);
    EXPECT_EQ(printed(), black + "B 1 3 M\n10 20 L\n-4 30 L\n5 5 M\nD\nE\n");
    float box[4];
    VLPathGetBox(&p, box);
    EXPECT_EQ(box[0], -3.5f);
    EXPECT_EQ(box[1], 2.6f);
    EXPECT_EQ(box[2], 10.f);
    EXPECT_EQ(box[3], 30.f);
}

TEST_F(Path, coloursInARowAreOne) {
    VLPathSetRGB(&p, 1, 0, 0);
    VLPathSetRGB(&p, 0.5f, 4 / 15.f, 1);
    VLPathMoveTo(&p, 0, 0);
    VLPathLineTo(&p, 1, 1);
    VLPathSetRGB(&p, 0.5f, 4 / 15.f, 1); // no change
    VLPathLineTo(&p, 2, 2);
    VLPathSetRGB(&p, 0, 0, 0);
    VLPathLineTo(&p, 3, 3);
    EXPECT_EQ(printed(), "0.5 0.266667 1 RGB\nB 0 0 M\n1 1 L\n2 2 L\nE\n" + black + "B 2 2 M\n3 3 L\nE\n");
}

TEST_F(Path, rectanglesAndPolygonsEndThePath) {
    VLPathMoveTo(&p, 0, 0);
    VLPathLineTo(&p, 1, 1);
    VLPathRect(&p, 2, 3, 4, 5);
    const double broken[] = {0, 0, 10, 0, 10, 10, 1e300, 0, 3, 2, 5, 2, 5, 4};
    VLPathPoly(&p, broken, 7, nullptr);
    const double clip[] = {1, 2, 6, 7};
    VLPathPoly(&p, broken, 3, clip);
    VLPathRaw(&p, "4.16667 setlinewidth\n");
    EXPECT_EQ(printed(), black + "B 0 0 M\n1 1 L\nE\n2 3 4 5 R\n"
                                 "B 0 0 M 10 0 L 10 10 L C\n3 2 M 5 2 L 5 4 L C\nF\n"
                                 "gsave 1 2 6 7 RC B 0 0 M 10 0 L 10 10 L C\nF\ngrestore\n"
                                 "4.16667 setlinewidth\n");
    EXPECT_EQ(p.curx, 1e30f) << "the current point is forgotten";
}

TEST_F(Path, textIsEscaped) {
    VLPathMoveTo(&p, 7, 8);
    VLPathText(&p, 10, 12, 90, 4.1666667f, "a(b\\)");
    EXPECT_EQ(printed(), black + "B 7 8 M\nE\n12 HV \ngsave\n7 8 translate 90 rotate 4.166667 4.166667 scale "
                                 "0 0 moveto (a\\(b\\\\\\)) show\ngrestore\n");
    EXPECT_EQ(fault([&] { VLPathText(&p, 1, 1, 0, 1, "x"); }),
              "Assertion failed: p->pathDrawing, file vlpath");
}

TEST_F(Path, imageHasSixtyFourBytesALine) {
    uint8_t bytes[66] = {0x00, 0xff, 0x1a};
    VLPathImage(&p, 1, 2, 22, 1.5f, 22, 1, 24, bytes);
    const std::string first = "00ff1a" + std::string(122, '0'), second = "0000";
    EXPECT_EQ(printed(), black + "gsave\n1 2 translate\n22 1.5 scale\n22 1 8\n[ 22 0 0 1 0 0 ]\n<\n" + first +
                             "\n" + second + ">\nfalse 3\ncolorimage\ngrestore\n");
}

// The text of a long polyline is the same whether it is printed in one buffer or in many.
vlwriter* longout = nullptr;

TEST_F(Path, overflowGoesOnAtThePoint) {
    vlwriter out("long.txt", [] { FAIL(); });
    longout = &out;
    VLPathSetOverflow(&p, [](VLPathBuffer* q) {
        VLPathDoPrint(q, *longout);
        VLPathFlush(q);
    });
    VLPathMoveTo(&p, 0, 0);
    for (int i = 1; i <= 1000; i++) VLPathLineTo(&p, float(i), float(2 * i));
    VLPathDoPrint(&p, out);
    out.close();
    std::istringstream text(readwhole("long.txt"));
    std::string line;
    int lines = 0, lastx = 0;
    while (std::getline(text, line)) {
        int x, y;
        if (line.ends_with(" L") && sscanf(line.c_str(), "%d %d", &x, &y) == 2) {
            EXPECT_EQ(x, lastx + 1);
            EXPECT_EQ(y, 2 * x);
            lastx = x;
            lines++;
        } else if (line.starts_with("B ") && sscanf(line.c_str(), "B %d %d", &x, &y) == 2) {
            EXPECT_EQ(x, lastx) << "a path begins where the last one ended";
        }
    }
    EXPECT_EQ(lines, 1000);
}

TEST_F(Path, aBufferWithNothingNewPrintsNothing) {
    VLPathMoveTo(&p, 1, 1);
    VLPathFlush(&p);
    EXPECT_EQ(printed(), "");
}

TEST_F(Path, whatNeverFitsIsDropped) {
    testing::internal::CaptureStderr();
    VLPathRaw(&p, std::string(3000, 'x'));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "CHECK4: VLPathBuffer too small; skipping command!\n");
    testing::internal::CaptureStderr();
    VLPathLineTo(&p, 1, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "%%VLPathLineTo: no current point!\n");
    EXPECT_EQ(printed(), black);
}

} // namespace
