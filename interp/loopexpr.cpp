// Expressions are paired by the parser's own table, so that they are read exactly as polish reads them;
// whatever is not plain arithmetic on scalars and elements is refused.
#include "interp/loopexpr.h"

#include "interp/assign.h"
#include "interp/base/tokens.h"
#include "interp/pairing.h"
#include "interp/tokenfil.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr int KREADCODE = -78, LASTSCALARCODE = -399;
constexpr int SLOTANY = 20,
              SLOTNUMERIC = 22; // kinds of a builtin's arguments that take a scalar, beside SCALAR

// One expression, or one statement without a keyword, on its way through the table.
struct pairer {
    std::vector<int> ops;
    std::vector<loopoperand> operands;
    std::vector<int> counts{1}; // operands in each open bracket
    bool isvalue = false;
    bool ended = false; // the token that is being paired is the end
};

void guard(loopcompiler& c, int index) {
    for (const loopguard& g : c.out.guards)
        if (g.index == index) return;
    c.out.guards.push_back({int16_t(index), sym(index).type, sym(index).name});
}

double* newresult(loopcompiler& c) { return &c.out.results.emplace_back(0); }

const double* constant(loopcompiler& c, double x) { return &c.out.constants.emplace_back(x); }

loopoperand resultof(double* d) {
    loopoperand o;
    o.p = o.result = d;
    return o;
}

loopoperand pop(pairer& p) {
    if (p.operands.empty()) throw looprefused{};
    const loopoperand o = p.operands.back();
    p.operands.pop_back();
    return o;
}

loopoperand nameoperand(loopcompiler& c, const tokenrecord& t) {
    const int index = t.index;
    if (strcmp(sym(index).name, c.body.texts[size_t(t.text)].c_str()) != 0) throw looprefused{};
    guard(c, index);
    loopoperand o;
    o.index = index;
    const int type = sym(index).type;
    o.what = type == SCALAR || type == CONSTANT ? loopoperand::value : loopoperand::name;
    o.p = &sym(index).val.rval;
    return o;
}

loopop opof(int token) {
    switch (token) {
    case TOKPOWER: return LOOPPOW;
    case TOKTIMES: return LOOPMUL;
    case TOKDIVIDE: return LOOPDIV;
    case TOKPLUS: return LOOPADD;
    case TOKMINUS:
    case TOKUNARYMINUS: return LOOPSUB;
    case TOKEQUAL:
    case TOKNOT: return LOOPEQUAL;
    case TOKLESS: return LOOPLESS;
    case TOKLESSEQUAL: return LOOPLESSEQ;
    case TOKGREATEREQUAL: return LOOPGREATEREQ;
    case TOKGREATER: return LOOPGREATER;
    case TOKAND: return LOOPAND;
    case TOKOR: return LOOPOR;
    default: throw looprefused{};
    }
}

void arithmetic(loopcompiler& c, pairer& p, int token, const double* a, const double* b) {
    const loopop op = opof(token);
    double* d = newresult(c);
    loopinstr& i = loopemit(c, op);
    i.d = d;
    i.a = a;
    i.b = b;
    p.operands.push_back(resultof(d));
}

// The value goes to its variable, by the instruction that computed it where that can be.
void assignscalar(loopcompiler& c, const loopoperand& target, const loopoperand& rhs) {
    const int index = target.index;
    if (index == 0 || sym(index).type == CONSTANT || symtabprotected(index) || assigns.effect[index])
        throw looprefused{};
    double* d = &sym(index).val.rval;
    const double* x = loopplace(rhs);
    if (rhs.result && !c.out.code.empty() && c.out.code.back().d == rhs.result) {
        c.out.code.back().d = d;
        return;
    }
    loopinstr& i = loopemit(c, LOOPMOVE);
    i.d = d;
    i.a = x;
}

void assigncell(loopcompiler& c, const loopoperand& target, const loopoperand& rhs) {
    const double* x = loopplace(rhs);
    loopinstr& i = loopemit(c, LOOPSTORE);
    i.matrix = &sym(target.index);
    i.a = target.row;
    i.b = target.col;
    i.d = const_cast<double*>(x);
}

void definescalar(loopcompiler& c, const loopoperand& target, const loopoperand& rhs) {
    if (sym(target.index).type != UNKNOWN || sym(target.index).name[0] == '.') throw looprefused{};
    const double* x = loopplace(rhs);
    loopinstr& i = loopemit(c, LOOPDEFINE);
    i.matrix = &sym(target.index);
    i.a = x;
}

void assign(loopcompiler& c, pairer& p) {
    const loopoperand rhs = pop(p), target = pop(p);
    switch (target.what) {
    case loopoperand::value: return assignscalar(c, target, rhs);
    case loopoperand::element: return assigncell(c, target, rhs);
    case loopoperand::name: return definescalar(c, target, rhs);
    case loopoperand::range: throw looprefused{};
    }
}

