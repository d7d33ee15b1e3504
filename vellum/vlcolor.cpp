#include "vellum/vlpicture.h"

#include <algorithm>
#include <cmath>

namespace {

// What a palette begins with: paper, pen, then the colours that users name.
constexpr vlrgb standard[16] = {
    {1, 1, 1, true},    {0, 0, 0, true},       {1, 0, 0, true},   {0, 0, 1, true},
    {0, 1, 0, true},    {1, 1, 0, true},       {0, 1, 1, true},   {1, 0, 1, true},
    {.5, .5, .5, true}, {.75, .75, .75, true}, {.5, 0, 0, true},  {0, .5, 0, true},
    {0, 0, .5, true},   {.5, .5, 0, true},     {.5, 0, .5, true}, {0, .5, .5, true},
};

struct vlbits {
    int r, g, b;
};

vlbits devicebits() { return {vl.record.rbits, vl.record.gbits, vl.record.bbits}; }

// The layout of a pixel that holds its colour itself, high to low r, g, b.
vlbits bitsofdepth(int depth) {
    switch (depth) {
    case 12: return {4, 4, 4};
    case 15: return {5, 5, 5};
    case 16: return {5, 6, 5};
    default: return {8, 8, 8};
    }
}

uint32_t part(double v, int bits) {
    const double top = (1u << bits) - 1;
    return static_cast<uint32_t>(std::lrint(std::clamp(v, 0.0, 1.0) * top));
}

uint32_t pack(const vlrgb& c, const vlbits& bits) {
    return part(c.r, bits.r) << (bits.g + bits.b) | part(c.g, bits.g) << bits.b | part(c.b, bits.b);
}

double unpart(uint32_t value, int bits) {
    if (bits == 0) return 0;
    const uint32_t top = (1u << bits) - 1;
    return double(value & top) / top;
}

// A device with one part alone shows greys.
vlrgb unpack(uint32_t value, const vlbits& bits) {
    if (bits.g == 0 && bits.b == 0) {
        const double grey = unpart(value, bits.r);
        return {grey, grey, grey, true};
    }
    return {unpart(value >> (bits.g + bits.b), bits.r), unpart(value >> bits.b, bits.g),
            unpart(value, bits.b), true};
}

double distance(const vlrgb& a, double r, double g, double b) {
    return (a.r - r) * (a.r - r) + (a.g - g) * (a.g - g) + (a.b - b) * (a.b - b);
}

int nearestentry(double r, double g, double b) {
    int best = 1;
    double least = 1e9;
    for (size_t i = 0; i < vl.palette.size(); i++) {
        if (!vl.palette[i].set) continue;
        const double d = distance(vl.palette[i], r, g, b);
        if (d < least) {
            least = d;
            best = int(i);
        }
    }
    return best;
}

int directindex(double r, double g, double b) {
    const vlbits bits = devicebits();
    if (bits.g == 0 && bits.b == 0) r = 0.3 * r + 0.59 * g + 0.11 * b;
    const int value = int(pack({r, g, b, true}, bits));
    // The two lowest indices are the paper and the pen, whatever their numbers would show.
    if (value > 1) return value;
    return vl.reserved[0] == value ? 0 : 1;
}

} // namespace

void vlsetcolors() {
    vl.palette.clear();
    vl.reserved[0] = vl.record.ncolors - 1;
    vl.reserved[1] = 0;
    if (!vl.record.ispalette) return;
    vl.palette.resize(size_t(std::max(vl.record.ncolors, 2)));
    std::copy_n(standard, std::min<size_t>(vl.palette.size(), 16), vl.palette.begin());
}

vlrgb vlrgbof(int index) {
    if (!vl.palette.empty()) return vl.palette[size_t(std::clamp<int>(index, 0, int(vl.palette.size()) - 1))];
    if (index == 0 || index == 1) index = vl.reserved[index];
    return unpack(uint32_t(index), devicebits());
}

int vlindexof(double r, double g, double b) {
    return vl.palette.empty() ? directindex(r, g, b) : nearestentry(r, g, b);
}

uint32_t vlpixelof(int index, int depth) {
    if (depth >= 12) return pack(vlrgbof(index), bitsofdepth(depth));
    // An index that the pixel cannot hold is drawn by the pen, never lost.
    return index >= 0 && index < (1 << depth) ? uint32_t(index) : 1;
}

int vlindexofpixel(uint32_t pixel, int depth) {
    if (depth < 12) return int(pixel);
    const vlrgb c = unpack(pixel, bitsofdepth(depth));
    const int index = vlindexof(c.r, c.g, c.b);
    return vl.palette.empty() && index == vl.reserved[0] ? 0 : index;
}

int DRGBCOLOR(double r, double g, double b) {
    r = std::clamp(std::isnan(r) ? 0 : r, 0.0, 1.0);
    g = std::clamp(std::isnan(g) ? 0 : g, 0.0, 1.0);
    b = std::clamp(std::isnan(b) ? 0 : b, 0.0, 1.0);
    const int index = vlindexof(r, g, b);
    if (vl.palette.empty() || distance(vl.palette[size_t(index)], r, g, b) < 1e-6) return index;
    const auto free =
        std::find_if(vl.palette.begin(), vl.palette.end(), [](const vlrgb& c) { return !c.set; });
    if (free == vl.palette.end()) return index;
    *free = {r, g, b, true};
    const int entry = int(free - vl.palette.begin());
    const vlbits bits = devicebits();
    if (vl.ops && vl.ops->getpalette) {
        vl.ops->getpalette(entry, int(part(r, bits.r)), int(part(g, bits.g)), int(part(b, bits.b)));
    }
    return entry;
}

void DGETRGB(int c, double* r, double* g, double* b) {
    const vlrgb rgb = vlrgbof(c);
    *r = rgb.r;
    *g = rgb.g;
    *b = rgb.b;
}

void DCOLOR(int c) {
    if (c < 0 || c >= vl.record.ncolors) c = 1;
    if (c == vl.color) return;
    vlflushall();
    vl.color = c;
    vlputword(VLOPCOLOR | uint32_t(c));
}

int DGETCOLOR() { return vl.color; }
