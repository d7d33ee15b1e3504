/* interp/submatrix.h - parts of a matrix: subscripts, ROW and COL.
 * Owns:    the SUBMTX temporaries, which stand for a part that will be assigned to or deleted.
 * Callers: the call path for A(i,j), the rows of ROW and COL, DELETE, assignment, the statement loop.
 * Never:   assigns. */
#pragma once

#include "interp/base/symtab.h"

// What a SUBMTX entry stands for: the matrix and the subscript matrices by symbol, 0 for all rows or columns.
struct submtxparts {
    int matrix, rows, cols;
};
submtxparts submtxof(int idx);

void matrixhandler(int base, int symidx); // A(...) with A at polstack[base]: a target or a value
void submtxrelease();                     // before a statement: lets go of those of the statement before
void submtxdelete(int idx);               // DELETE of rows and columns

// A subscript outside the matrix: its "row" or "column" x.
[[noreturn]] void badsubscript(int matrix, const char* what, double x);
void assignelement(int matrix, double row, double col, double value); // matrix(row,col) = value
