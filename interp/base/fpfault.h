/* interp/base/fpfault.h - floating-point faults: repaired, counted, told of, never fatal.
 * Owns:    the counters of the running statement and the limit of messages (MATHEX).
 * Callers: all arithmetic on the user's numbers; fpclear and fpsummary belong to the statement loop.
 * Never:   traps: results are tested. Every value that the system keeps is finite. */
#pragma once

#include "interp/base/machine.h"

#include <cmath>

enum fpkind { FPDIVZERO, FPZERODIV, FPOVERFLOW, FPUNKNOWN };

struct fpstate {
    unsigned total = 0, overflow = 0, divzero = 0, zerodivzero = 0, unknown = 0;
    int limit = 0; // messages in a statement, from MATHEX
};
extern fpstate fp;

// Counts a fault, prints its message within the limit, gives MAXPOS or MAXNEG by the sign.
[[gnu::cold]] double fpfault(fpkind kind, bool negative);
[[gnu::cold]] double fprepair(double result);         // of a non-finite sum, product or power
[[gnu::cold]] double fprepairdiv(double x, double y); // of a non-finite x/y
// A domain or range fault of a library routine: "matherr: " kind "in " name; repaired value returned.
enum matherrkind { MEDOMAIN, MESING, MEOVERFLOW, MEUNDERFLOW, MELOSS };
[[gnu::cold]] double matherr(matherrkind kind, const char* name, double value);

inline bool fpfinite(double x) { return std::fabs(x) <= MAXPOS; }
inline double fpcheck(double result) { return fpfinite(result) ? result : fprepair(result); }
inline double fpdiv(double x, double y) {
    const double r = x / y;
    return fpfinite(r) ? r : fprepairdiv(x, y);
}

void fpinit();
void fpclear();
void fpsummary(bool reset);
