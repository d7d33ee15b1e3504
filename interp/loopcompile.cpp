// Statements of a loop body to flat code. Expressions are paired by the parser's own table, so that they are
// read exactly as polish reads them; whatever is not plain arithmetic on scalars and elements is refused.
#include "interp/assign.h"
#include "interp/base/operand.h"
#include "interp/base/tokens.h"
#include "interp/loopimpl.h"
#include "interp/pairing.h"
#include "interp/tokenfil.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr int KREADCODE = -78, LASTSCALARCODE = -399;
constexpr int SLOTANY = 20,
              SLOTNUMERIC = 22; // kinds of a builtin's arguments that take a scalar, beside SCALAR
constexpr size_t INNERROOM = 100;
constexpr int NESTROOM = 100; // IFs and loops inside each other

struct refused {}; // there is no code for this statement

struct operand {
    enum kind { value, name, element, range } what = value;
    const double* p = nullptr; // value
    double* result = nullptr;  // value: the place, when it is a result on the way
    int index = 0;             // symbol of a name or of a value; matrix of an element; inner loop of a range
    const double *row = nullptr, *col = nullptr;
};

struct compiler {
    const tokenstream& body;
    loopcode& out;
    size_t at = 0;          // token where the statement begins
    bool callsuser = false; // the statement calls a user function, which may change any variable
    int nested = 0;         // IFs and loops around the statement
    std::vector<size_t>* leaves = nullptr; // the RETURNs of the inner loop around the statement
};

// One expression, or one statement without a keyword, on its way through the table.
struct pairer {
    std::vector<int> ops;
    std::vector<operand> operands;
    std::vector<int> counts{1}; // operands in each open bracket
    bool isvalue = false;
    bool ended = false; // the token that is being paired is the end
};

void guard(compiler& c, int index) {
    for (const loopguard& g : c.out.guards)
        if (g.index == index) return;
    c.out.guards.push_back({int16_t(index), sym(index).type, sym(index).name});
}

loopinstr& emit(compiler& c, loopop op) {
    loopinstr& i = c.out.code.emplace_back();
    i.op = op;
    i.at = int32_t(c.at);
    return i;
}

double* newresult(compiler& c) { return &c.out.results.emplace_back(0); }

const double* constant(compiler& c, double x) { return &c.out.constants.emplace_back(x); }

operand resultof(double* d) {
    operand o;
    o.p = o.result = d;
    return o;
}

const double* valueof(const operand& o) {
    if (o.what != operand::value) throw refused{};
    return o.p;
}

operand pop(pairer& p) {
    if (p.operands.empty()) throw refused{};
    const operand o = p.operands.back();
    p.operands.pop_back();
    return o;
}

operand nameoperand(compiler& c, const tokenrecord& t) {
    const int index = t.index;
    if (strcmp(sym(index).name, c.body.texts[size_t(t.text)].c_str()) != 0) throw refused{};
    guard(c, index);
    operand o;
    o.index = index;
    const int type = sym(index).type;
    o.what = type == SCALAR || type == CONSTANT ? operand::value : operand::name;
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
    default: throw refused{};
    }
}

void arithmetic(compiler& c, pairer& p, int token, const double* a, const double* b) {
    const loopop op = opof(token);
    double* d = newresult(c);
    loopinstr& i = emit(c, op);
    i.d = d;
    i.a = a;
    i.b = b;
    p.operands.push_back(resultof(d));
}

// The value goes to its variable, by the instruction that computed it where that can be.
void assignscalar(compiler& c, const operand& target, const operand& rhs) {
    const int index = target.index;
    if (index == 0 || sym(index).type == CONSTANT || symtabprotected(index) || assigns.effect[index])
        throw refused{};
    double* d = &sym(index).val.rval;
    const double* x = valueof(rhs);
    if (rhs.result && !c.out.code.empty() && c.out.code.back().d == rhs.result) {
        c.out.code.back().d = d;
        return;
    }
    loopinstr& i = emit(c, LOOPMOVE);
    i.d = d;
    i.a = x;
}

