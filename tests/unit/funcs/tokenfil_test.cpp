// The vocabulary of builtins in data/TOKEN.FIL against the rows of this room.
#include "unit/funcs/session.h"

#include <map>
#include <set>

namespace {

bool knowncode(int code) {
    return (code <= -1 && code >= -399) || (code <= -400 && code >= -505) || (code <= -600 && code >= -799) ||
           (code <= -900 && code >= -999);
}

TEST(vocabulary, linesAreWellFormed) {
    const std::set<int> slots = {4, 5, 6, 9, 11, 12, 13, 14, 16, 20, 22, 24, 25, 26, 27, 28};
    std::set<std::string> names;
    const std::vector<vocabularyline> lines = builtinlines();
    EXPECT_GT(lines.size(), 450u);
    for (const vocabularyline& v : lines) {
        EXPECT_TRUE(names.insert(v.name).second) << v.name << " stands twice";
        EXPECT_TRUE(knowncode(v.code)) << v.name;
        EXPECT_LE(v.name.size(), size_t(MAXNAME));
        EXPECT_EQ(v.name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"), std::string::npos)
            << v.name;
        ASSERT_FALSE(v.argd.empty()) << v.name;
        if (v.argd[0] == -100) continue;
        ASSERT_EQ(size_t(v.argd[0]) + 1, v.argd.size()) << v.name;
        EXPECT_LE(v.argd[0], 7) << v.name;
        bool optional = false;
        for (size_t k = 1; k < v.argd.size(); k++) {
            EXPECT_TRUE(slots.count(std::abs(v.argd[k]))) << v.name << " slot " << k;
            EXPECT_FALSE(optional && v.argd[k] > 0) << v.name << ": what may be left out stands last";
            optional = v.argd[k] < 0;
        }
    }
}

TEST(vocabulary, everyLineFitsTheReader) {
    std::ifstream in(TESTDATADIR "/../../data/TOKEN.FIL");
    int number = 0;
    for (std::string line; std::getline(in, line);)
        EXPECT_LE(line.size(), ++number == 1 ? 79u : 98u) << number;
}

using vocabularytest = funcstest;

// A row whose code no name has can't be reached; a routine that takes more than the signature lets through is
// wrong.
TEST_F(vocabularytest, rowsHaveNamesAndFit) {
    std::map<int, vocabularyline> lines;
    for (const vocabularyline& v : builtinlines()) lines[v.code] = v;
    for (int code = -1; code > -1000; code--) {
        const scalarrow* s = scalarbuiltinrow(code);
        if (!s && !numberbuiltinrow(code) && !valuebuiltinrow(code)) continue;
        ASSERT_TRUE(lines.count(code)) << code;
        EXPECT_TRUE(!s || code >= -399) << code;
        if (!s || s->arity < 0) continue;
        EXPECT_EQ(s->arity, lines[code].argd[0] + (s->flags & COUNTED ? 1 : 0)) << lines[code].name;
    }
}

// Common functions have their common names, at the codes that the evaluator and the differentiator rely on.
TEST_F(vocabularytest, names) {
    const struct {
        const char* name;
        int code;
    } rows[] = {
        {"EXP", -1},        {"LOG", -2},         {"LOG10", -3},    {"LOG2", -67},    {"SININT", -61},
        {"COSINT", -62},    {"EXPINT", -71},     {"LOGINT", -72},  {"EXPINTN", -60}, {"BETA", -52},
        {"BETAD", -135},    {"BETAF", -136},     {"QFD", -91},     {"QFF", -44},     {"MINIMIZE", -437},
        {"MAXIMIZE", -438}, {"INTEGRAL", -500},  {"EVAL", -501},   {"SUM", -502},    {"ROOT", -503},
        {"PRODUCT", -504},  {"INTEGRATE", -600}, {"POINTS", -613}, {"SHAPE", -606},  {"MAX", -205},
        {"MIN", -206},      {"KREAD", -78},      {"READ", -625},   {"SORT", -614},   {"SIGN", -65}};
    for (const auto& row : rows) {
        const int idx = symtablookup(row.name);
        ASSERT_GT(idx, 0) << row.name;
        EXPECT_EQ(sym(idx).type, row.code) << row.name;
    }
}

} // namespace
