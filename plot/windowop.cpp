#include "plot/windowop.h"

#include "interp/base/hooks.h"
#include "interp/base/numtext.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "plot/adjust.h"
#include "plot/clauses.h"
#include "plot/plotobj.h"
#include "plot/plotstate.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

box screenbox() { return {0, screen.aspectx, 0, screen.aspecty}; }

void setframe(window& w, const box& b) { w.fxmin = b.x0, w.fxmax = b.x1, w.fymin = b.y0, w.fymax = b.y1; }
void setimage(window& w, const box& b) { w.ixmin = b.x0, w.ixmax = b.x1, w.iymin = b.y0, w.iymax = b.y1; }

// Conversions of units round; that much outside is not outside.
bool isinside(const box& inner, const box& outer) {
    constexpr double SLACK = 1e-9;
    return inner.x0 >= outer.x0 - SLACK && inner.x1 <= outer.x1 + SLACK && inner.y0 >= outer.y0 - SLACK &&
           inner.y1 <= outer.y1 + SLACK;
}

// The TO clauses; false if there are none.
bool boxgiven(box& b) { return toclauses(b.x0, b.x1, b.y0, b.y1); }

int boxunits(int absent) { return given(clause.unitat) ? clause.unitat : absent; }

void checkunits(int units, std::initializer_list<int> allowed, const char* names) {
    if (std::find(allowed.begin(), allowed.end(), units) == allowed.end())
        tarnerror(furtherline{names}, "bad units in FRAME or IMAGE statement");
}

void checkextent(const box& b, const char* what) {
    if (!(b.x0 < b.x1 && b.y0 < b.y1)) tarnerror("%s limits must rise from the first to the second", what);
}

// What there is room in, in the units of the statement.
std::string limitstext(const std::string& what, box b, const window& w, int units) {
    convertunits(b, w, UNITSNORMAL, units);
    const auto range = [](double lo, double hi) { return numstring(lo, {}) + " TO " + numstring(hi, {}); };
    return what + " is " + range(b.x0, b.x1) + ", " + range(b.y0, b.y1) + " in these units";
}

// ---- WINDOW ----

// They may fall: then the picture is turned round.
void checklimits(double v1, double v2) {
    const double extent = std::abs(v2 - v1);
    if (!(extent > 0 && extent <= MAXPOS)) tarnerror("illegal WINDOW limits: %lg TO %lg", v1, v2);
}

void setwindow() {
    box b;
    const bool limits = boxgiven(b);
    if (limits) checklimits(b.x0, b.x1), checklimits(b.y0, b.y1);
    const int win = getwindow(0);
    window& w = windowof(win);
    const bool codes = given(clause.adjust[0]);
    for (int k = 0; k < 4; k++)
        if (codes || limits) w.adjust[k] = int8_t(codes ? clause.adjust[k] : 0);
    if (limits) w.wxmin = b.x0, w.wxmax = b.x1, w.wymin = b.y0, w.wymax = b.y1;
    adjustwindow(win);
}

// ---- FRAME and IMAGE ----

// The image of a window whose frame becomes `now`.
box imagefollows(const window& w, const box& now) {
    box image = imageof(w);
    if (w.imageunits == TOKFFRACT) {
        window moved = w;
        setframe(moved, now);
        convertunits(image, w, UNITSNORMAL, TOKFFRACT);
        convertunits(image, moved, TOKFFRACT, UNITSNORMAL);
    } else if (w.imageunits == TOKFINCHES) {
        const double dx = now.x0 - w.fxmin, dy = now.y0 - w.fymin;
        image.x0 += dx, image.x1 += dx;
        image.y0 += dy, image.y1 += dy;
    }
    return image;
}

