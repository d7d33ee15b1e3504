#include "solvers/minimize.h"

#include "funcs/builtin.h"
#include "funcs/deriv.h"
#include "funcs/flatcode.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/machine.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/conset.h"
#include "solvers/minreport.h"
#include "solvers/minsolve.h"
#include "solvers/odesetup.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

struct minvariable {
    int symbol = 0, element = 0; // element 0: the scalar itself, else the cell of the matrix
};

struct minbinding {
    int f = 0;
    double sign = 1;
    size_t nargs = 0;          // arguments of the call; further variables are scalars that the function reads
    std::vector<int> operands; // symbols as they were named
    std::vector<minvariable> variables;
    bool hasmatrix = false, ode = false;
    flatptr program, gradient;
    std::vector<double> in;
};

void store(const minbinding& b, const double* x) {
    for (size_t i = 0; i < b.variables.size(); i++) {
        const minvariable& v = b.variables[i];
        if (v.element)
            cells(matrixof(v.symbol))[v.element] = x[i];
        else
            sym(v.symbol).val.rval = x[i];
    }
}

// A call with matrices among its arguments: they are passed by name.
double callbyname(const minbinding& b) {
    const int p = parser.poltop + 1, mark = parser.scalartop;
    polpush(b.f);
    for (size_t k = 0; k < b.nargs; k++) {
        const int idx = b.operands[k];
        polpush(ismatrix(idx) ? idx : scalarpush(sym(idx).val.rval));
    }
    const double f = value(p);
    parser.scalartop = mark;
    parser.poltop = p - 1;
    return f;
}

double functionvalue(void* context, const double* x) {
    minbinding& b = *static_cast<minbinding*>(context);
    store(b, x);
    double f;
    if (b.program)
        flatrun(*b.program, x, &f);
    else
        f = callbyname(b);
    // an integration that failed has no value, whichever way it is searched
    return b.ode && f >= MAXPOS ? f : f * b.sign;
}

void functiongradient(void* context, const double* x, double* g) {
    minbinding& b = *static_cast<minbinding*>(context);
    store(b, x);
    flatrun(*b.gradient, x, g);
    for (size_t i = 0; i < b.variables.size(); i++) g[i] *= b.sign;
}

// ---- operands

size_t sizeofoperand(int idx) { return ismatrix(idx) ? harraycount(matrixof(idx)) : 1; }

size_t totalsize(const std::vector<int>& operands, size_t count) {
    size_t size = 0;
    for (size_t k = 0; k < count; k++) size += sizeofoperand(operands[k]);
    return size;
}

void expandvariables(minbinding& b) {
    for (int idx : b.operands) {
        if (!ismatrix(idx)) {
            b.variables.push_back({idx, 0});
            continue;
        }
        b.hasmatrix = true;
        for (size_t e = 1; e <= harraycount(matrixof(idx)); e++) b.variables.push_back({idx, int(e)});
    }
}

/* The last operand may be the constraints: a set, or a matrix as wide as the other variables and two columns
 * more. */
solverconstraints takeconstraints(minbinding& b) {
    if (b.operands.empty()) return {};
    const int last = b.operands.back();
    if (sym(last).type == CONSETTYPE) {
        b.operands.pop_back();
        expandvariables(b);
        std::vector<int> names;
        for (const minvariable& v : b.variables) names.push_back(v.symbol);
        return conset2solver(last, names);
    }
    const size_t others = totalsize(b.operands, b.operands.size() - 1);
    if (ismatrix(last) && matrixof(last)->cols == others + 2 && others > 0) {
        b.operands.pop_back();
        expandvariables(b);
        return conmat2solver(matrixof(last));
    }
    expandvariables(b);
    return {};
}

minbinding operandsof(const callargs& a) {
    minbinding b;
    b.f = a[1];
    if (a.n < 2 || b.f <= 0) argtype("minimize");
    if (sym(b.f).type == UNKNOWN && sym(b.f).name[0] == '.') derivfind(b.f, false);
    const int type = sym(b.f).type;
    if (type != USERFUNCTION && type != INITIALVALUE && type >= 0) argtype("minimize");
    for (int k = 2; k <= a.n; k++) {
        const int idx = a[k];
        const bool last = k == a.n && idx > 0 && sym(idx).type == CONSETTYPE;
        const bool parameter = idx > 0 && sym(idx).type == SCALAR && !istemporary(idx);
        if (idx <= 0 || (!parameter && !ismatrix(idx) && !last)) argtype("minimize");
        if (std::find(b.operands.begin(), b.operands.end(), idx) != b.operands.end())
            tarnerror("MINIMIZE: variable %s is named twice", sym(idx).name);
        b.operands.push_back(idx);
    }
    return b;
}

size_t argumentcount(const minbinding& b) {
    if (sym(b.f).type >= 0) return size_t(formalcount(b.f));
    const int most = sym(b.f).val.argd[0];
    return std::min(b.operands.size(), size_t(most > 0 ? most : 7));
}

// ---- programs

/* Variables behind the arguments are read by name: their symbols are inputs of the program too. */
flatptr compile(const minbinding& b, const std::vector<int>& functions) {
    flatrequest request;
    request.functions = functions;
    request.nargs = int(b.nargs);
    for (size_t k = b.nargs; k < b.operands.size(); k++) request.symbols.push_back(b.operands[k]);
    return flatcompile(request);
}

bool dependsonode(const minbinding& b) { return sym(b.f).type >= 0 && odededuce({b.f}, 0).active(); }

