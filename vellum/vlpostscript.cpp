#include "vellum/vldraw.h"
#include "vellum/vlnative.h"
#include "vellum/vlpath.h"
#include "vellum/vlraster.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// Half a drawing is worth nothing.
[[noreturn]] void cannotwrite() {
    const int reason = errno;
    vlcomplain("ERROR writing into PostScript file.\n%s: %s\n", vl.filename.c_str(), strerror(reason));
    exit(1);
}

// The output of one page: device units are 1/300 inch.
struct psoutput {
    vlwriter out;
    VLPathBuffer path;
    int color = -1; // that the path stands at; -1 not known
    int ended = -1; // opIdx of the buffer when the page was ended: nothing was put in since

    explicit psoutput(const char* name) : out(name, cannotwrite) {}
};

constexpr double margin = 20, unit = 0.24; // points

psoutput* ps() { return static_cast<psoutput*>(vl.output.get()); }

void printandflush(VLPathBuffer* p) {
    VLPathDoPrint(p, ps()->out);
    VLPathFlush(p);
}

void setcolour(int c) {
    psoutput* page = ps();
    if (c == page->color) return;
    page->color = c;
    const vlrgb rgb = vlrgbof(c);
    VLPathSetRGB(&page->path, float(rgb.r), float(rgb.g), float(rgb.b));
}

// ---- The page

constexpr const char* macros = "/L {lineto} bind def\n"
                               "/D {0 0 rlineto} bind def\n"
                               "/M {moveto} bind def\n"
                               "%/R {rectfill} bind def\n"
                               "/R {newpath 4 2 roll moveto dup 0 exch rlineto exch 0\n"
                               "\trlineto neg 0 exch rlineto closepath fill} bind def\n"
                               "/RC {rectclip} bind def\n"
                               "/C {closepath} bind def\n"
                               "/F {eofill} bind def\n"
                               "/B {newpath} bind def\n"
                               "/E {stroke} bind def\n"
                               "/RGB {setrgbcolor} bind def\n"
                               "/DOT {currentpoint 2 copy stroke newpath moveto\n"
                               "\t1 0 rmoveto -1 -1 rlineto -1 1 rlineto 1 1 rlineto\n"
                               "\t1 -1 rlineto stroke moveto} bind def\n";

constexpr const char* fontnames[13][2] = {
    {"TR", "Times-Roman"},
    {"TB", "Times-Bold"},
    {"TI", "Times-Italic"},
    {"TBI", "Times-BoldItalic"},
    {"HV", "Helvetica"},
    {"HB", "Helvetica-Bold"},
    {"HO", "Helvetica-Oblique"},
    {"HBO", "Helvetica-BoldOblique"},
    {"CR", "Courier"},
    {"CB", "Courier-Bold"},
    {"CO", "Courier-Oblique"},
    {"CBO", "Courier-BoldOblique"},
    {"SY", "Symbol"},
};

void printfonts(vlwriter& out) {
    for (const auto& [macro, name] : fontnames) {
        const std::string m = macro;
        out.text("/" + m + "fnt {/" + name + " findfont exch scalefont} bind def\n");
        out.text("/" + m + " {" + m + "fnt setfont} def\n");
    }
}

void printheader(vlwriter& out) {
    const bool landscape = vl.device == VLPSL;
    out.text("%!PS-Adobe-3.0 EPSF-3.0\n%%Creator: Brindle Works, Inc.\n%%Title: ");
    out.text(vl.filename);
    out.text("\n%%DocumentFonts: Times-Roman Helvetica Courier Symbol\n");
    out.text(landscape ? "%%BoundingBox: 19 19 593 773\n" : "%%BoundingBox: (atend)\n");
    out.text("%%EndComments\n\n%%BeginSetup\n");
    out.text(macros);
    printfonts(out);
    out.text("20 TR\n1 setlinewidth\n1 setlinecap\n1 setlinejoin\n");
    if (landscape) out.text("612 0 translate\n90 rotate\n");
    out.text("20 20 translate\n0.24 0.24 scale\n%%EndSetup\n\n");
}

void psopen() {
    if (vl.output) return;
    if (vl.filename.empty()) vl.filename = "vlplot.eps";
    auto page = std::make_shared<psoutput>(vl.filename.c_str());
    if (!page->out.isopen()) vlfilefault("Cannot open Postscript file.\n", vl.filename);
    printheader(page->out);
    VLPathInit(&page->path);
    VLPathSetOverflow(&page->path, printandflush);
    vl.output = page;
}

double topoints(double v) { return v * (1.0 / 300) * 72 + margin; }

void psclose() {
    psoutput* page = ps();
    if (!page) return;
    float box[4];
    VLPathGetBox(&page->path, box);
    if (page->path.opIdx != page->ended) VLPathDoPrint(&page->path, page->out);
    vlwriter& out = page->out;
    out.text("showpage\n\n%%Trailer\n");
    if (vl.device != VLPSL) {
        out.text("%%BoundingBox: ");
        for (int i = 0; i < 4; i++) {
            out.rounded(i < 2 ? std::floor(topoints(box[i])) : std::ceil(topoints(box[i])));
            out.byte(i < 3 ? ' ' : '\n');
        }
    }
    out.text("%%EOF\n");
    out.close();
    vl.output.reset();
}

// ---- The operations

void psget(int flag) {
    if (flag > 0) psopen();
    if (flag == -1 || flag == -3) psclose();
}

int psinit(vldevice*) {
    vl.reserved[0] = 0xfff; // white paper
    vl.reserved[1] = 0;     // gets black drawing
    return 1;
}

