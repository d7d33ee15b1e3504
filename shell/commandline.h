/* shell/commandline.h - the words of the command line.
 * Owns:    the meaning of each word and the usage text.
 * Callers: main.
 * Never:   opens a file or prints. */
#pragma once

#include "interp/session.h"

#include <string>
#include <vector>

enum class runkind { session, help, version, batch, eval, wrong };

struct commandline {
    runkind run = runkind::session;
    std::string operand; // batch: the file, "-" for standard input; eval: the statements; wrong: why
    sessionoptions session;
};

// words: without the program's own name. Words with two dashes are taken off before the rest is read.
commandline readcommandline(const std::vector<std::string>& words);

extern const char* const usageline;
extern const char* const helptext;
