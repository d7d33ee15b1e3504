#include "funcs/define.h"

#include "funcs/calls.h"
#include "funcs/funcprint.h"
#include "funcs/trinode.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"

#include <cstring>

definestate definition;

namespace {

constexpr int FIRSTOPERATORCODE = -500, LASTOPERATORCODE = -504; // INTEGRAL, EVAL, SUM, ROOT, PRODUCT

// How the definition that is being read is written.
furtherline definitionform() {
    return {parser.funcmode == 1 ? "as in INITIAL Y(0) = 1"
                                 : "as in FUNCTION F(X) = A*X, or FUNCTION Y'T(T) = -K*Y"};
}

[[noreturn]] void badhead() { tarnsyntax(definitionform(), 9, "illegal function definition"); }
[[noreturn]] void badbody() { tarnsyntax(definitionform(), 2, "illegal function definition"); }

/* An operand on its way into the tree. A string is a temporary of its statement, so no tree can hold it. */
int operand(int ref) {
    if (ref == 0) badbody();
    if (ref > 0 && istemporary(ref)) {
        tarnwarn("a string cannot stand in a definition; give it a name");
        badbody();
    }
    return formalcode(ref, definition.headernode);
}
int popoperand() { return operand(polpop()); }

// The node on top of polstack, which must be of operation op.
int popnode(int op) {
    const int ref = polpop();
    if (ref >= 0 || tri(ref).op != op) badbody();
    return ref;
}

int callbase() {
    const int base = parser.poltop - argnumber();
    if (base < 0) badbody();
    const int callee = parser.polstack[base];
    if (callee <= 0) tarnerror("expression in function name illegal");
    const int type = sym(callee).type;
    if (!(type < 0 || type == UNKNOWN || type == USERFUNCTION || type == MATRIX || type == INITIALVALUE))
        tarnerror(furtherline{describe(callee)}, "in an F(...) term, F cannot have subscripts or args");
    return base;
}

void replacecall(int base, int ref) {
    parser.poltop = base;
    parser.polstack[base] = int16_t(ref);
    parser.argcount[parser.argptr] = 1;
}

// SUM and the like: the dummy is a global symbol, set while the operator runs.
void checkdummy(int base) {
    checkargs(base);
    if (argnumber() > 0 && isformalref(formalcode(parser.polstack[base + 1], definition.headernode)))
        tarnerror("dummy arguments must not be formals");
}

void bodycall(int base) {
    const int callee = parser.polstack[base];
    const int type = sym(callee).type;
    if (type <= FIRSTOPERATORCODE && type >= LASTOPERATORCODE) checkdummy(base);
    const int call = trialloc(TREECALL, 0, formalcode(callee, definition.headernode));
    int last = call;
    for (int at = base + 1; at <= parser.poltop; at++) {
        const int cell = trialloc(TREEARG, 0, operand(parser.polstack[at]));
        trimutable(last).left = int16_t(cell);
        last = cell;
    }
    replacecall(base, call);
}

bool formalislegal(int at, int base) {
    const int ref = parser.polstack[at];
    if (ref < 0) return parser.funcmode == 1;
    if (ref == 0 || istemporary(ref)) return false;
    if (sym(ref).type == CONSTANT && parser.funcmode == -1) return false;
    for (int before = base + 1; before < at; before++)
        if (parser.polstack[before] == ref) return false;
    return true;
}

// The name is about to get another meaning: what it was defined as goes, with a function's derivatives.
void forgetdefinition(int f) {
    const int type = sym(f).type;
    if (type == USERFUNCTION || type == INITIALVALUE) symtabdelete(f);
}

void header(int base) {
    if (base != 0) badhead();
    for (int at = base + 1; at <= parser.poltop; at++)
        if (!formalislegal(at, base))
            tarnerror(further("argument %d is no name, or stands there twice; %s", at - base,
                              definitionform().text.c_str()),
                      "formal function argument is illegal");
    if (definition.headerseen) tarnerror("illegal syntax; no more than one LHS of a fct defn");
    const int f = parser.polstack[base];
    definition.oldtype = sym(f).type;
    forgetdefinition(f);
    definition.headernode = trialloc(TREEHEADER, 0, 0);
    int last = definition.headernode;
    for (int at = base + 1; at <= parser.poltop; at++) {
        const int cell = trialloc(TREEFORMAL, 0, parser.polstack[at]);
        trimutable(last).left = int16_t(cell);
        last = cell;
    }
    definition.function = f;
    definition.headerseen = true;
    definition.headerpending = false;
    replacecall(base, f);
}

void call() {
    const int base = callbase();
    if (definition.headerpending)
        header(base);
    else
        bodycall(base);
}

// F'X names the derivative; a further prime before the same variable raises the order.
void derivative() {
    const int x = polpop();
    int f = polpop();
    f = symtabenter(derivname(f, x).c_str());
    while (parser.opstack[parser.oplevel] == TOKDERIVATIVE && parser.oplevel > 0) {
        parser.oplevel--;
        f = symtabenter(derivname(f, x).c_str());
    }
    polpush(f);
}

bool isdefinitionend(int token) {
    return (token == TOKEQUAL || token == TOKUNDERSCORE) && !definition.headerpending && parser.poltop == 1 &&
           parser.oplevel == 0 && parser.polstack[0] == definition.function;
}

std::string displayname(const char* name) {
    if (*name != '.') return name;
    std::string text;
    for (const char* c = name + strspn(name, "."); *c; c++) {
        if (*c == '.')
            text += " DIFF ";
        else
            text += *c;
    }
    return text;
}

void finish() {
    if (parser.token != TOKEND || !definition.headerseen) badbody();
    int body = popoperand();
    if (!isnoderef(body)) body = trialloc(TREEIDENTITY, body, 0);
    const int f = polpop();
    symbol& s = sym(f);
    if (s.type > 0 && symtab.kind[s.type].release) symtab.kind[s.type].release(s); // a matrix makes way
    trimutable(definition.headernode).right = int16_t(body);
    s.type = parser.funcmode == 1 ? INITIALVALUE : USERFUNCTION;
    s.val.rval = UNDEFINEDMARK;
    s.index = int16_t(definition.headernode);
    if (definition.oldtype != UNKNOWN) {
        tarnprint("Redefining %s \n", displayname(s.name).c_str());
        if (definition.oldtype == USERFUNCTION && s.type == INITIALVALUE)
            tarnprint("all derivatives of %s have been deleted\n", displayname(s.name).c_str());
    }
    definition = definestate{};
    parser.funcmode = 0;
}

// IF c THEN a ELSE b: the nodes of IF and THEN wait below the last value.
void completeif() {
    const int otherwise = popoperand();
    const int then = popnode(TREETHEN);
    if (parser.poltop < 0 || parser.polstack[parser.poltop] >= 0) badbody();
    const int condition = parser.polstack[parser.poltop];
    if (tri(condition).op != TREEIF || tri(condition).right != 0) badbody();
    trimutable(then).right = int16_t(otherwise);
    trimutable(condition).right = int16_t(then);
}

void operatornode(int op) {
    if (definition.headerpending && parser.funcmode == -1) badhead();
    const bool unary = op >= TREENOT && op <= TREETHEN;
    const int right = unary ? 0 : popoperand();
    const int left = popoperand();
    polpush(trialloc(op, left, right));
}

bool isoperator(int token) {
    return (token >= TREEPOWER && token <= TREETHEN && token != TOKCOMMA) || token == TREEASSIGN;
}

void opendefinition(const processop& op) { definitionbegin(op.token == TOKINITIAL ? 1 : -1); }

} // namespace

