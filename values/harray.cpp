#include "values/harray.h"

#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/saveblock.h"
#include "values/stringarray.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

/* Freed blocks of large matrices, kept for the next matrix of the same size: a chain of operators on large
 * matrices then works in memory that is mapped and warm. */
struct blockcache {
    static constexpr size_t smallest = 64 * 1024, limit = size_t(256) << 20;
    static constexpr int room = 16;
    void* block[room] = {};
    size_t bytes[room] = {};
    size_t total = 0;
    int count = 0;

    void* take(size_t size) {
        for (int k = count - 1; k >= 0; k--) {
            if (bytes[k] != size) continue;
            void* found = block[k];
            remove(k);
            return found;
        }
        return nullptr;
    }
    bool keep(void* p, size_t size) {
        if (size > limit) return false;
        while (count == room || total + size > limit) {
            std::free(block[0]);
            remove(0);
        }
        block[count] = p;
        bytes[count++] = size;
        total += size;
        return true;
    }
    void remove(int k) {
        total -= bytes[k];
        count--;
        memmove(block + k, block + k + 1, sizeof block[0] * size_t(count - k));
        memmove(bytes + k, bytes + k + 1, sizeof bytes[0] * size_t(count - k));
    }
    ~blockcache() {
        while (count) std::free(block[--count]);
    }
};
blockcache cache;

constexpr long MAXELEMENTS = 0x3FFFFFFF;
constexpr size_t LARGEBLOCK = size_t(4) << 20; // bytes; smaller ones don't fill a large page

size_t blockbytes(uint32_t rows, uint32_t cols) { return (size_t(rows) * cols + 1) * sizeof(double); }

harray* newblock(uint32_t rows, uint32_t cols, bool zeroed) {
    if (size_t(rows) * cols + 1 > size_t(MAXELEMENTS))
        tarnerror(further("a %u by %u matrix; %ld elements are the limit", rows, cols, MAXELEMENTS - 1),
                  "Too many elements requested in 'xalloc()'");
    const size_t bytes = blockbytes(rows, cols);
    void* p = bytes >= blockcache::smallest ? cache.take(bytes) : nullptr;
    if (p && zeroed) memset(p, 0, bytes);
    const bool fresh = !p;
    if (fresh) p = zeroed ? std::calloc(bytes, 1) : std::malloc(bytes);
    if (!p)
        tarnerror(
            further("there is no memory for a %u by %u matrix: DELETE what is no longer needed", rows, cols),
            "allocator failed: num: %lu, size: %hd\n", static_cast<unsigned long>(bytes / 8), short(8));
    if (fresh && bytes >= LARGEBLOCK) console.largeblock(p, bytes);
    harray* m = static_cast<harray*>(p);
    m->rows = rows;
    m->cols = cols;
    return m;
}

} // namespace

void* xalloc(long num, int size) {
    const bool soft = num < 0;
    if (soft) num = -num;
    if (num > MAXELEMENTS) {
        if (soft) return nullptr;
        tarnerror("Too many elements requested in 'xalloc()'");
    }
    void* p = std::calloc(size_t(num ? num : 1), size_t(size));
    if (p) return p;
    if (!soft)
        tarnerror(nomemory(), "allocator failed: num: %lu, size: %hd\n", static_cast<unsigned long>(num),
                  short(size));
    tarnprint("allocator failed in xalloc().\n");
    return nullptr;
}

void xfree(void* p) { std::free(p); }

void* xrealloc(void* p, long bytes, bool soft) {
    void* q = std::realloc(p, size_t(bytes));
    if (!q && !soft) tarnerror(nomemory(), "reallocator failed: bytes requested: %ld", bytes);
    return q;
}

char* xstrdup(const char* s) {
    const size_t length = strlen(s);
    char* copy = static_cast<char*>(xalloc(long(length) + 1, 1));
    memcpy(copy, s, length);
    return copy;
}

harray* harraynew(uint32_t rows, uint32_t cols) { return newblock(rows, cols, true); }
harray* harrayraw(uint32_t rows, uint32_t cols) { return newblock(rows, cols, false); }

