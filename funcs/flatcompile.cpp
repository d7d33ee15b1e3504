// Flat code: expressions, and the bookkeeping of registers and stretches of code.
#include "funcs/trinode.h"

#include "funcs/flatcompile.h"

#include "funcs/value.h"
#include "interp/base/operand.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {
constexpr int MOSTOPS = 20000, MOSTVISITS = 200000;
}

flatcompiler::flatcompiler(flatunitcompiler& u, flatroutine& r, int k) : unit(u), out(r), number(k) {
    openscope(false);
}

flatval flatcompiler::nextargument() {
    argregs.push_back(newreg(0, true));
    return {FLATNUMERIC, argregs.back()};
}

int flatcompiler::newreg(int level, bool finite) {
    regs.push_back({level, finite, false, false, {}});
    return int(regs.size()) - 1;
}

// The value of r meets an operation that could hide that it is not finite.
void flatcompiler::needfinite(int r) {
    flatreg& reg = regs[size_t(r)];
    if (reg.finite) return;
    reg.finite = true;
    reg.checked = reg.from.empty();
    for (int source : std::vector<int>(reg.from)) needfinite(source);
}

// A value used in another stretch than its own may not be used at all: its fault must not get lost.
void flatcompiler::use(int r, int level) {
    regs[size_t(r)].used = true;
    if (regs[size_t(r)].level != level) needfinite(r);
}

void flatcompiler::put(int level, int op, const char* kinds, int x, int y, int z) {
    auto& code = scopes[size_t(level)].code;
    code.push_back({op, kinds, {x, y, z}});
    if (++unit.visits > MOSTVISITS || code.size() > MOSTOPS) throw flatrefused{};
}

const flatval* flatcompiler::known(const flatvaluekey& key) const {
    for (const flatscope& s : scopes)
        if (const auto found = s.known.find(key); found != s.known.end()) return &found->second;
    return nullptr;
}

int flatcompiler::levelfor(const std::vector<int>& operands) const {
    int level = here(), needed = 0;
    for (int r : operands) needed = std::max(needed, regs[size_t(r)].level);
    while (level > needed && scopes[size_t(level)].loop) level--;
    return level;
}

// An operation on two registers, or on one (b is -1): a value known already, or a new instruction.
int flatcompiler::emit(int op, int a, int b, bool finite) {
    const flatvaluekey key{op, a, b};
    if (const flatval* v = known(key)) return v->ref;
    const int level = b < 0 ? levelfor({a}) : levelfor({a, b});
    const int dst = newreg(level, finite);
    use(a, level);
    if (b >= 0) use(b, level);
    if (op == FLATNEG) regs[size_t(dst)].from = {a};
    put(level, op, b < 0 ? "rr" : "rrr", dst, a, b);
    scopes[size_t(level)].known[key] = {FLATNUMERIC, dst};
    return dst;
}

std::vector<flatproto> flatcompiler::closescope() {
    std::vector<flatproto> code = std::move(scopes.back().code);
    scopes.pop_back();
    return code;
}

void flatcompiler::append(const std::vector<flatproto>& code) {
    auto& to = scopes.back().code;
    to.insert(to.end(), code.begin(), code.end());
}

void flatcompiler::reserve(int pol, int scalar) {
    out.polcells = std::max(out.polcells, cells.pol + pol);
    out.scalarcells = std::max(out.scalarcells, cells.scalar + scalar);
}

int flatcompiler::constant(double x) {
    const auto [found, added] = constants.try_emplace(std::bit_cast<uint64_t>(x), 0);
    if (added) {
        found->second = newreg(0, true);
        constantvalues[found->second] = x;
        imageregs.push_back(found->second);
        out.image.push_back(x);
    }
    return found->second;
}

int flatcompiler::global(int idx) {
    const auto [found, added] = globals.try_emplace(idx, 0);
    if (added) {
        found->second = newreg(0, true);
        unit.unit.globals.push_back({int16_t(idx), uint16_t(number), uint16_t(imageregs.size())});
        imageregs.push_back(found->second);
        out.image.push_back(0);
        unit.read.insert(idx);
        if (number > 0) unit.calleeread.insert(idx);
    }
    return found->second;
}

void flatcompiler::arguments(const std::vector<int>& args, int level) {
    for (size_t k = 0; k < args.size(); k += 3) {
        static const char* const kinds[] = {"", "r", "rr", "rrr"};
        const size_t n = std::min<size_t>(3, args.size() - k);
        put(level, FLATDATA, kinds[n], args[k], n > 1 ? args[k + 1] : 0, n > 2 ? args[k + 2] : 0);
    }
}

// ---- expressions

flatval flatcompiler::symbolvalue(int idx) {
    for (size_t k = dummies.size(); k-- > 0;)
        if (dummies[k].symbol == idx) return {FLATNUMERIC, dummies[k].reg};
    if (const auto input = inputs.find(idx); input != inputs.end()) return {FLATNUMERIC, input->second};
    const symbol& s = sym(idx);
    if (s.type == CONSTANT && s.name[0] == '#') return {FLATNUMERIC, constant(s.val.rval)};
    if (isscalartype(s.type)) return {FLATNUMERIC, global(idx)};
    if (s.type == MATRIX) return {FLATMATRIXVALUE, unit.matrix(idx)};
    if (s.type < 0) return {FLATFUNCTIONVALUE, idx};
    throw flatrefused{};
}