void setframe() {
    box b;
    const bool limits = boxgiven(b);
    const int units = boxunits(TOKFRACT);
    if (limits) {
        checkunits(units, {TOKFRACT, TOKINCHES}, "FRAME takes FRACT or INCHES");
        convertunits(b, window(), units, UNITSNORMAL);
        checkextent(b, "FRAME");
        if (!isinside(b, screenbox()))
            tarnerror(furtherline{limitstext("the screen", screenbox(), window(), units)},
                      "frame is outside the screen");
    }
    const int win = getwindow(0);
    window& w = windowof(win);
    if (given(clause.priority)) w.priority = clause.priority;
    if (given(clause.colorn)) w.framecolor = clause.colorn;
    if (!limits) return;
    setimage(w, imagefollows(w, b));
    setframe(w, b);
    if (!isinside(imageof(w), b))
        tarnerror(furtherline{std::string("the image of ") + sym(win).name +
                              " does not fit in: set it anew with IMAGE"},
                  "FRAME command shifted image out of frame");
}

void setimage() {
    box b;
    const bool limits = boxgiven(b);
    const int units = boxunits(TOKFFRACT);
    if (limits)
        checkunits(units, {TOKFINCHES, TOKINCHES, TOKFFRACT, TOKFRACT},
                   "IMAGE takes FFRACT, FINCHES, FRACT or INCHES");
    const int win = getwindow(0);
    window& w = windowof(win);
    if (limits) {
        convertunits(b, w, units, UNITSNORMAL);
        checkextent(b, "IMAGE");
        if (!isinside(b, frameof(w)))
            tarnerror(
                furtherline{limitstext(std::string("the frame of ") + sym(win).name, frameof(w), w, units)},
                "image is outside the frame");
        if (!isinside(b, screenbox()))
            tarnerror(furtherline{limitstext("the screen", screenbox(), w, units)},
                      "image is outside the screen");
        setimage(w, b);
        w.imageunits = int16_t(units);
    }
    if (given(clause.colorn)) w.imagecolor = clause.colorn;
}

// ---- BLANK ----

bool canblank(int idx) { return iswindow(idx) || iscurve(idx) || istitle(idx); }

void blank(const processop& op) {
    for (int k = 0; k <= parser.poltop; k++)
        if (!canblank(parser.polstack[k]))
            tarnerror(furtherline{describe(parser.polstack[k])}, "bad type in BLANK/UNBLANK");
    while (parser.poltop >= 0) setblank(polpop(), op.token == TOKBLANK);
    upper.redraw();
}

void windowstatement(const processop& op) { windowop(op.token); }
void boxstatement(const processop& op) { boxop(op.token); }

[[noreturn]] void refuseoperand(int idx) {
    try {
        tarnsyntax(0, "illegal statement");
    } catch (const recoveryjump&) {
        tarnwarn("%s: a window is named by IN, its limits are told with TO", describe(idx).c_str());
        throw;
    }
}

} // namespace

void windowop(int token) {
    if (parser.poltop >= 0) refuseoperand(parser.polstack[parser.poltop]);
    warnunused(token);
    switch (token) {
    case TOKWINDOW: setwindow(); break;
    case TOKFRAME: setframe(); break;
    case TOKIMAGE: setimage(); break;
    }
    adjustaxes(clause.insym); // another image has room for other marks
    releaseoperands(takeoperands());
    upper.redraw();
}

void boxop(int token) {
    const operandlist list = takeoperands();
    window& w = windowof(getwindow(0));
    warnunused(token);
    const bool isframe = token == TOKFRAMEBOX;
    (isframe ? w.framebox : w.imagebox) = list.count == 0;
    if (given(clause.colorn)) (isframe ? w.frameboxcolor : w.imageboxcolor) = clause.colorn;
    releaseoperands(list);
    upper.redraw();
}

void setblank(int idx, int value) {
    switch (sym(idx).type) {
    case WINDOWTYPE:
        windowof(idx).blanked = int16_t(value);
        for (int k = ringnext(idx); k; k = ringnext(k)) setblank(k, value);
        break;
    case CURVETYPE: curveof(idx).blanked = int16_t(value); break;
    case TITLETYPE: titleof(idx).blanked = int16_t(value); break;
    default: tarnerror("bad type in BLANK/UNBLANK");
    }
}

void windowrows() {
    static constexpr processrow rows[] = {
        {29, blank}, {42, windowstatement}, {43, windowstatement}, {44, windowstatement}, {52, boxstatement}};
    processadd(rows, int(std::size(rows)));
}
