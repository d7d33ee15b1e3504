/* interp/session.h - a session from its start to its end.
 * Owns:    the order of the start, the statement loop, the recovery after an error, the log's rolling.
 * Callers: shell/main, tests, anyone who holds a session as a library; EXIT leaves through tarnexit.
 * Never:   reads a key or opens a window: that is the console's, reached by the hooks. Can be started again.
 */
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct sessionoptions {
    int startmode = 0;       // 0 no word, 1 `bwi`, 2 `bwii` (no INIT.SAV is read), 3 any other first word
    std::string programpath; // the directory of the start-up files, ending in a separator
    std::vector<std::string> displays;   // each becomes the value of DISPLAY
    std::string dofile = "_";            // run at the start if readable
    unsigned long freememory = 0;        // bytes, for the log; 0: not told
    size_t stackbytes = size_t(1) << 20; // of the machine stack that an evaluation may use
    bool batch = false;                  // ends at the first error; the keyboard is closed
    bool quiet = false;                  // no banner
    bool vanilla = false;                // no startup.do, no tarninit.do
    std::string batchname, batchtext;    // a batch: the statements to run, and what they are called
};

// Leaves the session from any depth; caught by sessionrun alone.
struct sessionend {
    int status;
};

// Everything up to the first prompt. Returns 0, or the exit status of a start that failed (told on the
// console).
int sessionstart(const sessionoptions& options);
// Runs statements until the session ends and returns its exit status; log and graphics are closed then.
int sessionrun();
[[noreturn]] void tarnexit(int status);
void sessionrows(); // at start: DO, FOR, RETURN, STOP, EDIT, WAIT, EXIT

// Runs statements until none is left, as if typed (with no editor after an error). False if an error or a
// break cut them short. For tests and for those who hold a session as a library, between sessionstart and
// sessionclose.
bool sessionexecute(const std::string& statements);
void sessionclose();
