/* vellum/vellum.h - VELLUM, a device-independent library for line graphics: the whole public interface.
 * Owns:    the calls beginning with D. A client opens one device with DINI, activates it with DGET, and draws
 * into a patch (pixels), through an open picture (a display list), or both. Callers: any program; it needs no
 * other header. Never:   returns an error: every fault goes to the handler of DERROR, which may throw through
 * the library. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/* Units. World units are those of DWINDOW. Screen-normal units ("normal") have the longer side of the device
 * as 1 and the origin at its lower left corner; DVIEWPORT and all lengths of styles and text are given in
 * them. Pixels count from the lower left corner, y upward. A matrix of transform is 16 doubles row by row and
 * acts on columns: p' = M p, with the translation in m[3], m[7], m[11]. Angles are in degrees,
 * counter-clockwise. */

struct vlpicture; // a display list; made by DNEWPIC, DUSE
struct vlpatch;   // a rectangle of pixels; made by DINI (the screen patch), DPATCH, DPATCHREAD

// A row of the device table. A client may change sizes, depth and dots per inch in it before DINI.
struct vldevice {
    const char* name;
    double widthin, heightin; // inches
    double xdpi, ydpi;        // dots per inch
    double xaspect, yaspect;  // 1 for the longer side, the ratio for the shorter; set by DINI
    int xpix, ypix;
    int depth, rbits, bbits, gbits;
    int maxfonts;  // native fonts beyond the first
    int ispalette; // 1: the colour indices are entries of a palette
    int ncolors;
    int ishardware; // 1: the device has native fonts
};

// ---- The frame (vellum.cpp, vldevice.cpp)

using vlerrorhandler = void (*)(const char* message);
// Installs the handler of faults and returns the last one. It gets the message and may throw; a second line
// of the message tells more, such as the file and the system's reason. With none
// (null) the message goes to the error stream after "VELLUM ERROR: " and the process exits with status 1.
vlerrorhandler DERROR(vlerrorhandler handler);

// Opens a device by its name. Sets *colours to the number of colours. A null file stands for the device's own
// name, zero sizes for those of the device's record; with inches and no pixels the pixels follow from the
// dots per inch. 1 when open (at once when this device is open already), 0 when the device fails; an unknown
// name is an error.
int DINI(const char* device, int* colours, const char* file, double width, double height, int xpix, int ypix);
// Ends the output and closes the device; all pictures and patches go. Nothing when no device is open.
void DQUIT(int flag);
// The number of a device, -1 for an unknown name; the number of the open device is DDEVICENUMBER(nullptr).
int DDEVICENUMBER(const char* name);
const char* DDEVICENAME(int number); // null beyond the table
// The record in the table, null for an unknown name; for a null name the working record, null before DINI.
vldevice* DDEVICE(const char* name);
// Activates (flag 1 erases, 2 keeps) or leaves (-1, -3; below -1 erases to 0 first) the device of a patch.
void DGET(vlpatch* patch, int flag);
void DFLUSH();                // the end of a batch: what was drawn is shown or written
void DLINEWIDTH(double w);    // the device's own line width: points on paper, 0 the thinnest
vlpatch* DSCREENPATCH();      // the root patch of the device
vlpatch* DCURRENTPATCH();     // the target of drawing
vlpicture* DCURRENTPICTURE(); // the open picture or null

// ---- Colours

void DCOLOR(int c); // an index out of 0..top falls to 1
int DGETCOLOR();
// The colour index nearest to r, g, b (each 0 to 1). On a device with a palette a free entry is set if there
// is one.
int DRGBCOLOR(double r, double g, double b);
// The parts of a colour index, each 0 to 1.
void DGETRGB(int c, double* r, double* g, double* b);

// ---- Window, viewport, clip and transform (vlview.cpp)

void DWINDOW(double x0, double x1, double y0,
             double y1); // world units; a window of no extent leaves the old one
void DVIEWPORT(double x0, double x1, double y0, double y1); // normal; x0 >= x1 or y0 >= y1 leaves the old one
void DGETWINDOW(double window[4]);                          // x0, x1, y0, y1
void DGETVIEWPORT(double viewport[4]);
void DCLIP(int on); // clip at the viewport; on after DINI
int DGETCLIP();
// Clips a line to the world window; 0 when it lies outside. Works whether clipping is on or off.
int DCLIPLINE(double* x0, double* y0, double* x1, double* y1);
double DXSCALE(); // normal units per world unit: viewport width / window width
double DYSCALE();
double DPIXELSPER(); // the larger of the pixels per normal unit in x and y

