// Which formals of a function are called in its body.
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/symtab.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

/* Which of a function's formals (the first 32) are called in its body, or passed on to be called. Kept until
 * another definition is made; `open` are the functions whose answer is being sought. */
struct calledformals {
    uint32_t mask[SYMTABSIZE];
    uint32_t made[SYMTABSIZE]; // value of trinodes.made for which the mask stands
};
calledformals called;

uint32_t findcalled(int f, std::vector<int>& open) {
    if (std::find(open.begin(), open.end(), f) != open.end() || funcheader(f) >= 0) return 0;
    if (called.made[f] == trinodes.made) return called.mask[f];
    open.push_back(f);
    uint32_t mask = 0;
    const auto add = [&](int ref) {
        if (isformalref(ref) && ref <= FORMALBASE + 32) mask |= 1u << (ref - FORMALBASE - 1);
    };
    treewalk(funcbody(f), [&](int at) {
        const trinode n = tri(at);
        if (n.op != TREECALL) return true;
        add(n.right);
        const bool user =
            issymbolref(n.right) && (sym(n.right).type == USERFUNCTION || sym(n.right).type == INITIALVALUE);
        const uint32_t passed = user ? findcalled(n.right, open) : 0;
        int k = 0;
        for (int cell = n.left; cell < 0 && k < 32; cell = tri(cell).left, k++)
            if (passed >> k & 1) add(tri(cell).right);
        return true;
    });
    open.pop_back();
    if (open.empty()) { // else the answer may lack what an open function would add
        called.mask[f] = mask;
        called.made[f] = trinodes.made;
    }
    return mask;
}

} // namespace

bool formaliscalled(int f, int k) {
    std::vector<int> open;
    if (called.made[f] == trinodes.made) return k <= 32 && (called.mask[f] >> (k - 1) & 1);
    return k <= 32 && (findcalled(f, open) >> (k - 1) & 1);
}
