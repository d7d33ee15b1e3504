// The six coordinate units and the screen-normal ones that all are turned into.
#include "interp/base/report.h"
#include "plot/plotobj.h"

#include <algorithm>

screenstate screen;

namespace {

// Both axes of a unit: from it to screen-normal.
struct unitscales {
    linearmap x, y;
};

linearmap worldscale(double wmin, double wmax, double imin, double imax) {
    const double scale = (imax - imin) / (wmax - wmin);
    return {scale, imin - wmin * scale};
}

unitscales scalesof(const window& w, int units) {
    switch (units) {
    case TOKFRACT: return {{screen.aspectx, 0}, {screen.aspecty, 0}};
    case TOKINCHES: return {{1 / screendpi(), 0}, {1 / screendpi(), 0}};
    case TOKFFRACT: return {{w.fxmax - w.fxmin, w.fxmin}, {w.fymax - w.fymin, w.fymin}};
    case TOKFINCHES: return {{1 / screendpi(), w.fxmin}, {1 / screendpi(), w.fymin}};
    case TOKWORLD:
        return {worldscale(w.wxmin, w.wxmax, w.ixmin, w.ixmax),
                worldscale(w.wymin, w.wymax, w.iymin, w.iymax)};
    case TOKIFRACT: return {{w.ixmax - w.ixmin, w.ixmin}, {w.iymax - w.iymin, w.iymin}};
    default: tarnerror("bad inunits/outunits pairing");
    }
}

double tonormal(double v, const linearmap& s) { return s(v); }
double fromnormal(double v, const linearmap& s) { return (v - s.origin) / s.scale; }

// From a place in the limits old to the same place in the limits now.
linearmap follow(double oldmin, double oldmax, double nowmin, double nowmax) {
    const double a = (nowmax - nowmin) / (oldmax - oldmin);
    return {a, nowmin - a * oldmin};
}

} // namespace

void screenresize(double inchesx, double inchesy) {
    const double longer = std::max(inchesx, inchesy);
    screen = {inchesx, inchesy, inchesx / longer, inchesy / longer};
}

double screendpi() { return std::max(screen.screeninchesx, screen.screeninchesy); }

void convertunits(double& x1, double& x2, double& y1, double& y2, const window& w, int inunits,
                  int outunits) {
    if ((inunits == UNITSNORMAL) == (outunits == UNITSNORMAL)) tarnerror("bad inunits/outunits pairing");
    const auto [x, y] = scalesof(w, inunits ? inunits : outunits);
    const auto convert = inunits ? tonormal : fromnormal;
    x1 = convert(x1, x), x2 = convert(x2, x);
    y1 = convert(y1, y), y2 = convert(y2, y);
}

double sizetonormal(double value, int units, const window& w) {
    switch (units) {
    case TOKINCHES: return value / screendpi();
    case TOKFFRACT: return value * (w.fxmax - w.fxmin);
    case TOKWORLD: return value * (w.ixmax - w.ixmin) / (w.wxmax - w.wxmin);
    case TOKIFRACT: return value * (w.ixmax - w.ixmin);
    case UNITSWORLDHEIGHT: return value * (w.iymax - w.iymin) / (w.wymax - w.wymin);
    default: return value; // FRACT and FINCHES
    }
}

void convertunits(box& b, const window& w, int inunits, int outunits) {
    convertunits(b.x0, b.x1, b.y0, b.y1, w, inunits, outunits);
}

axismap::axismap(const window& w, const curve& c) {
    if (c.kind != TOKDRAW && c.dataunits == TOKWORLD) {
        followx = follow(c.axisw[0], c.axisw[1], w.wxmin, w.wxmax);
        followy = follow(c.axisw[2], c.axisw[3], w.wymin, w.wymax);
    }
    const unitscales s = scalesof(w, c.kind == TOKDRAW ? int(TOKWORLD) : c.dataunits);
    normalx = s.x;
    normaly = s.y;
}

void axistonormal(double& x, double& y, const window& w, const curve& c) { axismap(w, c)(x, y); }
