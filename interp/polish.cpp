#include "interp/polish.h"

#include "funcs/trinode.h"
#include "interp/base/fpfault.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/mistakes.h"
#include "interp/pairing.h"
#include "interp/process.h"
#include "interp/scanner.h"
#include "interp/submatrix.h"
#include "interp/tokenfil.h"

#include <cmath>

namespace {

constexpr int MATRIXIFLEVELS = 4;

struct polishstate {
    bool isvalue; // the last thing seen is a complete operand
    int index;    // symbol of the current token
};

int optop() { return parser.opstack[parser.oplevel]; }

[[gnu::cold]] void debugtoken(int token, int index) {
    tarnprint("[newtoken: toknum=%hd,    tokindex=%hd", short(token), short(index));
    if (token == TOKNUMBER)
        tarnprint(" constant value = %lg]\n", sym(index).val.rval);
    else if (token == TOKNAME)
        tarnprint(" token name = %s]\n", sym(index).name);
    else
        tarnprint("]\n");
}

[[gnu::cold]] void debugstacks() {
    tarnprint("opstack: ");
    for (int k = 0; k <= parser.oplevel; k++) tarnprint("%hd|", parser.opstack[k]);
    tarnprint(": %hd (current token)\n", short(parser.token));
    tarnprint("polstack: ");
    for (int k = 0; k <= parser.poltop; k++) tarnprint("%hd|", parser.polstack[k]);
    tarnprint("\n");
}

// Behind the { that opens the body, the head of a FOR ends as if the statement did.
bool endsforhead(const polishstate& p) {
    return p.isvalue && scanner.bracket == '{' && opcommand() == TOKFOR && parser.argptr == 0;
}

void openbracket() {
    if (parser.argptr + 1 >= ARGSTACKSIZE)
        tarnerror("brackets are nested too deeply: %d is the limit; give the inner parts names",
                  ARGSTACKSIZE - 1);
    parser.argcount[++parser.argptr] = 1;
}

// A prime behind a symbol that is no matrix means differentiation, when something follows to differentiate
// by.
int primetoken() {
    if (parser.poltop < 0) return TOKPRIME;
    const int top = parser.polstack[parser.poltop];
    if (top <= 0 || sym(top).type == MATRIX) return TOKPRIME;
    int next, index;
    newtoken(next, index);
    pushtoken(next, index);
    if (next == TOKNUMBER)
        tarnsyntax(further("behind %s' stands the name of a variable", nametext(top).c_str()), 12,
                   "can't differentiate wrt a constant");
    return next == TOKNAME || next == TOKPRIME || next == TOKOPEN ? TOKDERIVATIVE : TOKPRIME;
}

// The tokens whose meaning depends on what stands before them. Gives 0 for one to be dropped.
int intake(polishstate& p) {
    int token;
    newtoken(token, p.index);
    line.prompt = "> ";
    switch (token) {
    case TOKMINUS: return p.isvalue ? TOKMINUS : TOKUNARYMINUS;
    case TOKPLUS: return p.isvalue ? TOKPLUS : 0;
    case TOKPRIME: return primetoken();
    case TOKOPEN:
        if (endsforhead(p)) {
            pushtoken(TOKOPEN, 0);
            return TOKEND;
        }
        openbracket();
        return p.isvalue ? TOKCALL : TOKOPEN;
    default: return token;
    }
}

// A clause with no statement leaves nothing behind.
void tellbareclause(int token) {
    if (isclause(token) && tokentables.pcase[token] != 0)
        tarnwarn("%s does nothing by itself: it stands behind DRAW, TITLE and the like", tokenword(token));
}

void reduce() {
    if (parser.oplevel == 0) tarnsyntax(misplaced(parser.token), 4, "illegal token pairing");
    const int token = parser.opstack[parser.oplevel--];
    process(token);
    parser.closed = 0;
    if (parser.oplevel == 0 && parser.funcmode == 0) tellbareclause(token);
}

void shift(int token) {
    oppush(token);
    if (token == TOKROW || token == TOKCOL) oppush(TOKMARKER);
}

void closebracket(int token) {
    parser.oplevel--;
    if (token != TOKCLOSE) tarnsyntax(misplaced(token), 19, "unbalanced parentheses");
    parser.argptr--;
    parser.closed = 1;
}

// The bottom met the end of the statement: one operand left over is shown.
void endexpression(int token) {
    if (token != TOKEND || parser.poltop < 0) return;
    if (parser.poltop > 0) tarnsyntax(leftover(), 13, "illegal statement");
    process(TOKTYPE);
}

// THEN behind the condition, ELSE behind the then-value.
void advanceif(int token) {
    const int waiting = optop();
    if (waiting != (token == TOKTHEN ? TOKIF : TOKTHEN))
        tarnsyntax(misplaced(token), 4, "illegal token pairing");
    if (parser.funcmode == 0 && token == TOKTHEN) {
        const int top = parser.poltop >= 0 ? parser.polstack[parser.poltop] : 0;
        if (top <= 0 || sym(top).type != MATRIX) { // the text of one branch is taken, as statements
            parser.oplevel--;
            return process(TOKIF);
        }
        if (parser.matrixiflevel >= MATRIXIFLEVELS)
            tarnerror("matrix IFs are nested too deeply: %d is the limit", MATRIXIFLEVELS);
        parser.matrixiflevel++;
    }
    parser.opstack[parser.oplevel] = int16_t(token);
    process(waiting);
}

void secondcolon(int token) {
    if (optop() != TOKCOLON)
        tarnerror(marked("a range is A:B, A:B:STEP or A:B!COUNT"), "Too many colons in expression");
    parser.opstack[parser.oplevel] = token == TOKCOUNT ? TOKCOUNT : TOKSECONDCOLON;
}

// A logical operator behind the sign of an assignment stays on its right side.
bool staysright(int token) {
    return (token == TOKAND || token == TOKOR) && parser.oplevel == 1 && parser.opstack[1] == TOKEQUAL;
}

int stackaction(int token) {
    const int r = tokentables.row[optop()];
    if (parser.debugsw) debugstacks();
    if (r < 1) tarnsyntax(misplaced(token), 18, "illegal token pairing");
    const int a = staysright(token) ? int(PAIRSHIFT) : pairing[r][tokentables.col[token]];
    if (parser.debugsw)
        tarnprint("polish: opstackftoken = %hd, current token = %hd,stack action num=%hd\n", short(optop()),
                  short(token), short(a));
    if (a < 1) tarnsyntax(misplaced(token), 4, "illegal token pairing");
    return a;
}

// An = that the statement goes on behind compares. With a new name on its left it was meant to assign, and
// what follows is what is wrong.
void refusefailedassignment(int token) {
    if (optop() != TOKEQUAL || parser.oplevel != 1 || token == TOKEND || parser.poltop != 1) return;
    if (parser.funcmode != 0 || sym(parser.polstack[0]).type != UNKNOWN) return;
    if (pairing[tokentables.row[TOKBOTTOM]][tokentables.col[token]] < 1)
        tarnsyntax(misplaced(token), 4, "illegal token pairing");
    if (token == TOKCOMMA)
        tarnsyntax(marked("one value is assigned; LIST(1,2,3) makes a matrix of several"), 13,
                   "illegal statement");
}

// Reduces as far as the table says, then does the action that the token itself meets. True when the token
// closed a bracket, and so completed an operand.
bool pairtoken(int token) {
    int a;
    while ((a = stackaction(token)) == PAIRREDUCE) {
        refusefailedassignment(token);
        reduce();
    }
    parser.closed = 0;
    switch (a) {
    case PAIRSHIFT: shift(token); break;
    case PAIRNOW: process(token); break;
    case PAIRCALL: process(optop()); [[fallthrough]];
    case PAIRCLOSE: closebracket(token); return true;
    case PAIREND: endexpression(token); break;
    case PAIRIF: advanceif(token); break;
    case PAIRCOLON: secondcolon(token); break;
    case PAIRREPLACE: parser.opstack[parser.oplevel] = int16_t(token); break;
    case PAIRONCE: reduce(); break;
    }
    return false;
}

enum step { NEXTTOKEN, FINISHED, PAIR, EMPTYCALL };

// What takes the value before it cannot come first: it would take a value from further back.
void refuseinfix(int token) {
    if (parser.funcmode != 0 && parser.oplevel == 0) return; // the head of a definition sees to itself
    switch (token) {
    case TOKCOMMA:
        if (optop() != TOKCALL && optop() != TOKOPEN && optop() != TOKCOMMA) return;
        [[fallthrough]];
    case TOKCLOSE: tarnsyntax(nothingbefore(token), 3, "illegal command type");
    case TOKTHEN:
    case TOKELSE: tarnsyntax(nothingbefore(token), 4, "illegal token pairing");
    case TOKPOWER:
    case TOKTIMES:
    case TOKDIVIDE:
    case TOKEQUAL:
    case TOKLESS:
    case TOKLESSEQUAL:
    case TOKGREATEREQUAL:
    case TOKGREATER:
    case TOKAND:
    case TOKOR:
    case TOKUNDERSCORE:
    case TOKON:
    case TOKCOLON:
    case TOKCELLTIMES:
    case TOKCELLDIVIDE:
    case TOKKRONECKER:
    case TOKSTACK:
    case TOKBESIDE:
    case TOKREPEAT:
    case TOKREPEATBY:
    case TOKCOUNT: tarnsyntax(nothingbefore(token), 27, "missing arg for binary operator");
    default: break;
    }
}

// An operator where an operand was due.
step prefix(int token) {
    if (token == TOKEND) {
        if (parser.oplevel == 0 && parser.funcmode != 0)
            tarnsyntax(statementform(parser.funcmode == 1 ? TOKINITIAL : TOKFUNCTION), 2,
                       "illegal function definition");
        if (parser.oplevel == 0 && parser.poltop >= 0)
            tarnsyntax(marked("a value is missing behind the comma"), 13, "illegal statement");
        if (parser.oplevel == 0) return FINISHED;
        if (!mayendbare(opcommand()) && optop() != TOKPRIME)
            tarnsyntax(nothingbehind(), 3, "illegal command type");
        return PAIR;
    }
    if (token == TOKCLOSE && optop() == TOKCALL) return EMPTYCALL;
    refuseinfix(token);
    oppush(token);
    parser.closed = 0;
    return NEXTTOKEN;
}

void operand(polishstate& p) {
    if (p.isvalue) tarnerror(noseparator(p.index), "syntax error: two values not separated by an operator");
    polpush(p.index);
    p.isvalue = true;
    parser.closed = 0;
}

bool isoperand(int token) { return token <= TOKNUMBER || token == TOKSTRING; }

// An operator on a string that is only a comment.
void telldroppedstring(int token) {
    switch (token) {
    case TOKPLUS:
    case TOKPOWER:
    case TOKEQUAL:
    case TOKLESS:
    case TOKLESSEQUAL:
    case TOKGREATEREQUAL:
    case TOKGREATER:
    case TOKSTACK:
    case TOKBESIDE:
        tarnwarn("a string in front of a statement is a comment; TYPE shows what is computed from one");
    }
}

// Empty statements and strings in front of a statement leave no trace.
void statementhead() {
    int token, index;
    bool string = false; // the token before was one
    for (;;) {
        newtoken(token, index);
        if (token != TOKSTRING && token != TOKEND) break;
        string = token == TOKSTRING;
        if (string) tempfree(index);
        line.prompt = "* ";
    }
    if (string) telldroppedstring(token);
    if (token == TOKTHEN || token == TOKELSE)
        tarnsyntax(
            further("%s stands on the line of its IF, or behind the } that closes the branch before it",
                    tokenword(token)),
            7, "statement starting with illegal token");
    pushtoken(token, index);
}

void emptycall() {
    parser.argcount[parser.argptr] = 0;
    parser.closed = 0;
    process(TOKCALL);
    closebracket(TOKCLOSE);
}

// The operands that clauses kept for their statement.
void releaseclauses() {
    for (const int idx : {clause.insym, clause.labelmatrix, clause.conset})
        if (idx > 0 && istemporary(idx)) tempfree(idx);
}

// The end of a statement that did something: in a do-file or a loop the user may stop it here.
void statementend() {
    if (parser.poltop > 0) tarnsyntax(leftover(), 15, "illegal statement");
    releaseclauses();
    if (line.depth == 0) return;
    if (!parser.interrupted) keypoll();
    if (parser.interrupted) throw recoveryjump{-1};
}

// One pass of the token loop; false when the statement is done.
bool taketoken(polishstate& p) {
    const int token = intake(p);
    if (token == 0) return true;
    parser.token = token;
    if (parser.debugsw) debugtoken(token, p.index);
    if (isoperand(token)) {
        operand(p);
        return true;
    }
    if (tokentables.col[token] == 0) {
        process(token);
        return token != TOKHELP;
    }
    if (!p.isvalue) {
        switch (prefix(token)) {
        case NEXTTOKEN: return true;
        case FINISHED: return false;
        case EMPTYCALL: emptycall(); return p.isvalue = true;
        case PAIR: break;
        }
    }
    if (pairtoken(token)) return p.isvalue = true;
    if (token == TOKEND) {
        statementend();
        return false;
    }
    if (token != TOKPRIME) p.isvalue = false;
    return true;
}

} // namespace

void statementbegin() {
    scannerreset();
    parserreset();
    submtxrelease();
    if (parser.treegarbage) {
        trireclaim();
        parser.treegarbage = false;
    }
    clausereset();
    fpclear();
    static const char *const mathex = "MATHEX", *const casesw = "CASESW";
    fp.limit = int(std::lround(symtabscalar(mathex, 0)));
    parser.casesw = int16_t(std::lround(symtabscalar(casesw, 0)));
    line.prompt = "* ";
}

void polish() {
    statementhead();
    polishstate p{false, 0};
    while (taketoken(p)) {}
}
