// Flat code: calls of builtins, matrices and user functions, and the operators with a dummy.
#include "funcs/flatcompile.h"

#include "funcs/value.h"
#include "interp/base/operand.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int FIRSTNUMBERCODE = -400, CODEROWS = -401, CODECOLS = -402, FIRSTOPERATORCODE = -500,
              CODEEVAL = -501, CODESUM = -502, CODEROOT = -503, CODEPRODUCT = -504;
constexpr int INLINEDEPTH = 24, INLINEVISITS = 6000;

void checkcount(int callee, size_t n) {
    const signed char* slots = sym(callee).val.argd;
    if (slots[0] < 0) return;
    const auto least = std::count_if(slots + 1, slots + 1 + slots[0], [](signed char s) { return s > 0; });
    if (n < size_t(least) || n > size_t(slots[0])) throw flatrefused{};
}

// Does an argument of this kind suit the slot? Plain cases only; the walk serves and refuses all others.
bool suits(int slot, flatkind kind) {
    slot = std::abs(slot);
    if (kind == FLATMATRIXVALUE) return slot == 6 || slot == 20 || slot == 22 || slot == 25 || slot == 27;
    return kind == FLATNUMERIC && (slot == 4 || slot == 20 || slot == 22);
}

/* Number builtins that depend on their arguments alone: table lookup, shape, extremes and their places,
 * measures of matrices. MENUCHOICE asks the user, QROMB evaluates functions; further down stand solvers and
 * texts. */
bool purenumber(int code) {
    return (code >= -433 && code != -411 && code != -412) || (code <= -444 && code >= -446);
}

} // namespace

std::vector<int> flatargumentrefs(int call) {
    std::vector<int> args;
    for (int cell = tri(call).left; cell < 0; cell = tri(cell).left) args.push_back(tri(cell).right);
    return args;
}

flatval flatcompiler::call(int ref) {
    int callee = tri(ref).right;
    if (isformalref(callee)) {
        const flatval v = expression(callee);
        if (v.kind == FLATMATRIXVALUE) return {FLATNUMERIC, element(v.ref, ref)};
        if (v.kind != FLATFUNCTIONVALUE) throw flatrefused{};
        callee = v.ref;
    }
    const auto bound = [&](const flatdummy& d) { return d.symbol == callee; };
    if (inputs.count(callee) || std::any_of(dummies.begin(), dummies.end(), bound)) throw flatrefused{};
    const int type = sym(callee).type;
    if (type == MATRIX) return {FLATNUMERIC, element(unit.matrix(callee), ref)};
    if (type == USERFUNCTION) return {FLATNUMERIC, usercall(callee, ref)};
    if (type >= 0 || type < CODEPRODUCT) throw flatrefused{};
    unit.guard(callee);
    if (type > FIRSTNUMBERCODE) return {FLATNUMERIC, scalarcall(callee, ref)};
    if (type > FIRSTOPERATORCODE) return {FLATNUMERIC, numbercall(callee, ref)};
    return {FLATNUMERIC, operatorcall(type, ref)};
}

int flatcompiler::scalarcall(int callee, int ref) {
    const scalarrow* row = scalarbuiltinrow(sym(callee).type);
    if (!row || (row->flags & IMPURE)) throw flatrefused{};
    const std::vector<int> given = flatargumentrefs(ref);
    checkcount(callee, given.size());
    const int counted = row->flags & COUNTED ? 1 : 0;
    std::vector<int> args;
    if (counted) args.push_back(constant(double(given.size())));
    const flatcells before = cells;
    for (int arg : given) {
        cells.scalar++;
        reserve(0, 0);
        args.push_back(finite(arg));
    }
    cells = before;
    if (row->arity >= 0) {
        for (int k = int(args.size()) - counted; k + counted < row->arity; k++)
            args.push_back(constant(SCALARABSENT[k]));
        args.resize(size_t(row->arity));
    }
    const int at = unit.row(row);
    flatvaluekey key{FLATCALLN, at};
    key.insert(key.end(), args.begin(), args.end());
    if (const flatval* v = known(key)) return v->ref;
    const int level = levelfor(args);
    const int dst = newreg(level, true);
    for (int a : args) use(a, level);
    if (row->arity == 1) {
        put(level, FLATCALL1, "rrn", dst, args[0], at);
    } else if (row->arity == 2) {
        put(level, FLATCALL2, "rrr", dst, args[0], args[1]);
        put(level, FLATDATA, "n", at);
    } else {
        put(level, FLATCALLN, "rnn", dst, at, int(args.size()));
        arguments(args, level);
    }
    scopes[size_t(level)].known[key] = {FLATNUMERIC, dst};
    return dst;
}

