// Lines and their sources: reading, continuation, the do-stack, the log's rolling.
#include "interp/dofiles.h"

#include "interp/base/hooks.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/logroll.h"
#include "interp/session.h"
#include "support/folder.h"
#include "support/harness.h"
#include "values/harray.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

struct keyboardstate {
    std::vector<std::string> lines;
    size_t next = 0;
    std::string prompts;
};
keyboardstate keyboard;

bool typedline(const char* prompt, std::string& text) {
    keyboard.prompts += prompt;
    if (keyboard.next == keyboard.lines.size()) return false;
    text = keyboard.lines[keyboard.next++];
    return true;
}

class DoFiles : public testing::Test {
protected:
    void SetUp() override {
        harnessstart();
        keyboard = keyboardstate{};
        console.readline = typedline;
        folder.open();
        fs::current_path(folder.before); // FILEDIR alone leads there
        report.filedir = folder.path.string();
    }
    void TearDown() override { folder.close(); }
    void file(const char* name, const std::string& text) { folder.write(name, text); }
    std::string contents(const char* name) { return wholefile(folder.named(name)); }
    // The texts that getline gives until the sources end, a | behind each.
    std::string all() {
        std::string list;
        try {
            for (;;) {
                getline();
                list += line.text.substr(line.cursor);
                list.back() = '|';
                line.cursor = line.text.size();
                line.prompt = "* ";
            }
        } catch (const sessionend&) {}
        return list;
    }
    testfolder folder;
};

TEST_F(DoFiles, ReadlineTrimsAndLimits) {
    const struct {
        std::string content;
        int size;
        std::vector<std::string> lines;
    } rows[] = {
        {"", 80, {}},
        {"\n", 80, {""}},
        {" \t a b \t \r\n\n  c", 80, {"a b", "", "c"}},
        {"   ", 80, {}}, // blanks up to the end are no line
        {"a\rb\n", 80, {"ab"}},
        // past size - 20 a piece ends before what cannot be part of a number
        {"12345 67890 1.5E3", 30, {"12345 67890", "1.5E3"}},
        {"abcdefghijklm", 30, {"abcdefghijk", "lm"}},
        {"1234567890123456789012345", 24, {"12345678901234567890123", "45"}},
    };
    for (const auto& row : rows) {
        textlines in;
        in.content = row.content;
        std::string text;
        std::vector<std::string> got;
        for (int n; (n = readline(text, row.size, in)) >= 0;) {
            EXPECT_EQ(size_t(n), text.size());
            got.push_back(text);
        }
        EXPECT_EQ(got, row.lines) << row.content;
    }
    EXPECT_EQ(harness.output, "Warning: we accepted a long line without an LF\n");
}

TEST_F(DoFiles, GetlineJoinsSkipsAndEnds) {
    const std::string data = "X = LIST(" + std::string(300, '7') + ", " + std::string(300, '8') + ")";
    const struct {
        std::string content, lines;
    } rows[] = {
        {"", ""},
        {"\n\n  \n", ""},
        {"X = 1\n\nY = 2", "X = 1|Y = 2|"},
        {"X = 1 + \\\n  2 + \\\n  3\nY", "X = 1 + 2 + 3|Y|"},
        {"X = 1 \\  \n", "X = 1 |"}, // the last line asks for one more
        {"\\\n\\\nX", "X|"},
        {"A B " + std::string(180, 'c') + " D", "A B " + std::string(180, 'c') + " D|"},
    };
    for (const auto& row : rows) {
        harnessfeed(row.content);
        EXPECT_EQ(all(), row.lines);
    }
    harnessfeed(data);
    EXPECT_EQ(all(), data + "|"); // longer than any piece, and put together exactly
}

TEST_F(DoFiles, TypedLinesAreLoggedAndContinued) {
    keyboard.lines = {"  X =\t1  ", "", "Y = \\", "2"};
    report.log = tmpfile();
    EXPECT_EQ(all(), "X = 1|Y = 2|");
    EXPECT_EQ(keyboard.prompts, "* * * : * ");
    EXPECT_EQ(line.lastline, "Y = 2\r");
    EXPECT_EQ(line.prevline, "X = 1\r");
    rewind(report.log);
    char text[100] = "";
    text[fread(text, 1, sizeof text - 1, report.log)] = 0;
    EXPECT_STREQ(text, "X = 1\n\nY = \\\n2\n");
    fclose(report.log);
    report.log = nullptr;
}

