#include "plot/display.h"

#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "plot/colors.h"
#include "plot/plotobj.h"
#include "plot/scene.h"
#include "plot/view.h"
#include "vellum/vellum.h"

#include <cmath>
#include <cstring>

displaystate display;
displayhooks displayfns{};

namespace {

constexpr const char* SCREENDEVICE = "MSWDEV";
constexpr double MAXSCREENINCHES = 1000;

// The first line is the fault; a second one tells more.
[[noreturn]] void libraryfault(const char* message) {
    std::string text = message;
    text.erase(0, text.find_first_not_of('\n'));
    while (!text.empty() && text.back() == '\n') text.pop_back();
    const size_t end = text.find('\n');
    const std::string more = end == std::string::npos ? "" : text.substr(end + 1);
    tarnerror(furtherline{more}, "%s", text.substr(0, end).c_str());
}

// There is one device to choose.
const char* askdisplay() {
    conout("Select the graphics device you want to use:\n");
    conout("1: MS Windows device\n");
    for (;;) {
        const int key = getkey(true);
        if (key < ' ' || key == '1') return SCREENDEVICE; // no key can come, or Enter
    }
}

// Every frame and image keeps its place in fractions of the screen.
void rescalewindows(double fx, double fy) {
    for (int idx = 1; idx < SYMTABSIZE; idx++)
        if (iswindow(idx)) windowscale(windowof(idx), fx, fy);
}

void newshape(double inchesx, double inchesy) {
    const screenstate old = screen;
    screenresize(inchesx, inchesy);
    if (old.aspectx != screen.aspectx || old.aspecty != screen.aspecty)
        rescalewindows(screen.aspectx / old.aspectx, screen.aspecty / old.aspecty);
}

// The pixels and inches that the screen is opened with: seven tenths of what the platform has.
void platformsize() {
    constexpr double PART = 0.7;
    const vldevice* d = DDEVICE(SCREENDEVICE);
    int width = 0, height = 0;
    if (!displayfns.screenpixels || !displayfns.screenpixels(width, height)) return;
    if (!d || d->xdpi <= 0 || d->ydpi <= 0) return;
    display.viewxpix = int(PART * width);
    display.viewypix = int(PART * height);
    display.viewwidthin = display.viewxpix / d->xdpi;
    display.viewheightin = display.viewypix / d->ydpi;
}

void takesizes() {
    const vldevice* d = DDEVICE(nullptr);
    display.viewwidthin = d->widthin;
    display.viewheightin = d->heightin;
    display.viewxpix = d->xpix;
    display.viewypix = d->ypix;
    newshape(d->xpix / d->xdpi, d->ypix / d->ydpi);
}

void displayselect(const char* name) { getdisplay(name, 0, true); }
void redraw() { redisplay(REDISPLAYCHANGE); }

void shutdowngraphics() {
    DQUIT(0);
    display.viewactive = false;
}

} // namespace

void displayerrors() { DERROR(libraryfault); }

std::string displayname() { return symtabstring("DISPLAY", ""); }

int getdisplay(const char* name, int keep, bool resize) {
    if (!name) return -1;
    if (!*name) name = askdisplay();
    if (strcmp(name, SCREENDEVICE) != 0)
        tarnerror(
            furtherline{std::string(name) + ": the screen is " + SCREENDEVICE + "; files are made by PLOT"},
            "getdisplay: Unknown display");
    displayerrors();
    DSETFONTPATH(report.tarnpath.c_str());
    DQUIT(keep);
    display.viewactive = false;
    if (resize) platformsize();
    int ncolors = 0;
    if (!DINI(name, &ncolors, nullptr, display.viewwidthin, display.viewheightin, display.viewxpix,
              display.viewypix)) {
        if (display.graphicsfail == GRAPHICSUP) display.graphicsfail = GRAPHICSFAILED;
        return 0;
    }
    display.graphicsfail = GRAPHICSUP;
    takesizes();
    colors.ink = INKSCREEN;
    colors.top = ncolors - 1;
    colornames();
    return colors.top;
}

void setviewsize(double width, double height) {
    if (!(width > 0 && height > 0 && width <= MAXSCREENINCHES && height <= MAXSCREENINCHES))
        tarnerror("VIEWSIZE: the width and height must be above 0 and at most %g inches", MAXSCREENINCHES);
    display.viewwidthin = width;
    display.viewheightin = height;
    display.viewxpix = display.viewypix = 0;
    if (display.graphicsfail != GRAPHICSUP) return newshape(width, height);
    const bool active = display.viewactive;
    getdisplay(displayname().c_str(), 0, false);
    if (active) redisplay(REDISPLAYALL);
}

void displaystart() {
    displayerrors();
    DQUIT(0);
    display = displaystate{};
    colors = colorstate{};
    scene = scenestate{};
    viewrows();
    upper.redraw = redraw;
    upper.displayselect = displayselect;
    upper.shutdowngraphics = shutdowngraphics;
    plotfns.torgb15 = toRGB15;
    plotfns.fromrgb15 = fromRGB15;
}
