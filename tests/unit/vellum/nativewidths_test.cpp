#include "vellum/vellum.h"

#include <gtest/gtest.h>

namespace {

struct widthcase {
    int font;
    const char* text;
    double em; // width by the published metrics
};

// A character height of 0.02 gives letters of 11 points, which are drawn at 0.8 of it.
TEST(nativewidths, AreThoseOfThePublishedMetrics) {
    int ncolors = 0;
    ASSERT_EQ(DINI("PSL", &ncolors, nullptr, 0, 0, 0, 0), 1);
    const double em = 0.02 * 550 * 0.8 / 72 / 10.444444;
    DCHARSIZE(0.02);
    const widthcase rows[] = {
        {-2, "iiii", 2.4},
        {-6, "Times", 0.611 + 0.278 + 0.778 + 0.444 + 0.389},
        {-7, "A-1", 0.722 + 0.333 + 0.5},
        {-10, "0.25", 1.946},
        {-12, "0.25", 1.946},
        {-11, "M", 0.833},
        {-14, "q", 0.521},
        {-10, "", 0},
    };
    for (const widthcase& row : rows) {
        vltextsize size{};
        DTEXTSIZE(&size, row.text, row.font);
        EXPECT_NEAR(size.width, row.em * em, 1e-9) << row.font << row.text;
    }
    DQUIT(0);
}

} // namespace
