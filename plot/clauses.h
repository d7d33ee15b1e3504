/* plot/clauses.h - the clauses of plot statements: their cells (base/parser.h) against the records.
 * Owns:    what a clause may hold and how it changes a record. Checks come apart from changes, so that a
 *          statement that is refused has changed nothing.
 * Callers: the statements of this room; TO, which FIT shares.
 * Never:   knows which object a statement means. */
#pragma once

#include "interp/base/parser.h"
#include "interp/base/symtab.h"

#include <string>

struct curve;
struct window;

inline bool given(int cell) { return cell != -1; } // the cells of 16 bits
bool given(double cell);

// Takes the operands of the statement from polstack, the lowest first; they are not released.
struct operandlist {
    int count = 0;
    int at[4] = {}; // no plot statement has more; what is beyond is only counted
};
operandlist takeoperands();
void releaseoperands(const operandlist& list); // and what LABEL and PTSIZE hold

// Warns of each clause that the statement of this token cannot use.
void warnunused(int token);
// Each throws what is wrong with the clauses of the statement, and changes nothing.
void checkcurveclauses(int kind);
void checkplace();
void checkfont(int font, const char* message);
void checksize(double size, const char* what);

void applycurveclauses(curve& c); // the matrices of LABEL and PTSIZE are copied
void applyplace(int16_t& vplace, int16_t& hplace);

// The two TO clauses of WINDOW, FRAME and IMAGE: false if there is none; error "not enough TO clauses".
bool toclauses(double& x1, double& x2, double& y1, double& y2);
void windowtoclause(); // performs a TO of these statements
