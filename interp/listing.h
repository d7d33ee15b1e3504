/* interp/listing.h - TYPE: anything shown as text.
 * Owns:    the listings of numbers, matrices and strings, of files and directories, and the listing words.
 * Callers: TYPE and PRINT; rooms with types of their own add rows, see base/listrows.h.
 * Never:   changes what it shows. */
#pragma once

// Shows symbol sym, or with FILE or DIR in clause.fileflag the file or directory that it names (0: no name).
// Operands are released by the caller.
void typeop(int sym);

// At start: the rows of the types that this room shows, and FORMAT among the clauses.
void listingstart();
// Behind the start-up files: NFORMAT and MFORMAT come in force as they stand there.
void listingformats();
