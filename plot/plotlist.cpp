// TYPE of windows, curves, axes and titles.
#include "interp/base/listrows.h"
#include "interp/base/report.h"
#include "plot/colornames.h"
#include "plot/plotobj.h"
#include "plot/plotstate.h"

#include <iterator>
#include <string>

namespace {

const char* blankstate(int blanked) { return blanked ? "(BLANKED)" : "(UNBLANKED)"; }

const char* unitword(int units) {
    switch (units) {
    case TOKWORLD: return "WORLD";
    case TOKFRACT: return "FRACT";
    case TOKINCHES: return "INCHES";
    case TOKFINCHES: return "FINCHES";
    case TOKFFRACT: return "FFRACT";
    case TOKIFRACT: return "IFRACT";
    default: return "";
    }
}

std::string colortext(int color) {
    const char* name = colorname(color);
    return std::string(" color: ") + (name ? name : "") + "(" + std::to_string(color) + ") ";
}

std::string placetext(int vplace, int hplace) {
    static const char* const horizontal[] = {"left, ", "center, ", "right, "};
    static const char* const vertical[] = {"bottom)", "center)", "top)"};
    return std::string(" place (") + horizontal[hplace + 1] + vertical[vplace + 1];
}

const char* windowname(int member) {
    const int win = windowofmember(member);
    return win ? sym(win).name : "";
}

// ---- windows ----

void showlimits(const char* head, const window& w, box b, int units) {
    convertunits(b, w, UNITSNORMAL, units);
    tarnprint("%sx:%lg to %lg, y:%lg to %lg\n", head, b.x0, b.x1, b.y0, b.y1);
}

void showmembers(const char* head, int win, bool (*belongs)(int idx)) {
    std::string names;
    for (int k = ringnext(win); k; k = ringnext(k))
        if (belongs(k)) names += (names.empty() ? "" : ", ") + std::string(sym(k).name);
    tarnprint("%s: %s\n", head, names.c_str());
}

bool isplaincurve(int idx) { return iscurve(idx) && curveof(idx).kind == TOKDRAW; }
bool isaxis(int idx) { return iscurve(idx) && curveof(idx).kind != TOKDRAW; }

void showwindow(int idx) {
    const window& w = windowof(idx);
    tarnprint("window: %s %s priority: %lg\n", sym(idx).name, blankstate(w.blanked), w.priority);
    tarnprint("window clipping limits (world units) wxmin:%lg wxmax:%lg wymin:%lg wymax:%lg\n", w.wxmin,
              w.wxmax, w.wymin, w.wymax);
    tarnprint("adjustment codes: %d,%d,%d,%d\n", w.adjust[0], w.adjust[1], w.adjust[2], w.adjust[3]);
    tarnprint("frame %s%s\n", colortext(w.framecolor).c_str(),
              w.framebox ? (" FRAMEBOX" + colortext(w.frameboxcolor)).c_str() : " NO FRAMEBOX");
    showlimits("frame in screen fraction units (width,height = 1):\n", w, frameof(w), TOKFRACT);
    showlimits("\nframe in screen inches:", w, frameof(w), TOKINCHES);
    tarnprint("\nimage %s%s", colortext(w.imagecolor).c_str(),
              w.imagebox ? ("IMAGEBOX, " + colortext(w.imageboxcolor)).c_str() : "NO IMAGEBOX");
    showlimits("\nimage in frame inches:", w, imageof(w), TOKFINCHES);
    showlimits("image in frame fraction units:", w, imageof(w), TOKFFRACT);
    showlimits("image in screen fraction units:", w, imageof(w), TOKFRACT);
    showlimits("image in screen inches:", w, imageof(w), TOKINCHES);
    showmembers("CURVES", idx, isplaincurve);
    showmembers("AXES", idx, isaxis);
    showmembers("TITLES", idx, istitle);
}

// ---- curves ----

const char* kindword(int kind) {
    switch (kind) {
    case TOKXAXIS: return "xaxis";
    case TOKYAXIS: return "yaxis";
    case TOKAXIS: return "axis";
    default: return "curve";
    }
}

std::string pointtext(int pointtype) {
    return pointtype > 1000 ? std::string(1, char(pointtype - 1000)) : std::to_string(pointtype);
}

long rowsof(const harrayptr& m) { return m ? long(m->rows) : 0; }

void showlines(const curve& c) {
    if (c.linetype == CUSTOMLINE) {
        tarnprint("linetype: seg1: %lg, gap: %lg, seg2: %lg, tick1: %lg, tick2: %lg\n", c.seg1, c.gap, c.seg2,
                  c.tick1, c.tick2);
        tarnprint("thick: %lg, fill: %lg\n", c.thick, c.fill);
    } else {
        tarnprint("linetype: %d, ", c.linetype);
    }
    tarnprint("%s\n", colortext(c.linecolor).c_str());
}

void showlabels(const curve& c) {
    if (c.labels)
        tarnprint("label matrix: %ld rows\n", rowsof(c.labels));
    else
        tarnprint("no label matrix\n");
    tarnprint("labels: font: %d, size: %lg, %s%s\n", c.labelfont, c.labelsize, unitword(c.labelsizeunits),
              colortext(c.labelcolor).c_str());
    const int16_t* f = c.format;
    tarnprint("format: (%d,%d,%d,%d,%d,%d), angle: %lg\n", f[0], f[1], f[2], f[3], f[4], f[5], c.labelangle);
    tarnprint("%s xoffset: %lg, yoffset: %lg %s\n", placetext(c.vplace, c.hplace).c_str(), c.xoffset,
              c.yoffset, unitword(c.offsetunits));
}

void showcurve(int idx) {
    const curve& c = curveof(idx);
    tarnprint("%s: %s, %s in window: %s\n", kindword(c.kind), sym(idx).name, blankstate(c.blanked),
              windowname(idx));
    tarnprint("curve data matrix: %ld rows\n", rowsof(c.data));
    tarnprint("points: pointtype: %s, font: %d, size: %lg %s%s\nlines: ", pointtext(c.pointtype).c_str(),
              c.ptfont, c.ptsize, unitword(c.ptsizeunits), colortext(c.pointcolor).c_str());
    showlines(c);
    showlabels(c);
    tarnprint("initial axis window: %lg, %lg, %lg, %lg\n", c.axisw[0], c.axisw[1], c.axisw[2], c.axisw[3]);
    tarnprint("wclipsw: %d\n", c.wclipsw);
}

// ---- titles ----

void showtitle(int idx) {
    const title& t = titleof(idx);
    tarnprint("title name: %s %s in %s\n", sym(idx).name, blankstate(t.blanked), windowname(idx));
    tarnprint("title text: %s\n", t.text.c_str());
    tarnprint("font: %d, size: %lg %s units\n", t.font, t.size, unitword(t.sizeunits));
    tarnprint("angle: %lg\n", t.angle);
    tarnprint("at: %lg, %lg in %s units, %s\n", t.x, t.y, unitword(t.atunits),
              placetext(t.vplace, t.hplace).c_str());
    tarnprint("color: %d, shift: %lg\n", t.color, t.shift);
}

} // namespace

void plotlistrows() {
    static constexpr listingrow rows[] = {
        {WINDOWTYPE, showwindow, nullptr}, {CURVETYPE, showcurve, isaxis}, {TITLETYPE, showtitle, nullptr}};
    listingadd(rows, int(std::size(rows)));
}
