// Flat code: the routines of a unit, and the finished form of each.
#include "funcs/flatcompile.h"

#include "funcs/value.h"
#include "interp/base/operand.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t MOSTROUTINES = 32, MOSTREGS = 30000, MOSTCODE = 60000;
constexpr int MOSTBLOCKREGS = 4096; // of code that is run by blocks: 8 MB

// Has code that is not run on rows: loops, routines, number builtins.
bool leavesrows(const flatroutine& r, int from, int to) {
    for (int pc = from; pc < to; pc++) {
        const int op = r.code[size_t(pc)].op;
        if (op == FLATUSER || op == FLATLOOP || op == FLATSEGMENT || op == FLATNUMBER) return true;
    }
    return false;
}

/* What an instruction reads and sets: registers, -1 for none. Returns the words of data behind it. */
struct operands {
    int dst = -1, reads[3] = {-1, -1, -1};
    int data = 0;
    const flatop* arguments = nullptr; // further ones, in words of data
    int narguments = 0;
};

operands operandsof(const flatop* o) {
    switch (o->op) {
    case FLATMOVE:
    case FLATNEG:
    case FLATNOT:
    case FLATCHECK:
    case FLATCALL1: return {o->dst, {o->a, -1, -1}};
    case FLATCALL2:
    case FLATELEM: return {o->dst, {o->a, o->b, -1}, 1};
    case FLATCALLN: return {o->dst, {-1, -1, -1}, (o->b + 2) / 3, o + 1, o->b};
    case FLATUSER: return {o->dst, {-1, -1, -1}, 1 + (o->b + 2) / 3, o + 2, o->b};
    case FLATROWS:
    case FLATCOLS:
    case FLATNUMBER: return {o->dst};
    case FLATJUMPNOT:
    case FLATSTORE:
    case FLATRETURN: return {-1, {o->a, -1, -1}};
    case FLATJUMPNE:
    case FLATJUMPNLT:
    case FLATJUMPNLE: return {-1, {o->a, o->b, -1}};
    case FLATJUMP:
    case FLATLOOP:
    case FLATNEXT:
    case FLATSEGMENT:
    case FLATSEGMENTEND:
    case FLATDATA:
    case FLATEND: return {};
    default: return {o->dst, {o->a, o->b, -1}};
    }
}

bool branches(const flatroutine& r) {
    for (int pc = 0; pc < int(r.code.size()); pc += 1 + operandsof(&r.code[size_t(pc)]).data)
        if (const int op = r.code[size_t(pc)].op; op >= FLATJUMP && op <= FLATJUMPNLE) return true;
    return false;
}

} // namespace

// ---- a routine

// The image, the arguments, the rest; labels become places in the code.
flatplacement flatcompiler::place() const {
    flatplacement to{std::vector<int>(regs.size(), -1), std::vector<int>(size_t(labels))};
    int next = 0;
    for (int r : imageregs) to.reg[size_t(r)] = next++;
    for (int r : argregs) to.reg[size_t(r)] = next++;
    for (int& r : to.reg)
        if (r < 0) r = next++;
    int pc = 0;
    for (const flatproto& p : scopes[0].code) {
        if (p.op == FLATLABEL)
            to.label[size_t(p.field[0])] = pc;
        else
            pc++;
    }
    if (regs.size() > MOSTREGS || size_t(pc) > MOSTCODE) throw flatrefused{};
    return to;
}

void flatcompiler::writecode(const flatplacement& to) {
    for (const flatproto& p : scopes[0].code) {
        if (p.op == FLATLABEL) continue;
        uint16_t field[3] = {};
        for (size_t k = 0; p.kinds[k]; k++) {
            const size_t x = size_t(p.field[k]);
            field[k] = uint16_t(p.kinds[k] == 'r' ? to.reg[x] : p.kinds[k] == 'l' ? to.label[x] : p.field[k]);
        }
        const bool checking = p.op >= FLATADD && p.op <= FLATDIV && regs[size_t(p.field[0])].checked;
        out.code.push_back({uint16_t(p.op + checking), field[0], field[1], field[2]});
    }
    out.code.push_back({FLATEND, 0, 0, 0});
}

