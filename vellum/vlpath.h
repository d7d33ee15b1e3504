/* vellum/vlpath.h - the buffer of drawing commands of the PostScript device.
 * Owns:    the packing of commands and the text each prints as. Callers: vlpostscript.cpp. Never:   opens a
 * file, or knows a page. Coordinates are device units; they print rounded to integers. */
#pragma once

#include "vellum/vlwriter.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

enum vlpathop : uint8_t {
    VLPCOLOUR,
    VLPBEGIN,
    VLPMOVE,
    VLPLINE,
    VLPDOT,
    VLPRECT,
    VLPPOLYGON,
    VLPTEXT,
    VLPRAW,
    VLPSTART,
    VLPIMAGE,
    VLPCLIPPED
};

/* Arguments grow upward from the start of the buffer, operation bytes downward from its end. */
struct VLPathBuffer {
    static constexpr int32_t size = 2000;
    alignas(float) uint8_t buffer[size];
    int32_t argIdx = 0;
    int32_t opIdx = size - 1;
    float curx = 1e30f, cury = 1e30f; // 1e30: none
    float r = 0, g = 0, b = 0;
    bool pathDrawing = false;
    float minx = 1e30f, miny = 1e30f, maxx = -1e30f, maxy = -1e30f;
    void (*overflow)(VLPathBuffer*) = nullptr;
};

void VLPathInit(VLPathBuffer* p);
// The function that prints and empties the buffer when a command does not fit.
void VLPathSetOverflow(VLPathBuffer* p, void (*fn)(VLPathBuffer*));
// Empties the buffer for re-use; colour, box and an open path go on.
void VLPathFlush(VLPathBuffer* p);
void VLPathGetBox(const VLPathBuffer* p, float box[4]); // minx, miny, maxx, maxy
void VLPathSetRGB(VLPathBuffer* p, float r, float g, float b);
void VLPathMoveTo(VLPathBuffer* p, float x, float y);
void VLPathLineTo(VLPathBuffer* p, float x, float y);
void VLPathDotAt(VLPathBuffer* p); // at the current point
void VLPathRect(VLPathBuffer* p, float x, float y, float w, float h);
// n pairs, x >= 1e300 a break; with a clip of x, y, w, h or null. Up to vlpathmostpoints.
void VLPathPoly(VLPathBuffer* p, const double* xy, size_t n, const double* clip);
constexpr size_t vlpathmostpoints = 240;
// At the current point; size in points, angle in degrees.
void VLPathText(VLPathBuffer* p, int font, float size, float angle, float scale, std::string_view s);
void VLPathRaw(VLPathBuffer* p, std::string_view s);
// Rows from the bottom, depth bits a pixel in three equal parts, rows padded to bytes; up to vlpathmostbytes.
void VLPathImage(VLPathBuffer* p, float x, float y, float w, float h, int columns, int rows, int depth,
                 const uint8_t* bytes);
constexpr size_t vlpathmostbytes = 1900;

void VLPathDoPrint(const VLPathBuffer* p, vlwriter& out);
