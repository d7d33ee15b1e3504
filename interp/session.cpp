#include "interp/session.h"

#include "funcs/define.h"
#include "funcs/trinode.h"
#include "funcs/value.h"
#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/diskuse.h"
#include "interp/dofiles.h"
#include "interp/logroll.h"
#include "interp/loopcode.h"
#include "interp/polish.h"
#include "interp/rooms.h"
#include "interp/startup.h"

#include <new>

namespace {

// What the common reset has to know of the jump that it serves.
enum jumpvalue { JUMPERROR = -1, JUMPSTOP = -2, JUMPQUIET = 5, JUMPBREAK = 6 };

// A failure of the language's library, told in the system's own words.
int libraryfailure(const furtherline& more, const char* what) {
    try {
        tarnerror(more, "%s", what);
    } catch (const recoveryjump& jump) { return jump.value; }
}

// The summary of a statement's floating-point errors, and where it stands if it was not typed.
void tellfaults() {
    fpsummary(false);
    const std::string place = typedbyhand() ? "" : sourceplace();
    if (!place.empty()) tarnwarn("floating-point errors in %s", place.c_str());
}

// Runs one statement; 0, or the value of the jump that ended it.
int runstatement() {
    try {
        statementbegin();
        loopadvance();
        polish();
        if (fp.total != 0) tellfaults();
        return 0;
    } catch (const recoveryjump& jump) { return jump.value; } catch (const std::bad_alloc&) {
        return libraryfailure(nomemory(), "insufficient memory for this statement");
    } catch (const sessionend&) { throw; } catch (const std::exception& failure) {
        return libraryfailure({failure.what()}, "this statement is beyond what the system can do");
    }
}

void breakmessage() {
    conout("Command in progress aborted.\n");
    conout("Safest Action: type EXIT, then restart TARN.\n");
    conout("Riskier but often worthwhile: Save");
    conout(" your data objects (SAVE IN MYFILE),\n");
    conout("then EXIT, restart TARN, and restore");
    conout(" the objects (USE MYFILE).\n");
}

// Everything that a failed statement leaves behind goes; named objects stay.
void commonreset() {
    popallsources();
    symtab.nsubmtx = 0;
    symtabsweep();
    if (parser.treegarbage) trireclaim();
    parser.treegarbage = false;
    line.text.clear();
    line.cursor = 0;
}

// The failed statement comes back for correction, if there is a screen to show it on.
void reedit() {
    std::string text = line.lastline;
    if (!text.empty() && text.back() == '\r') text.pop_back();
    if (!console.lineedit(text)) return;
    logout("%s\n", text.c_str());
    line.text = text + '\r';
    line.lastline = line.text;
}

// The head of a definition clears the one before it, whatever becomes of the body.
void telllostdefinition() {
    const int before = definition.oldtype;
    if (parser.funcmode == 0 || !definition.headerseen) return;
    if (before == USERFUNCTION || before == INITIALVALUE)
        tarnwarn("the earlier definition of %s is gone", nametext(definition.function).c_str());
}

// failed: an error has been told.
void recover(int value, bool failed) {
    const bool byhand = typedbyhand();
    const std::string place = sourceplace();
    if (failed) telllostdefinition();
    if (failed && !byhand && !place.empty()) tarnwarn("in %s", place.c_str());
    if (value == JUMPBREAK) breakmessage();
    commonreset();
    if (value == JUMPERROR && byhand && !report.batch) reedit();
}

// A break may come while a recovery is under way; then that one is served in its stead.
void recoverfully(int value, bool failed) {
    while (value != 0) {
        try {
            recover(value, failed);
            value = 0;
        } catch (const recoveryjump& jump) { value = jump.value; }
    }
}

// The end of a batch by an error or a break.
int batchstatus(int value) {
    if (value == JUMPSTOP) return 0;
    const std::string place = sourceplace();
    if (!place.empty()) console.errortext((place + "\n").c_str());
    return value == JUMPBREAK || value == JUMPQUIET ? 130 : 1;
}

int statementloop() {
    for (;;) {
        const int errors = report.errors;
        const int value = runstatement();
        if (value == 0) continue;
        if (report.batch) return batchstatus(value);
        recoverfully(value, report.errors > errors);
    }
}

// One statement inside another: a definition that USE reads. The outer one goes on as it stood; after an
// error it is dropped with the rest.
void nestedstatement(const char* text) {
    const parserstate outer = parser;
    const clausestate outerclauses = clause;
    const char* prompt = line.prompt;
    const int number = scanner.pushnumber, index = scanner.pushindex;
    pushtext(text);
    const size_t depth = dofiles.stack.size();
    while (dofiles.stack.size() == depth && line.cursor < line.text.size()) {
        scannerreset();
        parserreset();
        clausereset();
        line.prompt = "* ";
        polish();
    }
    if (dofiles.stack.size() == depth) popsource();
    const bool garbage = parser.treegarbage, interrupted = parser.interrupted;
    parser = outer;
    parser.treegarbage |= garbage;
    parser.interrupted |= interrupted;
    clause = outerclauses;
    line.prompt = prompt;
    scanner.pushnumber = number;
    scanner.pushindex = index;
}

// The steps between the vocabulary and the first prompt; 0 or an exit status.
int startsteps(const sessionoptions& options) {
    currentdirectory();
    if (!startvocabulary()) return 1;
    startentries();
    fpinit();
    if (!startlog()) return 1;
    if (options.startmode == 1) askdebugging();
    if (options.startmode == 2) return 0;
    if (!startobjects("INIT.SAV")) return 3;
    startsystem();
    if (!options.quiet && !options.batch) startbanner();
    if (options.startmode != 1) startobjects("INIT0.FIL");
    diskpredefined();
    return 0;
}

} // namespace

int sessionstart(const sessionoptions& options) {
    if (report.log) fclose(report.log);
    report = reportstate{};
    report.tarnpath = options.programpath;
    report.batch = options.batch;
    roomsstart();
    evalstart(options.stackbytes);
    upper.runstatement = nestedstatement;
    try {
        if (const int status = startsteps(options)) return status;
        for (const std::string& device : options.displays) setdisplay(device);
        if (!options.batch) logout("Largest free memory block: %10lu bytes\n", options.freememory);
        report.recoveryset = true;
        startdofiles(options);
    } catch (const recoveryjump&) { return 1; } catch (const sessionend& end) {
        return end.status;
    }
    return 0;
}

void tarnexit(int status) { throw sessionend{status}; }

int sessionrun() {
    int status;
    try {
        status = statementloop();
    } catch (const sessionend& end) { status = end.status; }
    sessionclose();
    return status;
}

bool sessionexecute(const std::string& statements) {
    const bool closed = dofiles.closed;
    dofiles.closed = true;
    const int errors = report.errors;
    pushfile("", statements);
    bool good = true;
    try {
        while (good) good = runstatement() == 0;
        recoverfully(JUMPSTOP, false);
    } catch (const sessionend& end) { good = end.status == 0; }
    dofiles.closed = closed;
    return good && report.errors == errors;
}

void sessionclose() {
    try {
        upper.shutdowngraphics();
    } catch (const recoveryjump&) {} // its message is told; the session ends all the same
    popallsources();
    if (!report.log) return;
    fputs("end of TARN.LOG\n", report.log);
    fclose(report.log);
    report.log = nullptr;
    logmove(report.filedir);
}
