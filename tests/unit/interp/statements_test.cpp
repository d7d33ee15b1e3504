// Statements through the real process table: what names hold afterwards, and what was printed.
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/polish.h"
#include "interp/scanner.h"
#include "interp/session.h"
#include "interp/tokenfil.h"
#include "support/harness.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

std::string numbertext(double x) {
    char text[40];
    snprintf(text, sizeof text, "%g", x);
    return text;
}

// What a name holds: a number, "rowsxcols: elements", "text" in quotes, or - for nothing.
std::string held(const char* name) {
    const int idx = symtablookup(name);
    if (idx < 0) return "-";
    const symbol& s = sym(idx);
    std::string text;
    switch (s.type) {
    case SCALAR: return numbertext(s.val.rval);
    case STRINGTYPE: return std::string("\"") + stringval(idx) + "\"";
    case MATRIX: {
        const harray* m = static_cast<const harray*>(s.val.ptr);
        text = std::to_string(m->rows) + "x" + std::to_string(m->cols) + ":";
        for (size_t k = 1; k <= harraycount(m); k++) text += " " + numbertext(cells(m)[k]);
        return text;
    }
    case STRINGMATRIX: {
        const StringArray* a = static_cast<const StringArray*>(s.val.ptr);
        text = std::to_string(a->rows) + "x" + std::to_string(a->cols) + ":";
        for (size_t k = 0; k < stringcount(a); k++)
            text += std::string(" ") + (stringcells(a)[k] ? stringcells(a)[k] : "-");
        return text;
    }
    default: return "-";
    }
}

int temporaries() {
    int count = 0;
    for (int i = 1; i < SYMTABSIZE; i++) count += sym(i).name[0] == ' ';
    return count;
}

class Statements : public testing::Test {
protected:
    void SetUp() override { harnessstart(); }
};

struct example {
    const char *statements, *name, *value, *printed;
};

// After each: the value, the words, no temporary left over, and a next statement that runs.
void checkall(const std::vector<example>& rows) {
    for (const example& row : rows) {
        harnessstart();
        EXPECT_EQ(harnessrun(row.statements), row.printed) << row.statements;
        EXPECT_EQ(held(row.name), row.value) << row.statements;
        EXPECT_EQ(harnessrun("THENEXT = 1:2"), "") << row.statements;
        EXPECT_EQ(held("THENEXT"), "2x1: 1 2") << row.statements;
        EXPECT_EQ(temporaries(), 0) << row.statements;
    }
}

TEST_F(Statements, Ranges) {
    checkall({
        {"X = 1:3", "X", "3x1: 1 2 3", ""},
        {"X = 3:1", "X", "3x1: 3 2 1", ""},
        {"X = 2:2", "X", "1x1: 2", ""},
        {"X = 0.5:3", "X", "3x1: 0.5 1.5 2.5", ""},
        {"X = 1:0:0.5", "X", "3x1: 1 0.5 0", ""},
        {"X = 0:1:-0.5", "X", "3x1: 0 0.5 1", ""},
        {"X = 0:1!5", "X", "5x1: 0 0.25 0.5 0.75 1", ""},
        {"X = 0:1!1", "X", "1x1: 1", ""},
        {"X = 0:1!2.5", "X", "2x1: 0 1", "Warning: :! count is not an integer\nWarning: 2.5 is read as 2\n"},
        {"X = 5:5!4", "X", "1x1: 5", ""},
        {"X = (0:1:0.1)(11,1)", "X", "1", ""},
        {"X = 0:1:0", "X", "-", "##Error: COLON (:) zero increment not allowed\n"},
        {"X = 0:1!0", "X", "-", "##Error: COLON (:) zero increment not allowed\n"},
        {"X = 0:1E300", "X", "-", "##Error: Too many elements requested in 'xalloc()'\n"},
        {"X = 0:1:1E-320", "X", "-", "##Error: Too many elements requested in 'xalloc()'\n"},
        {"X = 1:\"a\"", "X", "-", "##Error: the expression is not a scalar type as expected\n"},
        {"X = (1:3)+0.5:4", "X", "3x1: 1.5 2.5 3.5", ""},
    });
    harnessrun("X = 0:1:0.1; N = 0:100000:0.1");
    EXPECT_EQ(scalarval(symtablookup("X")), 0.0);
    const harray* x = matrixof(symtablookup("X"));
    EXPECT_EQ(x->rows, 11u);
    EXPECT_EQ(at(x, 11, 1), 1.0) << "the end is exact";
    EXPECT_EQ(matrixof(symtablookup("N"))->rows, 1000001u);
}

