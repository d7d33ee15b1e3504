/* interp/datafiles.h - numbers and texts from data files and the keyboard.
 * Owns:    the builtins READ, READON, KREAD, KREADS, READCSV, CSVNAMES, CSVTEXT; where READON stopped in a
 * file. Callers: the call path, by the rows; the session's start. Never:   knows how a number is written:
 * that is values/numread.h. */
#pragma once

#include <cstdint>
#include <string>

struct readonslot {
    std::string path; // empty: free
    int64_t offset;
};
struct readonstate {
    readonslot slot[3];
};
extern readonstate readon;

void datafilesstart(); // forgets READON's places; adds the rows
void keyreadrows();    // of KREAD and KREADS
void csvrows();        // of READCSV, CSVNAMES and CSVTEXT

// The data file that an operand stands for: a string's text, else the symbol's name with ext where it has
// none, below FILEDIR. A name is typed in any case and read in capitals: where no file has it so, one in
// small letters is taken.
std::string datapath(int idx, const char* ext);
bool namesfile(int idx); // is the operand a string or a name?
