// The evaluator: values, the order of things, every refusal.
#include "funcs/rootint.h"
#include "unit/funcs/defined.h"

#include <cmath>
#include <utility>

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

// Each refusal, and that the next evaluation works.
TEST_F(ValueTest, Refusals) {
    const struct {
        const char *body, *words;
    } rows[] = {
        {"U + X", "##Error: U is not a matrix, function, initial, constant or scalar\n"},
        {"G + X", "##Error: scalar G has not yet been defined\n"},
        {"SIN + X", "##Error: SIN is not a matrix, function, initial, constant or scalar\n"},
        {"M + X", "##Error: illegal use of matrix in user function\n"},
        {"-M", "##Error: illegal use of matrix in user function\n"},
        {"M", "##Error: illegal use of matrix in user function\n"},
        {"IF M THEN 1 ELSE 2", "##Error: illegal use of matrix in user function\n"},
        {"SUM(I,1,3,M)", "##Error: illegal use of matrix in user function\n"},
        {"A _ M", "##Error: illegal use of matrix in user function\n"},
        {"G(M)", "##Error: illegal use of matrix in user function\n"},
        {"M(0,1)", "##Error: matrix row subscript: 0 out of range\n"},
        {"M(3,1)", "##Error: matrix row subscript: 3 out of range\n"},
        {"M(1,-1)", "##Error: matrix column subscript: -1 out of range\n"},
        {"M(1,4)", "##Error: matrix column subscript: 4 out of range\n"},
        {"M(1E300)", "##Error: matrix row subscript: 2147483647 out of range\n"},
        {"M(1,2,3)", "##Error: matrices may have only 1 or 2 subscripts\n"},
        {"M()", "##Error: matrices may have only 1 or 2 subscripts\n"},
        {"X _ 3", "##Error: can't assign value to a formal argument\n"},
        {"M _ 3", "##Error: can't assign a scalar to this LHS-type within a function\n"},
        {"G _ 3", "##Error: can't assign a scalar to this LHS-type within a function\n"},
        {"(X+1) _ 3", "##Error: bad function structure\n"},
        {"X(1) _ 3", "##Error: bad function structure\n"},
        {"G(1) _ 3", "##Error: can't assign matrix to this type in function body\n"},
        {"M(1,2,3) _ 3", "##Error: too many subscripts\n"},
        {"M(0,1) _ 3", "##Error: matrix row subscript: 0 out of range\n"},
        {"SIN(M)", "##Error: illegal matrix argument for a builtin function\n"},
        {"SIN()", "##Error: function SIN takes 1 arguments; 1 are mandatory\n"},
        {"SIN(1,2)", "##Error: function SIN takes 1 arguments; 1 are mandatory\n"},
        {"NROWS(X)", "##Error: function NROWS argument 1: expected matrix or stringmatrix\n"},
        {"INV(M)", "##Error: matrix-valued function calls are illegal in user functions\n"},
        {"U(X)", "##Error: U is not a function\n"},
        {"X(1)", "##Error: X is not a function\n"},
        {"SUM(I+1,1,2,I)", "##Error: 1st operator argument must not be an expression\n"},
        {"SUM(I,M,2,I)", "##Error: undefined bound argument for ROOT, SUM, PRODUCT, INTEGRAL\n"},
        {"ROOT(I,1,M,I)", "##Error: undefined bound argument for ROOT, SUM, PRODUCT, INTEGRAL\n"},
        {"SUM(I,1,1E16,I)", "##Error: magnitude of lower or upper bound for SUM, PRODUCT too large\n"},
        {"SUM(I,I,2,I)", "##Error: scalar I has not yet been defined\n"},
        {"UNSERVED(X)", "##Error: not a function\n"},
    };
    matrix("M", 2, 3, {1, 2, 3, 4, 5, 6});
    builtin("INV", -601, {6});
    builtin("UNSERVED", -499, {4});
    set("A", 1);
    define("G(Y) = Y+1");
    for (const auto& row : rows) {
        define(std::string("F(X) = ") + row.body);
        for (int time = 0; time < 3; time++)
            EXPECT_EQ(failure("F", {2}), row.words) << row.body << ", time " << time;
        EXPECT_EQ(call("G", {1}), 2) << "after " << row.body;
        sym(symtablookup("G")).val.rval = UNDEFINEDMARK;
        if (symtablookup("I") > 0) symtabmarkdeleted(symtablookup("I"));
    }
    EXPECT_EQ(failing([&] { callvalue(symtablookup("SUM"), nullptr, 0); }),
              "##Error: function SUM takes 4 arguments; 4 are mandatory\n");
    sym(symtablookup("SUM")).val.argd[0] = -100;
    EXPECT_EQ(failing([&] { callvalue(symtablookup("SUM"), nullptr, 0); }),
              "##Error: SUM, PRODUCT, ROOT, INTEGRAL, and EVAL can only appear in function bodies\n");
    EXPECT_EQ(failing([&] { callvalue(symtablookup("M"), nullptr, 0); }), "##Error: M is not a function\n");
}

