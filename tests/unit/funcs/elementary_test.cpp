// Scalar functions of one and two arguments: values, defaults of arguments, faults, the generator.
#include "funcs/ran.h"
#include "support/datarows.h"
#include "unit/funcs/session.h"

#include <cmath>

namespace {

struct elementarytest : funcstest {
    static double call(const char* name, const std::vector<double>& x) {
        return scalarbuiltin(sym(symtablookup(name)).type, x.data(), int(x.size()));
    }
};

TEST_F(elementarytest, values) {
    for (const pointrow& row : pointrows("funcs/elementary.txt"))
        EXPECT_NEAR(call(row.name.c_str(), row.arguments), row.values[0], 4e-16 * std::fabs(row.values[0]))
            << row.text;
}

TEST_F(elementarytest, exactValues) {
    const struct {
        const char* name;
        std::vector<double> x;
        double value;
    } rows[] = {{"LOG", {8, 2}, 3},       {"LOG2", {8}, 3},
                {"ABS", {-3}, 3},         {"FLOOR", {-1.5}, -2},
                {"CEILING", {-1.5}, -1},  {"ROUND", {2.5}, 3},
                {"ROUND", {-2.5}, -3},    {"ROUND", {0.49999999999999994}, 0},
                {"TRUNC", {-1.5}, -1},    {"SIGN", {-7}, -1},
                {"SIGN", {0}, 0},         {"SIGN", {1e-300}, 1},
                {"MOD", {7, 3}, 1},       {"MOD", {-7, 3}, 2},
                {"MOD", {7, -3}, -2},     {"MOD", {5.5, 2}, 1.5},
                {"MAX", {1, 5, 3}, 5},    {"MAX", {-1}, -1},
                {"MIN", {1, -5, 3}, -5},  {"MIN", {1, 2, 3, 4, 5, 6, 7}, 1},
                {"GCD", {12, 18}, 6},     {"GCD", {0, -4}, 4},
                {"LCM", {4, 6}, 12},      {"LCM", {0, 6}, 0},
                {"ATAN2", {0, -1}, M_PI}, {"COSD", {0}, 1},
                {"SECH", {-800}, 0},      {"COSECH", {800}, 0}};
    for (const auto& row : rows) EXPECT_EQ(call(row.name, row.x), row.value) << row.name << " " << row.x[0];
}

// The degree forms multiply by the constant 0.01745329251994, digits as they stand.
TEST_F(elementarytest, degrees) {
    EXPECT_EQ(call("SIND", {30}), std::sin(30 * 0.01745329251994));
    EXPECT_EQ(call("COSD", {60}), std::cos(60 * 0.01745329251994));
    EXPECT_EQ(call("TAND", {45}), std::tan(45 * 0.01745329251994));
}

TEST_F(elementarytest, faults) {
    const struct {
        const char* name;
        std::vector<double> x;
        double value;
        const char* text;
    } rows[] = {{"EXP", {1000}, MAXPOS, "\nFloating Point Error: Overflow\n"},
                {"EXP", {-1000}, 0, ""},
                {"SINH", {-1000}, MAXNEG, "\nFloating Point Error: Overflow\n"},
                {"LOG", {0}, MAXNEG, "matherr: singularity error in log\n"},
                {"LOG", {-1}, MAXNEG, "matherr: domain error in log\n"},
                {"LOG", {5, 1}, MAXPOS, "\nFloating Point Error: Divide by Zero\n"},
                {"LOG10", {-1}, MAXNEG, "matherr: domain error in log10\n"},
                {"SQRT", {-1}, 0, "matherr: domain error in sqrt\n"},
                {"ASIN", {1.5}, 0, "matherr: domain error in asin\n"},
                {"ACOSD", {-1.5}, 0, "matherr: domain error in acos\n"},
                {"ATANH", {1}, MAXPOS, "matherr: singularity error in atanh\n"},
                {"ATANH", {-1}, MAXNEG, "matherr: singularity error in atanh\n"},
                {"ATANH", {2}, 0, "matherr: domain error in atanh\n"},
                {"ACOSH", {0.5}, 0, "matherr: domain error in acosh\n"},
                {"ASECH", {0}, MAXPOS, "matherr: singularity error in asech\n"},
                {"ASECH", {2}, 0, "matherr: domain error in asech\n"},
                {"ACOSECH", {0}, MAXPOS, "matherr: singularity error in acosech\n"},
                {"ACOTANH", {0.5}, 0, "matherr: domain error in acotanh\n"},
                {"ACOTANH", {-1}, MAXNEG, "matherr: singularity error in acotanh\n"},
                {"ASEC", {0.5}, 0, "matherr: domain error in asec\n"},
                {"ACOSEC", {0.5}, 0, "matherr: domain error in acosec\n"},
                {"COTAN", {0}, MAXPOS, "\nFloating Point Error: Divide by Zero\n"},
                {"COSECH", {0}, MAXPOS, "\nFloating Point Error: Divide by Zero\n"},
                {"MOD", {3, 0}, 3, "\nFloating Point Error: Divide by Zero\n"},
                {"GCD", {1.5, 2}, 0, "Warning: function: GCD. argument out of range\n"},
                {"LCM", {1e17, 2}, 0, "Warning: function: LCM. argument out of range\n"}};
    for (const auto& row : rows) {
        fpclear();
        double value = -1;
        EXPECT_EQ(textof([&] { value = call(row.name, row.x); }), row.text) << row.name;
        EXPECT_EQ(value, row.value) << row.name << " " << row.x[0];
    }
    fpclear();
    fp.limit = 0;
    EXPECT_EQ(textof([&] { call("LOG", {0}); }), "") << "counted in silence";
    EXPECT_EQ(fp.total, 1u);
}

// Missing arguments: 0, 1, 0, 0, 1, 0 from the second on; the count in front where a routine asks for it.
TEST_F(elementarytest, defaultsOfArguments) {
    static constexpr scalarrow rows[] = {
        {-390, [](double a, double b, double c, double d, double e, double f,
                  double g) { return a + 10 * b + 100 * c + 1e3 * d + 1e4 * e + 1e5 * f + 1e6 * g; }},
        {-391, [](double n, double a) { return 100 * n + a; }, COUNTED},
        {-392, [](const double* x, int n) { return n + x[n - 1]; }},
        {-393, []() { return 7.0; }},
        {-394, [](double) { return std::nan(""); }}};
    builtinadd(rows, 5);
    const double x[7] = {1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(scalarbuiltin(-390, x, 1), 100101);
    EXPECT_EQ(scalarbuiltin(-390, x, 3), 100321);
    EXPECT_EQ(scalarbuiltin(-390, x, 7), 7654321);
    EXPECT_EQ(scalarbuiltin(-391, x, 1), 101);
    EXPECT_EQ(scalarbuiltin(-392, x, 7), 14);
    EXPECT_EQ(scalarbuiltin(-393, x, 0), 7);
    EXPECT_EQ(textof([&] { EXPECT_EQ(scalarbuiltin(-394, x, 1), MAXPOS); }),
              "\nFloating Point Error: Unknown\n");
    EXPECT_EQ(textof([&] { EXPECT_EQ(scalarbuiltin(-395, x, 1), 0); }),
              "Warning: function not available--zero returned\n");
    EXPECT_EQ(textof([&] { EXPECT_EQ(scalarbuiltin(-1000, x, 1), 0); }),
              "Warning: function not available--zero returned\n");
}

// What a routine of plain doubles notes is printed after its call, and an error among it ends the statement.
TEST_F(elementarytest, notedFaultsArePrinted) {
    static constexpr scalarrow rows[] = {{-390, [](double kind) {
                                              rangewarn("FIRST");
                                              spnote(spfaultkind(int(kind)), "NAME");
                                              return 5.0;
                                          }}};
    builtinadd(rows, 1);
    const struct {
        spfaultkind kind;
        const char* text;
    } cases[] = {{SPWARN, "Warning: NAME\n"},
                 {SPRANGEWARN, "Warning: function: NAME. argument out of range\n"},
                 {SPRANGEERR, "##Error: NAME: argument out of range\n"},
                 {SPTYPEERR, "##Error: NAME: an expression is of the wrong type\n"},
                 {SPSHAPEERR, "##Error: Incorrect row/col shape of an argument of NAME\n\n"},
                 {SPERR, "##Error: NAME\n"}};
    for (const auto& row : cases) {
        const double kind = row.kind;
        EXPECT_EQ(textof([&] { EXPECT_EQ(scalarbuiltin(-390, &kind, 1), 5); }),
                  std::string("Warning: function: FIRST. argument out of range\n") + row.text);
        EXPECT_EQ(spfaults.count, 0);
    }
}

// Draws by the published recurrence from the stated start, see L'Ecuyer (1988).
TEST_F(elementarytest, generator) {
    const double first[] = {0.5989286708910596, 0.5569712019530308, 0.163875995013913};
    for (const double u : first) EXPECT_EQ(ran(0), u);
    EXPECT_EQ(ran(-1), first[0]) << "below 0 the stream begins again";
    EXPECT_EQ(ran(-1), first[0]);
    const double seeded = ran(3.7);
    EXPECT_EQ(ran(3.7), seeded);
    EXPECT_NE(ran(0), seeded);
    double sum = 0;
    for (int k = 0; k < 100000; k++) {
        const double u = ran(0);
        ASSERT_GT(u, 0);
        ASSERT_LT(u, 1);
        sum += u;
    }
    EXPECT_NEAR(sum / 100000, 0.5, 0.005);
    EXPECT_EQ(call("RAN", {-1}), first[0]);
    EXPECT_EQ(call("RAN", {-1, 10, 20}), 10 + 10 * first[0]);
    EXPECT_EQ(call("RAN", {}), first[1]);
    for (const double seed : {5e-324, 1.0, 1e308, 0x1.5555555555555p+342}) {
        const double u = ran(seed);
        EXPECT_TRUE(u > 0 && u < 1) << seed;
    }
}

} // namespace
