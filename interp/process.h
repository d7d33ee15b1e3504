/* interp/process.h - the meaning of the parser's reductions.
 * Owns:    the dispatch by process case and its entry rules.
 * Callers: polish.
 * Never:   computes: the routines of the rows do. */
#pragma once

#include "interp/base/parser.h"

void process(int token); // performs one reduction, with its operands on polstack

// For the handlers of this room.
void needoperands(int count);              // error unless polstack holds so many
void dropoperands(int count);              // pops them; they are not released
void freeoperands(int count);              // pops and releases them
void replaceoperands(int count, int idx);  // pops them, already released, and pushes the result
bool mayendbare(int token);                // statements that may end where an operand could stand
[[noreturn]] void notavailable(int token); // "... is not available in this build"

// At start: the rows of each module of this room that has some.
void operatorrows();  // operators, calls, ranges, lists, joins, transpose
void clauserows();    // clauses that leave a value for their statement
void ifrows();        // IF, THEN, ELSE
void submatrixrows(); // ROW, COL; also how a submatrix is deleted
void objectrows();    // TYPE, PRINT, DELETE, DELETEALL, FILE, DIR
void processstart();  // all of them
