// SAVE and USE: round trips, names in use, damaged files, saves that fail.
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/diskuse.h"
#include "support/livesession.h"
#include "values/stringarray.h"

#include <algorithm>
#include <bit>
#include <csignal>
#include <sys/resource.h>

namespace {

using Disk = FileSession;
using list = std::vector<double>;

std::string record(int type, const std::string& name, const std::string& value) {
    std::string s{char(type), 0, char(name.size() + 1), 0};
    return s + name + '\0' + value;
}

std::string doublebytes(double x) {
    const auto bits = std::bit_cast<uint64_t>(x);
    std::string s;
    for (int k = 0; k < 8; k++) s += char(bits >> (8 * k));
    return s;
}

std::string textblock(const std::string& text) {
    return std::string{char(text.size() + 1), char((text.size() + 1) >> 8)} + text + '\0';
}

TEST_F(Disk, layoutOfAFile) {
    EXPECT_EQ(run("X = 1.5\nS = \"ab\"\nSAVE X,S IN F"), "creating save file: F.SAV\n");
    EXPECT_EQ(contents("F.SAV"), record(9, "S", textblock("ab")) + record(4, "X", doublebytes(1.5)))
        << "operands are written from the last to the first";
    EXPECT_FALSE(std::filesystem::exists(folder.path / "F.SAV.new"));
}

// Every kind of object, in a new session, to the bit.
TEST_F(Disk, roundTrip) {
    run("X = 1/3\nZ = 0\nM = SHAPE(3,2,1/(1:5))\nE = SHAPE(0,3,1)\nS = \"two words\"\nEMPTY = \"\"\n");
    run("T(2,2) = \"cell\"\nA = 2\nFUNCTION F(U,V) = U^2*A+SIN(V)-1/3\nFUNCTION G(N) = IF N<2 THEN 1 ELSE "
        "N*G(N-1)\n");
    run("FUNCTION Y'T(T1) = -0.1*Y\nINITIAL Y(0) = 5\n");
    const std::vector<double> m = numbers("M");
    const std::string f = run("TYPE F,G,Y,Y'T");
    EXPECT_EQ(run("SAVE IN ALL"), "creating save file: ALL.SAV\n");
    const std::string first = contents("ALL.SAV");
    sessionclose();
    begin();
    EXPECT_EQ(run("USEOVER ALL").substr(0, 7), "Using: ");
    EXPECT_EQ(numbers("X"), list{1.0 / 3});
    EXPECT_EQ(numbers("M"), m);
    EXPECT_EQ(shape("E"), "0 by 3");
    EXPECT_STREQ(stringval(symtablookup("S")), "two words");
    EXPECT_STREQ(stringval(symtablookup("EMPTY")), "");
    EXPECT_EQ(typeof("T"), STRINGMATRIX);
    EXPECT_STREQ(StringArrayStrPtr(static_cast<StringArray*>(object("T")->val.ptr), 2, 2), "cell");
    EXPECT_EQ(run("TYPE F,G,Y,Y'T"), f);
    EXPECT_EQ(typeof("Y"), INITIALVALUE);
    run("V = F(3,0)+G(5)");
    EXPECT_EQ(numbers("V"), list{9 * 2 + 0 - 1.0 / 3 + 120});
    run("DELETE V\nSAVEOVER IN AGAIN");
    sessionclose();
    begin();
    run("USEOVER AGAIN\nSAVEOVER IN THIRD");
    EXPECT_EQ(contents("THIRD.SAV").size(), first.size());
}

TEST_F(Disk, numbersOfDefinitionsKeepAllDigits) {
    run("FUNCTION F(X) = 3.14159265358979312*X\nSAVE F\n");
    run("V = F(1)\nDELETE F\nUSE F\nW = F(1)\n");
    EXPECT_EQ(numbers("V"), numbers("W"));
}

TEST_F(Disk, fileNames) {
    EXPECT_EQ(run("X = 1\nSAVE X"), "creating save file: X.SAV\n") << "the first operand names the file";
    EXPECT_EQ(run("NAME = \"mine.obj\"\nSAVE X IN NAME"), "creating save file: mine.obj\n");
    EXPECT_EQ(run("SAVE X IN \"./sub.sav\""), "creating save file: ./sub.sav\n");
    std::filesystem::create_directory(folder.path / "dir");
    run("FILEDIR = \"\"");
    EXPECT_EQ(run("FILEDIR = \"dir\"\nSAVE X IN \"inside\""), "creating save file: dir/inside.SAV\n");
    EXPECT_TRUE(std::filesystem::exists(folder.path / "dir/inside.SAV"));
    EXPECT_EQ(run("DELETE X\nUSE \"inside\""), "Using: X\n");
}

TEST_F(Disk, saveRefuses) {
    run("X = 1\n");
    const struct {
        const char *statement, *message;
    } rows[] = {
        {"SAVE X IN \"\"", "##Error: SAVE: file name not specified\n"},
        {"SAVE X,NOTHING IN F", "##Error: saving an illegal object, no file created\n"},
        {"SAVE X,\"text\" IN F", "##Error: saving an illegal object, no file created\n"},
        {"SAVE X,SIN IN F", "##Error: saving an illegal object, no file created\n"},
        {"SAVE X,3 IN F", "##Error: saving an illegal object, no file created\n"},
        {"SAVE X IN \"nowhere/f\"",
         "creating save file: nowhere/f.SAV\n##Error: save file nowhere/f.SAV cannot be opened\n"},
        {"SAVE X IN \"dir.SAV\"",
         "creating save file: dir.SAV\n##Error: save file dir.SAV cannot be opened\n"},
        {"USE \"\"", "##Error: USE: file name was not specified\n"},
        {"USE NOTHING", "##Error: diskuse: file cannot be opened.\n\n"},
        {"USE \"dir.SAV\"", "##Error: diskuse: file cannot be opened.\n\n"},
    };
    std::filesystem::create_directory(folder.path / "dir.SAV");
    live.answer = 1; // overwrite
    for (const auto& row : rows) EXPECT_EQ(run(row.statement), row.message) << row.statement;
    EXPECT_FALSE(std::filesystem::exists(folder.path / "F.SAV"));
}

TEST_F(Disk, saveAsksBeforeItReplaces) {
    run("X = 1\nSAVE X IN F\nX = 2\n");
    const std::string old = contents("F.SAV");
    EXPECT_EQ(run("SAVE X IN F"), "Warning: save not performed\n"
                                  "Warning: F.SAV stands as it was; SAVEOVER replaces it without asking\n");
    EXPECT_EQ(live.questions, std::vector<std::string>{"file F.SAV already exists."});
    EXPECT_EQ(contents("F.SAV"), old);
    live.answer = 1;
    run("SAVE X IN F");
    EXPECT_NE(contents("F.SAV"), old);
    live.answer = 0;
    live.questions.clear();
    EXPECT_EQ(run("X = 3\nSAVEOVER X IN F"), "creating save file: F.SAV\n");
    EXPECT_TRUE(live.questions.empty());
    run("USEOVER F");
    EXPECT_EQ(numbers("X"), list{3});
}

TEST_F(Disk, everythingButTheSystemsOwn) {
    run("MAXITER = 50\nA = 1\nB = 2");
    symtabprotect();
    run("SAVE IN F\nSAVEALL IN G");
    EXPECT_EQ(contents("F.SAV").find("MAXITER"), std::string::npos);
    EXPECT_NE(contents("G.SAV").find("MAXITER"), std::string::npos);
    run("RED = 2\nBLUE = 4");
    diskpredefined();
    run("RED = 3\nSAVEOVER IN F");
    EXPECT_EQ(contents("F.SAV").find("BLUE"), std::string::npos) << "defined by the start and unchanged";
    EXPECT_NE(contents("F.SAV").find("RED"), std::string::npos);
    run("MAXITER = 60\nUSEOVER G");
    EXPECT_EQ(numbers("MAXITER"), list{50}) << "a system variable is replaced in its place";
}

TEST_F(Disk, namesInUse) {
    file("F.SAV",
         record(4, "X", doublebytes(1)) + record(4, "X", doublebytes(2)) + record(4, "X", doublebytes(3)));
    EXPECT_EQ(run("USE F"), "Using: X,XA,XAA\n"); // the answer is to rename
    EXPECT_EQ(live.questions, std::vector<std::string>{"an object with an existing name is being used."})
        << "once a file";
    EXPECT_EQ(numbers("XAA"), list{3});
    live.answer = 1;
    EXPECT_EQ(run("DELETE X\nX = 1:3\nUSE F"), "Using: X,X,X\n");
    EXPECT_EQ(numbers("X"), list{3});
    EXPECT_EQ(numbers("XA"), list{2});
    live.questions.clear();
    EXPECT_EQ(run("USEOVER F"), "Using: X,X,X\n");
    EXPECT_TRUE(live.questions.empty());
}

TEST_F(Disk, functionsComeInUnderNewNames) {
    run("FUNCTION F(N) = IF N<1 THEN 0 ELSE 1+F(N-1)\nSAVE F\nFUNCTION F(N) = 100");
    EXPECT_EQ(run("USE F"), "Using: FA\n");
    run("A = F(3)\nB = FA(3)");
    EXPECT_EQ(numbers("A"), list{100}) << "the function that was there is untouched";
    EXPECT_EQ(numbers("B"), list{3}) << "the new one calls itself";
    live.answer = 1;
    EXPECT_EQ(run("USE F\nA = F(3)"), "Using: F\n");
    EXPECT_EQ(numbers("A"), list{3});
}

// A differential equation follows the state that it belongs to.
TEST_F(Disk, equationsComeInUnderNewNames) {
    run("FUNCTION Y'T(T) = -0.1*Y+YY\nINITIAL Y(0) = 5\nSAVE Y,Y'T IN F\n");
    EXPECT_EQ(run("USE F"), "Using: .YA.T,YA\n");
    EXPECT_EQ(run("TYPE YA'T"), "FUNCTION YA'T(T) = -.1*YA+YY\n");
    EXPECT_EQ(run("TYPE Y'T"), "FUNCTION Y'T(T) = -.1*Y+YY\n");
}

TEST_F(Disk, wordsOfTheLanguageAreNotReplaced) {
    file("F.SAV", record(4, "SIN", doublebytes(1)) + record(4, "TYPE", doublebytes(2)) +
                      record(4, "PI", doublebytes(3)));
    const std::string out = run("USEOVER F");
    EXPECT_NE(out.find("Warning: USE: SIN is a word of the language, the object becomes SINA\n"),
              std::string::npos);
    EXPECT_EQ(numbers("SINA"), list{1});
    EXPECT_EQ(numbers("TYPEA"), list{2});
    EXPECT_EQ(numbers("PIA"), list{3});
    run("X = SIN(0)");
    EXPECT_EQ(numbers("X"), list{0});
}

TEST_F(Disk, listOfNamesIsWrapped) {
    std::string bytes;
    for (int k = 10; k < 60; k++) // names of different lengths, so that lines end anywhere
        bytes += record(4, "NAME" + std::to_string(k) + std::string(size_t(k * k % 5), 'X'), doublebytes(k));
    file("F.SAV", bytes);
    const std::string out = run("USE F");
    size_t longest = 0;
    for (size_t at = 0; at < out.size(); at = out.find('\n', at) + 1)
        longest = std::max(longest, out.find('\n', at) - at);
    EXPECT_LE(longest, 78u);
    EXPECT_GT(longest, 70u);
    EXPECT_EQ(out.substr(0, 21), "Using: NAME10,NAME11X");
    EXPECT_EQ(std::count(out.begin(), out.end(), ','), 49);
}

TEST_F(Disk, tooLongADefinition) {
    std::string text = "FUNCTION L(X) = X";
    for (int k = 0; k < 12; k++)
        text += std::string("+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X") +
                "+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+X+\\\n X";
    sessionexecute(text + "\n");
    ASSERT_EQ(typeof("L"), USERFUNCTION);
    EXPECT_EQ(run("SAVE L"), "creating save file: L.SAV\n"
                             "Warning: SAVE: the definition of L is too long, it can not be read back\n");
    EXPECT_NE(contents("L.SAV").find("[TOO BIG!]"), std::string::npos);
    live.answer = 1;
    const std::string out = run("USE L");
    EXPECT_NE(out.find("Error"), std::string::npos) << "the statement fails when it is read";
    EXPECT_EQ(typeof("L"), USERFUNCTION) << "and costs nothing";
}

// ---- damage ----

TEST_F(Disk, emptyFile) {
    file("F.SAV", "");
    EXPECT_EQ(run("USE F"), "Using: \n");
}

TEST_F(Disk, damagedObjectsAreNamed) {
    const std::string good = record(4, "GOOD", doublebytes(1));
    const std::string nan = doublebytes(std::bit_cast<double>(0x7FF8000000000000));
    const struct {
        std::string bytes, message;
    } rows[] = {
        {record(4, "X", "1234567"), "USE: X is damaged: the file ends inside its value"},
        {record(6, "X", std::string("\1\0\1\0\0\0", 6)), "USE: X is damaged: the file ends inside its value"},
        {record(6, "X", std::string("\1\0\xff\xff\xff\x0f\xff\xff\xff\x0f", 10)),
         "USE: X is damaged: the file ends inside its value"},
        {record(6, "X", std::string("\1\0\xff\xff\xff\xff\0\0\0\0", 10)),
         "USE: X is damaged: its matrix has an impossible shape"},
        {record(9, "X", std::string("\5\0abcde", 7)), "USE: X is damaged: a text is damaged"},
        {record(9, "X", std::string("\0\x90", 2)), "USE: X is damaged: a text has an impossible length"},
        {record(4, "X", nan), "USE: X is damaged: it holds a number that is not finite"},
        {record(17, "X", ""), "USE: X is damaged: its type is unknown"},
        {record(12, "X", doublebytes(1)), "USE: X is damaged: its type is unknown"},
        {record(-3, "X", doublebytes(1)), "USE: X is damaged: its type is unknown"},
        {record(4, "#X", doublebytes(1)), "USE: the file is damaged: what should be a name is none"},
        {record(4, " ", doublebytes(1)), "USE: the file is damaged: what should be a name is none"},
        {record(4, "@", doublebytes(1)), "USE: the file is damaged: what should be a name is none"},
        {record(4, ".F.X", doublebytes(1)), "USE: the file is damaged: what should be a name is none"},
        {record(4, "", doublebytes(1)), "USE: the file is damaged: what should be a name is none"},
        {record(4, std::string(28, 'N'), doublebytes(1)),
         "USE: the file is damaged: what should be a name is none"},
        {"\4", "USE: the file is damaged: it ends inside the head of an object"},
        {std::string("\4\0\3\0A", 5), "USE: the file is damaged: it ends inside the head of an object"},
        {record(5, "X", textblock("DELETEALL")), "USE: X is damaged: its definition is not one"},
        {record(5, "X", textblock("FUNCTION X(A) = A;DELETEALL")),
         "USE: X is damaged: its definition is not one"},
        {record(5, "X", textblock("FUNCTION X(A) = A\rDELETEALL")),
         "USE: X is damaged: its definition is not one"},
        {record(5, "X", textblock("FUNCTION X(A) = A /* open")),
         "USE: X is damaged: its definition is not one"},
        {record(5, "X", textblock("FUNCTION X(A) = \"open")), "USE: X is damaged: its definition is not one"},
        {record(5, "X", textblock("FUNCTION KEPT(A) = 1")), "USE: X is damaged: its definition is not one"},
        {record(5, "X", textblock("INITIAL X(0) = 1")), "USE: X is damaged: its definition is not one"},
        {record(7, "X", textblock("FUNCTION X(A) = 1")), "USE: X is damaged: its definition is not one"},
        {record(5, "X", textblock("FUNCTION X(A) = A +* 2")),
         "Warning: USE: the definition of X in the save file"},
        {record(5, "X", textblock("FUNCTION X(")), "Warning: USE: the definition of X in the save file"},
    };
    for (const auto& row : rows) {
        sessionclose();
        begin();
        run("KEPT = 5");
        file("F.SAV", good + row.bytes);
        const std::string out = run("USE F");
        EXPECT_NE(out.find(row.message), std::string::npos) << row.message << "\nprinted: " << out;
        EXPECT_EQ(numbers("GOOD"), list{1}) << "what came before stands";
        EXPECT_EQ(numbers("KEPT"), list{5});
        EXPECT_TRUE(typeof("X") <= UNKNOWN) << row.message;
        EXPECT_EQ(run("Q = 1+1"), "");
    }
}

// What a damaged object would have replaced is not lost.
TEST_F(Disk, damageCostsNothing) {
    run("FUNCTION F(X) = X+1\nM = 1:3");
    file("F.SAV", record(5, "F", textblock("FUNCTION F(X) = X +* 2")));
    EXPECT_NE(run("USEOVER F").find("Error"), std::string::npos);
    file("M.SAV", record(6, "M", std::string("\1\0\1\0\0\0\1\0\0\0abc", 13)));
    EXPECT_NE(run("USEOVER M").find("Error"), std::string::npos);
    run("A = F(1)");
    EXPECT_EQ(numbers("A"), list{2});
    EXPECT_EQ(numbers("M"), (list{1, 2, 3}));
}

// Every cut and every turned bit of a file with all kinds: no crash, and the session goes on.
TEST_F(Disk, cutsAndTurnedBits) {
    run("X = 1/3\nM = 1:2\nS = \"text\"\nT(1,2) = \"cell\"\nFUNCTION F(U) = U^2\nINITIAL F2(0) = 1\nSAVE IN "
        "ALL");
    const std::string whole = contents("ALL.SAV");
    run("DELETE X,M,S,T,F,F2\nKEPT = 5");
    const auto survives = [&](const std::string& bytes) {
        file("D.SAV", bytes);
        run("USEOVER D");
        run("DELETE X,M,S,T,F,F2");
        return numbers("KEPT") == list{5};
    };
    for (size_t cut = 0; cut < whole.size(); cut++) ASSERT_TRUE(survives(whole.substr(0, cut))) << cut;
    for (size_t bit = 0; bit < whole.size() * 8; bit += 1 + bit % 3) {
        std::string turned = whole;
        turned[bit / 8] = char(turned[bit / 8] ^ (1 << (bit % 8)));
        ASSERT_TRUE(survives(turned)) << bit;
    }
}

// ---- saves that fail ----

TEST_F(Disk, fullDisk) {
    run("M = SHAPE(1000,10,1)\nX = 1\nSAVE X IN F");
    const std::string old = contents("F.SAV");
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    const auto oldhandler = signal(SIGXFSZ, SIG_IGN);
    const rlimit small{8192, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    FILE* const log = report.log; // it would run into the limit too
    report.log = nullptr;
    const std::string out = run("SAVEOVER M,X IN F");
    report.log = log;
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, oldhandler);
    EXPECT_EQ(out, "creating save file: F.SAV\n##Error: save file F.SAV cannot be written\n");
    EXPECT_EQ(contents("F.SAV"), old) << "the older file is whole";
    EXPECT_FALSE(std::filesystem::exists(folder.path / "F.SAV.new"));
    EXPECT_EQ(run("SAVEOVER M,X IN F"), "creating save file: F.SAV\n");
}

TEST_F(Disk, deviceIsWrittenAndNotReplaced) {
    if (!std::filesystem::is_character_file("/dev/full")) GTEST_SKIP();
    std::filesystem::create_symlink("/dev/full", "full.sav");
    EXPECT_EQ(run("X = 1\nSAVEOVER X IN \"full.sav\""),
              "creating save file: full.sav\n##Error: save file full.sav cannot be written\n");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST_F(Disk, linksAndPermissionsAreKept) {
    namespace fs = std::filesystem;
    run("X = 1\nSAVE X IN \"real.sav\"");
    fs::create_symlink("real.sav", "link.sav");
    fs::permissions("real.sav", fs::perms::owner_read | fs::perms::owner_write);
    run("X = 2\nSAVEOVER X IN \"link.sav\"");
    EXPECT_TRUE(fs::is_symlink("link.sav"));
    EXPECT_EQ(fs::status("real.sav").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    run("USEOVER \"real.sav\"");
    EXPECT_EQ(numbers("X"), list{2});
}

// The start reads its objects in silence.
TEST_F(Disk, quiet) {
    file("Q.SAV", record(4, "X", doublebytes(1)) + record(9, "TARNPATH", textblock("elsewhere")));
    const std::string path = stringval(symtablookup("TARNPATH"));
    live.output.clear();
    clause.insym = int16_t(symtabenter("Q"));
    EXPECT_TRUE(diskuse(102, "", true));
    EXPECT_EQ(numbers("X"), list{1});
    EXPECT_EQ(stringval(symtablookup("TARNPATH")), path) << "always the running program's";
    file("Q.SAV", record(4, "X", "123"));
    EXPECT_FALSE(diskuse(102, "", true));
    clause.insym = int16_t(symtabenter("NONE"));
    EXPECT_FALSE(diskuse(102, "", true));
    EXPECT_EQ(live.output, "");
}

} // namespace
