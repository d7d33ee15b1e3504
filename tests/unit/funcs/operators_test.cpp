// The binary operators: every operator on every pairing of shapes, recycling, powers of matrices, faults.
#include "funcs/operators.h"

#include "unit/funcs/session.h"

#include "funcs/elementwise.h"
#include "funcs/matmul.h"
#include "funcs/matmultiles.h"
#include "funcs/pending.h"

#include <cmath>
#include <random>

namespace {

struct operatorstest : funcstest {
    std::string result(int op, int a, int b) {
        std::string text;
        const std::string printed = textof([&] {
            binop(op, a, b);
            const int idx = polpop();
            text = shown(idx);
            tempfree(idx);
        });
        return printed + text;
    }
};

TEST_F(operatorstest, scalars) {
    const struct {
        int op;
        double x, y, value;
    } rows[] = {{TOKPOWER, 2, 10, 1024},    {TOKPOWER, 2, -1, 0.5},     {TOKPOWER, -8, 3, -512},
                {TOKTIMES, 3, 4, 12},       {TOKDIVIDE, 1, 4, 0.25},    {TOKPLUS, 1, 2, 3},
                {TOKMINUS, 1, 2, -1},       {TOKEQUAL, 2, 2, 1},        {TOKEQUAL, 2, 3, 0},
                {TOKLESS, 1, 2, 1},         {TOKLESS, 2, 2, 0},         {TOKLESSEQUAL, 2, 2, 1},
                {TOKGREATEREQUAL, 2, 2, 1}, {TOKGREATEREQUAL, 1, 2, 0}, {TOKGREATER, 3, 2, 1},
                {TOKAND, 2, -1, 1},         {TOKAND, 0, 1, 0},          {TOKOR, 0, 0, 0},
                {TOKOR, 0, 0.5, 1},         {TOKCELLTIMES, 3, 4, 12},   {TOKCELLDIVIDE, 1, 8, .125}};
    for (const auto& row : rows) {
        EXPECT_EQ(scalarop(row.x, row.y, row.op), row.value) << row.op;
        char text[32];
        snprintf(text, sizeof text, "%.15g", row.value);
        EXPECT_EQ(result(row.op, scalar(row.x), scalar(row.y)), text) << row.op;
    }
    EXPECT_EQ(temporaries(), 0);
}

// Cells of matrices are treated as scalars are, whatever the shapes.
TEST_F(operatorstest, matricesFollowTheScalarRule) {
    const struct {
        uint32_t rows, cols;
    } shapes[] = {{1, 1},  {2, 3},  {3, 2},  {1, 3}, {3, 1}, {40, 30},
                  {1, 30}, {40, 1}, {7, 11}, {0, 0}, {0, 3}};
    const int ops[] = {TOKPOWER, TOKDIVIDE,    TOKPLUS,         TOKMINUS,   TOKEQUAL,
                       TOKLESS,  TOKLESSEQUAL, TOKGREATEREQUAL, TOKGREATER, TOKAND,
                       TOKOR,    TOKCELLTIMES, TOKCELLDIVIDE};
    std::mt19937 random(1);
    std::uniform_int_distribution<int> pick(0, 6);
    fp.limit = 0;
    for (const auto& p : shapes)
        for (const auto& q : shapes)
            for (const int op : ops) {
                harrayptr a(harraynew(p.rows, p.cols)), b(harraynew(q.rows, q.cols));
                for (size_t k = 1; k <= harraycount(a.get()); k++) cells(a.get())[k] = pick(random) * 0.5;
                for (size_t k = 1; k <= harraycount(b.get()); k++) cells(b.get())[k] = pick(random) - 1;
                fpclear();
                const harrayptr r = elementwise(op, a.get(), b.get());
                const unsigned faults = fp.total;
                fpclear();
                ASSERT_EQ(r->rows, std::max(p.rows, q.rows));
                ASSERT_EQ(r->cols, std::max(p.cols, q.cols));
                for (uint32_t i = 1; i <= r->rows; i++)
                    for (uint32_t j = 1; j <= r->cols; j++)
                        ASSERT_EQ(at(r.get(), i, j),
                                  scalarop(harrayelem(a.get(), i, j), harrayelem(b.get(), i, j), op))
                            << op << " at " << i << "," << j;
                EXPECT_EQ(faults, fp.total);
            }
}

TEST_F(operatorstest, shapesOfResults) {
    EXPECT_EQ(result(TOKPLUS, matrix(2, 2, {1, 2, 3, 4}), matrix(1, 3, {10, 20, 30})),
              "2x3: 11 22 31 13 24 33");
    EXPECT_EQ(result(TOKTIMES, scalar(2), matrix(2, 2, {1, 2, 3, 4})), "2x2: 2 4 6 8");
    EXPECT_EQ(result(TOKTIMES, matrix(2, 2, {1, 2, 3, 4}), scalar(2)), "2x2: 2 4 6 8");
    EXPECT_EQ(result(TOKTIMES, matrix(2, 2, {1, 2, 3, 4}), matrix(2, 1, {5, 6})), "2x1: 17 39");
    EXPECT_EQ(result(TOKTIMES, matrix(1, 1, {3}), matrix(1, 2, {5, 6})), "1x2: 15 18");
    EXPECT_EQ(result(TOKCELLTIMES, matrix(2, 2, {1, 2, 3, 4}), matrix(2, 1, {5, 6})), "2x2: 5 10 18 24");
    EXPECT_EQ(result(TOKDIVIDE, matrix(2, 1, {1, 2}), matrix(2, 1, {4, 5})), "2x1: 0.25 0.4");
    EXPECT_EQ(result(TOKPOWER, scalar(2), matrix(3, 1, {1, 2, 3})), "3x1: 2 4 8");
    EXPECT_EQ(result(TOKPOWER, matrix(2, 1, {2, 3}), matrix(2, 1, {3, 2})), "2x1: 8 9");
    EXPECT_EQ(result(TOKREPEAT, scalar(2), scalar(3)), "3x1: 2 2 2");
    EXPECT_EQ(result(TOKREPEATBY, scalar(2), scalar(3)), "1x3: 2 2 2");
    EXPECT_EQ(result(TOKREPEAT, scalar(2), scalar(0)), "0x1:");
    EXPECT_EQ(result(TOKREPEAT, matrix(1, 2, {1, 2}), scalar(2.9)), "2x2: 1 2 1 2");
    EXPECT_EQ(result(TOKREPEATBY, matrix(2, 2, {1, 2, 3, 4}), scalar(2)), "2x4: 1 2 1 2 3 4 3 4");
    EXPECT_EQ(result(TOKREPEAT, matrix(0, 2, {0}), scalar(1e9)), "0x2:");
    EXPECT_EQ(temporaries(), 0);
}

TEST_F(operatorstest, crossProducts) {
    const auto hash = [this](int a, int b) {
        std::string text;
        const std::string printed = textof([&] {
            hashop(a, b);
            text = shown(polpop());
        });
        return printed + text;
    };
    EXPECT_EQ(hash(matrix(1, 3, {1, 0, 0}), matrix(1, 3, {0, 1, 0})), "3x1: 0 0 1");
    EXPECT_EQ(hash(matrix(3, 1, {1, 2, 3}), matrix(1, 3, {4, 5, 6})), "3x1: -3 6 -3");
    EXPECT_EQ(hash(matrix(2, 3, {1, 0, 0, 0, 1, 0}), matrix(1, 3, {0, 1, 0})), "2x3: 0 0 1 0 0 0");
    EXPECT_EQ(hash(matrix(2, 2, {1}), matrix(1, 3, {0, 1, 0})),
              "##Error: Incorrect row/col shape of an argument of # operator\n\n");
    EXPECT_EQ(hash(scalar(1), matrix(1, 3, {1})), "##Error: must have MATRIX arguments in # operator\n");
}

TEST_F(operatorstest, matrixPowers) {
    const std::vector<double> fibonacci = {1, 1, 1, 0};
    EXPECT_EQ(result(TOKPOWER, matrix(2, 2, fibonacci), scalar(10)), "2x2: 89 55 55 34");
    EXPECT_EQ(result(TOKPOWER, matrix(2, 2, fibonacci), scalar(1)), "2x2: 1 1 1 0");
    EXPECT_EQ(result(TOKPOWER, matrix(2, 3, {1, 2, 3, 4, 5, 6}), scalar(0)), "3x3: 1 0 0 0 1 0 0 0 1");
    EXPECT_EQ(result(TOKPOWER, matrix(2, 3, {1, 2, 3, 4, 5, 6}), scalar(2)), "3x3: 9 12 15 24 33 42 0 0 0");
    EXPECT_EQ(result(TOKPOWER, matrix(2, 2, fibonacci), scalar(0.5)),
              "##Error: non-integer matrix powers not available yet\n");
    EXPECT_EQ(result(TOKPOWER, matrix(0, 0, {0}), scalar(3)), "0x0:");
}

// A negative power of a padded matrix takes the pseudo-inverse of the padded copy, -1 that of the matrix as
// it stands.
TEST_F(operatorstest, negativeMatrixPowers) {
    operatorfns.pseudoinverse = [](const harray* m) {
        harrayptr r(harraynew(m->cols, m->rows));
        for (uint32_t i = 1; i <= std::min(m->rows, m->cols); i++)
            if (at(m, i, i) != 0) at(r.get(), i, i) = 1 / at(m, i, i);
        return r;
    };
    const std::vector<double> diagonal = {2, 0, 0, 0, 4, 0};
    EXPECT_EQ(result(TOKPOWER, matrix(2, 3, diagonal), scalar(-1)), "3x2: 0.5 0 0 0.25 0 0");
    EXPECT_EQ(result(TOKPOWER, matrix(2, 3, diagonal), scalar(-2)), "3x3: 0.25 0 0 0 0.0625 0 0 0 0");
}

TEST_F(operatorstest, refusals) {
    const struct {
        int op, a, b;
        const char* text;
    } rows[] = {
        {TOKTIMES, matrix(2, 2, {1}), matrix(3, 2, {1}), "matrices to be multiplied must be conformable"},
        {TOKPLUS, symtabenter("NEW"), scalar(1), "only SCALAR or MATRIX types in binary operators"},
        {TOKPLUS, scalar(1), symtabenter("SIN"), "only SCALAR or MATRIX types in binary operators"},
        {TOKPLUS, named("F", USERFUNCTION, UNDEFINEDMARK), scalar(1), "scalar F has not yet been defined"},
        {TOKREPEAT, scalar(1), scalar(-1), "in A^^B or A^^'B, B must be a non-negative integer"},
        {TOKREPEATBY, matrix(1, 1, {1}), scalar(-1), "in A^^B or A^^'B, B must be a non-negative integer"},
        {TOKREPEAT, scalar(1), matrix(2, 1, {1}),
         "in A^^B or A^^'B, A must be a scalar or a matrix and B must be a scalar"},
        {TOKREPEAT, scalar(1), scalar(1e300), "Too many elements requested in 'xalloc()'"},
        {TOKREPEATBY, matrix(1, 3, {1}), scalar(1e9), "Too many elements requested in 'xalloc()'"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(result(row.op, row.a, row.b), std::string("##Error: ") + row.text + "\n");
}

// A temporary of the right shape gives its block to the result; a named matrix is never touched.
TEST_F(operatorstest, temporariesAreReusedAndNamesKept) {
    const int name = named("A", MATRIX);
    sym(name).val.ptr = filled(50, 50, {1, 2, 3}).release();
    const harray* kept = matrixof(name);
    const int temp = matrix(50, 50, {5});
    const harray* block = matrixof(temp);
    binop(TOKDIVIDE, name, temp);
    const int r = polpop();
    EXPECT_EQ(matrixof(r), block);
    EXPECT_EQ(cells(matrixof(r))[2], 0.4);
    EXPECT_EQ(matrixof(name), kept);
    EXPECT_EQ(cells(kept)[2], 2);
    binop(TOKPLUS, name, name);
    EXPECT_EQ(cells(matrixof(polpop()))[3], 6);
    EXPECT_EQ(cells(kept)[3], 3);
}

TEST_F(operatorstest, faultsOfScalars) {
    const struct {
        int op;
        double x, y, value;
        const char* text;
    } rows[] = {{TOKDIVIDE, 1, 0, MAXPOS, "\nFloating Point Error: Divide by Zero\n"},
                {TOKDIVIDE, -1, 0, MAXNEG, "\nFloating Point Error: Divide by Zero\n"},
                {TOKDIVIDE, 0, 0, MAXPOS, "\nFloating Point Error: Zero Divide by Zero\n"},
                {TOKDIVIDE, 1e300, -1e-300, MAXNEG, "\nFloating Point Error: Overflow\n"},
                {TOKTIMES, 1e200, 1e200, MAXPOS, "\nFloating Point Error: Overflow\n"},
                {TOKPLUS, MAXNEG, MAXNEG, MAXNEG, "\nFloating Point Error: Overflow\n"},
                {TOKPOWER, 1e200, 2, MAXPOS, "\nFloating Point Error: Overflow\n"},
                {TOKPOWER, -10, 309, MAXNEG, "\nFloating Point Error: Overflow\n"},
                {TOKPOWER, 0, 0, 1, "matherr: domain error in pow\n"},
                {TOKPOWER, 0, -1, MAXPOS, "matherr: singularity error in pow\n"},
                {TOKPOWER, -2, 0.5, 0, "matherr: domain error in pow\n"},
                {TOKPOWER, 1e-200, 2, 0, ""},
                {TOKTIMES, 1e-200, 1e-200, 0, ""}};
    for (const auto& row : rows) {
        fpclear();
        double value = -1;
        EXPECT_EQ(textof([&] { value = scalarop(row.x, row.y, row.op); }), row.text) << row.x << " " << row.y;
        EXPECT_EQ(value, row.value) << row.op << ": " << row.x << " " << row.y;
    }
}

// Two million cells with a few faults among them: repaired, counted and told of in reading order, up to the
// limit.
TEST_F(operatorstest, faultsInsideALargeMatrix) {
    const int a = matrix(1000, 1000, {1}), b = matrix(1000, 1000, {4});
    at(matrixof(b), 1, 1) = 0;                                          // 1/0
    at(matrixof(a), 500, 3) = 0, at(matrixof(b), 500, 3) = 0;           // 0/0
    at(matrixof(a), 500, 4) = -1e300, at(matrixof(b), 500, 4) = 1e-300; // overflow
    at(matrixof(a), 1000, 1000) = -1, at(matrixof(b), 1000, 1000) = 0;
    fp.limit = 3;
    int r = 0;
    const std::string text = textof([&] {
        binop(TOKCELLDIVIDE, a, b);
        pendingfinish();
        r = polpop();
    });
    EXPECT_EQ(text, "\nFloating Point Error: Divide by Zero\n\nFloating Point Error: Zero Divide by Zero\n"
                    "\nFloating Point Error: Overflow\n");
    EXPECT_EQ(fp.total, 4u);
    EXPECT_EQ(fp.divzero, 2u);
    EXPECT_EQ(fp.zerodivzero, 1u);
    EXPECT_EQ(fp.overflow, 1u);
    EXPECT_EQ(at(matrixof(r), 1, 1), MAXPOS);
    EXPECT_EQ(at(matrixof(r), 500, 3), MAXPOS);
    EXPECT_EQ(at(matrixof(r), 500, 4), MAXNEG);
    EXPECT_EQ(at(matrixof(r), 1000, 1000), MAXNEG);
    EXPECT_EQ(at(matrixof(r), 2, 2), 0.25);
}

TEST_F(operatorstest, matrixIf) {
    const auto select = [this](int c, int a, int b) {
        for (const int idx : {c, a, b}) polpush(idx);
        std::string text;
        const std::string printed = textof([&] {
            ifmatrixselect();
            text = shown(polpop());
        });
        return printed + text;
    };
    EXPECT_EQ(select(matrix(2, 2, {1, 0, 0, 2}), scalar(7), matrix(2, 2, {1, 2, 3, 4})), "2x2: 7 2 3 7");
    EXPECT_EQ(select(matrix(1, 3, {0, 1, 0}), scalar(1), scalar(2)), "1x3: 2 1 2");
    EXPECT_EQ(select(matrix(3, 1, {1, 1, 0}), matrix(2, 1, {5, 6}), scalar(0)), "3x1: 5 6 0");
    EXPECT_EQ(select(matrix(1, 1, {1}), symtabenter("NEW"), scalar(0)),
              "##Error: expected scalar or matrix type\n");
}

// The product as it is defined, the sums taken in order.
harrayptr plainproduct(const harray* a, const harray* b) {
    harrayptr c(harraynew(a->rows, b->cols));
    for (uint32_t i = 1; i <= a->rows; i++)
        for (uint32_t j = 1; j <= b->cols; j++)
            for (uint32_t k = 1; k <= a->cols; k++)
                at(c.get(), i, j) = at(c.get(), i, j) + at(a, i, k) * at(b, k, j);
    return c;
}

harrayptr randommatrix(uint32_t rows, uint32_t cols, std::mt19937& random) {
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-20, 20);
    harrayptr m(harraynew(rows, cols));
    for (size_t k = 1; k <= harraycount(m.get()); k++)
        cells(m.get())[k] = std::ldexp(mantissa(random), exponent(random));
    return m;
}

bool samebits(const harray* a, const harray* b) {
    return a->rows == b->rows && a->cols == b->cols &&
           memcmp(cells(a) + 1, cells(b) + 1, harraycount(a) * sizeof(double)) == 0;
}

TEST_F(operatorstest, productEqualsThePlainLoopBitForBit) {
    const struct {
        uint32_t m, k, n;
    } shapes[] = {{1, 1, 1},    {2, 3, 4},      {3, 0, 3},     {0, 5, 2},     {8, 8, 24},     {9, 17, 25},
                  {64, 64, 64}, {1, 300, 1},    {300, 1, 300}, {1, 90, 700},  {700, 90, 1},   {601, 7, 5},
                  {5, 601, 5},  {31, 257, 385}, {100, 513, 3}, {3, 513, 100}, {40, 256, 384}, {33, 600, 800}};
    std::mt19937 random(2);
    for (const auto& s : shapes) {
        const harrayptr a = randommatrix(s.m, s.k, random), b = randommatrix(s.k, s.n, random);
        EXPECT_TRUE(samebits(matmul(a.get(), b.get()).get(), plainproduct(a.get(), b.get()).get()))
            << s.m << " by " << s.k << " by " << s.n;
    }
}

TEST_F(operatorstest, everyKindOfTileGivesTheSameBits) {
    std::mt19937 random(3);
    const size_t depth = 41;
    for (int which = 0; const matmultiles* kind = matmulkinds(which); which++) {
        const harrayptr a = randommatrix(uint32_t(depth), uint32_t(kind->rows), random);
        const harrayptr b = randommatrix(uint32_t(depth), uint32_t(kind->cols), random);
        std::vector<double> tile(kind->rows * kind->cols, 0.5), expected(tile);
        kind->run(depth, cells(a.get()) + 1, cells(b.get()) + 1, tile.data());
        for (size_t i = 0; i < kind->rows; i++)
            for (size_t j = 0; j < kind->cols; j++)
                for (size_t k = 1; k <= depth; k++)
                    expected[i * kind->cols + j] += at(a.get(), k, i + 1) * at(b.get(), k, j + 1);
        EXPECT_EQ(tile, expected) << which;
    }
    EXPECT_NE(matmulkinds(0), nullptr);
}

// Faults of a product are those of its plain loop: each product and each sum that overflows is one.
TEST_F(operatorstest, faultsOfAProduct) {
    const int a = matrix(60, 60, {1e-3}), b = matrix(60, 60, {1});
    at(matrixof(a), 3, 5) = 1e200;
    at(matrixof(b), 5, 7) = 1e200;
    at(matrixof(a), 60, 1) = -1.5e308;
    at(matrixof(a), 60, 2) = -1.5e308;
    fp.limit = 2;
    int r = 0;
    EXPECT_EQ(textof([&] {
                  binop(TOKTIMES, a, b);
                  r = polpop();
              }),
              "\nFloating Point Error: Overflow\n\nFloating Point Error: Overflow\n");
    EXPECT_EQ(fp.overflow, 61u) << "one product, and a sum in each of the 60 cells of the last row";
    EXPECT_EQ(at(matrixof(r), 3, 7), MAXPOS);
    EXPECT_EQ(at(matrixof(r), 60, 1), MAXNEG);
    EXPECT_NEAR(at(matrixof(r), 1, 1), 0.06, 1e-15);
}

} // namespace
