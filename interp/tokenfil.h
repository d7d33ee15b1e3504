/* interp/tokenfil.h - the vocabulary, read at start from TOKEN.FIL.
 * Owns:    the three token tables.
 * Callers: the session start reads; the parser looks up.
 * Never:   has a vocabulary of its own: without the file nothing runs. */
#pragma once

#include "interp/base/tokens.h"

#include <cstdint>
#include <string>

struct tokentablestate {
    int16_t
        row[MAXTOKEN + 1]; // of the pairing table, with this token on top of opstack; below 1: never there
    int16_t col[MAXTOKEN + 1];   // of the pairing table, with this token current; 0: acts at once
    int16_t pcase[MAXTOKEN + 1]; // process case
};
extern tokentablestate tokentables;

// Enters the vocabulary of the file at path into symtab and the tables. False when the session cannot start;
// failure is then the text for the console ("Cannot open file: ...", "Illegal ...!", "bad TOKEN.FIL file"
// with the line).
bool symtabinit(const char* path, std::string& failure);

const char* tokenword(int token); // its keyword or sign; "" for names, numbers, strings and the end
