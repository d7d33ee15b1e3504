#include "vellum/cairolib.h"
#include "vellum/vldraw.h"
#include "vellum/vlnative.h"
#include "vellum/vlraster.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <numbers>
#include <string>
#include <utility>

// Pages as PNG, SVG and PDF. The landscape forms have the whole page as their picture, like PSL; the portrait
// forms the box of what was drawn, like PSP.

namespace {

enum pageform { PNGPAGE, SVGPAGE, PDFPAGE };

pageform formof(int device) {
    switch (device) {
    case VLPNGL:
    case VLPNGP: return PNGPAGE;
    case VLSVGL:
    case VLSVGP: return SVGPAGE;
    default: return PDFPAGE;
    }
}

bool cropped(int device) { return device == VLPNGP || device == VLSVGP || device == VLPDFP; }

constexpr double hairline = 0.24; // points: the line of a page when no width was set
constexpr double margin = 1;      // points around a page of vectors, so that lines on its edge are whole
constexpr int segmentsatonce = 400;

struct cairopage {
    const cairolib& c;
    FILE* file;
    int reason = 0;                     // errno of the write that failed
    cairo_surface_t* surface = nullptr; // what is drawn on, at the end what becomes the file
    cairo_surface_t* uncropped = nullptr;
    cairo_t* cr = nullptr;
    double perpoint;      // device pixels in a point
    double width, height; // of the surface in its own units: pixels or points
    double linewidth;     // device pixels
    int color = -1;
    int segments = 0; // in the open path
    double x = 0, y = 0;
    double minx = 1e30, miny = 1e30, maxx = -1e30, maxy = -1e30; // device pixels

    explicit cairopage(const cairolib& calls) : c(calls), file(fopen(vl.filename.c_str(), "wb")) {}
    cairopage(const cairopage&) = delete;
    cairopage& operator=(const cairopage&) = delete;
    ~cairopage() {
        if (cr) c.destroy(cr);
        if (surface) c.surface_destroy(surface);
        if (uncropped) c.surface_destroy(uncropped);
        if (file) fclose(file);
    }

    void begin(pageform form, bool crop);
    void finish(pageform form, bool crop);
    void setcolour(int index);
    void stroke();
    void widen(double px, double py, double by);
    cairo_surface_t* output(pageform form, double w, double h);
    void crop(pageform form);
    void check(cairo_status_t status);
};

cairopage* pageof() { return static_cast<cairopage*>(vl.output.get()); }

cairo_status_t writebytes(void* closure, const unsigned char* bytes, unsigned int count) {
    cairopage* page = static_cast<cairopage*>(closure);
    if (fwrite(bytes, 1, count, page->file) == count) return CAIRO_STATUS_SUCCESS;
    page->reason = errno;
    return CAIRO_STATUS_WRITE_ERROR;
}

// The surface that becomes the file; with the same drawing it has the same bytes.
cairo_surface_t* cairopage::output(pageform form, double w, double h) {
    if (form == SVGPAGE) return c.svg_surface_create_for_stream(writebytes, this, w, h);
    if (form == PNGPAGE) return c.image_surface_create(CAIRO_FORMAT_RGB24, int(w), int(h));
    cairo_surface_t* pdf = c.pdf_surface_create_for_stream(writebytes, this, w, h);
    c.pdf_surface_set_metadata(pdf, CAIRO_PDF_METADATA_CREATE_DATE, "1970-01-01T00:00:00Z");
    return pdf;
}

void cairopage::begin(pageform form, bool crop) {
    const double dpi = vl.record.xdpi;
    perpoint = dpi / 72;
    linewidth = form == PNGPAGE ? std::max(hairline * perpoint, 1.0) : hairline * perpoint;
    const double unit = form == PNGPAGE ? 1 : 1 / perpoint, edge = form == PNGPAGE ? 0 : margin;
    width = vl.record.xpix * unit + 2 * edge;
    height = vl.record.ypix * unit + 2 * edge;
    surface = crop && form != PNGPAGE ? c.recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, nullptr)
                                      : output(form, width, height);
    cr = c.create(surface);
    if (form == PNGPAGE || (form == SVGPAGE && !crop)) {
        c.set_source_rgb(cr, 1, 1, 1);
        c.paint(cr);
    }
    // Upward from the lower left corner; the pixels of an image have their centres at halves.
    const double half = form == PNGPAGE ? 0.5 : 0;
    c.translate(cr, edge + half, height - edge - half);
    c.scale(cr, unit, -unit);
    c.set_line_width(cr, linewidth);
    c.set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    c.set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    c.set_fill_rule(cr, CAIRO_FILL_RULE_EVEN_ODD);
    setcolour(1);
}