void definestart() {
    static const processrow rows[] = {{2, opendefinition}};
    processadd(rows, 1);
    definition = definestate{};
    upper.nametext = derivtext;
}

void definitionbegin(int mode) {
    definition = definestate{};
    definition.headerpending = true;
    parser.funcmode = mode;
}

void funcprocess(int token) {
    if (token == TOKCALL) return call();
    if (token == TOKCOMMA) {
        parser.argcount[parser.argptr]++;
        return;
    }
    if (token == TOKDERIVATIVE) return derivative();
    if (isdefinitionend(token)) return finish();
    if (token == TOKELSE) return completeif();
    if (token == TOKUNARYMINUS && parser.poltop >= 0) {
        const int top = parser.polstack[parser.poltop];
        if (issymbolref(top) && sym(top).type == CONSTANT) {
            parser.polstack[parser.poltop] = int16_t(symtabconst(-sym(top).val.rval));
            return;
        }
    }
    if (!isoperator(token)) badbody();
    operatornode(token);
}

int formalcode(int ref, int headerref) {
    if (parser.funcmode != -1 || !issymbolref(ref) || headerref >= 0) return ref;
    int k = 1;
    for (int cell = tri(headerref).left; cell < 0; cell = tri(cell).left, k++)
        if (tri(cell).right == ref) return FORMALBASE + k;
    return ref;
}

std::string derivname(int f, int x) {
    if (f <= 0 || x <= 0 || sym(f).type == CONSTANT || sym(x).type == CONSTANT || istemporary(f) ||
        istemporary(x))
        tarnerror(further("as in F'X, the name of a function and the name of a variable"),
                  "illegal derivative name construct");
    return std::string(".") + sym(f).name + "." + sym(x).name;
}

bool derivsplit(const char* name, derivparts& parts) {
    if (*name != '.') return false;
    const char* base = name + strspn(name, ".");
    const char* dot = strstr(base, "..");
    if (!dot) dot = strrchr(base, '.');
    if (!dot) return false;
    parts.function.assign(name + 1, dot);
    parts.variable = dot + 1;
    return !parts.function.empty() && !parts.variable.empty();
}
