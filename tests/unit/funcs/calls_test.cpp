// The reduction of a call: signatures, scalar and matrix forms, subscripts, functions over rows.
#include "funcs/calls.h"

#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/hooks.h"
#include "unit/funcs/session.h"

namespace {

using callstest = funcstest;

int text(const char* s) { return symtabtemp(0, 0, xstrdup(s), TEMPSTRING, 0); }

// FUNCTION name(X) = X op c, built of nodes.
int userfunction(const char* name, int op, double c) {
    const int x = symtabenter("X");
    parser.funcmode = 1;
    const int constant = symtabconst(c);
    parser.funcmode = 0;
    const int f = named(name, USERFUNCTION, UNDEFINEDMARK);
    const int formal = trialloc(TREEFORMAL, 0, x);
    sym(f).index = int16_t(trialloc(TREEHEADER, formal, trialloc(op, FORMALBASE + 1, constant)));
    return f;
}

TEST_F(callstest, scalarsAndDefaults) {
    EXPECT_EQ(result("SQRT", {scalar(9)}), "3");
    EXPECT_EQ(result("LOG", {scalar(8), scalar(2)}), "3");
    EXPECT_EQ(result("BESSJ", {scalar(0), scalar(1)}), "0.765197686557967");
    EXPECT_EQ(result("ABS", {scalar(-2)}), "2");
    EXPECT_EQ(result("ABS", {matrix(1, 2, {3, 4})}), "5");
    EXPECT_EQ(result("NROWS", {matrix(3, 2, {1})}), "3");
    EXPECT_EQ(result("MAXV", {matrix(3, 2, {1, 9, 4})}), "9");
    EXPECT_EQ(result("MAX", {scalar(1), scalar(7), scalar(3)}), "7");
    EXPECT_EQ(result("MAX", {scalar(1), matrix(1, 2, {-5, 8})}), "8");
    EXPECT_EQ(result("MIN", {matrix(1, 2, {-5, 8})}), "-5");
    EXPECT_EQ(result("LOOKUP", {matrix(2, 2, {0, 1, 2, 3}), scalar(1)}), "2");
    EXPECT_EQ(result("SHAPE", {scalar(1), scalar(2), scalar(5)}), "1x2: 5 5");
    EXPECT_EQ(result("TYPEOF", {symtabenter("NEW")}), "1");
    EXPECT_EQ(result("STRREV", {text("abc")}), "cba");
}

TEST_F(callstest, userFunctions) {
    const int f = userfunction("F", TREETIMES, 3);
    EXPECT_EQ(result(f, {scalar(5)}), "15");
    EXPECT_EQ(sym(f).val.rval, 15);
    EXPECT_EQ(result(f, {scalar(5), scalar(6)}), "##Error: Bad user-defined function call\n");
    EXPECT_EQ(result(f, {symtabenter("NEW")}),
              "##Error: NEW is not a matrix, function, initial, constant or scalar\n");
}

TEST_F(callstest, countsAndTypesAreChecked) {
    const int window = named("WW", WINDOWTYPE);
    const struct {
        const char* name;
        std::function<std::vector<int>()> args;
        const char* error;
    } rows[] = {
        {"SIN", [&] { return std::vector<int>{}; }, "function SIN takes 1 arguments; 1 are mandatory"},
        {"SIN",
         [&] {
             return std::vector<int>{scalar(1), scalar(2)};
         },
         "function SIN takes 1 arguments; 1 are mandatory"},
        {"LOG",
         [&] {
             return std::vector<int>{scalar(1), scalar(2), scalar(3)};
         },
         "function LOG takes 2 arguments; 1 are mandatory"},
        {"FLOOR", [&] { return std::vector<int>{text("a")}; }, "function FLOOR argument 1: expected scalar"},
        {"FLOOR", [&] { return std::vector<int>{symtabenter("NEW")}; },
         "function FLOOR argument 1: expected scalar"},
        {"ATAN2",
         [&] {
             return std::vector<int>{scalar(1), matrix(1, 1, {1})};
         },
         "function ATAN2 argument 2: expected scalar"},
        {"APPLY",
         [&] {
             return std::vector<int>{scalar(1), scalar(2)};
         },
         "function APPLY argument 1: expected function"},
        {"CROSS",
         [&] {
             return std::vector<int>{scalar(1), scalar(2)};
         },
         "function CROSS argument 1: expected matrix"},
        {"STRREV", [&] { return std::vector<int>{scalar(1)}; },
         "function STRREV argument 1: expected string"},
        {"TITLETEXT", [&] { return std::vector<int>{scalar(1)}; },
         "function TITLETEXT argument 1: expected title"},
        {"SIN", [&] { return std::vector<int>{text("a")}; },
         "function SIN argument 1: expected scalar or matrix"},
        {"LINPROG",
         [&] {
             return std::vector<int>{scalar(1), scalar(2)};
         },
         "function LINPROG argument 1: expected function or matrix"},
        {"LINPROG",
         [&] {
             return std::vector<int>{matrix(1, 1, {1}), scalar(2)};
         },
         "function LINPROG argument 2: expected constraints or matrix"},
        {"NROWS", [&] { return std::vector<int>{scalar(1)}; },
         "function NROWS argument 1: expected matrix or stringmatrix"},
        {"STRLEN", [&] { return std::vector<int>{window}; },
         "function STRLEN argument 1: expected string or string matrix"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(result(row.name, row.args()), std::string("##Error: ") + row.error + "\n");
}

// Slots that no builtin of this room uses, by signatures of the test's own.
TEST_F(callstest, slotsOfEveryKind) {
    const struct {
        int slot;
        const char* expected;
    } rows[] = {{11, "window"},
                {12, "curve"},
                {14, "constraints"},
                {16, "string matrix"},
                {24, "scalar, unknown or formal"},
                {13, "title"},
                {9, "string"}};
    for (const auto& row : rows) {
        const int f = named("PROBE", -606);
        sym(f).val.argd[0] = 1;
        sym(f).val.argd[1] = static_cast<signed char>(row.slot);
        EXPECT_EQ(result(f, {matrix(1, 1, {1})}),
                  std::string("##Error: function PROBE argument 1: expected ") + row.expected + "\n");
    }
    const int f = named("PROBE", -606);
    sym(f).val.argd[0] = 1;
    sym(f).val.argd[1] = 7;
    EXPECT_EQ(result(f, {scalar(1)}), "##Error: invalid type in builtin function specification\n");
    const struct {
        int slot, type;
    } accepted[] = {{11, WINDOWTYPE}, {12, CURVETYPE}, {13, TITLETYPE},    {14, CONSETTYPE},
                    {26, CONSETTYPE}, {24, UNKNOWN},   {20, UNKNOWN},      {5, USERFUNCTION},
                    {5, -1},          {25, -1},        {22, INITIALVALUE}, {4, CONSTANT}};
    for (const auto& row : accepted) {
        sym(f).val.argd[1] = static_cast<signed char>(row.slot);
        parserreset();
        polpush(f);
        polpush(named("OPERAND", row.type));
        EXPECT_EQ(textof([] { checkargs(0); }), "") << row.slot << " " << row.type;
    }
}

TEST_F(callstest, codesWithoutRoutine) {
    const auto unchecked = [](int code) {
        const int f = named("PROBE", code);
        sym(f).val.argd[0] = -100;
        return f;
    };
    EXPECT_EQ(result(unchecked(-398), {scalar(1)}),
              "Warning: function not available--zero returned\nWarning: PROBE is not in this version\n0");
    EXPECT_EQ(result(unchecked(-470), {scalar(1)}), "##Error: not a function\n");
    EXPECT_EQ(result(unchecked(-502), {scalar(1)}),
              "##Error: SUM, PRODUCT, ROOT, INTEGRAL, and EVAL can only appear in function bodies\n");
    EXPECT_EQ(result(unchecked(-798), {scalar(1)}), "##Error: -798 is an invalid builtin function code\n");
    EXPECT_EQ(result(unchecked(-990), {scalar(1)}), "##Error: invalid string function\n");
    EXPECT_EQ(result(named("PROBE", SCALAR, 3), {scalar(1)}),
              "##Error: PROBE is not a user-defined or builtin function\n");
    const int f = unchecked(-398);
    sym(f).val.argd[0] = 1;
    sym(f).val.argd[1] = 22;
    EXPECT_EQ(result(f, {matrix(1, 3, {1})}), "##Error: PROBE: an expression is of the wrong type\n");
}

TEST_F(callstest, whatIsNoFunctionIsSubscripted) {
    static int asked;
    asked = 0;
    upper.subscript = [](int base, int symidx) {
        asked = symidx;
        for (int k = base + 1; k <= parser.poltop; k++) tempfree(parser.polstack[k]);
        parser.poltop = base;
        parser.polstack[base] = int16_t(scalar(42));
    };
    const int m = named("M", MATRIX);
    sym(m).val.ptr = filled(2, 2, {1}).release();
    EXPECT_EQ(result(m, {scalar(1), scalar(2)}), "42");
    EXPECT_EQ(asked, m);
    EXPECT_EQ(result("NEWNAME", {scalar(1)}), "42");
    EXPECT_EQ(asked, symtablookup("NEWNAME"));
}

struct onoptest : callstest {
    std::string over(const std::vector<int>& operands, int mode) {
        parserreset();
        polpush(symtab.zero);
        for (const int idx : operands) polpush(idx);
        std::string shownresult;
        const std::string printed = textof([&] {
            const int r = onop(int(operands.size()), mode);
            if (mode == ONSCALAR) {
                shownresult = "scalar " + shown(scalar(parser.scalar[parser.scalartop - 1]));
            } else if (mode == ONVALUES) {
                EXPECT_EQ(parser.poltop, 1);
                shownresult = shown(polpop());
            } else {
                shownresult = shown(r);
            }
        });
        symtabsweep();
        return printed + shownresult;
    }
};

TEST_F(onoptest, functionsOverRows) {
    const int f = userfunction("F", TREETIMES, 3), g = userfunction("G", TREEPLUS, 1);
    EXPECT_EQ(over({f, matrix(3, 1, {1, 2, 3})}, ONVALUES), "3x1: 3 6 9");
    EXPECT_EQ(over({f, scalar(2)}, ONVALUES), "1x1: 6");
    EXPECT_EQ(over({f, g, matrix(2, 1, {1, 2})}, ONPOINTS), "2x3: 1 3 2 2 6 3");
    EXPECT_EQ(over({f, g, matrix(2, 1, {1, 2})}, ONCOLUMNS), "2x2: 3 2 6 3");
    EXPECT_EQ(over({f, scalar(2)}, ONSCALAR), "scalar 6");
    EXPECT_EQ(over({symtabenter("SQRT"), matrix(2, 1, {4, 9})}, ONVALUES), "2x1: 2 3");
    EXPECT_EQ(over({symtabenter("ATAN2"), matrix(2, 2, {0, 1, 0, 2})}, ONVALUES), "2x1: 0 0");
    EXPECT_EQ(over({f, matrix(0, 1, {0})}, ONPOINTS), "0x2:");
    EXPECT_EQ(result("POINTS", {f, matrix(2, 1, {1, 2})}), "2x2: 1 3 2 6");
    EXPECT_EQ(result("APPLY", {f, matrix(2, 2, {1, 2, 3, 4})}), "2x2: 3 6 9 12");
    EXPECT_EQ(result("APPLY", {symtabenter("SQRT"), scalar(16)}), "1x1: 4");
}

TEST_F(onoptest, refusals) {
    const int f = userfunction("F", TREETIMES, 3);
    EXPECT_EQ(over({matrix(1, 1, {1})}, ONPOINTS), "##Error: POINTS: not enough arguments\n");
    EXPECT_EQ(over({f, matrix(1, 2, {1})}, ONVALUES),
              "##Error: non-scalar result or incorrect # of arguments for function F\n");
    EXPECT_EQ(over({scalar(1), matrix(1, 1, {1})}, ONVALUES),
              "##Error: trying to evaluate illegal function\n\n");
    EXPECT_EQ(over({symtabenter("INV"), matrix(1, 1, {1})}, ONVALUES),
              "##Error: trying to evaluate illegal function\n\n");
    EXPECT_EQ(over({f, text("a")}, ONVALUES), "##Error: expected scalar or matrix type\n");
    EXPECT_EQ(over({symtabenter("ATAN2"), matrix(1, 1, {1})}, ONVALUES),
              "##Error: function ATAN2 takes 2 arguments; 2 are mandatory\n");
    std::vector<int> many(201, f);
    many.push_back(scalar(1));
    EXPECT_EQ(over(many, ONPOINTS), "##Error: onop: too many functions\n");
    many.erase(many.begin());
    many.back() = scalar(1);
    EXPECT_EQ(over(many, ONCOLUMNS).substr(0, 8), "1x200: 3");
}

// Solutions of differential equations come from the room above, whole columns at a time.
TEST_F(onoptest, solutionsComeFromAbove) {
    onopfns.solutions = [](const int*, int count, const harray* points, int, harray* result, int firstcol) {
        for (uint32_t i = 1; i <= points->rows; i++)
            for (int k = 0; k < count; k++) at(result, i, size_t(firstcol + k)) = 100 + at(points, i, 1);
        return true;
    };
    const int state = named("M", INITIALVALUE);
    EXPECT_EQ(over({state, matrix(2, 1, {1, 2})}, ONPOINTS), "2x2: 1 101 2 102");
    EXPECT_EQ(over({state, scalar(5)}, ONSCALAR), "scalar 105");
    onopfns.solutions = [](const int*, int, const harray*, int, harray*, int) { return false; };
    EXPECT_EQ(over({state, scalar(5)}, ONSCALAR), "##Error: trying to evaluate illegal function\n\n");
}

} // namespace
