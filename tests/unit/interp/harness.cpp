#include "unit/interp/harness.h"

#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/scanner.h"
#include "interp/tokenfil.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <stdexcept>

harnessstate harness;

static void keepoutput(const char* text, size_t length) { harness.output.append(text, length); }

void harnessfeed(const std::string& text) {
    tokenstream* const record = scanner.record; // a test may be recording
    dofilesreset();
    scanner.record = record;
    dofiles.closed = true;
    pushfile("", text);
    scannerreset();
}

void harnessstart() {
    harness = harnessstate{};
    hooksreset();
    console.write = keepoutput;
    report = reportstate{};
    report.recoveryset = true;
    symtabstart();
    valuesstart();
    stringarraystart();
    parserreset();
    parser.casesw = 0;
    parser.debugsw = false;
    scanner = scannerstate{};
    dofilesreset();
    std::string failure;
    if (!symtabinit(TESTDATADIR "/../../data/TOKEN.FIL", failure)) throw std::runtime_error(failure);
    symtabconstants();
}