TEST_F(ValueTest, WrongCountOfArgumentsTellsTheStatedNumber) {
    std::string console;
    static std::string* shown;
    shown = &console;
    ::console.write = [](const char* text, size_t n) { shown->append(text, n); };
    define("F(X) = X^2");
    for (int time = 0; time < 3; time++) {
        console.clear();
        EXPECT_EQ(failure("F", {1, 2}), "##Error: Bad user-defined function call\n");
        EXPECT_EQ(console, "##Error: incorrect # of args(3) supplied for F\n");
    }
    EXPECT_EQ(call("F", {3}), 9);
}

TEST_F(ValueTest, AFifthArgumentIsRefused) {
    const int i = symtabenter("I"), one = symtab.one, f = symtabenter("F");
    const int body = tricall(symtablookup("SUM"), {i, one, one, one, one});
    sym(f).index = int16_t(trialloc(TREEHEADER, 0, body));
    sym(f).type = USERFUNCTION;
    EXPECT_EQ(failure("F", {}), "##Error: too many arguments for ROOT, SUM, PRODUCT, or INTEGRAL\n");
}

// Recursion ends in words, with compiled code and without, and does not reach what other sessions could not.
TEST_F(ValueTest, DeepRecursionEndsInAnError) {
    define("F(N) = F(N+1)");
    define("G(N) = IF N<1 THEN 0 ELSE 1+G(N-1)");
    define("H(A,B,C) = IF A<1 THEN 0 ELSE H(A-1,H(0,B,C),1)+1");
    define("S(N) = SUM(K,1,1,S(N+1))");
    define("P(N) = Q(N+1)");
    define("Q(N) = P(N-1)");
    for (bool fast : {false, true}) {
        eval.flat = fast;
        for (const char* f : {"F", "S", "P"}) {
            EXPECT_EQ(failure(f, {1}),
                      "##Error: stack space too low; check infinite recursion, termination necessary.\n")
                << f;
            eval.flat = fast;
        }
        int deepest = 0;
        for (int n = 1; n < 1000; n++) {
            if (failing([&] { call("G", {double(n)}); }) != "no error") break;
            deepest = n;
        }
        eval.flat = fast;
        EXPECT_EQ(deepest, 599); // one symbol and one number a level, of 1200 cells
        EXPECT_EQ(call("H", {100, 1, 1}), 100);
    }
    evalstart(64 * 1024); // with little machine stack the walk ends in the same words
    eval.flat = false;
    EXPECT_EQ(failure("F", {1}),
              "##Error: stack space too low; check infinite recursion, termination necessary.\n");
}

TEST_F(ValueTest, NamesAndValuesAsArguments) {
    define("F(X) = X^2");
    define("G(H,X) = H(X) + 1");
    define("K(X) = G(F, X) + G(SIN, 0)"); // functions by name from inside a body
    define("L(H,X) = IF X<1 THEN H(1) ELSE L(H, X-1)");
    define("N(X) = L(F, X)");
    define("V(Y) = F(3) + Y");
    define("W(X) = V(F)"); // a function's name elsewhere is its last value
    for (int time = 0; time < 3; time++) {
        EXPECT_EQ(call("K", {3}), 11);
        EXPECT_EQ(call("N", {5}), 1);
        sym(symtablookup("F")).val.rval = 100;
        EXPECT_EQ(call("W", {0}), 109);
    }
    matrix("M", 2, 2, {1, 2, 3, 4});
    define("T(M1,I) = M1(I,I) + NROWS(M1)");
    define("U(I) = T(M, I)");
    for (int time = 0; time < 3; time++) EXPECT_EQ(call("U", {2}), 6);
    // By name from a statement: the name is read when the body reads it.
    const int a = set("A", 5);
    define("Z(X) = (A _ 7) + X");
    define("Y(X) = SUM(A, 1, 3, X*A)");
    for (bool fast : {true, false}) {
        eval.flat = fast;
        for (const auto& [name, expected] : {std::pair("Z", 14.0), std::pair("Y", 14.0)}) {
            sym(a).val.rval = 5;
            parser.polstack[++parser.poltop] = int16_t(symtablookup(name));
            polpush(a);
            EXPECT_EQ(value(parser.poltop - 1), expected) << name;
            parserreset();
        }
    }
}

