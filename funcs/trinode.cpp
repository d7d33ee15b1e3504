#include "funcs/trinode.h"

#include "interp/base/report.h"

#include <new>

trinodestate trinodes;

namespace {

// Records first..last-1 become the free list, lowest first.
void chainfree(int first, int last) {
    for (int n = first; n < last; n++) trinodes.at[size_t(n)] = {0, 0, int16_t(n + 1 < last ? n + 1 : 0)};
    trinodes.freelist = first;
}

void grow() {
    const int count = int(trinodes.at.size());
    if (count >= TRINODEMOST) tarnerror("trinode array can not grow. delete unneeded functions");
    try {
        trinodes.at.resize(TRINODEMOST);
    } catch (const std::bad_alloc&) { tarnerror("trinode array can not grow. delete unneeded functions"); }
    chainfree(count, TRINODEMOST);
}

/* Marks by negating op. A tree can be as deep as the store is large (the sum of many terms is a chain), so
 * the walk keeps its own list of what is still to visit. */
void trimark(int ref, std::vector<int16_t>& pending) {
    if (ref < 0) pending.push_back(int16_t(ref));
    while (!pending.empty()) {
        trinode& n = trimutable(pending.back());
        pending.pop_back();
        if (n.op <= 0) continue;
        n.op = int16_t(-n.op);
        if (n.right < 0) pending.push_back(n.right);
        if (n.left < 0) pending.push_back(n.left);
    }
}

bool functionuses(const symbol& s, int target) { return treeuses(s.index, target); }
void submatrixrelease(symbol& s) {
    if (s.index < 0) trifree(s.index);
    s.index = 0;
}

} // namespace

void trinodestart() {
    trinodes.at.assign(TRINODEFIRST, trinode{0, 0, 0});
    chainfree(1, TRINODEFIRST);
    trinodes.sweeps++;
    trinodes.made++;
    symtab.kind[USERFUNCTION].uses = symtab.kind[INITIALVALUE].uses = functionuses;
    symtab.kind[SUBMTX].release = submatrixrelease;
}

int trialloc(int op, int left, int right) {
    if (trinodes.freelist == 0) grow();
    const int n = trinodes.freelist;
    trinode& node = trinodes.at[size_t(n)];
    trinodes.freelist = node.right;
    node = {int16_t(op), int16_t(left), int16_t(right)};
    if (op == TREEHEADER) trinodes.made++;
    return -n;
}

void trifree(int ref) {
    trimutable(ref) = {0, 0, int16_t(trinodes.freelist)};
    trinodes.freelist = -ref;
}

void trireclaim() {
    std::vector<int16_t> pending;
    for (int i = 1; i < SYMTABSIZE; i++)
        if (sym(i).type == USERFUNCTION || sym(i).type == INITIALVALUE) trimark(sym(i).index, pending);
    trinodes.freelist = 0;
    for (int n = int(trinodes.at.size()) - 1; n >= 1; n--) {
        trinode& node = trinodes.at[size_t(n)];
        if (node.op < 0) {
            node.op = int16_t(-node.op);
        } else {
            node = {0, 0, int16_t(trinodes.freelist)};
            trinodes.freelist = n;
        }
    }
    trinodes.sweeps++;
    trinodes.made++;
}

int trifreecount() {
    int count = 0;
    for (int n = trinodes.freelist; n != 0; n = trinodes.at[size_t(n)].right) count++;
    return count;
}

int tricall(int callee, const std::vector<int>& args) {
    const int call = trialloc(TREECALL, 0, callee);
    int last = call;
    for (int arg : args) {
        const int cell = trialloc(TREEARG, 0, arg);
        trimutable(last).left = int16_t(cell);
        last = cell;
    }
    return call;
}

int tricall(int callee, std::initializer_list<int> args) { return tricall(callee, std::vector<int>(args)); }

int formalcount(int f) {
    int count = 0;
    for (int ref = funcformals(f); ref < 0; ref = tri(ref).left) count++;
    return count;
}

int formalref(int f, int k) {
    int ref = funcformals(f);
    while (ref < 0 && --k > 0) ref = tri(ref).left;
    return ref < 0 ? tri(ref).right : 0;
}

bool treeuses(int ref, int target) {
    bool used = ref == target;
    treewalk(ref, [&](int at) { return !(used = tri(at).left == target || tri(at).right == target); });
    return used;
}
