#include "solvers/fit.h"

#include "funcs/trinode.h"
#include "interp/base/machine.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "solvers/conset.h"
#include "solvers/fitbind.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

constexpr int MAXPAIRS = 200, TOKENWITH = 69;

struct fitclauses {
    fitpair pair[MAXPAIRS]; // clause.fitcount of them
};
fitclauses fit;

// ---- clauses

void weightclause(const processop& op) {
    const int w = op.ptop;
    if (clause.fitcount < 1 || opcommand() != 67) tarnerror("no WEIGHT clause with this operator");
    if (ismatrix(w)) {
        if (matrixof(w)->cols != 1) argshape("WEIGHT clause");
    } else if (sym(w).type != USERFUNCTION) {
        tarnerror(further("%s", describe(w).c_str()), "WEIGHT: must be matrix or function");
    }
    polpop();
    fit.pair[clause.fitcount - 1].weight = w;
    if (parser.oplevel > 0 && parser.opstack[parser.oplevel] == TOKENWITH) parser.oplevel--;
}

// ---- the statement

[[noreturn]] void noparameter(int idx) {
    tarnerror(
        further("%s; names of numbers and matrices stand in the brackets of FIT", describe(idx).c_str()),
        "fitop: an expression is of the wrong type");
}

std::vector<int> parameterlist() {
    std::vector<int> parms;
    for (int k = 0; k <= parser.poltop; k++) {
        const int idx = parser.polstack[k];
        if (idx <= 0 || istemporary(idx) || (sym(idx).type != SCALAR && !ismatrix(idx))) noparameter(idx);
        if (std::find(parms.begin(), parms.end(), idx) != parms.end())
            tarnerror("FIT: parameter %s is named twice", sym(idx).name);
        parms.push_back(idx);
    }
    parser.poltop = -1;
    return parms;
}

size_t elementcount(const std::vector<int>& parms) {
    size_t count = 0;
    for (int idx : parms) count += ismatrix(idx) ? harraycount(matrixof(idx)) : 1;
    return count;
}

solverconstraints constraintsof(const std::vector<int>& parms) {
    if (clause.conset <= 0) return {};
    if (sym(clause.conset).type == CONSETTYPE) {
        std::vector<int> names = parms;
        for (int& idx : names)
            if (ismatrix(idx)) idx = -idx;
        return conset2solver(clause.conset, names);
    }
    const harray* m = matrixof(clause.conset);
    if (size_t(m->cols) != elementcount(parms) + 2) argtype("fitop");
    if (elementcount(parms) > parms.size())
        tarnwarn(
            "FIT: a constraint matrix is read with one coefficient for all cells of a matrix of parameters");
    solverconstraints form = conmat2solver(m);
    form.width = int(parms.size()); // rows are read at the stride of the parameters as they are named
    return form;
}

int wholeswitch(const char* name, int absent) { // as a number of 16 bits
    return int(std::trunc(std::clamp(symtabscalar(name, absent), -32768.0, 32767.0)));
}

fitswitches readswitches() {
    fitswitches sw;
    sw.maxiter = wholeswitch("MAXITER", 100);
    sw.report = wholeswitch("LSQRPT", 8);
    sw.norm = symtabscalar("FITNORM", 2);
    if (!(sw.norm > 0)) tarnerror("FIT: FITNORM must be positive");
    sw.tolsos = symtabscalar("TOLSOS", 1e-10);
    sw.descent = wholeswitch("DGRADSW", 0) != 0;
    return sw;
}

// ---- what is left behind

void storematrix(const char* name, harrayptr m) {
    const int idx = symtabenter(name);
    if (sym(idx).type != UNKNOWN) symtabdelete(idx);
    const int fresh = symtabenter(name);
    sym(fresh).type = MATRIX;
    sym(fresh).val.ptr = m.release();
}

void storescalar(const char* name, double x) {
    const int idx = symtabenter(name);
    if (sym(idx).type != UNKNOWN && sym(idx).type != SCALAR) symtabdelete(idx);
    const int fresh = symtabenter(name);
    sym(fresh).type = SCALAR;
    sym(fresh).val.rval = x;
}

harrayptr columnof(const std::vector<double>& v) {
    harrayptr m(harrayraw(uint32_t(v.size()), 1));
    std::copy(v.begin(), v.end(), cells(m.get()) + 1);
    return m;
}

