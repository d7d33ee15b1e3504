// The scanner of data text: what it takes, what it skips, its arithmetic, and reading a text in pieces.
#include "values/numread.h"

#include "interp/base/fpfault.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/harray.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

struct scan {
    std::vector<double> numbers;
    numberresult end;
    bool operator==(const scan&) const = default;
};

scan scanall(const std::string& text) {
    numbertext in = numbertextstart(text.c_str(), text.size());
    scan s;
    for (;;) {
        double x = -77;
        s.end = readnumber(in, x);
        if (s.end != NUMBERREAD) return s;
        s.numbers.push_back(x);
    }
}

// The same text in two pieces, as a reader with a buffer meets it.
scan scanpieces(const std::string& text, size_t cut) {
    const std::string head = text.substr(0, cut);
    numbertext in = numbertextstart(head.c_str(), head.size());
    scan s;
    for (;;) {
        double x;
        const numberresult r = readnumber(in, x);
        if (in.p >= in.end) break;
        if (r != NUMBERREAD) return s.end = r, s;
        s.numbers.push_back(x);
    }
    const scan rest = scanall(text.substr(size_t(in.mark - head.c_str())));
    s.numbers.insert(s.numbers.end(), rest.numbers.begin(), rest.numbers.end());
    s.end = rest.end;
    return s;
}

struct numreadtest : testing::Test {
    void SetUp() override {
        symtabstart();
        report = reportstate{};
        fpclear();
        fp.limit = 0;
    }
};

TEST_F(numreadtest, takesAndSkips) {
    const struct {
        const char* text;
        std::vector<double> numbers;
        numberresult end = NUMBEREND;
    } rows[] = {
        {"", {}},
        {"1 2\t3\n4\r\n5", {1, 2, 3, 4, 5}},
        {"1,2;3", {1, 2, 3}},
        {"-1.5 +2 -.25 +.5", {-1.5, 2, -0.25, 0.5}},
        {"1. .5 1.e2 5.E-1", {1, 0.5, 100, 0.5}},
        {"3e2 3E+2 3e-2", {300, 300, 0.03}},
        {"/ a header of 3 words\n1 2 / and 4\n5", {1, 2, 5}},
        {"/ no line end 7", {}},
        {"\"x 1\" 2 \"say \"\"3\"\" \" 4", {2, 4}},
        {"\"over\n1 lines\" 2", {2}},
        {"\"left open 1 2", {}},
        {"time dose y(3)=4", {3, 4}},
        {"x1.5y", {1.5}},
        {"2024-01-15", {2024, -1, -15}},
        {"--5 - 6 -x7 +-8", {-5, 6, 7, -8}},
        {". .. .x 1..2 -.", {1, 0.2}},
        {"1.5.5", {1.5, 0.5}},
        {"\xEF\xBB\xBF"
         "1 \xC3\xA9 2",
         {1, 2}},
        {"1 2\x1A 3", {1, 2}},
        {"1\f2\v3", {1, 2, 3}},
        {"00012 000.500", {12, 0.5}},
        {"1.5E", {}, NUMBERBAD},
        {"1 2e+ 3", {1}, NUMBERBAD},
        {"1e5e 2", {1e5, 2}},
        {"1 \x01 2", {1}, NUMBERBAD},
        {"1 2 \x7f", {1, 2}, NUMBERBAD},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const scan s = scanall(row.text);
        EXPECT_EQ(s.numbers, row.numbers);
        EXPECT_EQ(s.end, row.end);
        for (size_t cut = 0; cut <= std::string(row.text).size(); cut++)
            EXPECT_EQ(scanpieces(row.text, cut), s) << "cut at " << cut;
    }
    EXPECT_EQ(scanall(std::string("1 \0 2", 5)).end, NUMBERBAD);
}

// m = 10m + digit in doubles, powi(10, n)*m, a fraction of zeros dropped: the plain form of the arithmetic.
double plain(const std::string& whole, const std::string& fraction, int exponent) {
    double m = 0;
    for (char c : whole) m = 10 * m + (c - '0');
    int nf = 0;
    if (fraction.find_first_not_of('0') != std::string::npos)
        for (char c : fraction) m = 10 * m + (c - '0'), nf++;
    return powi(10, exponent - nf) * m;
}

TEST_F(numreadtest, arithmeticIsTheToldOneToTheBit) {
    std::mt19937_64 random(20251121);
    const auto digits = [&](size_t most) {
        std::string s;
        for (size_t n = random() % (most + 1); n > 0; n--)
            s += char('0' + (random() % 3 ? random() % 10 : 0));
        return s;
    };
    for (int k = 0; k < 200000; k++) {
        const std::string whole = digits(k % 7 ? 6 : 25), fraction = digits(k % 5 ? 12 : 25);
        if (whole.empty() && (fraction.empty())) continue;
        const int exponent = k % 3 ? 0 : int(random() % 600) - 320;
        const double expected = plain(whole, fraction, exponent);
        if (!std::isfinite(expected)) continue;
        const std::string text = whole + (fraction.empty() ? "" : "." + fraction) +
                                 (exponent ? "e" + std::to_string(exponent) : "");
        const scan s = scanall(text);
        ASSERT_EQ(s.numbers.size(), 1u) << text;
        ASSERT_EQ(s.numbers[0], expected) << text;
    }
}

TEST_F(numreadtest, knownValues) {
    const struct {
        const char* text;
        double value;
    } rows[] = {
        {"9007199254740992", 9007199254740992.0}, // 2^53
        {"9007199254740993", 9007199254740992.0},
        {"0.1", 0.1},
        {"0.5", 0.5},
        {"1e22", 1e22},
        {"3.0000000000000000000000000000000000", 3}, // zeros behind the point cost nothing
        {"123456.0e-3", 123456 * 0.001},
        {"0e999", 0},
        {"0.000e-999", 0},
        {"1e-400", 0},
        {"1e-99999999999999999999", 0},
        {"1e308", powi(10, 308)},
    };
    for (const auto& row : rows) {
        const scan s = scanall(row.text);
        ASSERT_EQ(s.numbers.size(), 1u) << row.text;
        EXPECT_EQ(s.numbers[0], row.value) << row.text;
    }
    EXPECT_EQ(fp.total, 0u);
}

TEST_F(numreadtest, overflowIsRepairedAndCounted) {
    for (const char* text : {"1e309", "-9e308", "1e99999999999999999999"}) {
        fpclear();
        const scan s = scanall(text);
        ASSERT_EQ(s.numbers.size(), 1u);
        EXPECT_EQ(s.numbers[0], *text == '-' ? MAXNEG : MAXPOS) << text;
        EXPECT_EQ(fp.overflow, 1u) << text;
    }
    const scan s = scanall(std::string(400, '9'));
    ASSERT_EQ(s.numbers.size(), 1u);
    EXPECT_EQ(s.numbers[0], MAXPOS);
}

} // namespace
