/* funcs/valueimpl.h - what the files of the evaluator share.
 * Owns:    the cells and entries of a frame while it is built.
 * Callers: value.cpp and valuesum.cpp alone. */
#pragma once

#include "funcs/value.h"
#include "interp/base/parser.h"

// Codes of builtins that the evaluator serves itself.
inline constexpr int CODEABS = -23, CODEKREAD = -78, FIRSTNUMBERCODE = -400, CODEINTEGRAL = -500,
                     CODEEVAL = -501, CODESUM = -502, CODEROOT = -503, CODEPRODUCT = -504, CODETYPEOF = -505,
                     FIRSTVALUECODE = -600;

inline constexpr const char* MATRIXMISUSE = "illegal use of matrix in user function";

// The cells of a frame; a recursion that fills them ends as one that fills the machine stack.
inline int pushcell(double x) {
    if (parser.scalartop > SCALARSTACKSIZE) stackexhausted();
    parser.scalar[parser.scalartop] = x;
    return -parser.scalartop++;
}
inline void pushentry(int entry) {
    if (parser.poltop + 1 >= POLSTACKSIZE) stackexhausted();
    parser.polstack[++parser.poltop] = int16_t(entry);
}

// The stacks' tops as they were, restored on leaving.
struct stackmark {
    int poltop = parser.poltop, scalartop = parser.scalartop;
    ~stackmark() {
        parser.poltop = poltop;
        parser.scalartop = scalartop;
    }
};

double evalscalar(int ref, int p);              // a matrix is refused
void checkcount(int callee, int n);             // of a builtin's arguments
double operatorcall(int code, int call, int p); // SUM, PRODUCT, ROOT, INTEGRAL, EVAL
