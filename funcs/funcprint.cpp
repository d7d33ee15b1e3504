#include "funcs/funcprint.h"

#include "funcs/define.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/machine.h"
#include "interp/base/numtext.h"
#include "interp/base/report.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr const char* TOOBIG = "[TOO BIG!]";
constexpr size_t TEXTLIMIT = size_t(1) << 22; // shared subtrees can make a text far longer than the tree

const char* operatortext(int op) {
    switch (op) {
    case TREEPOWER: return "^";
    case TREETIMES: return "*";
    case TREEDIVIDE: return "/";
    case TREEPLUS: return "+";
    case TREEMINUS:
    case TREENEGATE: return "-";
    case TREEEQUAL: return "=";
    case TREELESS: return "<";
    case TREELESSEQ: return "<=";
    case TREEGREATEREQ: return ">=";
    case TREEGREATER: return ">";
    case TREEAND: return " AND ";
    case TREEOR: return " OR ";
    case TREENOT: return "NOT ";
    case TREEIF: return " IF ";
    case TREETHEN: return " THEN ";
    case TREEASSIGN: return " _ ";
    default: return "";
    }
}

struct textsink {
    std::string text;
    size_t limit;
    bool exact;
    int f; // whose formals are meant; 0: none
    bool full() const { return text.size() > limit; }
};

// The number that whole digits and a power of ten are read as.
double scanned(const char* digits, int n) {
    double m = 0;
    for (; *digits; digits++) m = 10 * m + (*digits - '0');
    return n == 0 ? m : powi(10, n) * m;
}

std::string placepoint(std::string digits, int n) {
    if (n == 0) return digits;
    const int length = int(digits.size());
    if (n > 0 || -n > length + 4) return digits + "E" + std::to_string(n);
    if (-n >= length) return "0." + std::string(size_t(-n - length), '0') + digits;
    return digits.insert(size_t(length + n), ".");
}

/* A decimal text from which the scanner makes x again. It gathers digits in a double and multiplies by a
 * power of ten, both with roundings, so the whole numbers around the quotient are tried, for each power in
 * turn. Below 1e-291 the powers are too coarse, and the text is the nearest. */
std::string exacttext(double x) {
    const double a = std::fabs(x);
    const std::string sign = std::signbit(x) ? "-" : "";
    char buf[64];
    const int top = a > 0 ? int(std::floor(std::log10(a))) : 0;
    for (int digits = 1; digits <= 40 && top - digits >= -322; digits++) {
        const int n = std::min(top - digits + 1, a == std::floor(a) && a < 0x1p53 ? 0 : 400);
        const double guess = std::round(n == 0 ? a : a / powi(10, n));
        for (int step = 0; step < 16; step++) {
            double m = guess;
            for (int k = 0; k < (step + 1) / 2; k++) m = std::max(m + 1, std::nextafter(m, MAXPOS));
            if (step % 2) m = 2 * guess - m;
            if (m < 0 || m > 1e40) continue;
            snprintf(buf, sizeof buf, "%.0f", m);
            if (scanned(buf, n) == a) return sign + placepoint(buf, n);
        }
    }
    snprintf(buf, sizeof buf, "%.17g", a);
    for (char& c : buf)
        if (c == 'e') c = 'E';
    return sign + buf;
}

void putnumber(textsink& out, double x) {
    if (out.exact) {
        out.text += exacttext(x);
        return;
    }
    char buf[128];
    numtext(buf, x, -1, 8, 0, 0, 2, 0);
    out.text += buf;
}

void putsymbol(textsink& out, int idx) {
    const symbol& s = sym(idx);
    if (s.type == CONSTANT && s.name[0] == '#')
        putnumber(out, s.val.rval);
    else if (s.name[0] == ' ')
        out.text += "SYM" + std::to_string(idx);
    else
        out.text += derivtext(s.name);
}

