#include "vellum/vlpicture.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace {

int tounits(double v) { return int(std::clamp(std::lrint(v / vlunit), -16384L, 16383L)); }

uint32_t pointword(vlkind kind, int x, int y) {
    return kind | (uint32_t(x) & 0x7fff) << 15 | (uint32_t(y) & 0x7fff);
}

void put(vlkind kind, double nx, double ny) {
    if (!vl.open) return;
    vlpicture& p = *vl.open;
    const int x = tounits(nx - p.offx), y = tounits(ny - p.offy);
    if (kind == VLMOVEWORD && p.lastknown && x == p.lastx && y == p.lasty) return;
    vlappendword(p, pointword(kind, x, y));
    p.lastx = x;
    p.lasty = y;
    p.lastknown = true;
}

uint32_t halves(int high, int low) { return (uint32_t(high) & 0xffff) << 16 | (uint32_t(low) & 0xffff); }

// Four bytes to a word, the first the highest.
void putbytes(const char* s, size_t length) {
    for (size_t i = 0; i < length; i += 4) {
        uint32_t word = 0;
        for (size_t k = i; k < i + 4; k++) word = word << 8 | (k < length ? uint8_t(s[k]) : 0);
        vlputword(word);
    }
}

constexpr size_t mosttext = 32767; // bytes of one text in a word's half

} // namespace

void vlappendword(vlpicture& picture, uint32_t word) {
    if (picture.list.empty() || picture.list.back()->count == vlchunk::room) {
        try {
            picture.list.push_back(std::make_unique<vlchunk>());
        } catch (const std::exception&) { vlerror("vlalloc: out of available memory"); }
    }
    vlchunk& chunk = *picture.list.back();
    chunk.words[chunk.count++] = word;
}

void vlputword(uint32_t word) {
    if (vl.open) vlappendword(*vl.open, word);
}

void vlputmove(double nx, double ny) { put(VLMOVEWORD, nx, ny); }
void vlputline(double nx, double ny) { put(VLLINEWORD, nx, ny); }
void vlputpoint(double nx, double ny) { put(VLPOINTWORD, nx, ny); }

void vlputcall(vlpicture* picture, double nx, double ny, const double* matrix, bool restore) {
    if (!vl.open) return;
    vlputmove(nx, ny);
    if (matrix) {
        vlputword(VLOPTRANSFORM);
        for (int i = 0; i < 16; i++) {
            const uint64_t bits = std::bit_cast<uint64_t>(matrix[i]);
            vlputword(uint32_t(bits));
            vlputword(uint32_t(bits >> 32));
        }
    }
    vlputword((restore ? VLOPCALLRESTORE : VLOPCALL) | picture->handle);
    vlputword(0);
    if (!restore) vl.open->lastknown = false;
    picture->refs++;
}

void vlputnativetext(const vlnativetext& text) {
    const size_t length = std::min(text.length, mosttext);
    vlputword(VLOPTEXT | 1);
    vlputword(std::bit_cast<uint32_t>(float(text.size)));
    vlputword(halves(int(length), text.font));
    putbytes(text.text, length);
}

void vlputbitmaptext(const vlbitmaptext& text) {
    const size_t length = std::min(text.text.size(), mosttext);
    vlputword(VLOPTEXT);
    vlputword(halves(text.xspace, text.yspace));
    vlputword(halves(text.fg, text.bg));
    vlputword(halves(text.font, int(length)));
    putbytes(text.text.data(), length);
}

uint32_t vlwords::next() {
    if (!more()) return 0;
    const vlchunk& c = *picture.list[chunk];
    const uint32_t word = c.words[at++];
    if (at == c.count) {
        chunk++;
        at = 0;
    }
    return word;
}

size_t vlwords::datawords(uint32_t word) const {
    if ((word & VLCONTROLWORD) != VLCONTROLWORD) return 0;
    switch (word & vlopmask) {
    case VLOPTRANSFORM: return 32;
    case VLOPCALL:
    case VLOPCALLRESTORE:
    case VLOPPATCH: return 1;
    case VLOPTEXT: {
        vlwords ahead = *this;
        ahead.next();
        const uint32_t second = ahead.next(), third = ahead.next();
        const bool native = (word & 0xffff) != 0;
        const size_t length = native ? second >> 16 : third & 0xffff;
        return (native ? 2 : 3) + (length + 3) / 4;
    }
    default: return 0;
    }
}

std::vector<uint32_t> vlcallsof(const vlpicture& picture) {
    std::vector<uint32_t> calls;
    for (vlwords walk(picture); walk.more();) {
        const uint32_t word = walk.next(), op = word & vlopmask;
        if (op == VLOPCALL || op == VLOPCALLRESTORE) calls.push_back(word & vloperandmask);
        walk.skip(walk.datawords(word));
    }
    return calls;
}