void psgetpalette(int, int r, int g, int b) {
    if (!ps()) return;
    ps()->color = -1;
    VLPathSetRGB(&ps()->path, float(r / 15.0), float(g / 15.0), float(b / 15.0));
}

void psquit(int) { psclose(); }

void psendpage() {
    if (!ps()) return;
    printandflush(&ps()->path);
    ps()->ended = ps()->path.opIdx;
}

void pssetlinewidth(double w) {
    if (!ps()) return;
    char text[64] = {};
    constexpr std::string_view word = " setlinewidth\n";
    const auto [end, fault] =
        std::to_chars(text, text + sizeof text, w * 4.166666666666667, std::chars_format::general, 6);
    if (fault == std::errc{}) VLPathRaw(&ps()->path, std::string(text, end).append(word));
}

void pssetpixel(double x, double y, int colour) {
    if (!ps()) return;
    setcolour(colour);
    VLPathMoveTo(&ps()->path, float(x), float(y));
    VLPathDotAt(&ps()->path);
}

void psdrawline(double x0, double y0, double x1, double y1) {
    psoutput* page = ps();
    if (!page) return;
    setcolour(vl.color);
    VLPathMoveTo(&page->path, float(x0), float(y0));
    VLPathLineTo(&page->path, float(x1), float(y1));
}

// White paper needs no white.
void pserasearea(double x, double y, double w, double h, int colour) {
    if (!ps()) return;
    const vlrgb rgb = vlrgbof(colour);
    if (rgb.r >= 1 && rgb.g >= 1 && rgb.b >= 1 && vl.device != VLDPS) return;
    setcolour(colour);
    VLPathRect(&ps()->path, float(x), float(y), float(w), float(h));
}

void psplotbitarray(const uint8_t*, int, int, int, int, int, int, int) {
    vlerror("%%%%psplotbitarray: should not be called!!");
}

void psreadpatch(uint8_t*, int, int, int, int, int) {
    vlerror("%%%%psreadpatch: should not be called (not implemented)!");
}

void psdrawtext(const vlnativetext& text) {
    if (!ps() || vlnativelength(text) == 0) return;
    setcolour(text.fg);
    VLPathMoveTo(&ps()->path, float(text.x), float(text.y));
    VLPathText(&ps()->path, -text.font, float(vlnativepoints(text)), float(vlnativeangle(text)),
               float(1 / unit), {text.text, text.length});
}

// Some rows of some columns of a patch as an image, 24 bits a pixel.
void puttile(int x, int y, const vlpatchview& view, int x0, int y0, int w, int h) {
    uint8_t bytes[vlpathmostbytes];
    size_t count = 0;
    for (int row = y0; row < y0 + h; row++) {
        for (int column = x0; column < x0 + w; column++) {
            const vlrgb c = vlrgbof(vlindexofpixel(view.pixel(column, row), view.depth));
            for (const double v : {c.r, c.g, c.b}) bytes[count++] = uint8_t(std::lrint(v * 255));
        }
    }
    VLPathImage(&ps()->path, float(x + x0), float(y + y0), float(w), float(h), w, h, 24, bytes);
}

// An image has no holes: what is left out is left out by painting the rest in runs.
void putruns(int x, int y, const vlpatchview& view, int64_t transparent) {
    for (int row = 0; row < view.h; row++) {
        for (int from = 0, to; from < view.w; from = to) {
            const uint32_t pixel = view.pixel(from, row);
            for (to = from + 1; to < view.w && view.pixel(to, row) == pixel;) to++;
            if (pixel == transparent) continue;
            setcolour(vlindexofpixel(pixel, view.depth));
            VLPathRect(&ps()->path, float(x + from), float(y + row), float(to - from), 1);
        }
    }
}

void pswritepatch(int x, int y, int w, int h, int srcw, int, const uint8_t* bits, int depth,
                  int64_t transparent, int spoffset) {
    if (!ps()) return;
    if (spoffset != 0) vlcomplain("warning: pswritepatch: spoffset!=0\n");
    const vlpatchview view{bits, w, h, srcw, depth};
    if (transparent >= 0) return putruns(x, y, view, transparent);
    constexpr int mostpixels = int(vlpathmostbytes / 3);
    const int columns = std::min(w, mostpixels), rows = mostpixels / columns;
    for (int y0 = 0; y0 < h; y0 += rows) {
        for (int x0 = 0; x0 < w; x0 += columns) {
            puttile(x, y, view, x0, y0, std::min(columns, w - x0), std::min(rows, h - y0));
        }
    }
}

void pspolygon(const double* xy, size_t n, const double* clip) {
    if (!ps()) return;
    setcolour(vl.color);
    VLPathPoly(&ps()->path, xy, n, clip);
}

constexpr vldeviceops operations = [] {
    vldeviceops ops{};
    ops.open = psget;
    ops.getpalette = psgetpalette;
    ops.init = psinit;
    ops.close = psquit;
    ops.setlinewidth = pssetlinewidth;
    ops.setpixel = pssetpixel;
    ops.drawline = psdrawline;
    ops.erasearea = pserasearea;
    ops.plotbitarray = psplotbitarray;
    ops.drawtext = psdrawtext;
    ops.textwidth = vlnativewidth;
    ops.writepatch = pswritepatch;
    ops.readpatch = psreadpatch;
    ops.endpage = psendpage;
    ops.polygon = pspolygon;
    ops.maxpolygon = vlpathmostpoints;
    ops.anydepth = true;
    return ops;
}();

} // namespace

const vldeviceops* vlpostscriptoperations() { return &operations; }
