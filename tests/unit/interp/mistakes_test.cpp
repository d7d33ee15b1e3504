// Wrong statements: the whole text of what is said of each, and that none of them leaves an object changed.
#include "funcs/funcprint.h"
#include "interp/base/parser.h"
#include "interp/listing.h"
#include "solvers/conset.h"
#include "support/livesession.h"

#include <map>

namespace {

struct mistakerow {
    std::string statements, answer;
    bool changes; // an object, as it should
};

// The rows of tests/data/mistakes.txt: behind "* ", "+ " and "> " stands what is typed, below it the answer.
std::vector<mistakerow> mistakerows() {
    std::ifstream in(TESTDATADIR "/mistakes.txt");
    std::vector<mistakerow> rows;
    for (std::string row; std::getline(in, row);) {
        if (row.starts_with("# ") || row == "#") continue;
        if (row.starts_with("* ") || row.starts_with("+ "))
            rows.push_back({row.substr(2) + "\n", "", row[0] == '+'});
        else if (row.starts_with("> "))
            rows.back().statements += row.substr(2) + "\n";
        else if (!rows.empty())
            rows.back().answer += row + "\n";
    }
    // The empty line before a heading belongs to no answer.
    for (mistakerow& row : rows)
        while (row.answer.ends_with("\n\n")) row.answer.pop_back();
    return rows;
}

std::string bytes(const void* from, size_t n) { return {static_cast<const char*>(from), n}; }

std::string listed(int idx) {
    std::string text;
    clause.fileflag = 0; // the statement before may have set it
    report.capture = &text;
    typeop(idx);
    report.capture = nullptr;
    return text;
}

// All that an object is. Of a function its definition: the value of its last call may change.
std::string contentsof(int idx) {
    const symbol& s = sym(idx);
    switch (s.type) {
    case SCALAR: return bytes(&s.val.rval, sizeof s.val.rval);
    case MATRIX: {
        const auto* m = static_cast<const harray*>(s.val.ptr);
        return bytes(m, (harraycount(m) + 1) * sizeof(double));
    }
    case STRINGTYPE: return static_cast<const char*>(s.val.ptr);
    case USERFUNCTION:
    case INITIALVALUE: return functext(idx, true);
    case CONSETTYPE: return constraints2text(idx, true);
    default: return listed(idx);
    }
}

std::map<std::string, std::string> namedobjects() {
    std::map<std::string, std::string> found;
    for (int idx = 1; idx < SYMTABSIZE; idx++) {
        const symbol& s = sym(idx);
        if (!isalpha(static_cast<unsigned char>(s.name[0])) || s.type <= UNKNOWN) continue;
        if (s.type == CONSTANT || s.type == OPERATOR) continue;
        found[s.name] = std::to_string(s.type) + ":" + contentsof(idx);
    }
    return found;
}

// The objects that differ, by their names.
std::string differences(const std::map<std::string, std::string>& a,
                        const std::map<std::string, std::string>& b) {
    std::string names;
    for (const auto& [name, contents] : a)
        if (!b.contains(name) || b.at(name) != contents) names += " " + name;
    for (const auto& [name, contents] : b)
        if (!a.contains(name)) names += " " + name;
    return names;
}

class Mistakes : public LiveSession {
protected:
    void SetUp() override {
        LiveSession::SetUp();
        const struct {
            const char *name, *text;
        } files[] = {{"numbers.dat", "1 2 3\n4 5\n"},  {"bad.dat", "1 2\n3 1.5E 4\n"},
                     {"control.dat", "1 2\n\001 3\n"}, {"ragged.csv", "a,b\n1,2\n3\n"},
                     {"words.csv", "a,b\n1,x\n"},      {"open.csv", "\"a,b\n1\n"},
                     {"plain.csv", "1,2\n3,4\n"},      {"junk.SAV", "garbage"}};
        for (const auto& f : files) file(f.name, f.text);
        std::filesystem::create_directory("folder");
        std::filesystem::create_directory("folder.SAV");
        ASSERT_EQ(start(), 0);
        run("X = 5; Y = 2.5; S = \"text\"; V = 1:3\n"
            "M = V &' LIST(4,5,6); T(2,2) = \"b\"\n"
            "FUNCTION F(A) = A*X\n"
            "FUNCTION G(A) = A*NOWHERE\n"
            "INITIAL Z(0) = 1\n"
            "CONSTRAINTS C = { X > 0 }\n"
            "DRAW C1 = V; TITLE T1 = \"name\"\n");
        ASSERT_EQ(report.errors, 0);
    }
};

TEST_F(Mistakes, AreToldWithNamesAndChangeNothing) {
    const auto rows = mistakerows();
    ASSERT_GT(rows.size(), 200u);
    auto before = namedobjects();
    for (const auto& row : rows) {
        const std::string answer = run(row.statements);
        EXPECT_EQ(answer, row.answer) << row.statements;
        auto after = namedobjects();
        EXPECT_TRUE(row.changes || differences(before, after).empty())
            << row.statements << differences(before, after);
        before = std::move(after);
    }
    EXPECT_EQ(run("TYPE Y + 1"), "    = 3.5\n");
}

// What WARNSW silences: everything but the fixed words.
TEST_F(Mistakes, AreToldInFixedWordsAloneWithoutWarnings) {
    run("WARNSW = 0");
    for (const auto& row : mistakerows()) {
        std::string fixed = fixedwords(row.answer);
        for (size_t at; (at = fixed.find("Warning: ")) != std::string::npos;)
            fixed.erase(at, fixed.find('\n', at) - at + 1);
        EXPECT_EQ(run(row.statements), fixed) << row.statements;
    }
}

// What hangs on the machine: no help file, no editor, no memory, the end of the input.
TEST_F(Mistakes, OfTheMachineAreToldToo) {
    EXPECT_EQ(run("HELP SIN"),
              "##Error: cannot open help file\nWarning: TARN.HLP should stand in " TARNSTARTDIR "\n");
    EXPECT_EQ(run("EDIT FILE \"a\""), "Warning: the editor could not be started on a.do\n");
    EXPECT_EQ(run("Q = SHAPE(40000,40000,1)"),
              "##Error: Too many elements requested in 'xalloc()'\n"
              "Warning: a 40000 by 40000 matrix; 1073741822 elements are the limit\n");
    type({"Q = 1", "R = \"open", "Q = 2"});
    EXPECT_TRUE(live.output.ends_with("##Error: the input ended inside a statement\n"
                                      "Warning: a string is not closed\n* \n") ||
                live.output.ends_with("Warning: a string is not closed\n* "))
        << live.output;
}

// A do-file that fails tells its lines, and those of the files that have called it.
TEST_F(Mistakes, InDoFilesHaveTheirPlace) {
    const std::string again = "SELF.do, line 1, called from ";
    const struct {
        const char *name, *text;
        std::string told;
    } rows[] = {
        {"INNER", "X = 1\n\nX = 1 +\n",
         "##Syntax Error[3]: illegal command type\nWarning: a value is missing behind \"+\"\n    X = 1 +\n"
         "           ^\nWarning: in INNER.do, line 3\n"},
        {"OUTER", "Y = 1\nDO INNER\n",
         "##Syntax Error[3]: illegal command type\nWarning: a value is missing behind \"+\"\n    X = 1 +\n"
         "           ^\nWarning: in INNER.do, line 3, called from OUTER.do, line 2\n"},
        {"SELF", "DO SELF\n",
         "##Error: do-files and loops are nested too deeply: 500 is the limit\nWarning: does one run itself "
         "again?\nWarning: in " +
             again + again + again + "SELF.do, line 1, and so on\n"},
        {"LOOP", "FOR I = 1:2 {\n\nX = V(I+5)\n}\n",
         "##Error: matrix subscript out of valid range\nWarning: row 6: V is a 3 by 1 matrix\n"
         "Warning: in LOOP.do, line 3\n"},
        {"QUOTE", "Y = 1\nS = \"open\nY = 2\nY = 3\n",
         "##Error: the do-file ended inside a statement\nWarning: a string that begins in line 2 is not "
         "closed\nWarning: in QUOTE.do, line 4\n"},
        {"REMARK", "/* open\nY = 2\n",
         "##Error: the do-file ended inside a statement\nWarning: a comment that begins in line 1 is not "
         "closed\nWarning: in REMARK.do, line 2\n"},
        {"BODY", "FOR I = 1:2 {\nY = I\n",
         "##Error: the do-file ended inside a statement\nWarning: the body of a FOR that begins in line 1 is "
         "not closed\nWarning: in BODY.do, line 2\n"},
        {"BRANCH", "Y = 1\nIF Y THEN {\nY = I\n",
         "##Error: the do-file ended inside a statement\nWarning: the branch of an IF that begins in line 2 "
         "is "
         "not closed\nWarning: in BRANCH.do, line 3\n"},
        {"DEFINE", "FUNCTION F(A) = A +\n",
         "##Syntax Error[3]: illegal command type\nWarning: a value is missing behind \"+\"\n"
         "    FUNCTION F(A) = A +\n                       ^\nWarning: the earlier definition of F is gone\n"
         "Warning: in DEFINE.do, line 1\n"},
        {"FAULT", "Y = 1/0\n",
         "\nFloating Point Error: Divide by Zero\nFloating Point Errors: DivZero: 1\r\n"
         "Warning: floating-point errors in FAULT.do, line 1\n"},
    };
    std::vector<std::string> lines;
    std::string transcript;
    for (const auto& row : rows) {
        file(std::string(row.name) + ".do", row.text);
        lines.push_back(std::string("DO ") + row.name);
        transcript += "* " + lines.back() + "\n" + row.told;
    }
    type(lines);
    EXPECT_EQ(live.output.substr(0, transcript.size()), transcript);
}

} // namespace
