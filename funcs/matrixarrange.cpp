/* Builtins that pick and order the rows and diagonals of a matrix. */
#include "funcs/builtin.h"
#include "funcs/matrixoperand.h"
#include "funcs/rows.h"
#include "funcs/scratch.h"
#include "interp/base/machine.h"
#include "interp/base/report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iterator>
#include <numeric>
#include <vector>

namespace {

struct sortkey {
    uint64_t bits; // order-preserving image of the number
    uint32_t row;
};
constexpr int DIGIT = 11, LOWEST = 64 - 3 * DIGIT; // three digits from the top; the rest settles ties

uint64_t orderedbits(double x) {
    uint64_t bits;
    x += 0.0; // -0 is 0
    memcpy(&bits, &x, sizeof bits);
    return bits ^ (uint64_t(int64_t(bits) >> 63) | uint64_t(1) << 63);
}

void radixpass(scratch<sortkey>& from, scratch<sortkey>& to, int shift,
               const std::array<uint32_t, 1 << DIGIT>& count) {
    std::array<uint32_t, 1 << DIGIT> next;
    uint32_t sum = 0;
    for (size_t d = 0; d < next.size(); d++) {
        next[d] = sum;
        sum += count[d];
    }
    for (const sortkey& k : from) to[next[k.bits >> shift & ((1 << DIGIT) - 1)]++] = k;
}

/* Row numbers (from 0) in ascending order of a column, equal numbers in their order: least digit first over
 * the upper 33 bits, then runs that agree in them by comparison. */
scratch<sortkey> sortedrows(const double* column, size_t n, size_t stride) {
    scratch<sortkey> keys(n);
    std::vector<std::array<uint32_t, 1 << DIGIT>> count(3);
    for (auto& c : count) c.fill(0);
    for (size_t i = 0; i < n; i++) {
        const uint64_t b = orderedbits(column[i * stride]);
        keys[i] = {b, uint32_t(i)};
        for (int d = 0; d < 3; d++) count[size_t(d)][b >> (LOWEST + d * DIGIT) & ((1 << DIGIT) - 1)]++;
    }
    scratch<sortkey> other(n);
    for (int d = 0; d < 3; d++) {
        const auto& c = count[size_t(d)];
        if (n == 0 || c[keys[0].bits >> (LOWEST + d * DIGIT) & ((1 << DIGIT) - 1)] == n) continue;
        radixpass(keys, other, LOWEST + d * DIGIT, c);
        keys.swap(other);
    }
    const auto before = [](const sortkey& a, const sortkey& b) { return a.bits < b.bits; };
    for (size_t i = 0, k; i < n; i = k) {
        for (k = i + 1; k < n && keys[k].bits >> LOWEST == keys[i].bits >> LOWEST;) k++;
        sortkey *const first = keys.data() + i, *const last = keys.data() + k;
        if (k - i > 1 && !std::is_sorted(first, last, before)) std::stable_sort(first, last, before);
    }
    return keys;
}

int withrows(const matrixoperand& m, const std::vector<uint32_t>& rows) {
    harrayptr result(harrayraw(uint32_t(rows.size()), m.m->cols));
    const size_t width = m.cols();
    double* to = cells(result.get()) + 1;
    for (const uint32_t r : rows) to = std::copy_n(m.cell() + 1 + r * width, width, to);
    return symtabmatrix(0, 0, std::move(result));
}

// The number of a column (1) from argument k; an error with those words if m has no such column.
size_t columnargument(const callargs& a, int k, const matrixoperand& m, const char* words) {
    const double c = std::trunc(a.scalar(k, 1));
    if (c >= 1 && c <= double(m.cols())) return size_t(c);
    tarnerror("%s %hd out of range", words, short(std::clamp(c, -32768.0, 32767.0)));
}

// SORT(M, k): the rows in ascending order of column k (1).
int sortmatrix(const callargs& a) {
    const matrixoperand m(a[1]);
    const size_t k = columnargument(a, 2, m, "SORT: sorting column:"), width = m.cols();
    scratch<sortkey> keys = sortedrows(m.cell() + k, m.rows(), width);
    harrayptr result(harrayraw(m.m->rows, m.m->cols));
    double* to = cells(result.get()) + 1;
    const double* from = m.cell() + 1;
    if (width == 2)
        for (const sortkey& s : keys) {
            to[0] = from[size_t(s.row) * 2];
            to[1] = from[size_t(s.row) * 2 + 1];
            to += 2;
        }
    else
        for (const sortkey& s : keys) to = std::copy_n(from + s.row * width, width, to);
    return symtabmatrix(0, 0, std::move(result));
}

// COMPRESS(M, k): without the rows that hold 0 in column k (1).
int compress(const callargs& a) {
    const matrixoperand m(a[1]);
    const size_t k = columnargument(a, 2, m, "COMPRESS: column number");
    std::vector<uint32_t> rows;
    for (size_t i = 0; i < m.rows(); i++)
        if (m.cell()[i * m.cols() + k] != 0) rows.push_back(uint32_t(i));
    return withrows(m, rows);
}

// RDUP(M, k): of rows that agree in column k (in all columns, without k) the first alone, in their order.
int rdup(const callargs& a) {
    const matrixoperand m(a[1]);
    const size_t from = a[2] ? columnargument(a, 2, m, "RDUP: column number") : 1,
                 width = a[2] ? 1 : m.cols();
    std::vector<uint32_t> order(m.rows()), kept;
    std::iota(order.begin(), order.end(), 0u);
    const auto row = [&](uint32_t i) { return m.cell() + from + i * m.cols(); };
    std::stable_sort(order.begin(), order.end(), [&](uint32_t i, uint32_t j) {
        return std::lexicographical_compare(row(i), row(i) + width, row(j), row(j) + width);
    });
    for (size_t k = 0; k < order.size(); k++)
        if (k == 0 || !std::equal(row(order[k]), row(order[k]) + width, row(order[k - 1])))
            kept.push_back(order[k]);
    std::sort(kept.begin(), kept.end());
    return withrows(m, kept);
}

// GETDIAG(M, k): diagonal k as a column; 0 the main one, positive above it.
int getdiag(const callargs& a) {
    const matrixoperand m(a[1]);
    const double k = std::trunc(a.scalar(2));
    if (!(k > -double(m.rows()) && k < double(m.cols())))
        tarnerror("GETDIAG: illegal diagonal index specified");
    const size_t i0 = k < 0 ? size_t(-k) : 0, j0 = k > 0 ? size_t(k) : 0;
    const size_t n = std::min(m.rows() - i0, m.cols() - j0);
    harrayptr result(harrayraw(uint32_t(n), 1));
    for (size_t i = 1; i <= n; i++) cells(result.get())[i] = at(m.m, i0 + i, j0 + i);
    return symtabmatrix(0, 0, std::move(result));
}

// BAND(M, k): M with 0 beyond the k diagonals on each side of the main one.
int band(const callargs& a) {
    const matrixoperand m(a[1]);
    const double k = std::trunc(a.scalar(2));
    if (!(k >= 0 && k < double(std::max(m.rows(), m.cols()))))
        tarnerror("BAND: illegal diagonal index specified");
    harrayptr result(harraynew(m.m->rows, m.m->cols));
    const size_t width = size_t(k);
    for (size_t i = 1; i <= m.rows(); i++)
        for (size_t j = i > width ? i - width : 1; j <= std::min(m.cols(), i + width); j++)
            at(result.get(), i, j) = at(m.m, i, j);
    return symtabmatrix(0, 0, std::move(result));
}

/* LINLOG(C), LOGLIN(C), LOGLOG(C): a curve for axes with decades: the base-10 logarithm of the ordinates (all
 * columns but the first), of the abscissas, of both. Rows that delimit (MAXPOS first) stay. */
int decades(const callargs& a, bool x, bool y) {
    const matrixoperand m(a[1]);
    if (m.cols() < 2) argshape(a.name());
    harrayptr result(harraydup(m.m));
    for (size_t i = 1; i <= m.rows(); i++) {
        if (at(m.m, i, 1) == MAXPOS) continue;
        for (size_t j = 1; j <= m.cols(); j++)
            if (j == 1 ? x : y)
                at(result.get(), i, j) = scalarbuiltin(-3, &cells(m.m)[(i - 1) * m.cols() + j], 1);
    }
    return symtabmatrix(0, 0, std::move(result));
}
int linlog(const callargs& a) { return decades(a, false, true); }
int loglin(const callargs& a) { return decades(a, true, false); }
int loglog(const callargs& a) { return decades(a, true, true); }

constexpr valuerow values[] = {{-614, sortmatrix}, {-617, getdiag}, {-622, band},   {-623, compress},
                               {-627, rdup},       {-694, linlog},  {-693, loglin}, {-692, loglog}};

} // namespace

void matrixarrangerows() { builtinadd(values, int(std::size(values))); }
