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
// An error, and behind it a warning that tells more: what was given, what to try. WARNSW silences the
// warning.
[[noreturn]] void tarnerrorhint(const std::string& hint, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
[[noreturn]] void tarnsyntax(int n, const char* format, ...) __attribute__((format(printf, 2, 3)));
void tarnwarn(const char* format, ...) __attribute__((format(printf, 1, 2))); // silent while WARNSW is 0
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