TEST_F(Statements, ListsJoinsAndTransposes) {
    checkall({
        {"X = LIST(1,2:3,4)", "X", "4x1: 1 2 3 4", ""},
        {"X = LIST 5", "X", "1x1: 5", ""},
        {"X = LIST(NULLM2)", "X", "-", "##Error: bad type in LIST expression\n"},
        {"X = LIST(\"a\")", "X", "-", "##Error: bad type in LIST expression\n"},
        {"X = LIST((1,2))", "X", "-", "##Syntax Error[13]: illegal statement\n"},
        {"X = LIST(1,2)'", "X", "1x2: 1 2", ""},
        {"A = LIST(1,2,3); X = A'", "X", "1x3: 1 2 3", ""},
        {"A = LIST(1,2,3); X = A'; X = A", "X", "3x1: 1 2 3", ""},
        {"X = (LIST(1,2)' & LIST(3,4)')'", "X", "2x2: 1 3 2 4", ""},
        {"X = 7'", "X", "1x1: 7", ""},
        {"X = LIST(1,2)' & LIST(3,4,5)'", "X", "2x3: 1 2 1 3 4 5", ""},
        {"X = 1:2 &' LIST(3,4,5)", "X", "3x2: 1 3 2 4 1 5", ""},
        {"X = 1 & 2:3", "X", "3x1: 1 2 3", ""},
        {"X = 0 &' (1:3)", "X", "3x2: 0 1 0 2 0 3", ""},
        {"X = \"a\" & \"b\" &' \"c\"", "X", "2x2: a c b c", ""},
        {"S = \"a\" &' \"b\"; X = (S & \"c\")'", "X", "2x2: a c b c", ""},
        {"X = \"a\" & 1", "X", "-", "##Error: expected scalar or matrix type\n"},
        {"X = 1 & UNDEF", "X", "-", "##Error: expected scalar or matrix type\n"},
        {"& 1", "X", "-", "##Syntax Error[27]: missing arg for binary operator\n"},
    });
}

TEST_F(Statements, AssignmentByLeftAndRightType) {
    checkall({
        {"X = 3", "X", "3", ""},
        {"X _ 3", "X", "3", ""},
        {"X = Y", "X", "-", "##Error: RHS of assignment invalid\n"},
        {"X = \"a\"", "X", "\"a\"", ""},
        {"S = \"a\"; X = S; S = \"b\"", "X", "\"a\"", ""},
        {"A = 1:3; X = A; A = 0", "X", "3x1: 1 2 3", ""},
        {"S = \"a\" & \"b\"; X = S; S = \"c\"", "X", "2x1: a b", ""},
        {"X = SIN", "X", "-", "##Error: bad RHS type in assignment\n"},
        {"X = 5; X = 1:3", "X", "1",
         "Warning: ? assigning a matrix to a scalar LHS may be wrong\n"
         "Warning: X takes the first element of a 3 by 1 matrix; DELETE X first to make it a matrix\n"},
        {"X = 5; X = \"a\"", "X", "5", "##Error: can't assign string to a scalar\n"},
        {"X = 5; X = SIN", "X", "5", "##Error: bad type of RHS of scalar assignment\n"},
        {"X = 1:3; X = 5", "X", "3x1: 5 5 5", ""},
        {"X = 1:3; X = X", "X", "3x1: 1 2 3", ""},
        {"X = 1:3; X = X + 1", "X", "3x1: 2 3 4", ""},
        {"X = 1:3; X = 1:2", "X", "2x1: 1 2", ""},
        {"X = 1:3; X = \"a\"", "X", "3x1: 1 2 3", "##Error: RHS of matrix assignment invalid\n"},
        {"X = \"a\"; X = X", "X", "\"a\"", ""},
        {"X = \"a\"; X = X + \"b\"", "X", "\"ab\"", ""},
        {"X = \"a\"; X = 1", "X", "\"a\"", "##Error: RHS of string assignment is not a string\n"},
        {"X = \"a\" & \"b\"; X = \"c\"", "X", "2x1: c c", ""},
        {"X = \"a\" & \"b\"; X = X", "X", "2x1: a b", ""},
        {"X = \"a\" & \"b\"; X = \"c\" & \"d\"", "X", "2x1: c d", ""},
        {"X = \"a\" & \"b\"; X = 1", "X", "2x1: a b", "##Error: RHS of matrix assignment invalid\n"},
        {"1 = 2", "X", "-", "##Syntax Error[43]: illegal assignment LHS\n"},
        {"X = 1; (X + 1) = 2", "X", "1", "##Syntax Error[43]: illegal assignment LHS\n"},
        {"SIN = 2", "X", "-", "##Error: LHS type for assignment invalid\n"},
        {"X = 1; Y = X = 1", "Y", "1", ""},
        {"X = Y = 3", "Y", "-", "##Error: only SCALAR or MATRIX types in binary operators\n"},
        {"X = 1; X = 2, Y = 3", "X", "1", "##Error: only SCALAR or MATRIX types in binary operators\n"},
    });
}

