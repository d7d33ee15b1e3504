#include "funcs/value.h"
#include "funcs/valueimpl.h"

#include "funcs/builtin.h"
#include "funcs/calls.h"
#include "funcs/deriv.h"
#include "funcs/flatimpl.h"
#include "funcs/operators.h"
#include "funcs/refusal.h"
#include "funcs/trinode.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

evalstate eval;

namespace {

constexpr size_t STACKRESERVE =
    192 * 1024;                // left for printing the error and for routines that call no deeper
constexpr int LOGDEPTH = 1000; // nesting at which the log is put on disk
double evalnode(int ref, int p);

// Counts nesting; deep recursion may end in a fault of the machine, and the log is to be on disk by then.
struct depthcount {
    depthcount() {
        if (++eval.evaldepth <= LOGDEPTH) return;
        if (report.log) fflush(report.log);
        eval.evaldepth = 0;
    }
    ~depthcount() { eval.evaldepth--; }
};

// The entry behind a reference: a formal's is in the frame, everything else stands for itself.
int resolved(int ref, int p) { return isformalref(ref) ? parser.polstack[p + ref - FORMALBASE] : ref; }

int argumentcount(int call) {
    int count = 0;
    for (int cell = tri(call).left; cell < 0; cell = tri(cell).left) count++;
    return count;
}

// ---- solutions of differential equations

double solution(int idx, double t) {
    const stackmark mark;
    const int at = symtabtempscalar(0, 0, t);
    pushentry(idx);
    pushentry(at);
    onop(2, 3);
    const double result = parser.scalar[parser.scalartop - 1];
    tempfree(at);
    return result;
}

bool isderivname(int idx) { return sym(idx).name[0] == '.'; }

// Is idx a derivative whose function part is an initial value: the derivative of a solution?
bool solutionderivative(int idx) {
    const char* name = sym(idx).name;
    const char* base = name + strspn(name, ".");
    const char* dot = strstr(base, "..");
    if (!dot) dot = strrchr(base, '.');
    if (!dot) return false;
    char part[MAXNAME + 1];
    const size_t length = size_t(dot - name) - 1;
    memcpy(part, name + 1, length);
    part[length] = 0;
    const int function = symtablookup(part);
    return function > 0 && sym(function).type == INITIALVALUE;
}

bool isrunningstate(int idx) {
    double none;
    return eval.odeactive && (sym(idx).type == INITIALVALUE || isderivname(idx)) &&
           upper.odecall(idx, nullptr, 0, none);
}

// ---- builtins

double complexmodulus(int entry) {
    const harray* m = matrixarg(entry);
    if (harraycount(m) != 2) argshape("ABS");
    return fpcheck(std::hypot(cells(m)[1], cells(m)[2]));
}

double scalarcall(int p, int code, int n) {
    const int first = n > 0 ? parser.polstack[p + 1] : 0;
    if (code == CODEABS && first > 0 && ismatrix(first)) return complexmodulus(first);
    if (code == CODEKREAD && first > 0 && !isscalar(first)) {
        const numberrow* reader = numberbuiltinrow(code);
        if (reader) return reader->call({p, n, code});
    }
    const stackmark mark;
    const int base = parser.scalartop;
    for (int k = 1; k <= n; k++) pushcell(scalararg(parser.polstack[p + k]));
    return scalarbuiltin(code, parser.scalar + base, n);
}

double builtinvalue(int p, int code, int n) {
    parser.argcount[++parser.argptr] = int16_t(n);
    checkargs(p);
    parser.argptr--;
    if (code > FIRSTNUMBERCODE) return scalarcall(p, code, n);
    if (code == CODETYPEOF) {
        const int top = parser.polstack[parser.poltop];
        return top < 0 ? int(SCALAR) : int(sym(top).type);
    }
    if (code <= CODEINTEGRAL)
        tarnerror("SUM, PRODUCT, ROOT, INTEGRAL, and EVAL can only appear in function bodies");
    const numberrow* row = numberbuiltinrow(code);
    if (!row) tarnerror(notinthisversion(sym(parser.polstack[p]).name), "not a function");
    return fpcheck(spchecked(row->call({p, n, code}), code));
}

// ---- user functions

double walkfunction(int p, int f, int n) {
    const int nformals = formalcount(f);
    if (nformals != n) {
        const char* name = sym(f).name;
        conout("##Error: incorrect # of args(%d) supplied for %s\n", 2 * n - nformals, name);
        logout("##Error: incorrect # of args(%d) supplied for %s\n", 2 * n - nformals, name);
        tarnerror(further("%s takes %d argument%s, and %d %s given", nametext(f).c_str(), nformals,
                          nformals == 1 ? "" : "s", n, n == 1 ? "was" : "were"),
                  "Bad user-defined function call");
    }
    const double result = evalscalar(funcbody(f), p);
    return sym(f).val.rval = result;
}

// Compiled code met something to be told of: the walk does it all again, with every call in it.
double repeatedwalk(int p, int f, int n) {
    struct walking {
        walking() { eval.flat = false; }
        ~walking() { eval.flat = true; }
    } const guard;
    return walkfunction(p, f, n);
}

double userfunction(int p, int f, int n) {
    if (eval.flat) {
        double result;
        const flatoutcome outcome = flatvalue(p, f, n, result);
        if (outcome == FLATVALUE) return sym(f).val.rval = result;
        if (outcome == FLATREPEAT) return repeatedwalk(p, f, n);
    }
    return walkfunction(p, f, n);
}

/* A function's name as an argument yields its last value, unless the callee needs the function itself: then
 * it is passed by name, as are things that have no number. */
bool passedbyname(int callee, int k, int idx) {
    const int type = sym(idx).type;
    const int calleetype = sym(callee).type;
    if (type == SCALAR || type == CONSTANT || type == MATRIX) return false;
    if (calleetype < 0) {
        const signed char* slots = sym(callee).val.argd;
        const int slot = slots[0] >= k ? std::abs(slots[k]) : 0;
        const bool scalarclass = isscalartype(type);
        return !scalarclass || slot == 5 || slot == 20 || slot == 25;
    }
    if (type == UNKNOWN) return false;
    return !isscalartype(type) || formaliscalled(callee, k);
}

void pushargument(int callee, int k, int ref, int p) {
    const int entry = resolved(ref, p);
    if (entry > 0 && passedbyname(callee, k, entry)) return pushentry(entry);
    const int cell = pushcell(0);
    const double x = evalref(ref, p);
    if (eval.matrixflag) {
        parser.scalartop--;
        return pushentry(eval.matrixflag);
    }
    parser.scalar[-cell] = x;
    pushentry(cell);
}

double generalcall(int callee, int call, int p) {
    const stackmark mark;
    pushentry(callee);
    const int frame = parser.poltop;
    int k = 1;
    for (int cell = tri(call).left; cell < 0; cell = tri(cell).left)
        pushargument(callee, k++, tri(cell).right, p);
    return value(frame);
}

// ---- calls inside a body

double scalarbuiltincall(int callee, int call, int p) {
    const stackmark mark;
    const int base = parser.scalartop;
    int n = 0;
    for (int cell = tri(call).left; cell < 0; cell = tri(cell).left, n++) {
        const int to = pushcell(0);
        const int arg = tri(cell).right;
        const double x = evalref(arg, p);
        if (eval.matrixflag) tarnerror("illegal matrix argument for a builtin function");
        parser.scalar[-to] = x;
    }
    checkcount(callee, n);
    eval.evalargs = n;
    return scalarbuiltin(sym(callee).type, parser.scalar + base, n);
}

// Row and column of M(i) or M(i,j), each in a cell while the other is computed.
struct subscripts {
    double row, col;
};
subscripts evalsubscripts(int call, int p, const char* toomany) {
    const stackmark mark;
    const int n = argumentcount(call);
    if (n < 1 || n > 2) tarnerror("%s", toomany);
    const int rowcell = tri(call).left, colcell = tri(rowcell).left;
    const int row = pushcell(0);
    parser.scalar[-row] = evalscalar(tri(rowcell).right, p);
    const int col = pushcell(1);
    if (colcell < 0) parser.scalar[-col] = evalscalar(tri(colcell).right, p);
    return {parser.scalar[-row], parser.scalar[-col]};
}

double matrixelement(int m, int call, int p) {
    const subscripts at = evalsubscripts(call, p, "matrices may have only 1 or 2 subscripts");
    return elemref(matrixarg(m), at.row, at.col);
}

double solutioncall(int callee, int call, int p) {
    const int first = tri(call).left;
    return solution(callee, first < 0 ? evalscalar(tri(first).right, p) : 0);
}

double runningstatecall(int callee, int call, int p) {
    const int first = tri(call).left;
    const double t = first < 0 ? evalscalar(tri(first).right, p) : 0;
    double result = 0;
    upper.odecall(callee, &t, 1, result);
    return result;
}

double callnode(int call, int p) {
    const int calleeref = tri(call).right;
    const int callee = resolved(calleeref, p);
    if (callee <= 0)
        tarnerror("%s is not a function", sym(formalref(parser.polstack[p], calleeref - FORMALBASE)).name);
    int type = sym(callee).type;
    if (type > FIRSTNUMBERCODE && type < 0) return scalarbuiltincall(callee, call, p);
    if (type <= FIRSTVALUECODE) tarnerror("matrix-valued function calls are illegal in user functions");
    if (type <= CODEINTEGRAL && type >= CODEPRODUCT) return operatorcall(type, call, p);
    if (type == MATRIX) return matrixelement(callee, call, p);
    if ((type == INITIALVALUE || type == USERFUNCTION) && calledassolution(callee))
        return eval.odeactive ? runningstatecall(callee, call, p) : solutioncall(callee, call, p);
    if (type == UNKNOWN && isderivname(callee)) {
        derivfind(callee, false);
        type = sym(callee).type;
    }
    if (type >= 0 && type != USERFUNCTION && type != INITIALVALUE)
        tarnerror("%s is not a function", sym(callee).name);
    return generalcall(callee, call, p);
}

// ---- assignment

void assignsymbol(int idx, double x) {
    symbol& s = sym(idx);
    if (s.type == UNKNOWN) s.type = SCALAR;
    if (s.type != SCALAR) tarnerror("can't assign a scalar to this LHS-type within a function");
    s.val.rval = x;
}

[[noreturn]] void badsubscript(double x, const char* which) {
    tarnerror("matrix %s subscript: %d out of range", which, int(std::clamp(x, -2147483648.0, 2147483647.0)));
}

// A subscript of an assignment; the matrix grows up to it.
uint32_t targetsubscript(double x, const char* which) {
    const double whole = std::trunc(x);
    if (!(whole >= 1 && whole <= 0x7FFFFFFF)) badsubscript(whole, which);
    return uint32_t(whole);
}

void assignelement(int call, double x, int p) {
    const int target = resolved(tri(call).right, p);
    if (target <= 0) tarnerror("bad function structure");
    if (sym(target).type != UNKNOWN && sym(target).type != MATRIX)
        tarnerror("can't assign matrix to this type in function body");
    const subscripts at2 = evalsubscripts(call, p, "too many subscripts");
    const uint32_t row = targetsubscript(at2.row, "row"), col = targetsubscript(at2.col, "column");
    symbol& s = sym(target);
    if (s.type == UNKNOWN) {
        s.val.ptr = harraynew(1, 1);
        s.type = MATRIX;
    }
    harray* m = static_cast<harray*>(s.val.ptr);
    if (row > m->rows || col > m->cols)
        s.val.ptr = m = harraygrow(m, std::max(row, m->rows), std::max(col, m->cols));
    at(m, row, col) = x;
}

double assignnode(int target, int right, int p) {
    const double x = evalscalar(right, p);
    if (isformalref(target)) tarnerror("can't assign value to a formal argument");
    if (issymbolref(target))
        assignsymbol(target, x);
    else if (target < 0 && tri(target).op == TREECALL)
        assignelement(target, x, p);
    else
        tarnerror("bad function structure");
    return x;
}

static_assert(int(TREEPOWER) == TOKPOWER && int(TREEOR) == TOKOR); // trees are built of tokens

double arithmetic(int op, double a, double b) {
    switch (op) {
    case TREENOT: return a == 0;
    case TREENEGATE: return -a;
    case TREEIDENTITY: return a;
    default: return scalarop(a, b, op);
    }
}

// ref: the operand that is a matrix where a number is due.
[[noreturn]] void matrixmisused(int ref) {
    const furtherline more =
        issymbolref(ref) ? further("%s; a number is due, as M(I,J)", describe(ref).c_str())
        : isformalref(ref)
            ? further("an argument is a matrix and a number is due; F ON M takes one by one")
            : further("what stands beside an operator is a matrix and a number is due, as M(I,J)");
    tarnerror(more, MATRIXMISUSE);
}

double operatornode(const trinode n, int p) {
    const double a = evalref(n.left, p);
    const int leftflag = eval.matrixflag;
    const double b = n.op < TREENOT ? evalref(n.right, p) : 0;
    if (leftflag || eval.matrixflag) matrixmisused(leftflag ? n.left : n.right);
    return arithmetic(n.op, a, b);
}

double evalnode(int ref, int p) {
    const depthcount depth;
    stackcheck();
    const trinode n = tri(ref); // a copy: making a derivative may move the store
    double result;
    switch (n.op) {
    case TREEIF: {
        const trinode branches = tri(n.right);
        return evalref(evalscalar(n.left, p) != 0 ? branches.left : branches.right, p); // may yield a matrix
    }
    case TREEASSIGN: result = assignnode(n.left, n.right, p); break;
    case TREECALL: result = callnode(ref, p); break;
    default: result = operatornode(n, p); break;
    }
    eval.matrixflag = 0;
    return result;
}

} // namespace

