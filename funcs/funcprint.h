/* funcs/funcprint.h - a tree as the text of its definition.
 * Owns:    the texts of the operators and the rules of parentheses.
 * Callers: TYPE, SAVE, the statement editor, reports that name derivatives.
 * Never:   prints: it returns text. */
#pragma once

#include <string>

// The definition of function or initial value f into buffer. A text that would pass size - 11 characters ends
// in "[TOO BIG!]".
void funcprint(int f, char* buffer, int size);
inline constexpr int FUNCPRINTSIZE = 1000, FUNEDITSIZE = 201; // buffers of TYPE and SAVE, and of the editor

// The same at full length. With exact set, constants take as many digits as they need to be read back as the
// same number, and products and sums keep the parentheses that make the same tree: the text to save or to
// compile.
std::string functext(int f, bool exact);
std::string treetext(int ref, int f);    // one expression in the body of f (f 0: no formals)
std::string derivtext(const char* name); // ".M.T" as "M'T", "..M.T.X" as "M'T'X"; other names as they stand
