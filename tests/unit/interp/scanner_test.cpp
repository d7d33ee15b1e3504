#include "interp/scanner.h"
#include "support/fixedwords.h"

#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/tokenfil.h"
#include "support/harness.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <unistd.h>

namespace {

// Every token up to the end of the statement: number, or number and text. An error ends the list with its
// message.
std::string tokens(const std::string& text) {
    harnessfeed(text);
    std::string list;
    try {
        for (int number = 0, index; number != TOKEND;) {
            newtoken(number, index);
            list += (list.empty() ? "" : " ") + std::to_string(number);
            if (number == TOKNAME) list += std::string("=") + sym(index).name;
            if (number == TOKSTRING) list += std::string("=") + static_cast<const char*>(sym(index).val.ptr);
        }
    } catch (const recoveryjump&) { list += (list.empty() ? "" : " ") + fixedwords(harness.output); }
    harness.output.clear();
    return list;
}

double number(const std::string& text) {
    harnessfeed(text);
    int token, index;
    newtoken(token, index);
    EXPECT_EQ(token, TOKNUMBER) << text;
    return sym(index).val.rval;
}

class Scanner : public testing::Test {
protected:
    void SetUp() override { harnessstart(); }
};

TEST_F(Scanner, TokensOfAStatement) {
    const struct {
        const char *text, *expected;
    } rows[] = {
        {";", "75"},
        {"  \t x", "1=X 75"},
        {"A ** 2", "1=A 3 2 75"},
        {"A * * 2", "1=A 3 2 75"},
        {"A^2", "1=A 3 2 75"},
        {"A ^ ^ ' 2", "1=A 51 2 75"},
        {"A^^2", "1=A 50 2 75"},
        {"A^^^2", "1=A 50 3 2 75"},
        {"A*'B/'C&'D&E", "1=A 43 1=B 44 1=C 47 1=D 46 1=E 75"},
        {"A<=B =<C>=D=> E< F >G", "1=A 10 1=B 10 1=C 11 1=D 11 1=E 9 1=F 12 1=G 75"},
        {"A = = B", "1=A 8 8 1=B 75"},
        {"A <> B", "1=A 9 12 1=B 75"},
        {"( [ { ) ] }", "35 35 35 22 22 22 75"},
        {"X_3:4!5#6?", "1=X 23 2 39 2 104 2 45 2 103 75"},
        {"A'", "1=A 49 75"},
        {"fit FIT Fit", "67 67 67 75"},
        {"W.XAXIS x2.y", "1=W.XAXIS 1=X2.Y 75"},
        {"a;b", "1=A 75"},
        {"a\x1a b", "1=A 75"},
        {"1 /* two */ 3", "2 2 75"},
        {"1 / * two * / */ 3", "2 2 75"},
        {"1 /* two\nthree */ 3", "2 2 75"},
        {"/**/ 3", "2 75"},
        {"/***/ 3", "2 75"},
        {"/", "5 75"},
        {"\"\"", "72= 75"},
        {"\"\"\"\"", "72= 72= 75"},
        {"\"He said \"\"no\"\"\"", "72=He said \"no\" 75"},
        {"\"a /* b\" \"; 'c\"", "72=a /* b 72=; 'c 75"},
        {"\"caf\xc3\xa9\"", "72=caf\xc3\xa9 75"},
        {"\"a\nb\"", "72=a\r\nb 75"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ1", "1=ABCDEFGHIJKLMNOPQRSTUVWXYZ1 75"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ12", "##Error: name too long: maximum name length is 27 characters\n"},
        {"1 .. 2", "2 \nError line:1 _. 2\n##Error: illegal character in command: hex: 2e (.)\n"},
        {"x@y", "1=X \nError line:x_y\n##Error: illegal character in command: hex: 40 (@)\n"},
        {"x\x01y\x02", "1=X \nError line:x_y \n##Error: illegal character in command: hex: 1\n"},
        {"x\xff", "1=X \nError line:x_\n##Error: illegal character in command: hex: ff\n"},
        {"a123456789b123456789c1;@45678901234567890123456789012345678901234567890",
         "1=A123456789B123456789C1 75"},
    };
    for (const auto& row : rows) EXPECT_EQ(tokens(row.text), row.expected) << row.text;
}

TEST_F(Scanner, IllegalCharacterShowsFortyBeforeAndThirtyBehind) {
    harnessfeed("1+2+3+4+5+6+7+8+9+1+2+3+4+5+6+7+8+9+1+2+3+4+5%1234567890123456789012345678901234567890");
    int token, index;
    EXPECT_THROW(for (;;) newtoken(token, index), recoveryjump);
    EXPECT_EQ(fixedwords(harness.output),
              "\nError line:+4+5+6+7+8+9+1+2+3+4+5+6+7+8+9+1+2+3+4+5_123456789012345678901234567890\n"
              "##Error: illegal character in command: hex: 25 (%)\n");
}

TEST_F(Scanner, ZeroByteIsAnIllegalCharacter) {
    const std::string expected = "\n##Error: illegal character in command: hex: 0\n";
    for (const std::string& text : {std::string("x\0y", 3), std::string("\"x\0y\"", 5)})
        EXPECT_NE(tokens(text).find(expected), std::string::npos);
}

TEST_F(Scanner, Numbers) {
    const struct {
        const char* text;
        double expected;
    } rows[] = {
        {"0", 0},
        {"1.", 1},
        {".5", 0.1 * 5},
        {"12.5", 0.1 * 125},
        {"1.000", 1},
        {"1.50", 0.01 * 150},
        {"3e2", 300},
        {"3E+2", 300},
        {"25E-1", 0.1 * 25},
        {"1.5e3", 1500},
        {"1e-5", 1 / 1e5},
        {"1E-400", 4.9406564584124654e-324},
        {"1E-99999999999", 4.9406564584124654e-324},
        {"0E-400", 0},
        {"0.0e999", 0},
        {"1E400", 1.7976931348623157e308},
        {"1e999999", 1.7976931348623157e308},
    };
    for (const auto& row : rows) EXPECT_EQ(number(row.text), row.expected) << row.text;
    EXPECT_EQ(number("123456789012345678"), 10 * 12345678901234567.0 + 8);
    EXPECT_NEAR(number("1e308") / 1e308, 1, 1e-14);
    EXPECT_NEAR(number("1E-320") / 1e-320, 1, 1e-3); // a denormal holds few digits
    EXPECT_EQ(number(std::string(400, '9')), 1.7976931348623157e308);
    EXPECT_NEAR(number("." + std::string(400, '0') + "1e401"), 1, 1e-12);
}

TEST_F(Scanner, WrongNumbers) {
    EXPECT_EQ(tokens("1E"), "##Error: illegal exponent in number\n");
    EXPECT_EQ(tokens("1E+X"), "##Error: illegal exponent in number\n");
    EXPECT_EQ(tokens(".E3"), "##Error: mal-formed number\n");
    EXPECT_EQ(tokens("1.5.5"), "2 2 75");
}

TEST_F(Scanner, CaseSwitchKeepsNamesAndFindsTheSystemsOwn) {
    symtabprotect();
    const auto plotobject = [](const char* name, int type) {
        symbol& s = sym(symtabenter(name));
        s.type = int16_t(type);
        s.val.ptr = nullptr;
    };
    plotobject("C1", CURVETYPE);
    sym(symtabenter("T2")).type = SCALAR;
    plotobject("W3", WINDOWTYPE);
    plotobject("W", WINDOWTYPE);
    sym(symtabenter("SYMBOLS")).type = CONSTANT;
    sym(symtabenter("MAXITER")).type = SCALAR;
    symtabenter("W.XAXIS");
    symtabprotect();
    parser.casesw = 1;
    const struct {
        const char *text, *expected;
    } rows[] = {
        {"x X", "1=x 1=X 75"},
        {"fit Fit", "67 67 75"},
        {"sin", "1=SIN 75"},
        {"symbols", "1=SYMBOLS 75"},
        {"maxiter", "1=MAXITER 75"},
        {"c1 C1 c01", "1=C1 1=C1 1=c01 75"},
        {"t2", "1=t2 75"},
        {"w w3 w.xaxis", "1=W 1=W3 1=W.XAXIS 75"},
        {"MyWin.xaxis My.axis My.xax", "1=MyWin.XAXIS 1=My.axis 1=My.xax 75"},
        {"Abcdefghijklmnopqrstuvwxyz", "1=Abcdefghijklmnopqrstuvwxyz 75"},
        {"Abcdefghijklmnopqrstuvwxyz1", "##Error: name too long: maximum name length is 27 characters\n"},
    };
    for (const auto& row : rows) EXPECT_EQ(tokens(row.text), row.expected) << row.text;
}

TEST_F(Scanner, PushedTokenComesAgainOnce) {
    harnessfeed("A B");
    int number, index, again, sameindex;
    newtoken(number, index);
    pushtoken(number, index);
    newtoken(again, sameindex);
    EXPECT_EQ(again, number);
    EXPECT_EQ(sameindex, index);
    newtoken(again, sameindex);
    EXPECT_STREQ(sym(sameindex).name, "B");
}

// What a loop body delivers from its record must be what its text delivers.
TEST_F(Scanner, RecordedTokensAreDeliveredAgain) {
    const std::string text = "X = \"a\"\"b\" + 1.5 * F(3, {Y}) ; IF 2 THEN Z";
    tokenstream body;
    scanner.record = &body;
    harnessfeed(text);
    for (int number = 0, index, ends = 0; ends < 2; ends += number == TOKEND) newtoken(number, index);
    scanner.record = nullptr;
    EXPECT_EQ(body.tokens.size(), 20u);

    symtabdelete(symtablookup("Y")); // its slot may be taken by anything: the name must be found anew
    symtabmarkdeleted(symtablookup("Y"));
    sym(symtabslot()).type = CONSTANT;
    std::string list;
    streamrewind(body);
    scanner.stream = &body;
    for (size_t k = 0; k < body.tokens.size(); k++) {
        int number, index;
        newtoken(number, index);
        if (number == TOKNAME) list += sym(index).name;
        if (number == TOKSTRING) list += static_cast<const char*>(sym(index).val.ptr);
        if (number == TOKNUMBER) list += std::to_string(sym(index).val.rval);
        if (number == TOKOPEN || number == TOKCLOSE) list += scanner.bracket;
    }
    EXPECT_EQ(list, "Xa\"b1.500000F(3.000000{Y})2.000000Z");
    scanner.stream = nullptr;
}

TEST_F(Scanner, CutsAreLeftOutOfTextAndTokensAlike) {
    for (const bool recorded : {false, true}) {
        tokenstream body;
        if (recorded) {
            scanner.record = &body;
            tokens("A B C D E F");
            scanner.record = nullptr;
            streamrewind(body);
            scanner.stream = &body;
        } else {
            harnessfeed("A B C D E F");
            peekch();
        }
        size_t at[7];
        for (int k = 0; k < 6; k++) {
            at[k] = scanposition();
            skimtoken();
        }
        scancut(at[1], at[2]);
        const size_t shift = recorded ? 0 : at[2] - at[1];
        scancut(at[3] - shift, at[5] - shift);
        scanseek(at[0]);
        std::string list;
        for (int k = 0; k < 3; k++) {
            int number, index;
            newtoken(number, index);
            list += sym(index).name;
        }
        EXPECT_EQ(list, "ACF");
        scanner.stream = nullptr;
    }
}

class Vocabulary : public Scanner {
protected:
    // The failure of a file that holds this text, or "".
    std::string read(const std::string& text) {
        const std::string path = testing::TempDir() + "vocabulary" + std::to_string(getpid()) + ".fil";
        std::ofstream(path, std::ios::binary) << text;
        std::string failure;
        const bool good = symtabinit(path.c_str(), failure);
        std::remove(path.c_str());
        EXPECT_EQ(good, failure.empty());
        return failure;
    }
};

TEST_F(Vocabulary, LinesOfEachKind) {
    EXPECT_EQ(read("header\n\n/ comment\n"
                   "  12 name:NEWWORD type:3 code:120 row:28 col:26 pcase:6\r\n"
                   "name:NEXTWORD code:121\n"
                   "op:@@ tokennum:122 row:1 col:2 pcase:3\n"
                   "name:NEWFN type:-5 argd:2,4,-6\n"
                   "name:ANYFN type:-6 argd:-100\n"
                   "name:NEWSCALAR type:4 value:-2.5e3\n"
                   "name:NEWTEXT type:9 value:hello\n"
                   "name:PLAINNAME   type: 1   \n"),
              "");
    EXPECT_EQ(tokentables.row[120], 28);
    EXPECT_EQ(tokentables.col[121], 26) << "fields stay in force";
    EXPECT_EQ(tokentables.pcase[122], 3);
    EXPECT_EQ(tokens("newword nextword"), "120 121 75");
    const symbol& f = sym(symtablookup("NEWFN"));
    EXPECT_EQ(f.type, -5);
    EXPECT_EQ(f.val.argd[0], 2);
    EXPECT_EQ(f.val.argd[2], -6);
    EXPECT_EQ(sym(symtablookup("ANYFN")).val.argd[0], -100);
    EXPECT_EQ(sym(symtablookup("NEWSCALAR")).val.rval, -2500);
    EXPECT_STREQ(symtabstring("NEWTEXT", ""), "hello");
    EXPECT_EQ(sym(symtablookup("PLAINNAME")).type, UNKNOWN);
    EXPECT_STREQ(tokenword(120), "NEWWORD");
}

TEST_F(Vocabulary, BadFilesAreRefused) {
    std::string failure;
    EXPECT_FALSE(symtabinit("/nowhere/TOKEN.FIL", failure));
    EXPECT_EQ(failure, "Cannot open file: /nowhere/TOKEN.FIL\n");
    EXPECT_EQ(read("").substr(0, 8), "Illegal ");
    for (const char* row : {"xyz:1", "name", "name:A type:3 code:500", "name:A type:3 code:1 row:34",
                            "name:A type:-1 argd:3,4", "name:A type:-1 argd:1,x", "code:9 type:3 row:99999",
                            "name:ANAMETHATISMUCHTOOLONGTOBEENTERED type:4"})
        EXPECT_EQ(read(std::string("header\n") + row + "\n"), "bad TOKEN.FIL file\nline 2\n") << row;
}

} // namespace
