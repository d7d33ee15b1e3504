/* plot/askuser.h - a question at the console, answered by one key.
 * Owns:    how it is put. Callers: statements that would lose something of the user's.
 * Never:   waits in a batch: the answer is then that of any key. */
#pragma once

struct userchoice {
    char key; // '*': any other key
    const char* answer;
};
// Prints "##title: text" and the choices; returns the number of the one taken.
int askuser(const char* title, const char* text, const userchoice* choices, int count);
