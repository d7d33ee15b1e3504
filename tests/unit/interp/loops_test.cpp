// FOR: its forms, what its body may do, and that a loop does what the same statements do one by one.
#include "support/datarows.h"
#include "support/livesession.h"

namespace {

using Loops = StartedSession;

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
    for (const auto& row : rows) EXPECT_EQ(fixedwords(run(row.statements)), row.output) << row.statements;
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
        EXPECT_EQ(fixedwords(run(row.statements)), row.output) << row.statements;
        EXPECT_EQ(run("1+1"), "    = 2\n");
    }
}

TEST_F(Loops, BodyMayChangeTheMatrix) {
    EXPECT_EQ(run("A = 1:3; FOR I = A { A(2) = 7; TYPE I }"), "  I = 1\n  I = 7\n  I = 3\n");
    EXPECT_EQ(run("A = 1:2; FOR I = A { IF I = 2 THEN A(3) = 9; TYPE I }"), "  I = 1\n  I = 2\n  I = 9\n");
    EXPECT_EQ(run("A = 1:3; FOR I = A { A = 4:5; TYPE I }"), "  I = 1\n  I = 5\n");
    EXPECT_EQ(fixedwords(run("A = 1:3; FOR I = A { DELETE A; TYPE I }")),
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
    EXPECT_EQ(fixedwords(run("FOR I = 1:2 { FOR J = 1:2 { FOR K = 1:2 { TYPE K; X = ) } } }")),
              "  K = 1\n##Syntax Error[3]: illegal command type\n");
    EXPECT_EQ(run("TYPE K"), "  K = 1\n");
}

const char* const setting = "DELETE X, N1, NEW, Y, G, Z, T1, T2, A1, FRESH\nM = 1:3; S = \"s\"; J = 2; COUNT "
                            "= 4; X = RAN(7); X = 0; FUNCTION F(T) = T + 1; FUNCTION H(T) = (J _ J + 1) + T\n"
                            "MATHEX = 5; WARNSW = 1; CASESW = 0; MAXITER = 7; I = 1\n";

// Runs `body` for I = 1..4 by hand: the same text again and again, unless an error or RETURN ends it.
std::string byhand(const std::string& body) {
    std::string text;
    for (int k = 1; k <= 4; k++) text += "I = " + std::to_string(k) + "\n" + body + "\n";
    return text;
}

// The forms of tests/data/loopforms.txt.
TEST_F(Loops, LoopsDoWhatTheStatementsDo) {
    const std::vector<std::string> forms = datarows("loopforms.txt");
    EXPECT_GT(forms.size(), 150u);
    for (const std::string& body : forms) {
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
