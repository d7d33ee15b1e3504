/* interp/base/report.h - everything that is printed, and every failure, passes here.
 * Owns:    the log, the listing file, output capture, and the one exception that carries the recovery.
 * Callers: every room above special/; the statement loop alone catches recoveryjump.
 * Never:   touches a terminal (it calls consolehooks) or restores parser state. */
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

struct recoveryjump {
    int value; // -1 error, -2 STOP, 6 control-C, 5 as 6 without its messages
};

struct reportstate {
    FILE* log = nullptr;
    FILE* listing = nullptr;        // open while PRINT runs: all output goes there
    std::string* capture = nullptr; // open while a listing is collected as text: all output goes there
    bool recoveryset = false;       // the statement loop stands
    bool quiet = false;             // a computation is being tried: nothing is printed or counted...
    bool held = false;              // ...but something would have been
    bool batch = false;             // errors and warnings also go to standard error
    int errors = 0;                 // errors reported since the start
    std::string lasterror;          // the words of the last one
    bool explained = false;         // a warning has followed it
    std::string filedir;            // the default directory of files: FILEDIR behind its leading blanks
    std::string tarnpath;           // the directory of the start-up files, ending in a separator
};
extern reportstate report;

void tarnprint(const char* format, ...)
    __attribute__((format(printf, 1, 2)));           // capture, listing, or log + console
void tarnprinttext(const char* text, size_t length); // the same for text as it stands
void conout(const char* format, ...) __attribute__((format(printf, 1, 2))); // console only
void logout(const char* format, ...) __attribute__((format(printf, 1, 2))); // log only
void conputc(int c);
int getkey(bool wait); // -1 when none waits (wait false); extended keys are 256 plus the scan code
void keypoll();        // Q sets parser.interrupted, R turns parser.reporttoggle; for long work

[[noreturn]] void tarnerror(const char* format, ...) __attribute__((format(printf, 1, 2)));
[[noreturn]] void tarnsyntax(int n, const char* format, ...) __attribute__((format(printf, 2, 3)));
void tarnwarn(const char* format, ...) __attribute__((format(printf, 1, 2))); // silent while WARNSW is 0

// What an error of fixed words leaves unsaid: which name, row or value is meant, what to try. It follows the
// error as a warning, so that WARNSW silences it; lines after its first are shown indented.
//     tarnerror(further("%s is undefined", name), "RHS of assignment invalid");
struct furtherline {
    std::string text; // empty: nothing more to say
};
furtherline further(const char* format, ...) __attribute__((format(printf, 1, 2)));
[[noreturn]] void tarnerror(const furtherline& more, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
[[noreturn]] void tarnsyntax(const furtherline& more, int n, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

// The four argument refusals of builtins, by the function's name.
void argwarn(const char* name);
[[noreturn]] void argrange(const char* name);
[[noreturn]] void argtype(const char* name);
[[noreturn]] void argshape(const char* name);

// File name: dir/name.ext; dir is left out when empty or when name begins with a separator or a period; ext
// is added when name holds no period (behind its last separator). Both separators are understood.
std::string bindname(const char* name, const char* dir, const char* ext);
// The file as its directory spells it: path itself if it exists, else the one that differs from it by case
// alone (lower case first); path unchanged if there is none. Names in statements are folded to upper case.
std::string findfile(const std::string& path);
std::string lowered(std::string s); // in small letters
furtherline nomemory();             // behind an error of an allocation that has failed
// Why a file that was to be opened could not be, for the line behind the error; the same on every platform.
furtherline notreadable(const std::string& path);
furtherline notwritable(const std::string& path);
