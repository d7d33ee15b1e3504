#include "plot/curveop.h"

#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "plot/adjust.h"
#include "plot/clauses.h"
#include "plot/plotobj.h"
#include "plot/plotstate.h"

#include <cstring>
#include <iterator>

namespace {

// What the operands tell; 0 where there is none.
struct drawoperands {
    int name = 0;   // an undefined name or a curve
    int source = 0; // data, or a curve to copy
};

[[noreturn]] void badtype(int idx,
                          const char* needed = "a matrix of points or the name of a curve is needed") {
    tarnerror(furtherline{describe(idx) + (sym(idx).type == UNKNOWN ? "" : std::string(": ") + needed)},
              "bad DRAW or AXIS arg. type");
}

[[noreturn]] void badname(int idx) { badtype(idx, "the name must be new, or that of a curve"); }

drawoperands readoperands(const operandlist& list) {
    drawoperands d;
    if (list.count > 2)
        tarnerror(furtherline{"a name and its points: DRAW NAME = MATRIX"},
                  "too many arguments in DRAW or AXIS statement");
    if (list.count == 0) return d;
    const int first = list.at[0], last = list.at[list.count - 1];
    if (list.count == 2) {
        if (!iscurve(first) && (sym(first).type != UNKNOWN || sym(first).name[0] == '.')) badname(first);
        d.name = first;
    }
    if (sym(last).type == MATRIX)
        d.source = last;
    else if (!iscurve(last))
        badtype(last);
    else if (list.count == 1)
        d.name = last;
    else if (last != first)
        d.source = last;
    return d;
}

bool is3d(int idx) {
    if (sym(idx).type == CURVE3D) return true;
    return sym(idx).type == MATRIX && static_cast<const harray*>(sym(idx).val.ptr)->cols == 3;
}

void checkdata(const drawoperands& d) {
    if (!d.source || iscurve(d.source)) return;
    const uint32_t cols = static_cast<const harray*>(sym(d.source).val.ptr)->cols;
    if (cols != 1 && cols != 2)
        tarnerror(furtherline{describe(d.source)}, "DRAW & AXIS data matrix must have 1 or 2 cols");
}

// Points for the record: a copy, or moved out of a temporary; one column gets 1, 2... beside it.
harrayptr pointsof(int idx) {
    symbol& s = sym(idx);
    harray* m = static_cast<harray*>(s.val.ptr);
    if (m->cols == 2 && istemporary(idx)) {
        s.type = SCALAR; // so that its release frees nothing
        return harrayptr(m);
    }
    if (m->cols == 2) return harrayptr(harraydup(m));
    harrayptr points(harrayraw(m->rows, 2));
    for (size_t i = 1; i <= m->rows; i++) {
        at(points.get(), i, 1) = double(i);
        at(points.get(), i, 2) = cells(m)[i];
    }
    return points;
}

// The entry of an axis without a name, or of a new curve; it may be undefined.
int unnamed(int kind) {
    const char* window = sym(getwindow(0)).name;
    if (kind == TOKDRAW || kind == TOKAXIS) return newautoname(kind == TOKDRAW ? 'C' : 'A');
    const int idx = symtabenter((std::string(window) + (kind == TOKXAXIS ? ".XAXIS" : ".YAXIS")).c_str());
    if (sym(idx).type != UNKNOWN && !iscurve(idx)) badname(idx);
    return idx;
}

// ---- an axis keeps pace with its window ----

// Positions along one direction: from the window of the axis to the present one.
struct stretch {
    double scale = 1, origin = 0;
};

stretch labelstretch(const curve& c, const window& w) {
    const bool isx = c.kind == TOKXAXIS;
    if (!isx && c.kind != TOKYAXIS) return {};
    const double oldmin = c.axisw[isx ? 0 : 2], oldmax = c.axisw[isx ? 1 : 3];
    const double nowmin = isx ? w.wxmin : w.wymin, nowmax = isx ? w.wxmax : w.wymax;
    const double scale = (nowmax - nowmin) / (oldmax - oldmin);
    return {scale, nowmin - scale * oldmin};
}

void movelabels(curve& c, const window& w) {
    if (!c.labels) return;
    const stretch s = labelstretch(c, w);
    for (size_t i = 1; i <= c.labels->rows; i++)
        at(c.labels.get(), i, 1) = s.scale * at(c.labels.get(), i, 1) + s.origin;
}

void movepoints(curve& c, const window& w) {
    if (!c.data) return;
    const axismap tonormal(w, c);
    for (double* p = cells(c.data.get()) + 1; p < cells(c.data.get()) + 1 + harraycount(c.data.get());
         p += 2) {
        double x2 = 0, y2 = 0;
        tonormal(p[0], p[1]);
        convertunits(p[0], x2, p[1], y2, w, UNITSNORMAL, c.dataunits);
    }
}

/* New data belong to the present window, and so do new labels. What the statement leaves as it was is brought
 * there: the old labels of an axis with new data, or the old points of one with new labels. */
void keeppace(curve& c, const window& w, bool newdata) {
    const bool newlabels = given(clause.labelmatrix);
    if (newdata && !newlabels) movelabels(c, w);
    if (newlabels && !newdata) movepoints(c, w);
    if (newdata || newlabels) curvewindow(c, w);
}

// Marks that the statement tells are not chosen.
void setclip(curve& c, bool newdata) {
    if (given(clause.wclip))
        c.wclipsw = clause.wclip;
    else if (newdata || (given(clause.labelmatrix) && c.labels))
        ownmarksend(c);
}

// ---- the two ways of a statement ----

// A new curve in the window of the statement.
int drawnew(int kind, int name, int source) {
    const int win = getwindow(0);
    if (!name) name = unnamed(kind);
    const bool copied = source && iscurve(source);
    curve c = copied ? curvecopy(curveof(source)) : curve();
    applycurveclauses(c);
    if (source && !copied) c.data = pointsof(source);
    if (!copied || c.kind == TOKDRAW) curvewindow(c, windowof(win)); // the copy of an axis keeps its own
    c.kind = int16_t(kind);
    c.wclipsw = given(clause.wclip) ? clause.wclip : int16_t(kind == TOKDRAW);
    curveenter(name, std::move(c));
    joinring(name, win);
    return win;
}

// A curve as it stands, changed; returns its window, to which it may have moved.
int drawold(int kind, int name, int source) {
    harrayptr points = source ? pointsof(source) : nullptr;
    const int old = windowofmember(name);
    const int win = clause.insym ? getwindow(0) : old;
    if (win != old) {
        leavering(name);
        joinring(name, win);
        adjustwindow(old);
    }
    curve& c = curveof(name);
    const window& w = windowof(win);
    applycurveclauses(c);
    if (points) c.data = std::move(points);
    if (kind != TOKDRAW) keeppace(c, w, source != 0);
    if (c.kind != kind) tarnwarn("changing kind of CURVE/AXIS");
    c.kind = int16_t(kind);
    setclip(c, source != 0);
    return win;
}

// The name of a curve that becomes a copy of another is undefined again.
int clearname(int idx) {
    const std::string name = sym(idx).name;
    symtabdelete(idx);
    return symtabenter(name.c_str());
}

bool isoperand3d(const operandlist& list) {
    return (list.count > 0 && is3d(list.at[0])) || (list.count == 2 && is3d(list.at[1]));
}

void draw(const processop& op) { drawop(op.token); }

} // namespace

void drawop(int kind) {
    const operandlist list = takeoperands();
    if (kind == TOKDRAW && isoperand3d(list)) {
        if (!plotfns.draw3d)
            tarnerror(furtherline{"two of them can be drawn: DRAW (X COL 1) &' (X COL 3)"},
                      "DRAW of 3 columns is not available in this build");
        return plotfns.draw3d();
    }
    drawoperands d = readoperands(list);
    checkdata(d);
    checkcurveclauses(kind);
    if (clause.insym) getwindow(0); // refuses what is no window
    warnunused(kind);
    if (!d.name && kind != TOKDRAW && kind != TOKAXIS) d.name = unnamed(kind);
    if (d.name && iscurve(d.name) && d.source && iscurve(d.source)) d.name = clearname(d.name);
    const bool old = d.name && iscurve(d.name);
    const int win = old ? drawold(kind, d.name, d.source) : drawnew(kind, d.name, d.source);
    if (kind == TOKDRAW)
        adjustwindow(win);
    else
        adjustaxes(win);
    releaseoperands(list);
    upper.redraw();
}

void curverows() {
    static constexpr processrow rows[] = {{26, draw}};
    processadd(rows, int(std::size(rows)));
}
