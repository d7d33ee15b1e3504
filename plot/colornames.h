/* plot/colornames.h - the colours that have names.
 * Owns:    which index of the device's table each name stands for at present.
 * Callers: the listings; the display's start, which sets the indices of its device.
 * Never:   sets the variables of these names. */
#pragma once

// Null for an index that no name stands for.
const char* colorname(int color);
void colornameset(const char* name, int color); // a name without a place here is passed over
void colornamestart();                          // the numbers that hold without a device
// Between indices and 15 bits, red << 10 | green << 5 | blue, as far as the names reach: what has no name is
// drawn in WHITE, and a colour comes back as the nearest that has one.
int colortorgb15(int color);
int colorfromrgb15(int rgb);
