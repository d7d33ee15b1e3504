#include "interp/submatrix.h"

#include "funcs/trinode.h"
#include "interp/assign.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/tokens.h"
#include "interp/mistakes.h"
#include "interp/otherwords.h"
#include "interp/process.h"
#include "interp/scanner.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

namespace {

int newsubmtx(int matrix, int rows, int cols) {
    const int node = trialloc(-matrix, -rows, -cols);
    return symtabtemp(0, 0, nullptr, SUBMTX, node);
}

// A subscript as a matrix: a named or temporary one as it stands, a scalar as a 1 by 1 temporary in its
// place.
int subscriptmatrix(int idx) {
    if (ismatrix(idx)) return idx;
    const int temp = scalartemp(idx);
    tempfree(idx);
    return temp;
}

// Has the subscripted name become the target of an assignment? The next token tells.
bool istarget() {
    int token, index;
    newtoken(token, index);
    pushtoken(token, index);
    return token == TOKUNDERSCORE || (token == TOKEQUAL && !parser.assigned && parser.oplevel == 1);
}

void checksubscripts(int matrix, int count) {
    if (count == 1 || count == 2) return;
    tarnerror(further("%s, and %d subscripts are given", describe(matrix).c_str(), count),
              "matrices may have 1 or 2 subscripts only");
}

// F(X) = ... sets an element of a matrix; where X is nothing yet a function was meant.
void refusefunction(int matrix, const int16_t* subscripts, int count) {
    std::string arguments;
    for (int k = 0; k < count; k++) {
        if (sym(subscripts[k]).type != UNKNOWN) return;
        arguments += (k ? "," : "") + nametext(subscripts[k]);
    }
    tarnerror(further("%s is undefined; a function is made by FUNCTION %s(%s) = ...",
                      nametext(subscripts[0]).c_str(), nametext(matrix).c_str(), arguments.c_str()),
              "illegal use of non-scalar");
}

int targetpart(int matrix, const int16_t* subscripts, int count) {
    refusefunction(matrix, subscripts, count);
    const int rows = subscriptmatrix(subscripts[0]);
    const int cols = count == 2 ? subscriptmatrix(subscripts[1]) : scalartemp(symtab.one);
    return newsubmtx(matrix, rows, cols);
}

// A subscript of matrix; what: "row" or "column".
uint32_t subscript(int matrix, const char* what, int idx, uint32_t limit) {
    const double x = scalarval(idx);
    if (!(x >= 1 && x < double(limit) + 1)) badsubscript(matrix, what, x);
    return uint32_t(x);
}

int textelement(const StringArray* a, uint32_t i, uint32_t j) {
    char* text = nullptr;
    if (!StringArrayStrGet(a, long(i), long(j), &text))
        tarnerror(nomemory(), "StringArrayStrGet failed in matrixhandler()");
    return symtabtemp(0, 0, text, TEMPSTRING, 0);
}

[[noreturn]] void undefinedcallee(int idx) {
    const char* const text = "%s is undefined, a matrix or function was expected here";
    if (furtherline ours{otherword(sym(idx).name)}; !ours.text.empty())
        tarnerror(ours, text, nametext(idx).c_str());
    const int meant = symtabnearest(sym(idx).name, [](const symbol& s) {
        return s.type < 0 || s.type == USERFUNCTION || s.type == MATRIX || s.type == STRINGMATRIX;
    });
    tarnerror(meant ? further("is %s meant?", sym(meant).name) : furtherline{}, text, nametext(idx).c_str());
}

[[noreturn]] void badkind(int matrix, int subscript) {
    const std::string name = nametext(matrix);
    if (ismatrix(subscript))
        tarnerror(further("one element is taken so; several rows are %s ROW 1:2, columns %s COL 1:2",
                          name.c_str(), name.c_str()),
                  "subscripts must be scalars");
    tarnerror(further("%s, in a subscript of %s", describe(subscript).c_str(), name.c_str()),
              "subscripts must be scalars");
}

int element(int matrix, const int16_t* subscripts, int count) {
    const symbol& s = sym(matrix);
    if (s.type == UNKNOWN) undefinedcallee(matrix);
    checksubscripts(matrix, count);
    for (int k = 0; k < count; k++)
        if (!isscalar(subscripts[k])) badkind(matrix, subscripts[k]);
    const int column = count == 2 ? subscripts[1] : symtab.one;
    int result;
    if (s.type == STRINGMATRIX) {
        const StringArray* a = static_cast<const StringArray*>(s.val.ptr);
        const uint32_t i = subscript(matrix, "row", subscripts[0], a->rows);
        result = textelement(a, i, subscript(matrix, "column", column, a->cols));
    } else {
        const harray* a = matrixof(matrix);
        const uint32_t i = subscript(matrix, "row", subscripts[0], a->rows);
        result = symtabtempscalar(0, 0, at(a, i, subscript(matrix, "column", column, a->cols)));
    }
    tempfree(matrix);
    tempfree(subscripts[0]);
    tempfree(column);
    return result;
}

} // namespace

