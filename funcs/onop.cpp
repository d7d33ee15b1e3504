#include "funcs/builtin.h"
#include "funcs/calls.h"
#include "funcs/deriv.h"
#include "funcs/flatcode.h"
#include "funcs/matrixoperand.h"
#include "funcs/rows.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/fpfault.h"
#include "interp/base/report.h"
#include "values/harray.h"

#include <algorithm>
#include <iterator>

onophooks onopfns = {[](const int*, int, const harray*, int, harray*, int) { return false; }};

namespace {

constexpr int MOSTFUNCTIONS = 200, LASTSCALAR = -399, UNCHECKED = -100;

struct functionlist {
    int at[MOSTFUNCTIONS];
    int count;
};

int functionoperand(int entry) {
    if (entry <= 0) tarnerror("trying to evaluate illegal function\n");
    if (sym(entry).type == UNKNOWN && sym(entry).name[0] == '.') derivfind(entry, false);
    const int type = sym(entry).type;
    const bool builtin = type < 0 && type >= LASTSCALAR;
    if (type != USERFUNCTION && type != INITIALVALUE && !builtin)
        tarnerror("trying to evaluate illegal function\n");
    return entry;
}

int mostarguments(int f) {
    if (sym(f).type > 0) return formalcount(f);
    return sym(f).val.argd[0] == UNCHECKED ? 7 : sym(f).val.argd[0];
}

/* Column y of the values of f at `rows` points of `cols` numbers each. */
void overrows(int f, const double* x, size_t rows, size_t cols, double* y, size_t ystride) {
    if (size_t(mostarguments(f)) < cols)
        tarnerror("non-scalar result or incorrect # of arguments for function %s", sym(f).name);
    if (sym(f).type == USERFUNCTION && size_t(formalcount(f)) == cols)
        return flatrows(f, rows, cols, x, y, ystride);
    const scalarrow* row = sym(f).type < 0 ? scalarbuiltinrow(sym(f).type) : nullptr;
    if (row && row->arity == 1 && cols == 1 && !(row->flags & COUNTED)) {
        for (size_t i = 0; i < rows; i++) y[i * ystride] = fpcheck(spchecked(row->f1(x[i]), row->code));
        return;
    }
    const int code = sym(f).type; // the first call checks the arguments of a builtin
    for (size_t i = 0; i < rows; i++)
        y[i * ystride] =
            row && i ? scalarbuiltin(code, x + i * cols, int(cols)) : callvalue(f, x + i * cols, int(cols));
}

void copypoints(const harray* points, harray* result) {
    const double* from = cells(points) + 1;
    for (size_t i = 1; i <= points->rows; i++, from += points->cols)
        for (size_t j = 0; j < points->cols; j++) (&at(result, i, 1))[j] = from[j];
}

// Columns firstcol.. of result, a column for each function.
void fillcolumns(const functionlist& f, const harray* points, int mode, harray* result, int firstcol) {
    if (harraycount(result) == 0) return;
    if (onopfns.solutions(f.at, f.count, points, mode, result, firstcol)) return;
    for (int k = 0; k < f.count; k++) {
        if (sym(f.at[k]).type == INITIALVALUE) tarnerror("trying to evaluate illegal function\n");
        overrows(f.at[k], cells(points) + 1, points->rows, points->cols, &at(result, 1, size_t(firstcol + k)),
                 result->cols);
    }
}

int points(const callargs& a) { return onop(a.n, ONPOINTS); }

// APPLY(F, M): the function at each cell.
int apply(const callargs& a) {
    const int f = functionoperand(a[1]);
    const matrixoperand m(a[2]);
    harrayptr result(harrayraw(m.m->rows, m.m->cols));
    overrows(f, m.cell() + 1, m.count(), 1, cells(result.get()) + 1, 1);
    return symtabmatrix(0, 0, std::move(result));
}

constexpr valuerow rows[] = {{-613, points}, {-666, apply}};

} // namespace

void callrows() { builtinadd(rows, int(std::size(rows))); }

int onop(int n, int mode) {
    functionlist f;
    f.count = n - 1;
    if (f.count > MOSTFUNCTIONS) tarnerror("onop: too many functions");
    if (f.count < 1) tarnerror("POINTS: not enough arguments");
    const int base = parser.poltop - n + 1;
    for (int k = 0; k < f.count; k++) f.at[k] = functionoperand(parser.polstack[base + k]);
    const matrixoperand m(parser.polstack[parser.poltop]);
    const uint32_t before = mode == ONPOINTS ? m.m->cols : 0;
    harrayptr result(harrayraw(m.m->rows, before + uint32_t(f.count)));
    if (mode == ONPOINTS) copypoints(m.m, result.get());
    fillcolumns(f, m.m, mode, result.get(), int(before) + 1);
    if (mode == ONSCALAR) {
        scalarpush(cells(result.get())[1]);
        return 0;
    }
    if (mode != ONVALUES) return symtabmatrix(0, 0, std::move(result));
    const int column = symtabmatrix(parser.polstack[parser.poltop], 0, std::move(result));
    parser.poltop = base;
    parser.polstack[base] = int16_t(column);
    return 0;
}
