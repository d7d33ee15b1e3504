// The statements that move the session itself: DO, FOR, RETURN, STOP, EDIT, WAIT, EXIT.
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/dofiles.h"
#include "interp/edit.h"
#include "interp/session.h"
#include "interp/source.h"

#include <iterator>

namespace {

void performdo(const processop& op) {
    if (parser.poltop != 0)
        tarnsyntax(further("DO runs one file, and %d are named", parser.poltop + 1), 25,
                   "Incorrect number of arguments");
    polpop();
    dofile(op.ptop);
}

void performexit(const processop&) { tarnexit(0); }

void performedit(const processop& op) {
    if (parser.poltop > 0)
        tarnerror(further("%d are named", parser.poltop + 1), "only one object may be edited");
    if (clause.fileflag != 1) edit(op.ptop);
    fileedit(op.ptop);
    if (parser.poltop == 0) tempfree(polpop());
}

void performreturn(const processop& op) {
    if (op.token == TOKSTOP) throw recoveryjump{-2};
    sourcereturn();
    line.prompt = "* ";
}

void performfor(const processop&) { forop(); }
void performwait(const processop&) { getkey(true); }

const processrow rows[] = {{16, performdo},     {17, performexit}, {41, performedit},
                           {55, performreturn}, {62, performfor},  {67, performwait}};

} // namespace

void sessionrows() { processadd(rows, int(std::size(rows))); }
