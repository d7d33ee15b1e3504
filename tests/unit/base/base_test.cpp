// The bottom of the house: symbols, reporting, the stacks, repaired floating-point faults.
#include "interp/base/operand.h"
#include "support/printed.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <set>

namespace {

using basetest = printingtest;

TEST_F(basetest, namesOf27CharactersPassAndOf28DoNot) {
    const std::string name27(27, 'A'), name28(28, 'A');
    const int idx = symtabenter(name27.c_str());
    EXPECT_EQ(symtablookup(name27.c_str()), idx);
    EXPECT_EQ(errorof([&] { symtabenter(name28.c_str()); }),
              "##Error: symtabenter: name " + name28 + " too long.  27 is the maximum length for names\n");
    EXPECT_EQ(symtablookup(name28.c_str()), -1);
}

TEST_F(basetest, hashIsTheXorOfFourByteWords) {
    EXPECT_EQ(symtabhash(""), 1);
    EXPECT_EQ(symtabhash("A"), 65 % 2692 + 1);
    // little-endian words "ABCD" and "E": 0x44434241 ^ 0x45
    EXPECT_EQ(symtabhash("ABCDE"), int((0x44434241u ^ 0x45u) % 2692u) + 1);
}

TEST_F(basetest, collidingNamesFollowOneSequence) {
    // XOR of words does not see their order
    const char *first = "ABCDWXYZ", *second = "WXYZABCD";
    const int h = symtabhash(first);
    ASSERT_EQ(symtabhash(second), h);
    EXPECT_EQ(symtabenter(first), h);
    EXPECT_EQ(symtabenter(second), 2 * h % SYMTABSIZE);
    sym(h).type = SCALAR;
    symtabdelete(h);
    EXPECT_EQ(symtablookup(first), -1);
    EXPECT_EQ(symtablookup(second), 2 * h % SYMTABSIZE) << "a deleted slot must not end the sequence";
    EXPECT_EQ(symtabenter("ABCDWXYZ"), h) << "the first deleted slot is taken again";
}

TEST_F(basetest, tableFillsUpWithAClearErrorAndTemporariesToo) {
    std::string text;
    int entered = 0;
    text = errorof([&] {
        for (;; entered++) symtabenter(("N" + std::to_string(entered)).c_str());
    });
    EXPECT_EQ(text, "##Error: symbol table full. delete unneeded names\n");
    EXPECT_EQ(entered, SYMTABSIZE - 1);
    EXPECT_EQ(errorof([] { symtabslot(); }), "##Error: symbol table full.  exit TARN and restart\n");
    symtabmarkdeleted(symtablookup("N7"));
    EXPECT_EQ(errorof([] { symtabslot(); }), "");
}

TEST_F(basetest, temporariesTakeTheLowestFreeSlotAndGiveItBack) {
    const int a = symtabconst(0.5), b = symtabconst(0.5);
    EXPECT_NE(a, b) << "in a statement equal constants are two temporaries";
    EXPECT_EQ(a, 2);
    tempfree(a);
    EXPECT_STREQ(sym(a).name, "@");
    EXPECT_EQ(symtabconst(1), a);
    const int named = symtabenter("X");
    tempfree(named);
    EXPECT_EQ(symtablookup("X"), named) << "named entries pass through tempfree";
}

TEST_F(basetest, definitionModeSharesConstants) {
    parser.funcmode = -1;
    for (double x : {0.5, 0.0, -0.0, 1e-300, 3.14159, 65536.0}) {
        const int a = symtabconst(x);
        EXPECT_EQ(symtabconst(x), a);
        EXPECT_EQ(std::signbit(sym(a).val.rval), std::signbit(x));
        EXPECT_EQ(sym(a).name[0], '#');
    }
    EXPECT_NE(symtabconst(0.0), symtabconst(-0.0));
    // eight bytes without a zero against a text that could be mistaken for them
    EXPECT_NE(symtabconst(0.1), symtabconst(0.2));
}

TEST_F(basetest, submatrixListHoldsFifty) {
    for (int k = 0; k < 50; k++) symtabtemp(0, 0, nullptr, SUBMTX, 0);
    EXPECT_EQ(errorof([] { symtabtemp(0, 0, nullptr, SUBMTX, 0); }),
              "##Error: too many submatrices. use a simpler expression\n");
    EXPECT_EQ(errorof([] { symtabtemp(0, 0, nullptr, WINDOWTYPE, 0); }),
              "##Error: only numeric, matrix, or string types permitted here\n");
    symtabsweep();
    for (int i = 1; i < SYMTABSIZE; i++) EXPECT_NE(sym(i).name[0], ' ');
    EXPECT_EQ(symtab.nsubmtx, 0);
}

TEST_F(basetest, deleteRefusals) {
    const int sw = symtabenter("CUTOFF"), fn = symtabenter("SIN"), pi = symtabenter("PI"),
              x = symtabenter("X");
    sym(sw).type = SCALAR;
    sym(fn).type = -5;
    sym(pi).type = CONSTANT;
    symtabprotect();
    const struct {
        int idx;
        const char* says;
    } rows[] = {{sw, ""},
                {fn, "Warning: DELETE: builtin functions may not be deleted\nWarning: SIN is one\n"},
                {pi, "##Error: constants may not be deleted\n"},
                {x, "Warning: DELETE: X does not exist\n"}};
    for (const auto& row : rows) {
        out.clear();
        try {
            symtabdelete(row.idx);
        } catch (const recoveryjump&) {}
        EXPECT_EQ(fixedwords(out), row.says);
    }
    EXPECT_EQ(sym(sw).type, SCALAR);
}

TEST_F(basetest, deletedFunctionTakesItsDerivativesAlong) {
    const char* names[] = {"F", ".F.X", "..F.X.X", ".FOO.X", ".G.F"};
    for (const char* name : names) sym(symtabenter(name)).type = USERFUNCTION;
    symtabdelete(symtablookup("F"));
    EXPECT_EQ(sym(symtablookup("F")).type, UNKNOWN);
    EXPECT_EQ(sym(symtablookup(".F.X")).type, UNKNOWN);
    EXPECT_EQ(sym(symtablookup("..F.X.X")).type, UNKNOWN);
    EXPECT_EQ(sym(symtablookup(".FOO.X")).type, USERFUNCTION);
    EXPECT_EQ(sym(symtablookup(".G.F")).type, USERFUNCTION);
    EXPECT_TRUE(parser.treegarbage);
}

TEST_F(basetest, warningsObeyTheirSwitchAndErrorsDoNot) {
    const int sw = symtabenter("WARNSW");
    sym(sw).type = SCALAR;
    sym(sw).val.rval = 0;
    tarnwarn("quiet");
    EXPECT_EQ(out, "");
    EXPECT_EQ(errorof([] { tarnsyntax(13, "illegal statement"); }),
              "##Syntax Error[13]: illegal statement\n");
    sym(sw).val.rval = 1;
    out.clear();
    argwarn("GAMMA");
    EXPECT_EQ(out, "Warning: function: GAMMA. argument out of range\n");
}

TEST_F(basetest, longTextIsPrintedWhole) {
    const std::string text(5000, 'x');
    tarnprint("%s|", text.c_str());
    EXPECT_EQ(out, text + "|");
}

TEST_F(basetest, fileNamesAreBoundToTheirPlace) {
    const struct {
        const char *name, *dir, *ext, *path;
    } rows[] = {{"A", "", "dat", "A.dat"},
                {"A", "d", "dat", "d/A.dat"},
                {"A", "d/", "dat", "d/A.dat"},
                {"A.X", "d", "dat", "d/A.X"},
                {"/t/A", "d", "dat", "/t/A.dat"},
                {"./A", "d", nullptr, "./A"},
                {"../q.r/A", "d", "do", "../q.r/A.do"},
                {"s\\A", nullptr, "do", "s/A.do"}};
    for (const auto& row : rows) EXPECT_EQ(bindname(row.name, row.dir, row.ext), row.path);
}

TEST_F(basetest, faultsAreRepairedCountedAndTold) {
    fp.limit = 2;
    EXPECT_EQ(fpdiv(1, 0), MAXPOS);
    EXPECT_EQ(fpdiv(-1, 0.0), MAXNEG);
    EXPECT_EQ(fpdiv(0, 0), MAXPOS);
    EXPECT_EQ(fpdiv(1e300, -1e-300), MAXNEG);
    EXPECT_EQ(fpcheck(-1e300 * 1e300), MAXNEG);
    EXPECT_EQ(fpcheck(MAXPOS), MAXPOS);
    EXPECT_EQ(out, "\nFloating Point Error: Divide by Zero\n\nFloating Point Error: Divide by Zero\n");
    EXPECT_EQ(fp.total, 5u);
    EXPECT_EQ(fp.divzero, 2u);
    EXPECT_EQ(fp.zerodivzero, 1u);
    EXPECT_EQ(fp.overflow, 2u);
    fpsummary(true);
    EXPECT_EQ(fp.total, 0u);
    fp.limit = 0;
    out.clear();
    fpdiv(1, 0);
    EXPECT_EQ(out, "") << "a limit of 0 silences";
    EXPECT_EQ(fp.total, 1u) << "and still counts";
}

TEST_F(basetest, controlCComesAsTheRecoveryWithValue6) {
    report.capture = nullptr;
    console.breakpending = [] { return true; };
    try {
        conout("x");
        FAIL();
    } catch (const recoveryjump& j) { EXPECT_EQ(j.value, 6); }
    hooksreset();
}

TEST_F(basetest, stacksHaveBounds) {
    for (int k = 0; k < POLSTACKSIZE; k++) polpush(5);
    EXPECT_THROW(polpush(5), recoveryjump);
    for (int k = 0; k < POLSTACKSIZE; k++) EXPECT_EQ(polpop(), 5);
    EXPECT_EQ(errorof([] { polpop(); }), "##Error: polstack[] empty, cannot be popped\n");
    for (int k = 1; k < OPSTACKSIZE; k++) oppush(4);
    EXPECT_THROW(oppush(4), recoveryjump);
    for (int k = 0; k < SCALARSTACKSIZE; k++) EXPECT_EQ(scalarpush(k), -1 - k);
    EXPECT_NE(errorof([] { scalarpush(0); }), "");
}

} // namespace
