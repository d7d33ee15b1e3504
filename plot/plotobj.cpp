#include "plot/plotobj.h"

#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "plot/colornames.h"
#include "plot/plotstate.h"

#include <algorithm>
#include <cstring>
#include <utility>

plotstate plotting;
plothooks plotfns;

namespace {

// Gives the undefined entry idx its record, alone in a ring of its own.
void enter(int idx, int type, void* record) {
    symbol& s = sym(idx);
    s.type = int16_t(type);
    s.index = int16_t(idx);
    s.val.ptr = record;
}

void makewindow(int idx) {
    if (sym(idx).type == UNKNOWN) windowenter(idx, defaultwindow());
    if (!iswindow(idx)) tarnerror("%s is not a window", isstringtype(idx) ? stringval(idx) : sym(idx).name);
}

// The same for W, which a user may have given another meaning without a thought of plots.
void makestandard(int idx) {
    try {
        makewindow(idx);
    } catch (const recoveryjump&) {
        tarnwarn("without IN a plot statement means the window W: DELETE W, or name a window by IN");
        throw;
    }
}

// W, where there is none as the user's own DW.SAV or the system's describes it.
int standardwindow() {
    const int idx = symtabenter("W");
    if (sym(idx).type != UNKNOWN) return idx;
    upper.usequietly("DW.SAV");
    return symtabenter("W");
}

bool isstandard(int idx) { return idx == 0 || strcmp(sym(idx).name, "W") == 0; }

} // namespace

window defaultwindow() {
    window w;
    w.fxmax = screen.aspectx, w.fymax = screen.aspecty;
    w.ixmin = 0.125 * w.fxmax, w.ixmax = 0.875 * w.fxmax;
    w.iymin = 0.125 * w.fymax, w.iymax = 0.875 * w.fymax;
    return w;
}

curve curvecopy(const curve& c) {
    curve copy;
    static_cast<curvelook&>(copy) = c;
    copy.data.reset(harraydup(c.data.get()));
    copy.labels.reset(harraydup(c.labels.get()));
    copy.ptsizes.reset(harraydup(c.ptsizes.get()));
    return copy;
}

void curvewindow(curve& c, const window& w) {
    c.axisw[0] = w.wxmin, c.axisw[1] = w.wxmax;
    c.axisw[2] = w.wymin, c.axisw[3] = w.wymax;
}

void windowscale(window& w, double fx, double fy) {
    for (double* x : {&w.fxmin, &w.fxmax, &w.ixmin, &w.ixmax}) *x *= fx;
    for (double* y : {&w.fymin, &w.fymax, &w.iymin, &w.iymax}) *y *= fy;
}

void windowenter(int idx, window w) { enter(idx, WINDOWTYPE, new window(std::move(w))); }
void curveenter(int idx, curve c) { enter(idx, CURVETYPE, new curve(std::move(c))); }
void titleenter(int idx, title t) { enter(idx, TITLETYPE, new title(std::move(t))); }

void joinring(int member, int win) {
    sym(member).index = int16_t(member);
    std::swap(sym(member).index, sym(win).index);
}

void leavering(int member) {
    int before = member;
    while (sym(before).index != member) before = sym(before).index;
    sym(before).index = sym(member).index;
    sym(member).index = int16_t(member);
}

int windowofmember(int idx) {
    int k = sym(idx).index;
    while (k != idx && !iswindow(k)) k = sym(k).index;
    return k != idx ? k : 0;
}

int ringnext(int idx) {
    const int next = sym(idx).index;
    return iswindow(next) ? 0 : next;
}

int newautoname(char letter) {
    for (;;) {
        plotting.autoname = int16_t(plotting.autoname < INT16_MAX ? plotting.autoname + 1 : 1);
        const std::string name = letter + std::to_string(plotting.autoname);
        if (symtablookup(name.c_str()) < 0) return symtabenter(name.c_str());
    }
}

void plotobjstart() {
    plotting = {};
    screen = {};
    plotfns = {colortorgb15, colorfromrgb15, nullptr};
    colornamestart();
    plotkinds();
    plotclauserows();
    curverows();
    titlerows();
    windowrows();
    plotcallrows();
    plotsaverows();
    plotlistrows();
}

int getwindow(int idx) {
    if (idx != 0) {
        while (!iswindow(idx)) idx = sym(idx).index;
        return idx;
    }
    if (isstandard(clause.insym)) {
        const int standard = standardwindow();
        makestandard(standard);
        clause.insym = int16_t(standard);
    } else {
        makewindow(clause.insym);
    }
    return clause.insym;
}
