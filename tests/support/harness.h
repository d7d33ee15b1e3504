/* tests/support/harness.h - statements from lines of text, without a session around them.
 * Owns:    what was printed, the symbol table with the vocabulary.
 * Callers: the tests of the scanner, the parser and the statements, and of definitions in funcs/.
 * Never:   shares anything between two tests. */
#pragma once

#include <string>

struct harnessstate {
    std::string output; // console
};
extern harnessstate harness;

// Text comes line by line as from a do-file, or all at once as from a string.
enum feeding { LINEBYLINE, WHOLETEXT };

void harnessstart(); // an empty system with the vocabulary
// To be read next; what was left is dropped. Behind it sessionend is thrown.
void harnessfeed(const std::string& text, feeding how = LINEBYLINE);
void harnessrecover(); // after a recoveryjump
// All statements of the text; errors return to the next line. What was printed, with the fixed words of
// errors.
std::string harnessrun(const std::string& text, feeding how = LINEBYLINE);
