#include "unit/vellum/harness.h"
#include "vellum/vellum.h"

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

} // namespace
