/* tools/fonts/glyphsource.h - reading the glyph sources and the list of faces of data/fonts/.
 * Owns:    the forms of a source: strokes along centre lines on a grid whose capitals are 700 high.
 * Never:   knows a pen, a face's slant or the font file. */
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

namespace fonttool {

struct point {
    double x = 0, y = 0;
};

/* A cubic piece of a centre line; `straight` has its inner points on the chord. The pen's share of the full
 * width goes from pen0 to pen1 along it. */
struct piece {
    std::array<point, 4> at;
    bool straight = true;
    double pen0 = 1, pen1 = 1;
};

enum class strokeend {
    grown,
    butt
}; // grown: to the line that the pen's edge reaches; butt: cut at the point

struct stroke {
    std::vector<piece> pieces;
    bool closed = false;
    strokeend start = strokeend::grown, finish = strokeend::grown;
    bool boxed = false; // cut at the sides as well as at top and foot
};

struct dot {
    point at;
    double size = 1; // of the face's dot
};

struct glyph {
    double zone = 700; // the height whose squeeze makes room for the pen: 700 capitals, 500 small letters
    double width = 0;  // of the centre lines, which lie on 0..width
    double bearleft = 0, bearright = 0;
    bool tabular = false; // centred in the width that all figures share
    std::vector<stroke> strokes;
    std::vector<dot> dots;
};

struct glyphset {
    std::map<int, glyph> glyphs;
    std::map<std::string, glyph> accents; // about x = 0, as they stand on small letters
    double figurewidth = 0;
};

/* One face of the font file. */
struct face {
    int number = 0;
    std::string name;
    std::vector<std::string> sources; // a later one replaces glyphs of an earlier
    double penx = 0, peny = 0;        // stem and bar width; 0: drawn by strokes
    double room = 0;                  // what a stroked face keeps free for the pen it has not
    double stretch = 1;               // of the centre lines in x
    double slant = 0;                 // degrees
    double fit = 1;                   // scale of the side bearings
    double cell = 0;                  // the one advance of a fixed face
    double inner = 0;                 // widest centre line in a fixed cell
};

/* One font of the bitmap file, drawn from a face's sources with a square pen. */
struct bitmapface {
    int number = 0;
    std::vector<std::string> sources;
    int cellwidth = 0, cellheight = 0, baseline = 0; // pixels; the baseline from the top
    double capital = 0, small = 0;                   // heights of capitals and small letters less one pixel
    double inner = 0;                                // widest centre line
    double pen = 1;
};

struct facelist {
    std::vector<face> faces;
    std::vector<bitmapface> bitmaps;
};

/* Adds the glyphs of a source file to `set`. Throws std::runtime_error with file and line on a fault. */
void readglyphs(const std::string& path, glyphset& set);
facelist readfaces(const std::string& path);

} // namespace fonttool