void DTRANSFORM(const double m[16]); // sets the matrix; does not turn it on
void DGETTRANSFORM(double m[16]);
void DRESETTRANSFORM();    // the unit matrix, and off
void DTRANSFORMON(int on); // with the matrix on, absolute points are multiplied by it and divided by their w;
                           // relative ones and text strokes by its linear part
int DGETTRANSFORMON();
void DMULTIPLY(
    const double m[16]); // matrix := matrix * m, so m acts first on a point; likewise the three below
void DROTATE(double angle, double x = 0, double y = 0, double z = 1); // about an axis through the origin
void DSCALE(double x, double y, double z);
void DTRANSLATE(double x, double y, double z);
// The rotation matrix about an axis (Rodrigues' formula); an axis of no length gives the unit matrix.
void DROTATEMAT(double out[16], const double axis[3], double angle);

// ---- Moves and lines (vlmove.cpp)

void DMOVE(double x, double y);
void DDRAW(double x, double y);
void DMOVE3(double x, double y, double z); // points in space, for a transform that is on
void DDRAW3(double x, double y, double z);
void DMOVER(double dx, double dy); // relative to the current point, world units
void DDRAWR(double dx, double dy);
void DMOVEN(double dx, double dy); // relative, normal lengths
void DDRAWN(double dx, double dy);
void DDOT(double dx, double dy); // a dot at the current point plus an offset; the current point stays
void DPOINT(double x, double y); // a dot; the current point moves there
// A polyline of n pairs, the first a move; the same as DMOVE and DDRAW of each, in one call.
void DPOLYLINE(const double* xy, size_t n);
void DGETPOS(double* x, double* y,
             double* z); // the current point, world units, after the transform; any may be null

// ---- Line styles, polygons, curves (vlgenlin, vlpolygon, vlspline)

// Dashes seg1, gap, seg2, gap... with ticks in the middle of the gaps and a thickness, all in normal lengths.
// A negative thickness rounds the joins. Gap, ticks and thickness all zero: a plain line.
void DLINESTYLE(double seg1, double gap, double seg2, double tick1, double tick2, double thick, double fill);
void DGETLINESTYLE(double style[7]);
// Fills a polygon: poly[0] the number of points, poly[1] the number of coordinates (2 or 3), then the points;
// a point with x >= 1e300 breaks the boundary. Spacing 0 is solid, else hatch lines at that distance and
// angle. Flags: 1 draw; 2 keep the hatch lines for DGETHATCH; 4 points in normal units.
void DPOLYGON(const double* poly, double spacing, double angle, int flags);
std::span<const double> DGETHATCH(); // x0, y0, x1, y1 of each line of the last DPOLYGON with flag 2
// A smooth curve through the points of a polygon (laid out as above), evaluated at `nparams` parameters from
// 0 to 1 and drawn as a polyline. closed: 1 open, 3 closed.
void DSPLINE(const double* poly, const double* params, int nparams, double flatness, int first, int last,
             int closed, int flags);
// An arc of an ellipse with its axes along x and y, world units, from angle a0 to a1.
void DARC(double cx, double cy, double rx, double ry, double a0, double a1);

// ---- Text (vltext, vlfont)

struct vltextsize {
    int font;
    double left, right, width, ascent, descent, size; // normal lengths at the current DCHARSIZE
};

int DFONT(int f); // 0 and font 1 when f is not valid, else 1
int DGETFONT();
void DCHARSIZE(double h); // the height of a character, normal length
double DGETCHARSIZE();
void DTEXT(
    const char* s); // at the current point, which moves to the end; as it stands under the transform if on
// Measures a text as DTEXT would draw it in font f (-1000: the current font).
void DTEXTSIZE(vltextsize* out, const char* s, int f);
// Bitmap text at a pixel position; fg or bg -1 is transparent.
void DENQBTXT(const char* s, int fg, int bg, int font, int x, int y, int xspace, int yspace);
// Ten numbers of a bitmap character: font, width, height, baseline, left, right, top, bottom, pre-gap,
// post-gap.
void DQFONT(double out[10], int c, int font);
void DSETFONTPATH(const char* directory); // where vlfonts.0 and vlbfonts.0 stand