// Stays where it stands, since the subscripts may be in range in this branch alone.
int flatcompiler::element(int m, int ref) {
    const std::vector<int> at = flatargumentrefs(ref);
    if (at.empty() || at.size() > 2) throw flatrefused{};
    const flatcells before = cells;
    cells.scalar++;
    const int row = finite(at[0]);
    cells.scalar++;
    reserve(0, 0);
    const int col = at.size() == 2 ? finite(at[1]) : constant(1);
    cells = before;
    const flatvaluekey key{FLATELEM, m, row, col};
    if (const flatval* v = known(key)) return v->ref;
    const int dst = newreg(here(), true);
    use(row, here());
    use(col, here());
    put(FLATELEM, "rrr", dst, row, col);
    put(FLATDATA, "n", m);
    scopes.back().known[key] = {FLATNUMERIC, dst};
    return dst;
}

int flatcompiler::numbercall(int callee, int ref) {
    const int code = sym(callee).type;
    const numberrow* row = numberbuiltinrow(code);
    const signed char* slots = sym(callee).val.argd;
    if (!row || !purenumber(code) || slots[0] < 0) throw flatrefused{};
    const std::vector<int> given = flatargumentrefs(ref);
    checkcount(callee, given.size());
    flatnumbercall made{row, callee, {}};
    const flatcells before = cells;
    cells.pol++;
    for (size_t k = 0; k < given.size(); k++) {
        cells.scalar++;
        reserve(1, 0);
        const flatval v = expression(given[k]);
        if (!suits(slots[k + 1], v.kind)) throw flatrefused{};
        if (v.kind == FLATNUMERIC) {
            needfinite(v.ref);
            use(v.ref, here());
            made.arg.push_back(v.ref);
        } else {
            made.arg.push_back(-1 - v.ref);
        }
        cells.pol++;
    }
    cells = before;
    const int dst = newreg(here(), true);
    if ((code == CODEROWS || code == CODECOLS) && made.arg.size() == 1 && made.arg[0] < 0) {
        put(code == CODEROWS ? FLATROWS : FLATCOLS, "rn", dst, -1 - made.arg[0]);
        return dst;
    }
    put(FLATNUMBER, "rn", dst, int(out.numbercalls.size()));
    out.numbercalls.push_back(std::move(made));
    return dst;
}

// ---- SUM, PRODUCT, ROOT, INTEGRAL, EVAL

int flatcompiler::operatorcall(int code, int ref) {
    const std::vector<int> arg = flatargumentrefs(ref);
    const int dummy = arg.empty() ? 0 : arg[0];
    if (arg.size() != (code == CODEEVAL ? 3 : 4) || !issymbolref(dummy) || inputs.count(dummy))
        throw flatrefused{};
    // While its first values are computed the dummy is a scalar, whatever it was.
    const bool read = treeuses(arg[1], dummy) || (code != CODEEVAL && treeuses(arg[2], dummy));
    if (read && !isscalar(dummy)) throw flatrefused{};
    unit.dummies.insert(dummy);
    const flatcells before = cells;
    cells.scalar += 2;
    reserve(0, 0);
    int dst;
    if (code == CODEEVAL) {
        const int x = numeric(arg[1]);
        dummies.push_back({dummy, x});
        dummyserial = ++serials;
        dst = numeric(arg[2]);
        dummies.pop_back();
        dummyserial = ++serials;
    } else {
        const int low = finite(arg[1]), high = finite(arg[2]);
        use(low, here());
        use(high, here());
        const bool counts = code == CODESUM || code == CODEPRODUCT;
        dst = counts ? sumloop(code == CODEPRODUCT, dummy, low, high, arg[3])
                     : segment(code == CODEROOT, dummy, low, high, arg[3]);
    }
    cells = before;
    return dst;
}

int flatcompiler::sumloop(bool product, int dummy, int low, int high, int body) {
    const int sum = newreg(here(), false), begin = constant(product ? 1 : 0);
    const int start = labels++, next = labels++, end = labels++;
    const int loop = int(out.loops.size());
    out.loops.push_back({});
    openscope(true);
    const int x = newreg(here(), true);
    dummies.push_back({dummy, x});
    dummyserial = ++serials;
    const int term = numeric(body);
    use(term, here());
    dummies.pop_back();
    dummyserial = ++serials;
    const auto inner = closescope();
    put(FLATMOVE, "rr", sum, begin);
    put(FLATLOOP, "nr", loop, low);
    label(start);
    append(inner);
    label(next);
    put(FLATNEXT, "n", loop);
    label(end);
    put(FLATCHECK, "rr", sum, sum);
    regs[size_t(sum)].finite = true;
    flatloop& made = out.loops[size_t(loop)]; // virtual registers and labels until finish
    made = {product, x, high, sum, term, start, next, end, false, {}};
    return sum;
}

