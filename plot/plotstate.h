/* plot/plotstate.h - what the statements of this room share among themselves.
 * Owns:    the counter of automatic names.
 * Callers: this room alone; everything else of it is in plotobj.h.
 * Never:   holds a window: those are entries of symtab. */
#pragma once

#include <cstdint>

struct plotstate {
    int16_t autoname = 0; // the last number in the names C1, A2, T3...: one counter for the three letters
};
extern plotstate plotting;

int newautoname(char letter); // enters the next name of the letter that is new, and returns its index

// At start: the rows of each module of this room that has some.
void plotclauserows(); // LINETYPE, COLOR, PTSIZE, ADJUST
void curverows();      // DRAW and the axes
void titlerows();      // TITLE
void windowrows();     // WINDOW, FRAME, IMAGE, the boxes, BLANK
void plotcallrows();   // what a window or a curve holds
void plotkinds();      // how the objects are deleted
void plotsaverows();   // how a window is saved
void plotlistrows();   // how TYPE shows them
