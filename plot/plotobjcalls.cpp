// GETDATA, GETLABELS, GETPTSIZE of curves; GETIMAGE, GETFRAME, GETWINDOW of windows.
#include "funcs/builtin.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "plot/clauses.h"
#include "plot/plotobj.h"
#include "plot/plotstate.h"

#include <iterator>

namespace {

const curve& curveoperand(const callargs& a) {
    if (!iscurve(a[1])) tarnerror(furtherline{describe(a[1])}, "not a curve, axis, or window");
    return curveof(a[1]);
}

const window& windowoperand(const callargs& a) {
    if (!iswindow(a[1])) tarnerror(furtherline{describe(a[1])}, "not a curve, axis, or window");
    return windowof(a[1]);
}

int copied(const harrayptr& m) {
    return symtabmatrix(0, 0, harrayptr(m ? harraydup(m.get()) : harraynew(0, 0)));
}

int fourvector(const box& b) {
    harrayptr m(harraynew(4, 1));
    double* v = cells(m.get()) + 1;
    v[0] = b.x0, v[1] = b.x1, v[2] = b.y0, v[3] = b.y1;
    return symtabmatrix(0, 0, std::move(m));
}

// The unit of an optional second argument, numbered from 1; 0 if it has no such number.
int unitargument(const callargs& a, int most) {
    static constexpr int units[] = {TOKFRACT, TOKINCHES, TOKFFRACT, TOKFINCHES};
    const double code = a.scalar(2, 1);
    return code >= 1 && code < most + 1 ? units[int(code) - 1] : 0;
}

int getdata(const callargs& a) { return copied(curveoperand(a).data); }
int getlabels(const callargs& a) { return copied(curveoperand(a).labels); }

int getptsize(const callargs& a) {
    const curve& c = curveoperand(a);
    if (c.ptsize < 0) return copied(c.ptsizes);
    harrayptr m(harraynew(1, 1));
    cells(m.get())[1] = c.ptsize;
    return symtabmatrix(0, 0, std::move(m));
}

// A box of the window in the units that the second argument chooses among the first `kinds`.
int getbox(const callargs& a, int kinds, const char* refusal, box (*boxof)(const window& w)) {
    const window& w = windowoperand(a);
    const int units = unitargument(a, kinds);
    if (!units)
        tarnerror(furtherline{kinds == 2 ? "1 FRACT, 2 INCHES" : "1 FRACT, 2 INCHES, 3 FFRACT, 4 FINCHES"},
                  "%s", refusal);
    box b = boxof(w);
    convertunits(b, w, UNITSNORMAL, units);
    return fourvector(b);
}

int getimage(const callargs& a) { return getbox(a, 4, "2nd arg must be 1,2,3, or 4", imageof); }
int getframe(const callargs& a) { return getbox(a, 2, "2nd arg must be 1 or 2", frameof); }

int getwindowlimits(const callargs& a) {
    const window& w = windowoperand(a);
    return fourvector({w.wxmin, w.wxmax, w.wymin, w.wymax});
}

} // namespace

void plotcallrows() {
    static constexpr valuerow calls[] = {{-691, getdata},  {-690, getlabels}, {-689, getptsize},
                                         {-698, getimage}, {-697, getframe},  {-696, getwindowlimits}};
    builtinadd(calls, int(std::size(calls)));
}
