#include "funcs/deriv.h"

#include "funcs/define.h"
#include "funcs/derivbuild.h"
#include "funcs/derivimpl.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

// The formals of the function being differentiated; formal code FORMALBASE + k stands for formals[k - 1].
struct derivstate {
    std::vector<int> formals;
};
derivstate deriv;

// Formals, definition mode and a nested differentiation's state come back on every way out.
struct derivscope {
    derivstate saved;
    int funcmode;
    derivscope() : saved(std::move(deriv)), funcmode(parser.funcmode) {
        deriv = {};
        parser.funcmode = 1; // constants made by the rules are interned and outlive the statement
    }
    ~derivscope() {
        deriv = std::move(saved);
        parser.funcmode = funcmode;
    }
    derivscope(const derivscope&) = delete;
};

// Names of the derivatives being made. One that is met within its own making is only named.
std::vector<int> making;
struct makingscope {
    explicit makingscope(int name) { making.push_back(name); }
    ~makingscope() { making.pop_back(); }
    makingscope(const makingscope&) = delete;
};

std::vector<int> formalsof(int f) {
    std::vector<int> formals;
    for (int cell = funcformals(f); cell; cell = tri(cell).left) formals.push_back(tri(cell).right);
    return formals;
}

bool isderivname(int idx) { return sym(idx).name[0] == '.'; }

int derivsymbol(int f, int x) { return symtabenter(derivname(f, x).c_str()); }

/* Does the value of tree `ref` depend on the global symbol x, also through the functions it calls? `seen`
 * holds the functions already walked, so that recursion ends. */
bool occurs(int ref, int x, std::vector<int>& seen);

bool occursinfunction(int f, int x, std::vector<int>& seen) {
    for (int s : seen)
        if (s == f) return false;
    seen.push_back(f);
    for (int formal : formalsof(f))
        if (formal == x) return false; // shadowed
    return occurs(funcbody(f), x, seen);
}

bool occurs(int ref, int x, std::vector<int>& seen) {
    if (ref == x) return true;
    if (ref > 0) return ref < SYMTABSIZE && sym(ref).type == USERFUNCTION && occursinfunction(ref, x, seen);
    if (ref == 0) return false;
    const trinode node = tri(ref);
    return occurs(node.left, x, seen) || occurs(node.right, x, seen);
}

int diffbaresymbol(int f, int x) {
    if (f == x) return treenumber(1);
    // the last value of a function changes with a variable as its derivative tells
    if (sym(x).type == UNKNOWN || sym(x).type == SCALAR) return derivsymbol(f, x);
    return treenumber(0);
}

int diffsymbol(int ref, int x) {
    if (!treeconstant(ref) && !treeconstant(x)) {
        const std::string name = "." + std::string(sym(ref).name) + "." + sym(x).name;
        const int own = name.size() <= MAXNAME ? symtablookup(name.c_str()) : -1;
        if (own > 0 && sym(own).type == USERFUNCTION) return own; // a derivative of the user's own
    }
    switch (sym(ref).type) {
    case CONSTANT: return treenumber(0);
    case UNKNOWN:
    case SCALAR:
    case MATRIX:
    case SUBMTX: return treenumber(ref == x ? 1 : 0);
    case USERFUNCTION:
    case INITIALVALUE: return diffbaresymbol(ref, x);
    default: tarnerror("Cannot differentiate a builtin function symbol");
    }
}

int diffpower(int u, int v, int x) {
    const int du = diff(u, x), dv = diff(v, x);
    int grows = treenumber(0);
    if (!treeis(dv, 0)) grows = treemul(treemul(dv, treecall(symtablookup("LOG"), {u})), treepow(u, v));
    if (treeis(du, 0)) return grows;
    return treeadd(grows, treemul(treemul(du, v), treepow(u, treesub(v, treenumber(1)))));
}

int diffquotient(int u, int v, int x) {
    const int du = diff(u, x), dv = diff(v, x);
    if (treeis(dv, 0)) return treediv(du, v);
    return treediv(treesub(treemul(du, v), treemul(dv, u)), treesqr(v));
}

int diffcomparison(int u, int v, int x) {
    const int du = diff(u, x), dv = diff(v, x);
    if (treeis(du, 0) && treeis(dv, 0)) return treenumber(0);
    if (treeequal(du, dv)) return treenumber(1);
    return treeequals(du, dv);
}

/* The chain rule. A derivative by a formal is only named here and made on first use, so a recursive function
 * can be differentiated. */
