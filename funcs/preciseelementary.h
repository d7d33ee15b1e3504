/* funcs/preciseelementary.h - elementary functions and their slopes at about 32 digits, by builtin code.
 * Owns:    which of them are to be had. Callers: funcs/precisevalue.cpp alone. Never: tells of a fault. */
#pragma once

#include "special/doubledouble.h"

/* The function of that code at x, and its derivative there; false where the code is not known or the
 * function has no value, or none of the precision. */
bool preciseelementary(int code, dd x, dd& value, dd& slope);
