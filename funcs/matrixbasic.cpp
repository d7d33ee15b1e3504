/* Builtins that look at a matrix or lay it out anew: shape, extremes and their places, sums, tables,
 * reshaping. */
#include "funcs/builtin.h"
#include "funcs/matrixoperand.h"
#include "funcs/operators.h"
#include "funcs/rows.h"
#include "interp/base/fpfault.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "values/stringarray.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

struct shape {
    uint32_t rows, cols;
};

shape shapeof(int entry) {
    if (entry > 0 && sym(entry).type == STRINGMATRIX) {
        const auto* s = static_cast<const StringArray*>(sym(entry).val.ptr);
        return {s->rows, s->cols};
    }
    const matrixoperand m(entry);
    return {m.m->rows, m.m->cols};
}
double nrows(const callargs& a) { return shapeof(a[1]).rows; }
double ncols(const callargs& a) { return shapeof(a[1]).cols; }
double nelems(const callargs& a) {
    const shape s = shapeof(a[1]);
    return double(s.rows) * s.cols;
}

// The first place of the largest cell (direction 1) or the smallest (-1), 0 in an empty matrix.
size_t extremeplace(const matrixoperand& m, int direction) {
    size_t best = 0;
    double value = direction * MAXNEG;
    for (size_t k = m.count(); k >= 1; k--)
        if (direction * m.cell()[k] >= direction * value) value = m.cell()[best = k];
    return best;
}
double extreme(const callargs& a, int direction) {
    const matrixoperand m(a[1]);
    const size_t k = extremeplace(m, direction);
    return k ? m.cell()[k] : direction * MAXNEG;
}
double extremerow(const callargs& a, int direction) {
    const matrixoperand m(a[1]);
    const size_t k = extremeplace(m, direction);
    return k ? double((k - 1) / m.cols() + 1) : 0;
}
double extremecol(const callargs& a, int direction) {
    const matrixoperand m(a[1]);
    const size_t k = extremeplace(m, direction);
    return k ? double((k - 1) % m.cols() + 1) : 0;
}
double maxv(const callargs& a) { return extreme(a, 1); }
double minv(const callargs& a) { return extreme(a, -1); }
double maxrow(const callargs& a) { return extremerow(a, 1); }
double maxcol(const callargs& a) { return extremecol(a, 1); }
double minrow(const callargs& a) { return extremerow(a, -1); }
double mincol(const callargs& a) { return extremecol(a, -1); }

double sumv(const callargs& a) {
    const matrixoperand m(a[1]);
    double sum = 0;
    for (size_t k = 1; k <= m.count(); k++) sum = fpcheck(sum + m.cell()[k]);
    return sum;
}
double prodv(const callargs& a) {
    const matrixoperand m(a[1]);
    double product = 1;
    for (size_t k = 1; k <= m.count(); k++) product = fpcheck(product * m.cell()[k]);
    return product;
}
double trace(const callargs& a) {
    const matrixoperand m(a[1]);
    if (m.rows() != m.cols()) argshape(a.name());
    double sum = 0;
    for (size_t i = 1; i <= m.rows(); i++) sum = fpcheck(sum + at(m.m, i, i));
    return sum;
}
double equal(const callargs& a) {
    const matrixoperand x(a[1]), y(a[2]);
    if (x.rows() != y.rows() || x.cols() != y.cols()) return 0;
    return std::equal(x.cell() + 1, x.cell() + 1 + x.count(), y.cell() + 1);
}

// STRLEN(S, i, j): of a string, or of cell (i, j) of a string matrix, (1, 1) when not given.
double strlenof(const callargs& a) {
    if (sym(a[1]).type != STRINGMATRIX) return double(strlen(stringval(a[1])));
    const double i = a.scalar(2, 1), j = a.scalar(3, 1);
    const auto* s = static_cast<const StringArray*>(sym(a[1]).val.ptr);
    if (!(i >= 1 && i < s->rows + 1.0 && j >= 1 && j < s->cols + 1.0)) argrange(a.name());
    return double(StringArrayStrLen(s, long(i), long(j)));
}