int flatcompiler::segment(bool root, int dummy, int low, int high, int body) {
    const int dst = newreg(here(), true), start = labels++, end = labels++;
    const int which = int(out.segments.size());
    out.segments.push_back({});
    openscope(true);
    const int x = newreg(here(), true);
    dummies.push_back({dummy, x});
    dummyserial = ++serials;
    const int value = finite(body);
    use(value, here());
    dummies.pop_back();
    dummyserial = ++serials;
    const auto inner = closescope();
    put(FLATSEGMENT, "rnr", dst, which, low);
    label(start);
    append(inner);
    put(FLATSEGMENTEND, "", 0);
    label(end);
    out.segments[size_t(which)] = {root, x, high, value, start, end};
    return dst;
}

// ---- user functions

int flatcompiler::usercall(int callee, int ref) {
    if (sym(callee).name[0] ==
        '.') { // may be a variable of a running system, or the derivative of a solution
        unit.unit.odedependent = true;
        if (calledassolution(callee)) throw flatrefused{};
    }
    const std::vector<int> given = flatargumentrefs(ref);
    if (int(given.size()) != formalcount(callee)) throw flatrefused{};
    unit.guard(callee);
    const flatcells before = cells;
    cells.pol++;
    std::vector<flatval> args;
    for (size_t k = 0; k < given.size(); k++) {
        int arg = given[k];
        const bool bare =
            issymbolref(arg) && (sym(arg).type == USERFUNCTION || sym(arg).type == INITIALVALUE);
        const bool wanted = formaliscalled(callee, int(k) + 1);
        flatval v{FLATFUNCTIONVALUE, arg};
        if (!bare || !wanted) {
            cells.scalar++;
            reserve(1, 0);
            v = expression(arg);
            if (v.kind != FLATNUMERIC) cells.scalar--;
        }
        if (v.kind == FLATFUNCTIONVALUE && !wanted) throw flatrefused{};
        if (v.kind == FLATNUMERIC && wanted) throw flatrefused{};
        args.push_back(v);
        cells.pol++;
    }
    reserve(0, 0);
    const bool open =
        std::any_of(envs.begin(), envs.end(), [&](const flatenv& e) { return e.function == callee; });
    int result;
    if (!open && envs.size() < INLINEDEPTH && unit.visits < INLINEVISITS)
        result = inlined(callee, args);
    else
        result = routinecall(callee, args, cells);
    cells = before;
    return result;
}

int flatcompiler::inlined(int callee, const std::vector<flatval>& args) {
    // The same call again means the same values.
    flatvaluekey key{-2, callee, dummyserial};
    for (const flatval& v : args) key.insert(key.end(), {int(v.kind), v.ref});
    int serial = ++serials;
    if (const flatval* v = known(key))
        serial = v->ref;
    else
        scopes.back().known[key] = {FLATNUMERIC, serial};
    envs.push_back({callee, args, serial});
    const int result = numeric(funcbody(callee));
    envs.pop_back();
    if (regs[size_t(result)].level != here()) needfinite(result); // to be stored is no use: it tells no fault
    put(FLATSTORE, "nr", callee, result);
    unit.stored.insert(callee);
    return result;
}

int flatcompiler::routinecall(int callee, const std::vector<flatval>& args, flatcells at) {
    flatroutinekey key{callee, {}};
    std::vector<int> numbers;
    for (const flatval& v : args) {
        key.binding.push_back(v.kind == FLATNUMERIC ? 0 : v.kind == FLATMATRIXVALUE ? 1 + v.ref : -v.ref);
        if (v.kind != FLATNUMERIC) continue;
        needfinite(v.ref);
        use(v.ref, here());
        numbers.push_back(v.ref);
    }
    const int dst = newreg(here(), true);
    put(FLATUSER, "rnn", dst, unit.routine(key), int(numbers.size()));
    put(FLATDATA, "nn", at.pol, at.scalar);
    arguments(numbers, here());
    unit.stored.insert(callee);
    return dst;
}
