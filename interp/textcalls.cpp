// TYPESTR and SRUN: from an object to its listing as text, and from text to what it does.
#include "interp/textcalls.h"

#include "funcs/builtin.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/listing.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <iterator>

namespace {

// Collects what is printed while it lives.
struct printcapture {
    std::string text;
    std::string* const before = report.capture;
    printcapture() { report.capture = &text; }
    ~printcapture() { report.capture = before; }
    printcapture(const printcapture&) = delete;
    printcapture& operator=(const printcapture&) = delete;
};

std::string listingof(int idx) {
    printcapture capture;
    try {
        typeop(idx);
    } catch (const recoveryjump&) {
        report.capture = capture.before; // the message was caught too
        tarnprinttext(capture.text.data(), capture.text.size());
        throw;
    }
    return capture.text;
}

// TYPESTR(x): what TYPE x prints, without the line ends behind it.
int typestr(const callargs& a) {
    const std::string text = listingof(a[1]);
    return symtabtext(0, 0, text.substr(0, text.find_last_not_of('\n') + 1));
}

/* While a text runs, TYPE keeps the last number that it would show. */
struct runstate {
    processrow type{}; // what TYPE does otherwise
    int result = 0;
};
runstate run;

bool isnumeric(int idx) { return idx > 0 && (isscalar(idx) || ismatrix(idx)); }

// The value of an operand as a temporary matrix; a temporary is moved.
int ownmatrix(int idx) {
    if (isscalar(idx)) return scalartemp(idx);
    if (istemporary(idx)) return idx;
    return symtabmatrix(0, 0, harrayptr(harraydup(matrixof(idx))));
}

void keepresult(const processop& op) {
    if (op.token != TOKTYPE || clause.fileflag > 0 || !isnumeric(op.ptop)) return run.type.handler(op);
    const int kept = ownmatrix(op.ptop);
    tempfree(run.result);
    run.result = kept;
    while (parser.poltop >= 0) {
        const int idx = polpop();
        if (idx != kept) tempfree(idx);
    }
    parser.argcount[parser.argptr] = 1;
}

// TYPE keeps its value for the running text while this lives.
struct typekeeper {
    const runstate before = run;
    typekeeper() {
        run.result = 0;
        if (processtable[TYPECASE].handler == keepresult) return;
        run.type = processtable[TYPECASE];
        processtable[TYPECASE].handler = keepresult;
    }
    ~typekeeper() {
        processtable[TYPECASE].handler = before.type.handler ? keepresult : run.type.handler;
        run = before;
    }
    typekeeper(const typekeeper&) = delete;
    typekeeper& operator=(const typekeeper&) = delete;
    static constexpr int TYPECASE = 6;
};

// SRUN(text): runs the statements in text; the last expression among them, or 0 by 0 if there is none.
int srun(const callargs& a) {
    const std::string text = stringval(a[1]);
    typekeeper keeper;
    upper.runstatement(text.c_str());
    return run.result ? run.result : symtabmatrix(0, 0, harrayptr(harraynew(0, 0)));
}

constexpr valuerow rows[] = {{-787, srun}, {-903, typestr}};

} // namespace

void textcallsstart() {
    run = runstate{};
    builtinadd(rows, int(std::size(rows)));
}
