/* interp/matrixtext.h - a numeric matrix laid out in columns.
 * Owns:    the matrix format parsed from MFORMAT.
 * Callers: listing; assignment to MFORMAT.
 * Never:   changes a matrix or keeps one; prints but through the reporting room. */
#pragma once

#include "interp/base/numtext.h"
#include "values/harray.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// In the order of the text of MFORMAT.
struct matrixformat {
    int16_t colwidth = 10; // of a column when colmode is 0
    int16_t colmode = 0;   // 0 colwidth; 3 all columns as wide as the widest needs; other: each as it needs
                           // (2: blanks that the number format puts around a number do not count)
    int16_t intercol = 3;  // blanks between columns
    int16_t endcol = 0;    // blanks behind the last
    int16_t maxcols = 6;   // columns in a printed line; 0 or less: as many as fit
    int16_t rownums = 1;   // rows are numbered
    int16_t wrap = 1;      // further indentation of continuation lines
    int16_t justify = 1;   // 1 right; 2 on the period or the E; 3 on the E; 4 behind the sign; other: left
};
extern matrixformat mformat;

void parsemformat(const char* text); // errors leave the older format in force

struct matrixlook {
    numberformat numbers;
    matrixformat layout;
    int linelen = 80;  // at least 25
    double cutoff = 0; // numbers below this part of the largest print as 0
    bool names = true; // header and row numbers
};
matrixlook matrixlooknow(); // by NFORMAT, MFORMAT, LINELEN, CUTOFF and NAMESW
void matrixprint(const char* name, const harray* m, const matrixlook& look);

// Characters before and behind the place where texts of a column are lined up.
struct fieldextent {
    int before = 0, behind = 0;
};
fieldextent fieldmeasure(std::string_view text, int justify);
// Appends text in a field of width. pointcol is the place (from 0) for the point of alignment where justify
// asks for one; a text that fits in the field but not at this place is moved. One that does not fit shows as
// stars.
void fieldset(std::string& out, std::string_view text, int width, int pointcol, const matrixformat& f);
