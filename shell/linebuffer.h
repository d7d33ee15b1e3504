/* shell/linebuffer.h - a text under edit and what each key does to it.
 * Owns:    the text, the cursor in it, the insert mode.
 * Callers: the line input and the line editor, which paint it.
 * Never:   reads a key or writes to the screen. */
#pragma once

#include <cstddef>
#include <string>

struct linebuffer {
    std::string text; // UTF-8
    size_t pos = 0;   // of the cursor, always at the start of a character
    bool insert = true;
    int width = 79; // columns of a row on the screen, for Up and Down in the line editor
};

enum class editresult {
    going,   // the text or the cursor may have changed
    done,    // ENTER
    dropped, // ESC: the text is blank now
    ignored  // the key has no meaning here
};

// A key of the line editor that opens after an error and by EDIT.
editresult editorkey(linebuffer& b, int key);

// A key while a line is typed: text goes in at the cursor; control-A, E, B, F, K, U, W act as in other
// programs.
editresult inputkey(linebuffer& b, int key);

bool wholecharacters(const linebuffer& b); // false while the bytes of a character are still coming in

// Where the cursor stands when the text begins at column `start` of a row and rows are `width` columns wide.
struct textplace {
    int row, column;
};
textplace placeof(const std::string& text, size_t pos, int start, int width);
