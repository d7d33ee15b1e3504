#include "funcs/builtin.h"

#include "funcs/refusal.h"
#include "interp/base/fpfault.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"

#include <cassert>
#include <cstring>

namespace {

constexpr int SCALARCODES = 400, NUMBERCODES = 600, VALUECODES = 1000;

struct builtintable {
    const scalarrow* scalar[SCALARCODES];
    const numberrow* number[NUMBERCODES];
    const valuerow* value[VALUECODES];
    columnroutine column[SCALARCODES];
};
builtintable table;

template <class Row, int size> void enter(const Row* (&slots)[size], const Row* rows, int count) {
    for (int k = 0; k < count; k++) {
        const int slot = -rows[k].code;
        assert(slot > 0 && slot < size && (!slots[slot] || slots[slot] == &rows[k]));
        slots[slot] = &rows[k];
    }
}

template <class Row, int size> const Row* find(const Row* const (&slots)[size], int code) {
    return code < 0 && -code < size ? slots[-code] : nullptr;
}

double callrow(const scalarrow& row, const double* given, int n) {
    if (row.arity < 0) return row.fn(given, n);
    double x[8];
    int m = 0;
    if (row.flags & COUNTED) x[m++] = n;
    for (int k = 0; k < 7; k++) x[m++] = k < n ? given[k] : SCALARABSENT[k];
    return scalarrowcall(row, x, m);
}

// `typed` is the name that was called, or null: it stands behind words that do not hold it.
[[noreturn]] void throwfault(spfaultkind kind, const char* text, const char* typed) {
    switch (kind) {
    case SPRANGEERR: argrange(text);
    case SPTYPEERR: argtype(text);
    case SPSHAPEERR: argshape(text);
    default: break;
    }
    const bool named = !typed || strstr(text, typed);
    tarnerror(named ? furtherline{} : further("in a call of %s", typed), "%s", text);
}

// The name of the builtin of that code, or null.
const char* builtinname(int code) {
    for (const symbol& s : symtab.at)
        if (s.type == code && s.name[0] != 0) return s.name;
    return nullptr;
}

} // namespace

void builtinreset() { table = builtintable{}; }
void builtinadd(const scalarrow* rows, int count) { enter(table.scalar, rows, count); }
void builtinadd(const numberrow* rows, int count) { enter(table.number, rows, count); }
void builtinadd(const valuerow* rows, int count) { enter(table.value, rows, count); }
void builtinadd(const columnrow* rows, int count) {
    for (int k = 0; k < count; k++) table.column[-rows[k].code] = rows[k].run;
}
columnroutine scalarbuiltincolumn(int code) {
    return code < 0 && -code < SCALARCODES ? table.column[-code] : nullptr;
}
const scalarrow* scalarbuiltinrow(int code) { return find(table.scalar, code); }
const numberrow* numberbuiltinrow(int code) { return find(table.number, code); }
const valuerow* valuebuiltinrow(int code) { return find(table.value, code); }

double scalarbuiltin(int code, const double* args, int n) {
    const scalarrow* row = scalarbuiltinrow(code);
    if (!row) {
        tarnwarn("function not available--zero returned");
        if (const char* name = builtinname(code)) tarnwarn("%s", notinthisversion(name).text.c_str());
        return 0;
    }
    return fpcheck(spchecked(callrow(*row, args, n), code));
}

double callargs::scalar(int k, double absent) const {
    if (k > n) return absent;
    const int entry = (*this)[k];
    if (entry < 0) return parser.scalar[-entry];
    if (!isscalar(entry)) argtype(name());
    if (sym(entry).val.rval == UNDEFINEDMARK)
        tarnerror("scalar %s has not yet been defined", sym(entry).name);
    return sym(entry).val.rval;
}

void spfaultreport(int code) {
    const spfaultlist noted = spfaults;
    spfaultclear();
    const int kept = noted.count < spfaultlist::room ? noted.count : spfaultlist::room;
    const char* typed = builtinname(code);
    bool told = false; // of the range
    for (int k = 0; k < kept; k++) {
        const auto& fault = noted.at[k];
        if (fault.kind == SPRANGEWARN && !(told && typed))
            argwarn(typed ? typed : fault.text), told = true;
        else if (fault.kind == SPRANGEWARN)
            continue;
        else if (fault.kind == SPWARN)
            tarnwarn("%s", fault.text);
        else
            throwfault(fault.kind, fault.text, typed);
    }
}