double typeofsymbol(const callargs& a) { return a[1] < 0 ? int(SCALAR) : sym(a[1]).type; }

/* A table of two columns, abscissas ascending (or descending), and a number; either may come first. */
struct tablelookup {
    double x;
    const harray* table;
    bool ascending;

    explicit tablelookup(const callargs& a) {
        const int k = a[1] > 0 && ismatrix(a[1]) ? 1 : 2;
        if (a[k] <= 0 || !ismatrix(a[k])) argtype(a.name());
        table = matrixof(a[k]);
        if (table->rows < 1 || table->cols < 2) argshape(a.name());
        x = a.scalar(3 - k);
        ascending = at(table, 1, 1) <= at(table, table->rows, 1);
    }
    bool reached(size_t i) const { return ascending ? at(table, i, 1) <= x : at(table, i, 1) >= x; }
    // The last row whose abscissa x has reached; 0 before the first.
    size_t interval() const {
        size_t low = 0, high = table->rows + size_t(1);
        while (high - low > 1) {
            const size_t middle = low + (high - low) / 2;
            (reached(middle) ? low : high) = middle;
        }
        return low;
    }
    double slope(size_t i) const { // from row i to the next
        return fpdiv(at(table, i + 1, 2) - at(table, i, 2), at(table, i + 1, 1) - at(table, i, 1));
    }
};

// Straight lines between the points, and the end values beyond them.
double lookup(const callargs& a) {
    const tablelookup t(a);
    const size_t i = t.interval();
    if (i == 0) return at(t.table, 1, 2);
    const double x0 = at(t.table, i, 1), y0 = at(t.table, i, 2);
    if (i == t.table->rows || t.x == x0) return y0;
    return fpcheck(y0 + t.slope(i) * (t.x - x0));
}
// The slope of LOOKUP: at a point of the table that of the line behind it, beyond the table 0.
double lookupslope(const callargs& a) {
    const tablelookup t(a);
    const size_t i = t.interval(), last = t.table->rows;
    if (i == 0 || last == 1) return 0;
    if (i < last) return t.slope(i);
    return t.x == at(t.table, last, 1) ? t.slope(last - 1) : 0;
}

uint32_t dimension(const callargs& a, int k) {
    const double n = std::trunc(a.scalar(k));
    if (n < 0) argrange(a.name());
    if (n > 0x3FFFFFFF) tarnerror("Too many elements requested in 'xalloc()'");
    return uint32_t(n);
}

// SHAPE(rows, columns, M): the cells of M in reading order, again from the first when they run out.
int reshape(const callargs& a) {
    const uint32_t rows = dimension(a, 1), cols = dimension(a, 2);
    const matrixoperand m(a[3]);
    harrayptr result(m.count() ? harrayraw(rows, cols) : harraynew(rows, cols));
    double* to = cells(result.get()) + 1;
    for (size_t left = m.count() ? harraycount(result.get()) : 0; left > 0;) {
        const size_t n = std::min(left, m.count());
        to = std::copy_n(m.cell() + 1, n, to);
        left -= n;
    }
    return symtabmatrix(0, 0, std::move(result));
}

// DIAG(M): of one row or column the square matrix with it on the diagonal; of another matrix its diagonal as
// a column.
int diag(const callargs& a) {
    const matrixoperand m(a[1]);
    const bool line = m.rows() == 1 || m.cols() == 1;
    const uint32_t n = uint32_t(line ? m.count() : std::min(m.rows(), m.cols()));
    harrayptr result(line ? harraynew(n, n) : harrayraw(n, 1));
    for (size_t i = 1; i <= n; i++) {
        if (line)
            at(result.get(), i, i) = m.cell()[i];
        else
            cells(result.get())[i] = at(m.m, i, i);
    }
    return symtabmatrix(0, 0, std::move(result));
}

// CUMSUM(M): running sums down each column.
int cumsum(const callargs& a) {
    const matrixoperand m(a[1]);
    harrayptr result(harraydup(m.m));
    double* cell = cells(result.get());
    for (size_t k = m.cols() + 1; k <= m.count(); k++) cell[k] = fpcheck(cell[k] + cell[k - m.cols()]);
    return symtabmatrix(0, 0, std::move(result));
}

