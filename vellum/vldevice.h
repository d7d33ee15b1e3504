/* vellum/vldevice.h - the table of devices and what a device must be able to do.
 * Owns:    the operations table, the rows of devices. Callers: the library, and the files that implement a
 * device. Never:   draws. A device adds a function here that gives its operations, and a row in vldevice.cpp.
 */
#pragma once

#include "vellum/vellum.h"

enum vldevicenumber {
    VLPSD,
    VLCGAC,
    VLEGAC,
    VLEGAM,
    VLVGAC,
    VLVGAM,
    VLATIC,
    VLGENC,
    VLPSP,
    VLPSL,
    VLPSH,
    VLLJ2P,
    VLLJ2L,
    VLLJ2PFULL,
    VLLJ2LFULL,
    VLXDEV,
    VLMSWDEV,
    VLDPS,
    VLRPS,
    VLMACD,
    VLMEM,
    VLPNGL,
    VLPNGP,
    VLSVGL,
    VLSVGP,
    VLPDFL,
    VLPDFP,
    VLNDEVICES
};

// A native text as the device gets it.
struct vlnativetext {
    const char* text;
    size_t length;
    int font;    // -2 to -14
    double x, y; // where it starts, pixels
    double size; // the character height, normal length
    double m[4]; // the linear part of the transform, row by row; a, b of the text's direction are m[0], m[2]
    int fg, bg;  // colours; bg -1 transparent
};

/* What a device can do. Any entry may be null: the library then draws by lines or leaves the thing out.
 * Coordinates are pixels of the device, y upward; colours are the library's indices. */
struct vldeviceops {
    void (*open)(int flag); // positive: begin the output; -1: a page has ended; -3: close. From DGET
    void (*getpalette)(int entry, int r, int g,
                       int b);     // 0..15 each on devices of 4 bits; entry -1 flushes a change
    int (*init)(vldevice* record); // 0: failed. May change the record
    void (*close)(int flag);       // 0: for good
    void (*fill)();
    void (*setlinewidth)(double w);
    void (*setpixel)(double x, double y, int colour);
    void (*drawline)(double x0, double y0, double x1, double y1); // in the current colour, vl.color
    void (*erasearea)(double x, double y, double w, double h, int colour);
    void (*plotbitarray)(const uint8_t* bits, int w, int h, int x, int y, int fg, int bg, int flags);
    void (*drawtext)(const vlnativetext& text);
    void (*writepatch)(int x, int y, int w, int h, int srcw, int srch, const uint8_t* bits, int depth,
                       int64_t transparent, int flags);
    void (*readpatch)(uint8_t* bits, int x, int y, int w, int h, int depth);
    void (*flush)();
    void (*endpage)(); // before open(-1)
    /* Beyond the fifteen: a filled polygon in the current colour, even-odd, n pairs with x >= 1e300 as a
     * break; clip is null or x, y, w, h. A polyline: n pairs, the first a move. The width of a native text in
     * normal lengths. */
    void (*polygon)(const double* xy, size_t n, const double* clip);
    double (*textwidth)(const vlnativetext& text);
    void (*showcursor)(int on);
    int (*qev)(int op, vlevent* event, int mode, int wait, int flushop);
    size_t maxpolygon; // most points of one polygon, 0: no bound
    bool raster;       // pixels are dots on a screen: the outermost pixel centres are the ends of the scale
    bool anydepth;     // writepatch takes pixels of every depth
};

// The operations of a device, null for a row that has none.
const vldeviceops* vldeviceoperations(int number);
// Fills in the operations of a device that lives outside the library (the window of a platform).
void vlsetdeviceoperations(int number, const vldeviceops* ops);

// Implemented in the file of each device.
const vldeviceops* vlpostscriptoperations();      // vlpostscript.cpp: 8, 9, 10
const vldeviceops* vllaserjetoperations();        // vllaserjet.cpp: 11 to 14
const vldeviceops* vlmemoryoperations();          // vlmemory.cpp: 20
const vldeviceops* vlcairooperations(int number); // cairodevice.cpp: 21 to 26; null without cairo
