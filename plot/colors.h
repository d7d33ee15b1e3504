/* plot/colors.h - colours by name and by index.
 * Owns:    the names of the colours with their values, what an index means on screen and on paper.
 * Callers: the display, which makes the names anew with each device; the scene, through setcolor.
 * Never:   changes a plot object. */
#pragma once

enum inkmode {
    INKSCREEN, // an index is the screen's own
    INKMONO,   // one colour on the ground
    INKPAPER,  // the screen's colours translated; what would be white on white paper is black
    INKEXACT   // the screen's colours translated, white too
};

struct colorstate {
    inkmode ink = INKSCREEN;
    int top = 15; // highest index of the device
};
extern colorstate colors;

void colornames(); // the scalars RED, GREEN... get the indices of the device that is open
// Copies what each index of the screen looks like, for as long as another device is open.
void colorskeep();
void setcolor(int c); // the drawing colour, by the index that a plot object holds
void erasebox(int x, int y, int width, int height, int c); // clears pixels of the screen to a colour
int toRGB15(int c); // red << 10 | green << 5 | blue, 0..31 each; a negative c is returned as it is
int fromRGB15(int rgb);