TEST_F(DoFiles, KeepModeAppends) {
    harnessfeed("FOR I = 1:3 {\nTYPE I\n}");
    getline();
    line.keepline = true;
    line.cursor = line.text.size();
    getline();
    EXPECT_EQ(line.text, "FOR I = 1:3 {\rTYPE I\r");
    EXPECT_EQ(line.text.substr(line.cursor), "TYPE I\r");
    EXPECT_EQ(line.lastline, line.text);
}

TEST_F(DoFiles, EchoGoesWhereEchodoSays) {
    for (const int echodo : {0, 1, 2, 3}) {
        report.log = tmpfile();
        harness.output.clear();
        harnessfeed("X = 1\nY = \\\n2\n");
        dofiles.echodo = echodo;
        all();
        const std::string shown = "* X = 1\n* Y = \\\n: 2\n";
        EXPECT_EQ(harness.output, echodo & 1 ? shown : "");
        rewind(report.log);
        char text[100] = "";
        text[fread(text, 1, sizeof text - 1, report.log)] = 0;
        EXPECT_EQ(text, echodo & 2 ? shown : "");
        fclose(report.log);
        report.log = nullptr;
    }
}

int namesymbol(const char* name) { return symtabenter(name); }

int stringsymbol(const char* text, int type) {
    static int made = 0;
    const int idx = type == STRINGTYPE ? symtabenter(("S" + std::to_string(made++)).c_str()) : symtabslot();
    sym(idx).type = int16_t(type);
    sym(idx).val.ptr = xstrdup(text);
    return idx;
}

TEST_F(DoFiles, SourcesNest) {
    file("inner.do", "I1\nI2\n");
    harnessfeed("O1; REST\nO2");
    getline();
    line.cursor = line.text.find("REST");
    dofile(namesymbol("INNER")); // found although the name is folded to upper case
    EXPECT_EQ(line.depth, 2);
    EXPECT_EQ(all(), "I1|I2|REST|O2|");
    EXPECT_EQ(line.depth, 0);
}

TEST_F(DoFiles, WhatDoTakes) {
    file("a.do", "A\n");
    file("b.txt", "B\n");
    file("c", "C\n");
    const struct {
        int symbol;
        const char* lines;
    } rows[] = {
        {namesymbol("A"), "A|"},
        {stringsymbol("b.txt", TEMPSTRING), "B|"},
        {stringsymbol("c", TEMPSTRING), "C|"},
        {stringsymbol("a", TEMPSTRING), "A|"},
        {stringsymbol("./nowhere", STRINGTYPE), "./nowhere|"}, // the text is run, no file is opened
        {stringsymbol("X = 1\r\nY = 2", STRINGTYPE), "X = 1\rY = 2|"},
    };
    for (const auto& row : rows) {
        harnessfeed("");
        dofile(row.symbol);
        if (line.cursor < line.text.size()) { // text stands in the line at once
            EXPECT_EQ(line.text, std::string(row.lines).substr(0, strlen(row.lines) - 1) + "\r");
            continue;
        }
        EXPECT_EQ(all(), row.lines);
    }
    keyboard.lines = {"X = 7"};
    harnessfeed("");
    dofiles.closed = false;
    dofile(namesymbol("KLINE"));
    EXPECT_EQ(line.text, "X = 7\r");
    EXPECT_EQ(keyboard.prompts, "  ");
}

TEST_F(DoFiles, WhatDoRefuses) {
    fs::create_directory(folder.path / "folder.do");
    for (const int symbol : {namesymbol("CON"), namesymbol("con"), namesymbol("NONE"), namesymbol("FOLDER"),
                             stringsymbol((folder.path / std::string(300, 'x')).c_str(), TEMPSTRING)}) {
        harness.output.clear();
        harnessfeed("X");
        EXPECT_THROW(dofile(symbol), recoveryjump);
        EXPECT_TRUE(harness.output.starts_with("##Error: couldn't open DO file ")) << harness.output;
        EXPECT_LE(harness.output.find('\n'), strlen("##Error: couldn't open DO file ") + 199);
        EXPECT_EQ(all(), "X|"); // and the source goes on
    }
}

TEST_F(DoFiles, NestingHasALimit) {
    file("deep.do", "X\n");
    harnessfeed("");
    EXPECT_THROW(for (int k = 0; k < 100000; k++) dofile(namesymbol("DEEP")), recoveryjump);
    EXPECT_TRUE(harness.output.find("nested too deeply") != std::string::npos);
    popallsources();
    EXPECT_EQ(line.depth, 0);
}

