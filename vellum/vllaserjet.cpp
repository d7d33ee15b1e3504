#include "vellum/vldraw.h"
#include "vellum/vlraster.h"
#include "vellum/vlwriter.h"

#include <algorithm>
#include <cmath>

// PCL 5 with HP-GL/2 for lines, as Hewlett-Packard's PCL 5 Printer Language Technical Reference tells them. A
// command goes out only when it changes the printer's state.

namespace {

// The picture frame of a device: decipoints, and its offset in dots at 300 to the inch.
struct frame {
    int width, height, ox, oy;
    bool landscape;
    bool whole; // the whole printable area
};

const frame& frameof(int device) {
    static constexpr frame frames[] = {
        {5640, 7519, 49, 82, false, false},
        {7632, 5724, 0, 56, true, false},
        {5700, 7632, 24, 59, false, true},
        {7632, 5760, 0, 50, true, true},
    };
    return frames[device - VLLJ2P];
}

[[noreturn]] void cannotwrite() { vlfilefault("error writing Laserjet output file", vl.filename); }

struct ljoutput {
    vlwriter out;
    bool hpgl = false;
    bool pagedirty = false;
    int pen = -1;        // selected in HP-GL/2
    long x = -1, y = -1; // where the pen stands, plotter units
    int pattern = -1;    // current fill
    std::string font;    // the escapes that chose the native font

    explicit ljoutput(const char* name) : out(name, cannotwrite) {}

