/* funcs/deriv.h - symbolic differentiation.
 * Owns:    derivatives as named user functions: ".F.X" is dF/dX, made at most once until F changes.
 * Callers: the evaluator and onop for names as F'X; FIT, MINIMIZE and the ODE set-up for gradients and
 * Jacobians. Never:   evaluates; an error leaves half-built nodes to the next reclamation and no derivative
 * behind. */
#pragma once

/* Symbol of the derivative of user function f with respect to symbol x, made when it is not there. The
 * derivative takes the same arguments in the same order. Errors: f is no user function; the name is taken; a
 * builtin in f has no derivative. */
int makederiv(int f, int x);

/* Makes the derivative that an undefined symbol names (".F.X"). True when it is defined afterwards. A
 * function part that cannot be differentiated is an error, unless quiet. */
bool derivfind(int symidx, bool quiet);

// The derivative of tree `ref` with respect to symbol x, with the formals of `f`'s header (see
// funcs/trinode.h).
int treediff(int ref, int x, int f);

// Does function f depend on the global symbol x, in its body or through the functions that it calls?
bool functiondepends(int f, int x);

// Does every rule of the table parse, and does each name in it exist? The name that fails, or null. For
// tests.
const char* derivrulescheck();
