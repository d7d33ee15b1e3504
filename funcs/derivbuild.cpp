#include "funcs/derivbuild.h"

#include "funcs/trinode.h"
#include "interp/base/fpfault.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"

#include <algorithm>
#include <cmath>

namespace {

bool isop(int ref, int op) { return ref < 0 && tri(ref).op == op; }
int left(int ref) { return tri(ref).left; }
int right(int ref) { return tri(ref).right; }

// A folded constant must be finite and must not hide a fault that evaluation would tell of.
bool foldable(double x) { return std::fabs(x) <= MAXPOS; }

/* The product `tree` without its factor `factor`, 0 when it has none. Powers count as factors of themselves
 * only. */
int cancels(int tree, int factor) {
    if (treeequal(tree, factor)) return treenumber(1);
    if (!isop(tree, TREETIMES)) return 0;
    if (const int rest = cancels(left(tree), factor)) return treemul(rest, right(tree));
    if (const int rest = cancels(right(tree), factor)) return treemul(left(tree), rest);
    return 0;
}

bool symbolic(int ref) { return !treeconstant(ref); }

int mulconstant(int c, int b) {
    if (isop(b, TREETIMES) && treeconstant(left(b))) {
        const double folded = treeconstantvalue(c) * treeconstantvalue(left(b));
        if (foldable(folded)) return treemul(treenumber(folded), right(b));
    }
    if (isop(b, TREEDIVIDE) && treeconstant(left(b))) {
        const double folded = treeconstantvalue(c) * treeconstantvalue(left(b));
        if (foldable(folded)) return treediv(treenumber(folded), right(b));
    }
    return trialloc(TREETIMES, c, b);
}

// a times the quotient q, where a cancels with q's denominator; 0 when it does not.
int mulquotient(int a, int q) {
    if (!isop(q, TREEDIVIDE) || !symbolic(a)) return 0;
    const int rest = cancels(right(q), a);
    return rest ? treediv(left(q), rest) : 0;
}

} // namespace

int treenumber(double x) { return symtabconst(x == 0 ? 0.0 : x); }

bool treeconstant(int ref) { return ref > 0 && ref < SYMTABSIZE && sym(ref).type == CONSTANT; }
double treeconstantvalue(int ref) { return sym(ref).val.rval; }
bool treeis(int ref, double x) { return treeconstant(ref) && sym(ref).val.rval == x; }

bool treeequal(int a, int b) {
    if (a == b) return true;
    if (a >= 0 || b >= 0) return false;
    const trinode& m = tri(a);
    const trinode& n = tri(b);
    return m.op == n.op && treeequal(m.left, n.left) && treeequal(m.right, n.right);
}

int treedepth(int ref) {
    if (ref >= 0) return 1;
    return 1 + std::max(treedepth(left(ref)), treedepth(right(ref)));
}

int treeneg(int a) {
    if (treeconstant(a)) return treenumber(-treeconstantvalue(a));
    if (isop(a, TREENEGATE)) return left(a);
    if (isop(a, TREEMINUS)) return treesub(right(a), left(a));
    return trialloc(TREENEGATE, a, 0);
}

int treeadd(int a, int b) {
    if (treeis(a, 0)) return b;
    if (treeis(b, 0)) return a;
    if (treeconstant(a) && treeconstant(b)) {
        const double folded = treeconstantvalue(a) + treeconstantvalue(b);
        if (foldable(folded)) return treenumber(folded);
    }
    if (isop(a, TREENEGATE)) return treesub(b, left(a));
    if (isop(b, TREENEGATE)) return treesub(a, left(b));
    if (treeequal(a, b)) return treemul(treenumber(2), a);
    if (isop(a, TREEMINUS) && treeequal(right(a), b)) return left(a);
    if (isop(b, TREEMINUS) && treeequal(right(b), a)) return left(b);
    return trialloc(TREEPLUS, a, b);
}

