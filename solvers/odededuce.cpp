// From the functions that a statement mentions to the system of first-order equations that they mean.
#include "funcs/define.h"
#include "funcs/deriv.h"
#include "funcs/funcprint.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "solvers/odesetup.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <unordered_map>

namespace {

struct deduction {
    odesystem s;
    const std::vector<int>& names;
    std::vector<int> visited;
    std::unordered_map<int, int>
        trees; // header reference: does it depend on the solution? -1 while it is walked

    explicit deduction(const std::vector<int>& list) : names(list) { s.code.assign(list.size(), 0); }
};

bool isderivative(int idx) { return sym(idx).name[0] == '.'; }
bool isfunction(int idx) { return sym(idx).type == USERFUNCTION; }
bool isstate(int idx) { return sym(idx).type == INITIALVALUE; }
bool contains(const std::vector<int>& list, int value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool addstate(deduction& d, int state, int derivative);
int walk(deduction& d, int ref);

int walkfunction(deduction& d, int f) {
    const int root = funcheader(f);
    const auto known = d.trees.find(root);
    if (known != d.trees.end()) return known->second > 0 ? 1 : 0;
    if (d.trees.size() >= MAXODETREES)
        tarnerror("more than %d functions in a system of differential equations", MAXODETREES);
    d.trees[root] = -1;
    int count = walk(d, funcbody(f));
    if (isstate(f)) count += walk(d, formalref(f, 1));
    d.trees[root] = count;
    return count > 0 ? 1 : 0;
}

void walkderivative(deduction& d, int derivative) {
    if (isfunction(derivative)) walkfunction(d, derivative);
}

/* The derivative of `name` by the independent variable, -1 when there is none. The first one found settles
 * the variable. */
int findderivative(deduction& d, int name) {
    const std::string start = "." + std::string(sym(name).name) + ".";
    for (int i = 1; i < SYMTABSIZE; i++) {
        if (!isfunction(i) && !isstate(i)) continue;
        const char* text = sym(i).name;
        if (strncmp(text, start.c_str(), start.size()) != 0) continue;
        const char* variable = text + start.size();
        if (!*variable || strchr(variable, '.')) continue;
        const int x = symtabenter(variable);
        if (d.s.var && d.s.var != x) continue;
        d.s.var = x;
        return i;
    }
    return -1;
}

// The state whose derivative a name is; it is taken up. 0 when there is none, or the variable is another one.
int derivativetostate(deduction& d, int name) {
    if (sym(name).type == UNKNOWN && isderivative(name)) derivfind(name, true);
    const std::string text = sym(name).name;
    const size_t dot = text.rfind('.');
    if (text[0] != '.' || dot == 0 || dot + 1 >= text.size()) return 0;
    const int state = symtablookup(text.substr(1, dot - 1).c_str());
    if (state < 0 || !isstate(state)) return 0;
    const int x = symtabenter(text.c_str() + dot + 1);
    if (d.s.var && d.s.var != x) return 0;
    d.s.var = x;
    if (addstate(d, state, name)) walkderivative(d, name);
    return state;
}

void takestate(deduction& d, int state) {
    if (addstate(d, state, 0)) walkderivative(d, d.s.derivs.back());
}

int walksymbol(deduction& d, int idx) {
    if (sym(idx).type == UNKNOWN && isderivative(idx)) derivfind(idx, true);
    if (isfunction(idx)) {
        const int count = walkfunction(d, idx);
        return count + (isderivative(idx) && derivativetostate(d, idx) != 0);
    }
    if (!isstate(idx)) return 0;
    takestate(d, idx);
    return 1;
}

int walk(deduction& d, int ref) {
    if (ref == 0 || isformalref(ref)) return 0;
    if (issymbolref(ref)) return walksymbol(d, ref);
    stackcheck();
    const trinode node = tri(ref); // a copy: a derivative made on the way may move the store
    const int count = walk(d, node.left);
    return count + walk(d, node.right);
}

double startpoint(int state) {
    const int ref = formalref(state, 1);
    if (!isnoderef(ref) && !(sym(ref).type == SCALAR || sym(ref).type == CONSTANT)) argtype("INITIAL");
    return evalref(ref, parser.poltop);
}

// Each lower derivative of a higher one must have its own start value.
void lowerstates(deduction& d, int state) {
    for (int lower = state; isderivative(lower);) {
        lower = derivativetostate(d, lower);
        if (lower == 0)
            tarnerror(
                further("%s has a start and what it is the derivative of has none", nametext(state).c_str()),
                "Lower order initial missing in case of higher order derivative");
    }
}

void checkargument(int derivative) {
    if (formalcount(derivative) != 1)
        tarnerror("The ode function %s does not have exactly one independent variable\n",
                  derivtext(sym(derivative).name).c_str());
}

int derivativeof(deduction& d, int state, int derivative) {
    if (!derivative) derivative = findderivative(d, state);
    if (derivative < 0 || (!isfunction(derivative) && !isstate(derivative)))
        tarnerror("derivative or initial of %s with respect to %s is not defined \n",
                  derivtext(sym(state).name).c_str(), d.s.var ? sym(d.s.var).name : "?");
    if (isstate(derivative)) {
        const int next = findderivative(d, derivative);
        if (next < 0)
            tarnerror(further("the derivative of %s is not defined", nametext(derivative).c_str()),
                      "Higher order derivative missing");
        if (addstate(d, derivative, next)) walkderivative(d, d.s.derivs.back());
    } else if (isderivative(state)) {
        lowerstates(d, state);
    }
    return derivative;
}

// Takes up an equation; false when the state is there already.
bool addstate(deduction& d, int state, int derivative) {
    if (contains(d.visited, state)) return false;
    d.visited.push_back(state);
    derivative = derivativeof(d, state, derivative);
    checkargument(derivative);
    checkargument(state);
    const double t = startpoint(state);
    if (d.s.states.empty())
        d.s.t0 = t;
    else if (t != d.s.t0)
        tarnerror(further("%s starts at %g, %s at %g", nametext(d.s.states[0]).c_str(), d.s.t0,
                          nametext(state).c_str(), t),
                  "All initials do NOT have the same starting point");
    if (d.s.states.size() >= MAXEQUATIONS) tarnerror("too many initials");
    d.s.states.push_back(state);
    d.s.derivs.push_back(derivative);
    const int k = d.s.neq();
    for (size_t i = 0; i < d.names.size(); i++) {
        if (d.names[i] == derivative) d.s.code[i] = -(2 * k - 1);
        if (d.names[i] == state) d.s.code[i] = -2 * k;
    }
    walkfunction(d, state); // a start value may depend on other states
    return true;
}

void addoutput(deduction& d, size_t i, int f, bool dependent) {
    odesystem& s = d.s;
    if (!dependent) {
        s.outputs.push_back(f);
        s.code[i] = int(s.outputs.size());
        return;
    }
    for (int& code : s.code)
        if (code > s.ndependent) code++;
    s.outputs.insert(s.outputs.begin() + s.ndependent, f);
    s.code[i] = ++s.ndependent;
}

void takefunction(deduction& d, size_t i) {
    const int f = d.names[i];
    const int count = walkfunction(d, f);
    if (isderivative(f) && derivativetostate(d, f) && d.s.code[i] != 0) return;
    if (d.s.code[i] != 0) return;
    const auto found = std::find(d.s.outputs.begin(), d.s.outputs.end(), f);
    if (found != d.s.outputs.end())
        d.s.code[i] = int(found - d.s.outputs.begin()) + 1;
    else
        addoutput(d, i, f, count > 0);
}

} // namespace

void odeusable(int f, int nargs) {
    if (nargs == 0 || sym(f).type == INITIALVALUE) return;
    if (sym(f).type == USERFUNCTION) {
        if (formalcount(f) != nargs)
            tarnerror(
                further("%s has %d of them and is given %d", nametext(f).c_str(), formalcount(f), nargs),
                "incorrect number of arguments of a function\n");
        return;
    }
    const furtherline which = further("%s", nametext(f).c_str());
    if (sym(f).type < -399) tarnerror(which, "trying to evaluate illegal function\n");
    const signed char* slots = sym(f).val.argd;
    if (slots[0] < 0) return;
    int mandatory = 0;
    for (int k = 1; k <= slots[0] && k < 8; k++) {
        mandatory += slots[k] > 0;
        const int type = std::abs(slots[k]);
        if (k <= nargs && type != 4 && type != 20 && type != 22 && type != 24)
            tarnerror(which, "non-scalar argument type in a function\n");
    }
    if (nargs < mandatory || nargs > slots[0])
        tarnerror(which, "incorrect number of arguments of a function\n");
}

namespace {

// A state whose start has been forgotten has a derivative already.
bool hasderivative(int f) {
    const std::string begin = std::string(".") + sym(f).name + ".";
    return std::any_of(std::begin(symtab.at), std::end(symtab.at), [&](const symbol& s) {
        return s.type == USERFUNCTION && std::string_view(s.name).starts_with(begin);
    });
}

[[noreturn]] void refuse(int f) {
    const std::string name = nametext(f);
    const furtherline more =
        hasderivative(f) ? further("%s has no start, as INITIAL %s(0) = 1", name.c_str(), name.c_str())
                         : further("%s; names of states and functions stand here, then one matrix of times",
                                   describe(f).c_str());
    tarnerror(more, "trying to evaluate illegal function\n");
}

} // namespace

odesystem odededuce(const std::vector<int>& names, int nargs) {
    deduction d(names);
    for (int f : names) {
        if (isderivative(f)) derivativetostate(d, f);
        if (!isfunction(f) && !isstate(f) && sym(f).type >= 0) refuse(f);
    }
    for (size_t i = 0; i < names.size(); i++) {
        const int f = names[i];
        if (d.s.code[i] != 0) continue;
        odeusable(f, nargs);
        if (isstate(f))
            takestate(d, f);
        else if (isfunction(f))
            takefunction(d, i);
        else
            addoutput(d, i, f, false);
    }
    if (d.s.active() && nargs > 1) tarnerror("trying to compute ode function with >1 arg\n");
    return d.s;
}

int odecoverage(const odesystem& system, const std::vector<int>& names) {
    std::vector<char> named(system.states.size(), 0);
    bool plain = false;
    for (size_t i = 0; i < names.size(); i++) {
        const int code = system.code[i];
        if (code < 0)
            named[size_t((1 - code) / 2 - 1)] = 1;
        else
            plain = true;
    }
    if (std::find(named.begin(), named.end(), 1) == named.end()) return 0;
    const bool all = std::find(named.begin(), named.end(), 0) == named.end();
    return plain ? (all ? 3 : 4) : (all ? 1 : 2);
}

int odecolumn(const odesystem& system, size_t k) {
    const int code = system.code[k];
    if (code > 0) return 2 * system.neq() + code;
    return code % 2 ? 1 - code : -code - 1; // -(2k-1): column 2k; -2k: column 2k-1
}
