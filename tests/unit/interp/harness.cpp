#include "unit/interp/harness.h"

#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/scanner.h"
#include "interp/tokenfil.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <stdexcept>

harnessstate harness;

void getline() {
    if (harness.next == harness.lines.size()) throw endofinput{};
    const std::string& l = harness.lines[harness.next++];
    if (!line.keepline) {
        line.text.clear();
        line.cursor = 0;
    }
    line.text += l + '\r';
}

static void keepoutput(const char* text, size_t length) { harness.output.append(text, length); }

void harnessfeed(const std::string& text) {
    harness.lines.clear();
    harness.next = 0;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        harness.lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    line.text.clear();
    line.cursor = 0;
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
    line = linestate{};
    std::string failure;
    if (!symtabinit(TESTDATADIR "/../../data/TOKEN.FIL", failure)) throw std::runtime_error(failure);
    symtabconstants();
}
