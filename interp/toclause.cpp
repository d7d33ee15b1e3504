// TO belongs to FIT and to the windows' statements: the statement that runs decides.
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/tokens.h"
#include "interp/rooms.h"
#include "interp/tokenfil.h"
#include "plot/clauses.h"
#include "solvers/fit.h"

namespace {

void toclause(const processop&) {
    switch (opcommand()) {
    case TOKFIT: return fittoclause();
    case TOKWINDOW:
    case TOKFRAME:
    case TOKIMAGE: return windowtoclause();
    default:
        tarnerror(further("TO belongs to FIT, WINDOW, FRAME and IMAGE, not to %s",
                          opcommand() ? tokenword(opcommand()) : "an expression"),
                  "no TO clause with this operator");
    }
}

constexpr processrow cases[] = {{31, toclause}};

} // namespace

void toclausestart() { processadd(cases, 1); }
