/* funcs/define.h - FUNCTION and INITIAL: the parser's reductions become nodes.
 * Owns:    the state of the definition that is being compiled; the names of derivatives.
 * Callers: process(), for every reduction while parser.funcmode is not 0; the differentiator uses the names.
 * Never:   evaluates or simplifies, but for the sign of a constant. */
#pragma once

#include <string>

struct definestate {
    bool headerpending = false; // the header F(...) has not been reduced yet
    bool headerseen = false;    // a header has been reduced; a second one is an error
    int oldtype = 1;            // what the name was before this definition; 1 when new
    int headernode = 0;         // reference of the header that is being filled
    int function = 0;           // symbol that is being defined, once the header is reduced
};
extern definestate definition;

void definestart();                     // at start; adds the process case that opens a definition
void definitionbegin(int mode);         // 1 INITIAL, -1 FUNCTION: sets parser.funcmode and the flags
void funcprocess(int token);            // one reduction of a definition; operands on parser.polstack
int formalcode(int ref, int headerref); // FUNCTION: a formal's symbol becomes 32000 + k; else ref

/* The name is the relation: ".F.X" is dF/dX and "..F.X.Y" its derivative by Y. */
std::string derivname(int f, int x); // ".f.x"; error unless both are names
struct derivparts {
    std::string function, variable;
};
bool derivsplit(const char* name, derivparts& parts); // false if name is no derivative's
