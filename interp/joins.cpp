#include "interp/joins.h"

#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <algorithm>
#include <cstring>

namespace {

uint32_t summed(uint32_t a, uint32_t b) {
    if (a > UINT32_MAX - b)
        tarnerror(further("%u and %u rows or columns are joined", a, b),
                  "Too many elements requested in 'xalloc()'");
    return a + b;
}

// The block of `to` from (row, col), both from 0, takes h by w elements of m, which repeats beyond its shape.
void place(harray* to, size_t row, size_t col, const harray* m, uint32_t h, uint32_t w) {
    for (uint32_t i = 0; i < h; i++) {
        double* out = cells(to) + 1 + (row + i) * to->cols + col;
        if (harraycount(m) == 0) {
            std::fill_n(out, w, 0.0);
        } else {
            const double* in = cells(m) + 1 + size_t(i % m->rows) * m->cols;
            if (w == m->cols)
                memcpy(out, in, w * sizeof(double));
            else
                for (uint32_t j = 0; j < w; j++) out[j] = in[j % m->cols];
        }
    }
}

void place(StringArray* to, size_t row, size_t col, const StringArray* m, uint32_t h, uint32_t w) {
    if (stringcount(m) == 0) return;
    for (uint32_t i = 0; i < h; i++)
        for (uint32_t j = 0; j < w; j++) {
            const char* text = stringcells(m)[size_t(i % m->rows) * m->cols + j % m->cols];
            if (!StringArrayStrPut(to, long(row + i + 1), long(col + j + 1), text))
                tarnerror(nomemory(), "StringArrayStrPut failed in a join.");
        }
}

// Shape of the joined matrix, and where b begins.
struct jointshape {
    uint32_t rows, cols, heighta, widtha, heightb, widthb;
    size_t rowb, colb;
};

template <class M> jointshape below(const M* a, const M* b) {
    const uint32_t w = std::max(a->cols, b->cols);
    return {summed(a->rows, b->rows), w, a->rows, w, b->rows, w, a->rows, 0};
}

template <class M> jointshape beside(const M* a, const M* b) {
    const uint32_t h = std::max(a->rows, b->rows);
    return {h, summed(a->cols, b->cols), h, a->cols, h, b->cols, 0, a->cols};
}

template <class M> void placeboth(M* to, const M* a, const M* b, const jointshape& s) {
    place(to, 0, 0, a, s.heighta, s.widtha);
    place(to, s.rowb, s.colb, b, s.heightb, s.widthb);
}

int joinnumbers(int a, int b, jointshape (*shape)(const harray*, const harray*)) {
    int tempa, tempb;
    const harray *ma = matrixval(a, tempa), *mb = matrixval(b, tempb);
    const jointshape s = shape(ma, mb);
    harrayptr m(harrayraw(s.rows, s.cols));
    placeboth(m.get(), ma, mb, s);
    tempfree(tempa);
    tempfree(tempb);
    return symtabmatrix(a, b, std::move(m));
}

int joinstrings(int a, int b, jointshape (*shape)(const StringArray*, const StringArray*)) {
    int tempa, tempb;
    const StringArray *ma = GetStringMatrix(a, tempa), *mb = GetStringMatrix(b, tempb);
    const jointshape s = shape(ma, mb);
    stringarrayptr m(StringArrayAlloc(s.rows, s.cols));
    if (!m) tarnerror(nomemory(), "StringArrayAlloc failed in a join.");
    placeboth(m.get(), ma, mb, s);
    tempfree(tempa);
    tempfree(tempb);
    return symtabstringmatrix(a, b, std::move(m));
}

bool istext(int idx) { return sym(idx).type == STRINGMATRIX || isstringtype(idx); }

// Columns of a tile that stays in the cache while rows are written from it.
constexpr uint32_t TILE = 32;

harrayptr transposed(const harray* a) {
    harrayptr t(harrayraw(a->cols, a->rows));
    const size_t rows = a->rows, cols = a->cols;
    const double* in = cells(a) + 1;
    double* out = cells(t.get()) + 1;
    for (size_t i0 = 0; i0 < rows; i0 += TILE)
        for (size_t j0 = 0; j0 < cols; j0 += TILE)
            for (size_t j = j0; j < std::min(cols, j0 + TILE); j++)
                for (size_t i = i0; i < std::min(rows, i0 + TILE); i++) out[j * rows + i] = in[i * cols + j];
    return t;
}

int transposedstrings(int idx) {
    const StringArray* a = static_cast<const StringArray*>(sym(idx).val.ptr);
    stringarrayptr t(StringArrayAlloc(a->cols, a->rows));
    if (!t) tarnerror(nomemory(), "StringArrayAlloc failed in a transpose.");
    for (long i = 1; i <= long(a->rows); i++)
        for (long j = 1; j <= long(a->cols); j++)
            if (!StringArrayStrPut(t.get(), j, i, StringArrayStrPtr(a, i, j)))
                tarnerror(nomemory(), "StringArrayStrPut failed in a transpose.");
    return symtabstringmatrix(idx, 0, std::move(t));
}

} // namespace

int joinbelow(int a, int b) {
    return istext(a) && istext(b) ? joinstrings(a, b, below<StringArray>) : joinnumbers(a, b, below<harray>);
}

int joinbeside(int a, int b) {
    return istext(a) && istext(b) ? joinstrings(a, b, beside<StringArray>)
                                  : joinnumbers(a, b, beside<harray>);
}

int transposeof(int a) {
    if (sym(a).type == STRINGMATRIX) return transposedstrings(a);
    int temp;
    harray* m = matrixval(a, temp);
    if (m->rows <= 1 || m->cols <= 1) { // the elements stand in the same order
        const int owner = temp ? temp : istemporary(a) ? a : 0;
        harrayptr copy(owner ? nullptr : harraydup(m));
        harray* t = owner ? m : copy.get();
        std::swap(t->rows, t->cols);
        if (temp) tempfree(a);
        return owner ? owner : symtabmatrix(0, 0, std::move(copy));
    }
    return symtabmatrix(a, 0, transposed(m));
}
