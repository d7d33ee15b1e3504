/* values/saveblock.h - the blocks that save files are made of.
 * Owns:    the bytes of numbers, texts and matrices in a file, little-endian on any machine; the table of the
 *          kinds of objects that can be saved, one row a type, added at start by the room that owns the type.
 * Callers: SAVE and USE, and the rooms whose objects are saved.
 * Never:   opens a file, enters a name or reports: both streams note the first fault and go on harmlessly. */
#pragma once

#include "values/harray.h"
#include "values/stringarray.h"

#include <cstdint>
#include <cstdio>
#include <string>

struct savewriter {
    FILE* file;
    bool failed = false; // a byte could not be written
};

void putshort(savewriter& out, int value);     // 2 bytes
void putlong(savewriter& out, uint32_t value); // 4 bytes
void putdouble(savewriter& out, double value); // 8 bytes
void putbytes(savewriter& out, const void* bytes, size_t count);
/* A count, then the bytes of the text with its zero byte; null is a count of 0. The count is a signed short;
 * a text that passes it has the count -1 and its true count as a long. */
void puttext(savewriter& out, const char* text);
// A short 1, rows, cols, the elements row by row; null is a short 0.
void putmatrix(savewriter& out, const harray* m);
void putstrings(savewriter& out, const StringArray* a); // the same with a text for each element

/* Reads from memory. After a fault every read gives 0, null or an empty text, and takes nothing. */
struct savereader {
    const unsigned char* p;
    const unsigned char* end;
    const char* fault = nullptr; // what is wrong, once something is
    bool verbatim = false;       // the fault is the whole message
};

savereader savereaderon(const std::string& bytes);
inline size_t bytesleft(const savereader& in) { return size_t(in.end - in.p); }
void readfault(savereader& in, const char* what, bool verbatim = false); // keeps the first

int getshort(savereader& in); // signed
uint32_t getlong(savereader& in);
double getdouble(savereader& in);                         // a number that is not finite is a fault
void getbytes(savereader& in, void* bytes, size_t count); // zeros after a fault
bool gettext(savereader& in, std::string& text);          // false for a null text, and after a fault
harray* getmatrix(savereader& in);       // null for a null matrix, and after a fault; the caller owns it
StringArray* getstrings(savereader& in); // the same

/* How objects of one type are saved. read gives a value in memory only, so that a damaged one harms nothing;
 * then either install gives it to an entry of type UNKNOWN (it sets the type, and owns the value from then
 * on) or discard drops it. A read that has met a fault returns null; a null value is not installed. */
struct savekind {
    int type;
    void (*write)(savewriter& out, int symidx);
    void* (*read)(savereader& in);
    void (*install)(int symidx, void* value);
    void (*discard)(void* value);
};
void savekindreset(); // by valuesstart
void savekindadd(const savekind* rows, int count);
const savekind* savekindof(int type); // null: objects of this type are not saved
