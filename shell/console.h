/* shell/console.h - the terminal: characters out, keys in, a screen that can be painted.
 * Owns:    the modes of the terminal, the keys typed ahead, the place of the cursor, the break flag.
 * Callers: the line input, the line editor, the help viewer; main starts and closes it.
 * Never:   knows what the keys mean. One file for each platform stands behind this header. */
#pragma once

#include <cstddef>
#include <string>

// Keys beyond characters: 256 plus the scan code of the PC keyboard.
enum conkeycode {
    KEYBREAK = -3,   // control-C while waiting
    KEYRESIZED = -2, // the window has changed its size while waiting
    KEYNONE = -1,
    KEYEND = 0, // of input: the terminal is gone
    KEYENTER = 13,
    KEYESC = 27,
    KEYF1 = 256 + 59,
    KEYHOME = 256 + 71,
    KEYUP = 256 + 72,
    KEYPGUP = 256 + 73,
    KEYLEFT = 256 + 75,
    KEYRIGHT = 256 + 77,
    KEYENDKEY = 256 + 79,
    KEYDOWN = 256 + 80,
    KEYPGDN = 256 + 81,
    KEYINSERT = 256 + 82,
    KEYDELETE = 256 + 83
};

struct consolestate {
    bool screen = false; // keys come one by one and the screen can be painted; false: plain text in and out
    bool inputtty = false, outputtty = false; // standard input and output are terminals
    bool colours = false;                     // attributes may be written
    int columns = 80, rows = 25;
    int column = 0; // of the cursor, from 0, as far as conwrite can know
};
extern consolestate con;

void constart(bool plain); // plain: a batch, no screen whatever the terminal is
void conclose();           // gives the terminal back; may be called twice

void conwrite(const char* text, size_t length); // text with plain line feeds
void conflush();
bool conbreak(); // control-C was pressed since the last call

// One key, waiting for it; or, without waiting, a key that was pressed alone and is no text: Q, R and the
// keys that print nothing. What else is typed while a statement runs is kept for the next line.
int conkey(bool wait);
bool conplainline(std::string& text); // without a screen: one line of standard input; false at its end

// The character at pos, which moves behind it; input is UTF-8, and a stray byte stands for itself.
unsigned concharacter(const char* text, size_t length, size_t& pos);
int conwidth(const char* text, size_t length); // columns that a text takes

// Only with a screen.
void consetxy(int column, int row); // from 1; within a saved screen
void conmove(int column, int rows); // rows down (up: negative) from here, to a column from 0
void conclearbelow();               // from the cursor to the end of the screen
void conclear();
void conattr(const char* attribute); // "" plain, else the parameters of a graphic rendition, "7" inverse
void conscreensave();                // another, empty screen, until conscreenrestore
void conscreenrestore();
void conbell();

void conreleaseterminal(); // another program takes the terminal for a while
void contaketerminal();
