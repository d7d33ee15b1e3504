/* interp/base/operand.h - reading the value of an operand.
 * Owns:    the rules of what counts as a scalar or a matrix.
 * Callers: statement handlers, operators, builtins.
 * Never:   copies a matrix; a 1 by 1 temporary is made for a scalar only on demand. */
#pragma once

#include "interp/base/symtab.h"

#include <cstdint>
#include <string>

struct harray; // values/harray.h

bool isscalartype(int type); // CONSTANT, SCALAR, USERFUNCTION, INITIALVALUE
inline bool isscalar(int idx) { return isscalartype(sym(idx).type); }
inline bool ismatrix(int idx) { return sym(idx).type == MATRIX; }
inline bool isstringtype(int idx) { return sym(idx).type == STRINGTYPE || sym(idx).type == TEMPSTRING; }
const char* stringval(int idx); // text of a string entry (never null)

double scalarval(int idx); // scalar class, or the first element of a matrix; else an error
int16_t shortval(int idx); // the same as a whole number; what goes beyond 16 bits is kept at their end
harray* matrixval(int idx,
                  int& temp); // the matrix; for a scalar a 1 by 1 temporary, its index in temp (else 0)
int scalartemp(int idx);      // a 1 by 1 temporary matrix from a scalar-class entry

// How messages speak of an operand; entry as in polstack: negative is a cell of the scalar stack.
std::string nametext(int entry); // "M", "F'X"; "the expression" for a temporary, its digits for a number
std::string kindtext(int entry); // "a 3 by 2 matrix", "a string", "undefined", "a builtin function"...
std::string describe(int entry); // "M is a 3 by 2 matrix", "X is undefined"

// What values/ tells at start, since base cannot see a matrix.
struct operandhooks {
    harray* (*onebyone)(double x);
    double (*first)(const harray* m);      // element (1,1); 0 of an empty matrix
    std::string (*shape)(const symbol& s); // "3 by 2" of a matrix or string matrix
};
extern operandhooks operandfns;