void makerange(loopcompiler& c, pairer& p, int token) {
    innerloop loop;
    loop.operands = token == TOKCOLON ? 2 : 3;
    loop.counted = token == TOKCOUNT;
    for (int k = loop.operands; k-- > 0;) loop.operand[k] = loopplace(pop(p));
    loopoperand o;
    o.what = loopoperand::range;
    o.index = int(c.out.inner.size());
    c.out.inner.push_back(std::move(loop));
    p.operands.push_back(o);
}

void reduce(loopcompiler& c, pairer& p) {
    const int token = p.ops.back();
    p.ops.pop_back();
    switch (token) {
    case TOKCOMMA: p.counts.back()++; return;
    case TOKCOLON:
    case TOKSECONDCOLON:
    case TOKCOUNT: return makerange(c, p, token);
    case TOKUNARYMINUS:
    case TOKNOT: return arithmetic(c, p, token, &sym(symtab.zero).val.rval, loopplace(pop(p)));
    case TOKFOR: return;
    case TOKEQUAL:
        if (!p.ops.empty() && p.ops.back() == TOKFOR) return; // the statement reads it
        if (p.ended && p.operands.size() == 2 && p.ops.size() == 1) return assign(c, p);
        break;
    default: break;
    }
    const loopoperand b = pop(p), a = pop(p);
    arithmetic(c, p, token, loopplace(a), loopplace(b));
}

// A subscript is taken when its bracket closes: a function called behind it may change the variable.
const double* subscript(loopcompiler& c, const loopoperand& o) {
    const double* x = loopplace(o);
    if (!c.callsuser || o.result || o.index == 0) return x;
    double* d = newresult(c);
    loopinstr& i = loopemit(c, LOOPMOVE);
    i.d = d;
    i.a = x;
    return d;
}

void subscripted(loopcompiler& c, pairer& p, int matrix, const std::vector<loopoperand>& args, bool target) {
    if (args.empty() || args.size() > 2) throw looprefused{};
    const double* row = subscript(c, args[0]);
    const double* col = args.size() == 2 ? subscript(c, args[1]) : &sym(symtab.one).val.rval;
    if (target) {
        loopoperand o;
        o.what = loopoperand::element;
        o.index = matrix;
        o.row = row;
        o.col = col;
        p.operands.push_back(o);
        return;
    }
    if (sym(matrix).type != MATRIX) throw looprefused{};
    double* d = newresult(c);
    loopinstr& i = loopemit(c, LOOPELEMENT);
    i.d = d;
    i.matrix = &sym(matrix);
    i.a = row;
    i.b = col;
    p.operands.push_back(resultof(d));
}

bool takesscalars(const symbol& callee, size_t n) {
    const signed char* slots = callee.val.argd;
    if (slots[0] < 0) return true;
    if (int(n) > slots[0]) return false;
    for (int k = 1; k <= slots[0]; k++) {
        if (k > int(n) && slots[k] > 0) return false;
        const int kind = std::abs(slots[k]);
        if (k <= int(n) && kind != SCALAR && kind != SLOTNUMERIC && kind != SLOTANY) return false;
    }
    return true;
}

void called(loopcompiler& c, pairer& p, int callee, const std::vector<loopoperand>& args) {
    const symbol& s = sym(callee);
    std::vector<const double*> places;
    for (const loopoperand& o : args) places.push_back(loopplace(o));
    const scalarrow* row = nullptr;
    if (s.type == USERFUNCTION) {
        if (s.name[0] == '.') throw looprefused{};
    } else {
        if (s.type > -1 || s.type < LASTSCALARCODE || s.type == KREADCODE) throw looprefused{};
        row = scalarbuiltinrow(s.type);
        if (!row || !takesscalars(s, args.size())) throw looprefused{};
    }
    double* d = newresult(c);
    const bool simple = row && row->arity == 1 && args.size() == 1 && !(row->flags & COUNTED);
    loopinstr& i = loopemit(c, simple ? LOOPCALL1 : row ? LOOPCALL : LOOPUSER);
    i.d = d;
    i.n = int16_t(args.size());
    if (simple) {
        i.f1 = row->f1;
        i.n = row->code;
        i.a = places[0];
    } else {
        i.index = row ? s.type : callee;
        i.args = c.out.arguments.emplace_back(std::move(places)).data();
    }
    p.operands.push_back(resultof(d));
}

// A call bracket closes; next is the token behind it.
void closecall(loopcompiler& c, pairer& p, size_t count, int next) {
    std::vector<loopoperand> args(count);
    for (size_t k = count; k-- > 0;) args[k] = pop(p);
    const loopoperand callee = pop(p);
    if (callee.what != loopoperand::name) throw looprefused{};
    const int type = sym(callee.index).type;
    // As the parser tells the target of an assignment: `=` behind it, and nothing waits before it.
    const bool target = next == TOKEQUAL && p.ops.size() == 2 && p.ops[0] == TOKBOTTOM;
    if (type == MATRIX || (type == UNKNOWN && target))
        subscripted(c, p, callee.index, args, target);
    else
        called(c, p, callee.index, args);
}

