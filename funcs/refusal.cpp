#include "funcs/refusal.h"

#include "interp/base/numtext.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"

#include <cstdlib>
#include <string>

namespace {

constexpr int LASTSCALARCODE = -399; // of the functions of numbers
constexpr int NUMERICSLOT = 22, UNCHECKED = -100;

// Does the builtin take numbers alone, so that ON runs it over rows?
bool takesnumbers(const symbol& s) {
    if (s.type >= 0 || s.type < LASTSCALARCODE) return false;
    for (int k = 1; k <= s.val.argd[0]; k++) {
        const int slot = std::abs(s.val.argd[k]);
        if (slot != SCALAR && slot != NUMERICSLOT) return false;
    }
    return true;
}

bool said(const std::string& words) { return report.lasterror.find(words) != std::string::npos; }

// A number by its value, another operand by its kind.
std::string argumenttext(int entry) {
    if (entry < 0) return numstring(parser.scalar[-entry]);
    if (entry >= SYMTABSIZE) return "a formal argument";
    const symbol& s = sym(entry);
    if (s.type == CONSTANT || s.type == SCALAR) return numstring(s.val.rval);
    return s.type == UNKNOWN ? describe(entry) : kindtext(entry);
}

std::string argumentsgiven(int p, int n) {
    std::string list;
    for (int k = 1; k <= n; k++) list += (k > 1 ? ", " : "") + argumenttext(parser.polstack[p + k]);
    return list.empty() ? "nothing" : list;
}

// Words that blame an argument without telling which: all of them are shown.
bool blames() {
    for (const char* words : {"row/col shape", "of the wrong type", "argument out of range",
                              "expected scalar or matrix type", "trying to evaluate illegal function"})
        if (said(words)) return true;
    return false;
}

// A function that stands where its value has been taken.
bool isunevaluated(int entry) {
    if (entry <= 0 || entry >= SYMTABSIZE) return false;
    const symbol& s = sym(entry);
    const bool function = s.type == USERFUNCTION || s.type == INITIALVALUE;
    return function && said("scalar " + std::string(s.name) + " has not");
}

} // namespace

furtherline wrongkind(int entry, const symbol& callee) {
    if (entry >= SYMTABSIZE) return {}; // a formal
    const bool rows = entry > 0 && ismatrix(entry) && takesnumbers(callee);
    const std::string more = std::string("; ") + callee.name + " ON M takes the numbers of each row of M";
    return {describe(entry) + (rows ? more : "")};
}

furtherline notinthisversion(const char* name) { return further("%s is not in this version", name); }

void tellcall(int p, int n) {
    if (report.explained) return;
    const symbol& callee = sym(parser.polstack[p]);
    const std::string name = callee.name;
    if (blames()) {
        const bool shape = said("row/col shape");
        const std::string more = !shape                 ? ""
                                 : takesnumbers(callee) ? "; " + name + " ON M works on a column"
                                                        : "; HELP " + name + " tells the shapes";
        return tarnwarn("%s was given %s%s", callee.name, argumentsgiven(p, n).c_str(), more.c_str());
    }
    for (int k = 1; k <= n; k++) {
        const int entry = parser.polstack[p + k];
        if (!isunevaluated(entry)) continue;
        return tarnwarn("%s is a function: its value here is that of its last call", nametext(entry).c_str());
    }
    const bool named = said(name) || callee.val.argd[0] == UNCHECKED; // those have words of their own
    if (!named) tarnwarn("in a call of %s", callee.name);
}
