/* plot/plotobj.h - windows, curves, axes and titles as objects.
 * Owns:    the three records with their defaults, the rings that hold them together, the units, the screen's
 *          shape.
 * Callers: the statements of this room, the scene drawing, SAVE and USE, assignment, EDIT.
 * Never:   draws; knows a device. */
#pragma once

#include "interp/base/machine.h"
#include "interp/base/parser.h"
#include "interp/base/symtab.h"
#include "interp/base/tokens.h"
#include "values/harray.h"

#include <cstdint>
#include <string>

inline constexpr int CLEARCOLOR = -2; // nothing is drawn; other colours are indices of the device's table

// A limit of a window follows the data by the bits of its code.
enum adjustbits { ADJUSTSHRINK = 1, ADJUSTEXPAND = 2, ADJUSTPAD = 4, ADJUSTNICE = 8, ADJUSTMATCH = 12 };
inline constexpr int ADJUSTDEFAULT = ADJUSTSHRINK | ADJUSTEXPAND | ADJUSTNICE; // WNICE

/* Units are numbered by their tokens (TOKFRACT..TOKIFRACT). Screen-normal units are the inner form of all
 * boxes: x runs over 0..screen.aspectx, y over 0..screen.aspecty. */
inline constexpr int UNITSNORMAL = 0;        // in convertunits
inline constexpr int UNITSWORLDHEIGHT = 112; // in sizetonormal: world units along y

struct window {
    int16_t blanked = 0;
    double wxmin = 0, wxmax = 10, wymin = 0, wymax = 10;               // clipping limits, world units
    double fxmin = 0, fxmax = 1, fymin = 0, fymax = 1;                 // frame, screen-normal
    double priority = 0;                                               // the smallest is drawn first
    double ixmin = 0.125, ixmax = 0.875, iymin = 0.125, iymax = 0.875; // image, screen-normal
    int16_t imageunits = TOKFFRACT; // how the image stays attached to a frame that moves
    int8_t adjust[4] = {ADJUSTDEFAULT, ADJUSTDEFAULT, ADJUSTDEFAULT, ADJUSTDEFAULT}; // xmin xmax ymin ymax
    int16_t imagebox = 1, framebox = 0;
    int16_t framecolor = CLEARCOLOR, frameboxcolor = 1, imagecolor = CLEARCOLOR, imageboxcolor = 1;
    void* w3d = nullptr; // three-dimensional data; null for a window of two dimensions
};

struct box {
    double x0, x1, y0, y1;
};
inline box frameof(const window& w) { return {w.fxmin, w.fxmax, w.fymin, w.fymax}; }
inline box imageof(const window& w) { return {w.ixmin, w.ixmax, w.iymin, w.iymax}; }
void windowscale(window& w, double fx, double fy); // frame and image, for a screen of another shape

inline constexpr int CUSTOMLINE = -1;
enum wclipbits { CLIPTOIMAGE = 1, OWNMARKS = 2 }; // OWNMARKS: an axis that chooses its marks by the limits
inline constexpr double SIZEBYPOINT = -2;         // ptsize: the sizes are in ptsizes

// A curve or an axis: its look, and its matrices.
struct curvelook {
    int16_t kind = TOKDRAW;                  // the making statement: TOKDRAW, TOKXAXIS, TOKYAXIS, TOKAXIS
    int16_t dataunits = TOKWORLD;            // of data
    int16_t format[6] = {-3, 5, 0, 0, 2, 0}; // of labels, see numtext.h
    int16_t vplace = -1, hplace = -1;        // bottom, centre, top; left, centre, right: -1, 0, 1
    double xoffset = 0, yoffset = 0;
    int16_t offsetunits = TOKFFRACT;
    double labelsize = 0.02;
    int16_t labelsizeunits = TOKFFRACT;
    int16_t labelfont = 5;
    double labelangle = 0; // degrees
    int16_t linetype = 1;  // 0..12, or CUSTOMLINE: by the seven numbers that follow, the lengths in FFRACT
    double seg1 = 1, seg2 = 0, gap = 0, tick1 = 0, tick2 = 0;
    double thick = -0.01; // negative: the plain line of the device
    double fill = 0;
    int16_t pointtype = 0; // 0 none; -31..31 a shape; 1001..1128 the character of that code plus 1000
    int16_t ptfont = 5;
    double ptsize = 0.02; // negative: SIZEBYPOINT
    int16_t ptsizeunits = TOKFFRACT;
    int16_t labelcolor = 1, linecolor = 1, pointcolor = 1;
    int16_t wclipsw = 1;              // the sum of CLIPTOIMAGE (else the frame is the clip) and OWNMARKS
    double axisw[4] = {0, 10, 0, 10}; // the world window (xmin xmax ymin ymax) that data were made in
    int16_t blanked = 0;
};

