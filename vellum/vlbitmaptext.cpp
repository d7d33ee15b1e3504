// Bitmap text: DENQBTXT, DQFONT.
#include "vellum/vlfont.h"
#include "vellum/vlpicture.h"
#include "vellum/vlraster.h"

#include <algorithm>
#include <cstring>

namespace {

// One glyph with its lower left corner at x, y, pixels of the target's root.
void paint(const vlbitmapglyph& g, int x, int y, int fg, int bg) {
    const int w = g.numbers[0], h = g.numbers[1];
    const vlpatch* root = vlrootof(vl.patch);
    vlcursorhold hold;
    if (!(root->flags & VLMEMORY) && vl.ops && vl.ops->plotbitarray) {
        vl.ops->plotbitarray(g.bits.data(), w, h, x, y, fg, bg, 0);
        return;
    }
    for (int row = 0; row < h; row++) {
        for (int column = 0; column < w; column++) {
            const int bit = row * w + column;
            const int colour = g.bits[size_t(bit) / 8] >> (7 - bit % 8) & 1 ? fg : bg;
            const int px = x + column, py = y + h - 1 - row;
            if (colour >= 0 && px >= 0 && px < root->w && py >= 0 && py < root->h)
                vlpixeldot(vl.patch, px, py, colour);
        }
    }
}

void paintglyph(const vlbitmapglyph& g, int x, int y, const vlbitmaptext& text) {
    if (!g.present || (text.fg == -1 && text.bg == -1)) return;
    const int baseline = g.numbers[2];
    paint(g, x, y - (g.numbers[1] - baseline), text.fg, text.bg);
}

} // namespace

void vlplaybitmaptext(const vlbitmaptext& text) {
    if (!vl.patch || !vl.live) return;
    const vlbitmapfont font = vlfindbitmapfont(text.font);
    const int edge = vlrootof(vl.patch)->w;
    int x = text.x, y = text.y, last = 0;
    vlbitmapglyph g;
    for (const char c : text.text) {
        if (c == '\n') y -= font.height + text.yspace;
        if (c == '\r') x = text.x;
        if (c == '\b') x -= last;
        if (uint8_t(c) < 32) continue;
        if (x >= edge) break;
        vlreadbitmap(font, uint8_t(c), true, g);
        const int width = g.present ? g.numbers[0] : font.width;
        paintglyph(g, x + g.numbers[7], y, text);
        last = g.numbers[7] + width + g.numbers[8] + text.xspace;
        x += last;
    }
}

void DENQBTXT(const char* s, int fg, int bg, int font, int x, int y, int xspace, int yspace) {
    vlflushall();
    const vlbitmaptext text{s, x, y, fg, bg, font, xspace, yspace};
    vl.text.curbfont = font;
    if (vl.open) {
        vlputmove((x - vl.pix.ox) / vl.pix.sx, (y - vl.pix.oy) / vl.pix.sy);
        vlputbitmaptext(text);
    }
    vlplaybitmaptext(text);
}

void DQFONT(double out[10], int c, int font) {
    if (font == -1 && vl.text.curfont <= -2 && vl.text.curfont >= -14)
        vlerror("\nDENQBTXT: Font info unavailable for current (hardware) font");
    const vlbitmapfont found = vlfindbitmapfont(font == -1 ? vl.text.curbfont : font);
    vlbitmapglyph g;
    vlreadbitmap(found, c, false, g);
    out[0] = found.number;
    for (int i = 0; i < 9; i++) out[i + 1] = g.numbers[i];
}
