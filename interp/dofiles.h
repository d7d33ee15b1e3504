/* interp/dofiles.h - where statement text comes from: do-files, texts, FOR loops, the keyboard at the bottom.
 * Owns:    the do-stack, the current source, and the refilling of the line (getline of interp/source.h).
 * Callers: DO and FOR push sources, the session pushes the start-up files and drops all after an error.
 * Never:   looks inside a statement, except for the braces around the body of a FOR. */
#pragma once

#include "interp/loopcode.h"
#include "interp/scanner.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

// Lines of a file that has been read whole.
struct textlines {
    std::string content;
    size_t pos = 0;
    int number = 0;       // of the line read last, from 1
    bool midline = false; // the last piece stopped inside a line
};

// Reads the next line, or as much of it as size - 1 characters hold. Leading and trailing blanks and carriage
// returns are dropped. Within 20 characters of the limit the piece ends before the first character that
// cannot be part of a number; the rest is the next piece. Returns the length, -1 at the end.
int readline(std::string& buf, int size, textlines& in);

bool readwhole(FILE* file, std::string& content);       // false if reading fails
bool readwhole(const char* path, std::string& content); // false if it cannot be opened or read

enum class sourcekind { keyboard, file, text, loop };

// A FOR loop that is running.
struct forloop {
    std::string name;       // of the variable, should the body delete the symbol
    int var = 0;            // symbol of the variable
    int values = 0;         // symbol of the matrix of values
    size_t index = 1;       // 1-based number of the current element
    size_t limit = 0;       // number of elements at the start
    tokenstream body;       // what is replayed at each pass
    std::vector<int> lines; // line of the do-file of each token
    loopcodeptr code;       // for some or all of its statements, once it has proved to be worth it
    std::string text;       // replayed in place of the tokens, when they depend on CASESW; else empty
};

struct inputsource {
    sourcekind kind = sourcekind::keyboard;
    std::string name;              // of a do-file, or of the string whose text runs
    textlines in;                  // a do-file
    std::unique_ptr<forloop> loop; // a FOR loop
    bool ended = false;            // its text is used up, or RETURN was performed
    // What the source below was reading when this one opened.
    std::string savedline;
    size_t savedcursor = 0;
    tokenstream* savedstream = nullptr;
};

struct dofilestate {
    std::vector<inputsource> stack; // the running source is the last; none: the keyboard
    int echodo = 0, dostep = 0;     // shadows of ECHODO and DOSTEP
    bool closed = false;            // in a batch: no keyboard below the sources
};
extern dofilestate dofiles;

void dofilesreset();
void pushfile(const char* name, std::string content);
void pushtext(const std::string& text);
void popsource();
void popallsources();
forloop* runningloop(); // null unless a FOR loop is the current source
bool nextpass();        // turns it to its next element; false when there is none

// Pushes the source that symbol names: KLINE one line from the keyboard, a string variable its text, else a
// do-file. The symbol is released. Error: "couldn't open DO file %s".
void dofile(int symbol);
// FOR: takes the variable and the matrix from polstack and reads the body, whose bracket is the next token.
void forop();

// The do-file of this name, whatever the case of its letters; with ".do" behind it where only that exists.
std::string dofilepath(const std::string& name);
const char* dofiledirectory(); // DOFILEDIR, or the default directory of files

// True if what runs now was typed at the keyboard, whatever loops it runs in.
bool typedbyhand();
// "NAME.do, line N" of the innermost do-file, and from where it was called; empty when there is none.
std::string sourceplace();