void storeresiduals(const fitbinding& b, const fitresult& r) {
    const double level = symtabscalar("RESIDSW", 0);
    if (level <= 0) return;
    std::vector<double> resid(b.m);
    for (size_t i = 0; i < resid.size(); i++)
        resid[i] = r.resid[i] * (level > 1 ? std::sqrt(std::max(r.w[i], 0.0)) : 1);
    storematrix("RESID", columnof(resid));
}

void storeresults(const fitresult& r) {
    const uint32_t n = uint32_t(r.p.size());
    harrayptr covariance(harrayraw(n, n));
    std::copy(r.covariance.begin(), r.covariance.end(), cells(covariance.get()) + 1);
    storematrix("COVP", std::move(covariance));
    storematrix("STDEST", columnof(r.stderrors));
    storematrix("DEPVALS", columnof(r.dependency));
    storescalar("SOSQ", r.sosq);
    storescalar("RSQUARED", r.rsquared);
}

// ---- the report

bool unconstrained(const fitresult& r) {
    return std::all_of(r.lagrange.begin(), r.lagrange.end(), [](double l) { return l == 0; });
}

void reportparameters(const fitbinding& b, const fitresult& r) {
    tarnprint("final parameter values\n");
    tarnprint("      value               error                dependency    parameter\n");
    for (size_t j = 0; j < b.slots.size(); j++) {
        const fitslot& slot = b.slots[j];
        tarnprint("% 15.10lg     % 15.10lg       % 15.10lg   %-s", r.p[j], r.stderrors[j], r.dependency[j],
                  sym(slot.symbol).name);
        if (slot.element) tarnprint("[%hd]", short(slot.element));
        tarnprint("\n");
    }
}

void reportmultipliers(const fitresult& r) {
    if (unconstrained(r)) return tarnprint("no active constraints\n");
    for (size_t i = 0; i < r.lagrange.size(); i++)
        if (r.lagrange[i] != 0)
            tarnprint("lagrange multiplier[%hd] = %1.10lg\n", short(i + 1), r.lagrange[i]);
}

void finalreport(const fitbinding& b, const fitresult& r) {
    reportparameters(b, r);
    tarnprint("%hd iterations\n", short(r.iterations));
    tarnprint(r.converged == 1 ? "CONVERGED\n" : "NOT CONVERGED\n");
    tarnprint("best weighted sum of squares = %le\n", r.sosq);
    tarnprint("weighted root mean square error = %le\n", r.rms);
    tarnprint("weighted deviation fraction = %le\n", r.deviation);
    if (wholeswitch("LINEARSW", 0) != 0 && r.rsquared >= 0 && unconstrained(r))
        tarnprint("R squared = %le\n", r.rsquared);
    if (!r.lagrange.empty()) reportmultipliers(r);
}

std::string slotname(const fitslot& slot) {
    std::string name = sym(slot.symbol).name;
    if (slot.element) name += "[" + std::to_string(slot.element) + "]";
    return name;
}

bool onconstraint(const solverconstraints& cons, const fitresult& r, int parm) {
    for (int i = 0; i < cons.count; i++)
        if (r.lagrange[size_t(i)] != 0 && cons.coef[size_t(i) * cons.width + parm] != 0) return true;
    return false;
}

// The first row that the result breaks, from 1; 0: none.
int brokenconstraint(const fitbinding& b, const solverconstraints& cons, const fitresult& r) {
    for (int i = 0; i < cons.count; i++) {
        double value = 0, size = std::fabs(cons.rhs[i]);
        for (size_t j = 0; j < b.slots.size(); j++) {
            const double term = cons.coef[size_t(i) * cons.width + b.slots[j].parm] * r.p[j];
            value += term;
            size = std::max(size, std::fabs(term));
        }
        const double over = value - cons.rhs[i];
        if ((cons.type[i] == 0 ? std::fabs(over) : -cons.type[i] * over) > 1e-6 * size) return i + 1;
    }
    return 0;
}

// The sum has no value: because a cell of the data has none, as an empty field that READCSV has read, or else
// by the parameters.
void tellnovalue(const fitbinding& b) {
    for (const fitpair& pair : b.pairs) {
        const harray* m = matrixof(pair.data);
        for (uint32_t i = 1; i <= m->rows; i++)
            for (uint32_t j = 1; j <= m->cols; j++)
                if (at(m, i, j) == MAXPOS)
                    return tarnwarn(
                        "FIT: row %u, column %u of the data has no value; COMPRESS leaves rows out", i, j);
    }
    tarnwarn("FIT: the model has no value at the starting parameters; try other starting values");
}