TEST_F(Statements, PartsOfAMatrix) {
    checkall({
        {"X(2,2) = 1", "X", "2x2: 0 0 0 1", ""},
        {"X(3) = 1", "X", "3x1: 0 0 1", ""},
        {"X(2,2) _ 1", "X", "2x2: 0 0 0 1", ""},
        {"X = 1:2; X(3,2) = 7", "X", "3x2: 1 0 2 0 0 7", ""},
        {"X = 1:3; X(2,1) = X(3,1)", "X", "3x1: 1 3 3", ""},
        {"X(1:2,1) = 1:3", "X", "2x1: 1 2",
         "Warning: note RHS matrix exceeds LHS matrix in size\n"
         "Warning: 2 by 1 elements of X are assigned from a 3 by 1 matrix\n"},
        {"X(1:4,1) = 1:2", "X", "4x1: 1 2 1 2", ""},
        {"X = 1:3; X(LIST(3,2,1),1) = X", "X", "3x1: 3 2 1", ""},
        {"X = LIST(2,3,1); X(X,1) = 1:3", "X", "3x1: 3 1 2", ""},
        {"X = 1:3; X(1,1) = \"a\"", "X", "3x1: 1 2 3",
         "##Error: LHS type must be matrix or unknown in submatrix assign\n"},
        {"X(0,1) = 3", "X", "-", "##Error: invalid submatrix row index\n"},
        {"X(1,-1) = 3", "X", "-", "##Error: invalid submatrix column index\n"},
        {"X(0.9) = 3", "X", "-", "##Error: invalid submatrix row index\n"},
        {"X(3E9,1) = 3", "X", "-", "##Error: ASSIGN: index too big\n"},
        {"X(2147483647,2147483647) = 3", "X", "-", "##Error: Too many elements requested in 'xalloc()'\n"},
        {"X(1,1,1) = 3", "X", "-", "##Error: matrices may have 1 or 2 subscripts only\n"},
        {"X(\"a\") = 3", "X", "-", "##Error: illegal use of non-scalar\n"},
        {"X(1,2) = \"b\"; X(1) = \"a\"", "X", "1x2: a b", ""},
        {"X(1,2) = \"b\"; X(1) = 3", "X", "1x2: - b",
         "##Error: LHS type must be matrix or unknown in submatrix assign\n"},
        {"X = 5; X(1) = 3", "X", "5", "##Error: X is not a user-defined or builtin function\n"},
        {"(1:3)(2) = 5", "X", "-", "##Syntax Error[43]: illegal assignment LHS\n"},
        {"X(2) = Y", "X", "-", "##Error: RHS of assignment invalid\n"},
        {"A = 1:3; X = A(2)", "X", "2", ""},
        {"A = 1:3; X = A(2,1)", "X", "2", ""},
        {"X = (1:3)(2)", "X", "2", ""},
        {"A = 1:3; X = A(4)", "X", "-", "##Error: matrix subscript out of valid range\n"},
        {"A = 1:3; X = A(0)", "X", "-", "##Error: matrix subscript out of valid range\n"},
        {"A = 1:3; X = A(1,2)", "X", "-", "##Error: matrix subscript out of valid range\n"},
        {"A = 1:3; X = A(1:2)", "X", "-", "##Error: subscripts must be scalars\n"},
        {"A = 1:3; X = A()", "X", "-", "##Error: matrices may have 1 or 2 subscripts only\n"},
        {"A = 1:3; X = A(1,1,1)", "X", "-", "##Error: matrices may have 1 or 2 subscripts only\n"},
        {"X = Y(1)", "X", "-", "##Error: Y is undefined, a matrix or function was expected here\n"},
        {"S = \"a\" & \"b\"; X = S(2)", "X", "\"b\"", ""},
        {"S = \"a\" & \"b\"; X = S(3)", "X", "-", "##Error: matrix subscript out of valid range\n"},
        {"A = 1:3; X = A(2) = 2", "X", "1", ""},
        {"A = 1:3; A(2) = A(1) = 1", "A", "3x1: 1 1 3", ""},
    });
}

