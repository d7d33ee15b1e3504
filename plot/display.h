/* plot/display.h - the screen device, VIEW and PLOT.
 * Owns:    which device is open, whether it shows a picture, the size that the user asked for.
 * Callers: the session's start, the statements VIEW, PLOT, VIEWSIZE, CLOSEVIEW; WREAD.
 * Never:   draws: drawwindow does. */
#pragma once

#include <string>

enum graphicsstate { GRAPHICSUP, GRAPHICSFAILED, GRAPHICSTOLD }; // TOLD: the user knows

struct displaystate {
    int graphicsfail = GRAPHICSFAILED;        // of the screen: PLOT works all the same
    bool viewactive = false;                  // the screen holds a picture
    std::string plotname;                     // the device of the plot under way, else empty
    int plotfile = 0;                         // number of the last plot file named by the system
    double viewwidthin = 0, viewheightin = 0; // 0: what the device has
    int viewxpix = 0, viewypix = 0;
};
extern displaystate display;

// What the platform tells of its screen, set by whoever brings a screen device; null: the device's record
// holds.
struct displayhooks {
    bool (*screenpixels)(int& width, int& height); // the whole screen; false if it is not known
};
extern displayhooks displayfns;

void displaystart(); // state anew; rows of statements and builtins, hooks

/* Opens the screen device of that name; returns its highest colour index, 0 if it cannot be opened (PLOT
 * works then), -1 for no name. An empty name asks. `keep` goes to DQUIT; with `resize` the size is set anew.
 * Error "getdisplay: Unknown display". */
int getdisplay(const char* name, int keep, bool resize);
void setviewsize(double width, double height); // inches; without a screen the shape of what PLOT draws

enum redisplaymode { REDISPLAYVIEW = 0, REDISPLAYCHANGE = -1, REDISPLAYALL = -2 };
/* Draws the windows on polstack, or all, in the order of their priorities. VIEW waits for a key; CHANGE draws
 * only where a picture stands; ALL does not wait. */
void redisplay(int mode);
void closeview(int mode); // mode as the flag of DGET

// PLOT: the windows on polstack, or all, to a file by PLOTDEV.
void plotop();

// For the parts of this module.
void displayerrors();      // faults of the library become errors of the statement
void drawpages(int mode);  // the windows of redisplay(mode), on the device that is open
std::string displayname(); // DISPLAY
