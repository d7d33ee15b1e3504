#include "vellum/vlfont.h"

#include "vellum/vlpicture.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

vlfonts::vlfonts() { std::fill_n(head, buckets, -1); }

vlfonts& vlfontstate() {
    if (!vl.fonts) vl.fonts = std::make_shared<vlfonts>();
    return *vl.fonts;
}

namespace {

constexpr int penup = -1000;
constexpr uint32_t singletable = 21; // where a file of one font has its table, and what it begins with
constexpr uint32_t tablesize = 4 * 256;

uint32_t number32(int file, uint32_t offset) {
    uint8_t b[4];
    cacheread(file, offset, 4, b);
    return b[0] | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
}

int number16(const uint8_t* b) { return int16_t(b[0] | b[1] << 8); }

bool within(int file, uint64_t offset, uint64_t length) {
    return offset >= 1 && offset - 1 + length <= cachesize(file);
}

int openonce(std::unique_ptr<vlcachefile>& held, const char* name, const char* message) {
    if (!held) {
        const int file = cacheopen(name, 0, 0);
        if (file == 0) vlfilefault(message, name);
        held = std::make_unique<vlcachefile>(file);
    }
    return held->file;
}

int strokefile(int f) {
    vlfonts& fonts = vlfontstate();
    if (f >= 100) return openonce(fonts.user, "font0", "Unable to open user font file (font0)");
    return openonce(fonts.system, vl.strokefontfile.c_str(),
                    "Unable to open VELLUM stroked font file (vlfonts.0)");
}

// A picture without some of its letters would pass for a whole one.
[[noreturn]] void damagedfont(int file) {
    const vlfonts& fonts = vlfontstate();
    if (fonts.user && fonts.user->file == file)
        vlerror("Unable to open user font file (font0)\nit is damaged");
    vlerror("Unable to open VELLUM stroked font file (vlfonts.0)\n%s is damaged", vl.strokefontfile.c_str());
}

// Takes height, most points and flags from an entry's last three numbers; false when they make no sense.
bool takeentry(vlstrokefont& font, uint32_t at) {
    const uint32_t height = number32(font.file, at) & 0xffff, points = number32(font.file, at + 4);
    const uint32_t flags = number32(font.file, at + 8);
    if (height == 0 || height > 32767 || points > 32767 || !within(font.file, font.table, tablesize))
        return false;
    font.height = int(height);
    font.maxpoints = int(points);
    font.filled = flags & 1;
    font.proportional = flags & 2;
    font.italic = flags & 4;
    return true;
}

bool readentry(vlstrokefont& font, uint32_t k) {
    const uint32_t n = number32(font.file, 1);
    if (n == singletable && k == 0) {
        font.table = singletable;
        return takeentry(font, 5);
    }
    if (k == 0 || k > n || !within(font.file, 20ull * k - 15, 16)) return false;
    font.table = number32(font.file, 20 * k - 15);
    if (font.table == 0) return false;
    if (!takeentry(font, 20 * k - 11)) damagedfont(font.file);
    return true;
}

// ---- Glyphs

// Leaves out points of a polyline that lie within `spread` of the chord of their kept neighbours. Method: D.
// Douglas and T. Peucker, Cartographica 10 (1973) 112-122.
void thin(vlfonts& work, const vlpoint* p, int n, double spread) {
    work.keep.assign(size_t(n), 0);
    work.keep[0] = work.keep[size_t(n) - 1] = 1;
    work.spans.assign(1, {0, n - 1});
    while (!work.spans.empty()) {
        const auto [a, b] = work.spans.back();
        work.spans.pop_back();
        const double dx = p[b].x - p[a].x, dy = p[b].y - p[a].y, length = std::hypot(dx, dy);
        double most = spread;
        int far = -1;
        for (int i = a + 1; i < b; i++) {
            const double ex = p[i].x - p[a].x, ey = p[i].y - p[a].y;
            const double away = length > 0 ? std::fabs(dx * ey - dy * ex) / length : std::hypot(ex, ey);
            if (away > most) {
                most = away;
                far = i;
            }
        }
        if (far < 0) continue;
        work.keep[size_t(far)] = 1;
        work.spans.emplace_back(a, far);
        work.spans.emplace_back(far, b);
    }
}

void addcontour(vlfonts& work, size_t from, size_t to, double spread) {
    const int n = int(to - from);
    if (n < 1) return;
    const vlpoint* p = work.read.data() + from;
    thin(work, p, n, spread);
    for (int i = 0; i < n; i++)
        if (work.keep[size_t(i)]) work.points.push_back(p[i]);
}

void addink(vlglyph& g, vlpoint p) {
    if (!g.ink) {
        g.left = g.right = p.x;
        g.low = g.high = p.y;
        g.ink = true;
    }
    g.left = std::min(g.left, p.x);
    g.right = std::max(g.right, p.x);
    g.low = std::min(g.low, p.y);
    g.high = std::max(g.high, p.y);
}

// The point list of a glyph, `count` pairs at `bytes`, into the cache's points.
void takepoints(vlfonts& work, vlglyph& g, int count, double scale) {
    g.first = uint32_t(work.points.size());
    work.read.clear();
    size_t from = 0;
    for (int i = 0; i < count; i++) {
        const int x = number16(&work.bytes[4 * size_t(i)]), y = number16(&work.bytes[4 * size_t(i) + 2]);
        if (x == penup) {
            addcontour(work, from, work.read.size(), g.spread);
            work.points.push_back({1e300, y == 1 ? 1.0 : 0.0});
            from = work.read.size();
        } else {
            work.read.push_back({x * scale, y * scale});
            addink(g, work.read.back());
        }
    }
    addcontour(work, from, work.read.size(), g.spread);
    g.count = uint32_t(work.points.size()) - g.first;
}

void readglyph(const vlstrokefont& font, int code, vlglyph& g) {
    vlfonts& work = vlfontstate();
    const double scale = g.size / font.height;
    g.advance = 0.6 * g.size; // of a character that the font has not
    const uint32_t at = number32(font.file, font.table + 4 * uint32_t(code));
    if (at == 0) return;
    if (!within(font.file, at, 8)) damagedfont(font.file);
    uint8_t head[8];
    cacheread(font.file, at, 8, head);
    const int count = number16(head);
    if (count < 0 || count > font.maxpoints || !within(font.file, uint64_t(at) + 8, 4 * uint64_t(count)))
        damagedfont(font.file);
    g.present = true;
    g.advance = number16(head + 2) * scale;
    work.bytes.resize(4 * size_t(count));
    if (count > 0) cacheread(font.file, at + 8, 4 * uint32_t(count), work.bytes.data());
    takepoints(work, g, count, scale);
}

void clearglyphs(vlfonts& work) {
    for (vlglyph& g : work.glyphs)
        if (g.picture) vlreleasepicture(g.picture);
    work.glyphs.clear();
    work.points.clear();
    std::fill_n(work.head, vlfonts::buckets, -1);
}

} // namespace