TEST_F(Statements, RowsAndColumns) {
    const std::string a = "A = LIST(1,2,3)' & LIST(4,5,6)'; ";
    const struct {
        const char *statement, *name, *value, *printed;
    } rows[] = {
        {"X = A ROW 2", "X", "1x3: 4 5 6", ""},
        {"X = A COL 3:2", "X", "2x2: 3 2 6 5", ""},
        {"X = A ROW 2 COL LIST(1,1)", "X", "1x2: 4 4", ""},
        {"X = A COL 2 ROW 1:2", "X", "2x1: 2 5", ""},
        {"X = A' ROW 3", "X", "1x2: 3 6", ""},
        {"X = A' ROW 3 COL 2", "X", "1x1: 6", ""},
        {"X = A ROW 3", "X", "-", "##Error: illegal row index in submatrix\n"},
        {"X = A COL 0", "X", "-", "##Error: matrix A does not have column 0\n"},
        {"X = A ROW 1 COL 4", "X", "-", "##Error: matrix A does not have col 4\n"},
        {"X = A ROW 9 COL 1", "X", "-", "##Error: matrix A does not have row 9\n"},
        {"X = A COL 1 ROW 9", "X", "-", "##Error: illegal row index in submatrix\n"},
        {"X = A COL 9 ROW 1", "X", "-", "##Error: illegal column index in submatrix\n"},
        {"X = Y ROW 1", "X", "-", "##Error: submatrix references non-existent matrix\n"},
        {"X = Y COL 1", "X", "-", "##Error: Y is not a matrix\n"},
        {"X = 5 ROW 1", "X", "-", "##Error: can't apply ROW to this type\n"},
        {"X = 5 COL 1", "X", "-", "##Error: can't apply COL to this type\n"},
        {"X = A ROW \"a\"", "X", "-", "##Error: illegal use of non-scalar\n"},
        {"A ROW 1 ROW 2", "X", "-", "##Error: a too complicated ROW/COL expression\n"},
        {"A ROW 2 = 0", "A", "2x3: 1 2 3 0 0 0", ""},
        {"A ROW 4 = 9", "A", "4x3: 1 2 3 4 5 6 0 0 0 9 9 9", ""},
        {"A COL 1:2 = 1:2", "A", "2x3: 1 1 3 2 2 6", ""},
        {"A ROW 1 COL 2 = 7", "A", "2x3: 1 7 3 4 5 6", ""},
        {"A ROW 1 COL 2 _ 7", "A", "2x3: 1 7 3 4 5 6", ""},
        {"X ROW 2 = 1:2'", "X", "2x2: 0 0 1 2", ""},
        {"X = A = A ROW 1", "X", "2x3: 1 1 1 0 0 0", ""},
        {"A' ROW 1 = 5", "A", "2x3: 1 2 3 4 5 6", "##Syntax Error[43]: illegal assignment LHS\n"},
        {"DELETE A ROW 1", "A", "1x3: 4 5 6", ""},
        {"DELETE A COL LIST(1,3)", "A", "2x1: 2 5", ""},
        {"DELETE A ROW 1 COL 2", "A", "1x2: 4 6", ""},
        {"DELETE A ROW 3", "A", "2x3: 1 2 3 4 5 6", "##Error: DELETE: invalid submatrix index\n"},
        {"DELETE A COL 1:3", "A", "-", ""},
        {"DELETE Y ROW 1", "A", "2x3: 1 2 3 4 5 6", "Warning: DELETE: Y does not exist\n"},
        {"DELETE A' ROW 1", "A", "2x3: 1 2 3 4 5 6",
         "Warning: DELETE: deletion does not apply to expressions\n"},
    };
    for (const auto& row : rows) {
        const std::string text = a + row.statement;
        checkall({{text.c_str(), row.name, row.value, row.printed}});
    }
}

TEST_F(Statements, FiftySubmatricesInAStatement) {
    std::string many = "A = 1:3; TYPE 1";
    for (int k = 0; k < 51; k++) many += ", A ROW 1 ROW 2"; // the first of each pair is a submatrix
    EXPECT_EQ(harnessrun(many), "##Error: a too complicated ROW/COL expression\n");
    std::string deep = "A = 1:3; DELETE A ROW 3";
    for (int k = 0; k < 60; k++) deep += ", A ROW 3";
    EXPECT_EQ(harnessrun(deep), "##Error: too many submatrices. use a simpler expression\n");
    EXPECT_EQ(held("A"), "3x1: 1 2 3");
    EXPECT_EQ(harnessrun("DELETE A ROW 3"), "");
    EXPECT_EQ(held("A"), "2x1: 1 2");
}

