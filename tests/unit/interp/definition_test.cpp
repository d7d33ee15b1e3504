// FUNCTION and INITIAL through the real parser: the trees they make, what they print back as, every refusal,
// what redefinition and deletion leave behind.
#include "funcs/define.h"
#include "funcs/funcprint.h"
#include "funcs/trinode.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "support/harness.h"
#include "unit/funcs/bodywriter.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace {

struct Definition : testing::Test {
    void SetUp() override { harnessstart(); }
};

std::string definition(const char* name) {
    char buffer[FUNCPRINTSIZE];
    funcprint(symtablookup(name), buffer, sizeof buffer);
    return buffer;
}

TEST_F(Definition, PrintsBackWithTheParenthesesThatAreNeeded) {
    harnessrun("A = 1; B = 2; C = 3");
    const struct {
        const char *body, *printed; // null: as typed
    } rows[] = {
        {"X", nullptr},
        {"-3", nullptr},
        {"IF X>0 THEN 1 ELSE 2", " IF X>0 THEN 1 ELSE 2"},
        {"A+B*C", nullptr},
        {"(A+B)*C", nullptr},
        {"A-(B-C)", nullptr},
        {"A-(B+C)", nullptr},
        {"(A-B)-C", "(A-B)-C"},
        {"A-B*C", nullptr},
        {"A*(B*C)", "A*B*C"},
        {"A+(B+C)", "A+B+C"},
        {"A/(B*C)", nullptr},
        {"(A/B)*C", nullptr},
        {"A/B^C", nullptr},
        {"(A^B)^C", nullptr},
        {"A^(B^C)", nullptr},
        {"A^-2", "A^(-2)"},
        {"(-2)^A", nullptr},
        {"-(A+B)", nullptr},
        {"-(A^B)", "-A^B"},
        {"-(A*B)", "-A*B"},
        {"A--3", nullptr},
        {"-(-A)", nullptr},
        {"NOT X", nullptr},
        {"NOT (X>1)", nullptr},
        {"(X>1) AND (X<2)", nullptr},
        {"(X OR A) AND (NOT B)", nullptr},
        {"SUM(I,1,3,I*X)", nullptr},
        {"SIN(X)+F()", nullptr},
        {"Y _ X", nullptr},
        {"Y(1,2) _ (X+1)", nullptr},
        {"G'X(X)+G'X'A(X,2)", nullptr},
        {"G''X(X)", "G'X'X(X)"},
        {"G'(A'X)", nullptr},
        {"1.5+1E-7+123456789", "1.5+0.0000001+12345679E1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(harnessrun(std::string("FUNCTION F(X) = ") + row.body).find("Error"), std::string::npos)
            << row.body;
        EXPECT_EQ(definition("F"), std::string("FUNCTION F(X) = ") + (row.printed ? row.printed : row.body));
        harnessrun("DELETE F");
    }
    harnessrun("INITIAL M'T(0) = A*2; INITIAL N(A+1) = 4; FUNCTION H() = 7");
    EXPECT_EQ(definition(".M.T"), "INITIAL M'T(0) = A*2");
    EXPECT_EQ(definition("N"), "INITIAL N(A+1) = 4");
    EXPECT_EQ(definition("H"), "FUNCTION H() = 7");
}

TEST_F(Definition, TreesHaveTheStatedShape) {
    harnessrun("FUNCTION F(X) = X; FUNCTION G(X) = -3; FUNCTION H(X,Y) = IF Y THEN X ELSE Z; Z = 1");
    const trinode f = tri(funcbody(symtablookup("F")));
    EXPECT_EQ(f.op, TREEIDENTITY);
    EXPECT_EQ(f.left, FORMALBASE + 1);
    EXPECT_EQ(f.right, 0);
    const trinode g = tri(funcbody(symtablookup("G")));
    EXPECT_EQ(g.op, TREEIDENTITY);
    EXPECT_EQ(sym(g.left).type, CONSTANT);
    EXPECT_EQ(sym(g.left).val.rval, -3);
    const trinode h = tri(funcbody(symtablookup("H")));
    EXPECT_EQ(h.op, TREEIF);
    EXPECT_EQ(h.left, FORMALBASE + 2);
    EXPECT_EQ(tri(h.right).op, TREETHEN);
    EXPECT_EQ(tri(h.right).left, FORMALBASE + 1);
    EXPECT_EQ(tri(h.right).right, symtablookup("Z"));
    harnessrun("FUNCTION P(X) = 0.5; FUNCTION Q(X) = X*0.5");
    EXPECT_EQ(tri(funcbody(symtablookup("P"))).left, tri(funcbody(symtablookup("Q"))).right)
        << "one entry a constant";
}

TEST_F(Definition, Refusals) {
    harnessrun("S = 1; A = 1:3; T = \"text\"");
    const struct {
        const char *statement, *printed;
    } rows[] = {
        {"FUNCTION F(X) = (X+1)(2)", "##Error: expression in function name illegal\n"},
        {"FUNCTION S(X) = 3", "##Error: in an F(...) term, F cannot have subscripts or args\n"},
        {"FUNCTION F(X) = S(X)", "##Error: in an F(...) term, F cannot have subscripts or args\n"},
        {"FUNCTION F(X) = T(X)", "##Error: in an F(...) term, F cannot have subscripts or args\n"},
        {"FUNCTION F(X) = SUM(X,1,2,X)", "##Error: dummy arguments must not be formals\n"},
        {"FUNCTION F(X) = SUM(A,1,2,X)",
         "##Error: function SUM argument 1: expected scalar, unknown or formal\n"},
        {"FUNCTION F(X) = SUM(I,1,2)", "##Error: function SUM takes 4 arguments; 4 are mandatory\n"},
        {"X = FUNCTION F(X) = 1", "##Syntax Error[9]: illegal function definition\n"},
        {"FUNCTION H = 3", "##Syntax Error[9]: illegal function definition\n"},
        {"FUNCTION F(X+1) = 3", "##Syntax Error[9]: illegal function definition\n"},
        {"FUNCTION F(X,X) = 1", "##Error: formal function argument is illegal\n"},
        {"FUNCTION F(3) = 1", "##Error: formal function argument is illegal\n"},
        {"FUNCTION F(\"A\") = 1", "##Error: formal function argument is illegal\n"},
        {"FUNCTION F(X)+1 = 2", "##Syntax Error[2]: illegal function definition\n"},
        {"FUNCTION F(X) = 1, 2", "##Syntax Error[2]: illegal function definition\n"},
        {"FUNCTION F(X) = A & X", "##Syntax Error[2]: illegal function definition\n"},
        {"FUNCTION F(X) = A'", "##Syntax Error[2]: illegal function definition\n"},
        {"FUNCTION F(X) = 1:3", "##Syntax Error[2]: illegal function definition\n"},
        {"FUNCTION F(X) = \"text\"", "Warning: a string cannot stand in a definition; give it a name\n"
                                     "##Syntax Error[2]: illegal function definition\n"},
        {"FUNCTION F(X) = G'(X+1)", "##Error: illegal derivative name construct\n"},
        {"FUNCTION ABCDEFGHIJKLMNOP'ABCDEFGHIJKLM(X) = 1",
         "##Error: symtabenter: name .ABCDEFGHIJKLMNOP.ABCDEFGHIJKLM too long.  27 is the maximum length for "
         "names\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(harnessrun(row.statement), row.printed) << row.statement;
        EXPECT_EQ(harnessrun("FUNCTION OK(X) = X+1; R = OK(1)"), "") << "after " << row.statement;
        harnessrun("DELETE OK");
    }
    EXPECT_EQ(sym(symtablookup("S")).val.rval, 1);
    EXPECT_EQ(sym(symtablookup("A")).type, MATRIX);
}

TEST_F(Definition, RedefinitionTellsAndClears) {
    EXPECT_EQ(harnessrun("FUNCTION F(X) = X^2"), "");
    harnessrun("R = F'X(3); R2 = F'X'X(3)");
    EXPECT_EQ(sym(symtablookup(".F.X")).type, USERFUNCTION);
    EXPECT_EQ(harnessrun("FUNCTION F(X) = X^3"), "Redefining F \n");
    EXPECT_EQ(sym(symtablookup(".F.X")).type, UNKNOWN);
    EXPECT_EQ(sym(symtablookup("..F.X.X")).type, UNKNOWN);
    harnessrun("R = F'X(3)");
    EXPECT_EQ(sym(symtablookup("R")).val.rval, 27) << "made anew from the new body";
    EXPECT_EQ(harnessrun("INITIAL F(0) = 1"), "Redefining F \nall derivatives of F have been deleted\n");
    EXPECT_EQ(sym(symtablookup("F")).type, INITIALVALUE);
    EXPECT_EQ(harnessrun("FUNCTION M'T'T(T) = 1; FUNCTION M''T(T) = 2"), "Redefining M DIFF T DIFF T \n");
    EXPECT_EQ(harnessrun("A = 1:3; FUNCTION A(X) = X"), "Redefining A \n") << "the matrix makes way";
    EXPECT_EQ(harnessrun("FUNCTION SIN(X) = X; FUNCTION P(X) = SIN(X); R = P(2)"), "Redefining SIN \n");
    EXPECT_EQ(sym(symtablookup("R")).val.rval, 2);
}

TEST_F(Definition, DeletionOfAFunctionTakesItsDerivativesAlone) {
    harnessrun("FUNCTION F(X) = X^2*Y; FUNCTION G(X) = F(X)*2; Y = 2");
    harnessrun("A = F'X(1); B = F'Y(1); C = G'X(1); D = F'X'Y(1)");
    harnessrun("DELETE F");
    for (const char* name : {".F.X", ".F.Y", "..F.X.Y", "F"})
        EXPECT_EQ(sym(symtablookup(name)).type, UNKNOWN) << name;
    EXPECT_EQ(sym(symtablookup(".G.X")).type, USERFUNCTION);
    harnessrun("FUNCTION F(X) = X; FUNCTION H(F) = F^2; E = H'F(3); DELETE F");
    EXPECT_EQ(sym(symtablookup(".H.F")).type, USERFUNCTION) << "a derivative by the name stays";
    harnessrun("FUNCTION F(X) = X^2; A = F'X(1); B = F'X'X(1); DELETE F'X");
    EXPECT_EQ(sym(symtablookup("..F.X.X")).type, UNKNOWN) << "the derivative of a derivative goes with it";
    EXPECT_EQ(sym(symtablookup("F")).type, USERFUNCTION);
}

TEST_F(Definition, ADerivativeOfItselfIsOnlyNamed) {
    harnessrun("FUNCTION F(X) = F'X(X)*2; FUNCTION G(X) = H'X(X)+X; FUNCTION H(X) = G'X(X)*X");
    for (const char* statement : {"F'X(1)", "G'X(2)", "H(1)"})
        EXPECT_NE(harnessrun(statement).find("too long.  27 is the maximum length for names"),
                  std::string::npos)
            << statement;
    EXPECT_EQ(definition(".F.X"), "FUNCTION F'X(X) = 2*F'X'X(X)");
}

TEST_F(Definition, ManyRedefinitionsKeepTheStoreSteady) {
    std::string text;
    for (int k = 0; k < 100; k++) text += "FUNCTION F(X) = X^2+3*X-SIN(X)/(1+X); A = F(2); A = F'X(2)\n";
    harnessrun("WARNSW = 0");
    harnessrun(text);
    harnessrun("A = 1");
    const int steady = trifreecount();
    for (int k = 0; k < 20; k++) harnessrun(text);
    harnessrun("A = 1");
    EXPECT_EQ(trifreecount(), steady);
    EXPECT_EQ(int(trinodes.at.size()), TRINODEFIRST);
}

TEST_F(Definition, AFailedBodyLosesTheOldOne) {
    harnessrun("FUNCTION F(X) = X");
    EXPECT_EQ(harnessrun("FUNCTION F(X) = X & 2"), "##Syntax Error[2]: illegal function definition\n");
    EXPECT_EQ(sym(symtablookup("F")).type, UNKNOWN);
    harnessrun("FUNCTION F(X) = X");
    harnessrun("FUNCTION F(X,X) = 2"); // a bad header changes nothing
    EXPECT_EQ(definition("F"), "FUNCTION F(X) = X");
}

TEST_F(Definition, LongTextsEndInAMark) {
    std::string body = "X";
    while (body.size() < 1200) body += "+X";
    harnessrun("FUNCTION F(X) = " + body);
    char small[FUNEDITSIZE], large[FUNCPRINTSIZE];
    memset(small, '#', sizeof small);
    funcprint(symtablookup("F"), small, sizeof small);
    funcprint(symtablookup("F"), large, sizeof large);
    EXPECT_EQ(strlen(small), 200u);
    EXPECT_EQ(std::string(small + 190), "[TOO BIG!]");
    EXPECT_EQ(std::string(large + strlen(large) - 10), "[TOO BIG!]");
    EXPECT_EQ(functext(symtablookup("F"), true), "FUNCTION F(X) = " + body);
    harnessrun("FUNCTION G(X) = " +
               std::string(190 - strlen("FUNCTION G(X) = "), '9').replace(1, 1, "+").substr(0, 5));
    EXPECT_EQ(definition("G").find("TOO BIG"), std::string::npos);
}

bool sametree(int a, int b) {
    if (a >= 0 || b >= 0) return a == b;
    const trinode m = tri(a), n = tri(b);
    return m.op == n.op && sametree(m.left, n.left) && sametree(m.right, n.right);
}

// The exact text compiles to the same tree; the text of TYPE can be typed.
TEST_F(Definition, TextReadsBackAsTheSameTree) {
    harnessrun("M = 1:3; A = 1; Z = 0");
    bodywriter writer{std::mt19937(77), 0, true};
    for (int round = 0; round < 400; round++) {
        const std::string body = writer.body(5, "X");
        harnessrun("FUNCTION P0(X,Y) = " + body);
        const int f = symtablookup("P0");
        ASSERT_EQ(sym(f).type, USERFUNCTION) << body;
        const std::string exact = functext(f, true), typed = functext(f, false);
        std::string renamed = exact;
        renamed.replace(renamed.find("P0"), 2, "Q0");
        ASSERT_EQ(harnessrun(renamed).find("rror"), std::string::npos) << renamed;
        const int g = symtablookup("Q0");
        ASSERT_TRUE(sametree(funcbody(f), funcbody(g))) << exact;
        harnessrun("DELETE Q0");
        renamed = typed;
        renamed.replace(renamed.find("P0"), 2, "Q0");
        harnessrun(renamed);
        ASSERT_EQ(sym(g).type, USERFUNCTION) << typed;
        harnessrun("DELETE Q0; DELETE P0");
    }
}

// A constant is saved with the digits that make it again. The scanner's rounding leaves a few that no digits
// make: none that was ever typed, and the nearest is taken.
TEST_F(Definition, ExactTextKeepsConstants) {
    std::mt19937_64 bits(5);
    const double special[] = {0, 1, 0.1, 1.0 / 3, 2e300, 1e-300, 123456789012345678.0, 1e15, 4.35};
    int inexact = 0;
    for (int round = 0; round < 1500; round++) {
        double c =
            std::bit_cast<double>((bits() & 0x000FFFFFFFFFFFFF) | (uint64_t(120 + bits() % 1925) << 52));
        if (round < int(std::size(special))) c = special[round];
        parser.funcmode = 1;
        const int body = trialloc(TREEIDENTITY, symtabconst(c), 0);
        parser.funcmode = 0;
        const int f = symtabenter("F");
        sym(f).type = USERFUNCTION;
        sym(f).index = int16_t(trialloc(TREEHEADER, 0, body));
        const std::string text = functext(f, true);
        harnessrun(text);
        const double again = sym(tri(funcbody(f)).left).val.rval;
        EXPECT_LE(std::fabs(again - c), 2e-15 * c) << text;
        inexact += again != c;
        sym(tri(funcbody(f)).left).name[0] = '@'; // the table of names is not to fill up
        sym(tri(body).left).name[0] = '@';
        harnessrun("DELETE F");
    }
    EXPECT_LE(inexact, 6);
}

} // namespace
