// Numbers as text: tables worked by hand, and what must hold for every double.
#include "interp/base/numtext.h"
#include "support/printed.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

namespace {

std::string text(double x, const numberformat& f) { return numstring(x, f); }

numberformat style(int intpos, int fracpos, int leadmode = 0, int trailmode = 0, int small = 2, int exp = 0) {
    return {int16_t(intpos),
            int16_t(fracpos),
            int16_t(leadmode),
            int16_t(trailmode),
            int16_t(small),
            int16_t(exp),
            ""};
}

struct numtexttest : printingtest {
    void SetUp() override {
        printingtest::SetUp();
        nformat = {};
    }
    void TearDown() override {
        printingtest::TearDown();
        nformat = {};
    }
    std::string parse(const char* format) {
        return textof([&] { parsenformat(format); });
    }
};

TEST_F(numtexttest, floatingStylesOf8Digits) {
    const double third = 1.0 / 3, pi = 3.14159265358979324;
    const struct {
        double x;
        const char *fill, *before, *behind, *always; // styles -1, -2, -3, -4
    } rows[] = {
        {0, "0", "0", "0", "0"},
        {3, "3", "3", "3", "3"},
        {-3, "-3", "-3", "-3", "-3"},
        {12, "12", "12", "12", "1.2E1"},
        {100, "100", "100", "100", "1E2"},
        {0.5, "0.5", "0.5", "0.5", "5E-1"},
        {-0.5, "-.5", "-.5", "-.5", "-5E-1"}, // the sign takes the position of the zero
        {0.1, "0.1", "0.1", "0.1", "1E-1"},
        {1e-3, "0.001", "0.001", "0.001", "1E-3"},
        {third, ".33333333", ".33333333", ".33333333", "3.3333333E-1"}, // all 8 positions hold digits
        {pi, "3.1415927", "3.1415927", "3.1415927", "3.1415927"},
        {123456.789, "123456.79", "123456.79", "123456.79", "1.2345679E5"},
        {12345678, "12345678", "12345678", "12345678", "1.2345678E7"},
        {123456789, "12345679E1", ".12345679E9", "1.2345679E8", "1.2345679E8"},
        {1e7, "10000000", "10000000", "10000000", "1E7"},
        {1e10, "10000000E3", "0.1E11", "1E10", "1E10"},
        {1e-8, ".00000001", ".00000001", ".00000001", "1E-8"},
        {1e-9, ".00000001E-1", "0.1E-8", "1E-9", "1E-9"},
        {1.0 / 30, ".33333333E-1", ".33333333E-1", "3.3333333E-2", "3.3333333E-2"},
        {99999999.6, "10000000E1", "0.1E9", "1E8", "1E8"}, // rounding carries
        {1e-300, ".00000001E-292", "0.1E-299", "1E-300", "1E-300"},
        {1.7976931348623157e308, "17976931E301", ".17976931E309", "1.7976931E308", "1.7976931E308"},
        {4.94e-324, ".49406565E-323", ".49406565E-323", "4.9406565E-324", "4.9406565E-324"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text(row.x, style(-1, 8)), row.fill) << row.x;
        EXPECT_EQ(text(row.x, style(-2, 8)), row.before) << row.x;
        EXPECT_EQ(text(row.x, style(-3, 8)), row.behind) << row.x;
        EXPECT_EQ(text(row.x, style(-4, 8)), row.always) << row.x;
    }
}

TEST_F(numtexttest, fixedForms) {
    const struct {
        double x;
        int intpos, fracpos, small;
        const char* says;
    } rows[] = {
        {123.456, 5, 2, 2, "123.46"},
        {-123.456, 5, 2, 2, "-123.46"},
        {9.996, 5, 2, 2, "10"},
        {99999.996, 5, 2, 2, "10000E1"}, // rounding makes it too large
        {123456.789, 5, 2, 2, "12345.68E1"},
        {1e10, 5, 2, 2, "10000E6"},
        {0.125, 5, 2, 2, "0.12"}, // a tie, to even
        {0.375, 5, 2, 2, "0.38"},
        {1.0 / 3, 5, 4, 2, "0.3333"},
        {0.0666, 5, 2, 2, "6.7E-2"}, // two digits do not fit: the exponent form with two
        {0.0666, 5, 2, 1, "0.07"},   // one does
        {0.0666, 5, 3, -2, "0.067"}, // as many as fit
        {0.00666, 5, 2, -2, "6.7E-3"},
        {0.00666, 5, 2, 0, "0.01"}, // no digits asked for: rounded
        {0.00466, 5, 2, 0, "0"},
        {-0.00466, 5, 2, 0, "0"},
        {0.0099999, 5, 2, 2, "0.01"}, // fits when rounded to two digits
        {1e-300, 5, 2, 0, "0"},
        {0, 5, 2, 2, "0"},
        {0, 0, 4, 2, ".0"},
        {5, 0, 4, 2, ".5E1"},
        {0.25, 0, 4, 2, ".25"},
        {123, 0, 4, 2, ".123E3"},
        {0.00001234, 0, 4, 2, ".12E-4"},
        {5, 1, 0, 2, "5"},
        {25, 1, 0, 2, "2E1"},
        {0.7, 1, 0, 2, "1"}, // one position is not more than smalldigits
        {0.3, 1, 0, 2, "0"},
        {0.75, 5, 0, 2, "75E-2"},
        {1e22, 23, 0, 2, "10000000000000000000000"},
        {5e-324, 3, 5, 3, "4.94E-324"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text(row.x, style(row.intpos, row.fracpos, 0, 0, row.small)), row.says)
            << row.x << " in " << row.intpos << "," << row.fracpos;
}

TEST_F(numtexttest, leadModes) {
    const struct {
        int mode;
        const char *zero, *half, *minushalf, *seven; // 0, 0.5, -0.5, 7 in 3 and 2 positions
    } rows[] = {{0, "0", "0.5", "-0.5", "7"},
                {1, "0", ".5", "-.5", "7"},
                {2, "", ".5", "-.5", "7"},
                {3, "0", "0.5", "-0.5", "07"},
                {4, "000", "000.5", "-000.5", "007"},
                {5, "  0", "  0.5", "  -0.5", "  7"},
                {6, "  0", "   .5", "   -.5", "  7"},
                {7, "   ", "   .5", "   -.5", "  7"},
                {8, "  0", "  0.5", "  -0.5", " 07"}};
    for (const auto& row : rows) {
        const numberformat f = style(3, 2, row.mode);
        EXPECT_EQ(text(0, f), row.zero) << "mode " << row.mode;
        EXPECT_EQ(text(0.5, f), row.half) << "mode " << row.mode;
        EXPECT_EQ(text(-0.5, f), row.minushalf) << "mode " << row.mode;
        EXPECT_EQ(text(7, f), row.seven) << "mode " << row.mode;
    }
}

TEST_F(numtexttest, trailModes) {
    const struct {
        int mode;
        const char *zero, *seven, *half;
    } rows[] = {{0, "0", "7", "7.5"},           {1, "0.", "7.", "7.5"},    {2, "0.0", "7.0", "7.5"},
                {3, "0.000", "7.000", "7.500"}, {4, "0.", "7.", "7.500"},  {5, "0", "7", "7.500"},
                {6, "0.", "7.000", "7.500"},    {7, "0", "7.000", "7.500"}};
    for (const auto& row : rows) {
        const numberformat f = style(3, 3, 0, row.mode);
        EXPECT_EQ(text(0, f), row.zero) << "mode " << row.mode;
        EXPECT_EQ(text(7, f), row.seven) << "mode " << row.mode;
        EXPECT_EQ(text(7.5, f), row.half) << "mode " << row.mode;
    }
    EXPECT_EQ(text(7, style(3, 0, 0, 3)), "7") << "no position behind the point is left";
    EXPECT_EQ(text(7, style(-1, 4, 0, 3)), "7.000");
    EXPECT_EQ(text(0, style(3, 2, 0, 0, 2, 1)), "0E0");
    EXPECT_EQ(text(7.5, style(-3, 8, 0, 0, 2, 1)), "7.5E0");
}

double somenumber(std::mt19937_64& random) {
    const uint64_t bits = random();
    double x;
    memcpy(&x, &bits, 8);
    return std::isfinite(x) ? x : 1;
}

TEST_F(numtexttest, enoughPositionsReadBackAsTheSameNumber) {
    std::mt19937_64 random(1);
    for (int k = 0; k < 20000; k++) {
        const double wide = somenumber(random),
                     near = std::ldexp(wide, -std::ilogb(wide) + int(random() % 60) - 30);
        for (const double x : {wide, near})
            for (int s = -4; s <= -1; s++) {
                const std::string t =
                    text(x, style(s, 17, int(random() % 4), int(random() % 8), 2, int(random() % 2)));
                ASSERT_EQ(strtod(t.c_str(), nullptr), x) << t;
            }
    }
}

// Whatever the style, a text that is given n positions differs from the number by no more than rounding to n
// significant digits, or, below 1, to the places behind the point.
TEST_F(numtexttest, digitsAreNotLostBeforeTheExponentForm) {
    std::mt19937_64 random(2);
    for (int k = 0; k < 20000; k++) {
        const double x = std::pow(10, double(random() % 2400) / 100 - 12) * (random() % 2 ? 1 : -1);
        const int digits = 1 + int(random() % 12), places = int(random() % 8), whole = 1 + int(random() % 8);
        for (int s = -4; s <= -1; s++) {
            const std::string t = text(x, style(s, digits));
            ASSERT_LE(std::fabs(strtod(t.c_str(), nullptr) - x),
                      0.5000001 * std::pow(10, 1 - digits) * std::fabs(x))
                << t;
        }
        const int small = 1 + int(random() % 3);
        if (whole + places <= small) continue;
        const std::string t = text(x, style(whole, places, 0, 0, small));
        const double error = std::fabs(strtod(t.c_str(), nullptr) - x);
        if (t.find('E') == std::string::npos)
            ASSERT_LE(error, 0.5000001 * std::pow(10, -places)) << x << " as " << t;
        else
            ASSERT_LE(error, 0.5000001 * std::pow(10, 1 - (std::fabs(x) < 1 ? small : whole + places)) *
                                 std::fabs(x))
                << x << " as " << t;
        const size_t point = t.find('.'), mark = std::min(t.find('E'), t.size());
        const size_t behind = point == std::string::npos ? 0 : mark - point - 1;
        ASSERT_LE(behind, size_t(places)) << t;
        ASSERT_LE(std::min(point, mark) - (t[0] == '-'), size_t(whole)) << t;
    }
}

TEST_F(numtexttest, textsStayWithinTheirRoom) {
    std::mt19937_64 random(3);
    for (int k = 0; k < 20000; k++) {
        const numberformat f = style(int(random() % 50) - 5, int(random() % 50), int(random() % 10),
                                     int(random() % 9), int(random() % 7) - 3, int(random() % 2));
        const numberformat usable = numusable(f);
        std::vector<char> buf(numroom(usable) + 1, '#');
        const size_t n = numwrite(buf.data(), random() % 9 ? somenumber(random) : 0.0, usable);
        ASSERT_LT(n, numroom(usable));
        ASSERT_EQ(buf[n], '#');
    }
}

TEST_F(numtexttest, formatsAreParsed) {
    EXPECT_EQ(parse("-3 5 0 0 2 1"), "");
    EXPECT_EQ(numstring(123456), "1.2346E5");
    EXPECT_EQ(parse("5,2,5,3,0,0"), "");
    EXPECT_EQ(numstring(7), "    7.00");
    for (const char* bad :
         {"1 2 3 4 5", "-", "1 2 3 x 5 6", "4 99999999999999999999 0 0 0 0", "%s", "%n", "%d", "%8.3f %8.3f",
          "%*f", "%999f", "%.999f", "%Lf", "%", "no number", "%f%n", "100%"}) {
        EXPECT_EQ(parse(bad), "##Error: Illegal nformat string\n") << bad;
        EXPECT_EQ(numstring(7), "    7.00") << "the older format stays";
    }
}

TEST_F(numtexttest, formatsOfTheUsersOwn) {
    const struct {
        const char* format;
        double x;
        const char* says;
    } rows[] = {
        {"%8.3f", 2, "2"},
        {"%8.3f", -2.5, "-2.5"},
        {"%8.3f", 1234567.125, "1234567.125"},
        {"%8.3f", 100, "100"},
        {"%.0f", 100, "100"},
        {"%12.4le", 2, "2e+00"},
        {"%12.4E", 12345, "1.2345E+04"},
        {"%.10lg", 0.1, "0.1"},
        {"value %.2f%%", 5.5, "value 5.5%"},
        {"%-9.2f|", 5, "5     |"},
        {"%a", 1, "0x1p+0"},
        {"%+.1f", 5, "+5"},
        {"%.3f", 1e300, nullptr},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(parse(row.format), "");
        const std::string t = numstring(row.x);
        if (row.says) {
            EXPECT_EQ(t, row.says) << row.format;
        } else {
            EXPECT_EQ(strtod(t.c_str(), nullptr), row.x);
        }
    }
    ASSERT_EQ(parse(""), "");
    EXPECT_EQ(numstring(0.25), "0.25") << "an empty text goes back to the fields";
    char buf[100];
    parse("%.1f");
    numtext(buf, 0.25, -3, 5, 0, 0, 2, 0);
    EXPECT_STREQ(buf, "0.25") << "fields that a caller gives stand by themselves";
}

TEST_F(numtexttest, aFormatWithNoPositionsWarnsAndShowsADigit) {
    EXPECT_EQ(text(7, style(0, 0)), ".7E1");
    EXPECT_EQ(out, "Warning: bad number format:no output positions are provided\nWarning: its second number, "
                   "the digits behind the point, is taken as 1\n");
    out.clear();
    EXPECT_EQ(text(25, style(-1, -4)), "2E1");
    EXPECT_NE(out, "");
}

} // namespace
