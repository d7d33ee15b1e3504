// Any bytes as statements: the scanner, the parser and the statements of the interpreter itself end each in a
// value or a message, and the next statement runs. What touches files is taken out of the tables.
#include "funcs/builtin.h"
#include "funcs/rows.h"
#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "support/harness.h"

#include <cstdint>
#include <cstdlib>
#include <string>

static int polls;

// A loop that goes on for ever is broken off as control-C does.
static bool longenough() { return ++polls > 20000; }

static void withoutfiles() {
    for (const int pcase : {8, 16, 17, 22, 34, 41, 59, 60, 67}) {
        const processrow none{pcase, nullptr};
        processadd(&none, 1);
    }
    builtinreset();
    elementaryrows();
    matrixbasicrows();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    harnessstart();
    withoutfiles();
    polls = 0;
    console.breakpending = longenough;
    const char* names = "A = 1:4; B = A & A'; S = \"text\"; T = S & S; K = 2; Z = 0; FUNCTION F(X) = X*X+K";
    if (!harnessrun(names).empty()) abort();
    harnessrun(std::string(reinterpret_cast<const char*>(data), size), WHOLETEXT);
    polls = 0;
    if (!harnessrun("THENEXT = 1").empty()) abort();
    symtabsweep();
    symtabdeleteall();
    return 0;
}
