// String matrices: cells, copies, growth, and strings as values of the symbol table.
#include "values/stringarray.h"

#include "interp/base/operand.h"
#include "support/printed.h"
#include "values/harray.h"

#include <cstring>

namespace {

struct stringarraytest : printingtest {
    void SetUp() override {
        printingtest::SetUp();
        valuesstart();
    }
};

std::string cell(const StringArray* a, long i, long j) {
    const char* text = StringArrayStrPtr(a, i, j);
    return text ? text : "";
}

TEST_F(stringarraytest, cellsOwnTheirTexts) {
    stringarrayptr a(StringArrayAlloc(2, 2));
    ASSERT_TRUE(a);
    EXPECT_EQ(StringArrayStrLen(a.get(), 2, 2), 0);
    EXPECT_EQ(StringArrayStrPtr(a.get(), 1, 1), nullptr);
    char text[] = "abc";
    EXPECT_TRUE(StringArrayStrPut(a.get(), 1, 2, text));
    text[0] = 'x';
    EXPECT_EQ(cell(a.get(), 1, 2), "abc");
    EXPECT_EQ(StringArrayStrLen(a.get(), 1, 2), 3);
    EXPECT_TRUE(StringArrayStrPut(a.get(), 1, 2, StringArrayStrPtr(a.get(), 1, 2))) << "a cell into itself";
    EXPECT_EQ(cell(a.get(), 1, 2), "abc");
    EXPECT_TRUE(StringArrayStrPut(a.get(), 1, 2, "")) << "the empty string is stored as null";
    EXPECT_EQ(*StringArrayPtrStr(a.get(), 1, 2), nullptr);
    EXPECT_TRUE(StringArrayStrPut(a.get(), 1, 2, static_cast<const char*>(nullptr)));
    EXPECT_TRUE(StringArrayStrPut(a.get(), 2, 1, std::string_view("ab\0cd", 5)));
    EXPECT_EQ(cell(a.get(), 2, 1), "ab");
}

TEST_F(stringarraytest, subscriptsOutOfRange) {
    stringarrayptr a(StringArrayAlloc(2, 3));
    const struct {
        long i, j;
    } rows[] = {{0, 1}, {1, 0}, {3, 1}, {1, 4}, {-1, 1}, {1L << 33, 1}, {-(1L << 33), 2}};
    for (const auto& row : rows) {
        char* out1 = nullptr;
        EXPECT_EQ(StringArrayPtrStr(a.get(), row.i, row.j), nullptr);
        EXPECT_EQ(StringArrayStrPtr(a.get(), row.i, row.j), nullptr);
        EXPECT_EQ(StringArrayStrLen(a.get(), row.i, row.j), -1);
        EXPECT_FALSE(StringArrayStrPut(a.get(), row.i, row.j, "x"));
        EXPECT_FALSE(StringArrayStrGet(a.get(), row.i, row.j, &out1));
    }
}

TEST_F(stringarraytest, getGivesFreshCopies) {
    stringarrayptr a(StringArrayAlloc(1, 2));
    StringArrayStrPut(a.get(), 1, 1, "one");
    char* text = xstrdup("old");
    ASSERT_TRUE(StringArrayStrGet(a.get(), 1, 1, &text));
    EXPECT_STREQ(text, "one");
    EXPECT_NE(text, StringArrayStrPtr(a.get(), 1, 1));
    ASSERT_TRUE(StringArrayStrGet(a.get(), 1, 2, &text));
    EXPECT_STREQ(text, "") << "an empty cell gives an empty string";
    xfree(text);
}

TEST_F(stringarraytest, copyIsDeep) {
    stringarrayptr a(StringArrayAlloc(2, 2));
    StringArrayStrPut(a.get(), 2, 1, "text");
    const stringarrayptr b(StringArrayCopy(a.get()));
    StringArrayStrPut(a.get(), 2, 1, "changed");
    EXPECT_EQ(cell(b.get(), 2, 1), "text");
    EXPECT_EQ(StringArrayStrPtr(b.get(), 1, 1), nullptr) << "null cells stay null";
    EXPECT_EQ(StringArrayCopy(nullptr), nullptr);
    EXPECT_EQ(StringArrayFree(nullptr), nullptr);
}

TEST_F(stringarraytest, expandKeepsSubscripts) {
    StringArray* a = StringArrayAlloc(2, 2);
    StringArrayStrPut(a, 1, 2, "b");
    StringArrayStrPut(a, 2, 1, "c");
    EXPECT_EQ(StringArrayExpand(a, 1, 5), nullptr) << "a smaller shape is refused";
    EXPECT_EQ(cell(a, 2, 1), "c");
    a = StringArrayExpand(a, 3, 4);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(cell(a, 1, 2), "b");
    EXPECT_EQ(cell(a, 2, 1), "c");
    EXPECT_EQ(StringArrayStrLen(a, 3, 4), 0);
    StringArrayFree(a);
    a = StringArrayExpand(StringArrayAlloc(0, 0), 1, 1);
    EXPECT_TRUE(StringArrayStrPut(a, 1, 1, "x"));
    StringArrayFree(a);
}

TEST_F(stringarraytest, hugeShapesGiveNull) {
    EXPECT_EQ(StringArrayAlloc(0xFFFFFFFF, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(StringArrayAlloc(0x40000000, 1), nullptr);
    const stringarrayptr none(StringArrayAlloc(0xFFFFFFFF, 0));
    EXPECT_TRUE(none) << "an empty shape is legal";
}

TEST_F(stringarraytest, valuesOfTheSymbolTable) {
    const int text = symtabtext(0, 0, "hello");
    EXPECT_TRUE(isstringtype(text));
    int temp = 0;
    const StringArray* a = GetStringMatrix(text, temp);
    ASSERT_NE(temp, 0);
    EXPECT_EQ(a->rows, 1u);
    EXPECT_EQ(cell(a, 1, 1), "hello");
    int none = -1;
    EXPECT_EQ(GetStringMatrix(temp, none), a);
    EXPECT_EQ(none, 0);
    const int copy = symtabtext(text, 0, stringval(text));
    EXPECT_STREQ(stringval(copy), "hello") << "the operand released may hold the text";
    const int number = symtabtempscalar(0, 0, 3);
    EXPECT_EQ(errorof([&] { GetStringMatrix(number, none); }), "##Error: GetStringMatrix failed.\n");
    EXPECT_EQ(errorof([&] { Make1By1StringMatrix(number); }),
              "##Error: Illegal use of type that is not string scalar.\n");
    tempfree(temp); // the leak checker sees whether its cells go too
}

TEST_F(stringarraytest, print) {
    const stringarrayptr a(StringArrayAlloc(1, 2));
    StringArrayStrPut(a.get(), 1, 1, "x y");
    StringArrayPrint(a.get());
    EXPECT_EQ(out, "StringArrayPrint: rows: 1, cols: 2\n\"x y\" \"\"\n");
}

} // namespace
