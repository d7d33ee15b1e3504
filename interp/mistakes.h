/* interp/mistakes.h - what a syntax error tells beyond its fixed words.
 * Owns:    the plain words for what stands wrong, an example of each statement, the mark under the place.
 * Callers: polish and the statements that refuse their own form; the result goes to tarnsyntax or tarnerror.
 * Never:   decides that something is wrong, or moves the scanner. */
#pragma once

#include "interp/base/report.h"

bool isclause(int token); // a word that stands behind a statement word and its operands

// what, and below it the line that is being read with a mark under the last token.
furtherline marked(const std::string& what);

furtherline misplaced(int token);     // a token that cannot stand behind what waits on opstack
furtherline nothingbefore(int token); // an operator or closing bracket where a value was due
furtherline nothingbehind();          // the end of the statement where a value was due
furtherline nothingtouse(int token);  // a word or sign that has found no value at all
furtherline noseparator(int idx);     // a value right behind another
furtherline leftover();               // operands that no operator or statement has taken
furtherline statementform(int token); // how the statement or clause is written; empty if that is not known
