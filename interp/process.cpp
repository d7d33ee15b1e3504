#include "interp/process.h"

#include "funcs/define.h"
#include "funcs/pending.h"
#include "interp/assign.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/help.h"
#include "interp/mistakes.h"
#include "interp/tokenfil.h"

#include <iterator>

namespace {

constexpr int PROCESSCASES = int(std::size(processtable));

// Statements and units that may be performed with nothing on polstack.
bool mayrunempty(int token) {
    switch (token) {
    case TOKSAVE:
    case TOKCONSTRAINTS:
    case TOKWINDOW:
    case TOKFRACT:
    case TOKINCHES:
    case TOKFFRACT:
    case TOKFINCHES:
    case TOKWORLD:
    case TOKSAVEOVER:
    case TOKSAVEALL:
    case TOKSAVEALLOVER: return true;
    default: return mayendbare(token);
    }
}

[[gnu::cold]] void debugprocess(int pcase, const processop& op) {
    tarnprint("process case: %hd, p2nd: %hd, ptop: %hd, opsym: %hd,", short(pcase), short(op.p2nd),
              short(op.ptop), short(op.token));
    tarnprint(" *nargs: %hd, nargs: %lx\n", parser.argcount[parser.argptr],
              static_cast<unsigned long>(parser.argptr));
}

} // namespace

bool mayendbare(int token) {
    switch (token) {
    case TOKTYPE:
    case TOKDRAW:
    case TOKEXIT:
    case TOKVIEW:
    case TOKTITLE:
    case TOKXAXIS:
    case TOKYAXIS:
    case TOKAXIS:
    case TOKFIT:
    case TOKFRAME:
    case TOKIMAGE:
    case TOKFRAMEBOX:
    case TOKIMAGEBOX:
    case TOKRETURN:
    case TOKPLOT:
    case TOKHELP:
    case TOKSTOP:
    case TOKEDIT:
    case TOKWAIT:
    case TOKCLOSEVIEW:
    case TOKDELETEALL: return true;
    default: return false;
    }
}

void notavailable(int token) {
    const char* const word = tokenword(token);
    tarnerror("%s is not available in this build", *word ? word : "this form of statement");
}

void process(int token) {
    const int top = parser.poltop;
    if (top < 0 && tokentables.col[parser.token] != 0 && !mayrunempty(token))
        tarnsyntax(nothingtouse(token), 7, "illegal statement");
    if (parser.funcmode != 0) return funcprocess(token);
    if (pending.count != 0 && !pendingkeeps(token)) pendingcompute();
    const processop op{token, top >= 0 ? parser.polstack[top] : 0, top >= 1 ? parser.polstack[top - 1] : 0};
    const int pcase = tokentables.pcase[token];
    if (parser.debugsw) debugprocess(pcase, op);
    if (pcase < 0 || pcase >= PROCESSCASES) tarnerror("PROCESS: bad case number");
    const auto handler = processtable[pcase].handler;
    if (!handler) notavailable(token);
    handler(op);
}

void needoperands(int count) {
    if (parser.poltop + 1 < count)
        tarnerror(marked("a value is missing"), "polstack[] empty, cannot be popped");
}

void dropoperands(int count) { parser.poltop -= count; }

void freeoperands(int count) {
    for (; count > 0; count--) tempfree(polpop());
}

void replaceoperands(int count, int idx) {
    parser.poltop -= count - 1;
    parser.polstack[parser.poltop] = int16_t(idx);
}

void processstart() {
    operatorrows();
    clauserows();
    ifrows();
    submatrixrows();
    objectrows();
    helprows();
    assignstart();
}
