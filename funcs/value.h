/* funcs/value.h - the evaluator: the number that a call yields.
 * Owns:    the registers of the running evaluation and the limit of its depth.
 * Callers: solvers, operators over rows, the call path: everyone who wants the value of F at given arguments.
 * Never:   allocates or looks up a name on the scalar path. */
#pragma once

#include "interp/base/parser.h"

#include <cstddef>
#include <cstdint>

struct harray;

struct evalstate {
    int matrixflag = 0;               // after an operand was read: its symbol if it was a matrix, else 0
    int evalargs = 0;                 // arguments of the call being set up
    int evaltype = 0;                 // type code of its callee
    uint32_t evaldepth = 0;           // nesting of nodes
    bool odeactive = false;           // a stepper runs: initial values and their derivatives are its states
    const char* stacklimit = nullptr; // machine addresses below this are not to be used
    bool flat = true; // compiled code may be used; off while an evaluation is repeated for its messages
};
extern evalstate eval;

// Defaults. stackbytes: the machine stack that may be used below the caller's frame.
void evalstart(size_t stackbytes = size_t(1) << 20);

/* The value of the call laid out on polstack at position p: the callee's symbol there, its arguments above it
 * up to the top (symbols; or minus cells of the scalar stack). The entry of a user function keeps the result.
 * Protocol: const int p = ++parser.poltop; parser.polstack[p] = f; polpush(scalarpush(x)); ... // each
 * argument double r = value(p); parser.scalartop -= nargs; parser.poltop -= nargs; // and one more when f is
 * finished with */
double value(int p);
double callvalue(int f, const double* args, int nargs); // the whole protocol for numbers

double evalref(int ref, int p);     // a reference of a tree whose call stands at p; sets eval.matrixflag
double evalsymbol(int idx);         // reads a symbol as a scalar or flags a matrix
double scalararg(int entry);        // a polstack entry that must be a defined scalar
harray* matrixarg(int entry);       // a polstack entry that must be a matrix, "%s is not a matrix"
void* matrixorstringarg(int entry); // a matrix or a string matrix
double& elemref(harray* m, double row, double col); // truncated subscripts, checked against the shape

bool formaliscalled(int f, int k); // is formal k of f called in its body, or passed on to be called?
bool calledassolution(int idx);    // does a call of idx now mean the solution of a differential equation?

// Error "stack space too low; ..." when less than a safe rest of the machine stack is left.
[[noreturn]] void stackexhausted();
inline bool stacklow() {
    const char here = 0;
    return &here < eval.stacklimit;
}
inline void stackcheck() {
    if (stacklow()) stackexhausted();
}