double evalscalar(int ref, int p) {
    const double x = evalref(ref, p);
    if (eval.matrixflag) matrixmisused(ref);
    return x;
}

void checkcount(int callee, int n) {
    const signed char* slots = sym(callee).val.argd;
    const int most = slots[0];
    if (most < 0) return; // arguments are not checked
    const auto least = std::count_if(slots + 1, slots + 1 + most, [](signed char s) { return s > 0; });
    if (n < least || n > most)
        tarnerror("function %s takes %hd arguments; %hd are mandatory", sym(callee).name, short(most),
                  short(least));
}

void stackexhausted() { tarnerror("stack space too low; check infinite recursion, termination necessary."); }

double value(int p) {
    stackcheck();
    const int f = parser.polstack[p];
    const int n = eval.evalargs = parser.poltop - p;
    const int type = eval.evaltype = sym(f).type;
    if (type < 0) return builtinvalue(p, type, n);
    if (type == USERFUNCTION || (type == INITIALVALUE && eval.odeactive)) return userfunction(p, f, n);
    if (type != INITIALVALUE) tarnerror("%s is not a function", sym(f).name);
    const int last = n > 0 ? parser.polstack[parser.poltop] : 0;
    return solution(f, last == 0 ? 0 : scalararg(last));
}

double callvalue(int f, const double* args, int nargs) {
    const stackmark mark;
    pushentry(f);
    const int p = parser.poltop;
    for (int k = 0; k < nargs; k++) pushentry(pushcell(args[k]));
    return value(p);
}

