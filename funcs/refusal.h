/* funcs/refusal.h - what is told behind the words of a refusal: which operand, what it is, what was called.
 * Owns:    nothing.
 * Callers: the call path.
 * Never:   refuses anything itself. */
#pragma once

#include "interp/base/report.h"
#include "interp/base/symtab.h"

// What the operand is that the builtin does not take.
furtherline wrongkind(int entry, const symbol& callee);

// The name is known, but this version has no routine for it.
furtherline notinthisversion(const char* name);

// After an error inside a builtin whose callee stands at polstack position p with n arguments: the call's
// name where the words did not hold it, the shapes given where a shape was refused, functions that stand
// where a number was wanted.
void tellcall(int p, int n);