// ---- Patches (vlpatch.cpp, vlpatchfile.cpp)

// With no parent a memory patch of its own bits (depth 1, 2, 4, 8, 12, 15, 16, 24, 32; `bits` copied in if
// given), else a rectangle x, y, w, h of its parent's pixels.
vlpatch* DPATCH(vlpatch* parent, int x, int y, int w, int h, int depth, const uint8_t* bits);
void DKILLPATCH(vlpatch* patch);
void DENQPATCH(vlpatch* patch); // records a call of the patch (null: the current one) in the open picture
void DTOPPATCH(vlpatch* patch); // the patch becomes the target; the viewport becomes the whole patch
void DERASE(vlpatch* patch, int colour);
// Every pixel becomes a boolean function of itself and of the colour `operand`.
void DDOPS(vlpatch* patch, int opcode, int operand);
uint32_t DPIXEL(vlpatch* patch, int x, int y, uint32_t value,
                uint32_t mask); // reads; with a mask writes those bits
void DSETPATCH(vlpatch* target, vlpatch* source, int x, int y, int64_t transparent); // -1: every pixel
void DPATCHSIZE(const vlpatch* patch, int* w, int* h, int* depth);
std::span<const uint8_t>
DPATCHBITS(const vlpatch* patch); // own bits, row 0 at the bottom, msb first, rows not padded
// The sixteen functions; bits 8, 4, 2, 1 stand for (0,0), (0,1), (1,0), (1,1) of operand and pixel.
enum vlrasterop {
    VLCLEAR = 0,
    VLAND = 1,
    VLANDREVERSE = 2,
    VLCOPY = 3,
    VLANDINVERTED = 4,
    VLNOOP = 5,
    VLXOR = 6,
    VLOR = 7,
    VLNOR = 8,
    VLEQUIV = 9,
    VLINVERT = 10,
    VLORREVERSE = 11,
    VLCOPYINVERTED = 12,
    VLORINVERTED = 13,
    VLNAND = 14,
    VLSET = 15
};

// A colour table and an order of priorities that came with a file.
struct vltables {
    std::vector<uint32_t> colours;
    std::vector<int> index;
    std::vector<double> priorities;
};
enum vlreadmode { VLKEEPPALETTE = 1, VLTABLES = 2, VLCHILDREN = 4 };
void DPATCHWRITE(vlpatch* patch, const char* file,
                 int format); // format 0 text, 1 binary; null: a running number
vlpatch* DPATCHREAD(const char* file, int mode, vltables* tables);

// ---- Pictures (vlpicture.cpp, vlplay.cpp, vlpicfile.cpp)

vlpicture* DNEWPIC(); // closes the open picture, makes a new one and opens it
void DCLOSEPIC();
void DAPPEND(vlpicture* picture, int show);
void DENQPIC(vlpicture* picture); // records a call of the picture in the open one
void DPRIORITY(vlpicture* picture, double priority);
void DPOST(vlpicture* picture, int colour);   // show it; colour >= 0 draws it at once
void DUNPOST(vlpicture* picture, int colour); // hide it; colour >= 0 erases and draws what is left
void DPSHOW(vlpicture* picture, vlpatch* patch);
void DKILL(vlpicture* picture, int colour);
void DPICPOSITION(vlpicture* picture, double x, double y); // where its origin stands, normal units
int DPICSTATE(vlpicture* picture); // -1 open; 0 open, posted; 1 closed; 2 closed, posted; 3 dead
std::vector<uint32_t> DPICWORDS(vlpicture* picture);
// Saves pictures and what they call. With none given: mode 0 every picture, 1 the posted ones. Null file: a
// running number.
void DSAVE(const char* file, int mode, std::span<vlpicture* const> pictures = {});
std::vector<vlpicture*> DUSE(const char* file, int mode, vltables* tables);

// ---- Input (the screen device)

struct vlevent {
    int x, y;    // pixels
    int buttons; // bits: 1 left, 2 right, 4 middle
    int key;     // 0: a mouse event
    int count;
};
// op -1 ends the queue, 1 to 5 choose how the cursor draws, 0 takes the next event into *event. flushop 1
// empties the queue first. 1 when an event was there.
int DQEV(int op, vlevent* event, int mode, int wait, int flushop);
