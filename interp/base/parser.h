/* interp/base/parser.h - the stacks and flags that a running statement shares with every room.
 * Owns:    opstack, polstack, the argument counts, the scalar stack and the statement flags; the clause
 * variables. Callers: polish and process work on them; statement handlers and the evaluator read and pop.
 * Never:   decides anything: the pairing table and the handlers live in interp/. */
#pragma once

#include <cstdint>

inline constexpr int OPSTACKSIZE = 200, POLSTACKSIZE = 1200, ARGSTACKSIZE = 16, SCALARSTACKSIZE = 1200;

struct parserstate {
    int16_t opstack[OPSTACKSIZE];       // waiting tokens; [0] is the bottom token 34
    int oplevel;                        // top of opstack; opstack[1] tells which statement runs
    int16_t polstack[POLSTACKSIZE + 1]; // operands: symbol indices; negative: minus a scalar stack index
    int poltop;                         // -1 when empty
    int16_t argcount[ARGSTACKSIZE + 1]; // operands inside each open bracket
    int argptr;                         // base 0
    int closed; // 1 right behind a closing bracket: the list just closed is argcount[argptr + 1]
    double scalar[SCALARSTACKSIZE + 1]; // 1-based
    int scalartop;                      // the next free cell; 1 when empty
    int token;                          // the parser's current token
    uint32_t statement;                 // counts statements: tells what an earlier one left behind
    int matrixiflevel;
    int funcmode;      // 0 statement; 1 INITIAL, -1 FUNCTION being compiled
    bool treegarbage;  // trinode space may be reclaimed
    bool interrupted;  // Q was pressed during long work
    bool reporttoggle; // R: turns the report level
    bool assigned;     // an assignment was done in this statement
    bool debugsw;
    int16_t casesw; // shadow of CASESW, taken at each statement
};
extern parserstate parser;

void parserreset();       // the state in which a statement begins
int polpop();             // error when empty
void polpush(int idx);    // error when full
void oppush(int token);   // error when full
int scalarpush(double x); // returns minus the cell, as polstack holds it; error when full
inline int opcommand() {
    return parser.oplevel >= 1 ? parser.opstack[1] : 0;
} // the statement's first stacked token
inline int argnumber() {
    return parser.argcount[parser.argptr + parser.closed];
} // operands of the closed or current list

// Clause variables; an absent clause is -1 (integers), MAXPOS (doubles), 0 (symbols) unless told.
struct clausestate {
    int16_t insym;
    int16_t placex, placey, linetype, pointtype, pointfont, font, labelfont, labelmatrix, colorn, wclip;
    int16_t pointcolor, linecolor, labelcolor; // COLOR; colorn is its last number
    int16_t pointsizes;                        // the matrix of PTSIZE, for which pointsize is -2
    double linedash[5];                        // seg1, gap, seg2, tick1, tick2
    double linethick, linefill;                // -1
    double to[2][2];                           // the ends of the TO clauses
    double pointsize, textsize, textshift, textangle, labelsize, atx, aty, offsetx, offsety, priority;
    int16_t adjust[4], format[6];
    int16_t unitat, unitoffset, unitsize, unitlabelsize;
    int16_t conset, fileflag, toclauses, fitcount;
};
extern clausestate clause;
void clausereset();

// One row a process case; the room that serves the statement owns the routine.
struct processop {
    int token;      // already popped
    int ptop, p2nd; // the two topmost operands, 0 if there is none; still on polstack
};
struct processrow {
    int pcase;
    void (*handler)(const processop& op);
};
void processadd(const processrow* rows, int count); // at start
extern processrow processtable[68];
