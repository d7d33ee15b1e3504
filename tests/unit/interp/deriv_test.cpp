// Symbolic derivatives against values computed elsewhere, their texts read back, and the rules of their
// names.
#include "funcs/deriv.h"
#include "support/datarows.h"
#include "support/livesession.h"

#include <cmath>

namespace {

using Derivatives = StartedSession;

double close(double value, double expected) {
    return std::fabs(value - expected) / std::max(std::fabs(expected), 1e-3);
}

// 0 when the text is "-".
bool wanted(const std::string& text, double& value) {
    if (text == "-") return false;
    value = std::stod(text);
    return true;
}

TEST_F(Derivatives, EveryRuleParsesAndItsNamesExist) {
    EXPECT_EQ(derivrulescheck(), nullptr) << derivrulescheck();
}

/* Lines of the table: body | point first second | ... Each first derivative to 12 digits, each second to 10;
 * and the printed derivative, read back as a definition, has the same values. */
TEST_F(Derivatives, ReferenceTable) {
    int functions = 0;
    for (const std::string& line : datarows("derivatives.txt")) {
        functions++;
        std::istringstream cells(line);
        std::string body, cell;
        std::getline(cells, body, '|');
        run("WARNSW = 1; FUNCTION F(X) = " + body);
        // a function whose routine is still pending is counted by the test of the vocabulary
        if (run("R0 = F(0.4)").find("not available") != std::string::npos) continue;
        run("WARNSW = 0");
        ASSERT_EQ(run("TYPE F").find("##Error"), std::string::npos) << body << run("TYPE F");
        while (std::getline(cells, cell, '|')) {
            std::istringstream point(cell);
            std::string x, first, second;
            point >> x >> first >> second;
            double expected;
            const std::string said = run("R1 = F'X(" + x + ")");
            ASSERT_EQ(said.find("Error"), std::string::npos) << body << " at " << x << ": " << said;
            ASSERT_TRUE(wanted(first, expected)) << body;
            EXPECT_LT(close(scalar("R1"), expected), 1e-12) << body << " at " << x << ": " << run("TYPE F'X");
            if (!wanted(second, expected)) continue;
            const std::string said2 = run("R2 = F'X'X(" + x + ")");
            ASSERT_EQ(said2.find("Error"), std::string::npos) << body << ": " << said2;
            EXPECT_LT(close(scalar("R2"), expected), 1e-10)
                << body << " second at " << x << ": " << run("TYPE F'X'X");
        }
        run("DELETE F");
    }
    EXPECT_GE(functions, 80);
}

TEST_F(Derivatives, PrintedDerivativesReadBack) {
    const char* bodies[] = {"X^3-2*X",
                            "EXP(-X^2)*SIN(X)",
                            "(X-1)/(X+1)-X/(2-X)",
                            "IF X > 1 THEN X^3 ELSE SIN(X)",
                            "SUM(I,1,5,X^I/I)",
                            "ATAN2(X^2,1+X)",
                            "-X^4/3",
                            "X^X",
                            "LOG(X)*SQRT(X)-TANH(X)"};
    for (const char* body : bodies) {
        run("FUNCTION F(X) = " + std::string(body) + "; R0 = F'X(0.7)");
        std::string text = run("TYPE F'X");
        const size_t name = text.find("F'X(");
        ASSERT_NE(name, std::string::npos) << text;
        text.replace(name, 3, "G");
        run(text);
        run("R1 = F'X(0.7); R2 = G(0.7)");
        EXPECT_NEAR(scalar("R1"), scalar("R2"), 2e-8 * std::fabs(scalar("R1")))
            << text; // constants print with 8 digits
        run("DELETE F, G");
    }
}

TEST_F(Derivatives, TextsAndNames) {
    const struct {
        const char *statements, *output;
    } rows[] = {
        {"FUNCTION F(X) = X^2; TYPE F'X", "FUNCTION F'X(X) = 2*X\n"},
        {"FUNCTION H(X) = X^Y; TYPE H'X", "FUNCTION H'X(X) = Y*X^(Y-1)\n"},
        {"TYPE H'Y", "FUNCTION H'Y(X) = LOG(X)*X^Y\n"},
        {"FUNCTION G(X) = F(X*X); TYPE G'X", "FUNCTION G'X(X) = F'X(X*X)*2*X\n"},
        {"R = G'X(3); TYPE R", "  R = 108\n"},
        {"FUNCTION C(X) = X*(X>2); R = C'X(3); TYPE R", "  R = 1\n"},
        {"FUNCTION L(X) = FLOOR(X); R = L'X(2)+10*L'X(2.5); TYPE R", "  R = 1\n"},
        {"FUNCTION E(N) = IF N<=1 THEN 1 ELSE N*E(N-1); R = E'N(3); TYPE R", "  R = 5\n"},
        // a global that is reached through another function
        {"FUNCTION A1(X) = K*X; FUNCTION A2(X) = A1(X)+1; FUNCTION A3(X) = A2(X)*2; K = 5; R = A3'K(7); TYPE "
         "R",
         "  R = 14\n"},
        // a derivative of the user's own is used in place of the rules
        {"FUNCTION U(X) = X^2; FUNCTION U'X(X) = 100; FUNCTION V(X) = U(X); R = V'X(3); TYPE R",
         "  R = 100\n"},
        {"FUNCTION Q(X) = SUM(I,1,3,I*X); R = Q'I(2)", "Warning: Diff wrt index of summation is dubious\n"},
        {"FUNCTION P(X) = RAN(X); TYPE P'X", "##Error: DIFF: RAN is not a differentiable builtin function\n"},
        {"Z = 3; TYPE Z'X", "##Error: derivative of Z wrt X cannot be computed\n\n"},
        {"FUNCTION B(N) = BESSJ(N,2); R = B'N(1)",
         "Warning: Can not differentiate BESSJ with respect to second arg.\n"},
    };
    for (const auto& row : rows) EXPECT_EQ(run(row.statements), row.output) << row.statements;
}

TEST_F(Derivatives, RedefinitionForgetsDerivatives) {
    run("FUNCTION F(X) = X^2; R1 = F'X(3); FUNCTION F(X) = X^3; R2 = F'X(3)");
    EXPECT_EQ(scalar("R1"), 6);
    EXPECT_EQ(scalar("R2"), 27);
    EXPECT_NE(run("FUNCTION W(X) = NOFUNC(X); TYPE W'X").find("NOFUNC'X(X)"), std::string::npos);
}

} // namespace
