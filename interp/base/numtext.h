/* interp/base/numtext.h - a double as text in a given number of positions.
 * Owns:    the number format parsed from NFORMAT.
 * Callers: listing, string operators, axis labels, reports.
 * Never:   prints, but for the warning of a format that has no positions. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/* intpos 0 or more is the fixed form: that many positions before the point and fracpos behind it. A negative
 * intpos is a floating form of fracpos significant digits, which differ in what they do with a number that
 * does not fit in these positions:
 *   -1  all positions are filled and the exponent tells the rest    12345679E4
 *   -2  the point stands before the first digit                     .12345679E12
 *   -3  the point stands behind the first digit                     1.2345679E11
 *   -4  as -3, for every number that has an exponent at all         1.2E1 for 12 */
struct numberformat {
    int16_t intpos = -1, fracpos = 8, leadmode = 0, trailmode = 0, smalldigits = 2, forceexp = 0;
    std::string fmttext; // a printf-like format of the user's own, checked; empty when the fields hold
};
extern numberformat nformat;

void parsenformat(const char* text); // error "Illegal nformat string"; the older format stays in force then
// buf takes the text (room for 64 characters and the positions asked for); the fields are those of
// numberformat.
void numtext(char* buf, double x, int intpos, int fracpos, int leadmode, int trailmode, int smalldigits,
             int forceexp);
std::string numstring(double x); // by the current NFORMAT
std::string numstring(double x, const numberformat& f);

/* For those who write many numbers in one format: a format with no positions is told of once, and the text
 * goes to a buffer of the caller's. */
numberformat numusable(const numberformat& f);               // warns and gives one position if there is none
size_t numroom(const numberformat& f);                       // characters that any number may take
size_t numwrite(char* buf, double x, const numberformat& f); // of a usable format; returns the length
