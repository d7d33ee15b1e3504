/* special/range.h - results at and beyond the edge of a function's domain.
 * Owns:    nothing.
 * Callers: the routines of special/ and stats/ that return a default with a range warning.
 * Never:   prints; the warning is noted in special/fault.h. */
#pragma once

#include "interp/base/machine.h"
#include "special/fault.h"

#include <cmath>

// Notes that an argument of `name` is out of range and gives the default.
inline double outofrange(const char* name, double result) {
    rangewarn(name);
    return result;
}

// The result as it is, or the largest number of its sign with the range warning when it is infinite.
inline double capped(const char* name, double result) {
    if (std::isinf(result)) return outofrange(name, result > 0 ? MAXPOS : MAXNEG);
    return result;
}

// The same for a computation that marks a pole by what is no number: the warning and 0.
inline double cappedorpole(const char* name, double result) {
    return std::isnan(result) ? outofrange(name, 0) : capped(name, result);
}

// The argument, or for one below the smallest normal number that with the range warning.
inline double normalargument(const char* name, double x) {
    if (x == 0 || !(std::fabs(x) < MINPOS)) return x;
    rangewarn(name);
    return std::copysign(MINPOS, x);
}

inline bool isinteger(double x) { return x == std::floor(x) && std::isfinite(x); }
// The sign (-1)^n for an integer n of any size.
inline double paritysign(double n) { return std::fmod(n, 2) == 0 ? 1 : -1; }
