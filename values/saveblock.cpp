#include "values/saveblock.h"

#include "interp/base/fpfault.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace {

constexpr const char* const CUTSHORT = "the file ends inside its value";
constexpr int LONGTEXT = -1; // the count of a text whose true count follows

struct savekindstate {
    const savekind* of[21] = {};
};
savekindstate savekinds;

// An unsigned number of n bytes, the lowest first.
void putnumber(savewriter& out, uint64_t value, size_t n) {
    unsigned char bytes[8];
    for (size_t k = 0; k < n; k++) bytes[k] = static_cast<unsigned char>(value >> (8 * k));
    putbytes(out, bytes, n);
}

uint64_t getnumber(savereader& in, size_t n) {
    unsigned char bytes[8];
    getbytes(in, bytes, n);
    uint64_t value = 0;
    for (size_t k = 0; k < n; k++) value |= uint64_t(bytes[k]) << (8 * k);
    return value;
}

// Are the bytes of count elements, each of size bytes at least, still to come?
bool enough(savereader& in, uint64_t count, size_t size) {
    if (count <= bytesleft(in) / size) return true;
    readfault(in, CUTSHORT);
    return false;
}

// The shape in front of both kinds of matrices; false for null and after a fault.
bool getshape(savereader& in, uint32_t& rows, uint32_t& cols, size_t elementsize) {
    constexpr uint32_t MOST = 0x3FFFFFFE; // cells that one block may have
    const int present = getshort(in);
    if (present == 0) return false;
    if (present != 1) readfault(in, "its matrix is damaged");
    rows = getlong(in);
    cols = getlong(in);
    if (rows > MOST || cols > MOST) readfault(in, "its matrix has an impossible shape");
    return !in.fault && enough(in, uint64_t(rows) * cols, elementsize);
}

} // namespace

void putbytes(savewriter& out, const void* bytes, size_t count) {
    if (count > 0 && fwrite(bytes, 1, count, out.file) != count) out.failed = true;
}

void putshort(savewriter& out, int value) { putnumber(out, uint16_t(value), 2); }
void putlong(savewriter& out, uint32_t value) { putnumber(out, value, 4); }
void putdouble(savewriter& out, double value) { putnumber(out, std::bit_cast<uint64_t>(value), 8); }

void puttext(savewriter& out, const char* text) {
    const size_t count = text ? strlen(text) + 1 : 0;
    if (count <= INT16_MAX) {
        putshort(out, int(count));
    } else {
        putshort(out, LONGTEXT);
        putlong(out, uint32_t(count));
    }
    putbytes(out, text, count);
}

void putmatrix(savewriter& out, const harray* m) {
    putshort(out, m != nullptr);
    if (!m) return;
    putlong(out, m->rows);
    putlong(out, m->cols);
    const size_t count = harraycount(m);
    if constexpr (std::endian::native == std::endian::little) {
        putbytes(out, cells(m) + 1, count * sizeof(double));
    } else {
        for (size_t k = 1; k <= count; k++) putdouble(out, cells(m)[k]);
    }
}

void putstrings(savewriter& out, const StringArray* a) {
    putshort(out, a != nullptr);
    if (!a) return;
    putlong(out, a->rows);
    putlong(out, a->cols);
    const size_t count = stringcount(a);
    for (size_t k = 0; k < count; k++) puttext(out, stringcells(a)[k]);
}

savereader savereaderon(const std::string& bytes) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    return {p, p + bytes.size()};
}

void readfault(savereader& in, const char* what, bool verbatim) {
    if (!in.fault) in.fault = what, in.verbatim = verbatim;
    in.p = in.end;
}

void getbytes(savereader& in, void* bytes, size_t count) {
    if (count > bytesleft(in)) {
        readfault(in, CUTSHORT);
        memset(bytes, 0, count);
    } else if (count > 0) {
        memcpy(bytes, in.p, count);
        in.p += count;
    }
}

int getshort(savereader& in) { return int16_t(getnumber(in, 2)); }
uint32_t getlong(savereader& in) { return uint32_t(getnumber(in, 4)); }

double getdouble(savereader& in) {
    const double value = std::bit_cast<double>(getnumber(in, 8));
    if (fpfinite(value)) return value;
    readfault(in, "it holds a number that is not finite");
    return 0;
}

bool gettext(savereader& in, std::string& text) {
    text.clear();
    const int mark = getshort(in);
    const uint64_t count = mark == LONGTEXT ? getlong(in) : uint64_t(mark < 0 ? 0 : mark);
    if (mark < LONGTEXT) readfault(in, "a text has an impossible length");
    if (in.fault || count == 0 || !enough(in, count, 1)) return false;
    const char* bytes = reinterpret_cast<const char*>(in.p);
    if (memchr(bytes, 0, count) != bytes + count - 1) {
        readfault(in, "a text is damaged");
        return false;
    }
    text.assign(bytes, count - 1);
    in.p += count;
    return true;
}

harray* getmatrix(savereader& in) {
    uint32_t rows, cols;
    if (!getshape(in, rows, cols, sizeof(double))) return nullptr;
    harrayptr m(harrayraw(rows, cols));
    const size_t count = harraycount(m.get());
    double* x = cells(m.get()) + 1;
    getbytes(in, x, count * sizeof(double));
    if constexpr (std::endian::native != std::endian::little)
        for (size_t k = 0; k < count; k++) {
            auto* bytes = reinterpret_cast<unsigned char*>(x + k);
            std::reverse(bytes, bytes + sizeof(double));
        }
    bool finite = true;
    for (size_t k = 0; k < count; k++) finite &= fpfinite(x[k]);
    if (finite) return m.release();
    readfault(in, "it holds a number that is not finite");
    return nullptr;
}

StringArray* getstrings(savereader& in) {
    uint32_t rows, cols;
    if (!getshape(in, rows, cols, sizeof(int16_t))) return nullptr;
    stringarrayptr a(StringArrayAlloc(rows, cols));
    if (!a) {
        readfault(in, "StringArrayAlloc failed in StringArrayUse");
        return nullptr;
    }
    std::string text;
    const size_t count = stringcount(a.get());
    for (size_t k = 0; k < count && !in.fault; k++) {
        if (!gettext(in, text) || text.empty()) continue;
        if (!StringArrayStrPut(a.get(), long(k / cols) + 1, long(k % cols) + 1, text))
            readfault(in, "StringArrayStrPut failed in StringArrayUse");
    }
    return in.fault ? nullptr : a.release();
}

void savekindreset() { savekinds = {}; }

void savekindadd(const savekind* rows, int count) {
    for (int k = 0; k < count; k++) savekinds.of[rows[k].type] = &rows[k];
}

const savekind* savekindof(int type) {
    return type > 0 && type < int(std::size(savekinds.of)) ? savekinds.of[type] : nullptr;
}
