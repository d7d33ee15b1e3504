/* funcs/derivimpl.h - what the differentiator and its rules share.
 * Owns:    nothing. Callers: funcs/deriv*.cpp alone. Never: included elsewhere. */
#pragma once

inline constexpr int MAXCALLARGS = 31;

struct derivcall {
    int code;             // the builtin's code
    int callee;           // its symbol
    int node;             // the call node
    int n;                // arguments given
    int arg[MAXCALLARGS]; // their references
};

int diff(int ref, int x); // within the differentiation that runs
int diffbuiltin(const derivcall& call, int x);
