// Text by strokes, by filled outlines and by the device's native fonts: DTEXT, DTEXTSIZE, DCHARSIZE.
#include "vellum/vlfont.h"
#include "vellum/vlhatch.h"
#include "vellum/vlletters.h"
#include "vellum/vlnative.h"
#include "vellum/vlpicture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double lineheight = 1.666667; // character heights from line to line
constexpr int nofont = -1000;

int currentfont() {
    if (vl.text.curfont == nofont) DFONT(1);
    return vl.text.curfont;
}

// How far the outline of a glyph may lie from the font's: a quarter of the text's flatness, which is two
// dots, for small characters half a dot.
double glyphspread() {
    const double flatness = 2 / (vl.pix.sy > 0 ? vl.pix.sy : 1000);
    const bool small = vl.text.charsize < 0.08 * (vl.viewport[3] - vl.viewport[2]);
    return (small ? flatness / 4 : flatness) / 4;
}

// Where glyphs go: the pen in normal units, and what the transform and mirroring make of their points.
struct textplace {
    vlpoint pen;
    double m[4];

    vlpoint of(vlpoint p) const { return {pen.x + m[0] * p.x + m[1] * p.y, pen.y + m[2] * p.x + m[3] * p.y}; }
    void advance(double dx, double dy) { pen = of({dx, dy}); }
};

textplace placeofpen() {
    textplace place{vltonorm(vl.x, vl.y), {1, 0, 0, 1}};
    if (vl.transformon) {
        const double linear[4] = {vl.matrix[0], vl.matrix[1], vl.matrix[4], vl.matrix[5]};
        std::copy_n(linear, 4, place.m);
    }
    if (vl.text.mirror) {
        place.m[0] = -place.m[0];
        place.m[2] = -place.m[2];
    }
    return place;
}

// The pen goes where the text ended.
void movepen(const textplace& place) {
    const vlpoint end = vltoworld(place.pen.x, place.pen.y);
    vl.x = end.x;
    vl.y = end.y;
    vl.homset = false;
    if (vl.transformon) return;
    vl.user[0] = end.x;
    vl.user[1] = end.y;
}

bool isbreak(vlpoint p) { return p.x >= 1e300; }

// ---- One glyph

void drawstrokes(const vlpoint* p, uint32_t count, const textplace& place) {
    for (uint32_t i = 0; i < count; i++) {
        if (isbreak(p[i])) continue;
        const vlpoint to = place.of(p[i]);
        const bool starts = i == 0 || isbreak(p[i - 1]);
        if (starts) {
            if (i + 1 == count || isbreak(p[i + 1])) vldotn(to.x, to.y);
            continue;
        }
        const vlpoint from = place.of(p[i - 1]);
        vllinen(from.x, from.y, to.x, to.y);
    }
}

// Calls use(xy, n) with each shape of a filled glyph, a polygon with its breaks.
template <class Use> void eachshape(const vlpoint* p, uint32_t count, const textplace& place, Use use) {
    std::vector<double>& xy = vlfontstate().shape;
    xy.clear();
    for (uint32_t i = 0; i < count; i++) {
        if (isbreak(p[i]) && p[i].y == 1) {
            use(xy.data(), xy.size() / 2);
            xy.clear();
            continue;
        }
        const vlpoint q = isbreak(p[i]) ? p[i] : place.of(p[i]);
        xy.push_back(q.x);
        xy.push_back(q.y);
    }
    if (!xy.empty()) use(xy.data(), xy.size() / 2);
}

void drawnow(const vlglyph& g, bool filled, const textplace& place) {
    const vlpoint* p = vlfontstate().points.data() + g.first;
    if (!filled) return drawstrokes(p, g.count, place);
    eachshape(p, g.count, place, [](const double* xy, size_t n) { vlfillsolid(xy, n); });
}

// ---- Glyphs in pictures

uint32_t word(vlkind kind, double x, double y) {
    const auto units = [](double v) { return uint32_t(std::lrint(v / vlunit)) & 0x7fff; };
    return kind | units(x) << 15 | units(y);
}

// The words of a glyph at the origin: its strokes, or the lines that fill it.
std::vector<uint32_t> glyphwords(const vlglyph& g, bool filled) {
    std::vector<uint32_t> words;
    const vlpoint* p = vlfontstate().points.data() + g.first;
    if (!filled) {
        for (uint32_t i = 0; i < g.count; i++) {
            if (isbreak(p[i])) continue;
            words.push_back(word(i == 0 || isbreak(p[i - 1]) ? VLMOVEWORD : VLLINEWORD, p[i].x, p[i].y));
        }
        return words;
    }
    std::vector<double> lines;
    eachshape(p, g.count, {{0, 0}, {1, 0, 0, 1}},
              [&](const double* xy, size_t n) { vlhatch(xy, n, 0, 0, false, &lines); });
    for (size_t i = 0; i + 3 < lines.size(); i += 4) {
        words.push_back(word(VLMOVEWORD, lines[i], lines[i + 1]));
        words.push_back(word(VLLINEWORD, lines[i + 2], lines[i + 3]));
    }
    return words;
}

// A picture calls the glyph as a picture of its own, so that it can be played without the font file.
void callglyph(vlglyph& g, bool filled, const textplace& place) {
    if (!g.picture) g.picture = vlmakepicture(glyphwords(g, filled));
    const double matrix[16] = {place.m[0], place.m[1], 0, 0, place.m[2], place.m[3], 0, 0,
                               0,          0,          1, 0, 0,          0,          0, 1};
    const bool plain = !vl.transformon && !vl.text.mirror;
    vlputcall(g.picture, place.pen.x, place.pen.y, plain ? nullptr : matrix, true);
    if (vl.live) vlplayat(g.picture, place.pen.x, place.pen.y, plain ? nullptr : matrix);
}

