// TO belongs to FIT and to the windows' statements: the statement that runs decides.
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/process.h"
#include "interp/rooms.h"
#include "interp/tokenfil.h"
#include "solvers/fit.h"

namespace {

void toclause(const processop& op) {
    switch (opcommand()) {
    case TOKFIT: return fittoclause();
    case TOKWINDOW:
    case TOKFRAME:
    case TOKIMAGE: notavailable(op.token);
    default: tarnerror("no TO clause with this operator");
    }
}

constexpr processrow cases[] = {{31, toclause}};

} // namespace

void toclausestart() { processadd(cases, 1); }