void badsubscript(int matrix, const char* what, double x) {
    tarnerror(further("%s %.15g: %s", what, x, describe(matrix).c_str()),
              "matrix subscript out of valid range");
}

void assignelement(int matrix, double row, double col, double value) {
    const int16_t subscripts[2] = {int16_t(symtabtempscalar(0, 0, row)),
                                   int16_t(symtabtempscalar(0, 0, col))};
    const int target = targetpart(matrix, subscripts, 2);
    assignop(symtabtempscalar(0, 0, value), target);
    submtxrelease();
}

submtxparts submtxof(int idx) {
    const trinode& node = tri(sym(idx).index);
    return {-node.op, -node.left, -node.right};
}

void matrixhandler(int base, int symidx) {
    const int16_t* subscripts = parser.polstack + base + 1;
    const int count = parser.poltop - base;
    int result;
    if (istarget()) {
        checksubscripts(symidx, count);
        result = targetpart(symidx, subscripts, count);
    } else {
        result = element(symidx, subscripts, count);
    }
    parser.poltop = base;
    parser.polstack[base] = int16_t(result);
}

void submtxrelease() {
    for (int k = 0; k < symtab.nsubmtx; k++) {
        const int idx = symtab.submtx[k];
        symbol& s = sym(idx);
        if (s.type != SUBMTX) continue;
        trifree(s.index);
        symtabmarkdeleted(idx);
        s.type = EMPTY;
    }
    symtab.nsubmtx = 0;
}

