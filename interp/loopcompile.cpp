// Statements of a loop body to flat code.
#include "interp/assign.h"
#include "interp/base/tokens.h"
#include "interp/loopexpr.h"

#include <algorithm>
#include <utility>

namespace {

constexpr size_t INNERROOM = 100;
constexpr int NESTROOM = 100; // IFs and loops inside each other

bool callsuser(const loopcompiler& c, size_t from, size_t to) {
    for (size_t k = from; k < to; k++)
        if (c.body.tokens[k].number == TOKNAME && sym(c.body.tokens[k].index).type == USERFUNCTION)
            return true;
    return false;
}

int numberat(const loopcompiler& c, size_t k) { return c.body.tokens[k].number; }

// The token that closes the bracket at `open`.
size_t closing(const loopcompiler& c, size_t open, size_t to) {
    int depth = 0;
    for (size_t k = open; k < to; k++) {
        depth += (numberat(c, k) == TOKOPEN) - (numberat(c, k) == TOKCLOSE);
        if (depth == 0) return k;
    }
    throw looprefused{};
}

// The first token of one of these numbers outside all brackets, or `to`.
size_t findoutside(const loopcompiler& c, size_t from, size_t to, std::initializer_list<int> numbers) {
    for (size_t k = from; k < to; k++) {
        if (std::find(numbers.begin(), numbers.end(), numberat(c, k)) != numbers.end()) return k;
        if (numberat(c, k) == TOKOPEN) k = closing(c, k, to);
    }
    return to;
}

size_t statement(loopcompiler& c, size_t from, size_t to);
void statementlist(loopcompiler& c, size_t from, size_t to);

void statementend(loopcompiler& c) { loopemit(c, LOOPEND); }

void plainstatement(loopcompiler& c, size_t from, size_t to) {
    c.callsuser = callsuser(c, from, to);
    const auto left = loopexpression(c, {TOKBOTTOM}, from, to, TOKEND);
    if (!left.empty()) throw looprefused{}; // a bare expression is shown
    statementend(c);
}

// A branch of an IF, which may be a list in brackets. Returns where it ends.
size_t branch(loopcompiler& c, size_t from, size_t to) {
    if (from >= to) throw looprefused{};
    if (numberat(c, from) != TOKOPEN) return statement(c, from, to);
    const size_t close = closing(c, from, to);
    if (numberat(c, from + 1) == TOKEND) statementend(c); // the condition was all of its statement
    statementlist(c, from + 1, close);
    statementend(c); // what the branch stood in ends behind it
    return close + 1;
}

size_t ifstatement(loopcompiler& c, size_t from, size_t to) {
    const size_t then = findoutside(c, from + 1, to, {TOKTHEN, TOKIF, TOKELSE, TOKEND});
    if (then == to || numberat(c, then) != TOKTHEN) throw looprefused{};
    c.callsuser = callsuser(c, from, then);
    const auto condition = loopexpression(c, {TOKBOTTOM, TOKIF}, from + 1, then, TOKTHEN);
    if (condition.size() != 1) throw looprefused{};
    const size_t test = c.out.code.size();
    loopemit(c, LOOPJUMPZERO).a = loopplace(condition[0]);
    size_t end = branch(c, then + 1, to);
    if (end < to && numberat(c, end) == TOKELSE) {
        const size_t skip = c.out.code.size();
        loopemit(c, LOOPJUMP);
        c.out.code[test].target = int32_t(c.out.code.size());
        end = branch(c, end + 1, to);
        c.out.code[skip].target = int32_t(c.out.code.size());
    } else {
        // Not taken, the statement still ends.
        const size_t skip = c.out.code.size();
        loopemit(c, LOOPJUMP);
        c.out.code[test].target = int32_t(c.out.code.size());
        statementend(c);
        c.out.code[skip].target = int32_t(c.out.code.size());
    }
    return end;
}

innerloop& innerof(loopcompiler& c, const loopoperand& values, int& which) {
    if (values.what == loopoperand::range) {
        which = values.index;
        return c.out.inner[size_t(which)];
    }
    which = int(c.out.inner.size());
    innerloop loop;
    if (values.what == loopoperand::name && sym(values.index).type == MATRIX)
        loop.matrix = int16_t(values.index);
    else
        loop.operand[0] = loopplace(values);
    c.out.inner.push_back(std::move(loop));
    return c.out.inner.back();
}

// A loop inside has code only as a whole. Returns where it ends: behind its bracket.
size_t forstatement(loopcompiler& c, size_t from, size_t to) {
    const size_t open = [&] {
        for (size_t k = from; k < to; k++)
            if (numberat(c, k) == TOKOPEN && c.body.tokens[k].index == '{') return k;
        throw looprefused{};
    }();
    if (c.out.inner.size() >= INNERROOM) throw looprefused{};
    const size_t close = closing(c, open, to);
    const auto operands = loopexpression(c, {TOKBOTTOM, TOKFOR}, from + 1, open, TOKEND);
    if (operands.size() != 2 || operands[0].what != loopoperand::value || operands[0].index == 0)
        throw looprefused{};
    const int var = operands[0].index;
    if (sym(var).type != SCALAR || assigns.effect[var] || symtabprotected(var)) throw looprefused{};
    int which;
    innerof(c, operands[1], which).var = int16_t(var);
    loopinstr& head = loopemit(c, LOOPFOR);
    head.n = int16_t(which);
    const size_t begin = c.out.code.size();
    statementend(c);
    std::vector<size_t> leaves;
    const auto around = std::exchange(c.leaves, &leaves);
    statementlist(c, open + 1, close);
    c.leaves = around;
    c.at = from;
    loopinstr& next = loopemit(c, LOOPNEXT);
    next.n = int16_t(which);
    next.target = int32_t(begin + 1);
    const int32_t behind = int32_t(c.out.code.size());
    c.out.code[begin - 1].target = behind; // an empty matrix has no pass
    for (const size_t leave : leaves) c.out.code[leave].target = behind;
    return close + 1;
}

size_t returnstatement(loopcompiler& c, size_t from, size_t to) {
    statementend(c);
    if (c.leaves) c.leaves->push_back(c.out.code.size());
    loopemit(c, c.leaves ? LOOPJUMP : LOOPLEAVE);
    if (from + 1 < to && numberat(c, from + 1) != TOKEND && numberat(c, from + 1) != TOKELSE)
        throw looprefused{};
    return from + 1;
}

// Returns where it ends: at an end of statement, an ELSE, or `to`.
size_t statement(loopcompiler& c, size_t from, size_t to) {
    c.at = from;
    if (numberat(c, from) == TOKRETURN) return returnstatement(c, from, to);
    if (numberat(c, from) == TOKIF || numberat(c, from) == TOKFOR) {
        if (++c.nested > NESTROOM) throw looprefused{};
        const size_t end = numberat(c, from) == TOKIF ? ifstatement(c, from, to) : forstatement(c, from, to);
        c.nested--;
        return end;
    }
    const size_t end = findoutside(c, from, to, {TOKEND, TOKELSE});
    plainstatement(c, from, end);
    return end;
}

void statementlist(loopcompiler& c, size_t from, size_t to) {
    while (from < to) {
        if (numberat(c, from) == TOKEND) {
            from++;
            continue;
        }
        const bool loop = numberat(c, from) == TOKFOR;
        from = statement(c, from, to);
        if (from < to && !loop && numberat(c, from) != TOKEND) throw looprefused{};
    }
}

// Where a statement that has no code ends, as far as the next one can be found.
size_t skipped(const loopcompiler& c, size_t from, size_t to) {
    if (numberat(c, from) == TOKFOR)
        for (size_t k = from; k < to; k++)
            if (numberat(c, k) == TOKOPEN && c.body.tokens[k].index == '{') return closing(c, k, to) + 1;
    return findoutside(c, from, to, {TOKEND});
}

// What had been emitted for a statement when it was refused goes again.
struct emission {
    size_t code, guards, inner;
};

void body(loopcompiler& c) {
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
            if (end < to && numberat(c, end) != TOKEND && numberat(c, from) != TOKFOR) throw looprefused{};
            c.out.covers = true;
        } catch (const looprefused&) {
            c.out.code.resize(before.code);
            c.out.guards.resize(before.guards);
            c.out.inner.resize(before.inner);
            c.out.complete = false;
            c.nested = 0;
            c.leaves = nullptr;
            c.at = from;
            loopemit(c, LOOPPARSE);
            end = skipped(c, from, to);
        }
        from = end;
    }
    c.at = to;
    loopemit(c, LOOPPASS);
}

} // namespace

void loopcodedelete::operator()(loopcode* code) const { delete code; }

loopcodeptr loopcompile(const tokenstream& body_) {
    loopcodeptr code(new loopcode);
    loopcompiler c{body_, *code};
    try {
        body(c);
    } catch (const looprefused&) { // brackets that do not match: the parser will say so
        code.reset(new loopcode);
    }
    return code;
}

bool loopholds(const loopcode& code) {
    for (const loopguard& g : code.guards)
        if (sym(g.index).type != g.type || g.name != sym(g.index).name) return false;
    return true;
}
