/* shell/lineinput.h - one line from the keyboard, with the log as history, and the line editor.
 * Owns:    the painting of text under edit, the lines typed before.
 * Callers: the console hooks.
 * Never:   knows a statement. */
#pragma once

#include <string>

// Prints the prompt and reads a line. False at the end of input. A break drops the line (recoveryjump 5).
bool lineinput(const char* prompt, std::string& text);

// The line editor on text. False where there is no screen for it.
bool lineeditor(std::string& text);

void inputcolours(const char* in, const char* out); // attributes of what is typed and of what is printed
