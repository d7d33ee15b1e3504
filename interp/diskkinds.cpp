// The kinds of objects that this room saves, and the rows of SAVE and USE.
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/disknames.h"
#include "interp/diskuse.h"
#include "values/saveblock.h"

#include <iterator>

namespace {

void fill(int idx, int type, void* value) {
    symbol& s = sym(idx);
    s.type = int16_t(type);
    s.val.ptr = value;
}

// ---- scalars ----

void writescalar(savewriter& out, int idx) { putdouble(out, sym(idx).val.rval); }

void* readscalar(savereader& in) {
    const double value = getdouble(in);
    return in.fault ? nullptr : new double(value);
}

void dropscalar(void* value) { delete static_cast<double*>(value); }

void installscalar(int idx, void* value) {
    sym(idx).type = SCALAR;
    sym(idx).val.rval = *static_cast<const double*>(value);
    dropscalar(value);
}

// ---- strings ----

void writetext(savewriter& out, int idx) { puttext(out, stringval(idx)); }

void* readtext(savereader& in) {
    std::string text;
    gettext(in, text);
    return in.fault ? nullptr : xstrdup(text.c_str());
}

void installtext(int idx, void* value) { fill(idx, STRINGTYPE, value); }

// ---- matrices ----

void writematrix(savewriter& out, int idx) { putmatrix(out, matrixof(idx)); }
void* readmatrix(savereader& in) { return getmatrix(in); }
void installmatrix(int idx, void* value) { fill(idx, MATRIX, value); }
void dropmatrix(void* value) { harrayfree(static_cast<harray*>(value)); }

void writestrings(savewriter& out, int idx) {
    putstrings(out, static_cast<const StringArray*>(sym(idx).val.ptr));
}
void* readstrings(savereader& in) { return getstrings(in); }
void installstrings(int idx, void* value) { fill(idx, STRINGMATRIX, value); }
void dropstrings(void* value) { StringArrayFree(static_cast<StringArray*>(value)); }

// ---- functions and initial values: USE has the parser make them from the text ----

void writedefinition(savewriter& out, int idx) { puttext(out, definitiontosave(idx).c_str()); }

constexpr savekind kinds[] = {
    {SCALAR, writescalar, readscalar, installscalar, dropscalar},
    {STRINGTYPE, writetext, readtext, installtext, xfree},
    {MATRIX, writematrix, readmatrix, installmatrix, dropmatrix},
    {STRINGMATRIX, writestrings, readstrings, installstrings, dropstrings},
    {USERFUNCTION, writedefinition, nullptr, nullptr, nullptr},
    {INITIALVALUE, writedefinition, nullptr, nullptr, nullptr},
};

void save(const processop& op) { disksave(op.token); }

void use(const processop& op) {
    if (parser.poltop < 0) tarnerror(further("as in USE \"FILE\""), "USE: file name was not specified");
    clause.insym = int16_t(polpop());
    if (!diskuse(op.token, report.filedir.c_str(), false)) tarnwarn("diskuse: save file cannot be opened");
    tempfree(clause.insym);
    clause.insym = 0;
}

constexpr processrow rows[] = {{8, save}, {59, use}};

} // namespace

void diskstart() {
    diskforget();
    upper.usequietly = usequietly;
    savekindadd(kinds, int(std::size(kinds)));
    processadd(rows, int(std::size(rows)));
}
