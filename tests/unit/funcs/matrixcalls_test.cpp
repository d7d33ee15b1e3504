// Builtins on matrices by their statements' results: linear algebra, arrangement, statistics of columns.
#include "unit/funcs/session.h"

namespace {

using matrixcallstest = funcstest;

int rows4() { return matrix(4, 2, {3, 1, 1, 2, 2, 3, 1, 4}); }
int data() { return matrix(4, 1, {1, 2, 4, 7}); }
int square() { return matrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}); }

TEST_F(matrixcallstest, arrangement) {
    EXPECT_EQ(result("SORT", {rows4()}), "4x2: 1 2 1 4 2 3 3 1") << "equal keys keep their order";
    EXPECT_EQ(result("SORT", {rows4(), scalar(2)}), "4x2: 3 1 1 2 2 3 1 4");
    EXPECT_EQ(result("SORT", {matrix(6, 1, {1e300, -1e-300, 0, -1e300, 1e-300, -2})}),
              "6x1: -1e+300 -2 -1e-300 0 1e-300 1e+300");
    EXPECT_EQ(result("SORT", {matrix(0, 2, {0})}), "0x2:");
    EXPECT_EQ(result("RDUP", {rows4(), scalar(1)}), "3x2: 3 1 1 2 2 3");
    EXPECT_EQ(result("RDUP", {matrix(3, 2, {1, 2, 1, 2, 2, 1})}), "2x2: 1 2 2 1");
    EXPECT_EQ(result("COMPRESS", {matrix(3, 2, {0, 1, 2, 3, 0, 5})}), "1x2: 2 3");
    EXPECT_EQ(result("GETDIAG", {square()}), "3x1: 1 5 9");
    EXPECT_EQ(result("GETDIAG", {square(), scalar(1)}), "2x1: 2 6");
    EXPECT_EQ(result("GETDIAG", {square(), scalar(-2)}), "1x1: 7");
    EXPECT_EQ(result("BAND", {square(), scalar(1)}), "3x3: 1 2 0 4 5 6 0 8 9");
    EXPECT_EQ(result("LOGLIN", {matrix(2, 2, {1, 10, MAXPOS, 2})}), "2x2: 0 10 1.79769313486232e+308 2");
}

// Numbers that agree in their leading digits alone must still come in order.
TEST_F(matrixcallstest, sortAgreesWithComparison) {
    std::vector<double> x(5000), key(2500);
    unsigned state = 1;
    for (size_t i = 0; i < x.size(); i++) {
        state = state * 1664525u + 1013904223u;
        x[i] = i % 2 ? double(i) : 1 + (state >> 8) % 1000 * 0x1p-50 * (i % 3 ? 1 : -1);
    }
    const int sorted = [&] {
        polpush(symtablookup("SORT"));
        polpush(matrix(2500, 2, x));
        return valuebuiltinrow(-614)->call(callargs{0, 1, -614});
    }();
    std::vector<std::pair<double, double>> expected;
    for (size_t i = 0; i < 2500; i++) expected.push_back({x[2 * i], x[2 * i + 1]});
    std::stable_sort(expected.begin(), expected.end(), [](auto& a, auto& b) { return a.first < b.first; });
    for (uint32_t i = 0; i < 2500; i++) {
        ASSERT_EQ(at(matrixof(sorted), i + 1, 1), expected[i].first) << i;
        ASSERT_EQ(at(matrixof(sorted), i + 1, 2), expected[i].second) << i;
    }
}

// Values from numpy and scipy.stats.
TEST_F(matrixcallstest, statistics) {
    const struct {
        const char *name, *value;
    } rows[] = {{"MEAN", "3.5"},
                {"MEDIAN", "3"},
                {"VAR", "7"},
                {"STDDEV", "2.64575131106459"},
                {"AVDEV", "2"},
                {"SKEW", "0.49878374911084"},
                {"KURT", "-1.23809523809524"},
                {"MMEAN", "1x1: 3.5"},
                {"SUMSQ", "70"},
                {"ENTROPY", "1.17099712611621"},
                {"RENYI", "1.02961941718116"},
                {"SIMPSON", "0.642857142857143"},
                {"GINI", "0.357142857142857"},
                {"EVENNESS", "0.844695873371544"}};
    for (const auto& row : rows) EXPECT_EQ(result(row.name, {data()}), row.value) << row.name;
    EXPECT_EQ(result("QUANTILE", {data(), scalar(0.3)}), "1.9");
    EXPECT_EQ(result("MOMENT", {data(), scalar(2)}), "5.25");
    EXPECT_EQ(result("MEAN", {square()}), "1x3: 4 5 6");
    EXPECT_EQ(result("MVAR", {square()}), "1x3: 9 9 9");
    EXPECT_EQ(result("MQUANTILE", {data(), matrix(2, 1, {0.25, 1})}), "2x1: 1.75 7");
    EXPECT_EQ(result("VAR", {matrix(3, 1, {1e9 + 1, 1e9 + 2, 1e9 + 3})}), "1");
    EXPECT_EQ(result("MEAN", {matrix(2, 1, {1.5e308, 1.5e308})}), "1.5e+308");
    EXPECT_EQ(result("RENYI", {data(), scalar(1)}), result("ENTROPY", {data()}));
    EXPECT_EQ(result("ENTROPY", {matrix(2, 1, {5, 0})}), "0");
}

