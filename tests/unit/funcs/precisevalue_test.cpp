// Values and gradients at twice the precision. Expected numbers by mpmath 1.3 at 60 digits, as sums of two
// doubles.
#include "funcs/precisevalue.h"
#include "unit/funcs/defined.h"

#include <cmath>

namespace {

struct PreciseValueTest : FuncsTest {};

double digitsof(dd value, dd expected) {
    const dd off = fabs(value - expected);
    return off.hi == 0 ? 40 : -std::log10(off.hi / std::max(std::fabs(expected.hi), 0.1));
}

// X = 1.1 as it is written; P and Q hold the doubles of 1.3 and 0.4.
TEST_F(PreciseValueTest, Table) {
    set("P", 1.3);
    set("Q", 0.4);
    set("C", 0.7);
    matrix("V", 2, 1, {0.1, 0.3});
    define("G(X,Y) = X*Y - Y^2");
    const struct {
        const char* body;
        dd expected[3]; // the value, its derivatives by P and Q
    } rows[] = {
        {"P*EXP(-Q*X)",
         {{0.8372473474080838, -4.5365634837746727e-17},
          {0.6440364210831413, 4.5584742755326624e-17},
          {-0.9209720821488921, -5.608952909736425e-18}}},
        {"P + Q*X - X/P",
         {{0.893846153846154, -1.2941653008944134e-17},
          {1.650887573964497, -3.7900194286247946e-17},
          {1.1, -8.881784197001253e-17}}},
        {"(X+P)^Q",
         {{1.4193336415251103, -6.16702472537971e-17},
          {0.23655560692085173, -1.07759170339189e-17},
          {1.242582231029901, 8.204573042475711e-17}}},
        {"P^-3*X^2 + Q^5",
         {{0.5609910241238051, 5.320287188990508e-17},
          {-1.2709639018241656, -1.5218684721048344e-17},
          {0.12800000000000003, -1.9984014443252793e-18}}},
        {"2^P - P^X",
         {{1.127730105994331, -4.2097951793803726e-17},
          {0.5774865635096581, -3.462067992244308e-17},
          {0.0, 0.0}}},
        {"SIN(P*X)*COS(Q) + TAN(Q*X)",
         {{1.3827272177885723, -9.596685544401566e-17},
          {0.14217936520833793, 2.8130335884110357e-18},
          {0.958232858751436, 4.15735155416745e-17}}},
        {"LOG(P*X) + LOG10(Q) + LOG2(X+Q) + SQRT(P+Q)",
         {{1.8485374173614644, -4.241824385135847e-17},
          {1.1527132636544544, 4.7915097122820233e-17},
          {2.4310153931077902, 6.490998960843196e-17}}},
        {"ASIN(Q*X) + ACOS(Q/2) - ATAN(P*X)",
         {{0.8644972334611197, 4.857080234405751e-17},
          {-0.36125981148806197, -2.277729798931897e-17},
          {0.7146369956854497, -1.960236963826959e-17}}},
        {"SINH(Q*X/100) + COSH(P) - TANH(Q)",
         {{1.5953652822687507, -7.999807488075073e-17},
          {1.698382437292616, -5.785602655070164e-17},
          {-0.8446386796010059, 2.1846663487485604e-17}}},
        {"ABS(Q - P)*X",
         {{0.99, 3.3306690738754695e-17}, {1.1, -8.881784197001253e-17}, {-1.1, 8.881784197001253e-17}}},
        {"IF X > Q THEN P*X ELSE Q*X",
         {{1.43, 1.1102230246251565e-16}, {1.1, -8.881784197001253e-17}, {0.0, 0.0}}},
        {"(X > Q)*P + (P = 0)*Q + (NOT Q)", {{1.3, 0.0}, {1.0, 0.0}, {0.0, 0.0}}},
        {"MAX(P, Q, X) + MIN(P, Q)*Q", {{1.46, 9.769962616701378e-17}, {1.0, 0.0}, {0.8, 0.0}}},
        {"SUM(K, 1, 3, P^K*X/K) + PRODUCT(K, 1, 2, Q + K) + EVAL(K, P*Q, K*K)",
         {{6.795466666666667, 6.14323406959254e-18},
          {4.805000000000001, -3.6770586575585183e-16},
          {5.152, 7.682743330406084e-17}}},
        {"G(X, Q) + C*P",
         {{1.19, 9.103828801926283e-17},
          {0.7, 4.4408920985006264e-17},
          {0.29999999999999993, 2.2204460492503132e-17}}},
        {"V(2)*X + V(1)*P", {{0.46, -1.5543122344752193e-17}, {0.1, -5.551115123125783e-18}, {0.0, 0.0}}},
    };
    for (const auto& row : rows) {
        define(std::string("F(X) = ") + row.body);
        preciseevaluator evaluator({{symtabenter("P"), 0}, {symtabenter("Q"), 0}});
        const dd p[] = {1.3, 0.4};
        dd got[3];
        ASSERT_TRUE(evaluator.run(symtabenter("F"), {precisedecimal(1.1)}, p, got[0], got + 1)) << row.body;
        for (int k = 0; k < 3; k++)
            EXPECT_GT(digitsof(got[k], row.expected[k]), 29.5) << row.body << " " << k;
    }
}

TEST_F(PreciseValueTest, CellsOfAMatrixAreParameters) {
    matrix("B", 2, 2, {1, 2, 3, 4});
    define("F(X) = B(1,2)*X + B(2)^2");
    const int b = symtabenter("B");
    preciseevaluator evaluator({{b, 1}, {b, 2}, {b, 3}, {b, 4}});
    const dd p[] = {1, 2, 3, 4};
    dd value, gradient[4];
    ASSERT_TRUE(evaluator.run(symtabenter("F"), {5}, p, value, gradient));
    EXPECT_EQ(value.hi, 19);
    const double expected[] = {0, 5, 6, 0};
    for (int k = 0; k < 4; k++) EXPECT_EQ(gradient[k].hi, expected[k]) << k;
}

TEST_F(PreciseValueTest, WhatIsNotKnownOrHasNoValueIsRefused) {
    set("P", 2);
    matrix("V", 2, 1, {0.1, 0.3});
    define("H(X) = X");
    define("R(X) = R(X + P)");
    for (const char* body : {"BESSJ(0, P*X)", "LOG(-P)", "SQRT(P - 3)", "P/(P - 2)", "(P - 3)^0.5",
                             "(P - 2)^-1", "V(3)*P", "V(0)*P", "H*P", "UNKNOWN1*P", "R(X)",
                             "SUM(K, 1, 1E6, P)", "EXP(P*1000)", "ASIN(P)", "H(1, P)", "V*P"}) {
        define(std::string("F(X) = ") + body);
        preciseevaluator evaluator({{symtabenter("P"), 0}});
        const dd p = 2;
        dd value, gradient;
        EXPECT_FALSE(evaluator.run(symtabenter("F"), {1}, &p, value, &gradient)) << body;
    }
}

TEST_F(PreciseValueTest, DecimalsAreThoseThatWereWritten) {
    const struct {
        double read;
        dd written;
    } rows[] = {
        {0.1, dd(1) / 10.0},
        {-0.3, dd(-3) / 10.0},
        {2513400000000 * 1e-12,
         dd(25134) / 10000.0}, // as READ makes it of 2.513400000000, off the nearest double
        {1e-20, dd(1) / dd(1e20)},
        {3 * 0.1, dd(3) / 10.0}, // likewise, of 0.3
        {1.0 / 3, 1.0 / 3},
        {1.4142135623730951, 1.4142135623730951},
        {3.141592653589793, 3.141592653589793}, // 16 digits
        {12345678, 12345678},
        {0, 0},
        {1e300, 1e300},
        {1e-300, 1e-300},
    };
    for (const auto& row : rows) {
        const dd got = precisedecimal(row.read);
        EXPECT_EQ(got.hi, row.written.hi) << row.read;
        EXPECT_EQ(got.lo, row.written.lo) << row.read;
    }
}

} // namespace
