#include "support/harness.h"
#include "support/fixedwords.h"

#include "funcs/builtin.h"
#include "funcs/define.h"
#include "funcs/trinode.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/listing.h"
#include "interp/polish.h"
#include "interp/process.h"
#include "interp/scanner.h"
#include "interp/session.h"
#include "interp/tokenfil.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <stdexcept>

harnessstate harness;

static void keepoutput(const char* text, size_t length) { harness.output.append(text, length); }

void harnessfeed(const std::string& text, feeding how) {
    tokenstream* const record = scanner.record; // a test may be recording
    dofilesreset();
    scanner.record = record;
    dofiles.closed = true;
    if (how == LINEBYLINE)
        pushfile("", text);
    else
        pushtext(text);
    scannerreset();
}

void harnessstart() {
    harness = harnessstate{};
    hooksreset();
    console.write = keepoutput;
    report = reportstate{};
    fp = fpstate{};
    report.recoveryset = true;
    symtabstart();
    valuesstart();
    stringarraystart();
    trinodestart();
    definestart();
    funcsstart();
    parserreset();
    parser.casesw = 0;
    parser.debugsw = false;
    scanner = scannerstate{};
    dofilesreset();
    std::string failure;
    if (!symtabinit(TESTDATADIR "/../../data/TOKEN.FIL", failure)) throw std::runtime_error(failure);
    symtabconstants();
    processstart();
    sessionrows();
    listingstart();
}

std::string harnessrun(const std::string& text, feeding how) {
    harnessfeed(text, how);
    harness.output.clear();
    try {
        for (;;) {
            statementbegin();
            try {
                polish();
                fpsummary(false);
            } catch (const recoveryjump&) { harnessrecover(); }
        }
    } catch (const sessionend&) {}
    return fixedwords(harness.output);
}

// What an error leaves behind goes; the lines behind the failed one are read on.
void harnessrecover() {
    while (!dofiles.stack.empty() && dofiles.stack.back().kind == sourcekind::loop) popsource();
    symtabsweep();
    line.text.clear();
    line.cursor = 0;
    line.keepline = false;
    scanner.record = scanner.stream = nullptr;
}
