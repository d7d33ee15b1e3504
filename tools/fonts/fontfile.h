/* tools/fonts/fontfile.h - writing the two font files; their layout is told in docs/design/fonts.md.
 * Owns:    the byte order and the offsets, which start at 1.
 * Never:   draws. */
#pragma once

#include "penoutline.h"

#include <cstdint>

namespace fonttool {

constexpr int fileunits = 4;    // of the font file in a unit of the source grid
constexpr int capital = 700;    // height of capitals in units of the source grid
constexpr int mostpoints = 220; // in one shape: more would not fit the path buffer of a file device

struct strokefont {
    int number = 0;
    bool filled = false, proportional = true, italic = false;
    std::map<int, drawnglyph> glyphs;
};

struct bitmap {
    int width = 0, height = 0;  // the cell
    std::vector<uint8_t> cells; // width * height, row by row from the top
};

struct bitmapfont {
    int number = 0, width = 0, height = 0, baseline = 0;
    std::map<int, bitmap> glyphs;
};

/* The bytes of vlfonts.0 and vlbfonts.0. Throw std::runtime_error where a glyph does not fit the format. */
std::vector<uint8_t> strokefontfile(const std::vector<strokefont>& fonts);
std::vector<uint8_t> bitmapfontfile(const std::vector<bitmapfont>& fonts);

} // namespace fonttool
