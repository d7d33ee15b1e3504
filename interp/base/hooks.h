/* interp/base/hooks.h - calls that must go up the stairs.
 * Owns:    three structs of function pointers, set at start by the rooms above.
 * Callers: lower rooms call; shell/ sets console, interp/ and solvers/ set upper.
 * Never:   holds state. Every pointer has a harmless default, so that a room can be tested alone. */
#pragma once

#include <cstddef>
#include <string>

struct consolehooks {
    void (*write)(const char* text, size_t length); // shows text, line feeds as they stand
    int (*getkey)(bool wait);                       // see getkey in report.h
    bool (*breakpending)();                         // control-C seen since the last call; clears it
    void (*colour)(int in, int out);                // console colour numbers 0..15
    // Puts a question; returns the number (0-based) of the choice taken. In a batch the first choice is
    // taken.
    int (*question)(const char* title, const char* message, const char* const* choices, int nchoices);
    // Prints the prompt and reads one line from the keyboard (no line end in it); false at the end of input.
    bool (*readline)(const char* prompt, std::string& line);
    bool (*lineedit)(std::string& text);       // the line editor on text; false where there is no terminal
    void (*errortext)(const char* text);       // a copy of each error and warning in a batch
    bool (*editfile)(const char* path);        // the platform's text editor; false if it could not be started
    bool (*printfile)(const char* path);       // sends a file unchanged to the printer; false if that failed
    bool (*help)(const char* topic);           // shows a topic of the help; false: there is no help file
    void (*largeblock)(void* p, size_t bytes); // new memory for a large matrix, which large pages may back
};
extern consolehooks console;

struct upperhooks {
    void (*newtoken)(int& number, int& index); // the scanner
    void (*pushtoken)(int number, int index);  // one token of pushback
    void (*subscript)(int base, int symidx);   // matrixhandler: subscripts of a matrix at statement level
    void (*runstatement)(const char* text);    // runs one statement's text now (definitions from save files)
    void (*usequietly)(const char* file);      // USE of a start-up file, without a word if it is missing
    void (*redraw)();                          // automatic redraw after plot objects changed
    bool (*indofile)();                        // statements come from a do-file, not from the keyboard
    void (*shutdowngraphics)();
    void (*nformatchanged)(const char* text);
    void (*displayselect)(const char* name);   // DISPLAY was assigned
    std::string (*nametext)(const char* name); // a symbol's name as it is written: F'X for .F.X
    int (*derivative)(int f, int x);           // see makederiv in funcs/deriv.h; for rooms below it
    // The state of the running integration, or a solution called inside an expression: see solvers/odesetup.h
    bool (*odecall)(int symidx, const double* args, int nargs, double& result);
};
extern upperhooks upper;

void hooksreset(); // the harmless defaults
