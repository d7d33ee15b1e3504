/* funcs/deriv.h - symbolic differentiation: the tree of a derivative, stored as a user function of its own
 * name. Owns:    the rules of differentiation and the simplifying constructors. Callers: the evaluator, TYPE
 * and the solvers, by name; each derivative is made at most once until it is deleted. Never:   evaluates, but
 * for constants. */
#pragma once

// The function ".f.x"; error unless f is a user function.
int makederiv(int f, int x);
// Builds the undefined symbol idx whose name is a derivative's. When what it derives from is no function: an
// error, or with quiet set nothing.
void derivfind(int idx, bool quiet);
