// Compiled code against the walk of the tree: the same bits, the same faults, the same words, the same last
// values.
#include "unit/funcs/bodywriter.h"
#include "unit/funcs/defined.h"

#include <bit>
#include <cmath>
#include <random>

namespace {

// What a run leaves behind, as far as anyone can tell.
struct traces {
    std::vector<double> results;
    std::string printed;
    unsigned total, overflow, divzero, zerodivzero;
    std::vector<double> lastvalues;
    bool operator==(const traces& other) const {
        const auto same = [](const std::vector<double>& a, const std::vector<double>& b) {
            if (a.size() != b.size()) return false;
            for (size_t k = 0; k < a.size(); k++)
                if (std::bit_cast<uint64_t>(a[k]) != std::bit_cast<uint64_t>(b[k])) return false;
            return true;
        };
        return same(results, other.results) && same(lastvalues, other.lastvalues) &&
               printed == other.printed && total == other.total && overflow == other.overflow &&
               divzero == other.divzero && zerodivzero == other.zerodivzero;
    }
};
std::ostream& operator<<(std::ostream& out, const traces& t) {
    out << t.total << " faults, printed \"" << t.printed << "\" results";
    for (size_t k = 0; k < t.results.size() && k < 12; k++) out << ' ' << t.results[k];
    out << " last";
    for (double x : t.lastvalues) out << ' ' << x;
    return out;
}

struct FlatTest : FuncsTest {
    bodywriter writer{std::mt19937(20251201), 0, true};

