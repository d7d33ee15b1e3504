/* vellum/vlstate.h - the one state of the library.
 * Owns:    struct vlstate and its only instance `vl`; errors and allocators of the library. Callers: the
 * files of vellum/ alone; a client sees vellum.h. Never:   keeps anything over DQUIT but the error handler
 * and the font directory. */
#pragma once

#include "vellum/vellum.h"
#include "vellum/vldevice.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

struct vlpath;      // vlpath.h
struct vlgenerator; // vlgenlin.h: buffers of the line generator
struct vlfonts;     // vlfont.h: open font files and the cache of glyphs

// The line style as DLINESTYLE gave it.
struct vlstyle {
    double seg1 = 0, gap = 0, seg2 = 0, tick1 = 0, tick2 = 0, thick = 0, fill = 0;
};

/* The line generator as the low level sees it. Both are null while no style is set, so that plain lines pay
 * nothing; DLINESTYLE puts vlgenlin and vlflushline here when a style is on. */
struct vlgenhook {
    void (*line)(double x0, double y0, double x1, double y1) = nullptr; // world units, not clipped
    void (*flush)(int final) = nullptr;
};

// A palette entry, each part 0 to 1.
struct vlrgb {
    double r = 0, g = 0, b = 0;
    bool set = false;
};

// What DFONT, DCHARSIZE and DTEXT keep; the files and glyphs are in vlfonts.
struct vltextstate {
    double charsize = 0.1;
    int curfont = -1000; // -1000: none chosen yet
    int lastfont = -1000;
    int curbfont = 0;
    int fontheight = 0;
    int mirror = 0;
    double lastwidth = 0;
};

// A scale between two units along x and y: to = from * s + o.
struct vlscale {
    double sx = 1, ox = 0, sy = 1, oy = 0;
};

struct vlstate {
    // the device
    int device = -1;
    vldevice record{};
    const vldeviceops* ops = nullptr; // null: nothing is drawn but into memory patches
    std::string filename;             // of the output
    bool active = false;              // between DGET above 0 and below 0
    int cursorlock = 0;

    // patches and pictures (vlpicture.h)
    vlpatch* screen = nullptr;
    vlpatch* patch = nullptr; // the target
    vlpicture* open = nullptr;
    vlpicture* closed = nullptr; // heads of the three lists
    vlpicture* posted = nullptr;
    vlpicture* dead = nullptr;
    std::shared_ptr<struct vlhandles> handles;
    int picnumber = 0, patnumber = 0; // of files saved with no name

    // the view: window and viewport are x0, x1, y0, y1
    double window[4] = {-1, 1, -1, 1};
    double viewport[4] = {0, 1, 0, 1};
    vlscale norm; // world to normal
    vlscale pix;  // normal to pixels of the target's device
    bool clipping = true;
    double drawbox[4] = {0, 1, 0, 1};     // normal: what may reach pixels (vlretarget)
    double patchbox[4] = {0, 1, 0, 1};    // normal: the whole target
    double recordbox[4] = {-1, 1, -1, 1}; // normal: what may reach the open picture
    bool live = false;                    // drawn things reach pixels now

    // the transform
    double matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    bool transformon = false;

    // the pen: world units after the transform; before the division by w; and as the client gave it
    double x = 0, y = 0;
    double hom[4] = {0, 0, 0, 1}; // holds while homset
    bool homset = false;
    double user[3] = {0, 0, 0};
    int color = 1;
    std::vector<vlrgb> palette;   // of a device whose indices are entries; else empty: the index is r, g, b
    int reserved[2] = {0xfff, 0}; // without a palette: the r, g, b of index 0 (the paper) and 1 (the pen)

    vlstyle style;
    vlgenhook gen;
    vltextstate text;
    std::vector<double> hatch;   // lines kept by DPOLYGON
    std::vector<double> polygon; // points of DPOLYGON, kept from call to call
    std::vector<double> scratch; // of the low level

    std::shared_ptr<vlgenerator> generator; // made and used by vlgenlin.cpp alone
    std::shared_ptr<vlfonts> fonts;         // made and used by vlfont.cpp alone
    std::shared_ptr<void> output;           // the open device's own data

    // kept over DQUIT
    vlerrorhandler handler = nullptr;
    std::string strokefontfile = "vlfonts.0", bitmapfontfile = "vlbfonts.0";
};
extern vlstate vl;

// The pending dashes are drawn: before the colour, the style, the view, the target or the open picture
// changes.
inline void vlflushall() {
    if (vl.gen.flush) vl.gen.flush(0);
}

// Works out scales and boxes anew: after a change of the view, the target, the device or the open picture.
void vlretarget();

// ---- Colours (vlcolor.cpp)

void vlsetcolors(); // the palette and the reserved colours of vl.record
vlrgb vlrgbof(int index);
int vlindexof(double r, double g, double b); // the nearest index, without setting a palette entry
// The value of a pixel of this depth that shows a colour index, and the index that a pixel's value stands
// for.
uint32_t vlpixelof(int index, int depth);
int vlindexofpixel(uint32_t pixel, int depth);

// ---- Errors and memory (vlerror.cpp)

// Gives the message to the handler; comes back never: when the handler returns or there is none the process
// ends.
[[noreturn]] void vlerror(const char* format, ...) __attribute__((format(printf, 1, 2)));
// The same where a file cannot be used: behind the message a line with the file and the system's reason
// (errno).
[[noreturn]] void vlfilefault(const std::string& message, const std::string& file);
// A condition that a caller of the library cannot break; stops with the condition's text and the source's
// name.
inline void vlassert(bool holds, const char* condition, const char* source) {
    if (!holds) vlerror("Assertion failed: %s, file %s", condition, source);
}
// A line on the error stream: what is told beside the picture and stops nothing.
void vlcomplain(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Zero-filled memory; without enough of it an error with the allocator's name. vlbigalloc is for pixels.
std::unique_ptr<uint8_t[]> vlbigalloc(size_t bytes);
void vlrealloc(std::vector<double>& buffer, size_t count);
