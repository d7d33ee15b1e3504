/* funcs/derivtext.h - formulas of derivatives as text, built into simplified trees.
 * Owns:    the reader of formulas: numbers, u v w s t for arguments 1 to 5, builtins by name, + - * / ^ = and
 * brackets. Callers: the rules of builtins (funcs/derivrules.cpp). Never:   meets text of the user's. */
#pragma once

// The tree of `formula` with args[0], args[1]... in the place of u, v...; nargs of them.
int derivformula(const char* formula, const int* args, int nargs);

// Null when the formula parses and each name in it is a builtin; else the place that fails. Builds nothing
// lasting.
const char* derivformulacheck(const char* formula);