TEST_F(DoFiles, TailCallReplacesTheCaller) {
    file("callee.do", "CALLEE\n");
    file("caller.do", "never read\n");
    const int sw = namesymbol("TAILDOSW");
    sym(sw).type = SCALAR;
    sym(sw).val.rval = 1;
    harnessfeed("TOP");
    pushfile("caller.do", "never read\n");
    dofile(namesymbol("CALLEE"));
    EXPECT_EQ(sym(sw).val.rval, 0);
    EXPECT_EQ(all(), "CALLEE|TOP|");
}

TEST_F(DoFiles, ReturnEndsTheFile) {
    harnessfeed("TOP");
    pushfile("inner.do", "A; REST\nB\n");
    getline();
    sourcereturn();
    EXPECT_EQ(all(), "TOP|");
}

TEST_F(DoFiles, AnOpenStatementDoesNotSwallowTheCaller) {
    harnessfeed("CALLER");
    pushfile("inner.do", "X = \"open\n");
    getline();
    line.cursor = line.text.size();
    line.prompt = "> ";
    EXPECT_THROW(getline(), recoveryjump);
    EXPECT_EQ(harness.output,
              "##Error: the do-file ended inside a statement\nWarning: the last statement is not complete\n");
}

TEST_F(DoFiles, PlaceOfAnError) {
    harnessfeed("");
    EXPECT_EQ(sourceplace(), "") << "nothing has been read";
    popallsources();
    EXPECT_EQ(sourceplace(), "");
    pushfile("model.do", "\nA\n\nB \\\nC\n");
    getline();
    EXPECT_EQ(sourceplace(), "model.do, line 2");
    line.cursor = line.text.size();
    getline();
    EXPECT_EQ(sourceplace(), "model.do, line 5");
    pushtext("Z");
    EXPECT_EQ(sourceplace(), "model.do, line 5");
    pushfile("inner.do", "\nI\n");
    getline();
    EXPECT_EQ(sourceplace(), "inner.do, line 2, called from model.do, line 5");
    for (int k = 0; k < 9; k++) {
        pushfile("again.do", "DO AGAIN\n");
        getline();
    }
    const std::string again = "again.do, line 1, called from ";
    EXPECT_EQ(sourceplace(), again + again + again + "again.do, line 1, and so on");
}

TEST_F(DoFiles, LogsRollInOneDirectory) {
    const std::string dir = folder.path.string();
    for (const int session : {1, 2, 3, 4, 5}) {
        logroll(dir);
        EXPECT_FALSE(fs::exists(logname(dir)));
        file("tarn.log", std::to_string(session));
    }
    EXPECT_EQ(contents("tarn.log"), "5");
    EXPECT_EQ(contents("tarn0.log"), "4");
    EXPECT_EQ(contents("tarn1.log"), "3");
    EXPECT_EQ(contents("tarn2.log"), "2");
    EXPECT_FALSE(fs::exists(folder.path / "tarn3.log"));
}

TEST_F(DoFiles, LogMovesToTheFileDirectory) {
    const fs::path before = fs::current_path(), sub = folder.path / "sub";
    fs::create_directory(sub);
    fs::current_path(folder.path);
    file("tarn.log", "new");
    file("sub/tarn.log", "old");
    EXPECT_TRUE(logmove("."));
    EXPECT_EQ(contents("tarn.log"), "new"); // the same place: it stays
    EXPECT_FALSE(logmove("nowhere"));
    EXPECT_EQ(contents("tarn.log"), "new");
    EXPECT_TRUE(logmove("sub"));
    EXPECT_FALSE(fs::exists("tarn.log"));
    EXPECT_EQ(contents("sub/tarn.log"), "new");
    EXPECT_EQ(contents("sub/tarn0.log"), "old");
    fs::current_path(before);
}

TEST_F(DoFiles, FilesAreFoundWhateverTheCaseOfTheName) {
    file("Data.Txt", "");
    file("both.do", "");
    file("Both.do", "");
    const std::string dir = folder.path.string() + "/";
    EXPECT_EQ(findfile(dir + "DATA.TXT"), dir + "Data.Txt");
    EXPECT_EQ(findfile(dir + "Data.Txt"), dir + "Data.Txt");
    EXPECT_EQ(findfile(dir + "BOTH.do"), dir + "both.do");
    EXPECT_EQ(findfile(dir + "NONE"), dir + "NONE");
    EXPECT_EQ(findfile("/nowhere/at/all"), "/nowhere/at/all");
}

} // namespace
