// Functions of complex numbers, laid out in matrices of two columns.
#include "funcs/calls.h"
#include "support/datarows.h"
#include "unit/funcs/session.h"

#include <cmath>

namespace {

struct complexfunctionstest : funcstest {
    // Relative to the modulus of each number.
    void expectvalues(const char* name, int idx, const std::vector<double>& w) {
        ASSERT_GT(idx, 0) << name << out;
        const harray* m = matrixof(idx);
        ASSERT_EQ(m->cols, 2u) << name;
        ASSERT_EQ(m->rows * 2, w.size()) << name;
        for (size_t i = 0; i < w.size(); i += 2) {
            const double unit = 2e-15 * std::hypot(w[i], w[i + 1]);
            EXPECT_NEAR(cells(m)[i + 1], w[i], unit) << name;
            EXPECT_NEAR(cells(m)[i + 2], w[i + 1], unit) << name;
        }
    }
};

TEST_F(complexfunctionstest, values) {
    for (const pointrow& row : pointrows("funcs/complex.txt")) {
        const int z = matrix(uint32_t(row.arguments.size() / 2), 2, row.arguments);
        expectvalues(row.name.c_str(), call(row.name.c_str(), {z}), row.values);
        EXPECT_EQ(out, "") << row.text;
    }
}

// A second operand recycles; a scalar is a real number.
TEST_F(complexfunctionstest, pairs) {
    expectvalues("LOG", call("LOG", {matrix(2, 2, {100, 0, 0, 1}), scalar(10)}),
                 {2, 0, 0, M_PI_2 / std::log(10)});
    expectvalues("LOG", call("LOG", {scalar(16), matrix(2, 2, {2, 0, 4, 0})}), {4, 0, 2, 0});
    expectvalues("CPOW", call("CPOW", {matrix(1, 2, {1, 2}), scalar(2)}), {-3, 4});
    expectvalues("CMATH", call("CMATH", {scalar(404), matrix(2, 2, {1, 2, 3, 4}), matrix(1, 2, {0, 1})}),
                 {-2, 1, -4, 3});
    expectvalues("CPRODUCT", call("CPRODUCT", {matrix(1, 4, {1, 2, 3, 4}), matrix(2, 2, {0, 1, 1, 0})}),
                 {1, 5});
}

TEST_F(complexfunctionstest, rootsOfPolynomials) {
    expectvalues("PROOT", call("PROOT", {matrix(4, 1, {1, -6, 11, -6})}), {1, 0, 2, 0, 3, 0});
    expectvalues("PROOT", call("PROOT", {matrix(1, 3, {1, 0, 1})}), {0, -1, 0, 1});
    expectvalues("ZROOT", call("ZROOT", {matrix(2, 2, {1, 0, -3, -4})}), {3, 4});
}

TEST_F(complexfunctionstest, faultsAndRefusals) {
    const struct {
        const char* name;
        std::function<std::vector<int>()> args;
        const char* text;
    } rows[] = {
        {"SIN", [] { return std::vector<int>{matrix(2, 3, {1})}; },
         "##Error: Incorrect row/col shape of an argument of SIN\n\n"},
        {"CMATH",
         [] {
             return std::vector<int>{scalar(405), scalar(1), matrix(1, 2, {0, 0})};
         },
         "##Error: complex division by zero\n"},
        {"GAMMA",
         [] {
             return std::vector<int>{matrix(2, 2, {-1, 0, -2, 0})};
         },
         "Warning: function: GAMMA. argument out of range\n"},
        {"LOG",
         [] {
             return std::vector<int>{matrix(1, 2, {2, 0}), scalar(0)};
         },
         "Warning: function: LOG. argument out of range\n"},
        {"PROOT",
         [] {
             return std::vector<int>{matrix(2, 1, {0, 1})};
         },
         "##Error: zero degree or highest coefficient equal to zero not allowed\n"},
        {"PROOT", [] { return std::vector<int>{matrix(2, 2, {1})}; },
         "##Error: Incorrect row/col shape of an argument of PROOT\n\n"},
        {"CPRODUCT",
         [] {
             return std::vector<int>{matrix(2, 2, {1}), matrix(2, 2, {1})};
         },
         "##Error: Incorrect row/col shape of an argument of CPRODUCT\n\n"},
    };
    for (const auto& row : rows) {
        call(row.name, row.args());
        EXPECT_EQ(fixedwords(out), row.text) << row.name;
    }
}

} // namespace