    // A command of PCL: an escape, and words and numbers in turn.
    void escape(std::string_view head, long number, std::string_view tail) {
        out.byte('\33');
        out.text(head);
        out.integer(number);
        out.text(tail);
    }
    void pair(std::string_view head, long first, char between, long second, std::string_view tail) {
        out.byte('\33');
        out.text(head);
        out.integer(first);
        out.byte(between);
        out.integer(second);
        out.text(tail);
    }
    void decimal(std::string_view head, double number, int digits, std::string_view tail) {
        out.byte('\33');
        out.text(head);
        out.fixed(number, digits);
        out.text(tail);
    }
};

ljoutput* lj() { return static_cast<ljoutput*>(vl.output.get()); }

// White is 15 and black 0, whatever indices stand for them.
int grey(int colour) { return int(std::lrint(vlrgbof(colour).r * 15)); }
bool isblack(int colour) { return colour >= 0 && grey(colour) < 8; }

// ---- The two languages

void enterhpgl(ljoutput& page) {
    page.pagedirty = true;
    if (page.hpgl) return;
    const frame& f = frameof(vl.device);
    page.pair("*c", f.width, 'x', f.height, "Y");
    page.pair("*p", f.ox, 'x', f.oy, "Y");
    page.out.text("\33*c0T\33%1BPW0,0");
    page.hpgl = true;
    page.pen = -1;
}

void enterpcl(ljoutput& page) {
    page.pagedirty = true;
    if (!page.hpgl) return;
    page.out.text("\33%0A");
    page.hpgl = false;
}

// The dots of a place: PCL counts from the upper left corner of the page.
long dotx(double x) { return frameof(vl.device).ox + std::lrint(x); }
long doty(double y) { return frameof(vl.device).oy + vl.record.ypix - 1 - std::lrint(y); }

// ---- Pages

void startpage() {
    if (vl.output) return;
    auto page = std::make_shared<ljoutput>(vl.filename.c_str());
    if (!page->out.isopen()) vlfilefault("error opening Laserjet output file", vl.filename);
    const frame& f = frameof(vl.device);
    page->escape("&l", f.landscape, "O");
    page->out.text("\33&l0E\33&l0L\33*t300R");
    if (f.whole) {
        constexpr int linesperinch = 12;
        page->decimal("&l", 48.0 / linesperinch, 4, "C");
        page->escape("&l", long(vl.record.heightin * linesperinch), "F");
    } else {
        page->out.text(f.landscape ? "\33&l8C\33&l51F" : "\33&l8C\33&l66F");
    }
    vl.output = page;
}

void endpage() {
    ljoutput* page = lj();
    if (!page) return;
    enterpcl(*page);
    page->out.byte('\f');
    page->pagedirty = false;
}

void closeoutput(int) {
    const std::shared_ptr<void> output = vl.output; // goes also when its end fails
    ljoutput* page = lj();
    if (page && page->pagedirty) endpage();
    vl.output.reset();
    if (page) page->out.close();
}

void get(int flag) {
    if (flag > 0) startpage();
    if (flag == -3) closeoutput(0);
}

int init(vldevice*) {
    vl.reserved[0] = 15;
    vl.reserved[1] = 0;
    return 1;
}

// ---- Drawing

long plotterunits(double pixels) { return std::lrint(pixels * 1016 / 300); }

void moveto(ljoutput& page, long x, long y) {
    const int pen = grey(vl.color) == 15 ? 0 : 1;
    if (pen == page.pen && x == page.x && y == page.y) return;
    page.out.text("PU");
    if (pen != page.pen) {
        page.out.text("SP");
        page.out.integer(pen);
        page.out.text("PA");
        page.pen = pen;
    }
    page.out.integer(x);
    page.out.byte(',');
    page.out.integer(y);
}

void drawline(double x0, double y0, double x1, double y1) {
    ljoutput* page = lj();
    if (!page) return;
    enterhpgl(*page);
    moveto(*page, plotterunits(x0), plotterunits(y0));
    page->x = plotterunits(x1);
    page->y = plotterunits(y1);
    page->out.text("PD");
    page->out.integer(page->x);
    page->out.byte(',');
    page->out.integer(page->y);
}

// Nothing to do for paper that is white already.
void erasearea(double x, double y, double w, double h, int colour) {
    ljoutput* page = lj();
    const bool black = isblack(colour);
    if (!page || (!black && !page->pagedirty)) return;
    enterpcl(*page);
    const int pattern = black ? 0 : 1;
    if (pattern != page->pattern) page->escape("*v", pattern, "T");
    page->pattern = pattern;
    page->escape("*p", dotx(x), "X");
    page->escape("*p", doty(y + h - 1), "Y");
    page->escape("*c", std::lrint(w), "A");
    page->escape("*c", std::lrint(h), "B");
    page->escape("*c", pattern, "P");
}

void setpixel(double x, double y, int colour) { erasearea(x, y, 1, 1, colour); }

// Rows of dots from the top; black(column, row) tells a dot, row 0 at the top.
template <class Black> void raster(int x, int y, int w, int h, Black black) {
    ljoutput& page = *lj();
    enterpcl(page);
    page.pair("*p", dotx(x), 'x', doty(y + h - 1), "Y");
    page.out.text("\33*r1A");
    for (int row = 0; row < h; row++) {
        page.escape("*b", (w + 7) / 8, "W");
        for (int column = 0; column < w; column += 8) {
            int byte = 0;
            for (int bit = 0; bit < 8; bit++) {
                byte = byte << 1 | (column + bit < w && black(column + bit, row) ? 1 : 0);
            }
            page.out.byte(char(byte));
        }
    }
    page.out.text("\33*rB");
}

void plotbitarray(const uint8_t* bits, int w, int h, int x, int y, int fg, int bg, int) {
    if (!lj()) return;
    const vlpatchview view{bits, w, h, w, 1};
    raster(x, y, w, h, [&](int column, int row) { return isblack(view.pixel(column, row) ? fg : bg); });
}

void writepatch(int x, int y, int w, int h, int srcw, int, const uint8_t* bits, int depth,
                int64_t transparent, int) {
    if (!lj()) return;
    const vlpatchview view{bits, w, h, srcw, depth};
    raster(x, y, w, h, [&](int column, int row) {
        const uint32_t pixel = view.pixel(column, h - 1 - row);
        return pixel != transparent && isblack(vlindexofpixel(pixel, depth));
    });
}

// ---- Native text

// The PCL fields of a native font: typeface family, spacing, style, stroke weight, symbol set.
struct face {
    int typeface;
    bool proportional;
    int style, weight;
    const char* symbols;
};

const face& faceof(int font) {
    constexpr int courier = 4099, times = 4101, univers = 4148, symbol = 16686;
    static constexpr face faces[] = {
        {courier, false, 0, 0, "0N"}, {courier, false, 0, 3, "0N"}, {courier, false, 1, 0, "0N"},
        {courier, false, 1, 3, "0N"}, {times, true, 0, 0, "0N"},    {times, true, 0, 3, "0N"},
        {times, true, 1, 0, "0N"},    {times, true, 1, 3, "0N"},    {univers, true, 0, 0, "0N"},
        {univers, true, 0, 3, "0N"},  {univers, true, 1, 0, "0N"},  {univers, true, 1, 3, "0N"},
        {symbol, true, 0, 0, "19M"},
    };
    return faces[std::clamp(-font, 2, 14) - 2];
}

double longerside() { return std::max(vl.record.widthin, vl.record.heightin); }

double pointsof(const vlnativetext& text) { return text.size * longerside() * 72; }

constexpr double fixedwidth = 0.6, proportionalwidth = 0.5; // of the height

void choosefont(ljoutput& page, const vlnativetext& text) {
    const face& f = faceof(text.font);
    const double points = std::clamp(pointsof(text), 0.25, 999.0);
    const std::string key = std::to_string(text.font) + " " + std::to_string(points);
    if (key == page.font) return;
    page.font = key;
    page.out.text("\33(");
    page.out.text(f.symbols);
    page.out.text(f.proportional ? "\33(s1P" : "\33(s0P");
    page.decimal("(s", 72 / (points * fixedwidth), 2, "H");
    page.decimal("(s", points, 1, "V");
    page.escape("(s", f.style, "S");
    page.escape("(s", f.weight, "B");
    page.escape("(s", f.typeface, "T");
}

void drawtext(const vlnativetext& text) {
    ljoutput* page = lj();
    if (!page || !isblack(text.fg)) return;
    enterpcl(*page);
    choosefont(*page, text);
    page->escape("*p", dotx(text.x), "X");
    page->escape("*p", doty(text.y), "Y");
    for (size_t i = 0; i < text.length; i++) {
        if (uint8_t(text.text[i]) >= 32) page->out.byte(text.text[i]);
    }
}

double textwidth(const vlnativetext& text) {
    const double share = faceof(text.font).proportional ? proportionalwidth : fixedwidth;
    return double(text.length) * share * text.size;
}

constexpr vldeviceops operations = [] {
    vldeviceops ops{};
    ops.open = get;
    ops.init = init;
    ops.close = closeoutput;
    ops.setpixel = setpixel;
    ops.drawline = drawline;
    ops.erasearea = erasearea;
    ops.plotbitarray = plotbitarray;
    ops.drawtext = drawtext;
    ops.writepatch = writepatch;
    ops.endpage = endpage;
    ops.textwidth = textwidth;
    ops.anydepth = true;
    return ops;
}();

} // namespace

const vldeviceops* vllaserjetoperations() { return &operations; }