void assigncell(compiler& c, const operand& target, const operand& rhs) {
    const double* x = valueof(rhs);
    loopinstr& i = emit(c, LOOPSTORE);
    i.matrix = &sym(target.index);
    i.a = target.row;
    i.b = target.col;
    i.d = const_cast<double*>(x);
}

void definescalar(compiler& c, const operand& target, const operand& rhs) {
    if (sym(target.index).type != UNKNOWN || sym(target.index).name[0] == '.') throw refused{};
    const double* x = valueof(rhs);
    loopinstr& i = emit(c, LOOPDEFINE);
    i.matrix = &sym(target.index);
    i.a = x;
}

void assign(compiler& c, pairer& p) {
    const operand rhs = pop(p), target = pop(p);
    switch (target.what) {
    case operand::value: return assignscalar(c, target, rhs);
    case operand::element: return assigncell(c, target, rhs);
    case operand::name: return definescalar(c, target, rhs);
    case operand::range: throw refused{};
    }
}

void makerange(compiler& c, pairer& p, int token) {
    innerloop loop;
    loop.operands = token == TOKCOLON ? 2 : 3;
    loop.counted = token == TOKCOUNT;
    for (int k = loop.operands; k-- > 0;) loop.operand[k] = valueof(pop(p));
    operand o;
    o.what = operand::range;
    o.index = int(c.out.inner.size());
    c.out.inner.push_back(std::move(loop));
    p.operands.push_back(o);
}

void reduce(compiler& c, pairer& p) {
    const int token = p.ops.back();
    p.ops.pop_back();
    switch (token) {
    case TOKCOMMA: p.counts.back()++; return;
    case TOKCOLON:
    case TOKSECONDCOLON:
    case TOKCOUNT: return makerange(c, p, token);
    case TOKUNARYMINUS:
    case TOKNOT: return arithmetic(c, p, token, &sym(symtab.zero).val.rval, valueof(pop(p)));
    case TOKFOR: return;
    case TOKEQUAL:
        if (!p.ops.empty() && p.ops.back() == TOKFOR) return; // the statement reads it
        if (p.ended && p.operands.size() == 2 && p.ops.size() == 1) return assign(c, p);
        break;
    default: break;
    }
    const operand b = pop(p), a = pop(p);
    arithmetic(c, p, token, valueof(a), valueof(b));
}

// A subscript is taken when its bracket closes: a function called behind it may change the variable.
const double* subscript(compiler& c, const operand& o) {
    const double* x = valueof(o);
    if (!c.callsuser || o.result || o.index == 0) return x;
    double* d = newresult(c);
    loopinstr& i = emit(c, LOOPMOVE);
    i.d = d;
    i.a = x;
    return d;
}

