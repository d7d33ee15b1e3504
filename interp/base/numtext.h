/* interp/base/numtext.h - a double as text in a given number of positions.
 * Owns:    the number format parsed from NFORMAT.
 * Callers: listing, string operators, axis labels, reports.
 * Never:   prints. */
#pragma once

#include <cstdint>
#include <string>

struct numberformat {
    int16_t intpos = -1, fracpos = 8, leadmode = 0, trailmode = 0, smalldigits = 2, forceexp = 0;
    std::string fmttext; // a printf-like format of the user's own, checked; empty when the fields hold
};
extern numberformat nformat;

void parsenformat(const char* text); // error "Illegal nformat string"
// buf takes the text (room for 64 characters and the positions asked for); the fields are those of
// numberformat.
void numtext(char* buf, double x, int intpos, int fracpos, int leadmode, int trailmode, int smalldigits,
             int forceexp);
std::string numstring(double x); // by the current NFORMAT
std::string numstring(double x, const numberformat& f);
