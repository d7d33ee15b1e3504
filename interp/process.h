/* interp/process.h - the meaning of the parser's reductions.
 * Owns:    the dispatch by process case and its entry rules; the rows of the cases that the interpreter
 * serves itself. Callers: polish. Never:   computes: each row's routine does. */
#pragma once

void process();                // the token to be performed is on top of polstack
void interprows();             // at start: adds the rows of this room
bool maystandempty(int token); // a statement that may be performed with nothing on polstack
