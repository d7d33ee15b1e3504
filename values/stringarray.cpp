#include "values/stringarray.h"

#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/harray.h"

#include <cstring>

static constexpr uint64_t MAXCELLS = 0x3FFFFFFF; // the limit of xalloc

static bool inside(const StringArray* a, long i, long j) {
    return i >= 1 && j >= 1 && uint64_t(i) <= a->rows && uint64_t(j) <= a->cols;
}

static size_t offset(const StringArray* a, long i, long j) { return size_t(i - 1) * a->cols + size_t(j - 1); }

// A copy of the text up to its first zero byte; null when there is no room.
static char* copytext(std::string_view text) {
    const size_t length = text.substr(0, text.find('\0')).size();
    if (length >= MAXCELLS) return nullptr;
    char* copy = static_cast<char*>(xalloc(-long(length + 1), 1));
    if (copy) memcpy(copy, text.data(), length);
    return copy;
}

StringArray* StringArrayAlloc(uint32_t rows, uint32_t cols) {
    static_assert(sizeof(StringArray) <= sizeof(char*) * 2);
    const uint64_t count = uint64_t(rows) * cols;
    constexpr uint64_t header = (sizeof(StringArray) + sizeof(char*) - 1) / sizeof(char*);
    if (count > MAXCELLS - header) return nullptr;
    auto* a = static_cast<StringArray*>(xalloc(-long(count + header), int(sizeof(char*))));
    if (!a) return nullptr;
    a->rows = rows;
    a->cols = cols;
    return a;
}

StringArray* StringArrayFree(StringArray* a) {
    if (!a) return nullptr;
    const size_t n = stringcount(a);
    for (size_t k = 0; k < n; k++) xfree(stringcells(a)[k]);
    xfree(a);
    return nullptr;
}

StringArray* StringArrayCopy(const StringArray* a) {
    if (!a) return nullptr;
    stringarrayptr copy(StringArrayAlloc(a->rows, a->cols));
    if (!copy) return nullptr;
    const size_t n = stringcount(a);
    for (size_t k = 0; k < n; k++) {
        const char* text = stringcells(a)[k];
        if (!text) continue;
        if (!(stringcells(copy.get())[k] = copytext(text))) return nullptr;
    }
    return copy.release();
}

StringArray* StringArrayExpand(StringArray* a, uint32_t rows, uint32_t cols) {
    if (rows < a->rows || cols < a->cols) return nullptr;
    StringArray* wide = StringArrayAlloc(rows, cols);
    if (!wide) return nullptr;
    if (a->cols > 0)
        for (size_t i = 0; i < a->rows; i++)
            memcpy(stringcells(wide) + i * cols, stringcells(a) + i * a->cols, a->cols * sizeof(char*));
    xfree(a); // the texts have moved
    return wide;
}

void StringArrayPrint(const StringArray* a) {
    tarnprint("StringArrayPrint: rows: %ld, cols: %ld\n", long(a->rows), long(a->cols));
    for (uint32_t i = 0; i < a->rows; i++) {
        for (uint32_t j = 0; j < a->cols; j++) {
            const char* text = stringcells(a)[size_t(i) * a->cols + j];
            tarnprint("%s\"%s\"", j ? " " : "", text ? text : "");
        }
        tarnprint("\n");
    }
}

char** StringArrayPtrStr(StringArray* a, long i, long j) {
    return inside(a, i, j) ? stringcells(a) + offset(a, i, j) : nullptr;
}

const char* StringArrayStrPtr(const StringArray* a, long i, long j) {
    return inside(a, i, j) ? stringcells(a)[offset(a, i, j)] : nullptr;
}

bool StringArrayStrGet(const StringArray* a, long i, long j, char** out) {
    if (!inside(a, i, j)) return false;
    const char* text = stringcells(a)[offset(a, i, j)];
    char* copy = copytext(text ? text : "");
    if (!copy) return false;
    xfree(*out);
    *out = copy;
    return true;
}

bool StringArrayStrPut(StringArray* a, long i, long j, const char* s) {
    return StringArrayStrPut(a, i, j, std::string_view(s ? s : ""));
}

bool StringArrayStrPut(StringArray* a, long i, long j, std::string_view text) {
    char** cell = StringArrayPtrStr(a, i, j);
    if (!cell) return false;
    char* copy = nullptr;
    if (!text.empty() && text[0] != '\0' && !(copy = copytext(text))) return false;
    xfree(*cell); // after the copy: the text may be the cell's own
    *cell = copy;
    return true;
}

long StringArrayStrLen(const StringArray* a, long i, long j) {
    if (!inside(a, i, j)) return -1;
    const char* text = stringcells(a)[offset(a, i, j)];
    return text ? long(strlen(text)) : 0;
}

bool isstringclass(int type) {
    return type == STRINGMATRIX || type == STRINGTYPE || type == TEMPSTRING || type == UNKNOWN;
}

bool ismatrixclass(int type) { return type == MATRIX || type == STRINGMATRIX; }

int Make1By1StringMatrix(int idx) {
    if (!isstringtype(idx))
        tarnerror(furtherline{describe(idx)}, "Illegal use of type that is not string scalar.");
    stringarrayptr a(StringArrayAlloc(1, 1));
    if (!a) tarnerror(nomemory(), "StringArrayAlloc failed in Make1By1StringMatrix().");
    if (!StringArrayStrPut(a.get(), 1, 1, stringval(idx)))
        tarnerror(nomemory(), "StringArrayStrPut failed in Make1By1StringMatrix().");
    return symtabstringmatrix(0, 0, std::move(a));
}

StringArray* GetStringMatrix(int idx, int& temp) {
    temp = 0;
    if (isstringtype(idx)) temp = idx = Make1By1StringMatrix(idx);
    if (sym(idx).type != STRINGMATRIX)
        tarnerror(further("%s, and strings are due", describe(idx).c_str()), "GetStringMatrix failed.");
    return static_cast<StringArray*>(sym(idx).val.ptr);
}

int symtabstringmatrix(int free1, int free2, stringarrayptr a) {
    const int idx = symtabtemp(free1, free2, a.get(), STRINGMATRIX, 0);
    (void)a.release();
    return idx;
}

namespace {
struct textdelete {
    void operator()(char* p) const { xfree(p); }
};
} // namespace

int symtabtext(int free1, int free2, std::string_view text) {
    std::unique_ptr<char, textdelete> copy(copytext(text)); // before the operands go: the text may be theirs
    if (!copy)
        tarnerror(nomemory(), "allocator failed: num: %lu, size: %hd\n", (unsigned long)(text.size() + 1),
                  short(1));
    const int idx = symtabtemp(free1, free2, copy.get(), TEMPSTRING, 0);
    (void)copy.release();
    return idx;
}

void stringarraystart() {
    symtab.kind[STRINGMATRIX].release = [](symbol& s) {
        StringArrayFree(static_cast<StringArray*>(s.val.ptr));
        s.val.ptr = nullptr;
    };
}