void flatcompiler::finish() {
    for (size_t r = 0; r < regs.size(); r++)
        if (!regs[r].used) needfinite(int(r)); // computed, then dropped: its fault counts all the same
    const flatplacement to = place();
    out.nregs = int(to.reg.size());
    writecode(to);
    const auto setreg = [&](int& r) { r = to.reg[size_t(r)]; };
    const auto setlabel = [&](int& l) { l = to.label[size_t(l)]; };
    std::vector<int> kept;
    for (flatloop& l : out.loops) {
        for (int* r : {&l.dummy, &l.high, &l.accumulator, &l.term}) setreg(*r);
        for (int* at : {&l.body, &l.next, &l.end}) setlabel(*at);
        kept.push_back(l.term);
        l.blocks = out.nregs <= MOSTBLOCKREGS && !leavesrows(out, l.body, l.next);
        if (!l.blocks) continue;
        l.vary.assign(size_t(out.nregs), 0);
        l.vary[size_t(l.dummy)] = 1;
        flatvarying(out, l.body, l.next, l.vary);
    }
    for (flatsegment& s : out.segments) {
        for (int* r : {&s.dummy, &s.high, &s.value}) setreg(*r);
        for (int* at : {&s.body, &s.end}) setlabel(*at);
    }
    for (flatnumbercall& c : out.numbercalls)
        for (int& a : c.arg)
            if (a >= 0) setreg(a);
    if (number == 0) {
        for (int& r : unit.unit.outputs) setreg(r);
        kept.insert(kept.end(), unit.unit.outputs.begin(), unit.unit.outputs.end());
    }
    finduses(kept);
}

namespace {

template <class Visit> void eachread(const operands& o, Visit&& visit) {
    for (int r : o.reads)
        if (r >= 0) visit(r);
    for (int k = 0; k < o.narguments; k++) {
        const flatop& word = o.arguments[k / 3];
        visit(k % 3 == 0 ? word.dst : k % 3 == 1 ? word.a : word.b);
    }
}

} // namespace

/* Marks what is computed from registers that vary. Where a branch depends on one, so does what is chosen in
 * it. */
void flatvarying(const flatroutine& routine, int from, int to, std::vector<uint8_t>& vary) {
    int choicesend = from; // up to here stand branches of a condition that varies
    for (int pc = from; pc < to;) {
        const flatop* o = &routine.code[size_t(pc)];
        const operands used = operandsof(o);
        uint8_t v = o->op == FLATMOVE && (pc < choicesend || vary[o->dst]);
        eachread(used, [&](int r) { v |= vary[size_t(r)]; });
        pc += 1 + used.data;
        if (used.dst >= 0) vary[size_t(used.dst)] = v;
        const bool branches = o->op >= FLATJUMPNOT && o->op <= FLATJUMPNLE;
        if (branches && v) choicesend = std::max(choicesend, int(routine.code[size_t(o->dst) - 1].dst));
    }
}

// Where registers are first set and last read; `kept` are wanted at the end.
void flatcompiler::finduses(const std::vector<int>& kept) {
    out.firstset.assign(size_t(out.nregs), 0);
    out.lastuse.assign(size_t(out.nregs), -1);
    for (int pc = 0; pc < int(out.code.size());) {
        const operands used = operandsof(&out.code[size_t(pc)]);
        eachread(used, [&](int r) { out.lastuse[size_t(r)] = pc; });
        if (used.dst >= 0 && out.firstset[size_t(used.dst)] == 0) out.firstset[size_t(used.dst)] = pc;
        pc += 1 + used.data;
    }
    for (int r : kept) out.lastuse[size_t(r)] = int(out.code.size());
}

// ---- a unit

void flatunitcompiler::guard(int idx) {
    for (const flatguard& g : unit.guards)
        if (g.symbol == idx) return;
    unit.guards.push_back({int16_t(idx), sym(idx).type, sym(idx).index});
}

int flatunitcompiler::matrix(int symbolorarg) {
    for (size_t k = 0; k < unit.matrices.size(); k++)
        if (unit.matrices[k].symbol == symbolorarg) return int(k);
    unit.matrices.push_back({symbolorarg, nullptr});
    return int(unit.matrices.size()) - 1;
}

int flatunitcompiler::row(const scalarrow* r) {
    const auto at = std::find(unit.rows.begin(), unit.rows.end(), r);
    if (at != unit.rows.end()) return int(at - unit.rows.begin());
    unit.rows.push_back(r);
    unit.columns.push_back(scalarbuiltincolumn(r->code));
    return int(unit.rows.size()) - 1;
}