void subscripted(compiler& c, pairer& p, int matrix, const std::vector<operand>& args, bool target) {
    if (args.empty() || args.size() > 2) throw refused{};
    const double* row = subscript(c, args[0]);
    const double* col = args.size() == 2 ? subscript(c, args[1]) : &sym(symtab.one).val.rval;
    if (target) {
        operand o;
        o.what = operand::element;
        o.index = matrix;
        o.row = row;
        o.col = col;
        p.operands.push_back(o);
        return;
    }
    if (sym(matrix).type != MATRIX) throw refused{};
    double* d = newresult(c);
    loopinstr& i = emit(c, LOOPELEMENT);
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

void called(compiler& c, pairer& p, int callee, const std::vector<operand>& args) {
    const symbol& s = sym(callee);
    std::vector<const double*> places;
    for (const operand& o : args) places.push_back(valueof(o));
    const scalarrow* row = nullptr;
    if (s.type == USERFUNCTION) {
        if (s.name[0] == '.') throw refused{};
    } else {
        if (s.type > -1 || s.type < LASTSCALARCODE || s.type == KREADCODE) throw refused{};
        row = scalarbuiltinrow(s.type);
        if (!row || !takesscalars(s, args.size())) throw refused{};
    }
    double* d = newresult(c);
    const bool simple = row && row->arity == 1 && args.size() == 1 && !(row->flags & COUNTED);
    loopinstr& i = emit(c, simple ? LOOPCALL1 : row ? LOOPCALL : LOOPUSER);
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
void closecall(compiler& c, pairer& p, size_t count, int next) {
    std::vector<operand> args(count);
    for (size_t k = count; k-- > 0;) args[k] = pop(p);
    const operand callee = pop(p);
    if (callee.what != operand::name) throw refused{};
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
    if (row < 1) throw refused{};
    if ((token == TOKAND || token == TOKOR) && p.ops.size() == 2 && p.ops[0] == TOKBOTTOM &&
        p.ops[1] == TOKEQUAL)
        return PAIRSHIFT;
    return pairing[row][tokentables.col[token]];
}

void closebracket(pairer& p) {
    if (p.ops.back() == TOKOPEN && p.counts.back() != 1) throw refused{};
    p.ops.pop_back();
    p.counts.pop_back();
    if (p.counts.empty()) throw refused{};
    p.isvalue = true;
}

// An operator in operand position.
void prefix(compiler& c, pairer& p, int token, int next) {
    switch (token) {
    case TOKPLUS: return;
    case TOKMINUS: p.ops.push_back(TOKUNARYMINUS); return;
    case TOKNOT: p.ops.push_back(token); return;
    case TOKOPEN:
        p.ops.push_back(token);
        p.counts.push_back(1);
        return;
    case TOKCLOSE:
        if (p.ops.back() != TOKCALL) throw refused{};
        closecall(c, p, 0, next);
        closebracket(p);
        return;
    default: throw refused{};
    }
}

// An operator behind a value.
void infix(compiler& c, pairer& p, int token, int next) {
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
        if (p.ops.back() != TOKCOLON) throw refused{};
        p.ops.back() = token == TOKCOUNT ? TOKCOUNT : TOKSECONDCOLON;
        return;
    default: throw refused{};
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

void onetoken(compiler& c, pairer& p, const tokenrecord& t, int next) {
    if (t.number == TOKNUMBER || t.number == TOKNAME) {
        if (p.isvalue) throw refused{};
        operand number;
        number.p = t.number == TOKNUMBER ? constant(c, t.value) : nullptr;
        p.operands.push_back(t.number == TOKNUMBER ? number : nameoperand(c, t));
        p.isvalue = true;
    } else if (!p.isvalue) {
        prefix(c, p, t.number, next);
    } else if (infixtoken(t.number)) {
        infix(c, p, t.number, next);
    } else {
        throw refused{};
    }
}

// Tokens from..to, with `under` waiting below them, up to the token `end`; what is left are its operands.
std::vector<operand> expression(compiler& c, std::vector<int> under, size_t from, size_t to, int end) {
    pairer p;
    p.ops = std::move(under);
    const auto& tokens = c.body.tokens;
    const size_t base = p.ops.size();
    for (size_t k = from; k < to; k++)
        onetoken(c, p, tokens[k], k + 1 < to ? int(tokens[k + 1].number) : int(TOKEND));
    p.ended = end == TOKEND;
    if (!p.isvalue) throw refused{};
    while (p.ops.size() > 1 || base > 1) {
        const int action = actionof(p, end);
        if (action != PAIRREDUCE) {
            if (action == PAIREND || action == PAIRIF) break;
            throw refused{};
        }
        if (p.ops.size() == 1) throw refused{};
        reduce(c, p);
    }
    if (p.counts.size() != 1 || p.counts[0] != 1) throw refused{};
    return std::move(p.operands);
}

bool callsuser(const compiler& c, size_t from, size_t to) {
    for (size_t k = from; k < to; k++)
        if (c.body.tokens[k].number == TOKNAME && sym(c.body.tokens[k].index).type == USERFUNCTION)
            return true;
    return false;
}

// ---- statements

int numberat(const compiler& c, size_t k) { return c.body.tokens[k].number; }

// The token that closes the bracket at `open`.
size_t closing(const compiler& c, size_t open, size_t to) {
    int depth = 0;
    for (size_t k = open; k < to; k++) {
        depth += (numberat(c, k) == TOKOPEN) - (numberat(c, k) == TOKCLOSE);
        if (depth == 0) return k;
    }
    throw refused{};
}

// The first token of one of these numbers outside all brackets, or `to`.
size_t findoutside(const compiler& c, size_t from, size_t to, std::initializer_list<int> numbers) {
    for (size_t k = from; k < to; k++) {
        if (std::find(numbers.begin(), numbers.end(), numberat(c, k)) != numbers.end()) return k;
        if (numberat(c, k) == TOKOPEN) k = closing(c, k, to);
    }
    return to;
}

size_t statement(compiler& c, size_t from, size_t to);
void statementlist(compiler& c, size_t from, size_t to);

void statementend(compiler& c) { emit(c, LOOPEND); }

void plainstatement(compiler& c, size_t from, size_t to) {
    c.callsuser = callsuser(c, from, to);
    const auto left = expression(c, {TOKBOTTOM}, from, to, TOKEND);
    if (!left.empty()) throw refused{}; // a bare expression is shown
    statementend(c);
}

// A branch of an IF, which may be a list in brackets. Returns where it ends.
size_t branch(compiler& c, size_t from, size_t to) {
    if (from >= to) throw refused{};
    if (numberat(c, from) != TOKOPEN) return statement(c, from, to);
    const size_t close = closing(c, from, to);
    if (numberat(c, from + 1) == TOKEND) statementend(c); // the condition was all of its statement
    statementlist(c, from + 1, close);
    statementend(c); // what the branch stood in ends behind it
    return close + 1;
}

size_t ifstatement(compiler& c, size_t from, size_t to) {
    const size_t then = findoutside(c, from + 1, to, {TOKTHEN, TOKIF, TOKELSE, TOKEND});
    if (then == to || numberat(c, then) != TOKTHEN) throw refused{};
    c.callsuser = callsuser(c, from, then);
    const auto condition = expression(c, {TOKBOTTOM, TOKIF}, from + 1, then, TOKTHEN);
    if (condition.size() != 1) throw refused{};
    const size_t test = c.out.code.size();
    emit(c, LOOPJUMPZERO).a = valueof(condition[0]);
    size_t end = branch(c, then + 1, to);
    if (end < to && numberat(c, end) == TOKELSE) {
        const size_t skip = c.out.code.size();
        emit(c, LOOPJUMP);
        c.out.code[test].target = int32_t(c.out.code.size());
        end = branch(c, end + 1, to);
        c.out.code[skip].target = int32_t(c.out.code.size());
    } else {
        // Not taken, the statement still ends.
        const size_t skip = c.out.code.size();
        emit(c, LOOPJUMP);
        c.out.code[test].target = int32_t(c.out.code.size());
        statementend(c);
        c.out.code[skip].target = int32_t(c.out.code.size());
    }
    return end;
}

innerloop& innerof(compiler& c, const operand& values, int& which) {
    if (values.what == operand::range) {
        which = values.index;
        return c.out.inner[size_t(which)];
    }
    which = int(c.out.inner.size());
    innerloop loop;
    if (values.what == operand::name && sym(values.index).type == MATRIX)
        loop.matrix = int16_t(values.index);
    else
        loop.operand[0] = valueof(values);
    c.out.inner.push_back(std::move(loop));
    return c.out.inner.back();
}

// A loop inside has code only as a whole. Returns where it ends: behind its bracket.
size_t forstatement(compiler& c, size_t from, size_t to) {
    const size_t open = [&] {
        for (size_t k = from; k < to; k++)
            if (numberat(c, k) == TOKOPEN && c.body.tokens[k].index == '{') return k;
        throw refused{};
    }();
    if (c.out.inner.size() >= INNERROOM) throw refused{};
    const size_t close = closing(c, open, to);
    const auto operands = expression(c, {TOKBOTTOM, TOKFOR}, from + 1, open, TOKEND);
    if (operands.size() != 2 || operands[0].what != operand::value || operands[0].index == 0) throw refused{};
    const int var = operands[0].index;
    if (sym(var).type != SCALAR || assigns.effect[var] || symtabprotected(var)) throw refused{};
    int which;
    innerof(c, operands[1], which).var = int16_t(var);
    loopinstr& head = emit(c, LOOPFOR);
    head.n = int16_t(which);
    const size_t begin = c.out.code.size();
    statementend(c);
    std::vector<size_t> leaves;
    const auto around = std::exchange(c.leaves, &leaves);
    statementlist(c, open + 1, close);
    c.leaves = around;
    c.at = from;
    loopinstr& next = emit(c, LOOPNEXT);
    next.n = int16_t(which);
    next.target = int32_t(begin + 1);
    const int32_t behind = int32_t(c.out.code.size());
    c.out.code[begin - 1].target = behind; // an empty matrix has no pass
    for (const size_t leave : leaves) c.out.code[leave].target = behind;
    return close + 1;
}

size_t returnstatement(compiler& c, size_t from, size_t to) {
    statementend(c);
    if (c.leaves) c.leaves->push_back(c.out.code.size());
    emit(c, c.leaves ? LOOPJUMP : LOOPLEAVE);
    if (from + 1 < to && numberat(c, from + 1) != TOKEND && numberat(c, from + 1) != TOKELSE) throw refused{};
    return from + 1;
}

// Returns where it ends: at an end of statement, an ELSE, or `to`.
size_t statement(compiler& c, size_t from, size_t to) {
    c.at = from;
    if (numberat(c, from) == TOKRETURN) return returnstatement(c, from, to);
    if (numberat(c, from) == TOKIF || numberat(c, from) == TOKFOR) {
        if (++c.nested > NESTROOM) throw refused{};
        const size_t end = numberat(c, from) == TOKIF ? ifstatement(c, from, to) : forstatement(c, from, to);
        c.nested--;
        return end;
    }
    const size_t end = findoutside(c, from, to, {TOKEND, TOKELSE});
    plainstatement(c, from, end);
    return end;
}

void statementlist(compiler& c, size_t from, size_t to) {
    while (from < to) {
        if (numberat(c, from) == TOKEND) {
            from++;
            continue;
        }
        const bool loop = numberat(c, from) == TOKFOR;
        from = statement(c, from, to);
        if (from < to && !loop && numberat(c, from) != TOKEND) throw refused{};
    }
}

// Where a statement that has no code ends, as far as the next one can be found.
size_t skipped(const compiler& c, size_t from, size_t to) {
    if (numberat(c, from) == TOKFOR)
        for (size_t k = from; k < to; k++)
            if (numberat(c, k) == TOKOPEN && c.body.tokens[k].index == '{') return closing(c, k, to) + 1;
    return findoutside(c, from, to, {TOKEND});
}

// What had been emitted for a statement when it was refused goes again.
struct emission {
    size_t code, guards, inner;
};

void body(compiler& c) {
    const size_t to = c.body.tokens.size();
    c.out.entry.assign(to + 1, -1);
    c.out.complete = true;
    for (size_t from = 0; from < to;) {
        if (numberat(c, from) == TOKEND) {
            from++;
            continue;
        }
        const emission before{c.out.code.size(), c.out.guards.size(), c.out.inner.size()};
        c.out.entry[from] = int32_t(before.code);
        size_t end;
        try {
            end = statement(c, from, to);
            if (end < to && numberat(c, end) != TOKEND && numberat(c, from) != TOKFOR) throw refused{};
            c.out.covers = true;
        } catch (const refused&) {
            c.out.code.resize(before.code);
            c.out.guards.resize(before.guards);
            c.out.inner.resize(before.inner);
            c.out.complete = false;
            c.nested = 0;
            c.leaves = nullptr;
            c.at = from;
            emit(c, LOOPPARSE);
            end = skipped(c, from, to);
        }
        from = end;
    }
    c.at = to;
    emit(c, LOOPPASS);
}

} // namespace

void loopcodedelete::operator()(loopcode* code) const { delete code; }

loopcodeptr loopcompile(const tokenstream& body_) {
    loopcodeptr code(new loopcode);
    compiler c{body_, *code};
    try {
        body(c);
    } catch (const refused&) { // brackets that do not match: the parser will say so
        code.reset(new loopcode);
    }
    return code;
}

bool loopholds(const loopcode& code) {
    for (const loopguard& g : code.guards)
        if (sym(g.index).type != g.type || g.name != sym(g.index).name) return false;
    return true;
}