flatval flatcompiler::expression(int ref) {
    if (isnoderef(ref)) return nodevalue(ref);
    if (issymbolref(ref)) return symbolvalue(ref);
    const auto& formals = envs.back().formals;
    const int k = ref - FORMALBASE - 1;
    if (k < 0 || k >= int(formals.size())) throw flatrefused{};
    return formals[size_t(k)];
}

int flatcompiler::numeric(int ref) {
    const flatval v = expression(ref);
    if (v.kind != FLATNUMERIC) throw flatrefused{};
    return v.ref;
}

int flatcompiler::finite(int ref) {
    const int r = numeric(ref);
    needfinite(r);
    return r;
}

/* Derivatives share subtrees: a node means the same for the same formals and dummies. A call is written out
 * each time, since each sets the last value of the function. */
flatval flatcompiler::nodevalue(int ref) {
    if (stacklow() || ++unit.visits > MOSTVISITS) throw flatrefused{};
    const trinode n = tri(ref);
    if (n.op == TREECALL) return call(ref);
    if (n.op == TREEASSIGN) throw flatrefused{};
    const flatvaluekey key{-1, ref, envs.back().serial, dummyserial};
    if (const flatval* v = known(key)) return *v;
    flatval v{FLATNUMERIC, 0};
    switch (n.op) {
    case TREEIF: v.ref = conditional(n); break;
    case TREEIDENTITY: v.ref = numeric(n.left); break;
    case TREENEGATE: v.ref = emit(FLATNEG, numeric(n.left), -1, false); break;
    case TREENOT: v.ref = emit(FLATNOT, finite(n.left), -1, true); break;
    default: v.ref = binary(n.op, n.left, n.right);
    }
    if (!unit.callsfunctions(ref)) scopes.back().known[key] = v;
    return v;
}

int flatcompiler::binary(int op, int left, int right) {
    int a = numeric(left), b = numeric(right);
    const bool hides = op == TREEPOWER || (op >= TREEEQUAL && op <= TREEOR);
    if (hides) needfinite(a);
    if (hides || op == TREEDIVIDE) needfinite(b);
    const bool symmetric =
        op == TREEPLUS || op == TREETIMES || op == TREEEQUAL || op == TREEAND || op == TREEOR;
    if (symmetric && a > b) std::swap(a, b);
    const auto exponent = constantvalues.find(b);
    switch (op) {
    case TREEPOWER: // the square is a product in every power of the language
        if (exponent != constantvalues.end() && exponent->second == 2) return emit(FLATMUL, a, a, false);
        return emit(FLATPOW, a, b, true);
    case TREETIMES: return emit(FLATMUL, a, b, false);
    case TREEDIVIDE: return emit(FLATDIV, a, b, false);
    case TREEPLUS: return emit(FLATADD, a, b, false);
    case TREEMINUS: return emit(FLATSUB, a, b, false);
    case TREEEQUAL: return emit(FLATEQ, a, b, true);
    case TREELESS: return emit(FLATLT, a, b, true);
    case TREELESSEQ: return emit(FLATLE, a, b, true);
    case TREEGREATEREQ: return emit(FLATLE, b, a, true);
    case TREEGREATER: return emit(FLATLT, b, a, true);
    case TREEAND: return emit(FLATAND, a, b, true);
    case TREEOR: return emit(FLATOR, a, b, true);
    default: throw flatrefused{};
    }
}

void flatcompiler::jumpunless(int condition, int target) {
    const trinode n = isnoderef(condition) ? tri(condition) : trinode{0, 0, 0};
    if (n.op < TREEEQUAL || n.op > TREEGREATER) {
        const int r = finite(condition);
        use(r, here());
        put(FLATJUMPNOT, "lr", target, r);
        return;
    }
    int a = finite(n.left), b = finite(n.right);
    if (n.op == TREEGREATER || n.op == TREEGREATEREQ) std::swap(a, b);
    use(a, here());
    use(b, here());
    const bool strict = n.op == TREELESS || n.op == TREEGREATER;
    put(n.op == TREEEQUAL ? FLATJUMPNE : strict ? FLATJUMPNLT : FLATJUMPNLE, "lrr", target, a, b);
}

int flatcompiler::conditional(const trinode& n) {
    const int otherwise = labels++, end = labels++;
    jumpunless(n.left, otherwise);
    const trinode branches = tri(n.right);
    const int dst = newreg(here(), false);
    for (bool then : {true, false}) {
        openscope(false);
        const int r = numeric(then ? branches.left : branches.right);
        use(r, here());
        put(FLATMOVE, "rr", dst, r);
        if (then) put(FLATJUMP, "l", end);
        const auto branch = closescope();
        append(branch);
        label(then ? otherwise : end);
        regs[size_t(dst)].from.push_back(r);
    }
    return dst;
}
