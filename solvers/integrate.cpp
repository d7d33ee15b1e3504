// INTEGRATE and ITERATE, and solutions of differential equations over points (POINTS, ON, calls in
// expressions).
#include "funcs/builtin.h"
#include "funcs/calls.h"
#include "funcs/deriv.h"
#include "funcs/funcprint.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/machine.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "solvers/odesetup.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <numeric>
#include <string>

void odecallstart(); // odesetup.cpp

namespace {

std::vector<int> functionlist(const callargs& a, const char* toomany) {
    if (a.n - 1 > MAXODEFUNCTIONS) tarnerror("%s", toomany);
    std::vector<int> names;
    for (int k = 1; k < a.n; k++) {
        const int f = a[k];
        if (f <= 0) tarnerror("trying to evaluate illegal function\n");
        if (sym(f).type == UNKNOWN && sym(f).name[0] == '.') derivfind(f, false);
        names.push_back(f);
    }
    return names;
}

// ---- the order of the equations in the output matrix

struct placing {
    const odesystem& s;
    std::vector<char> placed;
    std::vector<int> order; // equation at each position
    explicit placing(const odesystem& system) : s(system), placed(system.states.size(), 0) {}
};

int equationofstate(const odesystem& s, int state) {
    const auto found = std::find(s.states.begin(), s.states.end(), state);
    return found == s.states.end() ? -1 : int(found - s.states.begin());
}

void placeone(placing& p, int k) {
    if (k < 0 || p.placed[size_t(k)]) return;
    p.placed[size_t(k)] = 1;
    p.order.push_back(k);
}

int leadingdots(int idx) { return int(strspn(sym(idx).name, ".")); }

// A chain of higher order stands together, from the highest derivative downward.
void placechain(placing& p, int k) {
    while (sym(p.s.derivs[size_t(k)]).type == INITIALVALUE) {
        const int next = equationofstate(p.s, p.s.derivs[size_t(k)]);
        if (next < 0) break;
        k = next;
    }
    for (int left = leadingdots(p.s.derivs[size_t(k)]); left > 0 && k >= 0; left--) {
        placeone(p, k);
        const auto below = std::find(p.s.derivs.begin(), p.s.derivs.end(), p.s.states[size_t(k)]);
        k = below == p.s.derivs.end() ? -1 : int(below - p.s.derivs.begin());
    }
}

template <class T> void permute(std::vector<T>& v, const std::vector<int>& order) {
    std::vector<T> moved;
    for (int k : order) moved.push_back(v[size_t(k)]);
    v.swap(moved);
}

// Equations and outputs in the order of the arguments; those that no argument names behind them.
void reorder(odesystem& s) {
    placing p(s);
    std::vector<int> outputs;
    for (int code : s.code) {
        if (code > 0) {
            const int f = s.outputs[size_t(code) - 1];
            if (std::find(outputs.begin(), outputs.end(), f) == outputs.end()) outputs.push_back(f);
        } else if (code < 0) {
            const int k = (1 - code) / 2 - 1;
            const bool chained =
                sym(s.derivs[size_t(k)]).type == INITIALVALUE || leadingdots(s.derivs[size_t(k)]) > 1;
            if (chained && !p.placed[size_t(k)]) placechain(p, k);
            placeone(p, k);
        }
    }
    for (int k = 0; k < s.neq(); k++) placeone(p, k);
    permute(s.states, p.order);
    permute(s.derivs, p.order);
    s.outputs = outputs;
}

// What stands in the columns: the variable, then each state with its derivative.
void rebuildodestr(const odesystem& s) {
    std::string text = std::string(sym(s.var).name) + "  ";
    for (int k = 0; k < s.neq(); k++)
        text +=
            derivtext(sym(s.states[size_t(k)]).name) + "  " + derivtext(sym(s.derivs[size_t(k)]).name) + "  ";
    const int idx = symtabenter("ODESTR");
    symbol& entry = sym(idx);
    if (entry.type != STRINGTYPE && entry.type != UNKNOWN) return; // the user made something else of it
    char* copy = xstrdup(text.c_str());
    if (entry.type == STRINGTYPE) std::free(entry.val.ptr);
    entry.type = STRINGTYPE;
    entry.val.ptr = copy;
}

int integrate(const callargs& a) {
    if (a.n < 2)
        tarnerror(further("names of states come before the times, as in INTEGRATE(Y, 0:10:1)"),
                  "INTEGRATE: no system of odes found");
    const std::vector<int> names = functionlist(a, "too many odes");
    odesolve solve;
    solve.system = odededuce(names, 0);
    if (!solve.system.active())
        tarnerror(further("%s depends on no differential equation", nametext(names[0]).c_str()),
                  "INTEGRATE: no system of odes found");
    reorder(solve.system);
    rebuildodestr(solve.system);
    int temp = 0;
    const harray* times = matrixval(a[a.n], temp);
    const long count = long(harraycount(times));
    harrayptr out(harraynew(uint32_t(count), uint32_t(odecolumns(solve.system))));
    odeinit(solve);
    oderunover(solve, cells(times) + 1, count, out.get());
    tempfree(temp);
    return symtabmatrix(0, 0, std::move(out));
}

// ---- difference equations

int differencestate(int f) {
    const char* name = sym(f).name;
    const char* dot = name[0] == '.' ? strchr(name + 1, '.') : nullptr;
    if (!dot || sym(f).type != USERFUNCTION || formalcount(f) > 1) return 0;
    const int state = symtablookup(std::string(name + 1, dot).c_str());
    return state > 0 && sym(state).type == INITIALVALUE ? state : 0;
}

void iteraterows(const std::vector<int>& names, const std::vector<int>& states, harray* out) {
    const size_t k = names.size();
    at(out, 1, 1) = 1;
    for (size_t j = 0; j < k; j++) {
        const double start = evalref(funcbody(states[j]), parser.poltop);
        at(out, 1, j + 2) = sym(states[j]).val.rval = start;
    }
    for (size_t r = 2; r <= out->rows; r++) {
        if (r % 4096 == 0) keypoll();
        if (parser.interrupted) break;
        for (size_t j = 0; j < k; j++) sym(states[j]).val.rval = at(out, r - 1, j + 2);
        const double number = double(r);
        at(out, r, 1) = number;
        for (size_t j = 0; j < k; j++)
            at(out, r, j + 2) = callvalue(names[j], &number, formalcount(names[j]));
    }
}

// Initial values are read as states, not as solutions, while a difference equation runs.
struct statescope {
    bool saved = eval.odeactive;
    statescope() { eval.odeactive = true; }
    ~statescope() { eval.odeactive = saved; }
};

[[noreturn]] void noiteration(int given) {
    tarnerror(given > 0 ? further("%s; names with an INITIAL stand before the number of steps",
                                  describe(given).c_str())
                        : further("names with an INITIAL stand before the number of steps"),
              "bad functions or missing initials in ITERATE");
}

int iterate(const callargs& a) {
    std::vector<int> states;
    for (int k = 1; k < a.n; k++) {
        if (a[k] > 0 && sym(a[k]).type == UNKNOWN && sym(a[k]).name[0] == '.') derivfind(a[k], true);
        states.push_back(a[k] > 0 ? differencestate(a[k]) : 0);
        if (states.back() == 0) noiteration(a[k]);
    }
    if (a.n < 2) noiteration(0);
    const std::vector<int> names = functionlist(a, "too many odes");
    const double count = std::trunc(scalarval(a[a.n]));
    if (!(count >= 1 && count < 4294967296.0)) argrange("ITERATE");
    harrayptr out(harraynew(uint32_t(count), uint32_t(names.size() + 1)));
    const statescope scope;
    iteraterows(names, states, out.get());
    return symtabmatrix(0, 0, std::move(out));
}

constexpr valuerow rows[] = {{-600, integrate}, {-634, iterate}};

// ---- solutions over points

// The points in ascending order, and where each stood.
std::vector<size_t> sortedorder(const harray* points) {
    std::vector<size_t> order(points->rows);
    std::iota(order.begin(), order.end(), size_t(1));
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t i, size_t j) { return at(points, i, 1) < at(points, j, 1); });
    return order;
}