namespace {

// Refusals of a subscript, by what is selected and how.
using refusal = void (*)(int matrix, double k);
furtherline toofar(int matrix, const char* what, double k) {
    return further("%s %.15g: %s", what, k, describe(matrix).c_str());
}
std::string matrixname(int matrix) { return istemporary(matrix) ? "of the expression" : nametext(matrix); }
long shown(double k) { return long(std::clamp(k, -2147483648.0, 2147483647.0)); }
void badrow(int matrix, double k) { tarnerror(toofar(matrix, "row", k), "illegal row index in submatrix"); }
void badcolumn(int matrix, double k) {
    tarnerror(toofar(matrix, "column", k), "illegal column index in submatrix");
}
void norow(int matrix, double k) {
    tarnerror(furtherline{describe(matrix)}, "matrix %s does not have row %ld", matrixname(matrix).c_str(),
              shown(k));
}
void nocol(int matrix, double k) {
    tarnerror(furtherline{describe(matrix)}, "matrix %s does not have col %ld", matrixname(matrix).c_str(),
              shown(k));
}
void nocolumn(int matrix, double k) {
    tarnerror(furtherline{describe(matrix)}, "matrix %s does not have column %ld", matrixname(matrix).c_str(),
              shown(k));
}

// The rows or columns that a subscript selects, from 0; all of them when there is none.
std::vector<uint32_t> chosen(int subscripts, uint32_t limit, refusal refuse, int matrix) {
    std::vector<uint32_t> list(subscripts ? harraycount(matrixof(subscripts)) : limit);
    for (size_t k = 0; k < list.size(); k++) {
        const double x = subscripts ? cells(matrixof(subscripts))[k + 1] : double(k + 1);
        if (!(x >= 1 && x < double(limit) + 1)) refuse(matrix, x);
        list[k] = uint32_t(x) - 1;
    }
    return list;
}

// A new matrix of the selected rows and columns; the parts, as far as they are temporaries, are released.
int selected(const submtxparts& part, refusal rowrefusal, refusal colrefusal) {
    const harray* m = matrixof(part.matrix);
    const auto rows = chosen(part.rows, m->rows, rowrefusal, part.matrix);
    const auto cols = chosen(part.cols, m->cols, colrefusal, part.matrix);
    harrayptr result(harrayraw(uint32_t(rows.size()), uint32_t(cols.size())));
    double* out = cells(result.get()) + 1;
    for (const uint32_t i : rows) {
        const double* in = cells(m) + 1 + size_t(i) * m->cols;
        if (part.cols)
            for (const uint32_t j : cols) *out++ = in[j];
        else if (m->cols > 0)
            out = static_cast<double*>(memcpy(out, in, m->cols * sizeof(double))) + m->cols;
    }
    tempfree(part.matrix);
    tempfree(part.rows);
    return symtabmatrix(part.cols, 0, std::move(result));
}

// Is the selection just read a target, or a part of a longer selection?
bool selectiontarget() {
    const int token = parser.token;
    return token == TOKUNDERSCORE || token == TOKROW || token == TOKCOL || opcommand() == TOKDELETE ||
           (token == TOKEQUAL && !parser.assigned && parser.oplevel == 0);
}

[[noreturn]] void nomatrix(int idx, bool byrow) {
    const furtherline more{describe(idx)};
    if (byrow) tarnerror(more, "submatrix references non-existent matrix");
    tarnerror(more, "%s is not a matrix", nametext(idx).c_str());
}

// The second part of a selection, such as the columns behind A ROW 1:2.
int completed(int submtx, int subscripts, bool byrow, bool target) {
    submtxparts part = submtxof(submtx);
    int& missing = byrow ? part.rows : part.cols;
    if (missing)
        tarnerror(further("%s has one ROW and one COL: select from a name, step by step",
                          nametext(part.matrix).c_str()),
                  "a too complicated ROW/COL expression");
    missing = subscripts;
    trinode& node = trimutable(sym(submtx).index);
    (byrow ? node.left : node.right) = int16_t(-subscripts);
    if (target) return submtx;
    if (sym(part.matrix).type != MATRIX) { nomatrix(part.matrix, byrow); }
    return byrow ? selected(part, badrow, badcolumn) : selected(part, norow, nocol);
}

int selection(int token, int operand, int index) {
    const bool byrow = token == TOKROW, target = selectiontarget();
    const int type = sym(operand).type;
    if (type != UNKNOWN && type != MATRIX && type != SUBMTX)
        tarnerror(furtherline{describe(operand)}, "can't apply %s to this type", byrow ? "ROW" : "COL");
    const int subscripts = subscriptmatrix(index);
    if (type == SUBMTX) return completed(operand, subscripts, byrow, target);
    if (target) return byrow ? newsubmtx(operand, subscripts, 0) : newsubmtx(operand, 0, subscripts);
    if (type == UNKNOWN) { nomatrix(operand, byrow); }
    return byrow ? selected({operand, subscripts, 0}, badrow, badcolumn)
                 : selected({operand, 0, subscripts}, norow, nocolumn);
}

void rowcolop(const processop& op) {
    if (!op.p2nd) tarnsyntax(statementform(op.token), 27, "missing arg for binary operator");
    replaceoperands(2, selection(op.token, op.p2nd, op.ptop));
}

// Which of `limit` rows or columns stay when those of the subscripts go; false when a subscript is none.
bool survivors(int subscripts, uint32_t limit, std::vector<uint32_t>& stay) {
    std::vector<bool> keep(limit, true);
    if (subscripts) {
        const harray* m = matrixof(subscripts);
        for (size_t k = 1; k <= harraycount(m); k++) {
            const double x = cells(m)[k];
            if (!(x >= 1 && x < double(limit) + 1)) return false;
            keep[size_t(x) - 1] = false;
        }
    }
    for (uint32_t k = 0; k < limit; k++)
        if (keep[k]) stay.push_back(k);
    return true;
}

void removeparts(const submtxparts& part) {
    symbol& s = sym(part.matrix);
    if (istemporary(part.matrix)) return tarnwarn("DELETE: deletion does not apply to expressions");
    if (s.type != MATRIX) return tarnwarn("DELETE: %s does not exist", nametext(part.matrix).c_str());
    harray* m = static_cast<harray*>(s.val.ptr);
    std::vector<uint32_t> rows, cols;
    if (!survivors(part.rows, m->rows, rows) || !survivors(part.cols, m->cols, cols))
        tarnerror(further("%s, and its rows and columns are counted from 1", describe(part.matrix).c_str()),
                  "DELETE: invalid submatrix index");
    if (symtabprotected(part.matrix)) return;
    if (cols.empty()) return symtabdelete(part.matrix);
    harrayptr rest(harrayraw(uint32_t(rows.size()), uint32_t(cols.size())));
    double* out = cells(rest.get()) + 1;
    for (const uint32_t i : rows)
        for (const uint32_t j : cols) *out++ = at(m, i + 1, j + 1);
    harrayfree(m);
    s.val.ptr = rest.release();
}

constexpr processrow rows[] = {{18, rowcolop}};

} // namespace

void submtxdelete(int idx) {
    const submtxparts part = submtxof(idx);
    removeparts(part);
    tempfree(part.matrix);
    tempfree(part.rows);
    tempfree(part.cols);
}

void submatrixrows() {
    processadd(rows, int(std::size(rows)));
    symtab.kind[SUBMTX].remove = submtxdelete;
    upper.subscript = matrixhandler;
    upper.newtoken = newtoken;
    upper.pushtoken = pushtoken;
}
