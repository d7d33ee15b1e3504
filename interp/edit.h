/* interp/edit.h - EDIT: statements, objects and files given back for correction.
 * Owns:    the name of the file edited last.
 * Callers: the statement EDIT.
 * Never:   reads a key: the line editor and the text editor are the console's. */
#pragma once

#include <string>

struct editstate {
    std::string name; // path of the file edited last by EDIT FILE; empty: none yet
};
extern editstate editing;

// EDIT: the text of an object, or of the statement before (0), comes up in the line editor.
[[noreturn]] void edit(int symbol);
void fileedit(int symbol); // EDIT FILE; 0: no name given
