#include "funcs/calls.h"
#include "funcs/deriv.h"
#include "funcs/refusal.h"
#include "funcs/trinode.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"

#include <cstdlib>

namespace {

// Kinds of a slot in a signature that are no type codes of the symbol table.
enum slotkind {
    SLOTANY = 20,
    SLOTNUMERIC = 22,
    SLOTDUMMY = 24,
    SLOTFUNCTIONORMATRIX = 25,
    SLOTCONSETORMATRIX = 26,
    SLOTANYMATRIX = 27,
    SLOTANYSTRING = 28
};
constexpr int FORMALTYPE = 100, UNCHECKED = -100;

bool isfunctiontype(int type) { return type == USERFUNCTION || type == INITIALVALUE || type < 0; }
bool isstring(int type) { return type == STRINGTYPE || type == TEMPSTRING; }

struct slotrow {
    int kind;
    bool (*accepts)(int type);
    const char* expected;
};
const slotrow slots[] = {
    {SCALAR, isscalartype, "scalar"}, // the most frequent first
    {SLOTNUMERIC, [](int t) { return isscalartype(t) || t == MATRIX; }, "scalar or matrix"},
    {USERFUNCTION, isfunctiontype, "function"},
    {MATRIX, [](int t) { return t == MATRIX; }, "matrix"},
    {STRINGTYPE, isstring, "string"},
    {WINDOWTYPE, [](int t) { return t == WINDOWTYPE; }, "window"},
    {CURVETYPE, [](int t) { return t == CURVETYPE; }, "curve"},
    {TITLETYPE, [](int t) { return t == TITLETYPE; }, "title"},
    {CONSETTYPE, [](int t) { return t == CONSETTYPE; }, "constraints"},
    {STRINGMATRIX, [](int t) { return t == STRINGMATRIX; }, "string matrix"},
    {SLOTANY, [](int) { return true; }, ""},
    {SLOTDUMMY, [](int t) { return t == CONSTANT || t == SCALAR || t == UNKNOWN || t == FORMALTYPE; },
     "scalar, unknown or formal"},
    {SLOTFUNCTIONORMATRIX, [](int t) { return isfunctiontype(t) || t == MATRIX; }, "function or matrix"},
    {SLOTCONSETORMATRIX, [](int t) { return t == CONSETTYPE || t == MATRIX; }, "constraints or matrix"},
    {SLOTANYMATRIX, [](int t) { return t == MATRIX || t == STRINGMATRIX; }, "matrix or stringmatrix"},
    {SLOTANYSTRING, [](int t) { return isstring(t) || t == STRINGMATRIX; }, "string or string matrix"},
};

const slotrow& slotof(int kind) {
    for (const slotrow& row : slots)
        if (row.kind == kind) return row;
    tarnerror("invalid type in builtin function specification");
}

// A value on the scalar stack, and an expression in a definition, count as a scalar.
int typeofoperand(int entry, int kind) {
    if (isformalref(entry)) return FORMALTYPE;
    if (entry < 0) return kind == USERFUNCTION && parser.funcmode != 0 ? USERFUNCTION : SCALAR;
    const bool wantsfunction = kind == USERFUNCTION || kind == SLOTFUNCTIONORMATRIX;
    if (wantsfunction && sym(entry).type == UNKNOWN && sym(entry).name[0] == '.') derivfind(entry, false);
    return sym(entry).type;
}

} // namespace

void checkargs(int p) {
    const symbol& callee = sym(parser.polstack[p]);
    const signed char* signature = callee.val.argd;
    const int most = signature[0], given = parser.poltop - p;
    if (most == UNCHECKED) return;
    int mandatory = 0;
    for (int k = 1; k <= most; k++) mandatory += signature[k] > 0;
    if (given < mandatory || given > most)
        tarnerror("function %s takes %hd arguments; %hd are mandatory", callee.name, short(most),
                  short(mandatory));
    for (int k = 1; k <= given; k++) {
        const slotrow& slot = slotof(std::abs(signature[k]));
        if (!slot.accepts(typeofoperand(parser.polstack[p + k], slot.kind)))
            tarnerror(wrongkind(parser.polstack[p + k], callee), "function %s argument %hd: expected %s",
                      callee.name, short(k), slot.expected);
    }
}