int flatunitcompiler::routine(const flatroutinekey& key) {
    const auto at = std::find(keys.begin(), keys.end(), key);
    if (at != keys.end()) return int(at - keys.begin());
    if (keys.size() >= MOSTROUTINES) throw flatrefused{};
    keys.push_back(key);
    return int(keys.size()) - 1;
}

bool flatunitcompiler::callsfunctions(int ref) {
    if (ref >= 0) return false;
    if (calling.empty()) calling.assign(trinodes.at.size(), 0);
    int8_t& answer = calling[size_t(-ref)];
    if (answer == 0) {
        if (stacklow()) throw flatrefused{};
        const trinode n = tri(ref);
        const bool here = n.op == TREECALL && (isformalref(n.right) || sym(n.right).type >= 0) &&
                          !(issymbolref(n.right) && sym(n.right).type == MATRIX);
        answer = here || callsfunctions(n.left) || callsfunctions(n.right) ? 1 : -1;
    }
    return answer > 0;
}

// One function's body, for callers that bind its formals like this.
void flatunitcompiler::compilefunction(flatcompiler& c, flatroutine& made, const flatroutinekey& key) {
    std::vector<flatval> formals;
    for (int b : key.binding)
        formals.push_back(b == 0  ? c.nextargument()
                          : b > 0 ? flatval{FLATMATRIXVALUE, b - 1}
                                  : flatval{FLATFUNCTIONVALUE, -b});
    made.function = key.function;
    c.envs.push_back({made.function, formals, ++c.serials});
    const int r = c.finite(funcbody(made.function));
    c.use(r, 0);
    c.put(FLATRETURN, "nr", made.function, r);
}

// The source's functions one after the other.
void flatunitcompiler::compileentry(flatcompiler& c) {
    std::vector<flatval> formals;
    for (int arg = 0; arg < source.nargs; arg++)
        formals.push_back(arg < MOSTFLATARGS && source.matrixargs >> arg & 1
                              ? flatval{FLATMATRIXVALUE, matrix(-1 - arg)}
                              : c.nextargument());
    for (int s : source.symbols) c.inputs[s] = c.nextargument().ref;
    for (int f : source.functions) {
        if (formalcount(f) != source.nargs) throw flatrefused{};
        guard(f);
        c.envs.push_back({f, formals, ++c.serials});
        const int r = c.finite(funcbody(f));
        c.envs.pop_back();
        c.use(r, 0);
        c.put(FLATSTORE, "nr", f, r);
        stored.insert(f);
        unit.outputs.push_back(r);
    }
}

// The entry is routine 0; a further one is one function's body.
void flatunitcompiler::compileroutine(int k) {
    flatroutine made;
    flatcompiler c(*this, made, k);
    if (k > 0)
        compilefunction(c, made, keys[size_t(k)]);
    else
        compileentry(c);
    made.nargs = int(c.argregs.size());
    c.finish();
    if (unit.routines.size() <= size_t(k)) unit.routines.resize(size_t(k) + 1);
    unit.routines[size_t(k)] = std::move(made);
}

void flatunitcompiler::compile() {
    keys.push_back({0, {}});
    for (size_t k = 0; k < keys.size(); k++) compileroutine(int(k));
    complete();
}

// What code in registers could not tell: values that the run itself changes.
void flatunitcompiler::complete() {
    for (int f : stored) {
        if (read.count(f)) throw flatrefused{};
        unit.stored.push_back(int16_t(f));
    }
    unit.saved.resize(stored.size());
    unit.storedrow.resize(stored.size());
    for (int d : dummies)
        if (calleeread.count(d) || stored.count(d)) throw flatrefused{};
    for (int s : source.symbols)
        if (calleeread.count(s) || stored.count(s) || dummies.count(s)) throw flatrefused{};
    const flatroutine& entry = unit.routines[0];
    unit.blocks = entry.nregs <= MOSTBLOCKREGS && !leavesrows(entry, 0, int(entry.code.size()));
    unit.straight = !branches(entry);
    unit.dummies.assign(dummies.begin(), dummies.end());
    unit.sweeps = trinodes.sweeps;
    unit.odeactive = eval.odeactive;
}

bool flatbuild(const flatsource& source, flatunit& unit) {
    unit = flatunit{};
    try {
        flatunitcompiler{unit, source, {}, {}, {}, {}, {}, {}, 0}.compile();
    } catch (const flatrefused&) {
        unit = flatunit{};
        return false;
    }
    return true;
}
