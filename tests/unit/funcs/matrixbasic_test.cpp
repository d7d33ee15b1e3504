// Builtins that look at a matrix or lay it out anew.
#include "unit/funcs/session.h"
#include "values/stringarray.h"

namespace {

using matrixbasictest = funcstest;

TEST_F(matrixbasictest, numbersOfAMatrix) {
    const auto m = [] { return matrix(2, 3, {3, -7, 5, 5, 2, -7}); };
    const struct {
        const char *name, *value;
    } rows[] = {{"NROWS", "2"},  {"NCOLS", "3"},  {"NELEMS", "6"},  {"MAXV", "5"},
                {"MINV", "-7"},  {"MAXROW", "1"}, {"MAXCOL", "3"},  {"MINROW", "1"},
                {"MINCOL", "2"}, {"SUMV", "1"},   {"PRODV", "7350"}};
    for (const auto& row : rows) EXPECT_EQ(result(row.name, {m()}), row.value) << row.name;
}

TEST_F(matrixbasictest, numbersOfAnEmptyMatrixAndOfAScalar) {
    const struct {
        const char *name, *empty, *number;
    } rows[] = {{"NROWS", "0", "##Error: function NROWS argument 1: expected matrix or stringmatrix\n"},
                {"NCOLS", "4", "##Error: function NCOLS argument 1: expected matrix or stringmatrix\n"},
                {"NELEMS", "0", "##Error: function NELEMS argument 1: expected matrix or stringmatrix\n"},
                {"MAXV", "-1.79769313486232e+308", "9"},
                {"MINV", "1.79769313486232e+308", "9"},
                {"MAXROW", "0", "1"},
                {"MINCOL", "0", "1"},
                {"SUMV", "0", "9"},
                {"PRODV", "1", "9"}};
    for (const auto& row : rows) {
        EXPECT_EQ(result(row.name, {matrix(0, 4, {0})}), row.empty) << row.name;
        EXPECT_EQ(result(row.name, {scalar(9)}), row.number) << row.name;
    }
}

TEST_F(matrixbasictest, stringMatricesHaveAShape) {
    const int s = named("S", STRINGMATRIX);
    sym(s).val.ptr = StringArrayAlloc(3, 2);
    EXPECT_EQ(result("NROWS", {s}), "3");
    EXPECT_EQ(result("NCOLS", {s}), "2");
    EXPECT_EQ(result("NELEMS", {s}), "6");
}

TEST_F(matrixbasictest, lengthsOfStrings) {
    StringArray* a = StringArrayAlloc(2, 2);
    StringArrayStrPut(a, 2, 1, "four");
    const int s = named("S", STRINGMATRIX);
    sym(s).val.ptr = a;
    EXPECT_EQ(result("STRLEN", {symtabtemp(0, 0, xstrdup("abc"), TEMPSTRING, 0)}), "3");
    EXPECT_EQ(result("STRLEN", {s, scalar(2), scalar(1)}), "4");
    EXPECT_EQ(result("STRLEN", {s, scalar(2)}), "4");
    EXPECT_EQ(result("STRLEN", {s}), "0");
    EXPECT_EQ(result("STRLEN", {s, scalar(3)}), "##Error: STRLEN: argument out of range\n");
    EXPECT_EQ(result("STRLEN", {s, scalar(1), scalar(-1e30)}), "##Error: STRLEN: argument out of range\n");
}

TEST_F(matrixbasictest, traceAndEquality) {
    EXPECT_EQ(result("TRACE", {matrix(2, 2, {1, 2, 3, 4})}), "5");
    EXPECT_EQ(result("TRACE", {matrix(2, 3, {1})}),
              "##Error: Incorrect row/col shape of an argument of TRACE\n\n");
    EXPECT_EQ(result("EQUAL", {matrix(1, 2, {1, 2}), matrix(1, 2, {1, 2})}), "1");
    EXPECT_EQ(result("EQUAL", {matrix(1, 2, {1, 2}), matrix(2, 1, {1, 2})}), "0");
    EXPECT_EQ(result("EQUAL", {matrix(1, 2, {1, 2}), matrix(1, 2, {1, 3})}), "0");
    EXPECT_EQ(result("TYPEOF", {scalar(1)}), "4");
    EXPECT_EQ(result("TYPEOF", {symtabenter("NEW")}), "1");
}

TEST_F(matrixbasictest, tables) {
    const auto table = [] { return matrix(3, 2, {0, 1, 1, 3, 3, -1}); };
    const struct {
        double x;
        const char *value, *slope;
    } rows[] = {{-1, "1", "0"}, {0, "1", "2"},   {0.25, "1.5", "2"}, {1, "3", "-2"},
                {2, "1", "-2"}, {3, "-1", "-2"}, {9, "-1", "0"}};
    for (const auto& row : rows) {
        EXPECT_EQ(result("LOOKUP", {scalar(row.x), table()}), row.value) << row.x;
        EXPECT_EQ(result("LOOKUP", {table(), scalar(row.x)}), row.value) << row.x;
        EXPECT_EQ(result("LOOKUPD", {scalar(row.x), table()}), row.slope) << row.x;
        EXPECT_EQ(result("LOOKUP", {scalar(row.x), matrix(3, 2, {3, -1, 1, 3, 0, 1})}), row.value)
            << "descending";
    }
    EXPECT_EQ(result("LOOKUP", {scalar(1), matrix(3, 1, {0})}),
              "##Error: Incorrect row/col shape of an argument of LOOKUP\n\n");
    EXPECT_EQ(result("LOOKUP", {scalar(1), scalar(2)}),
              "##Error: LOOKUP: an expression is of the wrong type\n");
}

TEST_F(matrixbasictest, layouts) {
    EXPECT_EQ(result("SHAPE", {scalar(2), scalar(3), matrix(2, 2, {1, 2, 3, 4})}), "2x3: 1 2 3 4 1 2");
    EXPECT_EQ(result("SHAPE", {scalar(1), scalar(2), matrix(2, 2, {1, 2, 3, 4})}), "1x2: 1 2");
    EXPECT_EQ(result("SHAPE", {scalar(2), scalar(2), scalar(5)}), "2x2: 5 5 5 5");
    EXPECT_EQ(result("SHAPE", {scalar(2), scalar(1), matrix(0, 3, {0})}), "2x1: 0 0");
    EXPECT_EQ(result("SHAPE", {scalar(0), scalar(3), scalar(1)}), "0x3:");
    EXPECT_EQ(result("KRON", {matrix(1, 2, {1, -2}), matrix(2, 2, {1, 2, 4, 3})}),
              "2x4: 1 2 -2 -4 4 3 -8 -6");
    EXPECT_EQ(result("KRON", {matrix(0, 2, {0}), matrix(2, 1, {1, 2})}), "0x2:");
    EXPECT_EQ(result("SHAPE", {scalar(-1), scalar(3), scalar(1)}), "##Error: SHAPE: argument out of range\n");
    EXPECT_EQ(result("SHAPE", {scalar(1e6), scalar(1e6), scalar(1)}),
              "##Error: Too many elements requested in 'xalloc()'\n");
    EXPECT_EQ(result("SHAPE", {scalar(1e300), scalar(1), scalar(1)}),
              "##Error: Too many elements requested in 'xalloc()'\n");
    EXPECT_EQ(result("DIAG", {matrix(1, 2, {1, 2})}), "2x2: 1 0 0 2");
    EXPECT_EQ(result("DIAG", {matrix(2, 3, {1, 2, 3, 4, 5, 6})}), "2x1: 1 5");
    EXPECT_EQ(result("DIAG", {scalar(3)}), "1x1: 3");
    EXPECT_EQ(result("CUMSUM", {matrix(3, 2, {1, 10, 2, 20, 3, 30})}), "3x2: 1 10 3 30 6 60");
    EXPECT_EQ(result("CUMSUM", {matrix(0, 2, {0})}), "0x2:");
}

} // namespace