// Beyond this a glyph's points do not fit the words of a picture.
bool fitswords(const vlglyph& g) { return std::max({-g.left, g.right, -g.low, g.high}) < 0.9; }

void drawglyph(vlglyph& g, bool filled, const textplace& place) {
    if (!g.ink) return;
    if (vl.open && fitswords(g))
        callglyph(g, filled, place);
    else
        drawnow(g, filled, place);
}

// ---- A string

// The glyph of one character in its font; a letter of another script may come from the symbol face.
vlglyph& glyphof(int font, const vlletter& letter, double spread, bool* filled) {
    const vlstrokefont& face = vlfindfont(letter.symbol ? vlsymbolfont(font) : font);
    *filled = face.filled;
    return vlfindglyph(face, letter.code, vl.text.charsize, spread);
}

void strokedtext(int font, const char* s, bool visible) {
    textplace place = placeofpen();
    textplace line = place; // where the line begins
    const double spread = glyphspread();
    for (vlletters letters(s); letters.more();) {
        const vlletter letter = letters.next();
        if (letter.code == '\n') {
            place.advance(0, -lineheight * vl.text.charsize);
            line.advance(0, -lineheight * vl.text.charsize);
        } else if (letter.code == '\r') {
            place = line;
        } else if (letter.code == '\b') {
            place.advance(-vl.text.lastwidth, 0);
        } else if (letter.code >= 32) {
            bool filled;
            vlglyph& g = glyphof(font, letter, spread, &filled);
            const double advance = g.advance;
            if (visible) drawglyph(g, filled, place);
            place.advance(advance, 0);
            vl.text.lastwidth = advance;
        }
    }
    movepen(place);
}

// Text that begins right of the window or above it is not drawn.
bool beginsinside() {
    if (!vl.clipping || vl.transformon) return true;
    return vl.x <= std::max(vl.window[0], vl.window[1]) && vl.y <= std::max(vl.window[2], vl.window[3]);
}

vlnativetext native(int font, const char* s) {
    const textplace place = placeofpen();
    const vlpoint p = vltopixel(place.pen.x, place.pen.y);
    vlnativetext text{s, strlen(s), font, p.x, p.y, vl.text.charsize, {}, vl.color, -1};
    std::copy_n(place.m, 4, text.m);
    return text;
}

void nativetext(int font, const char* s, bool visible) {
    const vlnativetext text = native(font, s);
    textplace place = placeofpen();
    if (visible && text.length > 0) {
        if (vl.open) {
            vlputmove(place.pen.x, place.pen.y);
            vlputnativetext(text);
        }
        if (vl.live && vl.ops && vl.ops->drawtext && !(vlrootof(vl.patch)->flags & VLMEMORY)) {
            vlcursorhold hold;
            vl.ops->drawtext(text);
        }
    }
    place.advance(1.5 * vl.text.charsize * double(text.length), 0);
    movepen(place);
}

void measurenative(vltextsize* out, int font, const char* s) {
    const vlnativetext text = native(font, s);
    out->width =
        vl.ops && vl.ops->textwidth ? vl.ops->textwidth(text) : vl.text.charsize * double(text.length);
    out->right = out->width;
    out->ascent = vl.ops && vl.ops->textwidth ? vlnativeheight(text) : vl.text.charsize;
}

// The ink of a string: what is told apart from its width.
struct inkextent {
    bool any = false;
    double left = 0, right = 0, low = 0, high = 0;

    void add(const vlglyph& g, double x, double y) {
        if (!g.ink) return;
        left = any ? std::min(left, x + g.left) : x + g.left;
        right = any ? std::max(right, x + g.right) : x + g.right;
        low = any ? std::min(low, y + g.low) : y + g.low;
        high = any ? std::max(high, y + g.high) : y + g.high;
        any = true;
    }
};

void measurestroked(vltextsize* out, int font, const char* s) {
    const double spread = glyphspread();
    inkextent ink;
    double x = 0, y = 0, last = 0;
    for (vlletters letters(s); letters.more();) {
        const vlletter letter = letters.next();
        if (letter.code == '\n') y -= lineheight * vl.text.charsize;
        if (letter.code == '\r') x = 0;
        if (letter.code == '\b') x -= last;
        if (letter.code < 32) continue;
        bool filled;
        const vlglyph& g = glyphof(font, letter, spread, &filled);
        ink.add(g, x, y);
        last = g.advance;
        x += last;
        out->width = std::max(out->width, x);
    }
    out->left = ink.left;
    out->right = ink.any ? ink.right : out->width;
    out->ascent = ink.any ? ink.high : vl.text.charsize;
    out->descent = std::max(-ink.low, 0.0);
}

} // namespace

void DCHARSIZE(double h) {
    if (!std::isfinite(h) || h == 0) return;
    vl.text.charsize = std::fabs(h);
    vl.text.mirror = h < 0;
}

double DGETCHARSIZE() { return vl.text.mirror ? -vl.text.charsize : vl.text.charsize; }

void DTEXT(const char* s) {
    vlflushall();
    const int font = currentfont();
    const bool visible = vlcandraw() && beginsinside();
    if (font < 0)
        nativetext(font, s, visible);
    else
        strokedtext(font, s, visible);
}

void DTEXTSIZE(vltextsize* out, const char* s, int f) {
    const int font = f == nofont ? currentfont() : f;
    *out = {font, 0, 0, 0, 0, 0, vl.text.charsize};
    const bool hardware = font < 0 && vl.record.ishardware == 1;
    if (hardware)
        measurenative(out, font, s);
    else
        measurestroked(out, font < 0 ? 1 : font, s);
}
