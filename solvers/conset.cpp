// The record of a constraint set: its text, its life, its block in save files, its conversion for a solver.
#include "solvers/conset.h"

#include "interp/base/listrows.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "values/saveblock.h"

#include <cmath>
#include <cstdio>

namespace {

std::string shortnumber(double x) {
    char text[40];
    snprintf(text, sizeof text, "%lg", x);
    return text;
}

std::string rowtext(const CONSET& set, size_t i) {
    std::string text;
    for (size_t j = 0; j < set.vars.size(); j++) {
        const double c = at(set.coef.get(), i + 1, j + 1);
        if (c == 0) continue;
        if (c > 0) text += text.empty() ? " " : "+";
        if (c == -1)
            text += "-";
        else if (c != 1)
            text += shortnumber(c) + "*";
        text += sym(set.vars[j]).name;
    }
    text += set.rels[i] == CONLESS ? " < " : set.rels[i] == CONEQUAL ? " = " : " > ";
    return text + shortnumber(at(set.rhs.get(), i + 1, 1));
}

CONSET* record(const symbol& s) { return static_cast<CONSET*>(s.val.ptr); }

void releaseset(symbol& s) {
    delete record(s);
    s.val.ptr = nullptr;
}

bool setuses(const symbol& s, int target) {
    for (int v : record(s)->vars)
        if (v == target) return true;
    return false;
}

void listset(int symidx) {
    const std::string text = constraints2text(symidx, false);
    tarnprinttext(text.data(), text.size());
}

// A set in memory, with names in place of symbols: nothing is entered before the whole block was read.
struct savedset {
    CONSET set;
    std::vector<std::string> names;
};

void writeset(savewriter& out, int symidx) {
    const CONSET& set = consetof(symidx);
    putshort(out, set.rows);
    putshort(out, set.cols);
    putmatrix(out, set.coef.get());
    for (int v : set.vars) puttext(out, sym(v).name);
    for (int r : set.rels) putshort(out, r);
    putmatrix(out, set.rhs.get());
}

void checkset(savereader& in, const savedset& saved) {
    const CONSET& set = saved.set;
    const bool shaped = set.coef && set.rhs && set.coef->rows == uint32_t(set.rows) &&
                        set.coef->cols == uint32_t(set.cols) && set.rhs->rows == uint32_t(set.rows) &&
                        set.rhs->cols == 1;
    if (!in.fault && !shaped) readfault(in, "constraints of another shape than told");
    for (int r : set.rels)
        if (!in.fault && r != CONEQUAL && r != CONLESS && r != CONGREATER)
            readfault(in, "unknown relation in constraints");
    for (const std::string& name : saved.names)
        if (!in.fault && (name.empty() || name.size() > MAXNAME)) readfault(in, "bad name in constraints");
}

void* readset(savereader& in) {
    auto saved = std::make_unique<savedset>();
    CONSET& set = saved->set;
    set.rows = getshort(in);
    set.cols = getshort(in);
    if (set.rows < 1 || set.rows > CONSETMOST || set.cols < 0 || set.cols > CONSETMOST)
        readfault(in, "bad count of constraints");
    if (in.fault) return nullptr;
    set.coef.reset(getmatrix(in));
    for (int j = 0; j < set.cols; j++) {
        std::string name;
        gettext(in, name);
        saved->names.push_back(name);
    }
    for (int i = 0; i < set.rows; i++) set.rels.push_back(getshort(in));
    set.rhs.reset(getmatrix(in));
    checkset(in, *saved);
    return in.fault ? nullptr : saved.release();
}

void installset(int symidx, void* value) {
    std::unique_ptr<savedset> saved(static_cast<savedset*>(value));
    for (const std::string& name : saved->names) saved->set.vars.push_back(symtabenter(name.c_str()));
    sym(symidx).val.ptr = new CONSET(std::move(saved->set));
    sym(symidx).type = CONSETTYPE;
}

void discardset(void* value) { delete static_cast<savedset*>(value); }

// The present value of a name that is not solved for, folded into the right sides.
void foldin(const CONSET& set, size_t j, harray* coef, std::vector<double>& rhs) {
    if (sym(set.vars[j]).type != SCALAR)
        tarnerror(further("%s", describe(set.vars[j]).c_str()), "Non-Scalar parameter in constraints.");
    const double value = sym(set.vars[j]).val.rval;
    for (size_t i = 0; i < rhs.size(); i++) {
        rhs[i] -= value * at(coef, i + 1, j + 1);
        at(coef, i + 1, j + 1) = 0;
    }
}

int constype(int relation) {
    switch (relation) {
    case CONEQUAL: return 0;
    case CONLESS: return -1;
    case CONGREATER: return 1;
    default: tarnerror("bad relational operator in constraint");
    }
}

// Whether a row without parameters holds.
bool holds(int relation, double rhs) {
    return relation == CONLESS ? 0 <= rhs : relation == CONGREATER ? 0 >= rhs : rhs == 0;
}

bool voidrow(const harray* coef, size_t i) {
    for (size_t j = 1; j <= coef->cols; j++)
        if (at(coef, i, j) != 0) return false;
    return true;
}

} // namespace