TEST_F(Statements, BranchesByScalars) {
    checkall({
        {"S = 1; IF S THEN X = 1 ELSE X = 2", "X", "1", ""},
        {"S = 0; IF S THEN X = 1 ELSE X = 2", "X", "2", ""},
        {"IF 0 THEN X = 1", "X", "-", ""},
        {"IF 0 THEN X = 1; X = 5", "X", "5", ""},
        {"IF 1 THEN X = 1; Y = 5", "X", "1", ""},
        {"IF 0 THEN 3 4 ELSE X = 2", "X", "2", ""},
        {"IF 1 THEN X = 2 ELSE 3 4", "X", "2", ""},
        {"IF 1 THEN\nX = 2", "X", "2", ""},
        {"IF 0 THEN\nX = 2", "X", "-", ""},
        {"IF 0 THEN X = 1 ELSE\nX = 2", "X", "2", ""},
        {"IF 1 THEN X = 1 ELSE\nX = 2", "X", "1", ""},
        {"X = 0; IF 1 THEN {X = X + 1; X = X + 2} ELSE {X = 9}; X = X + 10", "X", "13", ""},
        {"X = 0; IF 1 THEN {\nX = X + 1\nX = X + 2\n}\nX = X + 10", "X", "13", ""},
        {"X = 0; IF 0 THEN {\nX = X + 1\n/* } */ Y = \"}\"\n} ELSE {\nX = 7\n}\nX = X + 10", "X", "17", ""},
        {"IF 1 THEN IF 0 THEN X = 1 ELSE X = 2 ELSE X = 3", "X", "2", ""},
        {"IF 0 THEN IF 0 THEN X = 1 ELSE X = 2 ELSE X = 3", "X", "3", ""},
        {"IF 0 THEN X = 1 ELSE IF 1 THEN X = 2 ELSE X = 3", "X", "2", ""},
        {"IF 0 THEN X = 1 ELSE IF 0 THEN X = 2 ELSE X = 3", "X", "3", ""},
        {"X = 1 + (IF 0 THEN 2 ELSE 3) * 2", "X", "7", ""},
        {"X = (IF 0 THEN 1 ELSE 2) + (IF 1 THEN 30 ELSE 40)", "X", "32", ""},
        {"X = IF 1 THEN \"a\" ELSE 2", "X", "\"a\"", ""},
        {"IF \"a\" THEN X = 1", "X", "-", "##Error: IF-THEN-ELSE: bad conditional expression\n"},
        {"IF Y THEN X = 1", "X", "-", "##Error: IF-THEN-ELSE: bad conditional expression\n"},
        {"IF 1 ELSE X = 1", "X", "-", "##Syntax Error[4]: illegal token pairing\n"},
        {"IF 1 THEN X THEN X = 2", "X", "-", "##Syntax Error[4]: illegal token pairing\n"},
        {"ELSE X = 1", "X", "-", "##Syntax Error[7]: statement starting with illegal token\n"},
        {"X = IF 0 THEN 1", "X", "-", "##Syntax Error[3]: illegal command type\n"},
    });
}

TEST_F(Statements, BranchesByMatrices) {
    checkall({
        {"A = 1:3; X = IF A > 1 THEN A ELSE 0", "X", "3x1: 0 2 3", ""},
        {"A = 1:3; X = IF A > 1 THEN 7 ELSE LIST(8,9)", "X", "3x1: 8 7 7", ""},
        {"A = 1:3; X = IF A > 1 THEN (IF A > 2 THEN 1 ELSE 2) ELSE 3", "X", "3x1: 3 2 1", ""},
        {"A = 1:3; X = IF A > 1 THEN (IF 0 THEN 1 ELSE 2) ELSE 3", "X", "3x1: 3 2 2", ""},
        {"A = 1:3; X = IF A = 1 THEN 1 ELSE IF A = 2 THEN 2 ELSE 9", "X", "3x1: 1 2 9", ""},
        {"A = 1:2; X = IF A THEN IF A THEN IF A THEN IF A THEN IF A THEN 1 ELSE 1 ELSE 1 ELSE 1 ELSE 1 ELSE "
         "1",
         "X", "-", "##Error: matrix IFs are nested too deeply: 4 is the limit\n"},
        {"A = 1:3; X = IF A THEN \"a\" ELSE 1", "X", "-", "##Error: expected scalar or matrix type\n"},
        {"A = 1:3; IF A THEN 1", "X", "-", "##Syntax Error[4]: illegal token pairing\n"},
    });
}

