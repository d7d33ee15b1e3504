// The builtins NMSIMPLEX and LINPROG.
#include "funcs/builtin.h"
#include "funcs/flatcode.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "solvers/conset.h"
#include "solvers/linprog.h"
#include "solvers/nmsimplex.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

struct simplexfunction {
    int f, n;
    flatptr program; // null for a builtin
};

double evaluate(void* context, const double* x) {
    const simplexfunction& s = *static_cast<simplexfunction*>(context);
    if (!s.program) return callvalue(s.f, x, s.n);
    double value;
    flatrun(*s.program, x, &value);
    return value;
}

int argumentsof(int f) {
    if (sym(f).type >= 0) return formalcount(f);
    return std::max(0, int(sym(f).val.argd[0]));
}

// The vertices to start from: unit steps from the origin or from a point, or the polytope itself.
std::vector<double> startvertices(const callargs& a, size_t n) {
    std::vector<double> points((n + 1) * n, 0.0);
    const bool given = a.n >= 2;
    int temp = 0;
    const harray* s = given ? matrixval(a[2], temp) : nullptr;
    if (given && s->rows == n + 1 && s->cols == n) {
        std::copy_n(cells(s) + 1, points.size(), points.begin());
        tempfree(temp);
        return points;
    }
    if (given && harraycount(s) != n) argrange("NMSIMPLEX");
    for (size_t i = 0; i <= n; i++) {
        if (given) std::copy_n(cells(s) + 1, n, &points[i * n]);
        if (i > 0) points[i * n + i - 1] += 1;
    }
    tempfree(temp);
    return points;
}

int nmsimplexcall(const callargs& a) {
    simplexfunction s{a[1], argumentsof(a[1]), nullptr};
    if (s.n < 1) argrange("NMSIMPLEX");
    if (sym(s.f).type == USERFUNCTION) {
        flatrequest request;
        request.functions = {s.f};
        request.nargs = s.n;
        s.program = flatcompile(request);
    }
    simplexswitches sw;
    sw.maxiter = long(std::clamp(symtabscalar("MAXITER", 1000), -1e9, 1e9));
    sw.report = int(symtabscalar("REPORTSW", 0));
    sw.tolerance = symtabscalar("TOLSOS", 3e-16);
    std::vector<double> points = startvertices(a, size_t(s.n));
    double best = 0;
    const long count = nmsimplex(evaluate, &s, s.n, points, sw, best);
    tarnprint("SIMPLEX: %hd function evaluations\n", short(std::min(count, 32767L)));
    harrayptr result(harrayraw(uint32_t(s.n) + 1, 1));
    cells(result.get())[1] = best;
    std::copy_n(points.begin(), s.n, cells(result.get()) + 2);
    return symtabmatrix(0, 0, std::move(result));
}

// ---- LINPROG(C, A, free)

struct objective {
    std::vector<double> cost;
    double constant = 0;    // of a function
    std::vector<int> names; // formals of a function, for constraints by name
};

// At a point with no coordinate 0 or 1, where a product of variables or a power would show.
void warnnonlinear(const objective& o, int f) {
    std::vector<double> x(o.cost.size());
    double linear = o.constant, size = std::fabs(o.constant);
    for (size_t k = 0; k < x.size(); k++) {
        x[k] = 1.5 + double(k);
        linear += o.cost[k] * x[k];
        size += std::fabs(o.cost[k] * x[k]);
    }
    if (!(std::fabs(callvalue(f, x.data(), int(x.size())) - linear) <= 1e-9 * size))
        tarnwarn("LINPROG: the function is not linear; its values at the unit vectors are taken");
}

/* The coefficients of a linear function are its values at the unit vectors, less its value at the origin. */
objective functionobjective(int f) {
    objective o;
    const int n = argumentsof(f);
    if (n < 1) tarnerror("LINPROG: function has no formal arguments.");
    std::vector<double> x(size_t(n), 0.0);
    o.constant = callvalue(f, x.data(), n);
    for (int k = 1; k <= n; k++) {
        x[size_t(k) - 1] = 1;
        o.cost.push_back(callvalue(f, x.data(), n) - o.constant);
        x[size_t(k) - 1] = 0;
        o.names.push_back(sym(f).type >= 0 ? formalref(f, k) : 0);
    }
    warnnonlinear(o, f);
    return o;
}

objective objectiveof(int idx) {
    if (sym(idx).type == USERFUNCTION || sym(idx).type < 0) return functionobjective(idx);
    objective o;
    int temp = 0;
    const harray* c = matrixval(idx, temp);
    o.cost.assign(cells(c) + 1, cells(c) + 1 + harraycount(c));
    tempfree(temp);
    if (o.cost.empty()) argshape("LINPROG");
    return o;
}

solverconstraints programrows(int idx, const objective& o) {
    if (sym(idx).type == CONSETTYPE) {
        if (o.names.empty()) argtype("LINPROG");
        return conset2solver(idx, o.names);
    }
    if (!ismatrix(idx)) argtype("LINPROG");
    if (matrixof(idx)->cols != o.cost.size() + 2) argshape("LINPROG");
    return conmat2solver(matrixof(idx));
}

// Variables of any sign: each is the difference of two that are not negative.
void splitvariables(objective& o, solverconstraints& rows) {
    const size_t n = o.cost.size();
    solverconstraints wide = rows;
    wide.width = int(2 * n);
    wide.coef.assign(size_t(rows.count) * 2 * n, 0);
    for (size_t i = 0; i < size_t(rows.count); i++)
        for (size_t j = 0; j < n; j++) {
            wide.coef[i * 2 * n + j] = rows.coef[i * n + j];
            wide.coef[i * 2 * n + n + j] = -rows.coef[i * n + j];
        }
    for (size_t j = 0; j < n; j++) o.cost.push_back(-o.cost[j]);
    rows = std::move(wide);
}

int linprogcall(const callargs& a) {
    objective o = objectiveof(a[1]);
    const size_t n = o.cost.size();
    solverconstraints rows = programrows(a[2], o);
    rows.width = int(n);
    const bool anysign = a.n >= 3;
    if (anysign) splitvariables(o, rows);
    std::vector<double> x;
    double optimum = 0;
    const lpoutcome outcome = linprog(o.cost, rows, x, optimum);
    if (outcome == LPINFEASIBLE) tarnerror("LINPROG: no feasible solution\n");
    if (outcome == LPUNBOUNDED) tarnerror("LINPROG: solution unbounded\n");
    harrayptr result(harrayraw(uint32_t(n) + 1, 1));
    for (size_t j = 0; j < n; j++) cells(result.get())[j + 1] = anysign ? x[j] - x[n + j] : x[j];
    cells(result.get())[n + 1] = optimum + o.constant;
    return symtabmatrix(0, 0, std::move(result));
}

constexpr valuerow rows[] = {{-672, nmsimplexcall}, {-753, linprogcall}};

} // namespace

void simplexstart() { builtinadd(rows, int(std::size(rows))); }
