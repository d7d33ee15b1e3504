/* tests/unit/vellum/fontbytes.h - a stroke font file read straight from its bytes, as docs/design/fonts.md
 * tells it. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

struct fontbytes {
    std::vector<uint8_t> data;

    explicit fontbytes(const std::string& name) {
        std::ifstream in(name, std::ios::binary);
        data.assign(std::istreambuf_iterator<char>(in), {});
    }
    uint32_t number(uint64_t offset, int size = 4) const {
        uint32_t v = 0;
        for (int i = 0; i < size; i++) v |= uint32_t(data.at(size_t(offset) - 1 + size_t(i))) << (8 * i);
        return v;
    }
    int word(uint64_t offset) const { return int16_t(number(offset, 2)); }

    struct entry {
        uint32_t table, height, maxpoints, flags;
    };
    uint32_t fonts() const { return number(1); }
    entry font(int k) const {
        const uint32_t at = uint32_t(20 * k - 15);
        return {number(at), number(at + 4), number(at + 8), number(at + 12)};
    }

    struct pair {
        double x, y;
        bool up() const { return x == -1000; }
    };
    struct glyph {
        bool present = false;
        double advance = 0, toldleft = 0, toldright = 0;
        double left = 0, right = 0, low = 0, high = 0;
        std::vector<pair> points;

        // How often each shape goes round a point: sum of crossings with sign, and without.
        template <class Use> void windings(double x, double y, Use use) const {
            int signs = 0, crossings = 0;
            size_t first = 0;
            for (size_t i = 0; i <= points.size(); i++) {
                if (i < points.size() && !points[i].up()) continue;
                for (size_t k = first; k < i; k++) {
                    const pair a = points[k], b = points[k + 1 < i ? k + 1 : first];
                    if ((a.y > y) == (b.y > y) || x >= a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y)) continue;
                    crossings++;
                    signs += b.y > a.y ? 1 : -1;
                }
                first = i + 1;
                if (i < points.size() && points[i].y == 0) continue; // the same shape goes on
                use(signs, crossings);
                signs = crossings = 0;
            }
        }
        bool covers(double x, double y) const {
            bool in = false;
            windings(x, y, [&](int, int crossings) { in |= crossings % 2 == 1; });
            return in;
        }
        // Is the point within a shape that goes round it twice?
        bool overlaps(double x, double y) const {
            bool twice = false;
            windings(x, y, [&](int signs, int) { twice |= signs > 1 || signs < -1; });
            return twice;
        }
    };
    glyph glyphof(int k, int code) const {
        glyph g;
        const uint32_t at = number(font(k).table + 4 * uint32_t(code));
        if (at == 0) return g;
        g.present = true;
        g.advance = word(at + 2);
        g.toldleft = word(at + 4);
        g.toldright = word(at + 6);
        bool any = false;
        for (int i = 0; i < word(at); i++) {
            const pair p{double(word(at + 8 + 4 * uint32_t(i))), double(word(at + 10 + 4 * uint32_t(i)))};
            g.points.push_back(p);
            if (p.up()) continue;
            g.left = any ? std::min(g.left, p.x) : p.x;
            g.right = any ? std::max(g.right, p.x) : p.x;
            g.low = any ? std::min(g.low, p.y) : p.y;
            g.high = any ? std::max(g.high, p.y) : p.y;
            any = true;
        }
        return g;
    }
};
