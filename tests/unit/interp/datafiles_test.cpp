// READ, READON, KREAD, KREADS and the delimited tables, as statements.
#include "interp/base/machine.h"
#include "interp/base/operand.h"
#include "support/livesession.h"
#include "values/stringarray.h"

#include <cmath>

namespace {

using DataFiles = FileSession;
using list = std::vector<double>;

TEST_F(DataFiles, readShapes) {
    file("seven.dat", "1 2 3 4 5 6 7\n");
    file("six.dat", "1 2 3 4 5 6\n");
    file("none.dat", "/ nothing but a comment\n");
    const struct {
        const char *call, *shape;
        list elements;
    } rows[] = {
        {"READ(\"seven.dat\",3,3)", "3 by 3", {1, 2, 3, 4, 5, 6, 7, 0, 0}},
        {"READ(\"six.dat\",3,3)", "2 by 3", {1, 2, 3, 4, 5, 6}},
        {"READ(\"six.dat\",2,2)", "2 by 2", {1, 2, 3, 4}},
        {"READ(\"six.dat\")", "6 by 1", {1, 2, 3, 4, 5, 6}},
        {"READ(\"six.dat\",4.9)", "4 by 1", {1, 2, 3, 4}},
        {"READ(\"none.dat\",5,2)", "0 by 2", {}},
        {"READ(SEVEN,1,4)",
         "1 by 4",
         {1, 2, 3, 4}}, // the name as typed, with the extension; found in small letters
        {"READ(seven.dat,1,2)", "1 by 2", {1, 2}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(std::string("X = ") + row.call + "\n"), "") << row.call;
        EXPECT_EQ(shape("X"), row.shape) << row.call;
        EXPECT_EQ(numbers("X"), row.elements) << row.call;
        run("DELETE X");
    }
}

// Every number of real data files, against the C library's reading of it; the two may round differently by a
// bit.
TEST_F(DataFiles, referenceData) {
    const struct {
        const char* name;
        size_t rows, cols;
    } files[] = {{"DanWood", 6, 2},  {"Lanczos3", 24, 2}, {"Longley", 16, 7},     {"Misra1a", 14, 2},
                 {"Nelson", 128, 3}, {"Norris", 36, 2},   {"Nelson_log", 128, 3}, {"Rat42", 9, 2}};
    run("FILEDIR = \"\"\nFILEDIR = \"" TESTDATADIR "/nist\"\n");
    for (const auto& f : files) {
        const std::string name = f.name, cols = std::to_string(f.cols);
        EXPECT_EQ(run("X = READ(\"" + name + ".dat\",200," + cols + ")"), "") << name;
        EXPECT_EQ(shape("X"), std::to_string(f.rows) + " by " + cols) << name;
        std::ifstream in(TESTDATADIR "/nist/" + name + ".dat");
        std::string word;
        for (const double x : numbers("X")) {
            ASSERT_TRUE(in >> word) << name;
            EXPECT_NEAR(x, strtod(word.c_str(), nullptr), std::fabs(x) * 2.3e-16) << name;
        }
        EXPECT_FALSE(in >> word) << name;
        run("DELETE X");
    }
}

TEST_F(DataFiles, readRefuses) {
    file("bad.dat", "1 2 1.5E 3\n");
    file("binary.dat", std::string("1 2 \0\1 3", 8));
    file("good.dat", "1 2");
    std::filesystem::create_directory(folder.path / "dir.dat");
    const std::string where = "X = 7\n";
    const struct {
        const char *statement, *message;
    } rows[] = {
        {"X = READ(\"none.dat\")", "##Error: READ: couldn't open input file none.dat\n\n"},
        {"X = READ(\"dir.dat\")", "##Error: READ: couldn't open input file dir.dat\n\n"},
        {"X = READ(\"good.dat\",0)", "##Error: READ: bad row argument\n"},
        {"X = READ(\"good.dat\",1,-1)", "##Error: READ: bad col argument\n"},
        {"X = READ(\"good.dat\",65536,32768)",
         "##Error: READ: rows*cols exceeds 2^^31-1 (implementation limit)\n"},
        {"X = READ(\"bad.dat\")", "##Error: READ: unreadable character in file\n"},
        {"X = READ(\"binary.dat\")", "##Error: READ: unreadable character in file\n"},
        {"X = READON(\"none.dat\")", "##Error: READON: couldn't open input file none.dat\n\n"},
        {"X = READON(\"good.dat\",1,0)", "##Error: bad row or column argument in READON\n"},
        {"X = READON(\"bad.dat\")", "##Error: READON: unreadable character in file\n"},
    };
    run(where);
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.statement), row.message);
        EXPECT_EQ(numbers("X"), list{7}) << row.statement;
    }
}

