#include "vellum/vlpath.h"

#include "vellum/vlstate.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr float nopoint = 1e30f;

// Is there no room for so many words of arguments and an operation? Then the overflow function makes room; a
// command that never fits is dropped.
bool makeroom(VLPathBuffer* p, size_t nwords) {
    if (nwords * 4 + size_t(p->argIdx) <= size_t(p->opIdx)) return true;
    if ((nwords + 8) * 4 > VLPathBuffer::size) {
        vlcomplain("CHECK4: VLPathBuffer too small; skipping command!\n");
        return false;
    }
    if (!p->overflow) {
        vlcomplain("CHECK4: argIdx+sizeof(float)*%d>opIdx!\n", int(nwords));
        return false;
    }
    p->overflow(p);
    return nwords * 4 + size_t(p->argIdx) <= size_t(p->opIdx);
}

void putop(VLPathBuffer* p, vlpathop op) { p->buffer[p->opIdx--] = op; }

void putfloat(VLPathBuffer* p, float v) {
    memcpy(p->buffer + p->argIdx, &v, sizeof v);
    p->argIdx += int32_t(sizeof v);
}

// Bytes, padded to whole words.
void putbytes(VLPathBuffer* p, const void* bytes, size_t count) {
    memcpy(p->buffer + p->argIdx, bytes, count);
    p->argIdx += int32_t((count + 3) / 4 * 4);
}

size_t wordsof(size_t bytes) { return (bytes + 3) / 4; }

void widen(VLPathBuffer* p, float x, float y) {
    p->minx = std::min(p->minx, x);
    p->miny = std::min(p->miny, y);
    p->maxx = std::max(p->maxx, x);
    p->maxy = std::max(p->maxy, y);
}

void setcurrent(VLPathBuffer* p, float x, float y) {
    p->curx = x;
    p->cury = y;
}

void forgetpoint(VLPathBuffer* p) {
    setcurrent(p, nopoint, nopoint);
    p->pathDrawing = false;
}

void putcolour(VLPathBuffer* p) {
    putop(p, VLPCOLOUR);
    putfloat(p, p->r);
    putfloat(p, p->g);
    putfloat(p, p->b);
}

void putpoint(VLPathBuffer* p, vlpathop op, float x, float y) {
    putop(p, op);
    putfloat(p, x);
    putfloat(p, y);
}

// A path is open after this; false when there is no point to begin at or no room.
bool openpath(VLPathBuffer* p, const char* caller) {
    if (p->pathDrawing) return true;
    if (p->curx == nopoint) {
        vlcomplain("%%%%%s: no current point!\n", caller);
        return false;
    }
    if (!makeroom(p, 2)) return false;
    putpoint(p, VLPBEGIN, p->curx, p->cury);
    p->pathDrawing = true;
    return true;
}

} // namespace

void VLPathInit(VLPathBuffer* p) {
    void (*const overflow)(VLPathBuffer*) = p->overflow;
    *p = VLPathBuffer{};
    p->overflow = overflow;
    putop(p, VLPSTART);
    putcolour(p);
}

void VLPathSetOverflow(VLPathBuffer* p, void (*fn)(VLPathBuffer*)) { p->overflow = fn; }

void VLPathFlush(VLPathBuffer* p) {
    p->argIdx = 0;
    p->opIdx = VLPathBuffer::size - 1;
    putcolour(p);
    if (p->pathDrawing) putpoint(p, VLPBEGIN, p->curx, p->cury);
}

void VLPathGetBox(const VLPathBuffer* p, float box[4]) {
    box[0] = p->minx;
    box[1] = p->miny;
    box[2] = p->maxx;
    box[3] = p->maxy;
}

void VLPathSetRGB(VLPathBuffer* p, float r, float g, float b) {
    if (r == p->r && g == p->g && b == p->b) return;
    const bool replace = p->opIdx < VLPathBuffer::size - 1 && p->buffer[p->opIdx + 1] == VLPCOLOUR;
    p->pathDrawing = false;
    if (!replace && !makeroom(p, 3)) return;
    p->r = r;
    p->g = g;
    p->b = b;
    if (replace) {
        p->argIdx -= 3 * int32_t(sizeof(float));
        p->opIdx++;
    }
    putcolour(p);
}

