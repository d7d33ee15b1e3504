/* interp/assign.h - giving a name, or a part of a matrix, a value.
 * Owns:    the table of left type against right type; what the system does when one of its variables changes.
 * Callers: the rows of `=` and `_`.
 * Never:   copies the value of a temporary: it moves. */
#pragma once

#include "interp/base/symtab.h"

#include <cstdint>

struct assignstate {
    uint8_t effect[SYMTABSIZE]; // by symbol index: what changes with the variable (see assign.cpp); 0 nothing
};
extern assignstate assigns;

void assignstart();                // finds the variables that have an effect
void assignop(int rhs, int lhs);   // releases rhs when it is a temporary
void assignpart(int rhs, int lhs); // lhs of type SUBMTX; its matrix grows as needed

void variablechanged(int idx);     // what follows when a variable of the system has got a new value; others: nothing

// Console colour number of a colour of the language; 15 for what is none.
int consolecolour(double colour);
