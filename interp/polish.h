/* interp/polish.h - the parser: one statement is read and performed.
 * Owns:    the pairing table and the loop over the two stacks of base/parser.h.
 * Callers: the statement loop alone: statementbegin(), then polish(), for ever.
 * Never:   knows what a token does; each reduction goes to process(). */
#pragma once

// The reset before a statement: the stacks, the submatrix temporaries, owed tree reclamation, the clause
// variables, the flags, the floating-point counters, the switches MATHEX and CASESW, the prompt.
void statementbegin();

// Reads and performs one statement; an error leaves by recoveryjump.
void polish();