int diffuser(int f, int argcell, int x) {
    const std::vector<int> formals = formalsof(f);
    int result = treenumber(0);
    bool isformal = false;
    for (int formal : formals) isformal |= formal == x;
    std::vector<int> seen;
    if (!isformal && occursinfunction(f, x, seen)) result = treecalllist(derivsymbol(f, x), argcell);
    int cell = argcell;
    for (size_t k = 0; k < formals.size() && cell; k++, cell = tri(cell).left) {
        const int inner = diff(tri(cell).right, x);
        if (treeis(inner, 0)) continue;
        result = treeadd(result, treemul(treecalllist(derivsymbol(f, formals[k]), argcell), inner));
    }
    return result;
}

// The operators of bodies; d is the dummy's symbol, V in the comments.
struct bodyoperator {
    int callee, d, low, high, inner;
};

int operatorcall(const bodyoperator& o, int inner) { return treecall(o.callee, {o.d, o.low, o.high, inner}); }

int diffsum(const bodyoperator& o, int x) {
    if (o.d == x) tarnwarn("Diff wrt index of summation is dubious");
    const int inner = diff(o.inner, x);
    return treeis(inner, 0) ? inner : operatorcall(o, inner);
}

int diffproduct(const bodyoperator& o, int x) {
    if (o.d == x) tarnwarn("Diff wrt index of a product is dubious");
    const int inner = diff(o.inner, x);
    if (treeis(inner, 0)) return inner;
    const int sum = treecall(symtablookup("SUM"), {o.d, o.low, o.high, treediv(inner, o.inner)});
    return treemul(operatorcall(o, o.inner), sum);
}

int diffintegral(const bodyoperator& o, int x) {
    if (o.d == x) tarnwarn("Diff wrt variable of integration is dubious");
    const int inner = diff(o.inner, x);
    if (treeconstant(inner)) return treemul(treesub(o.high, o.low), inner);
    return operatorcall(o, inner);
}

// E(V, x) = 0 holds along the root: dV/dx = -(dE/dx)/(dE/dV), taken at the root.
int diffroot(const bodyoperator& o, int x) {
    if (o.d == x) tarnwarn("Diff wrt dummy root argument is dubious");
    const int along = diff(o.inner, x);
    if (treeis(along, 0)) return along;
    const int slope = treeneg(treediv(along, diff(o.inner, o.d)));
    if (treeconstant(slope)) return slope;
    return treecall(symtablookup("EVAL"), {o.d, operatorcall(o, o.inner), slope});
}

int diffeval(int callee, int d, int u, int inner, int x) {
    const int direct = diff(inner, x), du = diff(u, x);
    int result = treenumber(0);
    if (!treeis(direct, 0)) result = treecall(callee, {d, u, direct});
    if (treeis(du, 0)) return result;
    const int through = diff(inner, d);
    if (treeis(through, 0)) return result;
    return treeadd(result, treemul(du, treeconstant(through) ? through : treecall(callee, {d, u, through})));
}

int diffoperator(const derivcall& call, int x) {
    const bodyoperator o = {call.callee, call.arg[0], call.arg[1], call.arg[2], call.arg[3]};
    switch (call.code) {
    case -500: return diffintegral(o, x);
    case -501: return diffeval(call.callee, call.arg[0], call.arg[1], call.arg[2], x);
    case -502: return diffsum(o, x);
    case -503: return diffroot(o, x);
    default: return diffproduct(o, x);
    }
}

derivcall gathered(int ref) {
    const trinode node = tri(ref);
    derivcall call = {};
    call.callee = node.right;
    call.node = ref;
    call.code = sym(call.callee).type;
    for (int cell = node.left; cell; cell = tri(cell).left) {
        if (call.n >= MAXCALLARGS) tarnerror("DIFF: bad function structure");
        call.arg[call.n++] = tri(cell).right;
    }
    return call;
}