void VLPathMoveTo(VLPathBuffer* p, float x, float y) {
    if (p->pathDrawing && x == p->curx && y == p->cury) return;
    if (!makeroom(p, 2)) return;
    // Making room may have opened the path anew at the old point.
    putpoint(p, p->pathDrawing ? VLPMOVE : VLPBEGIN, x, y);
    p->pathDrawing = true;
    setcurrent(p, x, y);
    widen(p, x, y);
}

void VLPathLineTo(VLPathBuffer* p, float x, float y) {
    if (!openpath(p, "VLPathLineTo") || !makeroom(p, 2)) return;
    putpoint(p, VLPLINE, x, y);
    setcurrent(p, x, y);
    widen(p, x, y);
}

void VLPathDotAt(VLPathBuffer* p) {
    if (!openpath(p, "VLPathDotAt") || !makeroom(p, 2)) return;
    putpoint(p, VLPDOT, 0, 0);
    widen(p, p->curx, p->cury);
}

void VLPathRect(VLPathBuffer* p, float x, float y, float w, float h) {
    if (!makeroom(p, 4)) return;
    putpoint(p, VLPRECT, x, y);
    putfloat(p, w);
    putfloat(p, h);
    widen(p, x, y);
    widen(p, x + w, y + h);
    forgetpoint(p);
}

void VLPathPoly(VLPathBuffer* p, const double* xy, size_t n, const double* clip) {
    if (!makeroom(p, 2 * n + 1 + (clip ? 4 : 0))) return;
    putop(p, clip ? VLPCLIPPED : VLPPOLYGON);
    for (int i = 0; clip && i < 4; i++) putfloat(p, float(clip[i]));
    putfloat(p, float(n));
    for (size_t i = 0; i < n; i++) {
        const bool gap = xy[2 * i] >= 1e300;
        const float x = gap ? nopoint : float(xy[2 * i]), y = gap ? 0 : float(xy[2 * i + 1]);
        putfloat(p, x);
        putfloat(p, y);
        if (gap) continue;
        if (clip) {
            const float right = float(clip[0] + clip[2]), top = float(clip[1] + clip[3]);
            widen(p, std::clamp(x, float(clip[0]), right), std::clamp(y, float(clip[1]), top));
        } else {
            widen(p, x, y);
        }
    }
    forgetpoint(p);
}

void VLPathText(VLPathBuffer* p, int font, float size, float angle, float scale, std::string_view s) {
    vlassert(p->pathDrawing, "p->pathDrawing", "vlpath");
    const float x = p->curx, y = p->cury;
    if (!makeroom(p, 7 + wordsof(s.size()))) return;
    putpoint(p, VLPTEXT, x, y);
    for (const float v : {float(font), size, angle, scale, float(s.size())}) putfloat(p, v);
    putbytes(p, s.data(), s.size());
    forgetpoint(p);
}

void VLPathRaw(VLPathBuffer* p, std::string_view s) {
    if (!makeroom(p, 1 + wordsof(s.size()))) return;
    putop(p, VLPRAW);
    putfloat(p, float(s.size()));
    putbytes(p, s.data(), s.size());
    forgetpoint(p);
}

void VLPathImage(VLPathBuffer* p, float x, float y, float w, float h, int columns, int rows, int depth,
                 const uint8_t* bytes) {
    const size_t count = (size_t(columns) * size_t(depth) + 7) / 8 * size_t(rows);
    if (!makeroom(p, 7 + wordsof(count))) return;
    putpoint(p, VLPIMAGE, x, y);
    for (const float v : {w, h, float(columns), float(rows), float(depth)}) putfloat(p, v);
    putbytes(p, bytes, count);
    widen(p, x, y);
    widen(p, x + w, y + h);
    forgetpoint(p);
}
