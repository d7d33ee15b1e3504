#include "funcs/calls.h"

#include "funcs/builtin.h"
#include "funcs/define.h"
#include "funcs/deriv.h"
#include "funcs/refusal.h"
#include "funcs/value.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "values/harray.h"

namespace {

constexpr int LASTSCALAR = -399, FIRSTVALUE = -600, LASTVALUE = -899; // ranges of codes
constexpr int KREADCODE = -78, ABSCODE = -23, FIRSTCOLUMNCODE = -413, LASTCOLUMNCODE = -420;

bool matrixgiven(int p, int n) {
    for (int k = 1; k <= n; k++)
        if (parser.polstack[p + k] > 0 && ismatrix(parser.polstack[p + k])) return true;
    return false;
}

/* A code of the scalar class that has a second form for matrices: column statistics of several columns,
 * complex functions of two columns, the extremes, and the keyboard reader. */
bool takesmatrixform(int p, int n, int code) {
    if (!valuebuiltinrow(code)) return false;
    if (code == KREADCODE) return n > 0;
    if (!matrixgiven(p, n)) return false;
    if (code > FIRSTCOLUMNCODE || code < LASTCOLUMNCODE) return true;
    const int first = parser.polstack[p + 1];
    return ismatrix(first) && matrixof(first)->cols > 1;
}

void replacecall(int p, int n, int result) {
    for (int k = 1; k <= n; k++)
        if (parser.polstack[p + k] != result) tempfree(parser.polstack[p + k]);
    parser.poltop = p;
    parser.polstack[p] = int16_t(result);
    parser.argcount[parser.argptr + parser.closed] = 1;
}

// Runs a builtin's routine; behind an error in it stands which call it was.
template <class Routine> void inbuiltin(int p, int n, Routine routine) {
    try {
        routine();
    } catch (const recoveryjump& jump) {
        if (jump.value == -1) tellcall(p, n);
        throw;
    }
}

void valuecall(int p, int n, int code) {
    checkargs(p);
    const valuerow* row = valuebuiltinrow(code);
    const furtherline more = row ? furtherline{} : notinthisversion(sym(parser.polstack[p]).name);
    if (!row && code > LASTVALUE) tarnerror(more, "%hd is an invalid builtin function code", short(code));
    if (!row) tarnerror(more, "invalid string function");
    int result = 0;
    inbuiltin(p, n, [&] { result = row->call(callargs{p, n, code}); });
    replacecall(p, n, result);
}

// The derivative of a solution of a differential equation, as M'T(2) where M has an INITIAL.
bool issolutionsderivative(int f) {
    derivparts parts;
    if (eval.odeactive || sym(f).name[0] != '.' || !derivsplit(sym(f).name, parts)) return false;
    const int state = symtablookup(parts.function.c_str());
    return state > 0 && sym(state).type == INITIALVALUE;
}

void scalarcall(int p, int n, int f) {
    double result;
    if (n == 1 && issolutionsderivative(f)) {
        onop(2, ONSCALAR);
        result = parser.scalar[--parser.scalartop];
    } else {
        const int code = sym(f).type;
        if (code >= LASTSCALAR && code < 0 && code != ABSCODE && matrixgiven(p, n)) {
            checkargs(p);
            argtype(sym(f).name);
        }
        if (code < 0)
            inbuiltin(p, n, [&] { result = value(p); });
        else
            result = value(p);
    }
    replacecall(p, n, symtabtempscalar(0, 0, result));
}

bool issubscripted(const symbol& callee) {
    if (callee.type == MATRIX || callee.type == STRINGMATRIX) return true;
    return callee.type == UNKNOWN && callee.name[0] != '.';
}

} // namespace

void builtincall() {
    const int n = argnumber(), p = parser.poltop - n;
    const int f = p >= 0 ? parser.polstack[p] : 0;
    if (f <= 0) tarnerror("expression in function name illegal");
    if (issubscripted(sym(f))) {
        upper.subscript(p, f);
        parser.argcount[parser.argptr + parser.closed] = 1;
        return;
    }
    if (sym(f).type == UNKNOWN) derivfind(f, false);
    const int type = sym(f).type;
    if (type == USERFUNCTION || type == INITIALVALUE) return scalarcall(p, n, f);
    if (type >= 0)
        tarnerror(furtherline{describe(f)}, "%s is not a user-defined or builtin function",
                  nametext(f).c_str());
    if (type <= FIRSTVALUE || takesmatrixform(p, n, type)) return valuecall(p, n, type);
    scalarcall(p, n, f);
}
