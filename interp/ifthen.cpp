// IF at statement level. A scalar condition chooses one branch as text, so that the other is never parsed; a
// matrix condition chooses element by element between two values.
#include "funcs/operators.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/mistakes.h"
#include "interp/process.h"
#include "interp/scanner.h"

#include <iterator>

namespace {

// While a branch is looked through, the lines read stay in the buffer.
struct keeplines {
    const openpart branch{"the branch of an IF"};
    keeplines() { line.keepline = true; }
    ~keeplines() { line.keepline = false; }
    keeplines(const keeplines&) = delete;
    keeplines& operator=(const keeplines&) = delete;
};

// Runs to the end of a branch: a bracket that closes outside, an ELSE that is not of an IF inside, a THEN
// with no IF inside, or the end of the statement. That token is not taken: scanner.start tells where it
// stands.
int skipbranch() {
    int depth = 0, open = 0, nested = 0; // brackets; IFs before their THEN, and behind it
    for (;;) {
        const int token = skimtoken();
        if (token == TOKOPEN) {
            depth++;
        } else if (token == TOKCLOSE) {
            if (depth-- == 0) return token;
        } else if (depth == 0) {
            switch (token) {
            case TOKEND: return token;
            case TOKIF: open++; break;
            case TOKTHEN:
                if (open-- == 0) return token;
                nested++;
                break;
            case TOKELSE:
                if (nested-- == 0) return token;
            }
        }
    }
}

// The branch's own pair of brackets goes, so that what stands between runs as statements.
void openbranch() {
    const size_t start = scanposition();
    if (skimtoken() != TOKOPEN) return scanseek(start);
    const size_t inside = scanposition();
    for (int depth = 1; depth > 0;) {
        const int token = skimtoken();
        depth += (token == TOKOPEN) - (token == TOKCLOSE);
    }
    scanblank(scanner.start);
    scanseek(inside);
}

void takebranch(bool holds) {
    const keeplines keep;
    scanforget();
    skiplineend();
    const size_t then = scanposition();
    int stop = skipbranch();
    if (stop != TOKELSE) {
        scanseek(holds ? then : scanner.start);
        if (holds) openbranch();
        return;
    }
    const size_t elsestart = scanner.start;
    skiplineend();
    const size_t otherwise = scanposition();
    skipbranch();
    if (holds) scancut(elsestart, scanner.start);
    scanseek(holds ? then : otherwise);
    openbranch();
}

void iftext(const processop& op) {
    if (!op.ptop) tarnsyntax(statementform(op.token), 27, "missing arg for binary operator");
    const int type = sym(op.ptop).type;
    if (type == MATRIX) return;
    if (type != CONSTANT && type != SCALAR && type != USERFUNCTION)
        tarnerror(furtherline{describe(op.ptop)}, "IF-THEN-ELSE: bad conditional expression");
    const bool holds = scalarval(op.ptop) != 0;
    freeoperands(1);
    takebranch(holds);
}

void selection(const processop&) {
    needoperands(3);
    ifmatrixselect();
    parser.matrixiflevel--;
}

constexpr processrow rows[] = {{13, iftext}, {15, selection}};

} // namespace

void ifrows() { processadd(rows, int(std::size(rows))); }
