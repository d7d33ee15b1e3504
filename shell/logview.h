/* shell/logview.h - scrolling back through the log, the history of the session.
 * Owns:    the lines of the log as they are shown, the place of the cursor among them.
 * Callers: the line input, which paints the view.
 * Never:   reads a key or writes to the screen. */
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct logview {
    std::vector<std::string> lines; // of at most 80 characters; longer ones of the log count as several
    size_t at = 0;                  // the line under the cursor
    int column = 1;                 // of the cursor, 1..80
};

enum class viewresult {
    going,
    take,    // Insert: the line under the cursor is wanted
    leave,   // back to the input
    leavekey // back, and the key belongs to the input
};

logview logviewmake(const std::string& log); // the cursor on the last line
viewresult logviewkey(logview& v, int key);

// The line under the cursor without the prompt in front of it, at most 78 characters.
std::string logviewline(const logview& v);

// The first line of the log to be shown so that the cursor's line is among `height` lines.
size_t logviewtop(const logview& v, size_t oldtop, size_t height);