/* What a reader of "CONVERGED" should know besides: a fit can stand still without having found anything. */
void warnings(const fitbinding& b, const fitswitches& sw, const solverconstraints& cons,
              const std::vector<double>& start, const fitresult& r) {
    if (!r.started && !r.lowered) return tellnovalue(b);
    const bool moved = start != r.p;
    if (sw.maxiter <= 0)
        tarnwarn("FIT: MAXITER is 0, the parameters were %s",
                 moved ? "moved to where they meet the constraints" : "not changed");
    else if (!r.lowered && r.sosq > 0)
        tarnwarn("FIT: no step lowered the sum of squares; the parameters are the starting values%s",
                 moved ? ", moved to where they meet the constraints" : "");
    if (r.retried) tarnwarn("FIT: the first search went astray; the result is that of a more careful one");
    if (const int broken = brokenconstraint(b, cons, r)) tarnwarn("FIT: constraint %d is not met", broken);
    for (size_t j = 0; j < b.slots.size(); j++) {
        const std::string name = slotname(b.slots[j]);
        if (onconstraint(cons, r, b.slots[j].parm))
            tarnwarn("FIT: parameter %s stands on a constraint, its error does not hold", name.c_str());
        else if (r.stderrors[j] >= MAXPOS)
            tarnwarn("FIT: parameter %s has no effect on the model", name.c_str());
        else if (r.dependency[j] > 0.999999)
            tarnwarn("FIT: parameter %s depends on the others, its value is not well determined",
                     name.c_str());
    }
}

void releaseoperands() {
    for (int k = 0; k < clause.fitcount; k++) {
        tempfree(fit.pair[k].data);
        tempfree(fit.pair[k].weight);
    }
}

void fitop(const processop&) {
    if (parser.poltop < 0)
        tarnerror(further("parameters, function and data are missing, as in FIT (A,B), F TO M"),
                  "fit dialog not working yet");
    fitbinding b;
    b.parms = parameterlist();
    if (clause.fitcount < 1) tarnerror("FIT: no data to fit to: FIT (A,B), F TO M");
    b.pairs.assign(fit.pair, fit.pair + clause.fitcount);
    const solverconstraints cons = constraintsof(b.parms);
    const fitswitches sw = readswitches();
    b.symbolic = wholeswitch("SYMDSW", 1) != 0;
    fitbind(b);
    if (std::max(b.slots.size(), size_t(cons.count)) > 100)
        tarnwarn("There are an excessive number of parameters plus constraints!");
    std::vector<int> element;
    for (const fitslot& slot : b.slots) element.push_back(slot.parm);
    const std::vector<double> start = fitparameters(b);
    const fitresult r = fitsolve(fitmodelof(b), sw, cons, element, start, b.m, b.y, b.w0);
    if (r.contradiction)
        tarnerror("FIT: no parameters meet all constraints: number %d contradicts those before it",
                  r.contradiction);
    fitstore(b, r.p.data());
    storeresiduals(b, r);
    if (r.report & 8) finalreport(b, r);
    warnings(b, sw, cons, start, r);
    storeresults(r);
    releaseoperands();
}

constexpr processrow cases[] = {{30, fitop}, {32, weightclause}};

} // namespace

void fittoclause() {
    const int data = polpop(), f = polpop();
    if (clause.fitcount >= MAXPAIRS) tarnerror("FIT: too many simultaneous fitting functions");
    if (!ismatrix(data)) tarnerror(further("%s", describe(data).c_str()), "FIT: fit data must be a matrix");
    if (f <= 0 || (sym(f).type != USERFUNCTION && sym(f).type != INITIALVALUE))
        tarnerror(further("%s", describe(f).c_str()),
                  "FIT: FIT (A,B), F TO M, F must be a function or differential equation");
    const int nargs = formalcount(f), ncols = int(matrixof(data)->cols);
    if (nargs != ncols - 1)
        tarnerror(further("%s; the arguments of %s stand in its first columns, the value in the last",
                          describe(data).c_str(), nametext(f).c_str()),
                  "#function args = %hd must be (#matrix cols = %hd)-1 in FIT", short(nargs), short(ncols));
    fit.pair[clause.fitcount++] = {data, f, 0};
}

void fitstart() {
    fit = {};
    processadd(cases, int(std::size(cases)));
}
