/* interp/scanner.h - statement text to tokens.
 * Owns:    the pushback, the place where the last token began.
 * Callers: polish, and those who read a statement's tail themselves: IF, FOR, CONSTRAINTS, HELP, subscripts.
 * Never:   parses. Every token is a number (see tokens.h) and a symbol index. */
#pragma once

#include "interp/source.h"
#include "interp/tokenstream.h"

#include <cstddef>

struct scannerstate {
    int pushnumber = -1; // one token of pushback; -1: none
    int pushindex = 0;
    char bracket = 0;              // the character of the last bracket token
    size_t start = 0;              // where the last token began: in line.text, or in the stream
    tokenstream* stream = nullptr; // tokens come from here until it is used up; then getline is called
    tokenstream* record = nullptr; // every token scanned is also appended here
};
extern scannerstate scanner;

void scannerreset();                    // empties the pushback
void newtoken(int& number, int& index); // the next token
void pushtoken(int number, int index);  // it will be the next token again
char peekch(); // the character at the cursor, refilling when there is none; text only
char getch();  // the same, and goes on
// A number at the cursor. status: 0 good, -1 bad exponent, -2 no digits.
double getnumber(int& status);

// The rest of the input as text or as tokens alike, for those who look ahead. The pushback must be empty. A
// position is a place in line.text or in the stream.
int skimtoken();                // the number of the next token, which is passed over; makes no temporary
size_t scanposition();          // where the next token will be read
void scanseek(size_t position); // reads on from there
void scancut(size_t from, size_t to); // leaves [from, to) out of what is still to be read
void scanblank(size_t position);      // leaves out the bracket there
void skiplineend();                   // passes over blanks and one line end, if it stands there
void scanforget();                    // nothing before the next token will be read again
