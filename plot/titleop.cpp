#include "plot/titleop.h"

#include "funcs/builtin.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "plot/clauses.h"
#include "plot/plotobj.h"
#include "plot/plotstate.h"

#include <cmath>
#include <iterator>

namespace {

// What the operands tell; 0 where there is none.
struct titleoperands {
    int name = 0;   // an undefined name or a title
    int source = 0; // a title to copy
    int text = 0;
    int position = TITLEFREE;
};

[[noreturn]] void badtype(int idx) {
    tarnerror(furtherline{describe(idx) + ": one name, one text and one position are enough"},
              "bad TITLE arg. type");
}

[[noreturn]] void othertype(int idx) {
    tarnerror(furtherline{describe(idx)}, "title name already assigned to other type");
}

int positionof(int idx) {
    const double code = scalarval(idx);
    for (const int position : {TITLETOP, TITLELEFT, TITLERIGHT, TITLEBOTTOM})
        if (code == double(position)) return position;
    tarnerror(furtherline{describe(idx) + ": a position is TOP, LEFT, RIGHT or BOTTOM"},
              "title name already assigned to other type");
}

void takename(titleoperands& t, int idx) {
    if (!t.name && sym(idx).name[0] != '.')
        t.name = idx;
    else if (istitle(idx) && !t.source)
        t.source = idx;
    else
        badtype(idx);
}

titleoperands readoperands(const operandlist& list) {
    titleoperands t;
    if (list.count > 4)
        tarnerror(furtherline{"a name, a title to copy, a text and a position are all that it takes"},
                  "too many arguments in TITLE statement");
    for (int k = 0; k < list.count; k++) {
        const int idx = list.at[k];
        const int type = sym(idx).type;
        if (type == UNKNOWN || type == TITLETYPE) {
            takename(t, idx);
        } else if (isstringtype(idx)) {
            if (t.text) badtype(idx);
            t.text = idx;
        } else if (isscalar(idx)) {
            if (t.position) badtype(idx);
            t.position = positionof(idx);
        } else {
            othertype(idx);
        }
    }
    if (t.source == t.name) t.source = 0;
    return t;
}

void checkclauses() {
    checkfont(clause.font, "invalid font number");
    checksize(clause.textsize, "SIZE");
    checkplace();
}

const char* suffix(int position) {
    static const char* const suffixes[] = {"", ".TOP", ".LEFT", ".RIGHT", ".BOTTOM"};
    return suffixes[position];
}

// The entry of a title without a name; it may be undefined.
int unnamed(int position) {
    const int win = getwindow(0);
    if (position == TITLEFREE) return newautoname('T');
    const int idx = symtabenter((std::string(sym(win).name) + suffix(position)).c_str());
    if (sym(idx).type != UNKNOWN && !istitle(idx)) othertype(idx);
    return idx;
}

// ---- places ----

bool isupright(int position) { return position == TITLELEFT || position == TITLERIGHT; }

// The anchor of a title with a position: the start of its line, in the middle of what the image leaves free.
void placeinframe(title& t, const window& w) {
    const double size = sizetonormal(t.size, t.sizeunits, w);
    t.x = w.fxmin, t.y = w.fymin;
    switch (t.position) {
    case TITLETOP: t.y = w.fymax - w.iymax <= size ? w.fymax - size / 2 : (w.iymax + w.fymax) / 2; break;
    case TITLELEFT: t.x += (w.ixmin - w.fxmin) / 2 <= size ? size / 2 : (w.ixmin - w.fxmin) / 4; break;
    case TITLERIGHT: t.x = w.fxmax - w.ixmax <= size ? w.fxmax - size / 2 : (w.ixmax + w.fxmax) / 2; break;
    case TITLEBOTTOM: t.y = w.iymin - w.fymin <= size ? w.fymin + size / 2 : (w.iymin + w.fymin) / 2; break;
    }
    double x2 = 0, y2 = 0;
    convertunits(t.x, x2, t.y, y2, w, UNITSNORMAL, t.atunits);
}

// What a position brings with it, as long as no clause tells otherwise.
void takeposition(title& t, int position) {
    if (t.position != position) t.shift = 0.5;
    t.position = int16_t(position);
    t.hplace = -1;
    t.vplace = 0;
    t.angle = isupright(position) ? 90 : 0;
}

double wrapped(double angle) {
    double rest = std::fmod(angle, 360);
    if (rest < 0) rest += 360;
    return rest < 360 ? rest : 0; // a sum may round up
}

void applyclauses(title& t) {
    if (given(clause.font)) t.font = clause.font;
    if (given(clause.colorn)) t.color = clause.colorn;
    if (given(clause.textsize)) t.size = clause.textsize;
    if (given(clause.unitsize)) t.sizeunits = clause.unitsize;
    if (given(clause.unitat)) t.atunits = clause.unitat;
    if (given(clause.textshift)) t.shift = clause.textshift;
    if (given(clause.textangle)) t.angle = wrapped(clause.textangle);
    applyplace(t.vplace, t.hplace);
}

void applystatement(title& t, const titleoperands& operands, const window& w) {
    if (operands.text) t.text = stringval(operands.text);
    if (operands.position) takeposition(t, operands.position);
    applyclauses(t);
    if (given(clause.atx))
        t.x = clause.atx, t.y = clause.aty;
    else if (operands.position)
        placeinframe(t, w);
}

void titlestatement(const processop&) { titleop(); }

int titletext(const callargs& a) {
    return symtabtemp(0, 0, xstrdup(titleof(a[1]).text.c_str()), TEMPSTRING, 0);
}

} // namespace

void titleop() {
    const operandlist list = takeoperands();
    const titleoperands operands = readoperands(list);
    checkclauses();
    if (clause.insym) getwindow(0); // refuses what is no window
    warnunused(TOKTITLE);
    const int name = operands.name ? operands.name : unnamed(operands.position);
    const bool old = istitle(name);
    const int from = old ? windowofmember(name) : 0;
    const int win = old && !clause.insym ? from : getwindow(0);
    title t = operands.source ? titleof(operands.source) : old ? titleof(name) : title();
    applystatement(t, operands, windowof(win));
    if (old)
        titleof(name) = std::move(t);
    else
        titleenter(name, std::move(t));
    if (win != from) {
        if (old) leavering(name);
        joinring(name, win);
    }
    releaseoperands(list);
    upper.redraw();
}

std::string titletoedit(int idx) {
    std::string quoted;
    for (const char c : titleof(idx).text) quoted.append(c == '"' ? 2 : 1, c);
    return std::string("title ") + sym(idx).name + " = \"" + quoted + "\"";
}

void titlerows() {
    static constexpr processrow rows[] = {{25, titlestatement}};
    processadd(rows, int(std::size(rows)));
    static constexpr valuerow calls[] = {{-904, titletext}};
    builtinadd(calls, int(std::size(calls)));
}
