/* vellum/vlraster.h - pixels: of a memory patch here, of the device through its operations.
 * Owns:    the packing of pixels of every depth, lines and rectangles of pixels. Callers: the files of
 * vellum/. Never:   clips: coordinates are pixels of the root patch, within it. */
#pragma once

#include "vellum/vlpicture.h"

// Bytes of w by h pixels in a file; in memory more, since a pixel may begin at any bit, and five bytes read
// from there hold it whole.
inline size_t vlpixelbytes(int w, int h, int depth) {
    return (size_t(w) * size_t(h) * size_t(depth) + 7) / 8;
}
inline size_t vlbitsize(int w, int h, int depth) { return size_t(w) * size_t(h) * size_t(depth) / 8 + 5; }
bool vldepthok(int depth);

// A patch of its own pixels, outside the table of handles. Errors as DPATCH.
std::unique_ptr<vlpatch> vlmemorypatch(int w, int h, int depth, const uint8_t* bits);

uint32_t vlgetpixel(const uint8_t* bits, size_t index, int depth);
void vlputpixel(uint8_t* bits, size_t index, int depth, uint32_t value);

// Pixels in a block of rows of `stride` pixels.
struct vlpatchview {
    const uint8_t* bits;
    int w, h, stride, depth;
    uint32_t pixel(int x, int y) const {
        return vlgetpixel(bits, size_t(y) * size_t(stride) + size_t(x), depth);
    }
};

// A copy of some pixels of a patch, packed; those of a device come through its own operation.
std::unique_ptr<uint8_t[]> vlcopyout(const vlpatch* patch, int x, int y, int w, int h);

// A line or a dot in the root of the target; a line in the current colour.
void vlpixelline(vlpatch* target, double x0, double y0, double x1, double y1);
void vlpixeldot(vlpatch* target, double x, double y, int colour);
// Bresenham's line into a memory patch.
void vlmemoryline(vlpatch* root, int x0, int y0, int x1, int y1, uint32_t pixel);
void vlpixelrectangle(vlpatch* root, int x, int y, int w, int h, int colour);
