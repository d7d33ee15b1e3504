/* vellum/vlfont.h - the font files and the glyphs read from them.
 * Owns:    the open font files, the cache of stroked glyphs, the choice of a font by its number. Callers:
 * DTEXT and its kin in vltext.cpp, bitmap text. Never:   draws. The layout of the files is in
 * docs/design/fonts.md. A file that does not open is an error; whatever in one makes no sense counts as
 * absent. */
#pragma once

#include "vellum/vlcache.h"
#include "vellum/vldraw.h"

#include <cstdint>
#include <memory>
#include <vector>

struct vlpicture;

// A font of a stroke file.
struct vlstrokefont {
    int number = -1;    // as the client asked for it, -1 for none
    bool found = false; // false: the file has no such font, and this is font 1
    int file = 0;
    uint32_t table = 0; // of 256 offsets
    int height = 0;     // of capitals, units of the file
    int maxpoints = 0;
    bool filled = false, proportional = false, italic = false;
};

/* A glyph at one size; lengths are normal units. A point with x = 1e300 lifts the pen; with y = 1 a new shape
 * begins, which is filled apart. */
struct vlglyph {
    int key = 0; // font * 256 + character
    double size = 0, spread = 0;
    bool present = false;
    double advance = 0;
    double left = 0, right = 0, low = 0, high = 0; // of the ink
    bool ink = false;
    uint32_t first = 0, count = 0; // in vlfonts::points
    vlpicture* picture = nullptr;  // its strokes as words, made when a picture needs them
    int next = -1;                 // of the same bucket
};

struct vlfonts {
    static constexpr int buckets = 253;
    static constexpr size_t mostglyphs = 200; // then the cache begins anew

    std::unique_ptr<vlcachefile> system, user, bitmap;
    vlstrokefont current;
    std::vector<vlglyph> glyphs;
    std::vector<vlpoint> points;
    int head[buckets];
    // working space of reading
    std::vector<uint8_t> bytes;
    std::vector<vlpoint> read;
    std::vector<char> keep;
    std::vector<std::pair<int, int>> spans;
    std::vector<double> shape; // a filled shape where it is drawn

    vlfonts();
};

vlfonts& vlfontstate();
// Font f (0 and up) of the system's or the user's file, font 1 where there is no such font. Holds until the
// next call.
const vlstrokefont& vlfindfont(int f);
// A glyph of that font. `spread`: points that lie within it of the chord are left out. Holds until the next
// call.
vlglyph& vlfindglyph(const vlstrokefont& font, int code, double size, double spread);

// A font of the bitmap file: number n, or for 0 the one whose cells suit the device. A number that is not
// there gives the first font.
struct vlbitmapfont {
    int number = 0;
    uint32_t table = 0;
    int width = 0, height = 0; // of a cell
};
struct vlbitmapglyph {
    bool present = false;
    int numbers[9] = {}; // width, height, baseline, left, right, top, bottom, pre-gap, post-gap
    std::vector<uint8_t> bits;
};
vlbitmapfont vlfindbitmapfont(int n);
void vlreadbitmap(const vlbitmapfont& font, int code, bool withbits, vlbitmapglyph& out);
