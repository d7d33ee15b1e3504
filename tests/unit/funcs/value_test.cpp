// The evaluator: values, the order of things, every refusal.
#include "unit/funcs/treeread.h"

#include <cmath>

namespace {

struct ValueTest : FuncsTest {};

TEST_F(ValueTest, Table) {
    set("A", 3);
    set("B", -2);
    matrix("M", 2, 3, {11, 12, 13, 21, 22, 23});
    matrix("V", 3, 1, {5, 6, 7});
    define("G(X,Y) = X - 2*Y");
    define("H(X) = G(X, 1) + A");
    define("FACT(N) = IF N<=1 THEN 1 ELSE N*FACT(N-1)");
    const struct {
        const char* body;
        double x, y, expected;
    } rows[] = {
        {"X", 4, 0, 4},
        {"-3", 0, 0, -3},
        {"X + Y*2", 1, 4, 9},
        {"X^Y", 2, 10, 1024},
        {"-X^2", 3, 0, -9},
        {"X/Y - Y/X", 2, 8, -3.75},
        {"X<Y", 1, 2, 1},
        {"X<=Y", 2, 2, 1},
        {"X>Y", 1, 2, 0},
        {"X>=Y", 1, 2, 0},
        {"X=Y", 2, 2, 1},
        {"X AND Y", 2, 0, 0},
        {"X OR Y", 2, 0, 1},
        {"NOT X", 0, 0, 1},
        {"IF X>Y THEN X ELSE Y", 3, 5, 5},
        {"IF X>0 THEN IF X>1 THEN 1 ELSE 2 ELSE 3", 0.5, 0, 2},
        {"A*X + B", 2, 0, 4},
        {"G(X, Y)", 10, 3, 4},
        {"H(X) + G(Y, X)", 1, 2, 2},
        {"FACT(X)", 5, 0, 120},
        {"M(X, Y)", 2, 3, 23},
        {"M(X)", 2, 0, 21},
        {"V(X)*M(1, Y)", 3, 2, 84},
        {"MAX(X, Y, 7, 3)", 9, 2, 9},
        {"LOG(X, Y)", 8, 2, 3},
        {"SUM(I, 1, 3, I*X)", 2, 0, 12},
        {"SUM(I, 3, 2, I)", 0, 0, 0},
        {"PRODUCT(I, 3, 2, I)", 0, 0, 1},
        {"SUM(I, 1, 2.5, I)", 0, 0, 3},
        {"PRODUCT(I, 1, X, I)", 6, 0, 720},
        {"EVAL(I, X, I^2)", 7, 0, 49},
        {"ROOT(I, 0, 1, I)", 0, 0, 0},
        {"INTEGRAL(I, 1e10, 1e10 + 1, 1)", 0, 0, 0},
        {"(Z _ X) + Z", 3, 0, 6},
    };
    for (const auto& row : rows) {
        define(std::string("F(X,Y) = ") + row.body);
        EXPECT_EQ(call("F", {row.x, row.y}), row.expected) << row.body;
        EXPECT_EQ(sym(symtablookup("F")).val.rval, row.expected) << "last value of " << row.body;
    }
}

} // namespace
