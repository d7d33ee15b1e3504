// Delimited text: how it is split, what fields mean as numbers, what is refused and where.
#include "interp/delimited.h"

#include "interp/base/fpfault.h"
#include "interp/base/symtab.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// Records as text: fields in bars, records on lines; or the fault.
std::string split(const std::string& bytes, char delimiter = 0) {
    delimitedtable t;
    t.bytes = bytes;
    delimitedsplit(t, delimiter);
    if (!t.fault.empty()) return t.fault;
    std::string all = t.header ? "header " : "";
    for (size_t i = 0; i < t.lines.size(); i++) {
        for (size_t j = 0; j < t.cols; j++) all += "|" + std::string(delimitedfield(t, i, j));
        all += "|\n";
    }
    return all;
}

TEST(delimited, splits) {
    const struct {
        const char *bytes, *records;
    } rows[] = {
        {"", ""},
        {"1,2\n3,4\n", "|1|2|\n|3|4|\n"},
        {"1,2\r\n3,4\r\n", "|1|2|\n|3|4|\n"},
        {"1,2\n3,4", "|1|2|\n|3|4|\n"},
        {"\xEF\xBB\xBF"
         "1,2\n",
         "|1|2|\n"},
        {"a,b\n1,2\n", "header |a|b|\n|1|2|\n"},
        {"1;2\n3;4\n", "|1|2|\n|3|4|\n"},
        {"1\t2\n3\t4\n", "|1|2|\n|3|4|\n"},
        {"1,5;2\n3,5;4\n", "header |1,5|2|\n|3,5|4|\n"}, // a decimal comma is no number
        {"a;b,c\n1;2\n", "header |a|b,c|\n|1|2|\n"},
        {"\"a,b\";c\n1;2\n", "header |a,b|c|\n|1|2|\n"},
        {" 1 ,\t2 \n 3,4\n", "|1|2|\n|3|4|\n"},
        {"1,\n,2\n", "|1||\n||2|\n"},
        {",\n1,2\n", "|||\n|1|2|\n"},
        {"1,2\n\n3,4\n\n", "|1|2|\n|3|4|\n"},
        {"1\n\n2\n\n\n",
         "|1|\n||\n|2|\n"}, // one column: an empty line is a missing value, but not at the end
        {"x\n\n", "header |x|\n"},
        {"\"1\",\"2\"\n", "|1|2|\n"},
        {"\"a \"\"b\"\"\",c\n1,2\n", "header |a \"b\"|c|\n|1|2|\n"},
        {"\"two\nlines\",c\n1,2\n", "header |two\nlines|c|\n|1|2|\n"},
        {"1, \"2\" ,3\n", "|1|2|3|\n"},
        {"\"\",\"\"\n1,2\n", "|||\n|1|2|\n"},
        {"5\" pipe,x\n1,2\n", "header |5\" pipe|x|\n|1|2|\n"},
        {"NA,1\n2,3\n", "|NA|1|\n|2|3|\n"},
        {"1 2 3\n", "header |1 2 3|\n"},
    };
    for (const auto& row : rows) EXPECT_EQ(split(row.bytes), row.records) << row.bytes;
    EXPECT_EQ(split("1|2\n3|4\n", '|'), "|1|2|\n|3|4|\n");
    EXPECT_EQ(split("1 2\n3 4\n", ' '), "|1|2|\n|3|4|\n");
    EXPECT_EQ(split("1;2\n", ','), "header |1;2|\n");
}

TEST(delimited, faultsTellTheirLine) {
    const struct {
        const char *bytes, *fault;
    } rows[] = {
        {"1,2\n3\n4,5\n", "line 2 has 1 fields instead of 2"},
        {"a,b\n1,2\n3,4,5\n", "line 3 has 3 fields instead of 2"},
        {"\n\n1,2\n\n3\n", "line 5 has 1 fields instead of 2"},
        {"\"a\nb\",c\n1\n", "line 3 has 1 fields instead of 2"},
        {"1,2\n3,\"4\n5,6\n", "line 2 opens a quote that is never closed"},
        {"1,2\n3,\"4\"5\n", "line 2 has text behind a closing quote"},
    };
    for (const auto& row : rows) EXPECT_EQ(split(row.bytes), row.fault) << row.bytes;
}

TEST(delimited, numbers) {
    symtabstart();
    fpclear();
    const struct {
        const char* field;
        fieldkind kind;
        double x;
    } rows[] = {
        {"1", FIELDNUMBER, 1},
        {"-1.5e3", FIELDNUMBER, -1500},
        {"+.5", FIELDNUMBER, 0.5},
        {"5.", FIELDNUMBER, 5},
        {"0.1", FIELDNUMBER, 0.1},
        {"1.2", FIELDNUMBER, 1.2},
        {"0.30000000000000004", FIELDNUMBER, 0.30000000000000004},
        {"6.02214076E+23", FIELDNUMBER, 6.02214076e23},
        {"2.2250738585072011e-308", FIELDNUMBER, 2.2250738585072011e-308},
        {"1e-400", FIELDNUMBER, 0},
        {"0.000000001e-320", FIELDNUMBER, 0},
        {"-0", FIELDNUMBER, 0},
        {"inf", FIELDNUMBER, MAXPOS},
        {"-Inf", FIELDNUMBER, MAXNEG},
        {"", FIELDMISSING, MAXPOS},
        {"NA", FIELDMISSING, MAXPOS},
        {"NaN", FIELDMISSING, MAXPOS},
        {"nan", FIELDMISSING, MAXPOS},
        {"#N/A", FIELDTEXT, MAXPOS},
        {"n/a", FIELDMISSING, MAXPOS},
        {"null", FIELDMISSING, MAXPOS},
        {"1,5", FIELDTEXT, 0},
        {"1e", FIELDTEXT, 0},
        {"1 2", FIELDTEXT, 0},
        {"0x10", FIELDTEXT, 0},
        {"--1", FIELDTEXT, 0},
        {"+-1", FIELDTEXT, 0},
        {".", FIELDTEXT, 0},
        {"-", FIELDTEXT, 0},
        {"-NA", FIELDTEXT, 0},
        {"infinite", FIELDTEXT, 0},
        {"12:30", FIELDTEXT, 0},
    };
    for (const auto& row : rows) {
        double x = -77;
        ASSERT_EQ(delimitednumber(row.field, x), row.kind) << row.field;
        if (row.kind != FIELDTEXT) { EXPECT_EQ(x, row.x) << row.field; }
    }
    EXPECT_EQ(fp.total, 0u);
    for (const char* field : {"1e400", "-123456e305", "1e99999999999999999999"}) {
        double x;
        EXPECT_EQ(delimitednumber(field, x), FIELDNUMBER);
        EXPECT_EQ(x, *field == '-' ? MAXNEG : MAXPOS) << field;
    }
    EXPECT_EQ(fp.overflow, 3u);
}

} // namespace