    void SetUp() override {
        FuncsTest::SetUp();
        set("A", 1.75);
        set("Z", 0);
        set("I", 11);
        set("J", -4);
        matrix("M", 3, 2, {1, 2, 3, 4, 5, 6});
    }
    std::vector<double> points(size_t n) {
        static const double hard[] = {0, 1, -1, 2, 3, 0.5, -2.25, 1e200, -1e200, 1e-200, 700, 1e308};
        std::vector<double> x(n);
        const bool easy = writer.pick(2);
        for (size_t k = 0; k < n; k++)
            x[k] = easy || writer.pick(9) ? double(writer.pick(400)) / 80 : hard[writer.pick(12)];
        return x;
    }
    // Runs the action with compiled code on or off, from the same state.
    template <class Action> traces observe(bool flatcode, Action&& action) {
        for (int f = 0; f < writer.functions; f++)
            sym(symtablookup(("P" + std::to_string(f)).c_str())).val.rval = UNDEFINEDMARK;
        set("I", 11);
        set("J", -4);
        fpclear();
        fp.limit = 4;
        eval.flat = flatcode;
        traces t;
        t.printed = failing([&] { action(t.results); });
        if (t.printed == "no error") t.printed = out;
        parserreset();
        eval.flat = true;
        t.total = fp.total;
        t.overflow = fp.overflow;
        t.divzero = fp.divzero;
        t.zerodivzero = fp.zerodivzero;
        for (int f = 0; f < writer.functions; f++)
            t.lastvalues.push_back(sym(symtablookup(("P" + std::to_string(f)).c_str())).val.rval);
        return t;
    }
};

TEST_F(FlatTest, RandomBodiesAgreeWithTheWalk) {
    for (int round = 0; round < 3000; round++) {
        if (writer.functions == 12) {
            for (int f = 0; f < 12; f++) symtabdelete(symtablookup(("P" + std::to_string(f)).c_str()));
            trireclaim();
            writer.functions = 0;
        }
        const std::string name = "P" + std::to_string(writer.functions);
        const std::string text = name + "(X,Y) = " + writer.body(4, "X");
        define(text);
        writer.functions++;
        const int f = symtablookup(name.c_str());
        const size_t n = round % 3 == 0 ? 300 : 7;
        const std::vector<double> x = points(2 * n);
        const auto single = [&](std::vector<double>& results) {
            for (size_t k = 0; k < 5; k++) results.push_back(callvalue(f, &x[2 * k], 2));
        };
        ASSERT_EQ(observe(true, single), observe(false, single))
            << text << " at single points, round " << round;
        const auto byrows = [&](std::vector<double>& results) {
            results.assign(2 * n, 77);
            flatrows(f, n, 2, x.data(), results.data() + 1, 2);
        };
        ASSERT_EQ(observe(true, byrows), observe(false, byrows)) << text << " over rows, round " << round;
    }
}

// Points side by side, as many as are used: what is not given up is what the walk has, with nothing told.
bool lanesagree(FlatTest& test, flatprogram& program, int used, const std::vector<double>& x,
                const std::vector<double>& p) {
    if (!flatholdlanes(program)) return false;
    for (size_t k = 0; k < 4; k++)
        for (size_t l = 0; l < FLATLANES; l++)
            flatlanesin(program)[k * FLATLANES + l] =
                k < 2 ? x[2 * (l < size_t(used) ? l : 0) + k] : p[k - 2];
    if (!flatlanesrun(program, used)) return false;
    const traces walked = test.observe(false, [&](std::vector<double>& results) {
        for (size_t l = 0; l < size_t(used); l++) {
            const double in[] = {x[2 * l], x[2 * l + 1], p[0], p[1]};
            double out[3];
            flatrun(program, in, out);
            results.insert(results.end(), out, out + 3);
        }
    });
    EXPECT_EQ(walked.printed, "");
    EXPECT_EQ(walked.total, 0U);
    for (size_t i = 0; i < walked.results.size(); i++)
        EXPECT_EQ(std::bit_cast<uint64_t>(flatlanesout(program, i % 3)[i / 3]),
                  std::bit_cast<uint64_t>(walked.results[i]));
    return true;
}

// Several functions as one program, names bound to inputs, against value() with the names set.
TEST_F(FlatTest, ProgramsAgreeWithTheWalk) {
    const int a = set("A", 1), b = set("B", 2);
    set("C", 0.5);
    int fast = 0, sidebyside = 0;
    for (int round = 0; round < 400; round++) {
        std::vector<int> functions;
        for (int f = 0; f < 3; f++) {
            std::string body = writer.body(round % 2 ? 4 : 2, "X");
            for (size_t k = 0; k < body.size(); k++)
                if (body[k] == 'Z' && writer.pick(2)) body[k] = 'B';
            const std::string name = "P" + std::to_string(f);
            define(name + "(X,Y) = " + body);
            functions.push_back(symtablookup(name.c_str()));
            writer.functions = f + 1;
        }
        const size_t n = 70;
        const std::vector<double> x = points(2 * n), p = points(2);
        const flatptr program = flatcompile({functions, 2, {a, b}});
        fast += flatisfast(*program);
        const auto onepoint = [&](std::vector<double>& results) {
            for (size_t i = 0; i < 4; i++) {
                const double in[] = {x[2 * i], x[2 * i + 1], p[0], p[1]};
                double y[3];
                flatrun(*program, in, y);
                results.insert(results.end(), y, y + 3);
            }
        };
        ASSERT_EQ(observe(true, onepoint), observe(false, onepoint)) << "round " << round;
        const auto block = [&](std::vector<double>& results) {
            results.resize(3 * n);
            const double* in[] = {&x[0], &x[1], &p[0], &p[1]};
            const size_t instride[] = {2, 2, 0, 0}, outstride[] = {1, 1, 1};
            double* to[] = {&results[0], &results[n], &results[2 * n]};
            flatrunblock(*program, n, in, instride, to, outstride);
        };
        ASSERT_EQ(observe(true, block), observe(false, block)) << "round " << round;
        sidebyside += lanesagree(*this, *program, 1 + round % FLATLANES, x, p);
        ASSERT_FALSE(HasFailure()) << "round " << round;
        for (int f : functions) symtabdelete(f);
        trireclaim();
        writer.functions = 0;
    }
    EXPECT_GT(fast, 300);
    EXPECT_GT(sidebyside, 100);
}

// Code is made of definitions, types and values at one time; when they change it must follow.
TEST_F(FlatTest, CodeFollowsItsWorld) {
    const auto twice = [&](const char* f, double x) {
        call(f, {x});
        return call(f, {x});
    };
    define("G(X) = X+1");
    define("F(X) = G(X)*A + M(1,1)");
    set("A", 2);
    const int m = symtablookup("M");
    EXPECT_EQ(twice("F", 3), 9);
    set("A", 10);
    EXPECT_EQ(call("F", {3}), 41) << "a global's value";
    define("G(X) = X+2");
    EXPECT_EQ(twice("F", 3), 51) << "a callee's definition";
    cells(matrixof(m))[1] = 100;
    EXPECT_EQ(call("F", {3}), 150) << "a matrix's cell";
    harrayfree(matrixof(m));
    matrix("M", 1, 1, {7});
    EXPECT_EQ(call("F", {3}), 57) << "another matrix";
    symtabdelete(symtablookup("A"));
    EXPECT_EQ(failure("F", {3}), "##Error: A is not a matrix, function, initial, constant or scalar\n");
    define("A(X) = X"); // its last value
    EXPECT_EQ(failure("F", {3}), "##Error: scalar A has not yet been defined\n");
    call("A", {1});
    EXPECT_EQ(twice("F", 3), 12);
    symtabdelete(symtablookup("G"));
    EXPECT_EQ(failure("F", {3}), "##Error: G is not a function\n");
    trireclaim();
    define("G(X) = X*X");
    EXPECT_EQ(twice("F", 3), 16) << "new nodes may have old numbers";
    define("G(X,Y) = X*Y");
    EXPECT_EQ(failure("F", {3}), "##Error: Bad user-defined function call\n");
    define("G(X) = Q + X");
    EXPECT_EQ(failure("F", {3}), "##Error: Q is not a matrix, function, initial, constant or scalar\n");
    set("Q", 1);
    for (int k = 0; k < 100; k++) ASSERT_EQ(call("F", {3}), 11) << "refused code is tried again";
    define("FACT(N) = IF N<=1 THEN 1 ELSE N*FACT(N-1)");
    EXPECT_EQ(twice("FACT", 10), 3628800);
    define("FACT(N) = IF N<=1 THEN 2 ELSE N*FACT(N-1)");
    EXPECT_EQ(twice("FACT", 10), 7257600) << "a recursion's own definition";
}

// A held program is a copy of the code: of the unit as it is, not as it was.
TEST_F(FlatTest, AHeldProgramFollowsItsRebuiltUnit) {
    define("F(X) = X+2");
    const flatptr program = flatcompile({{symtablookup("F")}, 1, {}});
    const auto held = [&](double x) -> double {
        if (!flathold(*program)) return NAN;
        *flatheldin(*program) = x;
        return flatheldrun(*program) ? *flatheldout(*program, 0) : NAN;
    };
    EXPECT_EQ(held(5), 7);
    define("F(X) = X*2"); // as long, with as many constants
    EXPECT_EQ(held(5), 10);
    define("F(X) = X*3");
    EXPECT_EQ(held(5), 15);
    EXPECT_EQ(held(6), 18);
    define("F(X) = (IF X > 5 THEN X ELSE -X)+1");
    EXPECT_EQ(held(6), 7);
    EXPECT_EQ(held(4), -3);
}

TEST_F(FlatTest, AFunctionKeepsTheValueOfItsLastRow) {
    define("P(X) = X+1");
    const double x[] = {1, 2, 3};
    for (const char* q :
         {"Q(X) = P(X)+(IF X = 2 THEN P(10) ELSE 0)", "Q(X) = P(X)+(IF X = 2 THEN 0 ELSE P(X))",
          "Q(X) = (IF X = 3 THEN P(3) ELSE 0)+(IF X = 1 THEN P(10) ELSE 0)"}) {
        define(q);
        double y[3];
        flatrows(symtablookup("Q"), 3, 1, x, y, 1);
        EXPECT_EQ(sym(symtablookup("P")).val.rval, 4) << q;
    }
}

TEST_F(FlatTest, ProgramsNoticeChanges) {
    const int a = set("A", 1);
    define("F(X) = A*X");
    define("G(X) = F(X)+K");
    const flatptr program = flatcompile({{symtablookup("F"), symtablookup("G")}, 1, {a}});
    EXPECT_FALSE(flatisfast(*program)) << "K has no value yet";
    set("K", 5);
    double y[2];
    const double in[] = {3, 2};
    flatrun(*program, in, y);
    EXPECT_EQ(y[1], 11);
    define("F(X) = A+X");
    flatrun(*program, in, y);
    EXPECT_EQ(y[0], 5);
    EXPECT_EQ(y[1], 10);
    flatrun(*program, in, y);
    EXPECT_TRUE(flatisfast(*program));
    EXPECT_EQ(sym(symtablookup("G")).val.rval, 10) << "the last value";
}

// A function's value read by name inside what sets it, effects, and the like go by the walk with the same
// results.
TEST_F(FlatTest, WhatIsNotCompiledIsWalked) {
    set("B", 0);
    const struct {
        const char* body;
        double first, second; // two calls with 2
    } rows[] = {{"X + (B _ B+1)", 3, 4}, {"IF X>1 THEN F(X-1) ELSE P0", 42, 42}, {"TYPEOUT(X)", 2, 2}};
    builtin("TYPEOUT", -100, {4});
    define("P0(X,Y) = 1");
    for (const auto& row : rows) {
        sym(symtablookup("P0")).val.rval = 42;
        define(std::string("F(X) = ") + row.body);
        EXPECT_EQ(call("F", {2}), row.first) << row.body;
        EXPECT_EQ(call("F", {2}), row.second) << row.body;
    }
}

} // namespace
