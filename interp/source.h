/* interp/source.h - the text that statements are read from.
 * Owns:    the line buffer and its read position, the two lines before it, the prompt.
 * Callers: the scanner reads; IF, FOR and RETURN move the position or cut text; polish sets the prompt.
 * Never:   knows a token. */
#pragma once

#include <cstddef>
#include <string>

struct linestate {
    std::string text;     // statement text; each line read ends with a carriage return
    size_t cursor = 0;    // read position; at the end of text the next look at a character calls getline
    std::string prevline; // the two lines completed before
    std::string lastline;
    const char* prompt = "* ";
    bool keepline = false; // text must keep what it holds: getline appends, and cursor goes on there
    size_t carry = 0;      // length of the text held in front of the line being read
    const char* open =
        nullptr;    // what has been begun in an earlier line and must end: "a string"; null: nothing
    int opened = 0; // the line of the do-file that it was begun in; 0 for typed lines
    int depth = 0;  // frames on the do-stack: 0 while the keyboard is the source
};
extern linestate line;

int sourceline(); // the line of the do-file that was read last; 0 for other sources

// What may run over several lines, for the message should the input end inside it.
struct openpart {
    const char* const before = line.open;
    const int beforeopened = line.opened;
    explicit openpart(const char* what) {
        line.open = what;
        line.opened = sourceline();
    }
    ~openpart() {
        line.open = before;
        line.opened = beforeopened;
    }
    openpart(const openpart&) = delete;
    openpart& operator=(const openpart&) = delete;
};

// Refills line (or turns scanner.stream to its next pass): on return a character or token can be read. Called
// only with nothing left to read. Does not return when the input has ended for good.
void getline();

// RETURN: nothing more is read from the current do-file, or the running FOR loop makes no further pass.
void sourcereturn();
