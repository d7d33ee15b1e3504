// Matrices in columns: layouts drawn by hand, and what holds for all of them.
#include "interp/matrixtext.h"

#include "interp/base/machine.h"
#include "support/printed.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

harrayptr matrix(uint32_t rows, uint32_t cols, std::initializer_list<double> values) {
    harrayptr m(harraynew(rows, cols));
    size_t k = 0;
    for (const double x : values) cells(m.get())[++k] = x;
    return m;
}

struct matrixtext : printingtest {
    void SetUp() override {
        printingtest::SetUp();
        mformat = {};
    }
    void TearDown() override {
        printingtest::TearDown();
        mformat = {};
    }
    std::string print(const harrayptr& m, const matrixlook& look) {
        return textof([&] { matrixprint("M", m.get(), look); });
    }
    std::string parse(const char* text) {
        return textof([&] { parsemformat(text); });
    }
};

matrixlook look(const matrixformat& f, int linelen = 80) {
    matrixlook l;
    l.layout = f;
    l.linelen = linelen;
    return l;
}

TEST_F(matrixtext, columnsOfAFixedWidth) {
    const harrayptr m = matrix(2, 3, {1, -2.5, 1e10, 0.001, 12345678, 3});
    matrixlook l = look({});
    l.numbers = {-3, 8, 0, 0, 2, 0, ""};
    EXPECT_EQ(print(m, l), "\n   M: a  2 by 3 matrix\n\n"
                           "  1:          1         -2.5         1E10\n"
                           "  2:      0.001     12345678            3\n"
                           "\n");
    l.layout = {5, 0, 1, 2, 6, 0, 1, 1}; // one number does not fit, two blanks behind the last column
    EXPECT_EQ(print(m, l), "\n   M: a  2 by 3 matrix\n\n"
                           "    1  -2.5  1E10  \n"
                           "0.001  ***      3  \n"
                           "\n");
}

TEST_F(matrixtext, starsNeverACutNumber) {
    const harrayptr m = matrix(1, 1, {-123456});
    for (int width = 1; width < 7; width++) {
        matrixlook l = look({int16_t(width), 0, 3, 0, 6, 0, 1, 1});
        l.names = false;
        const std::string stars = width == 1 ? "*" : width == 2 ? "**" : "***";
        const std::string before((width - stars.size()) / 2, ' ');
        const std::string behind(size_t(width) - stars.size() - before.size(), ' ');
        EXPECT_EQ(print(m, l), before + stars + behind + "\n\n");
    }
    matrixlook l = look({7, 0, 3, 0, 6, 0, 1, 1});
    l.names = false;
    EXPECT_EQ(print(m, l), "-123456\n\n");
}

TEST_F(matrixtext, measuredColumnsAndJustification) {
    const harrayptr m = matrix(3, 2, {1, -0.25, 22.5, 1e10, -3.125, 7});
    const struct {
        int mode, justify;
        const char* says;
    } rows[] = {
        {1, 1,
         "     1   -.25\n"
         "  22.5   1E10\n"
         "-3.125      7\n"},
        {1, 2, // on the point, or the E
         " 1       -.25\n"
         "22.5     1E10\n"
         "-3.125   7   \n"},
        {1, 3, // on the E, or the end
         "     1   -.25   \n"
         "  22.5      1E10\n"
         "-3.125      7   \n"},
        {1, 4, // behind the sign
         " 1       -.25 \n"
         " 22.5     1E10\n"
         "-3.125    7   \n"},
        {1, 0,
         "1        -.25\n"
         "22.5     1E10\n"
         "-3.125   7   \n"},
        {3, 1,
         "     1     -.25\n"
         "  22.5     1E10\n"
         "-3.125        7\n"},
    };
    for (const auto& row : rows) {
        matrixlook l = look({10, int16_t(row.mode), 3, 0, 6, 1, 1, int16_t(row.justify)});
        l.names = false;
        l.numbers = {-3, 8, 0, 0, 2, 0, ""};
        EXPECT_EQ(print(m, l), std::string(row.says) + "\n")
            << "mode " << row.mode << ", justify " << row.justify;
    }
}