int actionof(const pairer& p, int token) {
    const int row = tokentables.row[p.ops.back()];
    if (row < 1) throw looprefused{};
    if ((token == TOKAND || token == TOKOR) && p.ops.size() == 2 && p.ops[0] == TOKBOTTOM &&
        p.ops[1] == TOKEQUAL)
        return PAIRSHIFT;
    return pairing[row][tokentables.col[token]];
}

void closebracket(pairer& p) {
    if (p.ops.back() == TOKOPEN && p.counts.back() != 1) throw looprefused{};
    p.ops.pop_back();
    p.counts.pop_back();
    if (p.counts.empty()) throw looprefused{};
    p.isvalue = true;
}

// An operator in operand position.
void prefix(loopcompiler& c, pairer& p, int token, int next) {
    switch (token) {
    case TOKPLUS: return;
    case TOKMINUS: p.ops.push_back(TOKUNARYMINUS); return;
    case TOKNOT: p.ops.push_back(token); return;
    case TOKOPEN:
        p.ops.push_back(token);
        p.counts.push_back(1);
        return;
    case TOKCLOSE:
        if (p.ops.back() != TOKCALL) throw looprefused{};
        closecall(c, p, 0, next);
        closebracket(p);
        return;
    default: throw looprefused{};
    }
}

// An operator behind a value.
void infix(loopcompiler& c, pairer& p, int token, int next) {
    if (token == TOKOPEN) {
        token = TOKCALL;
        p.counts.push_back(1);
    }
    int action;
    while ((action = actionof(p, token)) == PAIRREDUCE) reduce(c, p);
    p.isvalue = false;
    switch (action) {
    case PAIRSHIFT: p.ops.push_back(token); return;
    case PAIRCALL: closecall(c, p, size_t(p.counts.back()), next); return closebracket(p);
    case PAIRCLOSE: return closebracket(p);
    case PAIRCOLON:
        if (p.ops.back() != TOKCOLON) throw looprefused{};
        p.ops.back() = token == TOKCOUNT ? TOKCOUNT : TOKSECONDCOLON;
        return;
    default: throw looprefused{};
    }
}

bool infixtoken(int token) {
    switch (token) {
    case TOKPOWER:
    case TOKTIMES:
    case TOKDIVIDE:
    case TOKPLUS:
    case TOKMINUS:
    case TOKEQUAL:
    case TOKLESS:
    case TOKLESSEQUAL:
    case TOKGREATEREQUAL:
    case TOKGREATER:
    case TOKCOMMA:
    case TOKAND:
    case TOKOR:
    case TOKCLOSE:
    case TOKOPEN:
    case TOKCOLON:
    case TOKCOUNT: return true;
    default: return false;
    }
}

void onetoken(loopcompiler& c, pairer& p, const tokenrecord& t, int next) {
    if (t.number == TOKNUMBER || t.number == TOKNAME) {
        if (p.isvalue) throw looprefused{};
        loopoperand number;
        number.p = t.number == TOKNUMBER ? constant(c, t.value) : nullptr;
        p.operands.push_back(t.number == TOKNUMBER ? number : nameoperand(c, t));
        p.isvalue = true;
    } else if (!p.isvalue) {
        prefix(c, p, t.number, next);
    } else if (infixtoken(t.number)) {
        infix(c, p, t.number, next);
    } else {
        throw looprefused{};
    }
}

} // namespace

const double* loopplace(const loopoperand& o) {
    if (o.what != loopoperand::value) throw looprefused{};
    return o.p;
}

std::vector<loopoperand> loopexpression(loopcompiler& c, std::vector<int> under, size_t from, size_t to,
                                        int end) {
    pairer p;
    p.ops = std::move(under);
    const auto& tokens = c.body.tokens;
    const size_t base = p.ops.size();
    for (size_t k = from; k < to; k++)
        onetoken(c, p, tokens[k], k + 1 < to ? int(tokens[k + 1].number) : int(TOKEND));
    p.ended = end == TOKEND;
    if (!p.isvalue) throw looprefused{};
    while (p.ops.size() > 1 || base > 1) {
        const int action = actionof(p, end);
        if (action != PAIRREDUCE) {
            if (action == PAIREND || action == PAIRIF) break;
            throw looprefused{};
        }
        if (p.ops.size() == 1) throw looprefused{};
        reduce(c, p);
    }
    if (p.counts.size() != 1 || p.counts[0] != 1) throw looprefused{};
    return std::move(p.operands);
}