TEST_F(ValueTest, AssignmentsInBodies) {
    define("F(X) = A _ X+1");
    EXPECT_EQ(call("F", {2}), 3);
    EXPECT_EQ(sym(symtablookup("A")).type, SCALAR);
    EXPECT_EQ(sym(symtablookup("A")).val.rval, 3);
    define("G(X) = M(2,3) _ X");
    EXPECT_EQ(call("G", {7}), 7);
    const harray* m = matrixof(symtablookup("M"));
    ASSERT_EQ(m->rows, 2u);
    ASSERT_EQ(m->cols, 3u);
    EXPECT_EQ(at(m, 2, 3), 7);
    EXPECT_EQ(at(m, 1, 1), 0);
    define("H(X) = M(X) _ 5");
    call("H", {4});
    m = matrixof(symtablookup("M"));
    EXPECT_EQ(m->rows, 4u);
    EXPECT_EQ(at(m, 4, 1), 5);
    EXPECT_EQ(at(m, 2, 3), 7) << "grown cells keep their subscripts";
    define("P(X) = SUM(I, 1, 3, B _ (B+I))"); // the assignment's value is summed
    set("B", 0);
    EXPECT_EQ(call("P", {0}), 1 + 3 + 6);
    EXPECT_EQ(sym(symtablookup("B")).val.rval, 6);
}

TEST_F(ValueTest, DummiesComeBack) {
    define("F(X) = SUM(I,1,3,I*X)");
    define("E(X) = SUM(I,1,3,U)");
    const int i = set("I", 7);
    for (bool fast : {true, false}) {
        eval.flat = fast;
        sym(i).type = SCALAR;
        sym(i).val.rval = 7;
        EXPECT_EQ(call("F", {2}), 12);
        EXPECT_EQ(sym(i).val.rval, 7);
        sym(i).type = UNKNOWN;
        EXPECT_EQ(call("F", {2}), 12);
        EXPECT_EQ(sym(i).type, UNKNOWN);
        failure("E", {1});
        eval.flat = fast;
        EXPECT_EQ(sym(i).type, SCALAR) << "an error leaves the dummy as it stands";
        EXPECT_EQ(sym(i).val.rval, 1);
    }
    // What is neither a number nor new comes back in any case: a matrix made after the definition.
    symtabmarkdeleted(i);
    const harray* m = matrix("I", 1, 2, {3, 4});
    define("E(X) = SUM(J,1,3,U)");
    define("F(X) = X");
    const int f = symtablookup("E");
    trimutable(tri(funcbody(f)).left).right = int16_t(symtablookup("I"));
    failure("E", {1});
    EXPECT_EQ(sym(symtablookup("I")).type, MATRIX);
    EXPECT_EQ(sym(symtablookup("I")).val.ptr, m);
}