const vlstrokefont& vlfindfont(int f) {
    vlfonts& fonts = vlfontstate();
    if (fonts.current.number == f) return fonts.current;
    vlstrokefont font;
    font.file = strokefile(f);
    font.found = readentry(font, uint32_t(f % 100));
    if (!font.found) {
        font.file = strokefile(1);
        if (!readentry(font, 1) && !readentry(font, 0))
            vlerror("Unable to open VELLUM stroked font file (vlfonts.0)\n%s holds no font 1",
                    vl.strokefontfile.c_str());
    }
    font.number = f;
    fonts.current = font;
    return fonts.current;
}

vlglyph& vlfindglyph(const vlstrokefont& font, int code, double size, double spread) {
    vlfonts& work = vlfontstate();
    const int key = font.number * 256 + code;
    int* bucket = &work.head[key % vlfonts::buckets];
    for (int i = *bucket; i >= 0; i = work.glyphs[size_t(i)].next) {
        vlglyph& g = work.glyphs[size_t(i)];
        if (g.key == key && g.size == size && g.spread == spread) return g;
    }
    if (work.glyphs.size() >= vlfonts::mostglyphs) clearglyphs(work);
    vlglyph g;
    g.key = key;
    g.size = size;
    g.spread = spread;
    readglyph(font, code, g);
    g.next = *bucket;
    *bucket = int(work.glyphs.size());
    work.glyphs.push_back(g);
    return work.glyphs.back();
}

// ---- The client's choice