// Does operand ref of an outer operator stand in parentheses?
bool needparens(const textsink& out, int outer, int ref, bool right) {
    if (isformalref(ref) || ref == 0) return false;
    if (ref > 0) return outer == TREEPOWER && sym(ref).type == CONSTANT && sym(ref).val.rval < 0;
    const int op = tri(ref).op;
    if (op == TREECALL) return false;
    const bool samerank =
        out.exact && (right || outer == TREENEGATE); // a*(b*c) reads back as (a*b)*c without
    switch (outer) {
    case TREETIMES: return !(op == TREEPOWER || (op == TREETIMES && !samerank));
    case TREEDIVIDE: return op != TREEPOWER;
    case TREEPLUS:
        return !(op == TREEPOWER || op == TREETIMES || op == TREEDIVIDE || (op == TREEPLUS && !samerank));
    case TREEMINUS: return !(op == TREEPOWER || op == TREETIMES || op == TREEDIVIDE);
    case TREENEGATE: return !(op == TREEPOWER || ((op == TREETIMES || op == TREEDIVIDE) && !samerank));
    default: return true;
    }
}

void putref(textsink& out, int ref);

void putoperand(textsink& out, int outer, int ref, bool right) {
    const bool parens = needparens(out, outer, ref, right);
    if (parens) out.text += '(';
    putref(out, ref);
    if (parens) out.text += ')';
}

void putlist(textsink& out, int cell) {
    out.text += '(';
    for (bool first = true; cell < 0; cell = tri(cell).left, first = false) {
        if (!first) out.text += ',';
        putref(out, tri(cell).right);
    }
    out.text += ')';
}

void putnode(textsink& out, const trinode& n) {
    switch (n.op) {
    case TREENOT:
        out.text += operatortext(TREENOT);
        out.text += n.left < 0 ? "(" : "";
        putref(out, n.left);
        out.text += n.left < 0 ? ")" : "";
        return;
    case TREEIDENTITY: return putref(out, n.left);
    case TREENEGATE: out.text += operatortext(TREENEGATE); return putoperand(out, TREENEGATE, n.left, false);
    case TREEIF:
        out.text += operatortext(TREEIF);
        putref(out, n.left);
        out.text += operatortext(TREETHEN);
        putref(out, tri(n.right).left);
        out.text += " ELSE ";
        return putref(out, tri(n.right).right);
    case TREECALL: putref(out, n.right); return putlist(out, n.left);
    default:
        putoperand(out, n.op, n.left, false);
        out.text += operatortext(n.op);
        putoperand(out, n.op, n.right, true);
    }
}

void putref(textsink& out, int ref) {
    stackcheck();
    if (out.full()) return;
    if (isnoderef(ref)) return putnode(out, tri(ref));
    if (isformalref(ref)) {
        ref = out.f > 0 ? formalref(out.f, ref - FORMALBASE) : 0;
        if (ref == 0) tarnerror("incorrect function formal argument structure found");
        if (isnoderef(ref)) return putnode(out, tri(ref));
    }
    if (ref > 0) putsymbol(out, ref);
}

void finishtext(textsink& out) {
    if (!out.full()) return;
    out.text.resize(out.limit);
    out.text += TOOBIG;
}

std::string definitiontext(int f, size_t limit, bool exact) {
    textsink out{sym(f).type == INITIALVALUE ? "INITIAL " : "FUNCTION ", limit, exact, f};
    out.text += derivtext(sym(f).name);
    putlist(out, funcformals(f));
    out.text += " = ";
    putref(out, funcbody(f));
    finishtext(out);
    return out.text;
}

} // namespace

void funcprint(int f, char* buffer, int size) {
    const std::string text = definitiontext(f, size_t(std::max(size - 11, 0)), false);
    memcpy(buffer, text.c_str(), text.size() + 1);
}

std::string functext(int f, bool exact) { return definitiontext(f, TEXTLIMIT, exact); }

std::string treetext(int ref, int f) {
    textsink out{"", TEXTLIMIT, false, f};
    putref(out, ref);
    finishtext(out);
    return out.text;
}

std::string derivtext(const char* name) {
    derivparts parts;
    if (!derivsplit(name, parts)) return name;
    std::string variable = parts.variable;
    if (variable[0] == '.') variable = "(" + derivtext(variable.c_str()) + ")";
    return derivtext(parts.function.c_str()) + "'" + variable;
}