TEST_F(matrixcallstest, linearAlgebra) {
    const auto a = [] { return matrix(2, 2, {2, 1, 1, 3}); };
    EXPECT_EQ(result("INV", {a()}), "2x2: 0.6 -0.2 -0.2 0.4");
    EXPECT_EQ(result("LINEQ", {a(), matrix(2, 1, {1, 2})}), "2x1: 0.2 0.6");
    EXPECT_EQ(result("DET", {a()}), "5");
    EXPECT_EQ(result("RANK", {matrix(3, 2, {0})}), "0");
    EXPECT_EQ(result("RANK", {matrix(2, 2, {1, 0, 0, 1e-300})}), "2") << "no tolerance";
    EXPECT_EQ(result("COND", {matrix(3, 3, {4, 0, 0, 0, 2, 0, 0, 0, 0})}), "2");
    EXPECT_EQ(result("MNORM", {matrix(2, 2, {1, -2, 3, 4}), scalar(1)}), "6");
    EXPECT_EQ(result("MNORM", {matrix(2, 2, {1, -2, 3, 4}), scalar(MAXPOS)}), "7");
    EXPECT_EQ(result("MNORM", {matrix(2, 2, {3, 0, 0, 4})}), "4");
    EXPECT_EQ(result("MRHO", {matrix(2, 2, {0, -3, 3, 0})}), "3");
    EXPECT_EQ(result("LENGTH", {matrix(1, 2, {3e300, 4e300})}), "5e+300");
    EXPECT_EQ(result("LENGTH", {data(), scalar(1)}), "14");
    EXPECT_EQ(result("LENGTH", {data(), scalar(0)}), "4");
    EXPECT_EQ(result("EIGEN", {matrix(2, 2, {0, -1, 1, 0})}).substr(0, 14), "6x2: 0 0 1 -1 ");
    EXPECT_EQ(result("SVD", {matrix(3, 2, {3, 0, 0, 2, 0, 0})}).substr(0, 9), "6x2: 3 2 ");
    EXPECT_EQ(result("QRFAC", {matrix(2, 2, {3, 0, 4, 5})}), "4x2: 0.6 -0.8 0.8 0.6 5 4 0 3");
    EXPECT_EQ(result("QRFAC", {matrix(1, 2, {-2, 4})}), "2x2: -1 0 2 -4");
    EXPECT_EQ(result("QRFAC", {matrix(2, 2, {1, 2, 0, -3})}), "4x2: 1 0 0 -1 1 2 0 3");
    EXPECT_EQ(result("COND", {matrix(2, 2, {2, 4, 4, 8})}), "1") << "zero values are not counted";
}

TEST_F(matrixcallstest, refusals) {
    const struct {
        const char* name;
        std::vector<int> args;
        const char* text;
    } rows[] = {
        {"INV", {matrix(2, 3, {1})}, "Incorrect row/col shape of an argument of INV\n"},
        {"INV", {matrix(2, 2, {1})}, "INV: numerically singular matrix"},
        {"LINEQ", {matrix(2, 2, {1}), data()}, "Incorrect row/col shape of an argument of LINEQ\n"},
        {"LINEQ", {matrix(2, 2, {1}), matrix(2, 1, {1})}, "LINEQ: numerically singular matrix"},
        {"EIGEN", {matrix(2, 3, {1})}, "Incorrect row/col shape of an argument of EIGEN\n"},
        {"LENGTH", {data(), scalar(-1)}, "LENGTH: norm must be non-negative"},
        {"SORT", {rows4(), scalar(3)}, "SORT: sorting column: 3 out of range"},
        {"SORT", {rows4(), scalar(0)}, "SORT: sorting column: 0 out of range"},
        {"COMPRESS", {rows4(), scalar(1e9)}, "COMPRESS: column number 32767 out of range"},
        {"GETDIAG", {square(), scalar(3)}, "GETDIAG: illegal diagonal index specified"},
        {"BAND", {square(), scalar(3)}, "BAND: illegal diagonal index specified"},
        {"QUANTILE", {data(), scalar(1.5)}, "QUANTILE: argument out of range"},
        {"MOMENT", {data(), scalar(1.5)}, "MOMENT: argument out of range"},
        {"ENTROPY", {matrix(2, 1, {0})}, "ENTROPY: argument out of range"},
        {"GINI", {matrix(2, 1, {1, -1})}, "GINI: argument out of range"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(result(row.name, row.args), "##Error: " + std::string(row.text) + "\n") << row.name;
}

} // namespace