int DFONT(int f) {
    vlflushall();
    vl.text.lastfont = vl.text.curfont;
    bool valid;
    constexpr int mostfonts = 10000;
    if (f >= 0) {
        valid = f < mostfonts && vlfindfont(f).found;
    } else {
        valid = f >= -14 && f <= -2 && vl.device >= 0 && vl.record.ishardware == 1 &&
                -f <= vl.record.maxfonts + 1;
    }
    vl.text.curfont = valid ? f : 1;
    if (vl.text.curfont >= 0) vl.text.fontheight = vlfindfont(vl.text.curfont).height;
    return valid ? 1 : 0;
}

int DGETFONT() { return vl.text.curfont; }

void DSETFONTPATH(const char* directory) {
    constexpr char separator = char(std::filesystem::path::preferred_separator);
    std::string path = directory ? directory : std::string(1, separator) + "vellum";
    if (!path.empty()) {
        const bool rooted = path[0] == '/' || path[0] == '\\' || std::filesystem::path(path).is_absolute();
        if (!rooted) path.insert(0, 1, separator);
        if (path.back() != '/' && path.back() != '\\') path += separator;
    }
    if (vl.strokefontfile == path + "vlfonts.0") return;
    if (vl.fonts) clearglyphs(*vl.fonts);
    vl.fonts.reset();
    vl.strokefontfile = path + "vlfonts.0";
    vl.bitmapfontfile = path + "vlbfonts.0";
}

// ---- Bitmap fonts

namespace {

constexpr uint32_t records = 13 * 128;

int bitmapfile() {
    return openonce(vlfontstate().bitmap, vl.bitmapfontfile.c_str(),
                    "Unable to open VELLUM bitmap font file (bfontfile)\n");
}

bool readbitmapfont(int file, uint32_t n, vlbitmapfont& out) {
    const uint64_t at = 12ull * n - 7;
    if (n < 1 || !within(file, at, 8)) return false;
    uint8_t cell[4];
    out.number = int(n);
    out.table = number32(file, uint32_t(at));
    cacheread(file, uint32_t(at) + 4, 4, cell);
    out.width = number16(cell);
    out.height = number16(cell + 2);
    return within(file, out.table, records) && out.width > 0 && out.height > 0;
}

// The cell that a device's own text has.
void devicecell(int* width, int* height) {
    const bool laser = vl.device >= VLLJ2P && vl.device <= VLLJ2LFULL;
    *width = laser ? 30 : 8;
    *height = laser ? 50 : vl.device == VLEGAC || vl.device == VLEGAM ? 14 : 16;
}

} // namespace

vlbitmapfont vlfindbitmapfont(int n) {
    const int file = bitmapfile();
    const uint32_t fonts = std::min(number32(file, 1), cachesize(file) / 12);
    vlbitmapfont font;
    if (n >= 1 && uint32_t(n) <= fonts && readbitmapfont(file, uint32_t(n), font)) return font;
    int width, height;
    devicecell(&width, &height);
    for (uint32_t k = 1; n == 0 && k <= fonts; k++)
        if (readbitmapfont(file, k, font) && font.width == width && font.height == height) return font;
    for (uint32_t k = 1; k <= fonts; k++)
        if (readbitmapfont(file, k, font)) return font;
    vlerror("Unable to open VELLUM bitmap font file (bfontfile)\n%s holds no font",
            vl.bitmapfontfile.c_str());
}

void vlreadbitmap(const vlbitmapfont& font, int code, bool withbits, vlbitmapglyph& out) {
    out.present = false;
    std::fill_n(out.numbers, 9, 0);
    if (code < 0 || code >= 128) return;
    const int file = bitmapfile();
    uint8_t record[13];
    cacheread(file, font.table + 13 * uint32_t(code), 13, record);
    for (int i = 0; i < 9; i++) out.numbers[i] = int8_t(record[i]);
    const uint32_t bits = number32(file, font.table + 13 * uint32_t(code) + 9);
    if (bits == 0 || out.numbers[0] < 0 || out.numbers[1] < 0) return;
    const uint32_t size = uint32_t(out.numbers[0] * out.numbers[1] + 7) / 8;
    const uint64_t at = uint64_t(font.table) + records + bits;
    if (!within(file, at, size)) return;
    out.present = true;
    if (!withbits) return;
    out.bits.resize(size);
    if (size > 0) cacheread(file, uint32_t(at), size, out.bits.data());
}