void harrayfree(harray* m) {
    if (!m) return;
    const size_t bytes = blockbytes(m->rows, m->cols);
    if (bytes < blockcache::smallest || !cache.keep(m, bytes)) std::free(m);
}

harray* harraydup(const harray* m) {
    if (!m) return nullptr;
    harray* copy = harrayraw(m->rows, m->cols);
    memcpy(cells(copy) + 1, cells(m) + 1, harraycount(m) * sizeof(double));
    return copy;
}

harray* harraygrow(harray* m, uint32_t rows, uint32_t cols) {
    if (rows < m->rows || cols < m->cols) tarnerror("Cannot shrink an array");
    harray* grown = harraynew(rows, cols);
    for (size_t i = 1; i <= m->rows; i++) memcpy(&at(grown, i, 1), &at(m, i, 1), m->cols * sizeof(double));
    harrayfree(m);
    return grown;
}

void harrayzero(harray* m) { memset(cells(m) + 1, 0, harraycount(m) * sizeof(double)); }

double harrayelem(const harray* m, uint32_t i, uint32_t j) {
    if (!m) {
        tarnwarn("harrayelem: NULL matrix pointer passed in.");
        return 0;
    }
    if (i <= m->rows && j <= m->cols) return at(m, i, j);
    if (harraycount(m) == 0) return 0;
    i %= m->rows;
    j %= m->cols;
    return at(m, i ? i : m->rows, j ? j : m->cols);
}

void printharray(const harray* m) {
    tarnprint("printharray: rows: %ld, cols: %ld\n", long(m->rows), long(m->cols));
    for (size_t i = 1; i <= m->rows; i++) {
        for (size_t j = 1; j <= m->cols; j++) tarnprint(" %.17g", at(m, i, j));
        tarnprint("\n");
    }
}

int symtabmatrix(int free1, int free2, harrayptr m) {
    const int idx = symtabtemp(free1, free2, m.get(), MATRIX, 0);
    m.release();
    return idx;
}

int dexponent(double x) { return int(std::bit_cast<uint64_t>(x) >> 52 & 0x7ff) - 1023; }

double powu(double x, uint32_t n) {
    double r = 1;
    for (;;) {
        if (n & 1) r = x * r;
        n >>= 1;
        if (n == 0) return r;
        x = x * x;
    }
}

double powi(double x, int n) {
    if (x == 0) {
        if (n > 0) return 0;
        tarnwarn(n == 0 ? "Trying to compute 0^0, 1 is returned."
                        : "Trying to compute 1/(0^0), 1 is returned.");
        return 1;
    }
    if (x == 1 || n == 0) return 1;
    if (n == -1) return fpdiv(1, x);
    if (n > 0) return fpcheck(powu(x, uint32_t(n)));
    const uint32_t m = uint32_t(-n);
    if (std::fabs(x) < 1) {
        const double p = powu(x, m);
        // The sign of an odd power is not looked at: n is negative, so fmod(n, 2) is never 1.
        return p != 0 ? fpdiv(1, p) : (std::fmod(n, 2) == 1 ? MAXNEG : MAXPOS);
    }
    if ((dexponent(std::fabs(x)) + 1) * double(m) > 1023.99) return powu(1 / x, m);
    return 1 / powu(x, m);
}

void valuesstart() {
    stringarraystart();
    savekindreset();
    symtab.kind[MATRIX].release = [](symbol& s) {
        harrayfree(static_cast<harray*>(s.val.ptr));
        s.val.ptr = nullptr;
    };
    operandfns.onebyone = [](double x) {
        harray* m = harrayraw(1, 1);
        cells(m)[1] = x;
        return m;
    };
    operandfns.first = [](const harray* m) { return harraycount(m) ? cells(m)[1] : 0.0; };
    operandfns.shape = [](const symbol& s) {
        const auto text = [](const auto* m) {
            return std::to_string(m->rows) + " by " + std::to_string(m->cols);
        };
        return s.type == MATRIX ? text(static_cast<const harray*>(s.val.ptr))
                                : text(static_cast<const StringArray*>(s.val.ptr));
    };
}
