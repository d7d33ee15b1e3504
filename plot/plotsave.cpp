// Windows in save files, each with its members; and the copy of a window, which goes the same way in memory.
#include "interp/base/operand.h"
#include "plot/plotobj.h"
#include "plot/plotstate.h"
#include "values/saveblock.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <vector>

namespace {

// A window outside the table of symbols. Its members stand in the order of the ring.
struct member {
    int type;
    std::string name;
    curve c;
    title t;
};
struct heldwindow {
    window w;
    std::vector<member> members;
};

// ---- writing: records without gaps, a pointer as 4 bytes that tell whether there is something ----

void putcolor(savewriter& out, int color) { putshort(out, color < 0 ? color : plotfns.torgb15(color)); }

void putdoubles(savewriter& out, std::initializer_list<double> values) {
    for (const double v : values) putdouble(out, v);
}

void putshorts(savewriter& out, std::initializer_list<int> values) {
    for (const int v : values) putshort(out, v);
}

void putwindow(savewriter& out, const window& w) {
    putshort(out, w.blanked);
    putdoubles(out, {w.wxmin, w.wxmax, w.wymin, w.wymax, screen.aspectx / screen.aspecty, w.fxmin, w.fxmax,
                     w.fymin, w.fymax, w.priority, w.ixmin, w.ixmax, w.iymin, w.iymax});
    putshort(out, w.imageunits);
    putbytes(out, w.adjust, sizeof w.adjust);
    putshorts(out, {w.imagebox, w.framebox});
    for (const int color : {w.framecolor, w.frameboxcolor, w.imagecolor, w.imageboxcolor})
        putcolor(out, color);
    putlong(out, 0); // no three-dimensional data
}

void putcurve(savewriter& out, const curve& c) {
    putshort(out, c.kind);
    putlong(out, c.data != nullptr);
    putshort(out, c.dataunits);
    putlong(out, c.labels != nullptr);
    for (const int f : c.format) putshort(out, f);
    putshorts(out, {c.vplace, c.hplace});
    putdoubles(out, {c.xoffset, c.yoffset});
    putshort(out, c.offsetunits);
    putdouble(out, c.labelsize);
    putshorts(out, {c.labelsizeunits, c.labelfont});
    putdouble(out, c.labelangle);
    putshort(out, c.linetype);
    putdoubles(out, {c.seg1, c.seg2, c.gap, c.tick1, c.tick2, c.thick, c.fill});
    putshorts(out, {c.pointtype, c.ptfont});
    putdouble(out, c.ptsize);
    putlong(out, c.ptsizes != nullptr);
    putshort(out, c.ptsizeunits);
    for (const int color : {c.labelcolor, c.linecolor, c.pointcolor}) putcolor(out, color);
    putshort(out, c.wclipsw);
    for (const double v : c.axisw) putdouble(out, v);
    putshort(out, c.blanked);
    putmatrix(out, c.data.get());
    putmatrix(out, c.labels.get());
    if (c.ptsize < 0) putmatrix(out, c.ptsizes.get());
}

void puttitle(savewriter& out, const title& t) {
    putlong(out, !t.text.empty());
    putshorts(out, {t.blanked, t.position});
    putdoubles(out, {t.x, t.y, t.angle, t.shift});
    putshorts(out, {t.atunits, t.vplace, t.hplace, t.font});
    putdouble(out, t.size);
    putshort(out, t.sizeunits);
    putcolor(out, t.color);
    puttext(out, t.text.c_str());
}

void writewindow(savewriter& out, int idx) {
    int count = 0;
    for (int k = ringnext(idx); k; k = ringnext(k)) count++;
    putwindow(out, windowof(idx));
    putshort(out, count);
    for (int k = ringnext(idx); k; k = ringnext(k)) {
        putshort(out, sym(k).type);
        puttext(out, sym(k).name);
        if (iscurve(k))
            putcurve(out, curveof(k));
        else
            puttitle(out, titleof(k));
    }
}

// ---- reading ----

void getdoubles(savereader& in, std::initializer_list<double*> fields) {
    for (double* v : fields) *v = getdouble(in);
}

void getshorts(savereader& in, std::initializer_list<int16_t*> fields) {
    for (int16_t* v : fields) *v = int16_t(getshort(in));
}

void getcolors(savereader& in, std::initializer_list<int16_t*> fields) {
    for (int16_t* v : fields) {
        *v = int16_t(getshort(in));
        if (*v >= 0) *v = int16_t(plotfns.fromrgb15(*v));
    }
}

bool areunits(std::initializer_list<int> units) {
    return std::all_of(units.begin(), units.end(), [](int u) { return u >= TOKFRACT && u <= TOKIFRACT; });
}

bool isplacement(int vplace, int hplace) { return std::abs(vplace) <= 1 && std::abs(hplace) <= 1; }
bool isextent(double lo, double hi) { return lo < hi && hi - lo < MAXPOS; }
bool isworld(double lo, double hi) { return lo != hi && std::abs(hi - lo) < MAXPOS; }

bool isonscreen(const window& w) {
    constexpr double SLACK = 1e-6; // screens are told in whole dots
    return w.fxmin >= -SLACK && w.fymin >= -SLACK && w.fxmax <= screen.aspectx + SLACK &&
           w.fymax <= screen.aspecty + SLACK;
}

void need(savereader& in, bool sound, const char* what) {
    if (!sound) readfault(in, what);
}

/* A window of another screen keeps its place: the screen it comes from was saveaspect as wide as high, and
 * had 1 for the longer side. */
void windowadjust(savereader& in, window& w, double saveaspect) {
    if (!(saveaspect > 0)) return readfault(in, "Bad Window Adjust in USE", true);
    windowscale(w, screen.aspectx / std::min(saveaspect, 1.0), screen.aspecty * std::max(saveaspect, 1.0));
}

window getwindowrecord(savereader& in) {
    window w;
    double saveaspect;
    getshorts(in, {&w.blanked});
    getdoubles(in, {&w.wxmin, &w.wxmax, &w.wymin, &w.wymax, &saveaspect, &w.fxmin, &w.fxmax, &w.fymin,
                    &w.fymax, &w.priority, &w.ixmin, &w.ixmax, &w.iymin, &w.iymax});
    getshorts(in, {&w.imageunits});
    getbytes(in, w.adjust, sizeof w.adjust);
    getshorts(in, {&w.imagebox, &w.framebox});
    getcolors(in, {&w.framecolor, &w.frameboxcolor, &w.imagecolor, &w.imageboxcolor});
    const bool flat = getlong(in) == 0;
    if (in.fault) return w;
    windowadjust(in, w, saveaspect);
    need(in, flat, "it is three-dimensional");
    need(in, isworld(w.wxmin, w.wxmax) && isworld(w.wymin, w.wymax), "its limits are none");
    need(in, isextent(w.fxmin, w.fxmax) && isextent(w.fymin, w.fymax), "its frame has no extent");
    need(in, isonscreen(w), "its frame lies outside the screen");
    need(in, isextent(w.ixmin, w.ixmax) && isextent(w.iymin, w.iymax), "its image has no extent");
    const bool codes =
        std::all_of(std::begin(w.adjust), std::end(w.adjust), [](int a) { return a >= 0 && a < 16; });
    need(in, areunits({w.imageunits}) && codes, "its record is damaged");
    return w;
}

bool issoundcurve(const curve& c) {
    const bool kind = c.kind == TOKDRAW || (c.kind >= TOKXAXIS && c.kind <= TOKAXIS);
    const bool line = c.linetype >= CUSTOMLINE && c.linetype <= 12;
    const bool points = std::abs(c.pointtype) <= 31 || (c.pointtype >= 1000 && c.pointtype <= 1128);
    const bool matrices =
        (!c.data || c.data->cols == 2) && (!c.labels || c.labels->cols == 1 || c.labels->cols == 2);
    const bool sizes = c.ptsize >= 0 || (c.ptsizes && c.ptsizes->cols > 0);
    return kind && line && points && matrices && sizes && isplacement(c.vplace, c.hplace) &&
           areunits({c.dataunits, c.offsetunits, c.labelsizeunits, c.ptsizeunits}) &&
           isworld(c.axisw[0], c.axisw[1]) && isworld(c.axisw[2], c.axisw[3]);
}

curve getcurve(savereader& in) {
    curve c;
    getshorts(in, {&c.kind});
    getlong(in);
    getshorts(in, {&c.dataunits});
    getlong(in);
    for (int16_t& f : c.format) f = int16_t(getshort(in));
    getshorts(in, {&c.vplace, &c.hplace});
    getdoubles(in, {&c.xoffset, &c.yoffset});
    getshorts(in, {&c.offsetunits});
    getdoubles(in, {&c.labelsize});
    getshorts(in, {&c.labelsizeunits, &c.labelfont});
    getdoubles(in, {&c.labelangle});
    getshorts(in, {&c.linetype});
    getdoubles(in, {&c.seg1, &c.seg2, &c.gap, &c.tick1, &c.tick2, &c.thick, &c.fill});
    getshorts(in, {&c.pointtype, &c.ptfont});
    getdoubles(in, {&c.ptsize});
    getlong(in);
    getshorts(in, {&c.ptsizeunits});
    getcolors(in, {&c.labelcolor, &c.linecolor, &c.pointcolor});
    getshorts(in, {&c.wclipsw});
    for (double& v : c.axisw) v = getdouble(in);
    getshorts(in, {&c.blanked});
    c.data.reset(getmatrix(in));
    c.labels.reset(getmatrix(in));
    if (c.ptsize < 0) c.ptsizes.reset(getmatrix(in));
    if (!in.fault) need(in, issoundcurve(c), "the record of a curve is damaged");
    return c;
}

title gettitle(savereader& in) {
    title t;
    getlong(in);
    getshorts(in, {&t.blanked, &t.position});
    getdoubles(in, {&t.x, &t.y, &t.angle, &t.shift});
    getshorts(in, {&t.atunits, &t.vplace, &t.hplace, &t.font});
    getdoubles(in, {&t.size});
    getshorts(in, {&t.sizeunits});
    getcolors(in, {&t.color});
    gettext(in, t.text);
    const bool sound = t.position >= TITLEFREE && t.position <= TITLEBOTTOM &&
                       areunits({t.atunits, t.sizeunits}) && isplacement(t.vplace, t.hplace);
    if (!in.fault) need(in, sound, "the record of a title is damaged");
    return t;
}

bool ismembername(const std::string& name) {
    return !name.empty() && name.size() <= MAXNAME && isalpha(static_cast<unsigned char>(name[0])) &&
           std::all_of(name.begin(), name.end(), [](unsigned char c) { return isalnum(c) || c == '.'; });
}

member getmember(savereader& in) {
    member m{getshort(in), "", {}, {}};
    gettext(in, m.name);
    if (in.fault) return m;
    need(in, ismembername(m.name), "what should be the name of a curve or a title is none");
    if (m.type == CURVETYPE)
        m.c = getcurve(in);
    else if (m.type == TITLETYPE)
        m.t = gettitle(in);
    else
        readfault(in, "it has a member of an unknown type");
    return m;
}

void* readwindow(savereader& in) {
    auto held = std::make_unique<heldwindow>();
    held->w = getwindowrecord(in);
    const int count = getshort(in);
    need(in, in.fault || count >= 0, "its record is damaged");
    for (int k = 0; k < count && !in.fault; k++) held->members.push_back(getmember(in));
    return in.fault ? nullptr : held.release();
}

// ---- into the table ----

// A for one more try: W.XAXIS, WA.XAXIS; C1, C1A.
std::string longer(std::string name) { return name.insert(std::min(name.find('.'), name.size()), "A"); }

// An undefined entry for a member: of its own name, or of one that is free.
int memberentry(std::string name, int type) {
    for (; name.size() <= MAXNAME; name = longer(name)) {
        const int idx = symtablookup(name.c_str());
        if (idx < 0 || sym(idx).type == UNKNOWN) return symtabenter(name.c_str());
    }
    return newautoname(type == TITLETYPE ? 'T' : 'C');
}

void install(int idx, heldwindow& held) {
    windowenter(idx, std::move(held.w));
    for (auto m = held.members.rbegin(); m != held.members.rend(); ++m) { // the newest joins last
        const int entry = memberentry(m->name, m->type);
        if (m->type == CURVETYPE)
            curveenter(entry, std::move(m->c));
        else
            titleenter(entry, std::move(m->t));
        joinring(entry, idx);
    }
}

void discardwindow(void* value) { delete static_cast<heldwindow*>(value); }

void installwindow(int idx, void* value) {
    const std::unique_ptr<heldwindow> held(static_cast<heldwindow*>(value));
    install(idx, *held);
}

constexpr savekind kinds[] = {{WINDOWTYPE, writewindow, readwindow, installwindow, discardwindow}};

// ---- the copy ----

bool isautoname(const std::string& name) {
    return name.size() > 1 && (name[0] == 'C' || name[0] == 'A' || name[0] == 'T') &&
           name.find_first_not_of("0123456789", 1) == std::string::npos;
}

// The name in a copy of window `from` called `to`: W.TOP becomes W2.TOP, an automatic name the next one of
// its letter.
std::string copyname(const std::string& name, const std::string& from, const std::string& to) {
    if (isautoname(name)) return sym(newautoname(name[0])).name;
    if (name.compare(0, from.size() + 1, from + ".") == 0) return to + name.substr(from.size());
    return name;
}

} // namespace

void copywindow(int from, int to) {
    heldwindow held{windowof(from), {}};
    std::vector<int> ring;
    for (int k = ringnext(from); k; k = ringnext(k)) ring.push_back(k);
    for (auto k = ring.rbegin(); k != ring.rend();
         ++k) { // the eldest first, so that its number is the lowest
        member m{sym(*k).type, copyname(sym(*k).name, sym(from).name, sym(to).name), {}, {}};
        if (iscurve(*k))
            m.c = curvecopy(curveof(*k));
        else
            m.t = titleof(*k);
        held.members.insert(held.members.begin(), std::move(m));
    }
    install(to, held);
}

void plotsaverows() { savekindadd(kinds, int(std::size(kinds))); }
