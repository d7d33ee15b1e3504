// The statement CONSTRAINTS name = { row, row, ... }, read token by token.
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "solvers/conset.h"

#include <algorithm>
#include <iterator>

namespace {

enum token {
    TKNAME = 1,
    TKNUMBER = 2,
    TKTIMES = 4,
    TKDIVIDE = 5,
    TKPLUS = 6,
    TKMINUS = 7,
    TKEQUAL = 8,
    TKLESS = 9,
    TKLESSEQ = 10,
    TKGREATEREQ = 11,
    TKGREATER = 12,
    TKCOMMA = 13,
    TKCLOSE = 22,
    TKOPEN = 35
};

// Tokens that may stand in the statement; 17 and 18 pass without effect.
constexpr int allowed[] = {TKNAME,   TKNUMBER,    TKTIMES,   TKDIVIDE, TKPLUS,  TKMINUS, TKEQUAL, TKLESS,
                           TKLESSEQ, TKGREATEREQ, TKGREATER, TKCOMMA,  TKCLOSE, TKOPEN,  17,      18};

struct setreader {
    double coef[CONSETMOST][CONSETMOST] = {};
    double rhs[CONSETMOST] = {};
    int rels[CONSETMOST] = {};
    int names[CONSETMOST] = {};
    int row = 0, nvars = 0;
    int side = -1; // -1 left of the relation, +1 right of it
    double sign = 1;
    double middle[CONSETMOST] = {}, middleconstant = 0; // right of the relation read last, as a left side
    int number = 0, index = 0;                          // the token read last
};

furtherline inrow(const setreader& r, const char* what) {
    return further("constraint %d %s", r.row + 1, what);
}

[[noreturn]] void invalid(const setreader& r) {
    tarnerror(
        inrow(r, "has what no set of constraints has: names, numbers, + - * / and relations stand there"),
        "invalid character in CONSTRAINT statement");
}

bool isrelation(int token) { return token >= TKEQUAL && token <= TKGREATER; }

void next(setreader& r) {
    upper.newtoken(r.number, r.index);
    if (std::find(std::begin(allowed), std::end(allowed), r.number) == std::end(allowed)) {
        tempfree(r.index);
        invalid(r);
    }
}

double numbervalue(setreader& r) {
    const double x = scalarval(r.index);
    tempfree(r.index); // at once, so that a long set does not fill the table
    return x;
}

struct term {
    int name = 0;
    double coefficient = 1;
    bool dividing = false;
};

bool endsterm(int token) {
    return token == TKPLUS || token == TKMINUS || isrelation(token) || token == TKCOMMA || token == TKCLOSE;
}

void takename(const setreader& r, term& t) {
    if (t.name)
        tarnerror(inrow(r, ("multiplies " + nametext(t.name) + " by " + nametext(r.index)).c_str()),
                  "only linear constraints are permitted");
    if (t.dividing)
        tarnerror(inrow(r, ("divides by " + nametext(r.index)).c_str()),
                  "only linear constraints are permitted");
    t.name = r.index;
}

// A number in front is the coefficient, not a factor of it; behind a division it divides.
void takenumber(setreader& r, term& t) {
    const double x = numbervalue(r);
    if (!t.dividing)
        t.coefficient = x;
    else if (x == 0)
        tarnerror(inrow(r, "divides by 0"), "division by zero in CONSTRAINT statement");
    else
        t.coefficient /= x;
}

[[noreturn]] void badoperator(const setreader& r) {
    tarnerror(inrow(r, "lacks a name or a number beside an operator"),
              "CONSTRAINTS: only >, >=, <, <= , = , +, - are valid operators here");
}

term readterm(setreader& r) {
    term t;
    bool filled = false;
    if (r.number == TKMINUS) r.sign = -1;
    if (r.number == TKMINUS || r.number == TKPLUS) next(r);
    for (; !endsterm(r.number); next(r)) {
        if (r.number == TKOPEN) invalid(r); // its end would be that of the set
        filled |= r.number == TKNAME || r.number == TKNUMBER;
        if (r.number == TKNAME)
            takename(r, t);
        else if (r.number == TKNUMBER)
            takenumber(r, t);
        else if (r.number == TKDIVIDE)
            t.dividing = true;
    }
    if (!filled) badoperator(r);
    return t;
}

int column(setreader& r, int name) {
    const int* end = r.names + r.nvars;
    const int j = int(std::find(r.names, const_cast<int*>(end), name) - r.names);
    if (j < r.nvars) return j;
    if (r.nvars == CONSETMOST) tarnerror("CONSTRAINTS: more than %d names in a set", CONSETMOST);
    r.names[r.nvars] = name;
    return r.nvars++;
}

void newrow(setreader& r) {
    if (++r.row == CONSETMOST) tarnerror("CONSTRAINTS: more than %d rows in a set", CONSETMOST);
}

// 1 < X < 3: the row just read is turned round, and what stands in the middle goes on in a row of its own.
void chain(setreader& r) {
    for (int k = 0; k < r.nvars; k++) r.coef[r.row][k] = 0 - r.coef[r.row][k];
    r.rhs[r.row] = 0 - r.rhs[r.row];
    if (r.rels[r.row] == CONLESS)
        r.rels[r.row] = CONGREATER;
    else if (r.rels[r.row] == CONGREATER)
        r.rels[r.row] = CONLESS;
    newrow(r);
    std::copy_n(r.middle, r.nvars, r.coef[r.row]);
    r.rhs[r.row] = 0 - r.middleconstant;
}

void endterm(setreader& r, const term& t) {
    if (t.name) {
        const int j = column(r, t.name);
        r.coef[r.row][j] = r.sign * -r.side * t.coefficient; // a name that comes twice keeps its last term
        if (r.side == 1) r.middle[j] = r.sign * t.coefficient;
    } else {
        r.rhs[r.row] += r.sign * r.side * t.coefficient;
        if (r.side == 1) r.middleconstant += r.sign * t.coefficient;
    }
    if (!isrelation(r.number)) return;
    if (r.side == 1) chain(r);
    std::fill(std::begin(r.middle), std::end(r.middle), 0.0);
    r.middleconstant = 0;
}

// What ends a term; true at the closing brace.
bool operate(setreader& r) {
    r.sign = 1;
    switch (r.number) {
    case TKPLUS: return false;
    case TKMINUS: r.sign = -1; return false;
    case TKEQUAL: r.rels[r.row] = CONEQUAL; break;
    case TKLESS:
    case TKLESSEQ: r.rels[r.row] = CONLESS; break;
    case TKGREATER:
    case TKGREATEREQ: r.rels[r.row] = CONGREATER; break;
    case TKCOMMA:
        newrow(r);
        r.side = -1;
        return false;
    case TKCLOSE: return true;
    default: badoperator(r);
    }
    r.side = 1;
    return false;
}

void finishset(const setreader& r) {
    const int target = parser.poltop >= 0 ? parser.polstack[0] : 0;
    if (target <= 0 || (sym(target).type != CONSETTYPE && sym(target).type != UNKNOWN))
        tarnerror(further("%s", describe(target).c_str()), "CONSTRAINTS: cannot assign to existing name %s",
                  target > 0 ? sym(target).name : "");
    for (int i = 0; i <= r.row; i++)
        if (r.rels[i] == 0)
            tarnerror(further("constraint %d has no relation, as A > 0", i + 1),
                      "bad relational operator in constraint");
    auto set = std::make_unique<CONSET>();
    set->rows = r.row + 1;
    set->cols = r.nvars;
    set->coef.reset(harraynew(uint32_t(set->rows), uint32_t(set->cols)));
    set->rhs.reset(harraynew(uint32_t(set->rows), 1));
    set->vars.assign(r.names, r.names + r.nvars);
    set->rels.assign(r.rels, r.rels + set->rows);
    for (int i = 0; i < set->rows; i++) {
        for (int j = 0; j < set->cols; j++) at(set->coef.get(), size_t(i) + 1, size_t(j) + 1) = r.coef[i][j];
        at(set->rhs.get(), size_t(i) + 1, 1) = r.rhs[i];
    }
    symbol& s = sym(target);
    if (s.type == CONSETTYPE) symtab.kind[CONSETTYPE].release(s);
    s.type = CONSETTYPE;
    s.val.ptr = set.release();
    polpop();
}

} // namespace

void constraintsop() {
    setreader r;
    upper.newtoken(r.number, r.index);
    if (r.number != TKOPEN)
        tarnerror(further("as in CONSTRAINTS C = { A > 0, A+B < 1 }"),
                  "CONSTRAINTS: failure to use { to begin constraint list");
    do {
        next(r);
        endterm(r, readterm(r));
    } while (!operate(r));
    finishset(r);
}
