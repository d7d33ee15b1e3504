/* values/stringarray.h - matrices of strings, and strings as symbol table values.
 * Owns:    the string matrix record and its cells; the making of string temporaries.
 * Callers: every room that holds a string matrix; each has exactly one owner, as a numeric matrix has.
 * Never:   shares text, or reports that there is no room: it gives null or false, and the caller reports. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

/* One block: the shape, then rows*cols pointers row by row. A cell owns its text or is null, which reads as
 * the empty string; an empty string is stored as null. */
struct StringArray {
    uint32_t rows, cols;
};

inline char** stringcells(StringArray* a) { return reinterpret_cast<char**>(a + 1); } // 0-based, row by row
inline const char* const* stringcells(const StringArray* a) {
    return reinterpret_cast<const char* const*>(a + 1);
}
inline size_t stringcount(const StringArray* a) { return size_t(a->rows) * a->cols; }

StringArray* StringArrayAlloc(uint32_t rows, uint32_t cols); // all cells empty; null when there is no room
StringArray* StringArrayFree(StringArray* a);                // always null; null passes
StringArray* StringArrayCopy(const StringArray* a);          // null when there is no room
// Keeps each text at its subscripts and frees the old block. A smaller shape gives null and leaves a alone,
// and so does want of room.
StringArray* StringArrayExpand(StringArray* a, uint32_t rows, uint32_t cols);
void StringArrayPrint(const StringArray* a);

// Cell (i, j), both from 1.
char** StringArrayPtrStr(StringArray* a, long i, long j); // the cell; null for a subscript out of range
const char* StringArrayStrPtr(const StringArray* a, long i,
                              long j); // its text; null when empty or out of range
bool StringArrayStrGet(const StringArray* a, long i, long j, char** out);      // a new copy replaces *out
bool StringArrayStrPut(StringArray* a, long i, long j, const char* s);         // stores a copy
bool StringArrayStrPut(StringArray* a, long i, long j, std::string_view text); // the same, up to a zero byte
long StringArrayStrLen(const StringArray* a, long i, long j); // -1 for a subscript out of range

struct stringarraydelete {
    void operator()(StringArray* a) const { StringArrayFree(a); }
};
using stringarrayptr = std::unique_ptr<StringArray, stringarraydelete>; // the owner of one that is being made

bool isstringclass(int type);      // may become or give a string matrix: STRINGMATRIX, both strings, UNKNOWN
bool ismatrixclass(int type);      // MATRIX or STRINGMATRIX
int Make1By1StringMatrix(int idx); // temporary from a string entry; anything else is an error
StringArray* GetStringMatrix(int idx, int& temp); // a string becomes a 1 by 1 temporary, its index in temp
// Releases the operands free1 and free2 (0: none), then makes a temporary.
int symtabstringmatrix(int free1, int free2, stringarrayptr a);
int symtabtext(int free1, int free2, std::string_view text); // a TEMPSTRING of the text up to a zero byte

void stringarraystart(); // tells symtab how a string matrix is let go
