/* tests/unit/interp/harness.h - statements from lines of text, without a session around them.
 * Owns:    what was printed, the symbol table with the vocabulary.
 * Callers: the tests of the scanner, the parser and the statements.
 * Never:   shares anything between two tests. */
#pragma once

#include <string>

struct harnessstate {
    std::string output; // console
};
extern harnessstate harness;

void harnessstart();                       // an empty system with the vocabulary
void harnessfeed(const std::string& text); // to be read next; what was left is dropped; sessionend follows it
std::string
harnessrun(const std::string& text); // runs all statements; errors return to the next line; the output
