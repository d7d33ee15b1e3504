#include "shell/linebuffer.h"

#include "shell/console.h"

namespace {

constexpr int control(char letter) { return letter - 'A' + 1; }

bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

size_t before(const linebuffer& b, size_t pos) {
    if (pos > 0) pos--;
    while (pos > 0 && continues(b.text[pos])) pos--;
    return pos;
}

size_t behind(const linebuffer& b, size_t pos) {
    if (pos < b.text.size()) pos++;
    while (pos < b.text.size() && continues(b.text[pos])) pos++;
    return pos;
}

bool printable(int key) { return key >= ' ' && key < 256 && key != 127; }

void put(linebuffer& b, int key) {
    // In replace mode a character goes when the first byte of its successor comes.
    if (!b.insert && b.pos < b.text.size() && !continues(char(key)))
        b.text.erase(b.pos, behind(b, b.pos) - b.pos);
    b.text.insert(b.pos++, 1, char(key));
}

void rubout(linebuffer& b) {
    const size_t from = before(b, b.pos);
    b.text.erase(from, b.pos - from);
    b.pos = from;
}

// One row up or down, to the character nearest to the same column.
void changerow(linebuffer& b, int rows) {
    const textplace from = placeof(b.text, b.pos, 0, b.width);
    size_t best = b.pos;
    for (size_t pos = 0;; pos = behind(b, pos)) {
        const textplace at = placeof(b.text, pos, 0, b.width);
        if (at.row == from.row + rows && at.column <= from.column) best = pos;
        if (pos >= b.text.size()) break;
    }
    b.pos = best;
}

// Keys that move and delete in the same way wherever text is edited.
bool commonkey(linebuffer& b, int key) {
    switch (key) {
    case KEYLEFT: b.pos = before(b, b.pos); return true;
    case KEYRIGHT: b.pos = behind(b, b.pos); return true;
    case KEYENDKEY: b.pos = b.text.size(); return true;
    case KEYDELETE: b.text.erase(b.pos, behind(b, b.pos) - b.pos); return true;
    case '\b': rubout(b); return true;
    case control('A'): b.pos = 0; return true;
    case control('B'): b.pos = before(b, b.pos); return true;
    case control('E'): b.pos = b.text.size(); return true;
    case control('F'): b.pos = behind(b, b.pos); return true;
    case control('K'): b.text.erase(b.pos); return true;
    case control('U'):
        b.text.erase(0, b.pos);
        b.pos = 0;
        return true;
    case control('W'): {
        size_t from = b.pos;
        while (from > 0 && b.text[from - 1] == ' ') from--;
        while (from > 0 && b.text[from - 1] != ' ') from--;
        b.text.erase(from, b.pos - from);
        b.pos = from;
        return true;
    }
    default: return false;
    }
}

} // namespace

editresult editorkey(linebuffer& b, int key) {
    if (key == KEYRIGHT && b.pos == b.text.size()) b.text += ' ';
    if (commonkey(b, key)) return editresult::going;
    switch (key) {
    case KEYENTER: return editresult::done;
    case KEYESC:
        b.text.clear();
        b.pos = 0;
        return editresult::dropped;
    case KEYINSERT: b.insert = !b.insert; return editresult::going;
    case KEYUP: changerow(b, -1); return editresult::going;
    case KEYDOWN: changerow(b, 1); return editresult::going;
    case KEYHOME: b.pos = 0; return editresult::going;
    case '\t': key = ' '; break;
    default: break;
    }
    if (!printable(key)) return editresult::ignored;
    put(b, key);
    return editresult::going;
}

editresult inputkey(linebuffer& b, int key) {
    if (commonkey(b, key)) return editresult::going;
    if (key == KEYENTER) return editresult::done;
    if (key == KEYESC) {
        b.text.clear();
        b.pos = 0;
        return editresult::going;
    }
    if (key == '\t') key = ' ';
    if (!printable(key)) return editresult::ignored;
    b.text.insert(b.pos++, 1, char(key));
    return editresult::going;
}

bool wholecharacters(const linebuffer& b) {
    size_t lead = b.pos;
    while (lead > 0 && continues(b.text[lead - 1])) lead--;
    if (lead == 0) return true;
    const unsigned char c = static_cast<unsigned char>(b.text[lead - 1]);
    const size_t needed = c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : 0;
    return b.pos - lead >= needed;
}

textplace placeof(const std::string& text, size_t pos, int start, int width) {
    textplace at{0, start};
    for (size_t k = 0; k < pos;) {
        const size_t from = k;
        concharacter(text.data(), text.size(), k);
        const int columns = conwidth(text.data() + from, k - from);
        if (at.column + columns > width) at = {at.row + 1, 0};
        at.column += columns;
    }
    if (at.column >= width) at = {at.row + 1, 0};
    return at;
}