/* Columns firstcol.. of result from one integration over the points; false when no differential equation is
 * concerned. A point that the integration did not reach gets MAXPOS. */
bool solutions(const int* functions, int count, const harray* points, int, harray* result, int firstcol) {
    bool concerned = false;
    for (int k = 0; k < count; k++) concerned |= sym(functions[k]).type >= 0;
    if (!concerned || eval.odeactive) return false;
    const std::vector<int> names(functions, functions + count);
    odesolve solve;
    solve.system = odededuce(names, 0);
    if (!solve.system.active()) return false;
    if (points->cols != 1) argshape("POINTS");
    for (int f : names) odeusable(f, 1);
    const std::vector<size_t> order = sortedorder(points);
    std::vector<double> times;
    for (size_t i : order) times.push_back(at(points, i, 1));
    harrayptr out(harraynew(points->rows, uint32_t(odecolumns(solve.system))));
    odeinit(solve);
    oderunover(solve, times.data(), long(times.size()), out.get());
    for (size_t r = 0; r < order.size(); r++)
        for (size_t k = 0; k < names.size(); k++)
            at(result, order[r], size_t(firstcol) + k) =
                long(r) < solve.run.row ? at(out.get(), r + 1, size_t(odecolumn(solve.system, k)) + 1)
                                        : MAXPOS;
    return true;
}

} // namespace

void odestart() {
    odecallstart();
    onopfns.solutions = solutions;
    builtinadd(rows, int(std::size(rows)));
}