struct curve : curvelook {
    harrayptr data;    // n by 2, or null
    harrayptr labels;  // n by 1: at the points in turn; n by 2: value, row of data. Null: none
    harrayptr ptsizes; // with SIZEBYPOINT: a row of sizes for each point
};

enum titleposition { TITLEFREE, TITLETOP, TITLELEFT, TITLERIGHT, TITLEBOTTOM };

struct title {
    std::string text;
    int16_t blanked = 0;
    int16_t position = TITLEFREE;
    double x = 0, y = 0; // the anchor
    double angle = 0;    // degrees, in [0, 360)
    double shift = 0;    // place of the text along its line, in fractions of what is free there
    int16_t atunits = TOKFFRACT;
    int16_t vplace = -1, hplace = -1;
    int16_t font = 5;
    double size = 0.02;
    int16_t sizeunits = TOKFFRACT;
    int16_t color = 1;
};

// The screen as its device has told it; a sheet of 10 by 7.5 inches as long as none has.
struct screenstate {
    double screeninchesx = 10, screeninchesy = 7.5;
    double aspectx = 1, aspecty = 0.75; // in screen-normal units: the longer side is 1
};
extern screenstate screen;
void screenresize(double inchesx, double inchesy); // sets all four
double screendpi();                                // inches of one screen-normal unit

// What the drawing of this room gives to its statements; set at its start, harmless until then.
struct plothooks {
    int (*torgb15)(
        int color); // a colour index as 15 bits, red << 10 | green << 5 | blue; negative: unchanged
    int (*fromrgb15)(int rgb); // back to the index of the nearest colour
    void (*draw3d)();          // DRAW of three columns, all on polstack; null as long as there is none
    // The scenes are drawn anew through upper.redraw (interp/base/hooks.h).
};
extern plothooks plotfns;

void plotobjstart(); // all state anew; the rows of statements, listings, save files and builtins

// ---- records ----

inline bool iswindow(int idx) { return sym(idx).type == WINDOWTYPE; }
inline bool iscurve(int idx) { return sym(idx).type == CURVETYPE; }
inline bool istitle(int idx) { return sym(idx).type == TITLETYPE; }
inline window& windowof(int idx) { return *static_cast<window*>(sym(idx).val.ptr); }
inline curve& curveof(int idx) { return *static_cast<curve*>(sym(idx).val.ptr); }
inline title& titleof(int idx) { return *static_cast<title*>(sym(idx).val.ptr); }

window defaultwindow();                      // on the whole screen
curve curvecopy(const curve& c);             // with matrices of its own
void curvewindow(curve& c, const window& w); // its points belong to the present limits
void windowenter(int idx, window w);         // makes the undefined entry idx a window with an empty ring
void curveenter(int idx, curve c);           // a curve outside any ring
void titleenter(int idx, title t);
void copywindow(int from, int to); // assignment: the undefined entry `to` becomes a copy of window `from`,
                                   // its members under names of their own

// ---- rings ----
/* A window's link and those of its members form one circle: the window, then its members, the newest first.
 * The order is that of drawing. An object outside any ring is linked to itself. */
void joinring(int member, int win);
void leavering(int member);  // the window is not adjusted
int windowofmember(int idx); // 0 outside any ring
// The next member behind idx, 0 at the end: for (int k = ringnext(w); k; k = ringnext(k)).
int ringnext(int idx);

/* With 0 the window of the statement: the one that IN names, else W. It is made if need be, W from DW.SAV.
 * clause.insym holds it from then on. With a member of a ring, or a window: its window. Error "%s is not a
 * window". */
int getwindow(int idx);

// ---- units ----

/* Four coordinates at once. One of inunits and outunits is UNITSNORMAL, the other a unit's token; else error
 * "bad inunits/outunits pairing". */
void convertunits(double& x1, double& x2, double& y1, double& y2, const window& w, int inunits, int outunits);
void convertunits(box& b, const window& w, int inunits, int outunits);
// A length along x (UNITSWORLDHEIGHT: along y) in screen-normal units; FINCHES are left as they are.
double sizetonormal(double value, int units, const window& w);
/* Data points of a curve in screen-normal units. Axes in WORLD units keep the place in the window that they
 * were made in: a point moves with the window from axisw to its present limits. */
struct linearmap {
    double scale = 1, origin = 0;
    double operator()(double v) const { return v * scale + origin; }
};
struct axismap { // made once for all points of a curve
    linearmap followx, followy, normalx, normaly;
    axismap(const window& w, const curve& c);
    void operator()(double& x, double& y) const {
        x = normalx(followx(x));
        y = normaly(followy(y));
    }
};
void axistonormal(double& x, double& y, const window& w, const curve& c); // one point

/* The limits follow the data of the window's curves, each by its code in `adjust`; without data they stay.
 * The axes that choose their marks do so anew. */
void adjustwindow(int win);
