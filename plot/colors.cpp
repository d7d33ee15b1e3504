#include "plot/colors.h"

#include "interp/base/symtab.h"
#include "plot/colornames.h"
#include "vellum/vellum.h"

#include <algorithm>
#include <vector>

colorstate colors;

namespace {

constexpr int MAXINDEX = 32767; // objects hold 16 bits
std::vector<rgb> kept;          // of the screen, while another device is open; empty without a screen

rgb ofdevice(int c) {
    rgb v{};
    DGETRGB(c, &v.r, &v.g, &v.b);
    return v;
}

// What index c looks like on the screen.
rgb ofscreen(int c) {
    if (colors.ink == INKSCREEN && DDEVICE(nullptr)) return ofdevice(c);
    if (!kept.empty()) return kept[size_t(c) < kept.size() ? size_t(c) : 1];
    const int bits = colortorgb15(c); // no screen: the named colours
    return {(bits >> 10 & 31) / 31.0, (bits >> 5 & 31) / 31.0, (bits & 31) / 31.0};
}

bool iswhite(const rgb& v) { return v.r >= 1 && v.g >= 1 && v.b >= 1; }

// The index on paper of a colour of the screen. Index 1 is what draws on the ground: dark on paper.
int paperindex(int c) {
    if (c < 0 || c == 1) return 1;
    const rgb v = ofscreen(c);
    return colors.ink == INKPAPER && iswhite(v) ? 1 : DRGBCOLOR(v.r, v.g, v.b);
}

bool palettescreen(const vldevice& d) { return d.ispalette == 0 && d.ncolors == 16; }

} // namespace

void colornames() {
    const vldevice* device = DDEVICE(nullptr);
    if (!device) return;
    for (const namedcolor& row : colortable()) {
        const rgb& v = palettescreen(*device) ? row.palette : row.other;
        symbol& s = sym(symtabenter(row.name));
        if (s.type != SCALAR && s.type != UNKNOWN) continue; // the user has made something else of the name
        s.type = SCALAR;
        s.val.rval = DRGBCOLOR(v.r, v.g, v.b);
        colornameset(row.name, int(s.val.rval));
    }
}

void colorskeep() {
    kept.clear();
    if (!DDEVICE(nullptr)) return;
    for (int c = 0; c <= std::min(colors.top, MAXINDEX); c++) kept.push_back(ofdevice(c));
}

void setcolor(int c) {
    switch (colors.ink) {
    case INKMONO: return DCOLOR(1);
    case INKPAPER:
    case INKEXACT: return DCOLOR(paperindex(c));
    case INKSCREEN: return DCOLOR(c < 0 || c > colors.top ? 1 : c);
    }
}

void erasebox(int x, int y, int width, int height, int c) {
    if (width <= 0 || height <= 0) return;
    vlpatch* patch = DPATCH(DSCREENPATCH(), x, y, width, height, 0, nullptr);
    DERASE(patch, c < 0 || c > colors.top ? 1 : c);
    DKILLPATCH(patch);
}

int toRGB15(int c) {
    if (c < 0) return c;
    const rgb v = ofscreen(c);
    const auto bits = [](double part) { return int(part * 31); };
    return bits(v.r) << 10 | bits(v.g) << 5 | bits(v.b);
}

int fromRGB15(int value) {
    if (value < 0) return value;
    if (!DDEVICE(nullptr)) return colorfromrgb15(value);
    return DRGBCOLOR((value >> 10 & 31) / 31.0, (value >> 5 & 31) / 31.0, (value & 31) / 31.0);
}