TEST_F(Statements, RefusedForms) {
    checkall({
        {"3 4", "X", "-", "##Error: syntax error: two values not separated by an operator\n"},
        {"X = ", "X", "-", "##Syntax Error[3]: illegal command type\n"},
        {"(1 + 2", "X", "-", "##Syntax Error[4]: illegal token pairing\n"},
        {"1, 2", "X", "-", "##Syntax Error[13]: illegal statement\n"},
        {"TYPE", "X", "-", "##Syntax Error[13]: illegal statement\n"},
        {"'A", "X", "-", "##Syntax Error[18]: illegal token pairing\n"},
        {"X = 1; X'2", "X", "1", "##Syntax Error[12]: can't differentiate wrt a constant\n"},
        {"1:2:3:4", "X", "-", "##Error: Too many colons in expression\n"},
        {"WITH 3", "X", "-", "##Error: unallowed process case\n"},
        {"TYPE 1 IN F", "X", "-", "##Error: the IN clause does not apply to this operator\n"},
        {"SAVE FILE X", "X", "-", "##Error: FILE or DIR can only occur in TYPE, PRINT or DELETE statement\n"},
        {"DELETE FILE A, B", "X", "-", "##Error: may not DELETE more one than file at a time\n"},
        {"PRINT FILE A, B", "X", "-", "##Error: may not PRINT more than one file at a time\n"},
        {"X = 1; DRAW X PLACE 1", "X", "1", "##Error: PLACE must have two parenthesized arguments\n"},
        {"DRAW X PLACE (1,\"a\")", "X", "-", "##Error: PLACE must have two parenthesized arguments\n"},
        {"DRAW X OFFSET 1", "X", "-", "##Error: OFFSET must have two parenthesized arguments\n"},
        {"TITLE \"a\" AT 1", "X", "-", "##Error: AT clause must have two parenthesized arguments\n"},
        {"TITLE \"a\" FONT \"b\"", "X", "-", "##Error: the expression is not a scalar type as expected\n"},
        {"DELETE Y", "X", "-", "Warning: DELETE: Y does not exist\n"},
        {"DELETE SIN", "X", "-",
         "Warning: DELETE: builtin functions may not be deleted\nWarning: SIN is one\n"},
        {"DELETE 1+1", "X", "-",
         "Warning: DELETE: deletion does not apply to expressions\n"
         "Warning: names are deleted, and rows and columns of matrices: DELETE M ROW 2\n"},
        {"DELETE 1", "X", "-", "##Error: constants may not be deleted\n"},
        {"X = 1; DELETE X, X", "X", "-", ""},
        {"X = 1; Y = 2; DELETEALL", "X", "-", ""},
        {"X = 1; 3 4\nY = 2", "Y", "2", "##Error: syntax error: two values not separated by an operator\n"},
    });
}

TEST_F(Statements, CaseWithoutARoutine) {
    const processrow none{66, nullptr}, beyond{14, nullptr};
    processadd(&none, 1);
    EXPECT_EQ(harnessrun("DELETEALL"), "##Error: DELETEALL is not available in this build\n");
    processadd(&beyond, 1);
    EXPECT_EQ(harnessrun("A = 1:3; A ROW 1"),
              "##Error: this form of statement is not available in this build\n");
    tokentables.pcase[119] = 68;
    EXPECT_EQ(harnessrun("DELETEALL"), "##Error: PROCESS: bad case number\n");
}

// Bounds of the stacks are messages, not crashes.
TEST_F(Statements, BoundsOfTheStacks) {
    const auto repeat = [](const char* text, int n) {
        std::string all;
        for (; n > 0; n--) all += text;
        return all;
    };
    const struct {
        std::string statement, printed;
    } rows[] = {
        {"X = " + repeat("(", 200) + "1" + repeat(")", 200),
         "##Error: brackets are nested too deeply: 15 is the limit; give the inner parts names\n"},
        {"TYPE 1" + repeat(",1", 300),
         "##Error: too many waiting operators in a statement: 199 is the limit; part it into several\n"},
        {repeat("-", 1000) + "1",
         "##Error: too many waiting operators in a statement: 199 is the limit; part it into several\n"},
        {"X = 1" + repeat("+1", 100000), ""},
        {"X = 1" + repeat(";", 100000), ""},
        {"X = " + repeat("9", 100000),
         "\nFloating Point Error: Overflow\nFloating Point Errors: Overflow: 1\r\n"},
        {"X = " + repeat("A", 100000), "##Error: name too long: maximum name length is 27 characters\n"},
        {"X = " + repeat("(", 14) + "1" + repeat(")", 14), ""},
    };
    for (const auto& row : rows) {
        harnessstart();
        sym(symtabenter("MATHEX")).type = SCALAR;
        sym(symtabenter("MATHEX")).val.rval = 1;
        const std::string printed = harnessrun(row.statement, WHOLETEXT);
        EXPECT_EQ(printed.substr(0, 200), row.printed) << row.statement.substr(0, 40);
        EXPECT_EQ(harnessrun("Y = 1"), "");
    }
}