void cairopage::setcolour(int index) {
    if (index == color) return;
    stroke();
    color = index;
    const vlrgb rgb = vlrgbof(index);
    c.set_source_rgb(cr, rgb.r, rgb.g, rgb.b);
}

void cairopage::stroke() {
    if (segments == 0) return;
    c.stroke(cr);
    segments = 0;
}

void cairopage::widen(double px, double py, double by) {
    minx = std::min(minx, px - by);
    miny = std::min(miny, py - by);
    maxx = std::max(maxx, px + by);
    maxy = std::max(maxy, py + by);
}

void cairopage::check(cairo_status_t status) {
    if (reason != 0) {
        errno = reason;
        vlfilefault("Cannot write plot file.", vl.filename);
    }
    if (status != CAIRO_STATUS_SUCCESS)
        vlerror("Cannot write plot file.\n%s: %s", vl.filename.c_str(), c.status_to_string(status));
}

// Replaces the surface by one of the size of the drawing's box.
void cairopage::crop(pageform form) {
    const bool image = form == PNGPAGE;
    const double unit = image ? 1 : 1 / perpoint, edge = image ? 0 : margin, around = image ? 0 : margin;
    if (minx > maxx) widen(vl.record.xpix / 2.0, vl.record.ypix / 2.0, 1);
    const double half = image ? 0.5 : 0;
    const double left = std::floor(minx * unit + edge + half - around),
                 right = std::ceil(maxx * unit + edge + half + around),
                 top = std::floor(height - edge - half - maxy * unit - around),
                 bottom = std::ceil(height - edge - half - miny * unit + around);
    cairo_surface_t* small = output(form, std::max(right - left, 1.0), std::max(bottom - top, 1.0));
    cairo_t* onto = c.create(small);
    if (form != PDFPAGE) {
        c.set_source_rgb(onto, 1, 1, 1);
        c.paint(onto);
    }
    c.set_source_surface(onto, surface, -left, -top);
    c.paint(onto);
    c.destroy(onto);
    c.destroy(cr);
    cr = nullptr;
    uncropped = surface; // the file's surface may read it until it is finished
    surface = small;
}

void cairopage::finish(pageform form, bool cut) {
    stroke();
    if (cut) crop(form);
    const cairo_status_t written =
        form == PNGPAGE ? c.surface_write_to_png_stream(surface, writebytes, this) : CAIRO_STATUS_SUCCESS;
    c.surface_finish(surface);
    check(written);
    check(c.surface_status(surface));
    FILE* done = file;
    file = nullptr;
    if (fclose(done) != 0) vlfilefault("Cannot write plot file.", vl.filename);
}

// ---- The operations

void pageopen() {
    if (vl.output) return;
    auto page = std::make_shared<cairopage>(*cairoload());
    if (!page->file) vlfilefault("Cannot open plot file.", vl.filename);
    page->begin(formof(vl.device), cropped(vl.device));
    page->check(page->c.surface_status(page->surface));
    vl.output = page;
}

void pageclose() {
    // The page goes also when its end fails.
    const std::shared_ptr<void> output = std::move(vl.output);
    vl.output.reset();
    if (output) static_cast<cairopage*>(output.get())->finish(formof(vl.device), cropped(vl.device));
}

void pageget(int flag) {
    if (flag > 0) pageopen();
    if (flag == -1 || flag == -3) pageclose();
}

int pageinit(vldevice*) { return cairoload() != nullptr; }

void pagequit(int) { pageclose(); }

void setlinewidth(double w) {
    cairopage* page = pageof();
    if (!page) return;
    page->stroke();
    page->linewidth = std::max(w, hairline) * page->perpoint;
    page->c.set_line_width(page->cr, page->linewidth);
}

void drawline(double x0, double y0, double x1, double y1) {
    cairopage* page = pageof();
    if (!page) return;
    page->setcolour(vl.color);
    if (page->segments == segmentsatonce) page->stroke();
    if (page->segments == 0 || x0 != page->x || y0 != page->y) page->c.move_to(page->cr, x0, y0);
    page->c.line_to(page->cr, x1, y1);
    page->segments++;
    page->x = x1;
    page->y = y1;
    page->widen(x0, y0, page->linewidth / 2);
    page->widen(x1, y1, page->linewidth / 2);
}

