/* interp/disknames.h - what SAVE and USE share about names and definitions.
 * Owns:    the file name of a save file; the text of a definition as it is saved, checked and renamed.
 * Callers: SAVE and USE alone.
 * Never:   touches a file. */
#pragma once

#include <string>

// The save file that symbol name stands for: a string's text, otherwise its own name; empty if there is none.
std::string diskpath(int name, const char* directory);

// False for a derivative that is made again when it is wanted, and whose text is too long to be saved.
bool worthsaving(int idx);

bool isobjectname(const std::string& name,
                  int type); // could an object of this type have been saved under it?

// The definition of a function or initial value as it is saved. Warns when it is too long to be read back.
std::string definitiontosave(int idx);
// Is it the definition of an object of this type and name, and no other statement besides?
bool isdefinition(const std::string& text, int type, const std::string& name);
// The name to try when name is in use: an A behind it. A derivative stays one of the same variable: .Y.T,
// .YA.T
std::string nextname(const std::string& name);
std::string trialname(const std::string& name); // a short one of the same form that is not in use
// The same definition under another name; what it calls by its own name goes along.
std::string definitionrenamed(const std::string& text, const std::string& from, const std::string& to);