TEST_F(Statements, ClausesFillTheirVariables) {
    static clausestate seen;
    static std::string operands;
    const processrow row{26, [](const processop&) {
                             seen = clause;
                             operands.clear();
                             while (parser.poltop >= 0) {
                                 const int idx = polpop();
                                 operands = sym(idx).name + operands;
                                 tempfree(idx);
                             }
                         }};
    processadd(&row, 1);
    EXPECT_EQ(
        harnessrun("R = 2; DRAW C1 = M PTFONT 3 LABELFONT 5 FONT 7 SHIFT 0.5 ANGLE 90 "
                   "PLACE (R, 3) PRIORITY 4 WCLIP 1 COLORNUM R*3 OFFSET (1,-2) FFRACT LABELSIZE 0.25 INCHES "
                   "AT (5,6) WORLD IN W2 LABEL 1:3 SIZE 8 FINCHES"),
        "");
    EXPECT_EQ(operands, "C1M");
    EXPECT_EQ(seen.pointfont, 3);
    EXPECT_EQ(seen.labelfont, 5);
    EXPECT_EQ(seen.font, 7);
    EXPECT_EQ(seen.textshift, 0.5);
    EXPECT_EQ(seen.textangle, 90);
    EXPECT_EQ(seen.placex, 2);
    EXPECT_EQ(seen.placey, 3);
    EXPECT_EQ(seen.priority, 4);
    EXPECT_EQ(seen.wclip, 1);
    EXPECT_EQ(seen.colorn, 6);
    EXPECT_EQ(seen.offsetx, 1);
    EXPECT_EQ(seen.offsety, -2);
    EXPECT_EQ(seen.unitoffset, 87);
    EXPECT_EQ(seen.labelsize, 0.25);
    EXPECT_EQ(seen.unitlabelsize, 86);
    EXPECT_EQ(seen.atx, 5);
    EXPECT_EQ(seen.aty, 6);
    EXPECT_EQ(seen.unitat, 89);
    EXPECT_STREQ(sym(seen.insym).name, "W2");
    EXPECT_EQ(seen.textsize, 8);
    EXPECT_EQ(seen.unitsize, 88);
    EXPECT_EQ(temporaries(), 0) << "the label matrix is let go behind the statement";
    EXPECT_EQ(harnessrun("DRAW C1 PTFONT 1E9 COLORNUM -1E9"), "");
    EXPECT_EQ(seen.pointfont, 32767);
    EXPECT_EQ(seen.colorn, -32768);
    EXPECT_EQ(seen.insym, 0) << "clauses die with their statement";
}

TEST_F(Statements, VariablesOfTheSystemTakeEffect) {
    static int incolour, outcolour;
    static std::string display;
    console.colour = [](int in, int out) {
        incolour = in;
        outcolour = out;
    };
    upper.displayselect = [](const char* name) { display = name; };
    for (const char* name : {"ECHODO", "DOSTEP", "INCOLOR", "OUTCOLOR", "ROUNDSW"}) {
        sym(symtabenter(name)).type = SCALAR;
        sym(symtabenter(name)).val.rval = 0;
    }
    for (const char* name : {"NFORMAT", "MFORMAT", "DISPLAY", "FILEDIR"}) {
        sym(symtabenter(name)).type = STRINGTYPE;
        sym(symtabenter(name)).val.ptr = xstrdup("");
    }
    EXPECT_EQ(
        harnessrun("ECHODO = 2; DOSTEP = 0; INCOLOR = 2; OUTCOLOR = 14; ROUNDSW = 1; DISPLAY = \"PSL\""), "");
    EXPECT_EQ(dofiles.echodo, 2);
    EXPECT_EQ(incolour, 4);
    EXPECT_EQ(outcolour, 8);
    EXPECT_EQ(display, "PSL");
    EXPECT_EQ(harnessrun("FILEDIR = \"  /tmp\""), "");
    EXPECT_EQ(report.filedir, "/tmp");
    EXPECT_EQ(harnessrun("FILEDIR = \"/nowhere/at all\""),
              "##Error: FILEDIR directory /nowhere/at all does not exist\n");
    EXPECT_EQ(held("FILEDIR"), "\"/nowhere/at all\"");
    EXPECT_EQ(report.filedir, "/tmp") << "the old directory stays in force";
    EXPECT_EQ(harnessrun("FILEDIR = \" \""), "");
    EXPECT_EQ(report.filedir, "");
    EXPECT_EQ(harnessrun("NFORMAT = \"1 2\""), "##Error: Illegal nformat string\n");
    EXPECT_EQ(harnessrun("MFORMAT = \"0 0\""), "##Error: Illegal mformat string\n");
}

