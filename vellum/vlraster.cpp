#include "vellum/vlraster.h"

#include "vellum/vldraw.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

bool vldepthok(int depth) {
    switch (depth) {
    case 1:
    case 2:
    case 4:
    case 8:
    case 12:
    case 15:
    case 16:
    case 24:
    case 32: return true;
    default: return false;
    }
}

uint32_t vlgetpixel(const uint8_t* bits, size_t index, int depth) {
    const size_t bit = index * size_t(depth);
    const uint8_t* at = bits + bit / 8;
    const uint64_t five =
        uint64_t(at[0]) << 32 | uint64_t(at[1]) << 24 | uint64_t(at[2]) << 16 | at[3] << 8 | at[4];
    const int down = 40 - int(bit % 8) - depth;
    return uint32_t(five >> down & ((uint64_t(1) << depth) - 1));
}

void vlputpixel(uint8_t* bits, size_t index, int depth, uint32_t value) {
    const size_t bit = index * size_t(depth);
    uint8_t* at = bits + bit / 8;
    if (depth < 8) {
        const int down = 8 - int(bit % 8) - depth;
        const uint32_t mask = (1u << depth) - 1;
        *at = uint8_t((*at & ~(mask << down)) | (value & mask) << down);
        return;
    }
    int left = depth;
    // From the lowest bits up: a piece of a byte, whole bytes, a piece of a byte.
    size_t last = bit + size_t(depth); // one past the pixel
    while (left > 0) {
        const int inbyte = int((last - 1) % 8) + 1;
        const int take = std::min(inbyte, left), down = 8 - inbyte;
        const uint32_t mask = (1u << take) - 1;
        uint8_t& byte = bits[(last - 1) / 8];
        byte = uint8_t((byte & ~(mask << down)) | (value & mask) << down);
        value >>= take;
        left -= take;
        last -= size_t(take);
    }
}

void vlmemoryline(vlpatch* root, int x0, int y0, int x1, int y1, uint32_t pixel) {
    const int dx = std::abs(x1 - x0), dy = -std::abs(y1 - y0);
    const int sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
    int error = dx + dy;
    for (;;) {
        vlputpixel(root->bits.get(), size_t(y0) * size_t(root->stride) + size_t(x0), root->depth, pixel);
        if (x0 == x1 && y0 == y1) return;
        const int twice = 2 * error;
        if (twice >= dy) {
            error += dy;
            x0 += sx;
        }
        if (twice <= dx) {
            error += dx;
            y0 += sy;
        }
    }
}

namespace {

int within(double v, int size) { return int(std::clamp(std::lrint(v), 0L, long(size) - 1)); }

} // namespace

void vlpixelline(vlpatch* target, double x0, double y0, double x1, double y1) {
    vlpatch* root = vlrootof(target);
    if (root->flags & VLMEMORY) {
        vlmemoryline(root, within(x0, root->w), within(y0, root->h), within(x1, root->w), within(y1, root->h),
                     vlpixelof(vl.color, root->depth));
    } else if (vl.ops && vl.ops->drawline) {
        vlcursorhold hold;
        vl.ops->drawline(x0, y0, x1, y1);
    }
}

void vlpixeldot(vlpatch* target, double x, double y, int colour) {
    vlpatch* root = vlrootof(target);
    if (root->flags & VLMEMORY) {
        const size_t index = size_t(within(y, root->h)) * size_t(root->stride) + size_t(within(x, root->w));
        vlputpixel(root->bits.get(), index, root->depth, vlpixelof(colour, root->depth));
    } else if (vl.ops && vl.ops->setpixel) {
        vlcursorhold hold;
        vl.ops->setpixel(x, y, colour);
    }
}

void vlpixelrectangle(vlpatch* root, int x, int y, int w, int h, int colour) {
    if (!(root->flags & VLMEMORY)) {
        if (!vl.ops || !vl.ops->erasearea) return;
        vlcursorhold hold;
        vl.ops->erasearea(x, y, w, h, colour);
        return;
    }
    const uint32_t pixel = vlpixelof(colour, root->depth);
    for (int row = y; row < y + h; row++) {
        const size_t from = size_t(row) * size_t(root->stride) + size_t(x);
        for (size_t i = from; i < from + size_t(w); i++) vlputpixel(root->bits.get(), i, root->depth, pixel);
    }
}