const CONSET& consetof(int symidx) { return *record(sym(symidx)); }

std::string constraints2text(int symidx, bool bare) {
    const CONSET& set = consetof(symidx);
    std::string text = "constraints " + std::string(sym(symidx).name) + " =\n";
    for (size_t i = 0; i < size_t(set.rows); i++) {
        if (!bare) text += "     ";
        text += i == 0 ? "{" : " ";
        text += rowtext(set, i);
        text += i + 1 == size_t(set.rows) ? " }\n" : ",\n";
    }
    return text;
}

solverconstraints conset2solver(int symidx, const std::vector<int>& parms) {
    const CONSET& set = consetof(symidx);
    const harrayptr coef(harraydup(set.coef.get()));
    std::vector<double> rhs(cells(set.rhs.get()) + 1, cells(set.rhs.get()) + 1 + set.rows);
    std::vector<int> place(set.vars.size(), -1);
    for (size_t j = 0; j < set.vars.size(); j++) {
        for (size_t k = 0; k < parms.size() && place[j] < 0; k++)
            if (parms[k] == set.vars[j]) place[j] = int(k);
        if (place[j] < 0) foldin(set, j, coef.get(), rhs);
    }
    solverconstraints form;
    form.width = int(parms.size());
    for (size_t i = 0; i < rhs.size(); i++) {
        if (voidrow(coef.get(), i + 1)) {
            if (!holds(set.rels[i], rhs[i]))
                tarnwarn("constraint %ld of %s does not hold and has no parameter", long(i + 1),
                         sym(symidx).name);
            continue;
        }
        form.coef.resize(form.coef.size() + parms.size());
        double* row = &form.coef[size_t(form.count) * parms.size()];
        for (size_t j = 0; j < place.size(); j++)
            if (place[j] >= 0) row[place[j]] = at(coef.get(), i + 1, j + 1);
        form.type.push_back(constype(set.rels[i]));
        form.rhs.push_back(rhs[i]);
        form.count++;
    }
    return form;
}

solverconstraints conmat2solver(const harray* m) {
    solverconstraints form;
    form.count = int(m->rows);
    form.width = int(m->cols) - 2;
    for (size_t i = 1; i <= m->rows; i++) {
        for (size_t j = 1; j + 2 <= m->cols; j++) form.coef.push_back(at(m, i, j));
        const double code = std::trunc(at(m, i, m->cols - 1));
        if (std::fabs(code) > 1)
            tarnerror(further("row %ld of the matrix has %g before its right side; -1, 0 and 1 stand for "
                              "<=, = and >=",
                              long(i), code),
                      "bad relational operator in constraint");
        form.type.push_back(int(code));
        form.rhs.push_back(at(m, i, m->cols));
    }
    return form;
}

namespace {

// CONSTRAINTS alone defines a set; inside a statement it is the clause of a fit.
void constraintscase(const processop& op) {
    if (parser.oplevel == 0) return constraintsop();
    const int type = sym(op.ptop).type;
    if (type != CONSETTYPE && type != MATRIX)
        tarnerror(
            further("%s; CONSTRAINTS C = { A > 0 } makes a set of constraints", describe(op.ptop).c_str()),
            "name: %s in CONSTRAINTS is not a CONSET", sym(op.ptop).name);
    clause.conset = int16_t(op.ptop);
    polpop();
}

constexpr processrow cases[] = {{33, constraintscase}};
constexpr listingrow listed[] = {{CONSETTYPE, listset, nullptr}};
constexpr savekind saved[] = {{CONSETTYPE, writeset, readset, installset, discardset}};

} // namespace

void consetstart() {
    symtab.kind[CONSETTYPE].release = releaseset;
    symtab.kind[CONSETTYPE].uses = setuses;
    processadd(cases, 1);
    savekindadd(saved, 1);
    listingadd(listed, 1);
}