double evalsymbol(int idx) {
    const symbol& s = sym(idx);
    eval.matrixflag = 0;
    if (isscalartype(s.type)) {
        if (s.val.rval == UNDEFINEDMARK) tarnerror("scalar %s has not yet been defined", s.name);
        return s.val.rval;
    }
    if (s.type != MATRIX)
        tarnerror(furtherline{describe(idx)}, "%s is not a matrix, function, initial, constant or scalar",
                  s.name);
    eval.matrixflag = idx;
    return UNDEFINEDMARK;
}

double evalref(int ref, int p) {
    if (ref <= 0) return evalnode(ref, p);
    if (!isformalref(ref)) return evalsymbol(ref);
    const int entry = parser.polstack[p + ref - FORMALBASE];
    if (entry > 0) return evalsymbol(entry);
    eval.matrixflag = 0;
    return parser.scalar[-entry];
}

bool calledassolution(int idx) {
    if (eval.odeactive) return isrunningstate(idx);
    return sym(idx).type == INITIALVALUE || (isderivname(idx) && solutionderivative(idx));
}

namespace {
const char* entryname(int entry) { return entry > 0 ? sym(entry).name : "expression"; }
} // namespace

harray* matrixarg(int entry) {
    if (entry <= 0 || !ismatrix(entry)) tarnerror("%s is not a matrix", entryname(entry));
    return matrixof(entry);
}

