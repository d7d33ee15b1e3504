#include "vellum/vldraw.h"
#include "vellum/vlraster.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int mostpixels = 32767; // along one side

bool disabled(const vlpatch* patch) { return vlrootof(patch)->flags & VLDISABLED; }
bool inmemory(const vlpatch* patch) { return vlrootof(patch)->flags & VLMEMORY; }

[[noreturn]] void badpatch() { vlerror("Invalid patch specifications in DPATCH"); }

std::unique_ptr<vlpatch> childpatch(vlpatch* parent, int x, int y, int w, int h) {
    if (w <= 0 || h <= 0 || x < 0 || y < 0 || x > parent->w - w || y > parent->h - h) badpatch();
    auto patch = std::make_unique<vlpatch>();
    patch->w = w;
    patch->h = h;
    patch->flags = VLCHILD;
    patch->depth = parent->depth;
    patch->stride = parent->stride;
    patch->parent = parent;
    patch->subx = x;
    patch->suby = y;
    patch->offx = parent->offx + x;
    patch->offy = parent->offy + y;
    return patch;
}

void unlinkpatch(vlpatch* patch) {
    vlpatch** link = &patch->parent->child;
    while (*link != patch) link = &(*link)->sibling;
    *link = patch->sibling;
}

void putinmemory(vlpatch* target, int x, int y, int w, int h, const uint8_t* bits, int depth,
                 int64_t transparent) {
    vlpatch* root = vlrootof(target);
    for (int row = 0; row < h; row++) {
        const size_t to = size_t(target->offy + y + row) * size_t(root->stride) + size_t(target->offx + x);
        for (int i = 0; i < w; i++) {
            uint32_t pixel = vlgetpixel(bits, size_t(row) * size_t(w) + size_t(i), depth);
            if (pixel == transparent) continue;
            if (depth != root->depth) pixel = vlpixelof(vlindexofpixel(pixel, depth), root->depth);
            vlputpixel(root->bits.get(), to + size_t(i), root->depth, pixel);
        }
    }
}

void putondevice(vlpatch* target, int x, int y, int w, int h, const uint8_t* bits, int depth,
                 int64_t transparent) {
    if (!vl.ops) return;
    vlcursorhold hold;
    x += target->offx;
    y += target->offy;
    if (vl.ops->writepatch && (depth == target->depth || vl.ops->anydepth)) {
        return vl.ops->writepatch(x, y, w, h, w, h, bits, depth, transparent, 0);
    }
    if (!vl.ops->setpixel) return;
    for (int row = 0; row < h; row++) {
        for (int i = 0; i < w; i++) {
            const uint32_t pixel = vlgetpixel(bits, size_t(row) * size_t(w) + size_t(i), depth);
            if (pixel != transparent) vl.ops->setpixel(x + i, y + row, vlindexofpixel(pixel, depth));
        }
    }
}

// By the truth table of an operation number: see vlrasterop.
uint32_t rasterop(int op, uint32_t s, uint32_t d) {
    uint32_t result = 0;
    if (op & 8) result |= ~s & ~d;
    if (op & 4) result |= ~s & d;
    if (op & 2) result |= s & ~d;
    if (op & 1) result |= s & d;
    return result;
}

} // namespace

std::unique_ptr<vlpatch> vlmemorypatch(int w, int h, int depth, const uint8_t* bits) {
    if (w <= 0 || h <= 0 || w > mostpixels || h > mostpixels) badpatch();
    if (!vldepthok(depth)) vlerror("VELLUM: unsupported display mode requested");
    auto patch = std::make_unique<vlpatch>();
    patch->w = patch->stride = w;
    patch->h = h;
    patch->depth = depth;
    patch->flags = VLMEMORY;
    patch->bits = vlbigalloc(vlbitsize(w, h, depth));
    if (bits) memcpy(patch->bits.get(), bits, vlpixelbytes(w, h, depth));
    return patch;
}

std::unique_ptr<uint8_t[]> vlcopyout(const vlpatch* patch, int x, int y, int w, int h) {
    auto bits = vlbigalloc(vlbitsize(w, h, patch->depth));
    const vlpatch* root = vlrootof(patch);
    if (!(root->flags & VLMEMORY)) {
        if (!vl.ops || !vl.ops->readpatch) vlerror("VELLUM: unsupported display mode requested");
        vl.ops->readpatch(bits.get(), patch->offx + x, patch->offy + y, w, h, patch->depth);
        return bits;
    }
    for (int row = 0; row < h; row++) {
        const size_t from = size_t(patch->offy + y + row) * size_t(root->stride) + size_t(patch->offx + x);
        for (int i = 0; i < w; i++) {
            vlputpixel(bits.get(), size_t(row) * size_t(w) + size_t(i), patch->depth,
                       vlgetpixel(root->bits.get(), from + size_t(i), patch->depth));
        }
    }
    return bits;
}

const vlpatch* vlrootof(const vlpatch* patch) {
    while (patch->parent) patch = patch->parent;
    return patch;
}

vlpatch* DPATCH(vlpatch* parent, int x, int y, int w, int h, int depth, const uint8_t* bits) {
    if (!parent) return vladdpatch(vlmemorypatch(w, h, depth, bits));
    vlcheckpatch(parent, "DPATCH");
    vlpatch* patch = vladdpatch(childpatch(parent, x, y, w, h));
    vlpatch** last = &parent->child;
    while (*last) last = &(*last)->sibling;
    *last = patch;
    return patch;
}

