#include "fontfile.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace fonttool {
namespace {

constexpr int penup = -1000;

/* A growing file with little-endian numbers at 1-based offsets. */
struct bytes {
    std::vector<uint8_t> data;

    uint32_t end() const { return static_cast<uint32_t>(data.size()) + 1; }
    void put(uint32_t offset, uint32_t value, int size) {
        if (data.size() < offset - 1 + size) data.resize(offset - 1 + size);
        for (int i = 0; i < size; i++) data[offset - 1 + i] = static_cast<uint8_t>(value >> (8 * i));
    }
    void word(double value) {
        if (!(std::fabs(value) <= 32767)) throw std::runtime_error("a number of a glyph is beyond 16 bits");
        put(end(), static_cast<uint16_t>(static_cast<int16_t>(std::lround(value))), 2);
    }
};

struct fontstats {
    size_t points = 0; // most in a glyph
};

/* The point list: x, y pairs; x of -1000 lifts the pen, with y 1 where a new shape begins. */
std::vector<point> pairs(const drawnglyph& g, bool filled) {
    std::vector<point> out;
    for (const shape& s : g.shapes) {
        size_t points = 0;
        for (size_t i = 0; i < s.size(); i++) {
            if (!out.empty()) out.push_back({penup, i == 0 && filled ? 1.0 : 0.0});
            for (point p : s[i]) {
                const double x = std::lround(p.x * fileunits);
                out.push_back({x == penup ? penup + 1 : x, std::round(p.y * fileunits)});
            }
            points += s[i].size() + 1;
        }
        if (filled && points > mostpoints)
            throw std::runtime_error("a stroke has " + std::to_string(points) + " points");
    }
    return out;
}

void putglyph(bytes& file, const drawnglyph& g, bool filled, fontstats& stats) {
    const std::vector<point> list = pairs(g, filled);
    double left = 0, right = 0;
    bool any = false;
    for (const point& p : list) {
        if (p.x == penup) continue;
        left = any ? std::min(left, p.x) : p.x;
        right = any ? std::max(right, p.x) : p.x;
        any = true;
    }
    file.word(static_cast<double>(list.size()));
    file.word(g.advance * fileunits);
    file.word(left);
    file.word(right);
    for (const point& p : list) {
        file.word(p.x);
        file.word(p.y);
    }
    stats.points = std::max(stats.points, list.size());
}

void putfont(bytes& file, const strokefont& font) {
    const uint32_t table = file.end(), header = 20 * font.number - 15;
    file.put(table, 0, 4);
    file.put(table + 4 * 255, 0, 4);
    fontstats stats;
    for (const auto& [code, g] : font.glyphs) {
        const uint32_t at = file.end();
        try {
            putglyph(file, g, font.filled, stats);
        } catch (const std::runtime_error& fault) {
            throw std::runtime_error("font " + std::to_string(font.number) + ", character " +
                                     std::to_string(code) + ": " + fault.what());
        }
        file.put(table + 4 * code, at, 4);
    }
    file.put(header, table, 4);
    file.put(header + 4, capital * fileunits, 4);
    file.put(header + 8, static_cast<uint32_t>(stats.points), 4);
    file.put(header + 12, (font.filled ? 1 : 0) | (font.proportional ? 2 : 0) | (font.italic ? 4 : 0), 4);
}

/* The inked part of a glyph. */
struct inkbox {
    int left, top, width, height;
};

inkbox inked(const bitmap& b) {
    int x0 = b.width, x1 = -1, y0 = b.height, y1 = -1;
    for (int y = 0; y < b.height; y++)
        for (int x = 0; x < b.width; x++)
            if (b.cells[y * b.width + x]) {
                x0 = std::min(x0, x), x1 = std::max(x1, x);
                y0 = std::min(y0, y), y1 = std::max(y1, y);
            }
    if (x1 < 0) return {0, 0, 0, 0};
    return {x0, y0, x1 - x0 + 1, y1 - y0 + 1};
}

void putbits(bytes& file, const bitmap& b) {
    uint8_t held = 0;
    int filled = 0;
    for (const uint8_t cell : b.cells) {
        held = static_cast<uint8_t>(held << 1 | (cell ? 1 : 0));
        if (++filled == 8) {
            file.put(file.end(), held, 1);
            held = 0, filled = 0;
        }
    }
    if (filled) file.put(file.end(), static_cast<uint8_t>(held << (8 - filled)), 1);
}

void putbitmapfont(bytes& file, const bitmapfont& font) {
    constexpr uint32_t records = 128 * 13;
    const uint32_t table = file.end();
    file.put(table + records, 0, 1); // so that no glyph's bits have the offset 0
    for (const auto& [code, b] : font.glyphs) {
        if (code >= 128) continue;
        const inkbox ink = inked(b);
        const uint32_t at = table + 13 * code, bits = file.end() - table - records;
        const int numbers[9] = {
            b.width, b.height, font.baseline, ink.left, ink.left + ink.width, ink.top, ink.top + ink.height,
            0,       0};
        for (int i = 0; i < 9; i++) file.put(at + i, static_cast<uint8_t>(numbers[i]), 1);
        file.put(at + 9, bits, 4);
        putbits(file, b);
    }
    const uint32_t header = 12 * font.number - 7;
    file.put(header, table, 4);
    file.put(header + 4, font.width, 2);
    file.put(header + 6, font.height, 2);
}

template <class Font> int highest(const std::vector<Font>& fonts) {
    int most = 0;
    for (const Font& f : fonts) most = std::max(most, f.number);
    return most;
}

} // namespace

std::vector<uint8_t> strokefontfile(const std::vector<strokefont>& fonts) {
    bytes file;
    const int n = highest(fonts);
    // 21 would read as the offset that marks a file of a single font.
    if (n == 21) throw std::runtime_error("the file cannot hold exactly 21 fonts: add an empty one");
    file.put(1, n, 4);
    file.put(4 + 20 * n, 0, 1);
    for (const strokefont& f : fonts) putfont(file, f);
    return file.data;
}

std::vector<uint8_t> bitmapfontfile(const std::vector<bitmapfont>& fonts) {
    bytes file;
    const int n = highest(fonts);
    file.put(1, n, 4);
    file.put(4 + 12 * n, 0, 1);
    for (const bitmapfont& f : fonts) putbitmapfont(file, f);
    return file.data;
}

} // namespace fonttool