void* matrixorstringarg(int entry) {
    if (entry <= 0 || (!ismatrix(entry) && sym(entry).type != STRINGMATRIX))
        tarnerror("%s is not a matrix", entryname(entry));
    return sym(entry).val.ptr;
}

double& elemref(harray* m, double row, double col) {
    const auto check = [](double x, uint32_t extent, const char* which) {
        const double whole = std::trunc(x);
        if (!(whole >= 1 && whole <= extent)) badsubscript(whole, which);
        return uint32_t(whole);
    };
    const uint32_t i = check(row, m->rows, "row"), j = check(col, m->cols, "column");
    return at(m, i, j);
}

void evalstart(size_t stackbytes) {
    const char here = 0;
    eval = evalstate{};
    const size_t kept = std::min(STACKRESERVE, stackbytes / 2);
    eval.stacklimit = &here - (stackbytes - kept);
}

double scalararg(int entry) {
    if (entry < 0) return parser.scalar[-entry];
    if (!isscalar(entry))
        tarnerror(furtherline{describe(entry)}, "%s is not a matrix, function, initial, constant or scalar",
                  nametext(entry).c_str());
    const symbol& s = sym(entry);
    if (s.val.rval == UNDEFINEDMARK) tarnerror("scalar %s has not yet been defined", s.name);
    return s.val.rval;
}