TEST_F(ValueTest, Roots) {
    const struct {
        const char* body;
        double low, high, root; // of the body in Z
    } rows[] = {
        {"Z*Z - 2", 0, 2, std::sqrt(2.0)},
        {"COS(Z) - Z", 0, 1, 0.7390851332151607},
        {"Z^3", -1, 2, 0},
        {"EXP(Z) - 1E10", 0, 100, std::log(1e10)},
        {"ATAN2(Z - 3, 1)", -1E6, 1E5, 3},
        {"IF Z<1.5 THEN -1 ELSE 1", 1, 2, 1.5}, // a jump: neighbouring doubles
        {"(Z - 1)^9", 0, 5, 1},
        {"1/(Z - 0.25) + 4", -10, 0.2, 0},
        {"Z - 1E-200", 0, 1, 1e-200},
    };
    for (const auto& row : rows) {
        define(std::string("F(A,B) = ROOT(Z,A,B,") + row.body + ")");
        for (int time = 0; time < 2; time++) {
            const double z = call("F", {row.low, row.high});
            EXPECT_NEAR(z, row.root, 1e-15 + 4e-16 * std::fabs(row.root)) << row.body;
        }
    }
    define("N(A,B) = ROOT(Z,A,B,Z*Z+1)");
    for (int time = 0; time < 2; time++) {
        out.clear();
        EXPECT_EQ(call("N", {1, 2}), MAXPOS);
        EXPECT_EQ(out, "Warning: rootf: no root found\n");
    }
    define("O(A,B) = ROOT(Z,A,B,Z*Z-4)"); // both ends of one sign: sought inwards
    EXPECT_EQ(call("O", {-3, 5}), call("O", {-3, 5}));
    EXPECT_NEAR(std::fabs(call("O", {-3, 5})), 2, 1e-15);
}

// Values from closed forms; the method's own tolerance is 7e-5 a step.
TEST_F(ValueTest, Integrals) {
    const struct {
        const char* body;
        double a, b, expected;
    } rows[] = {
        {"1", 0, 1, 1},
        {"Z", 0, 2, 2},
        {"Z^3", -1, 2, 3.75},
        {"SIN(Z)", 0, 3.141592653589793, 2},
        {"EXP(-Z)", 0, 20, 1 - std::exp(-20.0)},
        {"EXP(-Z*Z)", -6, 6, 1.7724538509055159},
        {"1/SQRT(Z)", 1E-6, 1, 1.998},
        {"1/(1+Z*Z)", 0, 1, 0.7853981633974483},
        {"Z", 2, 0, -2},
        {"EXP(Z)", 0, -1, std::exp(-1.0) - 1},
        {"IF Z<0.5 THEN 0 ELSE 1", 0, 1, 0.5},
        {"Z", 0, -1E8, 5e15},
    };
    for (const auto& row : rows) {
        define(std::string("F(A,B) = INTEGRAL(Z,A,B,") + row.body + ")");
        const double y = call("F", {row.a, row.b});
        EXPECT_NEAR(y, row.expected, 2e-4 * std::fabs(row.expected)) << row.body;
        EXPECT_EQ(call("F", {row.a, row.b}), y);
    }
    define("F(A,B) = INTEGRAL(Z,A,B,1)");
    EXPECT_EQ(call("F", {1e10, 1e10 + 1}), 0) << "no wider than a hundred thousandth of its start";
    EXPECT_NEAR(call("F", {0, 1}), 1, 1e-12);
}

TEST_F(ValueTest, InterpolationStaysInside) {
    const struct {
        double t, a, b;
    } rows[] = {{0.5, 1, 2},
                {0.382, 2, 1},
                {0.5, 0, 5e-324 * 3},
                {1e-20, 1, 2},
                {0.9999999999999999, 1, 1.0000000000000004},
                {0.5, -1, 1},
                {0.3, -5e-324 * 4, 5e-324 * 4},
                {0.382, 1e-310, 0},
                {0.5, MAXPOS / 4, MAXPOS / 2}};
    for (const auto& row : rows) {
        const double d = interp(row.t, row.a, row.b);
        EXPECT_GT(d, std::min(row.a, row.b)) << row.t;
        EXPECT_LT(d, std::max(row.a, row.b)) << row.t;
    }
    const double next = std::nextafter(1, 2);
    EXPECT_EQ(interp(0.5, 1, next), 1) << "no double lies between";
    EXPECT_EQ(interp(0.5, 7, 7), 7);
    EXPECT_EQ(interp(0.382, -1e300, -1e300), -1e300);
}

TEST_F(ValueTest, FaultsAreCountedInTheOrderOfTheTree) {
    define("F(X) = 1/X + 1E308*10 + LOG(-1)");
    fp.limit = 2;
    for (int time = 0; time < 3; time++) {
        fpclear();
        out.clear();
        call("F", {0});
        EXPECT_EQ(fp.divzero, 1u);
        EXPECT_EQ(fp.total, 4u) << "the quotient, the product, their sum, the logarithm";
        EXPECT_EQ(out, "\nFloating Point Error: Divide by Zero\n\nFloating Point Error: Overflow\n");
    }
}

} // namespace
