// Assignment to a part of a matrix: A(2,3) = X, A ROW 1:2 = B. The matrix grows, or is made, as the
// subscripts ask.
#include "interp/assign.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/submatrix.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <algorithm>

namespace {

// One side of a target: a subscript matrix, or all rows or columns when there is none.
struct extent {
    const harray* subscripts = nullptr;
    harrayptr copy;       // of subscripts that the assignment itself may change
    uint32_t largest = 0; // subscript

    uint32_t count(uint32_t all) const { return subscripts ? uint32_t(harraycount(subscripts)) : all; }
    uint32_t at(size_t k) const { return subscripts ? uint32_t(cells(subscripts)[k]) : uint32_t(k); }
};

extent extentof(int idx, int matrix, const char* refusal) {
    extent e;
    if (!idx) return e;
    e.subscripts = matrixof(idx);
    if (idx == matrix) {
        e.copy.reset(harraydup(e.subscripts));
        e.subscripts = e.copy.get();
    }
    double least = 1, most = 0;
    for (size_t k = 1; k <= harraycount(e.subscripts); k++) {
        least = std::min(least, cells(e.subscripts)[k]);
        most = std::max(most, cells(e.subscripts)[k]);
    }
    const std::string name = nametext(matrix);
    if (most > 2147483647.0)
        tarnerror(further("index %.15g of %s: 2147483647 is the limit", most, name.c_str()),
                  "ASSIGN: index too big");
    if (!(least >= 1))
        tarnerror(further("index %.15g of %s: rows and columns are counted from 1", least, name.c_str()),
                  "%s", refusal);
    e.largest = uint32_t(most);
    return e;
}

struct target {
    int matrix; // symbol
    extent rows, cols;
};

// Shape that the matrix must have.
struct neededshape {
    uint32_t rows, cols;
    bool grows;
};

neededshape needed(const target& t, uint32_t rows, uint32_t cols) {
    const neededshape n{std::max(rows, t.rows.largest), std::max(cols, t.cols.largest), false};
    return {n.rows, n.cols, n.rows > rows || n.cols > cols};
}

void tellexcess(const target& t, uint32_t rows, uint32_t cols, uint32_t rhsrows, uint32_t rhscols) {
    tarnwarn("note RHS matrix exceeds LHS matrix in size");
    tarnwarn("%u by %u elements of %s are assigned from a %u by %u matrix", t.rows.count(rows),
             t.cols.count(cols), nametext(t.matrix).c_str(), rhsrows, rhscols);
}

void checksize(const target& t, uint32_t rows, uint32_t cols, uint32_t rhsrows, uint32_t rhscols) {
    if (rhsrows > t.rows.count(rows) || rhscols > t.cols.count(cols))
        tellexcess(t, rows, cols, rhsrows, rhscols);
}

[[noreturn]] void notmatrix(int matrix, int rhs) {
    tarnerror(further("%s, and %s", describe(matrix).c_str(), describe(rhs).c_str()),
              "LHS type must be matrix or unknown in submatrix assign");
}

void putnumbers(harray* m, const target& t, const harray* rhs) {
    const uint32_t k = t.rows.count(m->rows), l = t.cols.count(m->cols);
    const bool single = harraycount(rhs) == 1;
    for (uint32_t i = 1; i <= k; i++) {
        double* row = cells(m) + 1 + size_t(t.rows.at(i) - 1) * m->cols;
        for (uint32_t j = 1; j <= l; j++)
            row[t.cols.at(j) - 1] = single ? cells(rhs)[1] : harrayelem(rhs, i, j);
    }
}

harrayptr grown(const harray* m, const neededshape& n) {
    harrayptr wide(harraynew(n.rows, n.cols));
    if (m)
        for (size_t i = 1; i <= m->rows; i++)
            std::copy_n(cells(m) + 1 + (i - 1) * m->cols, m->cols, cells(wide.get()) + 1 + (i - 1) * n.cols);
    return wide;
}

void assignnumbers(const target& t, int rhs) {
    symbol& s = sym(t.matrix);
    if (s.type != MATRIX && s.type != UNKNOWN) notmatrix(t.matrix, rhs);
    int temp;
    const harray* value = matrixval(rhs, temp);
    harrayptr copy; // what is read must not change under the hand
    harray* old = s.type == MATRIX ? static_cast<harray*>(s.val.ptr) : nullptr;
    neededshape n = old ? needed(t, old->rows, old->cols)
                        : neededshape{t.rows.subscripts ? t.rows.largest : value->rows,
                                      t.cols.subscripts ? t.cols.largest : value->cols, true};
    if (!n.grows && value == old) value = (copy.reset(harraydup(old)), copy.get());
    checksize(t, n.rows, n.cols, value->rows, value->cols);
    if (n.grows) {
        harrayptr wide = grown(old, n);
        putnumbers(wide.get(), t, value);
        s.type = MATRIX;
        s.val.ptr = wide.release();
        harrayfree(old);
    } else {
        putnumbers(old, t, value);
    }
    tempfree(temp);
}

void putstrings(StringArray* a, const target& t, const StringArray* rhs) {
    const uint32_t k = t.rows.count(a->rows), l = t.cols.count(a->cols);
    for (uint32_t i = 1; i <= k; i++)
        for (uint32_t j = 1; j <= l; j++) {
            const bool empty = stringcount(rhs) == 0;
            const char* text =
                empty ? "" : stringcells(rhs)[size_t((i - 1) % rhs->rows) * rhs->cols + (j - 1) % rhs->cols];
            if (!StringArrayStrPut(a, long(t.rows.at(i)), long(t.cols.at(j)), text))
                tarnerror(nomemory(), "StringArrayStrPut failed in assignop().");
        }
}

void assignstrings(const target& t, int rhs) {
    symbol& s = sym(t.matrix);
    if (s.type != STRINGMATRIX && s.type != UNKNOWN) notmatrix(t.matrix, rhs);
    int temp;
    const StringArray* value = GetStringMatrix(rhs, temp);
    stringarrayptr copy;
    if (s.type == STRINGMATRIX && value == s.val.ptr)
        value = (copy.reset(StringArrayCopy(value)), copy.get());
    if (!value) tarnerror(nomemory(), "StringArrayStrGet failed in assignop().");
    if (s.type == UNKNOWN) {
        StringArray* fresh = StringArrayAlloc(t.rows.subscripts ? t.rows.largest : value->rows,
                                              t.cols.subscripts ? t.cols.largest : value->cols);
        if (!fresh) tarnerror(nomemory(), "StringArrayAlloc failed in assignop()");
        s.type = STRINGMATRIX;
        s.val.ptr = fresh;
    }
    StringArray* a = static_cast<StringArray*>(s.val.ptr);
    const neededshape n = needed(t, a->rows, a->cols);
    checksize(t, n.rows, n.cols, value->rows, value->cols);
    if (n.grows) {
        a = StringArrayExpand(a, n.rows, n.cols);
        if (!a) tarnerror(nomemory(), "StringArrayExpand failed in assignop()");
        s.val.ptr = a;
    }
    putstrings(a, t, value);
    tempfree(temp);
}

} // namespace

void assignpart(int rhs, int lhs) {
    const submtxparts part = submtxof(lhs);
    if (istemporary(part.matrix))
        tarnsyntax(further("parts of a named matrix can be assigned to, and here stands an expression"), 43,
                   "illegal assignment LHS");
    {
        const target t{part.matrix, extentof(part.rows, part.matrix, "invalid submatrix row index"),
                       extentof(part.cols, part.matrix, "invalid submatrix column index")};
        if (isstringtype(rhs) || sym(rhs).type == STRINGMATRIX)
            assignstrings(t, rhs);
        else
            assignnumbers(t, rhs);
    }
    tempfree(rhs);
    tempfree(part.rows);
    tempfree(part.cols);
}