// A round dot of the line's width.
void setpixel(double x, double y, int colour) {
    cairopage* page = pageof();
    if (!page) return;
    const int last = std::exchange(vl.color, colour);
    drawline(x, y, x, y);
    vl.color = last;
}

void erasearea(double x, double y, double w, double h, int colour) {
    cairopage* page = pageof();
    if (!page) return;
    const vlrgb rgb = vlrgbof(colour);
    const bool paper = rgb.r >= 1 && rgb.g >= 1 && rgb.b >= 1;
    if (paper && x <= 0 && y <= 0 && w >= vl.record.xpix && h >= vl.record.ypix && page->minx > page->maxx)
        return;
    page->setcolour(colour);
    page->stroke();
    // On an image the centres of the outermost pixels are its corners.
    const double half = vl.ops->raster ? 0.5 : 0;
    page->c.rectangle(page->cr, x - half, y - half, w, h);
    page->c.fill(page->cr);
    page->widen(x, y, 0);
    page->widen(x + w, y + h, 0);
}

void polygon(const double* xy, size_t n, const double* clip) {
    cairopage* page = pageof();
    if (!page) return;
    const cairolib& c = page->c;
    page->setcolour(vl.color);
    page->stroke();
    c.save(page->cr);
    if (clip) {
        c.rectangle(page->cr, clip[0], clip[1], clip[2], clip[3]);
        c.clip(page->cr);
    }
    bool first = true;
    for (size_t i = 0; i < n; i++) {
        const double x = xy[2 * i], y = xy[2 * i + 1];
        if (x >= 1e300) {
            c.close_path(page->cr);
            first = true;
            continue;
        }
        if (first) {
            c.move_to(page->cr, x, y);
        } else {
            c.line_to(page->cr, x, y);
        }
        first = false;
        page->widen(clip ? std::clamp(x, clip[0], clip[0] + clip[2]) : x,
                    clip ? std::clamp(y, clip[1], clip[1] + clip[3]) : y, 0);
    }
    if (vl.ops->raster) {
        // Neighbours that share an edge would leave a pale seam where both cover a pixel in part.
        constexpr double seam = 0.7;
        c.fill_preserve(page->cr);
        c.set_line_width(page->cr, seam);
        c.stroke(page->cr);
    } else {
        c.fill(page->cr);
    }
    c.restore(page->cr);
}

struct nativeface {
    const char* family;
    cairo_font_slant_t slant;
    cairo_font_weight_t weight;
};

// By the magnitude of the font's number.
nativeface faceof(int number) {
    static constexpr const char* families[] = {"Times", "Courier", "Helvetica", "Symbol"};
    constexpr auto plain = CAIRO_FONT_SLANT_NORMAL;
    constexpr auto thin = CAIRO_FONT_WEIGHT_NORMAL, bold = CAIRO_FONT_WEIGHT_BOLD;
    switch (number) {
    case 2: return {families[1], plain, thin};
    case 3: return {families[1], plain, bold};
    case 4: return {families[1], CAIRO_FONT_SLANT_OBLIQUE, thin};
    case 5: return {families[1], CAIRO_FONT_SLANT_OBLIQUE, bold};
    case 7: return {families[0], plain, bold};
    case 8: return {families[0], CAIRO_FONT_SLANT_ITALIC, thin};
    case 9: return {families[0], CAIRO_FONT_SLANT_ITALIC, bold};
    case 10: return {families[2], plain, thin};
    case 11: return {families[2], plain, bold};
    case 12: return {families[2], CAIRO_FONT_SLANT_OBLIQUE, thin};
    case 13: return {families[2], CAIRO_FONT_SLANT_OBLIQUE, bold};
    case 14: return {families[3], plain, thin};
    default: return {families[0], plain, thin};
    }
}

// A byte above 127 stands for itself in Latin-1 unless the whole is UTF-8 already.
std::string utf8of(const vlnativetext& text) {
    const std::string s(text.text, text.length);
    const auto continues = [&](size_t i) { return i < s.size() && (uint8_t(s[i]) & 0xc0) == 0x80; };
    bool valid = true;
    for (size_t i = 0; i < s.size() && valid; i++) {
        const uint8_t byte = uint8_t(s[i]);
        int more = byte < 0x80                            ? 0
                   : (byte & 0xe0) == 0xc0 && byte > 0xc1 ? 1
                   : (byte & 0xf0) == 0xe0                ? 2
                                                          : -1;
        valid = more >= 0;
        for (; more > 0 && valid; more--) valid = continues(++i);
    }
    if (valid) return s;
    std::string out;
    for (const char c : s) {
        const uint8_t byte = uint8_t(c);
        if (byte < 0x80) {
            out += c;
        } else {
            out += char(0xc0 | byte >> 6);
            out += char(0x80 | (byte & 0x3f));
        }
    }
    return out;
}

