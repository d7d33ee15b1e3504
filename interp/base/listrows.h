/* interp/base/listrows.h - how TYPE shows the kinds of objects.
 * Owns:    one row a type of symbol.
 * Callers: each room adds the rows of its types at start; interp/listing.cpp goes by them.
 * Never:   prints: the routines of the rows do. */
#pragma once

#include "interp/base/symtab.h"

inline constexpr int LISTBUILTIN = -1; // the type of the row for all builtins

struct listingrow {
    int type; // UNKNOWN: a derivative that has a name but has not been made yet
    void (*show)(int idx);
    bool (*isaxis)(int idx); // curves only, else null: listed among AXES and not among CURVES
};
void listingadd(const listingrow* rows, int count);
const listingrow* listingfind(int type); // null if no room has told how to show it