void DKILLPATCH(vlpatch* patch) {
    vlcheckpatch(patch, "DKILLPATCH");
    if (patch == vl.screen) return; // it goes with the device
    while (patch->child) DKILLPATCH(patch->child);
    if (patch->parent) unlinkpatch(patch);
    if (vl.patch == patch) {
        vlflushall();
        vl.patch = vl.screen;
    }
    vldrophandle(patch->handle);
    vlretarget();
}

void DENQPATCH(vlpatch* patch) {
    if (!patch) patch = vl.patch;
    vlcheckpatch(patch, "DENQPATCH");
    vlflushall();
    const vlpoint pen = vltonorm(vl.x, vl.y);
    vlputmove(pen.x, pen.y);
    vlputword(VLOPPATCH | patch->handle);
    vlputword(0);
}

void DTOPPATCH(vlpatch* patch) {
    vlcheckpatch(patch, "DTOPPATCH");
    vlflushall();
    if (vl.open && vl.open->state == 0) DUNPOST(vl.open, -1);
    vl.patch = patch;
    vlretarget(); // for the scale of the new root
    const bool raster = inmemory(patch) || (vl.ops && vl.ops->raster);
    const int less = raster ? 1 : 0;
    const double x1 = (patch->offx + std::max(patch->w - less, 1)) / vl.pix.sx;
    const double y1 = (patch->offy + std::max(patch->h - less, 1)) / vl.pix.sy;
    DVIEWPORT(patch->offx / vl.pix.sx, x1, patch->offy / vl.pix.sy, y1);
}

void DERASE(vlpatch* patch, int colour) {
    vlcheckpatch(patch, "DERASE");
    vlflushall();
    if (!disabled(patch))
        vlpixelrectangle(vlrootof(patch), patch->offx, patch->offy, patch->w, patch->h, colour);
}

uint32_t DPIXEL(vlpatch* patch, int x, int y, uint32_t value, uint32_t mask) {
    vlcheckpatch(patch, "DPIXEL");
    if (x < 0 || y < 0 || x >= patch->w || y >= patch->h)
        vlerror("Specified pixel is outside patch in DPIXEL\n");
    vlpatch* root = vlrootof(patch);
    const bool memory = root->flags & VLMEMORY;
    if (!memory && (!vl.ops || !vl.ops->readpatch)) vlerror("VELLUM: unsupported display mode requested");
    const uint32_t old = vlgetpixel(vlcopyout(patch, x, y, 1, 1).get(), 0, patch->depth);
    if (mask == 0) return old;
    const uint32_t pixel = (old & ~mask) | (value & mask);
    if (memory) {
        vlputpixel(root->bits.get(), size_t(patch->offy + y) * size_t(root->stride) + size_t(patch->offx + x),
                   root->depth, pixel);
    } else if (!disabled(patch)) {
        vlpixeldot(patch, patch->offx + x, patch->offy + y, vlindexofpixel(pixel, patch->depth));
    }
    return pixel;
}

void DSETPATCH(vlpatch* target, vlpatch* source, int x, int y, int64_t transparent) {
    vlcheckpatch(target, "DSETPATCH");
    vlcheckpatch(source, "DSETPATCH");
    vlflushall();
    if (disabled(target)) return;
    const int64_t x0 = std::max(x, 0), x1 = std::min<int64_t>(int64_t(x) + source->w, target->w);
    const int64_t y0 = std::max(y, 0), y1 = std::min<int64_t>(int64_t(y) + source->h, target->h);
    if (x0 >= x1 || y0 >= y1) return;
    const int w = int(x1 - x0), h = int(y1 - y0);
    const auto bits = vlcopyout(source, int(x0 - x), int(y0 - y), w, h);
    if (inmemory(target)) {
        putinmemory(target, int(x0), int(y0), w, h, bits.get(), source->depth, transparent);
    } else {
        putondevice(target, int(x0), int(y0), w, h, bits.get(), source->depth, transparent);
    }
}

void DDOPS(vlpatch* patch, int opcode, int operand) {
    vlcheckpatch(patch, "DDOPS");
    if (opcode < VLCLEAR || opcode > VLSET) vlerror("Invalid raster operation specified to DDOPS");
    vlflushall();
    if (disabled(patch)) return;
    const uint32_t s = vlpixelof(operand, patch->depth);
    const size_t count = size_t(patch->w) * size_t(patch->h);
    const auto bits = vlcopyout(patch, 0, 0, patch->w, patch->h);
    for (size_t i = 0; i < count; i++) {
        vlputpixel(bits.get(), i, patch->depth, rasterop(opcode, s, vlgetpixel(bits.get(), i, patch->depth)));
    }
    if (inmemory(patch)) {
        putinmemory(patch, 0, 0, patch->w, patch->h, bits.get(), patch->depth, -1);
    } else {
        putondevice(patch, 0, 0, patch->w, patch->h, bits.get(), patch->depth, -1);
    }
}

void DPATCHSIZE(const vlpatch* patch, int* w, int* h, int* depth) {
    vlcheckpatch(patch, "DPATCHSIZE");
    if (w) *w = patch->w;
    if (h) *h = patch->h;
    if (depth) *depth = patch->depth;
}

std::span<const uint8_t> DPATCHBITS(const vlpatch* patch) {
    vlcheckpatch(patch, "DPATCHBITS");
    if (!patch->bits) return {};
    return {patch->bits.get(), vlbitsize(patch->w, patch->h, patch->depth)};
}