void drawtext(const vlnativetext& text) {
    cairopage* page = pageof();
    if (!page || vlnativelength(text) == 0) return;
    const cairolib& c = page->c;
    page->setcolour(text.fg);
    page->stroke();
    const nativeface face = faceof(-text.font);
    const std::string s = utf8of(text);
    const double angle = vlnativeangle(text) * std::numbers::pi / 180;
    c.save(page->cr);
    c.translate(page->cr, text.x, text.y);
    c.rotate(page->cr, angle);
    c.scale(page->cr, 1, -1);
    c.select_font_face(page->cr, face.family, face.slant, face.weight);
    c.set_font_size(page->cr, vlnativepoints(text) * page->perpoint);
    c.move_to(page->cr, 0, 0);
    c.show_text(page->cr, s.c_str());
    cairo_text_extents_t size;
    c.text_extents(page->cr, s.c_str(), &size);
    c.new_path(page->cr);
    c.restore(page->cr);
    // The four corners of the text's box, which lies along the angle.
    const double left = size.x_bearing, right = left + size.width, top = -size.y_bearing,
                 bottom = top - size.height;
    for (const double u : {left, right}) {
        for (const double v : {bottom, top}) {
            page->widen(text.x + u * std::cos(angle) - v * std::sin(angle),
                        text.y + u * std::sin(angle) + v * std::cos(angle), 0);
        }
    }
}

// One patch pixel covers one device pixel.
void writepatch(int x, int y, int w, int h, int srcw, int, const uint8_t* bits, int depth,
                int64_t transparent, int) {
    cairopage* page = pageof();
    if (!page) return;
    const cairolib& c = page->c;
    page->stroke();
    const vlpatchview view{bits, w, h, srcw, depth};
    cairo_surface_t* image = c.image_surface_create(CAIRO_FORMAT_ARGB32, w, h);
    page->check(c.surface_status(image));
    c.surface_flush(image);
    uint8_t* data = c.image_surface_get_data(image);
    const int stride = c.image_surface_get_stride(image);
    for (int row = 0; row < h; row++) {
        for (int column = 0; column < w; column++) {
            const uint32_t pixel = view.pixel(column, row);
            const vlrgb rgb = vlrgbof(vlindexofpixel(pixel, depth));
            const auto part = [](double v) { return uint32_t(std::lrint(v * 255)); };
            const uint32_t value =
                pixel == transparent ? 0 : 0xff000000u | part(rgb.r) << 16 | part(rgb.g) << 8 | part(rgb.b);
            memcpy(data + size_t(row) * size_t(stride) + size_t(column) * 4, &value, 4);
        }
    }
    c.surface_mark_dirty(image);
    const double half = vl.ops->raster ? 0.5 : 0;
    c.save(page->cr);
    c.set_source_surface(page->cr, image, x - half, y - half);
    c.pattern_set_filter(c.get_source(page->cr), CAIRO_FILTER_NEAREST);
    c.paint(page->cr);
    c.restore(page->cr);
    c.surface_destroy(image);
    page->color = -1;
    page->widen(x, y, 0);
    page->widen(x + w, y + h, 0);
}

constexpr vldeviceops operations(bool raster) {
    vldeviceops ops{};
    ops.open = pageget;
    ops.init = pageinit;
    ops.close = pagequit;
    ops.setlinewidth = setlinewidth;
    ops.setpixel = setpixel;
    ops.drawline = drawline;
    ops.erasearea = erasearea;
    ops.drawtext = drawtext;
    ops.textwidth = vlnativewidth;
    ops.writepatch = writepatch;
    ops.polygon = polygon;
    ops.anydepth = true;
    ops.raster = raster;
    return ops;
}

constexpr vldeviceops imageoperations = operations(true), vectoroperations = operations(false);

} // namespace

const vldeviceops* vlcairooperations(int number) {
    return formof(number) == PNGPAGE ? &imageoperations : &vectoroperations;
}