int diffcall(int ref, int x) {
    const int callee = tri(ref).right, args = tri(ref).left;
    if (callee > FORMALBASE) {
        tarnwarn("Differentiating a formal functional parameter");
        return treenumber(0);
    }
    if (callee <= 0) tarnerror("DIFF: invalid symbol for function being applied");
    if (sym(callee).type == UNKNOWN && isderivname(callee)) derivfind(callee, true);
    const int type = sym(callee).type;
    if (type == INITIALVALUE && sym(x).type == INITIALVALUE) return treenumber(callee == x ? 1 : 0);
    if (type == UNKNOWN || type == INITIALVALUE)
        return callee == x ? treenumber(1) : treecalllist(derivsymbol(callee, x), args);
    if (type == USERFUNCTION) return callee == x ? treenumber(1) : diffuser(callee, args, x);
    if (type <= -500 && type >= -504) return diffoperator(gathered(ref), x);
    if (type < 0) return diffbuiltin(gathered(ref), x);
    if (type == MATRIX || type == SCALAR || type == CONSTANT) return treenumber(0);
    tarnerror("DIFF: invalid symbol for function being applied");
}

int diffif(const trinode& node, int x) {
    const trinode then = tri(node.right);
    const int yes = diff(then.left, x), no = diff(then.right, x);
    return treeif(node.left, yes, no);
}

int diffnode(int ref, int x) {
    stackcheck();
    const trinode node = tri(ref); // a copy: building nodes may move the array
    const int u = node.left, v = node.right;
    switch (node.op) {
    case TREEPOWER: return diffpower(u, v, x);
    case TREETIMES: {
        const int du = diff(u, x), dv = diff(v, x);
        return treeadd(treemul(dv, u), treemul(du, v));
    }
    case TREEDIVIDE: return diffquotient(u, v, x);
    case TREEPLUS:
    case TREEAND:
    case TREEOR: {
        const int du = diff(u, x);
        return treeadd(du, diff(v, x));
    }
    case TREEMINUS: {
        const int du = diff(u, x);
        return treesub(du, diff(v, x));
    }
    case TREEEQUAL:
    case TREELESS:
    case TREELESSEQ:
    case TREEGREATEREQ:
    case TREEGREATER: return diffcomparison(u, v, x);
    case TREENOT:
    case TREEIDENTITY: return diff(u, x);
    case TREENEGATE: return treeneg(diff(u, x));
    case TREEIF: return diffif(node, x);
    case TREEASSIGN: return trialloc(TREEASSIGN, u, diff(v, x));
    case TREECALL: return diffcall(ref, x);
    default: tarnerror("DIFF: bad function structure");
    }
}

} // namespace

int diff(int ref, int x) {
    if (ref > FORMALBASE) {
        const size_t k = size_t(ref - FORMALBASE);
        return treenumber(k <= deriv.formals.size() && deriv.formals[k - 1] == x ? 1 : 0);
    }
    if (ref > 0) return diffsymbol(ref, x);
    if (ref == 0) tarnerror("DIFF: bad function structure");
    return diffnode(ref, x);
}

int treediff(int ref, int x, int f) {
    const derivscope scope;
    deriv.formals = formalsof(f);
    parser.treegarbage = true;
    return diff(ref, x);
}

bool functiondepends(int f, int x) {
    std::vector<int> seen;
    return occursinfunction(f, x, seen);
}

int makederiv(int f, int x) {
    if (f <= 0 || sym(f).type != USERFUNCTION)
        tarnerror("%s is not a user function. its derivative is not computable\n", f > 0 ? sym(f).name : "");
    const int name = derivsymbol(f, x);
    if (sym(name).type == USERFUNCTION) return name;
    if (sym(name).type != UNKNOWN) tarnerror("the name %s is not available", sym(name).name);
    if (std::find(making.begin(), making.end(), name) != making.end()) return name;
    const makingscope scope(name);
    int result = treediff(funcbody(f), x, f);
    if (result > 0) result = trialloc(TREEIDENTITY, result, 0);
    const int head = trialloc(TREEHEADER, funcformals(f), result);
    symbol& s = sym(name);
    s.type = USERFUNCTION;
    s.val.rval = UNDEFINEDMARK;
    s.index = int16_t(head);
    return name;
}

bool derivfind(int symidx, bool quiet) {
    if (sym(symidx).type == USERFUNCTION) return true;
    derivparts parts;
    int f = 0, x = 0;
    if (derivsplit(sym(symidx).name, parts)) {
        f = symtabenter(parts.function.c_str());
        x = symtabenter(parts.variable.c_str());
        if (sym(f).type == UNKNOWN && isderivname(f)) derivfind(f, quiet);
        if (sym(f).type == USERFUNCTION) return makederiv(f, x), true;
    }
    if (!quiet)
        tarnerror("derivative of %s wrt %s cannot be computed\n", f ? sym(f).name : sym(symidx).name,
                  x ? sym(x).name : "");
    return false;
}
