/* plot/colornames.h - the colours that have names.
 * Owns:    what each name looks like, and which index of the device's table it stands for at present.
 * Callers: the listings; the display's start, which sets the indices of its device.
 * Never:   sets the variables of these names. */
#pragma once

#include <span>

struct rgb {
    double r, g, b; // 0 to 1
};
// A colour as the sixteen entries of a palette screen can show it, and as every other device does.
struct namedcolor {
    const char* name;
    rgb palette, other;
    int number; // where no device has set others; -1: a second name, whose index is told by the first
};
std::span<const namedcolor> colortable(); // in the order in which a device is asked for them

// Null for an index that no name stands for.
const char* colorname(int color);
void colornameset(const char* name, int color); // a name without a place here is passed over
void colornamestart();                          // the numbers that hold without a device
// Between indices and 15 bits, red << 10 | green << 5 | blue, as far as the names reach: what has no name is
// drawn in WHITE, and a colour comes back as the nearest that has one.
int colortorgb15(int color);
int colorfromrgb15(int rgb);
