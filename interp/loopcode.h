/* interp/loopcode.h - the body of a FOR loop as flat code: the fast road to the same effects.
 * Owns:    which statements have such code, when it is made and when it no longer holds.
 * Callers: the statement loop, before each statement; a loop keeps its code in its source.
 * Never:   gives another result, message, fault count or order of effects than the statements themselves:
 * what it does not cover is left to the parser, statement by statement. */
#pragma once

#include <memory>

struct loopcode;
struct loopcodedelete {
    void operator()(loopcode* code) const;
};
using loopcodeptr = std::unique_ptr<loopcode, loopcodedelete>;

// Performs statements of the running loop for as long as there is code for them, pass after pass. The
// statement at which it stops is left to be read: one without code, or what stands behind the loop.
void loopadvance();
