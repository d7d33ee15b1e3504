// String operators and the string builtins of this room.
#include "funcs/stringops.h"

#include "interp/base/operand.h"
#include "support/folder.h"
#include "support/printed.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <functional>
#include <regex>

namespace {

struct stringopstest : printingtest {
    void SetUp() override {
        printingtest::SetUp();
        valuesstart();
        builtinreset();
        stringopsstart();
    }
};

struct operand { // a string, or a number when text is null
    const char* text;
    double number = 0;
};

int make(const operand& o) { return o.text ? symtabtext(0, 0, o.text) : symtabtempscalar(0, 0, o.number); }

// The result as text; a number in brackets.
std::string binop(int op, const operand& a, const operand& b) {
    stringbinop(op, make(a), make(b));
    const int r = polpop();
    const std::string text = isstringtype(r) ? stringval(r) : "[" + std::to_string(int(scalarval(r))) + "]";
    tempfree(r);
    return text;
}

TEST_F(stringopstest, operators) {
    const struct {
        int op;
        operand a, b;
        const char* result;
    } rows[] = {
        {3, {"AB"}, {nullptr, 3}, "ABABAB"},
        {3, {"AB"}, {nullptr, 0}, ""},
        {3, {"AB"}, {nullptr, 2.9}, "ABAB"},
        {3, {"AB"}, {nullptr, 0.9}, ""},
        {3, {"AB"}, {nullptr, -5}, ""},
        {3, {""}, {nullptr, 1e300}, ""},
        {6, {"A"}, {"B"}, "AB"},
        {6, {"A"}, {nullptr, 1}, "A1"},
        {6, {nullptr, -2.5}, {"A"}, "-2.5A"},
        {6, {"x="}, {nullptr, 1.0 / 3}, "x=.33333333"},
        {8, {"A"}, {"A"}, "[1]"},
        {8, {"A"}, {"AB"}, "[0]"},
        {9, {"A"}, {"B"}, "[1]"},
        {9, {"AB"}, {"A"}, "[0]"},
        {10, {"A"}, {"A"}, "[1]"},
        {11, {"A"}, {"B"}, "[0]"},
        {12, {"a"}, {"Z"}, "[1]"},
        {12, {"\xE9"}, {"e"}, "[1]"}, // bytes are not negative
        {8, {"3"}, {nullptr, 3}, "[1]"},
        {9, {nullptr, 10}, {"9"}, "[1]"}, // text against text
    };
    for (const auto& row : rows)
        EXPECT_EQ(binop(row.op, row.a, row.b), row.result)
            << row.op << " on " << (row.a.text ? row.a.text : "number");
}

TEST_F(stringopstest, namedOperandsAreKept) {
    const int name = symtabenter("S");
    sym(name).type = STRINGTYPE;
    sym(name).val.ptr = xstrdup("ab");
    stringbinop(6, name, name);
    EXPECT_STREQ(stringval(polpop()), "abab");
    EXPECT_STREQ(stringval(name), "ab");
    symtabdelete(name);
}

TEST_F(stringopstest, refusals) {
    const auto with = [&](int op, const operand& a, const operand& b) {
        return errorof([&] { binop(op, a, b); });
    };
    const char* illegal = "##Error: illegal string expression\n";
    EXPECT_EQ(with(3, {"A"}, {"B"}), illegal);
    EXPECT_EQ(with(3, {nullptr, 3}, {"B"}), illegal);
    EXPECT_EQ(with(4, {"A"}, {"B"}), "##Error: the only string binary operators are +,^,=,<,<=,>,>=\n");
    EXPECT_EQ(with(14, {"A"}, {nullptr, 1}),
              "##Error: the only string binary operators are +,^,=,<,<=,>,>=\n");
    EXPECT_EQ(with(3, {"AB"}, {nullptr, 1e300}), "##Error: Too many elements requested in 'xalloc()'\n");
    const int m = symtabmatrix(0, 0, harrayptr(harraynew(2, 2)));
    EXPECT_EQ(errorof([&] { stringbinop(6, make({"A"}), m); }), illegal);
    EXPECT_EQ(errorof([&] { stringbinop(8, m, make({"A"})); }), illegal);
}

// ---- builtins ----

int call(int code, const std::vector<int>& args) {
    const int p = ++parser.poltop;
    parser.polstack[p] = int16_t(symtabenter("CALLEE"));
    for (int a : args) polpush(a);
    const int result = valuebuiltinrow(code)->call(callargs{p, int(args.size()), code});
    parser.poltop = p - 1;
    return result;
}

std::string textcall(int code, const std::vector<int>& args) { return stringval(call(code, args)); }

int column(const std::vector<double>& x) {
    harrayptr m(harraynew(uint32_t(x.size()), 1));
    for (size_t k = 0; k < x.size(); k++) cells(m.get())[k + 1] = x[k];
    return symtabmatrix(0, 0, std::move(m));
}

TEST_F(stringopstest, clock) {
    const std::regex date("(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 123][0-9] 20[0-9][0-9]");
    EXPECT_TRUE(std::regex_match(textcall(-900, {}), date)) << textcall(-900, {});
    EXPECT_TRUE(std::regex_match(textcall(-901, {}), std::regex("[0-2][0-9]:[0-5][0-9]:[0-6][0-9] ")));
}

TEST_F(stringopstest, parts) {
    const auto substr = [&](const char* text, const std::vector<double>& indices) {
        return textcall(-905, {make({text}), column(indices)});
    };
    EXPECT_EQ(substr("hello", {1, 2, 3}), "hel");
    EXPECT_EQ(substr("hello", {5, 5.9 - 1, 1}), "olh") << "indices are truncated";
    EXPECT_EQ(substr("hello", {}), "");
    EXPECT_EQ(substr("hello", {0, 1}), "h") << "index 0 stands for no character";
    EXPECT_EQ(textcall(-905, {make({"hello"}), make({nullptr, 2})}), "e") << "a scalar is one index";
    EXPECT_EQ(errorof([&] { substr("hello", {6}); }), "##Error: bad substring index\n");
    EXPECT_EQ(errorof([&] { substr("hello", {-1}); }), "##Error: bad substring index\n");
    EXPECT_EQ(textcall(-909, {make({"abc"})}), "cba");
    EXPECT_EQ(textcall(-910, {make({" \t ab "})}), "ab ");
    EXPECT_EQ(textcall(-907, {}), "");
}

TEST_F(stringopstest, ascii) {
    EXPECT_EQ(textcall(-906, {make({nullptr, 65})}), "A");
    EXPECT_EQ(textcall(-906, {make({nullptr, 65.9})}), "A");
    EXPECT_EQ(textcall(-906, {make({nullptr, 255})}), "\xFF");
    EXPECT_EQ(textcall(-906, {make({nullptr, 0})}), "");
    for (double code : {-1.0, 256.0, 1e300})
        EXPECT_EQ(errorof([&] {
                      call(-906, {make({nullptr, code})});
                  }),
                  "##Error: ASCII: argument out of range\n");
}

TEST_F(stringopstest, files) {
    testfolder folder;
    folder.open();
    report.filedir = folder.path.string();
    folder.write("one.txt", "1");
    folder.write("two.txt", "2");
    EXPECT_EQ(textcall(-902, {make({"one.txt"})}), folder.named("one.txt"));
    EXPECT_EQ(textcall(-911, {make({"one.txt"}), make({"three.txt"})}), "three.txt");
    EXPECT_TRUE(std::filesystem::exists("three.txt"));
    EXPECT_NE(errorof([&] {
                  call(-911, {make({"three.txt"}), make({"two.txt"})});
              }).find("##Error: can not rename\n"),
              std::string::npos);
    EXPECT_EQ(wholefile("two.txt"), "2") << "an existing file is not replaced";
    EXPECT_EQ(errorof([&] { call(-911, {make({"none"}), make({"four"})}); }), "##Error: can not rename\n");
    folder.close();
}

} // namespace
