// Matrices: layout, wrapping subscripts, growth, integer powers, the allocator's refusals.
#include "values/harray.h"

#include "interp/base/operand.h"
#include "support/printed.h"

#include <cmath>

namespace {

struct harraytest : printingtest {
    void SetUp() override {
        printingtest::SetUp();
        valuesstart();
    }
};

harrayptr counted(uint32_t rows, uint32_t cols) {
    harrayptr m(harraynew(rows, cols));
    for (size_t k = 1; k <= harraycount(m.get()); k++) cells(m.get())[k] = double(k);
    return m;
}

TEST_F(harraytest, subscriptsWrap) {
    const harrayptr m = counted(2, 3);
    const struct {
        uint32_t i, j;
        double value;
    } rows[] = {{1, 1, 1}, {2, 3, 6}, {3, 1, 1}, {4, 4, 4}, {2, 6, 6}, {7, 9, 3}};
    for (const auto& row : rows) EXPECT_EQ(harrayelem(m.get(), row.i, row.j), row.value);
    const harrayptr empty(harraynew(0, 5));
    EXPECT_EQ(harrayelem(empty.get(), 1, 1), 0);
    EXPECT_EQ(harrayelem(empty.get(), 9, 9), 0);
    EXPECT_EQ(harrayelem(nullptr, 1, 1), 0);
    EXPECT_EQ(out, "Warning: harrayelem: NULL matrix pointer passed in.\n");
}

TEST_F(harraytest, growthKeepsSubscripts) {
    harray* m = counted(2, 2).release();
    m = harraygrow(m, 2, 3);
    EXPECT_EQ(cells(m)[4], 3) << "element (2,1) moves from cell 3 to cell 4";
    EXPECT_EQ(at(m, 1, 3), 0);
    EXPECT_EQ(errorof([&] { harraygrow(m, 1, 3); }), "##Error: Cannot shrink an array\n");
    EXPECT_EQ(at(m, 2, 2), 4) << "the refused matrix is untouched";
    m = harraygrow(m, 2, 3);
    EXPECT_EQ(at(m, 2, 2), 4);
    harrayfree(m);
}

TEST_F(harraytest, freshMatricesAreZeroAlsoInUsedMemory) {
    for (int pass = 0; pass < 3; pass++) {
        harrayptr m(harraynew(300, 400));
        double sum = 0;
        for (size_t k = 1; k <= harraycount(m.get()); k++)
            sum += std::fabs(cells(m.get())[k]), cells(m.get())[k] = 7;
        EXPECT_EQ(sum, 0);
    }
}

TEST_F(harraytest, allocatorRefuses) {
    EXPECT_EQ(xalloc(-0x40000000L, 8), nullptr);
    EXPECT_EQ(out, "");
    EXPECT_EQ(errorof([] { xalloc(0x40000000L, 8); }),
              "##Error: Too many elements requested in 'xalloc()'\n");
    EXPECT_EQ(errorof([] { harraynew(4000000000u, 4000000000u); }),
              "##Error: Too many elements requested in 'xalloc()'\n");
}

TEST_F(harraytest, integerPowers) {
    const struct {
        double x;
        int n;
        double value;
        const char* says;
    } rows[] = {{0, 3, 0, ""},
                {0, 0, 1, "Warning: Trying to compute 0^0, 1 is returned.\n"},
                {0, -3, 1, "Warning: Trying to compute 1/(0^0), 1 is returned.\n"},
                {1, -30000, 1, ""},
                {5, 0, 1, ""},
                {4, -1, 0.25, ""},
                {-2, 3, -8, ""},
                {10, 22, 1e22, ""},
                {0.5, -2, 4, ""},
                {-1e-200, -3, MAXPOS, ""}, // an underflowed power gives +MAXPOS, also for an odd power
                {1e300, -2, 0, ""},
                {2, -1022, 2.2250738585072014e-308, ""}};
    for (const auto& row : rows) {
        out.clear();
        EXPECT_EQ(powi(row.x, row.n), row.value) << row.x << "^" << row.n;
        EXPECT_EQ(out, row.says);
    }
}

TEST_F(harraytest, operandsAreReadInPlace) {
    const int a = symtabenter("A"), x = symtabenter("X"), s = symtabenter("S");
    sym(a).type = MATRIX;
    sym(a).val.ptr = counted(2, 3).release();
    sym(x).type = SCALAR;
    sym(x).val.rval = 8;
    int temp = -1;
    EXPECT_EQ(matrixval(a, temp), sym(a).val.ptr);
    EXPECT_EQ(temp, 0);
    EXPECT_EQ(scalarval(a), 1);
    const harray* one = matrixval(x, temp);
    EXPECT_EQ(at(one, 1, 1), 8);
    EXPECT_TRUE(istemporary(temp));
    tempfree(temp);
    EXPECT_EQ(errorof([&] { matrixval(s, temp); }), "##Error: expected scalar or matrix type\n");
    EXPECT_EQ(errorof([&] { scalarval(s); }), "##Error: S is not a scalar type as expected\n");
    EXPECT_EQ(errorof([&] { scalartemp(a); }), "##Error: illegal use of non-scalar\n");
    symtabdelete(a);
    EXPECT_EQ(symtablookup("A"), -1);
}

} // namespace
