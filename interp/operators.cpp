// Rows of the operators that the interpreter serves or hands to the function engine: arithmetic, calls,
// derivatives.
#include "funcs/operators.h"
#include "funcs/calls.h"
#include "funcs/define.h"
#include "interp/assign.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/joins.h"
#include "interp/mistakes.h"
#include "interp/process.h"
#include "interp/ranges.h"
#include "interp/tokenfil.h"

namespace {

// Statements that read their own `=`.
bool ownequals(int token) {
    return token == TOKDRAW || token == TOKTITLE || token == TOKXAXIS || token == TOKYAXIS ||
           token == TOKAXIS || token == TOKFOR;
}

void needboth(const processop& op) {
    if (!op.ptop || !op.p2nd)
        tarnsyntax(marked(std::string(parser.token == TOKEND ? "a value is missing behind \""
                                                             : "a value is missing beside \"") +
                          tokenword(op.token) + '"'),
                   27, "missing arg for binary operator");
}

void invalid(const processop& op) {
    const char* word = tokenword(op.token);
    tarnerror(*word ? further("%s cannot stand here", word) : furtherline{}, "unallowed process case");
}

void nothing(const processop&) {}

void comma(const processop&) { parser.argcount[parser.argptr]++; }

void assignment(const processop& op) {
    if (ownequals(opcommand())) return;
    needboth(op);
    assignop(op.ptop, op.p2nd);
    dropoperands(2);
    parser.assigned = true;
}

// The `=` of an assignment is the last reduction of its statement.
bool isassignment() {
    return ownequals(opcommand()) || (parser.token == TOKEND && parser.poltop == 1 && parser.oplevel == 0);
}

void binary(const processop& op) {
    if (op.token == TOKEQUAL && isassignment()) return assignment(op);
    needboth(op);
    dropoperands(2);
    binop(op.token, op.p2nd, op.ptop);
}

void call(const processop&) {
    builtincall();
    parser.argcount[parser.argptr] = 1;
}

void unaryminus(const processop&) {
    const int operand = polpop();
    binop(TOKMINUS, symtab.zero, operand);
}

void logicalnot(const processop&) {
    const int operand = polpop();
    binop(TOKEQUAL, symtab.zero, operand);
}

void derivative(const processop& op) {
    if (!op.ptop || !op.p2nd)
        tarnerror(marked("as in F'X, the derivative of F with respect to X"),
                  "illegal derivative name construct");
    const int x = op.ptop;
    int f = symtabenter(derivname(op.p2nd, x).c_str());
    for (; parser.opstack[parser.oplevel] == TOKDERIVATIVE; parser.oplevel--)
        f = symtabenter(derivname(f, x).c_str());
    replaceoperands(2, f);
}

void pointwise(const processop&) {
    needoperands(2);
    onop(2, 0);
}

void kronecker(const processop& op) {
    needboth(op);
    dropoperands(2);
    hashop(op.p2nd, op.ptop);
}

void range(const processop& op) {
    const int n = op.token == TOKCOLON ? 2 : 3;
    needoperands(n);
    const int16_t* p = parser.polstack + parser.poltop - n + 1;
    const int result = op.token == TOKCOLON         ? rangeof(p[0], p[1])
                       : op.token == TOKSECONDCOLON ? rangebystep(p[0], p[1], p[2])
                                                    : rangebycount(p[0], p[1], p[2]);
    replaceoperands(n, result);
}

void list(const processop&) {
    const int n = argnumber();
    needoperands(n);
    const int result = listof(parser.polstack + parser.poltop - n + 1, n);
    freeoperands(n);
    polpush(result);
}

void join(const processop& op) {
    needboth(op);
    replaceoperands(2, op.token == TOKSTACK ? joinbelow(op.p2nd, op.ptop) : joinbeside(op.p2nd, op.ptop));
}

void transpose(const processop&) {
    needoperands(1);
    const int operand = polpop();
    polpush(transposeof(operand));
}

constexpr processrow rows[] = {
    {0, invalid},     {1, comma},       {3, binary},   {4, call},       {5, assignment}, {9, unaryminus},
    {10, logicalnot}, {12, derivative}, {14, nothing}, {35, nothing},   {19, range},     {20, list},
    {21, pointwise},  {36, transpose},  {37, join},    {38, kronecker},
};

} // namespace

void operatorrows() { processadd(rows, int(std::size(rows))); }