// A word for a missing number would shift what follows unseen.
TEST_F(DataFiles, missingNumbersAreTold) {
    const struct {
        const char* text;
        bool told;
    } rows[] = {{"1 NA 3", true},   {"1 -Inf 3", true},   {"1,nan,3", true},
                {"1 NaN", true},    {"BANANA 1", false},  {"Na 1 nan1", true},
                {"/ NA\n1", false}, {"\"NaN\" 1", false}, {"infinity 1", false}};
    for (const auto& row : rows) {
        file("f.dat", row.text);
        EXPECT_EQ(
            run("X = READ(\"f.dat\")"),
            row.told
                ? "Warning: READ: NA, NaN or Inf was skipped; READCSV keeps the places of missing numbers\n"
                : "")
            << row.text;
    }
}

TEST_F(DataFiles, readTakesUpToTheLimitOfAMatrix) {
    file("two.dat", "1 2");
    EXPECT_EQ(run("X = READ(\"two.dat\",1000000000,2)\n"), "") << "room is made for what is there";
    EXPECT_EQ(shape("X"), "1 by 2");
}

// Long enough to be read in several pieces, with quotes and comments that go over their ends.
TEST_F(DataFiles, readInPieces) {
    std::string text;
    list expected;
    for (int k = 0; k < 60000; k++) {
        text += std::to_string(k) + (k % 7 ? " " : ".5e1\n");
        expected.push_back(k % 7 ? k : (k + 0.5) * 10);
        if (k % 1000 == 0)
            text += "\"" + std::string(k / 2, 'q') + "1\" / " + std::string(k / 3, 'c') + " 2\n";
    }
    file("long.dat", text);
    run("X = READ(\"long.dat\",100000)\n");
    EXPECT_EQ(numbers("X"), expected);
}

TEST_F(DataFiles, readonGoesOn) {
    file("f.dat", "1 2 3 4 5 / six is no number\n7");
    const struct {
        const char* statement;
        const char* shape;
        list elements;
    } rows[] = {
        {"X = READON(\"f.dat\",2)", "2 by 1", {1, 2}},
        {"X = READON(\"f.dat\",2)", "2 by 1", {3, 4}},
        {"X = READON(\"f.dat\",2)", "2 by 1", {5, 7}}, // the end was touched, but not met
        {"X = READON(\"f.dat\",2)", "0 by 1", {}},     // met: the place is forgotten
        {"X = READON(\"f.dat\",1,3)", "1 by 3", {1, 2, 3}},
        {"X = READON(\"f.dat\",-1)", "0 by 0", {}},
        {"X = READON(\"f.dat\",9,4)", "2 by 4", {1, 2, 3, 4, 5, 7, 0, 0}},
        {"X = READON(\"f.dat\",1)", "1 by 1", {1}},
    };
    for (const auto& row : rows) {
        run(row.statement);
        EXPECT_EQ(shape("X"), row.shape) << row.statement;
        EXPECT_EQ(numbers("X"), row.elements) << row.statement;
        run("DELETE X");
    }
}

TEST_F(DataFiles, readonKeepsThreeFiles) {
    for (const char* name : {"a.dat", "b.dat", "c.dat", "d.dat"}) file(name, "1 2 3 4");
    EXPECT_EQ(run("X = READON(\"a.dat\",1)\nX = READON(\"b.dat\",1)\nX = READON(\"c.dat\",1)\n"), "");
    EXPECT_EQ(run("X = READON(\"d.dat\",1)\n"),
              "Warning: TOO MANY OPEN READON FILES\n"
              "Warning: d.dat is read from its start again next time; READON(FILE, -1) closes a file\n");
    run("X = READON(\"b.dat\",-1)\n");
    EXPECT_EQ(run("X = READON(\"d.dat\",1)\n"), "");
    run("X = READON(\"a.dat\",1)\nY = READON(\"d.dat\",1)\n");
    EXPECT_EQ(numbers("X"), list{2});
    EXPECT_EQ(numbers("Y"), list{2}) << "the first, unremembered reading counts for nothing";
}

TEST_F(DataFiles, readFromTheKeyboard) {
    live.typed = {"1 2", "3", "\x1A"};
    EXPECT_EQ(run("X = READ(\"CON\")\n"), "Type <CONTROL>Z after last number\n");
    EXPECT_EQ(numbers("X"), (list{1, 2, 3}));
}

