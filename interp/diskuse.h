/* interp/diskuse.h - SAVE and USE: named objects to a file and back.
 * Owns:    which objects are written and under which names they come back; the writing of a file as a whole.
 * Callers: process, for the two statements; the session's start, for INIT.SAV and INIT0.FIL.
 * Never:   knows what a kind of object is made of: each has a row of savekind (values/saveblock.h). */
#pragma once

/* Writes the operands on polstack, which it takes and releases, to the file that clause.insym names, or to
 * one with the name of the first operand. Without operands it writes all objects but the system's own: the
 * protected ones, and what the start-up files have defined and nobody has changed; TOKSAVEALL writes these
 * too. TOKSAVE and TOKSAVEALL ask before they replace a file, TOKSAVEOVER and TOKSAVEALLOVER do not. The new
 * file takes the place of the old one when it is complete, not before. */
void disksave(int op);

/* Reads the objects of the file that clause.insym names, in directory, into symtab. A name in use is asked
 * about once a file: the object there is overwritten, or the new one gets an A behind its name; mode
 * TOKUSEOVER overwrites. A damaged object is an error that names it: it is not made, nothing is lost for it,
 * and what came before it stands. With quiet nothing is printed but to the log. False: the file cannot be
 * opened, or with quiet, it is damaged. */
bool diskuse(int mode, const char* directory, bool quiet);

// Reads the objects of a start-up file, of the current directory or else of the program's, inside a
// statement; nothing is told of a file that is missing or damaged.
void usequietly(const char* file);

void diskpredefined(); // what is defined now are the start-up files' own objects
void diskforget();     // there are none
void diskstart();      // adds the kinds of objects that this room saves, and the rows of the two statements
