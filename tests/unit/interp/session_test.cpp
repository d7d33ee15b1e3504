// The session: start, statement loop, recovery, batch, end.
#include "support/livesession.h"

#include "interp/base/fpfault.h"

namespace fs = std::filesystem;

namespace {

using Session = LiveSession;

TEST_F(Session, StartsAgainAndAgainInOneProcess) {
    for (int k = 0; k < 3; k++) {
        ASSERT_EQ(start(), 0);
        EXPECT_EQ(scalar("LEFTOVER"), -999);
        EXPECT_EQ(run("LEFTOVER = 1; WARNSW = 0; CASESW = 1\nfor"),
                  "##Syntax Error[3]: illegal command type\n");
        sessionclose();
    }
    EXPECT_TRUE(fs::exists("tarn1.log"));
}

TEST_F(Session, SystemVariablesStandAtTheStart) {
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(scalar("MAXPOS"), MAXPOS);
    EXPECT_EQ(scalar("MAXNEG"), MAXNEG);
    EXPECT_EQ(scalar("MACHEPS"), 1.110223024625157e-16);
    EXPECT_STREQ(symtabstring("PSL", ""), "PSL");
    EXPECT_STREQ(symtabstring("TARNPATH", ""), TARNSTARTDIR);
    EXPECT_TRUE(symtabprotected(symtablookup("MAXITER")));
}

TEST_F(Session, FailedStartsHaveTheirStatus) {
    sessionoptions o = options();
    o.programpath = folder.path.string() + "/";
    EXPECT_EQ(sessionstart(o), 1);
    EXPECT_TRUE(live.output.starts_with("Cannot open file: ")) << live.output;
    file("TOKEN.FIL", "");
    live.output.clear();
    EXPECT_EQ(sessionstart(o), 1);
    EXPECT_TRUE(live.output.starts_with("Illegal ")) << live.output;
    fs::copy_file(std::string(TARNSTARTDIR) + "TOKEN.FIL", "TOKEN.FIL", fs::copy_options::overwrite_existing);
    EXPECT_EQ(sessionstart(o), 3);
    sessionclose();
    EXPECT_NE(contents("tarn.log").find("INIT.SAV missing!\n"), std::string::npos);
}

TEST_F(Session, LogThatCannotBeOpenedEndsTheStart) {
    fs::create_symlink("/nowhere/at/all", "tarn.log");
    EXPECT_EQ(sessionstart(options()), 1);
    EXPECT_TRUE(live.output.starts_with("Cannot open log file...  Exiting.\ntarn.log cannot be written in "))
        << live.output;
}

TEST_F(Session, StartUpDoFilesRunInTheirOrder) {
    file("tarninit.do", "TYPE \"init\"\n");
    file("_", "TYPE \"underscore\"\n");
    file("model.do", "TYPE \"model\"\n");
    sessionoptions o = options();
    o.vanilla = false;
    start(o);
    EXPECT_EQ(type({}), 0);
    EXPECT_LT(live.output.find("init"), live.output.find("underscore"));
    o.dofile = "model.do";
    start(o);
    EXPECT_EQ(type({}), 0);
    EXPECT_LT(live.output.find("init"), live.output.find("model"));
    EXPECT_EQ(live.output.find("underscore"), std::string::npos);
    o.vanilla = true;
    start(o);
    EXPECT_EQ(type({}), 0);
    EXPECT_EQ(live.output.find("init"), std::string::npos);
    EXPECT_NE(live.output.find("model"), std::string::npos);
}

TEST_F(Session, ErrorKeepsWhatWasDoneBefore) {
    start();
    EXPECT_EQ(type({"A = 1; B = ) ; C = 3", "D = 4"}), 0);
    EXPECT_EQ(scalar("A"), 1);
    EXPECT_EQ(scalar("C"), -999) << "the rest of the line is dropped";
    EXPECT_EQ(scalar("D"), 4);
}

TEST_F(Session, ErrorLeavesNoTemporariesBehind) {
    start();
    run("M = 1:5; T = \"text\"");
    const auto temporaries = [] {
        int n = 0;
        for (int k = 1; k < SYMTABSIZE; k++) n += istemporary(k);
        return n;
    };
    for (const char* wrong :
         {"X = (M + M*2) * (\"a\" + \"b\") + M(1:3,77)", "X = LIST(1,2,3) & \"a\"", "M ROW (1:2) = )",
          "FOR I = 1:3 { X = M(9) }", "FOR I = (1:3)*2 { FOR J = I:9 { X = J } ) }"}) {
        run(wrong);
        EXPECT_EQ(temporaries(), 0) << wrong;
        EXPECT_EQ(run("1+1"), "    = 2\n") << wrong;
    }
}

TEST_F(Session, ErrorInADoFileClosesAllOfThem) {
    file("outer.do", "DO INNER\nTYPE \"not reached\"\n");
    file("inner.do", "Z = 1\nZ = )\nTYPE \"not reached\"\n");
    start();
    live.editor = true;
    type({"DO OUTER", "TYPE \"prompt\""});
    EXPECT_EQ(live.output.find("not reached"), std::string::npos);
    EXPECT_NE(live.output.find("prompt"), std::string::npos);
    EXPECT_TRUE(live.edited.empty()) << "no editor for what was not typed";
}

TEST_F(Session, TypedStatementComesBackForCorrection) {
    start();
    live.editor = true;
    live.correction = "X = 34";
    type({"X = 3 4"});
    EXPECT_EQ(live.edited, std::vector<std::string>{"X = 3 4"});
    EXPECT_EQ(scalar("X"), 34);
}

TEST_F(Session, TypedLoopComesBackWhole) {
    start();
    live.editor = true;
    live.correction = "";
    type({"FOR I = 1:3 {", "X = I", "Y = ) }", "X"});
    ASSERT_EQ(live.edited.size(), 1u);
    EXPECT_EQ(live.edited[0], "FOR I = 1:3 {\rX = I\rY = ) }");
    EXPECT_EQ(scalar("X"), 1) << "the first pass had begun";
}

TEST_F(Session, EditCorrectsTheStatementBefore) {
    start();
    live.editor = true;
    live.correction = "A = 2";
    type({"A = 1", "EDIT", "A"});
    EXPECT_EQ(live.edited, std::vector<std::string>{"A = 1"});
    EXPECT_EQ(scalar("A"), 2);
    EXPECT_EQ(live.output.find("##Error"), std::string::npos);
}

TEST_F(Session, ControlCBreaksOff) {
    start();
    live.breakafter = 500;
    type({"FOR I = 1:1000000 { S = I }", "T = 1"});
    EXPECT_NE(live.output.find("Command in progress aborted.\n"
                               "Safest Action: type EXIT, then restart TARN.\n"
                               "Riskier but often worthwhile: Save your data objects (SAVE IN MYFILE),\n"
                               "then EXIT, restart TARN, and restore the objects (USE MYFILE).\n"),
              std::string::npos)
        << live.output;
    EXPECT_LT(scalar("S"), 1000000);
    EXPECT_EQ(scalar("T"), 1);
}

TEST_F(Session, QStopsADoFileWithoutAWord) {
    file("long.do", "FOR I = 1:1000000 { S = I }\nT = 1\n");
    start();
    live.key = 'q';
    live.editor = true;
    type({"DO LONG"});
    EXPECT_LT(scalar("S"), 1000000);
    EXPECT_EQ(scalar("T"), -999);
    EXPECT_EQ(live.output, "* DO LONG\n* ");
    EXPECT_TRUE(live.edited.empty());
}

TEST_F(Session, StopDropsEverythingThatIsOpen) {
    file("outer.do", "DO INNER\nT = 1\n");
    file("inner.do", "FOR I = 1:3 { S = I; STOP; S = 99 }\n");
    start();
    type({"DO OUTER; T = 2", "U = 1"});
    EXPECT_EQ(scalar("S"), 1);
    EXPECT_EQ(scalar("T"), -999);
    EXPECT_EQ(scalar("U"), 1);
}

TEST_F(Session, BatchEndsAtItsFirstError) {
    sessionoptions o = options();
    o.batch = true;
    o.batchname = "model.do";
    o.batchtext = "A = 1\n\nB = \\\n)\nC = 3\n";
    start(o);
    EXPECT_EQ(sessionrun(), 1);
    EXPECT_EQ(scalar("A"), 1);
    EXPECT_EQ(scalar("C"), -999);
    EXPECT_TRUE(live.errors.ends_with("\nmodel.do, line 4\n")) << live.errors;
    EXPECT_TRUE(live.errors.starts_with("##Syntax Error[")) << live.errors;
}

TEST_F(Session, BatchTellsTheLineInsideALoop) {
    sessionoptions o = options();
    o.batch = true;
    o.batchname = "model.do";
    o.batchtext = "FOR I = 1:3 {\n A = I\n B = A(9)\n C = 1\n}\n";
    start(o);
    EXPECT_EQ(sessionrun(), 1);
    EXPECT_TRUE(live.errors.ends_with("\nmodel.do, line 3\n")) << live.errors;

    o.batchtext = "M = 1:6\nFOR I = 1:9 {\n A = I\n B = M(I)\n\n C = 1 }\n"; // after some good passes
    start(o);
    EXPECT_EQ(sessionrun(), 1);
    EXPECT_TRUE(live.errors.ends_with("\nmodel.do, line 4\n")) << live.errors;
    EXPECT_EQ(scalar("A"), 7);
}

TEST_F(Session, BatchStatuses) {
    const struct {
        const char* text;
        int status;
    } rows[] = {{"", 0},           {"X = 1", 0},  {"EXIT\nX = )", 0},      {"STOP\nX = )", 0},
                {"X = 1/0", 0},    {"X = (", 1},  {"FOR I = 1:3 { X", 1},  {"RETURN\nX = )", 0},
                {"DO NOWHERE", 1}, {"\"open", 1}, {"X = \\\n1 \\\n+ )", 1}};
    for (const auto& row : rows) {
        sessionoptions o = options();
        o.batch = true;
        o.batchtext = row.text;
        start(o);
        EXPECT_EQ(sessionrun(), row.status) << row.text << "\n" << live.output;
    }
    sessionoptions o = options();
    o.batch = true;
    o.batchtext = "FOR I = 1:1000000 { S = I }";
    start(o);
    live.breakafter = 1000;
    EXPECT_EQ(sessionrun(), 130);
}

TEST_F(Session, WarningsObeyTheirSwitch) {
    start();
    const std::string warned = run("X = 5; X = 1:3");
    EXPECT_EQ(warned,
              "Warning: ? assigning a matrix to a scalar LHS may be wrong\n"
              "Warning: X takes the first element of a 3 by 1 matrix; DELETE X first to make it a matrix\n");
    EXPECT_EQ(run("WARNSW = 0; X = 1:3; X = )").substr(0, 14), "##Syntax Error");
}

TEST_F(Session, EachStatementCountsItsFaults) {
    start();
    run("MATHEX = 1");
    EXPECT_EQ(run("X = 1/0; Y = 1; Z = 1/0 + 1E300*1E300"), "\nFloating Point Error: Divide by Zero\n"
                                                            "Floating Point Errors: DivZero: 1\r\n"
                                                            "\nFloating Point Error: Divide by Zero\n"
                                                            "Floating Point Errors: Overflow: 2\r\n"
                                                            "Floating Point Errors: DivZero: 1\r\n");
    EXPECT_EQ(scalar("X"), MAXPOS);
}

TEST_F(Session, LogHoldsWhatWasTypedAndPrinted) {
    start();
    type({"X = 1", "X"});
    EXPECT_EQ(contents("tarn.log"),
              "Largest free memory block:          0 bytes\n* X = 1\n* X\n  X = 1\n* end of TARN.LOG\n");
}

TEST_F(Session, LogGoesToTheFileDirectory) {
    fs::create_directory("logs");
    file("logs/tarn.log", "older");
    start();
    type({"FILEDIR = \"logs\""});
    EXPECT_FALSE(fs::exists("tarn.log"));
    EXPECT_EQ(contents("logs/tarn0.log"), "older");
    EXPECT_NE(contents("logs/tarn.log").find("end of TARN.LOG"), std::string::npos);
}

TEST_F(Session, TheSameInputGivesTheSameBytes) {
    std::string first;
    for (int k = 0; k < 2; k++) {
        start();
        type({"A = RAN(1)", "A", "M = RAN(1:3)", "M", "TYPE SCALARS", "X = )"});
        if (k == 0) first = live.output;
        EXPECT_EQ(live.output, first);
    }
}

} // namespace