TEST_F(matrixtext, blanksOfTheNumberFormatCountButInMode2) {
    const harrayptr m = matrix(2, 1, {1, 20});
    matrixlook l = look({10, 1, 3, 0, 6, 0, 1, 0});
    l.names = false;
    l.numbers = {4, 0, 6, 0, 2, 0, ""};
    EXPECT_EQ(print(m, l), "   1\n  20\n\n");
    l.layout.colmode = 2;
    EXPECT_EQ(print(m, l), "1 \n20\n\n");
}

TEST_F(matrixtext, aWideRowGoesOnInIndentedLines) {
    const harrayptr m = matrix(2, 7, {1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17});
    const matrixformat f{2, 0, 1, 0, 3, 1, 4, 1}; // three columns in a line, 4 blanks more in front
    EXPECT_EQ(print(m, look(f)), "\n   M: a  2 by 7 matrix\n\n"
                                 "  1:  1  2  3\n"
                                 "          4  5  6\n"
                                 "          7\n"
                                 "  2: 11 12 13\n"
                                 "         14 15 16\n"
                                 "         17\n"
                                 "\n");
    // 25 characters less 5 of the row number hold seven columns of 2 with a blank between them
    const matrixformat g{2, 0, 1, 0, 0, 1, 4, 1};
    EXPECT_EQ(print(m, look(g, 10)), "\n   M: a  2 by 7 matrix\n\n"
                                     "  1:  1  2  3  4  5  6  7\n"
                                     "  2: 11 12 13 14 15 16 17\n"
                                     "\n")
        << "a line is never shorter than 25";
    const matrixformat h{2, 0, 1, 1, 0, 1, 4, 1}; // a blank behind the last column is one too much
    EXPECT_EQ(print(m, look(h, 25)), "\n   M: a  2 by 7 matrix\n\n"
                                     "  1:  1  2  3  4  5  6 \n"
                                     "          7 \n"
                                     "  2: 11 12 13 14 15 16 \n"
                                     "         17 \n"
                                     "\n");
}

TEST_F(matrixtext, cutoffHidesWhatIsSmallAgainstTheLargest) {
    const harrayptr m = matrix(1, 5, {-100, 1e-9, -1.1e-8, 9e-9, MAXPOS});
    matrixlook l = look({10, 1, 2, 0, 6, 0, 1, 1});
    l.names = false;
    l.numbers = {-3, 3, 0, 0, 2, 0, ""};
    l.cutoff = 1e-10; // threshold 1e-8
    EXPECT_EQ(print(m, l), "-100  0  -1.1E-8  0  1.8E308\n\n");
    l.cutoff = 0;
    EXPECT_EQ(print(m, l), "-100  1E-9  -1.1E-8  9E-9  1.8E308\n\n");
}

TEST_F(matrixtext, emptyMatricesHaveAHeaderAlone) {
    EXPECT_EQ(print(matrix(0, 3, {}), look({})), "\n   M: a  0 by 3 matrix\n\n\n");
    EXPECT_EQ(print(matrix(3, 0, {}), look({})), "\n   M: a  3 by 0 matrix\n\n\n");
    EXPECT_EQ(print(matrix(0, 0, {}), look({10, 1, 3, 0, 6, 1, 1, 2})), "\n   M: a  0 by 0 matrix\n\n\n");
}

TEST_F(matrixtext, rowNumbersKeepColumnsStraight) {
    harrayptr m(harraynew(1000, 1));
    std::istringstream lines(print(m, look({1, 0, 3, 0, 6, 1, 1, 1})));
    std::string line;
    for (int k = 0; k < 3; k++) std::getline(lines, line);
    for (int k = 1; k <= 1000; k++) {
        std::getline(lines, line);
        ASSERT_EQ(line, std::string(4 - std::to_string(k).size(), ' ') + std::to_string(k) + ": 0");
    }
}