TEST_F(DataFiles, kread) {
    const char* asknumber = "  Type in number and <Enter>\n";
    const char* asknumbers = "  Type in numbers for KREAD.  End lines with <Enter>\n";
    const char* illegal = "KREAD: syntactically illegal number typed\n";
    const struct {
        const char* statement;
        std::vector<std::string> typed;
        std::string printed;
        const char* shape;
        list elements;
    } rows[] = {
        {"X = KREAD()", {"2.5"}, asknumber, "none", {2.5}},
        {"X = KREAD()", {""}, asknumber, "none", {MAXPOS}},
        {"X = KREAD()", {}, asknumber, "none", {MAXPOS}},
        {"X = KREAD()",
         {"abc", "1.5E", "-4 and more"},
         asknumber + std::string(illegal) + illegal,
         "none",
         {-4}},
        {"X = KREAD()",
         {std::string(90, '0') + "12345678901", "7"},
         asknumber + std::string(illegal),
         "none",
         {7}},
        {"X = KREAD(3)", {"1", "", "2 3 4"}, asknumbers, "3 by 1", {1, 2, 3}},
        {"X = KREAD(2,2)", {"1 2 3", "4"}, asknumbers, "2 by 2", {1, 2, 3, 4}},
        {"X = KREAD(3,2)", {"1 2 3"}, asknumbers, "2 by 2", {1, 2, 3, 0}}, // the input ends
        {"X = KREAD(\"Dose? \")", {"50"}, "", "1 by 1", {50}},
        {"X = KREAD(\"Dose? \",1,2)", {"50 60"}, "", "1 by 2", {50, 60}},
        {"X = KREAD(0)", {}, "", "0 by 0", {}},
    };
    for (const auto& row : rows) {
        live.typed = row.typed;
        EXPECT_EQ(run(row.statement), row.printed) << row.statement;
        EXPECT_EQ(shape("X"), row.shape) << row.statement;
        EXPECT_EQ(numbers("X"), row.elements) << row.statement;
        run("DELETE X");
    }
    EXPECT_NE(live.prompts.find("Dose? Dose? "), std::string::npos);
    EXPECT_EQ(run("X = KREAD(1:3)"), "##Error: KREAD: an expression is of the wrong type\n");
}

TEST_F(DataFiles, kreads) {
    live.typed = {"one line", "one \\", "two", std::string(100, 'x')};
    run("A = KREADS()\nB = KREADS(\"Name: \")\nC = KREADS()\nD = KREADS()\n");
    EXPECT_STREQ(stringval(symtablookup("A")), "one line");
    EXPECT_STREQ(stringval(symtablookup("B")), "one two");
    EXPECT_EQ(std::string(stringval(symtablookup("C"))), std::string(80, 'x'));
    EXPECT_STREQ(stringval(symtablookup("D")), "") << "at the end of the input";
}

TEST_F(DataFiles, csv) {
    file("t.csv", "time,\"dose, mg\",who\n0,1.5,Ann\n1,NA,Bob\n2,,\n");
    EXPECT_EQ(run("X = READCSV(\"t.csv\")"),
              "##Error: READCSV: t.csv, line 2, column who: \"Ann\" is not a number\n");
    EXPECT_EQ(run("X = READCSV(T,1:2)\nN = CSVNAMES(T)\nS = CSVTEXT(T)\n"), "");
    EXPECT_EQ(numbers("X"), (list{0, 1.5, 1, MAXPOS, 2, MAXPOS}));
    EXPECT_EQ(shape("N"), "1 by 3");
    EXPECT_EQ(shape("S"), "4 by 3");
    const auto* s = static_cast<const StringArray*>(object("S")->val.ptr);
    EXPECT_STREQ(StringArrayStrPtr(s, 1, 2), "dose, mg");
    EXPECT_STREQ(StringArrayStrPtr(s, 3, 3), "Bob");
    EXPECT_EQ(StringArrayStrPtr(s, 4, 3), nullptr);
    EXPECT_EQ(run("Y = READCSV(T,2)"), "");
    EXPECT_EQ(numbers("Y"), (list{1.5, MAXPOS, MAXPOS}));
    EXPECT_EQ(run("Z = CSVNAMES(T)\nY = READCSV(T,Z)"),
              "##Error: READCSV: t.csv, line 2, column who: \"Ann\" is not a number\n");
    EXPECT_EQ(run("Y = READCSV(T,4)"), "##Error: READCSV: t.csv has no column 4\n");
    EXPECT_EQ(run("Y = READCSV(\"none.csv\")"), "##Error: READCSV: couldn't open input file none.csv\n\n");
    EXPECT_EQ(run("Y = READCSV(T,\"ab\")"), "##Error: READCSV: t.csv has no column ab\n");
    file("semi.csv", "1;2\n3;4");
    EXPECT_EQ(run("Y = READCSV(\"semi.csv\")\nV = READCSV(\"semi.csv\",\";\")\n"), "");
    EXPECT_EQ(numbers("V"), (list{1, 2, 3, 4}));
    EXPECT_EQ(run("N = CSVNAMES(\"semi.csv\")"),
              "##Error: CSVNAMES: the first line of semi.csv is no line of names\n");
    file("ragged.csv", "1,2\n3\n");
    EXPECT_EQ(run("Y = READCSV(\"ragged.csv\")"),
              "##Error: READCSV: ragged.csv, line 2 has 1 fields instead of 2\n");
    file("empty.csv", "");
    EXPECT_EQ(run("E = READCSV(\"empty.csv\")"), "");
    EXPECT_EQ(shape("E"), "0 by 0");
}

} // namespace