// The variable that an argument is for the function: its formal; else the symbol itself.
void makegradient(minbinding& b) {
    std::vector<int> functions;
    for (size_t k = 0; k < b.operands.size(); k++)
        functions.push_back(makederiv(b.f, k < b.nargs ? formalref(b.f, int(k) + 1) : b.operands[k]));
    b.gradient = compile(b, functions);
}

// ---- switches

double number(const char* name, double absent) { return symtabscalar(name, absent); }
int whole(const char* name, double absent) {
    return int(std::trunc(std::clamp(symtabscalar(name, absent), -1e9, 1e9)));
}

minswitches readswitches() {
    minswitches sw;
    const double minstop = number("MINSTOP", 0.001);
    sw.gtol = number("EPS", minstop * 0.001);
    sw.ftol = number("TOLERANCE", minstop * 0.01);
    sw.xtol = number("RHO", minstop);
    sw.backtracksw = number("BACKTRACKSW", 1);
    sw.hessmsw = whole("HESSMSW", 2);
    sw.preconditionsw = number("PRECONDITIONSW", 1);
    sw.reptsw = whole("REPTSW", 512);
    sw.newhess = whole("NEWHESS", -1);
    sw.gradsw = whole("GRADSW", 0);
    sw.ssize = std::clamp(whole("SSIZE", 1), 1, 1000000);
    sw.maxsize = std::clamp(whole("MAXSIZE", 5), 0, 16);
    sw.nsize = std::clamp(whole("NSIZE", 10), 1, 1000000);
    sw.stochsw = whole("STOCHSW", 0);
    return sw;
}

// The lower tenth of the F distribution is where the rest of the descent is lost in the noise.
double criticalspread(const minswitches& sw, size_t n) {
    if (!sw.stochsw) return 0;
    const scalarrow* quantile = scalarbuiltinrow(-103);
    const double args[4] = {0.1, double(n), double(n + size_t(sw.stochsw) % 2), 0};
    return quantile ? scalarbuiltin(-103, args, 3) : 0.2;
}

// ---- KEEPHESS

// 0 none, 1 the inverse Hessian, 2 the Hessian itself. The name must be free for it.
int readkeephess(const callargs& a) {
    const int keep = whole("KEEPHESS", 0), idx = keep ? symtablookup("HESSIAN") : 0;
    if (idx <= 0) return keep;
    bool used = sym(idx).type != UNKNOWN && sym(idx).type != SCALAR && !ismatrix(idx);
    for (int k = 1; k <= a.n; k++) used |= a[k] == idx;
    if (used) tarnerror("MINIMIZE: the name HESSIAN is in use, KEEPHESS cannot take it");
    return keep;
}

void keephessian(const minproblem& problem, double sign, const minresult& r, int keep) {
    const size_t n = r.x.size();
    std::vector<double> h = r.hinverse;
    if (keep == 2 || h.size() != n * n) {
        tarnprint("A hessian at the current point is computed.\n");
        h = mintruehessian(problem, r.x);
        if (keep != 2) mininverse(h, n);
    }
    harrayptr m(harrayraw(uint32_t(n), uint32_t(n)));
    for (size_t k = 0; k < n * n; k++) cells(m.get())[k + 1] = h[k] * sign;
    int idx = symtabenter("HESSIAN");
    if (sym(idx).type != UNKNOWN) {
        symtabdelete(idx);
        idx = symtabenter("HESSIAN");
    }
    sym(idx).type = MATRIX;
    sym(idx).val.ptr = m.release();
}

// The variables as they were before the call, should the function fail on the way.
struct startvalues {
    const minbinding& b;
    std::vector<double> x;
    bool kept = true;

    explicit startvalues(const minbinding& binding) : b(binding) {
        for (const minvariable& v : b.variables)
            x.push_back(v.element ? cells(matrixof(v.symbol))[v.element] : sym(v.symbol).val.rval);
    }
    ~startvalues() {
        if (kept) store(b, x.data());
    }
    startvalues(const startvalues&) = delete;
    startvalues& operator=(const startvalues&) = delete;
};

double minimize(const callargs& a, double sign) {
    minbinding b = operandsof(a);
    b.sign = sign;
    const int keep = readkeephess(a);
    const solverconstraints cons = takeconstraints(b);
    b.nargs = argumentcount(b);
    if (b.nargs > b.operands.size()) argtype("minimize");
    minswitches sw = readswitches();
    sw.critical = criticalspread(sw, b.variables.size());
    b.ode = dependsonode(b);
    const bool symbolic =
        whole("SYMDSW", 1) != 0 && !b.hasmatrix && !b.ode && !sw.stochsw && sym(b.f).type == USERFUNCTION;
    if (!b.hasmatrix && !b.ode && sym(b.f).type == USERFUNCTION) b.program = compile(b, {b.f});
    if (symbolic) makegradient(b);
    minproblem problem;
    problem.n = int(b.variables.size());
    problem.context = &b;
    problem.value = functionvalue;
    problem.gradient = symbolic ? functiongradient : nullptr;
    startvalues start(b);
    const minresult r = minsolve(problem, sw, cons, start.x);
    minreport(r, sw, cons.count > 0);
    minwarnings(problem, r, start.x);
    if (keep) keephessian(problem, sign, r, keep);
    start.kept = false;
    store(b, r.x.data());
    return r.f * sign;
}

double minimizecall(const callargs& a) { return minimize(a, 1); }
double maximizecall(const callargs& a) { return minimize(a, -1); }

constexpr numberrow rows[] = {{-437, minimizecall}, {-438, maximizecall}};

} // namespace

void minimizestart() { builtinadd(rows, int(std::size(rows))); }