// Random formats: every printed line obeys LINELEN unless it holds one column, and the numbers read back.
TEST_F(matrixtext, allNumbersAreThereInOrder) {
    std::mt19937 random(4);
    for (int k = 0; k < 300; k++) {
        harrayptr m(harraynew(1 + random() % 4, 1 + random() % 30));
        for (size_t i = 1; i <= harraycount(m.get()); i++)
            cells(m.get())[i] = std::ldexp(double(random()) - 2e9, int(random() % 80) - 60);
        matrixlook l =
            look({20, int16_t(random() % 5), int16_t(1 + random() % 4), int16_t(random() % 3),
                  int16_t(random() % 8), int16_t(random() % 2), int16_t(random() % 6), int16_t(random() % 6)},
                 20 + int(random() % 80));
        l.names = random() % 2;
        l.numbers = {-3, 9, int16_t(random() % 2 ? 6 : 0), int16_t(random() % 8), 2, 0, ""};
        std::istringstream lines(print(m, l));
        std::string line;
        for (int skip = l.names ? 3 : 0; skip > 0; skip--) std::getline(lines, line);
        size_t cell = 0;
        while (std::getline(lines, line)) {
            if (l.layout.colmode == 0) { ASSERT_LE(line.size(), size_t(std::max({l.linelen, 25, 40}))); }
            const size_t colon = line.find(": ");
            std::istringstream words(colon == std::string::npos ? line : line.substr(colon + 2));
            for (std::string word; words >> word;) {
                const double x = cells(m.get())[++cell];
                ASSERT_NEAR(strtod(word.c_str(), nullptr), x, 1e-8 * std::fabs(x)) << word;
            }
        }
        ASSERT_EQ(cell, harraycount(m.get()));
    }
}

TEST_F(matrixtext, formatsAreParsedWholeOrNotAtAll) {
    EXPECT_EQ(parse("12 3 2 1 4 0 7 2"), "");
    EXPECT_EQ(mformat.colwidth, 12);
    EXPECT_EQ(mformat.colmode, 3);
    EXPECT_EQ(mformat.intercol, 2);
    EXPECT_EQ(mformat.endcol, 1);
    EXPECT_EQ(mformat.maxcols, 4);
    EXPECT_EQ(mformat.rownums, 0);
    EXPECT_EQ(mformat.wrap, 7);
    EXPECT_EQ(mformat.justify, 2);
    const struct {
        const char *text, *says;
    } rows[] = {{"1 2 3 4 5 6 7", "Illegal mformat string"},
                {"", "Illegal mformat string"},
                {"%d", "Illegal mformat string"},
                {"99999 1 3 0 6 1 1 1", "Illegal mformat string"},
                {"0 0 3 0 6 1 1 1", "Unacceptable column width"},
                {"80 0 3 0 6 1 1 1", "Unacceptable column width"},
                {"10 0 80 0 6 1 1 1", "Unacceptable number of inter-column blanks"},
                {"10 0 -1 0 6 1 1 1", "Unacceptable number of inter-column blanks"},
                {"10 0 3 80 6 1 1 1", "Unacceptable number of end-of-column blanks"},
                {"10 0 3 0 6 1 -1 1", "Unacceptable number of wrap spaces"}};
    for (const auto& row : rows) {
        EXPECT_EQ(parse(row.text), std::string("##Error: ") + row.says + "\n");
        EXPECT_EQ(mformat.colwidth, 12) << "the older format stays";
    }
    EXPECT_EQ(parse("0 1 3 0 6 1 1 1"), "") << "a width that is not used may be anything";
}

TEST_F(matrixtext, aFormatWithNoPositionsWarnsOnce) {
    matrixlook l = look({10, 1, 1, 0, 0, 0, 1, 1});
    l.names = false;
    l.numbers = {0, 0, 0, 0, 2, 0, ""};
    EXPECT_EQ(print(matrix(1, 3, {1, 2, 3}), l),
              "Warning: bad number format:no output positions are provided\nWarning: its second number, the "
              "digits behind the point, is taken as 1\n.1E1 .2E1 .3E1\n\n");
}

} // namespace