// Rows of three that pair up, each pair giving its cross product; two vectors of three give a column.
harrayptr crossproduct(const harray* a, const harray* b) {
    const bool vectors = harraycount(a) == 3 && harraycount(b) == 3;
    if (!vectors && (a->cols != 3 || b->cols != 3)) argshape("# operator");
    const uint32_t n = vectors ? 1 : std::max(a->rows, b->rows);
    harrayptr result(vectors ? harrayraw(3, 1) : harrayraw(n, 3));
    double* to = cells(result.get()) + 1;
    const auto term = [](const double* x, const double* y, int i, int j) {
        return fpcheck(fpcheck(x[i] * y[j]) - fpcheck(x[j] * y[i]));
    };
    if (a->rows == 0 || b->rows == 0) harrayzero(result.get()); // an empty matrix reads as 0
    for (uint32_t i = 0; i < n && a->rows != 0 && b->rows != 0; i++, to += 3) {
        const double* x = cells(a) + (vectors ? 0 : i % a->rows * size_t(3));
        const double* y = cells(b) + (vectors ? 0 : i % b->rows * size_t(3));
        to[0] = term(x, y, 2, 3);
        to[1] = term(x, y, 3, 1);
        to[2] = term(x, y, 1, 2);
    }
    return result;
}
int cross(const callargs& a) {
    return symtabmatrix(0, 0, crossproduct(matrixoperand(a[1]).m, matrixoperand(a[2]).m));
}

// KRON(A, B): the Kronecker product, a block B times each element of A in its place.
int kron(const callargs& a) {
    const matrixoperand x(a[1]), y(a[2]);
    const double rows = double(x.rows()) * double(y.rows()), cols = double(x.cols()) * double(y.cols());
    if (rows > UINT32_MAX || cols > UINT32_MAX) tarnerror("Too many elements requested in 'xalloc()'");
    harrayptr result(harrayraw(uint32_t(rows), uint32_t(cols)));
    double* to = cells(result.get()) + 1;
    for (size_t i = 1; i <= x.rows(); i++)
        for (size_t k = 1; k <= y.rows(); k++)
            for (size_t j = 1; j <= x.cols(); j++)
                for (size_t l = 1; l <= y.cols(); l++) *to++ = fpcheck(at(x.m, i, j) * at(y.m, k, l));
    return symtabmatrix(0, 0, std::move(result));
}

// MAX and MIN with a matrix among the arguments: over all cells of all arguments.
int extremeofall(const callargs& a, int direction) {
    double best = direction * MAXNEG;
    for (int k = 1; k <= a.n; k++) {
        const matrixoperand m(a[k]);
        const size_t place = extremeplace(m, direction);
        if (place && direction * m.cell()[place] > direction * best) best = m.cell()[place];
    }
    return symtabtempscalar(0, 0, best);
}
int maxofall(const callargs& a) { return extremeofall(a, 1); }
int minofall(const callargs& a) { return extremeofall(a, -1); }

constexpr numberrow numbers[] = {
    {-401, nrows},        {-402, ncols},    {-428, nelems}, {-406, maxv},   {-405, minv},
    {-407, maxrow},       {-408, maxcol},   {-409, minrow}, {-410, mincol}, {-444, sumv},
    {-445, prodv},        {-426, trace},    {-404, equal},  {-400, lookup}, {-427, lookupslope},
    {-505, typeofsymbol}, {-434, strlenof},
};
constexpr valuerow values[] = {{-606, reshape}, {-626, diag},     {-628, cumsum},  {-611, cross},
                               {-673, kron},    {-205, maxofall}, {-206, minofall}};

} // namespace

void hashop(int a, int b) {
    if (!ismatrix(a) || !ismatrix(b)) tarnerror("must have MATRIX arguments in # operator");
    polpush(symtabmatrix(a, b, crossproduct(matrixoperand(a).m, matrixoperand(b).m)));
}

void matrixbasicrows() {
    builtinadd(numbers, int(std::size(numbers)));
    builtinadd(values, int(std::size(values)));
}
