// TYPE of each kind of value, the listing words, files and directories.
#include "interp/listing.h"

#include "interp/base/listrows.h"
#include "interp/base/numtext.h"
#include "support/folder.h"
#include "support/harness.h"
#include "support/printed.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <string>

namespace {

bool everysecondisaxis(int idx) { return idx % 2 == 0; }
void shownothing(int) {}

struct listing : printingtest {
    void SetUp() override {
        harnessstart();
        nformat = {};
        catchprinted();
    }
    void TearDown() override {
        printingtest::TearDown();
        clausereset();
    }
    int enter(const char* name, int type, void* ptr) {
        const int idx = symtabenter(name);
        sym(idx).type = int16_t(type);
        sym(idx).val.ptr = ptr;
        return idx;
    }
    int scalar(const char* name, double x) {
        const int idx = enter(name, SCALAR, nullptr);
        sym(idx).val.rval = x;
        return idx;
    }
    int matrix(const char* name, uint32_t rows, uint32_t cols) {
        return enter(name, MATRIX, harraynew(rows, cols));
    }
    std::string type(int idx) {
        return textof([&] { typeop(idx); });
    }
    std::string type(const char* name) { return type(symtablookup(name)); }
};

TEST_F(listing, scalarsAndConstants) {
    EXPECT_EQ(type(scalar("X", 0.25)), "  X = 0.25\n");
    EXPECT_EQ(type(symtabtempscalar(0, 0, 3)), "    = 3\n");
    EXPECT_EQ(type(symtabconst(3)), "      = 3\n");
    EXPECT_EQ(type("PI"), "    PI = 3.1415927\n");
    EXPECT_EQ(type(symtabenter("NEW")), "   value = unknown\n");
    scalar("NAMESW", 0);
    EXPECT_EQ(type("X"), "0.25\n");
    EXPECT_EQ(type("PI"), "3.1415927\n");
}

TEST_F(listing, strings) {
    const int s = enter("S", STRINGTYPE, xstrdup("text %s"));
    EXPECT_EQ(type(s), "     S = text %s\n");
    EXPECT_EQ(type(symtabtext(0, 0, "of a moment")), "     of a moment\n");
    StringArray* a = StringArrayAlloc(2, 2);
    StringArrayStrPut(a, 1, 1, "one");
    StringArrayStrPut(a, 2, 2, "four");
    const int m = enter("SM", STRINGMATRIX, a);
    EXPECT_EQ(type(m), "\n   SM: a  2 by 2 string matrix\n\n  1: one (null) \n  2: (null) four \n");
    scalar("NAMESW", 0);
    EXPECT_EQ(type(s), "text %s\n");
    EXPECT_EQ(type(m), "  1: one (null) \n  2: (null) four \n");
}

TEST_F(listing, matrixFollowsTheSystemVariables) {
    const int m = matrix("M", 1, 3);
    for (int k = 1; k <= 3; k++) cells(matrixof(m))[k] = k;
    EXPECT_EQ(type(m), "\n   M: a  1 by 3 matrix\n\n  1:          1            2            3\n\n");
    scalar("CUTOFF", 0.5);
    scalar("LINELEN", 1); // 25 is the least
    EXPECT_EQ(type(m), "\n   M: a  1 by 3 matrix\n\n  1:          0\n               2\n               3\n\n");
    scalar("NAMESW", 0);
    EXPECT_EQ(type(m), "         0            2\n          3\n\n");
}

TEST_F(listing, wordsListObjectsInOrderOfNames) {
    EXPECT_EQ(type("MATRICES"), "currently defined MATRICES\n   none\n");
    matrix("B", 2, 3);
    matrix("A", 10, 1);
    enter("SM", STRINGMATRIX, StringArrayAlloc(1, 4));
    enter(".F.X", USERFUNCTION, nullptr);
    enter("..F.X.Y", USERFUNCTION, nullptr);
    enter("G", USERFUNCTION, nullptr);
    enter("TEXT", STRINGTYPE, xstrdup(""));
    symtabenter("NEW");
    symtabmarkdeleted(scalar("GONE", 1));
    scalar("X", 1);
    EXPECT_EQ(type("MATRICES"), "currently defined MATRICES\n   A 10 by 1\n   B 2 by 3\n");
    EXPECT_EQ(type("STRINGMATRICES"), "currently defined STRINGMATRICES\n   SM 1 by 4\n");
    EXPECT_EQ(type("FUNCTIONS"), "currently defined FUNCTIONS\n   F'X\n   F'X'Y\n   G\n");
    EXPECT_EQ(type("STRINGS"), "currently defined STRINGS\n   TEXT\n");
    EXPECT_EQ(type("INITIALS"), "currently defined INITIALS\n   none\n");
    EXPECT_EQ(type("SCALARS"), "currently defined SCALARS\n   BOTTOM\n   LEFT\n   RIGHT\n   TOP\n   X\n");
    EXPECT_EQ(type("SYMBOLS"),
              "currently defined SYMBOLS\n   A 10 by 1, MATRIX\n   B 2 by 3, MATRIX\n   BOTTOM, SCALAR\n"
              "   F'X, FUNCTION\n   F'X'Y, FUNCTION\n   G, FUNCTION\n"
              "   LEFT, SCALAR\n   RIGHT, SCALAR\n   SM 1 by 4, STRINGMATRIX\n   TEXT, STRING\n"
              "   TOP, SCALAR\n   X, SCALAR\n");
    parser.funcmode = 1;
    symtabconst(0.125);
    parser.funcmode = 0;
    EXPECT_EQ(type("CONSTANTS"),
              "currently defined CONSTANTS\n   AXES\n   CONSETS\n   CONSTANTS\n   CURVES\n"
              "   FUNCTIONS\n   INITIALS\n   MATRICES\n   PI\n   SCALARS\n   STRINGMATRICES\n"
              "   STRINGS\n   SYMBOLS\n   TITLES\n   WINDOWS\n");
}

TEST_F(listing, plotObjectsTellTheirWindow) {
    const listingrow rows[] = {{CURVETYPE, shownothing, everysecondisaxis}};
    listingadd(rows, 1);
    const int w = enter("W", WINDOWTYPE, nullptr), c = enter("C1", CURVETYPE, nullptr),
              a = enter("W.XAXIS", CURVETYPE, nullptr), t = enter("T1", TITLETYPE, nullptr),
              lone = enter("LOST", TITLETYPE, nullptr);
    sym(w).index = int16_t(c), sym(c).index = int16_t(a), sym(a).index = int16_t(t),
    sym(t).index = int16_t(w);
    sym(lone).index = int16_t(lone);
    std::string curves = "currently defined CURVES\n", axes = "currently defined AXES\n";
    (everysecondisaxis(c) ? axes : curves) += "   C1 in W\n";
    (everysecondisaxis(a) ? axes : curves) += "   W.XAXIS in W\n";
    if (curves.ends_with("CURVES\n")) curves += "   none\n";
    if (axes.ends_with("AXES\n")) axes += "   none\n";
    EXPECT_EQ(type("CURVES"), curves);
    EXPECT_EQ(type("AXES"), axes);
    EXPECT_EQ(type("TITLES"), "currently defined TITLES\n   LOST\n   T1 in W\n");
    enter("W3", WINDOW3D, nullptr);
    EXPECT_EQ(type("WINDOWS"), "currently defined WINDOWS\n   W\n   W3\n");
}

TEST_F(listing, aTypeThatNobodyShowsIsAnError) {
    const int idx = enter("ODD", 17, nullptr);
    EXPECT_TRUE(type(idx).ends_with("##Error: bad type in symbol table\n")) << out;
}

struct listingfiles : listing {
    testfolder folder;
    void SetUp() override {
        listing::SetUp();
        folder.open();
        std::filesystem::create_directory("sub");
    }
    void TearDown() override {
        listing::TearDown();
        folder.close();
    }
    std::string file(const char* name, int flag, bool quoted) {
        clause.fileflag = int16_t(flag);
        return type(quoted ? symtabtext(0, 0, name) : symtabenter(name));
    }
};

TEST_F(listingfiles, linesOfAFile) {
    folder.write("data.txt", "1 2\r\n\n  end");
    EXPECT_EQ(file("DATA.TXT", 1, false), "     file: data.txt\n1 2\n\n  end\n");
    EXPECT_EQ(file("data.txt", 1, true), "     file: data.txt\n1 2\n\n  end\n");
    folder.write("Mixed.Txt", std::string(80, 'a') + "\n" + std::string(161, 'b') + "\n");
    EXPECT_EQ(file("Mixed.Txt", 1, true), "     file: Mixed.Txt\n" + std::string(80, 'a') + "\n" +
                                              std::string(80, 'b') + "\n" + std::string(80, 'b') + "\nb\n");
    folder.write("empty", "");
    EXPECT_EQ(file("EMPTY", 1, false), "     file: empty\n");
    report.filedir = "sub";
    EXPECT_EQ(file("DATA.TXT", 1, false), " file: sub/data.txt not found\n");
    EXPECT_EQ(file("./data.txt", 1, true), "     file: ./data.txt\n1 2\n\n  end\n");
}

TEST_F(listingfiles, whatIsNoTextFileIsNotRead) {
    folder.write("tarn.log", "* X = 1\n");
    EXPECT_EQ(file("TARN.LOG", 1, false), " unable to type open file: tarn.log\n");
    EXPECT_EQ(file("sub", 1, true), " file: sub not found\n");
    EXPECT_EQ(file("/dev/zero", 1, true), " file: /dev/zero not found\n");
    FILE* log = report.log = fopen("tarn.log", "a");
    EXPECT_EQ(file("./sub/../tarn.log", 1, true), " unable to type open file: tarn.log\n");
    report.log = nullptr;
    fclose(log);
}

TEST_F(listingfiles, directories) {
    for (const char* name : {"b.dat", "a.dat", "a.do", ".hidden", "sub/x"}) folder.write(name, "");
    EXPECT_EQ(file("*.dat", 2, true), "     files of the form: *.dat\n     a.dat\n     b.dat\n");
    EXPECT_EQ(file("?.d*", 2, true), "     files of the form: ?.d*\n     a.dat\n     a.do\n     b.dat\n");
    EXPECT_EQ(file("SUB", 2, false), "     files of the form: sub/*\n     x\n");
    EXPECT_EQ(file("*.c", 2, true),
              "     files of the form: *.c\n     files of the form: *.c/*\nno such files\n");
    clause.fileflag = 2;
    EXPECT_EQ(type(0), "     files of the form: *\n     a.dat\n     a.do\n     b.dat\n     sub\n");
    report.filedir = "sub";
    EXPECT_EQ(type(0), "     files of the form: sub/*\n     x\n");
}

} // namespace