TEST_F(Statements, PrintAndDeleteWorkOnFiles) {
    const std::filesystem::path folder = testing::TempDir() + "tarnprint" + std::to_string(getpid());
    std::filesystem::create_directory(folder);
    report.filedir = folder.string();
    const auto contents = [&](const char* name) {
        std::ifstream in(folder / name);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    EXPECT_EQ(harnessrun("PRINT \"hello\" IN \"out\"; PRINT \"there\""), "");
    EXPECT_EQ(contents("out.lst"), "     hello\n");
    EXPECT_EQ(contents("tarn.lst"), "     there\n");
    EXPECT_EQ(harnessrun("APPENDSW = 1; PRINT \"again\" IN \"out\""), "");
    EXPECT_EQ(contents("out.lst"), "     hello\n     again\n");
    EXPECT_EQ(temporaries(), 0);
    sym(symtabenter("STRANGE")).type = 19;
    EXPECT_EQ(harnessrun("PRINT STRANGE"), "##Error: bad type in symbol table\n")
        << "an error is shown, and the listing closed";
    EXPECT_EQ(report.listing, nullptr);
    EXPECT_EQ(harnessrun("DELETE FILE \"out.lst\""), "");
    EXPECT_FALSE(std::filesystem::exists(folder / "out.lst"));
    EXPECT_EQ(harnessrun("DELETE FILE \"out.lst\""),
              "Warning: files not deleted: " + (folder / "out.lst").string() +
                  "\nWarning: there is no such file in " + folder.string() + "\n");
    report.filedir = "/nowhere";
    EXPECT_EQ(harnessrun("PRINT \"a\""), "##Error: couldn't open listing file /nowhere/tarn.lst\n");
    std::filesystem::remove_all(folder);
}

TEST_F(Statements, DebuggingPrintoutNamesTokensAndStacks) {
    parser.debugsw = true;
    const std::string printed = harnessrun("X = 3");
    for (const char* part :
         {"[newtoken: toknum=8,    tokindex=0]", "constant value = 3]", "token name = X]",
          "opstack: 34|8|: 75 (current token)", "polish: opstackftoken = 8, current token = 75,stack",
          "process case: 3, p2nd: "})
        EXPECT_NE(printed.find(part), printed.npos) << part << "\n" << printed;
    EXPECT_EQ(held("X"), "3");
}

// The same statements from text and from recorded tokens must leave the same values.
TEST_F(Statements, RecordedStatementsDoWhatTheirTextDoes) {
    const std::string text =
        "IF X > 2 THEN {Y = \"big\"; Z = LIST(X,1)} ELSE IF X = 2 THEN Y = \"two\" ELSE {Y = \"small\"}\r"
        "IF X = 1 THEN\rW1 = 5\rA(X) = X; T = (IF X = 3 THEN 1 ELSE 2) + 10\rIF 0 THEN Q = 1\r";
    for (int pass = 1; pass <= 3; pass++) {
        std::string left[2];
        for (const bool recorded : {false, true}) {
            harnessstart();
            harnessrun("X = " + std::to_string(pass));
            tokenstream body;
            if (recorded) {
                std::string lines = text;
                std::replace(lines.begin(), lines.end(), '\r', '\n');
                harnessfeed(lines);
                scanner.record = &body;
                try {
                    for (;;) skimtoken();
                } catch (const sessionend&) {}
                scanner.record = nullptr;
                streamrewind(body);
                dofilesreset();
                dofiles.closed = true;
                scanner.stream = &body;
                try {
                    for (;;) {
                        statementbegin();
                        polish();
                    }
                } catch (const sessionend&) {}
                scanner.stream = nullptr;
            } else {
                std::string lines = text;
                std::replace(lines.begin(), lines.end(), '\r', '\n');
                EXPECT_EQ(harnessrun(lines), "");
            }
            for (const char* name : {"X", "Y", "Z", "W1", "A", "T", "Q"}) left[recorded] += held(name) + " ";
        }
        EXPECT_EQ(left[0], left[1]) << pass;
        EXPECT_EQ(harness.output, "");
    }
}

} // namespace
