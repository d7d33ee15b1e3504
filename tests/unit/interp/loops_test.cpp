// FOR: its forms, what its body may do, and that a loop does what the same statements do one by one.
#include "unit/interp/livesession.h"

namespace {

class Loops : public LiveSession {
protected:
    void SetUp() override {
        LiveSession::SetUp();
        start();
    }
};

TEST_F(Loops, Forms) {
    const struct {
        const char* statements;
        const char* output;
    } rows[] = {
        {"FOR I = 1:3 { TYPE I }", "  I = 1\n  I = 2\n  I = 3\n"},
        {"FOR I = 1:3; { TYPE I }", "  I = 1\n  I = 2\n  I = 3\n"},
        {"FOR I = 1:3\n{ TYPE I }", "  I = 1\n  I = 2\n  I = 3\n"},
        {"FOR I = 1:2 {\n\n TYPE I\n\n TYPE -I\n}", "  I = 1\n    = -1\n  I = 2\n    = -2\n"},
        {"FOR I = 1:2; [ TYPE I ]", "  I = 1\n  I = 2\n"},
        {"FOR I = 5 { TYPE I }", "  I = 5\n"},
        {"FOR I = LIST(3,1,2)*2 { TYPE I }", "  I = 6\n  I = 2\n  I = 4\n"},
        {"FOR I = (LIST(1,2) &' LIST(3,4)) { TYPE I }", "  I = 1\n  I = 3\n  I = 2\n  I = 4\n"}, // row order
        {"FOR I = NULLM { TYPE I }; TYPE \"after\"", "     after\n"},
        {"FOR I = 1:2 { }; TYPE I", "  I = 2\n"}, // the variable keeps the last value
        {"FOR I = 1:2 { TYPE I } TYPE \"same line\"", "  I = 1\n  I = 2\n     same line\n"},
        {"FOR I = 1:2 { TYPE \"a } b\" /* } */ }", "     a } b\n     a } b\n"},
        {"FOR I = 1:2 { FOR J = 1:2 { TYPE 10*I+J } }", "    = 11\n    = 12\n    = 21\n    = 22\n"},
        {"FOR I = 1:4 { IF I = 2 THEN RETURN; TYPE I }", "  I = 1\n"},
        {"FOR I = 1:2 { FOR J = 1:9 { IF J > 1 THEN RETURN; TYPE J } TYPE I }",
         "  J = 1\n  I = 1\n  J = 1\n  I = 2\n"},
        {"FOR I = 1:3 { IF I = 2 THEN { TYPE \"two\"; TYPE I } ELSE TYPE -I }",
         "    = -1\n     two\n  I = 2\n    = -3\n"},
        {"FOR I = 1:3 { I = I*10; TYPE I }", "  I = 10\n  I = 20\n  I = 30\n"},
    };
    for (const auto& row : rows) EXPECT_EQ(run(row.statements), row.output) << row.statements;
}

TEST_F(Loops, Refused) {
    const struct {
        const char *statements, *output;
    } rows[] = {
        {"FOR I { TYPE I }", "##Syntax Error[22]: incorrect FOR statement\n"},
        {"FOR I = 1:3 TYPE I", "##Syntax Error[4]: illegal token pairing\n"},
        {"FOR I = 1:3; TYPE I", "##Error: FOR-body does not begin with '{'\n"},
        {"A = 1:3; FOR A = 1:3 { }", "##Error: for-loop variable must be a scalar\n"},
        {"FOR I = 1:3 { TYPE I", "##Error: the do-file ended inside a statement\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.statements), row.output) << row.statements;
        EXPECT_EQ(run("1+1"), "    = 2\n");
    }
}

TEST_F(Loops, BodyMayChangeTheMatrix) {
    EXPECT_EQ(run("A = 1:3; FOR I = A { A(2) = 7; TYPE I }"), "  I = 1\n  I = 7\n  I = 3\n");
    EXPECT_EQ(run("A = 1:2; FOR I = A { IF I = 2 THEN A(3) = 9; TYPE I }"), "  I = 1\n  I = 2\n  I = 9\n");
    EXPECT_EQ(run("A = 1:3; FOR I = A { A = 4:5; TYPE I }"), "  I = 1\n  I = 5\n");
    EXPECT_EQ(run("A = 1:3; FOR I = A { DELETE A; TYPE I }"),
              "  I = 1\n##Error: the matrix of a FOR loop was deleted by its body\n");
    EXPECT_EQ(run("A = 1:3; FOR I = A { IF I = 3 THEN DELETE A; TYPE I }"), "  I = 1\n  I = 2\n  I = 3\n");
}

TEST_F(Loops, RefusedInnerLoopLeavesNothingForALaterReturn) {
    EXPECT_EQ(run("X = 0; FOR I = 1:6 { FOR J = 1:2 { TYPE J }; IF I = 4 THEN RETURN; X = I }; TYPE X"),
              "  J = 1\n  J = 2\n  J = 1\n  J = 2\n  J = 1\n  J = 2\n  J = 1\n  J = 2\n  X = 3\n");
    EXPECT_EQ(run("X = 0; FOR I = 1:6 { FOR J = 1:2 { IF I = 9 THEN RETURN; TYPE J }; X = X + 1; IF I = 4 "
                  "THEN RETURN };"
                  " TYPE X")
                  .substr(64),
              "  X = 4\n");
}

TEST_F(Loops, DeepNestingIsNoDanger) {
    std::string deep;
    for (int k = 0; k < 2000; k++) deep += "IF I THEN ";
    EXPECT_EQ(run("X = 0; FOR I = 1:5 { " + deep + "X = X + I }; TYPE X"), "  X = 15\n");
    const std::string open(5000, '('), close(5000, ')');
    EXPECT_EQ(run("FOR I = 1:5 { X = " + open + "I" + close + " }").substr(0, 8), "##Error:");
    EXPECT_EQ(run("1+1"), "    = 2\n");
}

TEST_F(Loops, BodyMayDeleteTheVariable) {
    EXPECT_EQ(run("FOR I = 1:3 { TYPE I; DELETE I; J = 7 }; TYPE J"), "  I = 1\n  I = 2\n  I = 3\n  J = 7\n");
}

TEST_F(Loops, BodyMayDoFiles) {
    file("say.do", "TYPE I\nFOR J = 1:2 { TYPE J }\nRETURN\nTYPE \"never\"\n");
    EXPECT_EQ(run("FOR I = 1:2 { DO SAY; TYPE \"back\" }"),
              "  I = 1\n  J = 1\n  J = 2\n     back\n  I = 2\n  J = 1\n  J = 2\n     back\n");
}

TEST_F(Loops, ErrorAtAnyDepthEndsAllOfThem) {
    EXPECT_EQ(run("FOR I = 1:2 { FOR J = 1:2 { FOR K = 1:2 { TYPE K; X = ) } } }"),
              "  K = 1\n##Syntax Error[3]: illegal command type\n");
    EXPECT_EQ(run("TYPE K"), "  K = 1\n");
}

// Statement forms, each run by itself and as the body of a loop; what is printed must be the same.
const char* const forms[] = {
    "X = 3",
    "X = I + 0.5",
    "X = -I^2*3 - 2^-I/7",
    "X = I < 2 OR I = 3 AND NOT I > 1",
    "X = (I = 2)",
    "N1 = I; TYPE N1",
    "X = X + 1; TYPE X",
    "X = M(I)",
    "X = M(I,1) + M(2)*M(1)",
    "X = M(I+0.9)",
    "X = M(9)",
    "X = M(0)",
    "X = M(1,2)",
    "X = M(1,1,1)",
    "X = NOSUCH",
    "X = NOSUCH(2)",
    "M(I) = 7; M",
    "M(I,2) = I; M",
    "M(I+5) = 1; M",
    "M(0) = 1",
    "NEW(I,I) = I; NEW",
    "M = 0; M",
    "X = M",
    "X = \"text\"",
    "S = \"text\"; S",
    "S = 3",
    "X = 1/0",
    "X = 0/0",
    "X = 1E300*1E300*I",
    "X = -1E300*1E300 + 1/0",
    "MATHEX = 0; X = 1/0",
    "X = SIN(I) + SQRT(I) + EXP(-I)*ABS(-I)",
    "X = LOG(0)",
    "X = LOG(-I)",
    "X = SQRT(-1)",
    "X = ATAN2(I, 2)",
    "X = ATAN2(I)",
    "X = SIN()",
    "X = SIN(M)",
    "X = SIN(S)",
    "X = MAX(I, 2)",
    "X = 2^0.5 + (-8)^(1/3)",
    "X = 0^0",
    "X = 0^-1",
    "X = I^1000",
    "X = -I^0.5",
    "X _ 5; TYPE X",
    "IF I = 1 THEN X = 10 ELSE X = 20; TYPE X",
    "IF I = 1 THEN {X = 10; Y = 1} ELSE {X = 20}; TYPE X",
    "IF I THEN X = 5",
    "IF I > 5 THEN 3 4 ELSE X = 6; TYPE X",
    "IF M THEN X = 1 ELSE X = 2",
    "X = IF I = 1 THEN 2 ELSE 3; TYPE X",
    "X = 2*IF I = 1 THEN 3+1 ELSE 4; TYPE X",
    "X = IF I = 1 THEN (I+1)*2 ELSE 0; TYPE X",
    "FUNCTION G(T) = T^2 + I; X = G(3); TYPE X",
    "X = F(I)*2; TYPE X",
    "X = F(I, 2)",
    "X = F(M); X",
    "F = 3",
    "PI = 3",
    "SIN = 3",
    "MAXITER = 20 + I; TYPE MAXITER",
    "WARNSW = 0; X = M",
    "CASESW = 1; x = 1; X = 2; TYPE x, X",
    "X = 1; DELETE X; X = 2; TYPE X",
    "DELETE M; M = 5; TYPE M",
    "X = I; X = 1:2; TYPE X",
    "RETURN; X = 99",
    "X = 3 4",
    "X = ",
    "= 3",
    "3",
    "I",
    "X = I; ; ; TYPE X",
    "\"comment\"; X = I; TYPE X",
    "X = I > 1 > 0 = 1; TYPE X",
    "X = I + (J = 2); TYPE X",
    "X = 1E-320/1E10; TYPE X",
    "X = [I + {2*(I)}]; TYPE X",
    "M(M(1)) = M(2) + 1; M",
    "M(I) = M; M",
    "M(1:2) = I; M",
    "M ROW 1 = 4; M",
    "X = RAN(0)",
    "X = (RAN(0) < 2); TYPE X",
    "X = COUNT; TYPE X",
    "M(2.5) = 1E308*10; M",
    "X = NOT I",
    "FOR J = 1:2 { X = X + J*I }; TYPE X",
    "FOR J = 1:2 { FOR Z = J:0:0.5 { X = X*2 - Z } M(J) = X }; TYPE X, J, Z; M",
    "FOR J = 1:0!3 { X = X + J }; TYPE X",
    "FOR J = 1:2!2.5 { X = X + J }; TYPE X",
    "FOR J = 1:2:0 { X = 1 }",
    "FOR J = I { X = J }; TYPE X",
    "FOR J = M { M(5-J) = J; X = X + 1 }; TYPE X; M",
    "FOR J = NULLM { X = 9 }; TYPE X",
    "FOR J = 1:3 { IF J = 2 THEN RETURN; X = X + J }; TYPE X",
    "FOR J = 1:3 { IF J = 2 THEN { X = 7; RETURN } ELSE X = 6 }; TYPE X",
    "FOR J = 1:3 { X = 1/0 }",
    "FOR J = 1/0:2 { X = J }; TYPE X",
    "FOR J = 1:3 { X = M(J+I) }",
    "FOR J = 1:2 { X = X + J } X = X + 10; TYPE X",
    "FOR J = 1:2 { TYPE J; X = J }",
    "FOR J = 1:2 { X = J; TYPE X; X = -J }; TYPE X",
    "FOR M = 1:2 { X = 1 }",
    "FOR FRESH = 1:2 { X = FRESH }; TYPE X; DELETE FRESH",
    "IF I = 2 THEN { FOR J = 1:2 { X = X + 1 } } ELSE X = 5; TYPE X",
    "IF I = 2 THEN FOR J = 1:2 { X = X + 1 }; TYPE X",
    "IF I = 1 THEN IF J = 2 THEN X = 1 ELSE X = 2; TYPE X",
    "IF I = 1 THEN IF J = 3 THEN X = 1 ELSE X = 2 ELSE X = 3; TYPE X",
    "IF I = 1 THEN X = 1 ELSE IF I = 2 THEN X = 2 ELSE X = 3; TYPE X",
    "IF 1/0 THEN X = 1/0; TYPE X",
    "IF 1/0 = 1 THEN X = 1; TYPE X",
    "IF I = 2 THEN { } ELSE { X = 4 }; TYPE X",
    "IF I = 2 THEN { X = 1/0; ; X = 2/0 }",
    "IF I = 2 THEN RETURN",
    "IF NOSUCH THEN X = 1",
    "IF \"a\" THEN X = 1",
    "IF I = 2 THEN X = 5 Y = 3",
    "IF I = 2 THEN (X) = 5; TYPE X",
    "IF I = 2 THEN [X = 5]; TYPE X",
    "IF I = 2 THEN X = 1 ELSE X = 2 ELSE X = 3",
    "T1 = I; X = T1*2; TYPE X, T1",
    "IF I > 2 THEN T3 = I*2; IF I = 4 THEN { TYPE T3; DELETE T3 }",
    "IF I > 1 THEN T2 = I; X = T2",
    "IF I > 1 THEN X = T2 ELSE T2 = 5; TYPE X",
    "M(I) = F(I); M(F(I)) = M(I); M",
    "M(J) = H(2); M; TYPE J",
    "X = J + H(2)*J; TYPE X, J",
    "X = F(I) + F(1/0); TYPE X",
    "X = F()",
    "X = H(1)(2)",
    "X = M(I)(1)",
    "X = I(2)",
    "X = X(1)",
    "I = 7; X = I; TYPE I",
    "X = (1, 2)",
    "X = SIN(I, 2)",
    "X = 1:3",
    "X = M(1:2)",
    "X = I; X = M; TYPE X",
    "X = TRUE",
    "M(1/0) = 3; M",
    "M(-1/0) = 3",
    "M(1E10,1E10) = 1",
    "A1(3) = I; X = A1(3); A1; TYPE X; DELETE A1",
    "X = 2; X(1) = 3",
    "X = (M(1) = 1) AND M(2) = 2 OR 0; TYPE X",
    "X = I = 1 AND J = 2; TYPE X",
    "X = I - - 2; TYPE X",
    "X = + I; TYPE X",
};

const char* const setting = "DELETE X, N1, NEW, Y, G, Z, T1, T2, A1, FRESH\nM = 1:3; S = \"s\"; J = 2; COUNT "
                            "= 4; X = RAN(7); X = 0; FUNCTION F(T) = T + 1; FUNCTION H(T) = (J _ J + 1) + T\n"
                            "MATHEX = 5; WARNSW = 1; CASESW = 0; MAXITER = 7; I = 1\n";

// Runs `body` for I = 1..4 by hand: the same text again and again, unless an error or RETURN ends it.
std::string byhand(const std::string& body) {
    std::string text;
    for (int k = 1; k <= 4; k++) text += "I = " + std::to_string(k) + "\n" + body + "\n";
    return text;
}

TEST_F(Loops, LoopsDoWhatTheStatementsDo) {
    for (const std::string body : forms) {
        run(setting);
        const std::string alone = run(byhand(body));
        const double x = scalar("X");
        run(setting);
        const std::string looped = run("FOR I = 1:4 { " + body + " }");
        EXPECT_EQ(looped, alone) << body;
        EXPECT_EQ(scalar("X"), x) << body;
        // More passes, so that whatever is prepared for later passes is used for some time.
        run(setting);
        const std::string often = run("FOR K = 1:3 { FOR I = 1:4 { " + body + " } }");
        EXPECT_TRUE(often.starts_with(alone)) << body;
    }
}

} // namespace