int treesub(int a, int b) {
    if (treeis(a, 0)) return treeneg(b);
    if (treeis(b, 0)) return a;
    if (treeconstant(a) && treeconstant(b)) {
        const double folded = treeconstantvalue(a) - treeconstantvalue(b);
        if (foldable(folded)) return treenumber(folded);
    }
    if (isop(b, TREENEGATE)) return treeadd(a, left(b));
    if (isop(a, TREENEGATE)) return treeneg(treeadd(left(a), b));
    if (treeequal(a, b)) return treenumber(0);
    if (isop(a, TREEPLUS) && treeequal(right(a), b)) return left(a);
    if (isop(a, TREEPLUS) && treeequal(left(a), b)) return right(a);
    if (isop(b, TREEMINUS) && treeequal(left(b), a)) return right(b);
    return trialloc(TREEMINUS, a, b);
}

int treemul(int a, int b) {
    if (treeis(a, 0) || treeis(b, 0)) return treenumber(0);
    if (treeis(a, 1)) return b;
    if (treeis(b, 1)) return a;
    if (treeconstant(a) && treeconstant(b)) {
        const double folded = treeconstantvalue(a) * treeconstantvalue(b);
        if (foldable(folded)) return treenumber(folded);
    }
    if (treeis(a, -1)) return treeneg(b);
    if (treeis(b, -1)) return treeneg(a);
    if (isop(a, TREENEGATE) && isop(b, TREENEGATE)) return treemul(left(a), left(b));
    if (isop(a, TREENEGATE)) return treeneg(treemul(left(a), b));
    if (isop(b, TREENEGATE)) return treeneg(treemul(a, left(b)));
    if (treeconstant(b)) std::swap(a, b);
    if (treeconstant(a)) return mulconstant(a, b);
    if (const int short1 = mulquotient(a, b)) return short1;
    if (const int short2 = mulquotient(b, a)) return short2;
    return trialloc(TREETIMES, a, b);
}

int treediv(int a, int b) {
    if (treeis(b, 0)) tarnerror("divide-by-zero in derivative function");
    if (treeis(a, 0)) return a;
    if (treeis(b, 1)) return a;
    if (treeis(b, -1)) return treeneg(a);
    if (treeequal(a, b)) return treenumber(1);
    if (treeconstant(a) && treeconstant(b)) {
        const double folded = treeconstantvalue(a) / treeconstantvalue(b);
        if (foldable(folded)) return treenumber(folded);
    }
    if (isop(a, TREENEGATE) && isop(b, TREENEGATE)) return treediv(left(a), left(b));
    if (isop(a, TREENEGATE)) return treeneg(treediv(left(a), b));
    if (isop(b, TREENEGATE)) return treeneg(treediv(a, left(b)));
    if (treeis(a, 1) && isop(b, TREEPOWER)) return treepow(left(b), treeneg(right(b)));
    if (symbolic(b) && isop(a, TREETIMES))
        if (const int rest = cancels(a, b)) return rest;
    if (symbolic(a) && isop(b, TREETIMES))
        if (const int rest = cancels(b, a)) return treediv(treenumber(1), rest);
    return trialloc(TREEDIVIDE, a, b);
}

int treepow(int a, int b) {
    if (treeis(b, 0)) return treenumber(1);
    if (treeis(a, 0)) return a;
    if (treeis(b, 1)) return a;
    if (treeconstant(a) && treeconstant(b)) {
        const double folded = std::pow(treeconstantvalue(a), treeconstantvalue(b));
        if (foldable(folded)) return treenumber(folded);
    }
    if (treeis(b, -1)) return treediv(treenumber(1), a);
    return trialloc(TREEPOWER, a, b);
}

int treesqr(int a) {
    if (treeconstant(a)) {
        const double folded = treeconstantvalue(a) * treeconstantvalue(a);
        if (foldable(folded)) return treenumber(folded);
    }
    if (isop(a, TREENEGATE)) return treesqr(left(a));
    return treedepth(a) > 3 ? treepow(a, treenumber(2)) : treemul(a, a);
}

int treeequals(int a, int b) { return trialloc(TREEEQUAL, a, b); }

int treeif(int condition, int yes, int no) {
    if (treeequal(yes, no)) return yes;
    return trialloc(TREEIF, condition, trialloc(TREETHEN, yes, no));
}

int treecalllist(int callee, int argcell) { return trialloc(TREECALL, argcell, callee); }

int treecall(int callee, std::initializer_list<int> args) {
    int cell = 0;
    for (const int* arg = args.end(); arg-- != args.begin();) cell = trialloc(TREEARG, cell, *arg);
    return treecalllist(callee, cell);
}
