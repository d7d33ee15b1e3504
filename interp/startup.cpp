#include "interp/startup.h"

#include "interp/assign.h"
#include "interp/base/hooks.h"
#include "interp/base/machine.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "interp/diskuse.h"
#include "interp/dofiles.h"
#include "interp/listing.h"
#include "interp/logroll.h"
#include "interp/session.h"
#include "interp/tokenfil.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iterator>

namespace {

void enterstring(const char* name, const char* text) {
    symbol& s = sym(symtabenter(name));
    if (s.type == STRINGTYPE) xfree(s.val.ptr);
    s.val.ptr = xstrdup(text);
    s.type = STRINGTYPE;
}

void enterscalar(const char* name, double value) {
    symbol& s = sym(symtabenter(name));
    s.type = SCALAR;
    s.val.rval = value;
}

int shadow(const char* name) { return int(std::lround(symtabscalar(name, 0))); }

} // namespace

std::string currentdirectory() {
    std::error_code failure;
    const std::string path = std::filesystem::current_path(failure).string();
    if (failure) tarnerror("getcurtarndir() failed.");
    return path;
}

bool startvocabulary() {
    std::string failure;
    if (symtabinit((report.tarnpath + "TOKEN.FIL").c_str(), failure)) return true;
    conout("%s", failure.c_str());
    conout("TOKEN.FIL and the other start-up files belong beside the program, in %s\n",
           report.tarnpath.c_str());
    getkey(true);
    return false;
}

void startentries() {
    parser.funcmode = 1; // constants made now are shared and stay
    symtabconstants();
    parser.funcmode = 0;
    for (const char* device : {"MSWDEV", "PSL", "PSCL", "PSP", "PSCP", "LJ2L", "LJ2P", "PSCLX", "PSCPX"})
        enterstring(device, device);
    enterstring("TARNPATH", report.tarnpath.c_str());
    symbol& none = sym(symtabenter("NULLM"));
    none.val.ptr = harraynew(0, 0);
    none.type = MATRIX;
    for (const char* text : {"NFORMAT", "MFORMAT", "ODESTR", "DOFILEDIR"}) enterstring(text, "");
}

bool startlog() {
    logroll("");
    report.log = fopen(logname("").c_str(), "w+");
    if (!report.log) {
        conout("Cannot open log file...  Exiting.\n");
        conout("%s cannot be written in %s: start in a directory of your own\n", logname("").c_str(),
               currentdirectory().c_str());
    }
    return report.log != nullptr;
}

void askdebugging() {
    static const char* const choices[] = {"NO", "YES"}; // the keeping answer first
    const char* question = "Do you want to turn on the TARN debugging printout?";
    parser.debugsw = console.question("tarnbegin", question, choices, 2) == 1;
}

bool startobjects(const char* file) {
    const int name = symtabtext(0, 0, file);
    clause.insym = int16_t(name);
    diskuse(TOKUSEOVER, report.tarnpath.c_str(), true);
    clause.insym = 0;
    tempfree(name);
    const int directory = symtablookup("FILEDIR");
    if (directory >= 0 && sym(directory).type == STRINGTYPE) return true;
    logout("INIT.SAV missing!\n");
    conout("INIT.SAV missing!\nIt belongs into %s, and gives FILEDIR a value\n", report.tarnpath.c_str());
    return false;
}

// ---- what the system makes of its own variables ----

void startsystem() {
    const char* directory = symtabstring("FILEDIR", "");
    while (*directory == ' ') directory++;
    report.filedir = directory;
    enterscalar("MAXPOS", MAXPOS);
    enterscalar("MAXNEG", MAXNEG);
    enterscalar("MACHEPS", MACHEPS);
    symtabprotect();
    dofiles.echodo = shadow("ECHODO");
    dofiles.dostep = shadow("DOSTEP");
    listingformats();
    upper.displayselect(symtabstring("DISPLAY", ""));
    console.colour(consolecolour(symtabscalar("INCOLOR", 1)), consolecolour(symtabscalar("OUTCOLOR", 1)));
}

void startbanner() {
    tarnprint("   TARN Mathematical Modeling System, Revision: December 1, 2025\n");
    tarnprint("   Executing file: %starn\n", report.tarnpath.c_str());
    tarnprint("   Functions, differential equations, fitting, statistics and graphics.\n");
    tarnprint("   HELP explains, EXIT ends.\n");
    const time_t now = time(nullptr);
    tarnprint("%s", ctime(&now));
    tarnprint("Your current working directory is: %s/\n", currentdirectory().c_str());
    tarnprint("Use FILEDIR to reach any other directory.\n");
    tarnprint("'* ' is the command prompt\n\n");
}

void setdisplay(const std::string& device) {
    enterstring("DISPLAY", device.c_str());
    upper.displayselect(device.c_str());
}

namespace {

// False if there is no such file.
bool queue(const std::string& path) {
    std::string content;
    if (!readwhole(path.c_str(), content)) return false;
    logout("* do %s\n", path.c_str());
    pushfile(path.c_str(), std::move(content));
    return true;
}

constexpr const char* DEFAULTDOFILE = "_";

// The do-file of the command line. One that cannot be read is no reason to stop.
void queuenamed(const std::string& path) {
    if (queue(path) || path == DEFAULTDOFILE) return;
    tarnwarn("couldn't open DO file %s", path.c_str());
    tarnwarn("%s", notreadable(path).text.c_str());
    queue(DEFAULTDOFILE);
}

} // namespace

// The do-stack is a stack: what is queued last runs first.
void startdofiles(const sessionoptions& options) {
    dofiles.closed = options.batch;
    if (options.batch) pushfile(options.batchname.c_str(), options.batchtext);
    queuenamed(options.dofile);
    if (options.vanilla) return;
    queue("tarninit.do");
    if (options.startmode == 0) queue(report.tarnpath + "startup.do");
}
