#include "plot/clauses.h"

#include "interp/base/numtext.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "plot/plotobj.h"
#include "plot/plotstate.h"

#include <algorithm>
#include <iterator>

namespace {

// The count of the list just closed, with its operands certain to be there, the first in `first`.
int listed(const int16_t*& first) {
    const int n = argnumber();
    if (n < 1 || parser.poltop + 1 < n) tarnerror("polstack[] empty, cannot be popped");
    first = &parser.polstack[parser.poltop - n + 1];
    return n;
}

void release(int count) {
    for (; count > 0; count--) tempfree(polpop());
}

// ---- LINETYPE ----

[[noreturn]] void badlinecount() {
    tarnerror(
        furtherline{"LINETYPE takes a number, a matrix of 1 to 7 numbers, or (seg1, gap, seg2, tick1, tick2, "
                    "thick, fill)"},
        "improper number of arguments to LINETYPE");
}

void checklinetype(int type) {
    if (type < 0 || type > 12)
        tarnerror(furtherline{"line types are 0 to 12, this is " + std::to_string(type)},
                  "invalid linetype.");
}

// The seven numbers of a line of one's own, in their order in the clause.
double* const linecells[] = {&clause.linedash[0], &clause.linedash[1], &clause.linedash[2],
                             &clause.linedash[3], &clause.linedash[4], &clause.linethick,
                             &clause.linefill};
constexpr size_t LINENUMBERS = std::size(linecells);

void linematrix(const harray* m) {
    const size_t n = harraycount(m);
    if (n < 1) badlinecount();
    for (size_t k = 0; k < std::min(n, LINENUMBERS); k++) *linecells[k] = cells(m)[k + 1];
}

void linetype(const processop&) {
    const int16_t* operand;
    const int n = listed(operand);
    const bool scalars = std::all_of(operand, operand + n, [](int idx) { return isscalar(idx); });
    if (n == 1 && ismatrix(*operand)) {
        linematrix(static_cast<const harray*>(sym(*operand).val.ptr));
    } else if (!scalars) {
        const int16_t* bad = std::find_if_not(operand, operand + n, [](int idx) { return isscalar(idx); });
        tarnerror(furtherline{describe(*bad)}, "bad argument type in LINETYPE (LINE)");
    } else if (n == 1) {
        checklinetype(shortval(*operand));
        clause.linetype = shortval(*operand);
    } else if (n == int(LINENUMBERS)) {
        for (size_t k = 0; k < LINENUMBERS; k++) *linecells[k] = scalarval(operand[k]);
    } else {
        badlinecount();
    }
    release(n);
}

// ---- POINTTYPE, COLOR, PTSIZE, ADJUST ----

constexpr int FIRSTCHARACTER = 1000, LASTCHARACTER = 1128, LASTSHAPE = 31;

// -1 stands for no clause; no shape has that number.
void pointtype(const processop& op) {
    if (!op.ptop) tarnerror("polstack[] empty, cannot be popped");
    const bool text = isstringtype(op.ptop);
    const int type =
        text ? FIRSTCHARACTER + static_cast<unsigned char>(stringval(op.ptop)[0]) : shortval(op.ptop);
    const bool shape = std::abs(type) <= LASTSHAPE && type != -1;
    if (text && type == FIRSTCHARACTER) tarnerror(furtherline{"the text is empty"}, "invalid pointtype.");
    if (text && type > LASTCHARACTER)
        tarnerror(furtherline{"a point is a single letter of ASCII"}, "invalid pointtype.");
    if (!shape && (type < FIRSTCHARACTER || type > LASTCHARACTER))
        tarnerror(
            furtherline{"point types are -31 to 31, or a letter in quotes; this is " + std::to_string(type)},
            "invalid pointtype.");
    clause.pointtype = int16_t(type);
    release(1);
}

void color(const processop&) {
    const int16_t* operand;
    const int n = listed(operand);
    if (n > 3)
        tarnerror(
            furtherline{"it takes one to three: of points, line and labels, or of the first two and labels"},
            "wrong number of arguments for COLOR clause");
    clause.pointcolor = shortval(operand[0]);
    clause.linecolor = shortval(operand[n == 3 ? 1 : 0]);
    clause.labelcolor = clause.colorn = shortval(operand[n - 1]);
    release(n);
}

// The first column holds the sizes; others hold angles and lengths that some shapes take.
void checksizes(const harray* m) {
    if (harraycount(m) == 0) tarnerror(furtherline{"the matrix is empty"}, "illegal point size");
    for (size_t i = 1; i <= m->rows; i++)
        if (at(m, i, 1) < 0)
            tarnerror(furtherline{"row " + std::to_string(i) + " is " + numstring(at(m, i, 1), {})},
                      "point sizes must be non-negative");
}

void pointsize(const processop& op) {
    if (!op.ptop) tarnerror("polstack[] empty, cannot be popped");
    if (ismatrix(op.ptop)) {
        checksizes(static_cast<const harray*>(sym(op.ptop).val.ptr));
        clause.pointsize = SIZEBYPOINT;
        clause.pointsizes = int16_t(polpop());
        return;
    }
    if (!isscalar(op.ptop)) tarnerror(furtherline{describe(op.ptop)}, "illegal point size");
    if (scalarval(op.ptop) < 0) tarnerror("point sizes must be non-negative");
    clause.pointsize = scalarval(op.ptop);
    release(1);
}

void adjust(const processop&) {
    const int16_t* operand;
    const int n = listed(operand);
    if (n != 1 && n != 4)
        tarnerror(furtherline{"the four are for xmin, xmax, ymin, ymax"},
                  "ADJUST must have 1 or 4 arguments");
    for (int k = 0; k < 4; k++) {
        const double code = scalarval(operand[n == 4 ? k : 0]);
        if (!(code >= 0 && code <= 15))
            tarnerror(
                furtherline{"a sum of 1 shrink, 2 expand, 4 pad, 8 round, or WFIX, WFLOAT, WNICE, WMATCH"},
                "ADJUST arguments must be in [0,15]");
        clause.adjust[k] = int16_t(code);
    }
    release(n);
}

// ---- what the cells may hold ----

bool isplacecode(int code, std::initializer_list<int> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

void checklabels() {
    if (!given(clause.labelmatrix)) return;
    const symbol& s = sym(clause.labelmatrix);
    if (s.type != MATRIX && !isscalartype(s.type))
        tarnerror(furtherline{describe(clause.labelmatrix)}, "LABEL argument must be matrix or scalar");
    if (s.type == MATRIX && static_cast<const harray*>(s.val.ptr)->cols > 2)
        tarnerror(furtherline{describe(clause.labelmatrix)}, "label matrix must have 1 or 2 cols");
}

bool isformatgiven() {
    return std::any_of(std::begin(clause.format), std::end(clause.format), [](int f) { return f != -1; });
}

template <class T, class U> void take(T& field, U cell) {
    if (given(cell)) field = T(cell);
}

void applyline(curve& c) {
    if (given(clause.linetype)) {
        c.linetype = clause.linetype;
    } else if (given(clause.linedash[0])) {
        c.linetype = CUSTOMLINE;
        c.seg1 = clause.linedash[0], c.gap = clause.linedash[1], c.seg2 = clause.linedash[2];
        c.tick1 = clause.linedash[3], c.tick2 = clause.linedash[4];
        c.thick = clause.linethick, c.fill = clause.linefill;
    }
}

void applypoints(curve& c) {
    take(c.pointtype, clause.pointtype);
    take(c.ptsizeunits, clause.unitsize);
    take(c.ptfont, clause.pointfont);
    take(c.ptsize, clause.pointsize);
    if (!given(clause.pointsize)) return;
    c.ptsizes.reset();
    if (given(clause.pointsizes))
        c.ptsizes.reset(harraydup(static_cast<const harray*>(sym(clause.pointsizes).val.ptr)));
}

void applycolors(curve& c) {
    if (given(clause.pointcolor)) {
        c.pointcolor = clause.pointcolor, c.linecolor = clause.linecolor, c.labelcolor = clause.labelcolor;
    } else if (given(clause.colorn)) {
        c.pointcolor = c.linecolor = c.labelcolor = clause.colorn;
    }
}

void applylabels(curve& c) {
    if (!given(clause.labelmatrix)) return;
    int temp;
    const harray* m = matrixval(clause.labelmatrix, temp);
    c.labels.reset(harraycount(m) ? harraydup(m) : nullptr);
    tempfree(temp);
}

} // namespace

bool given(double cell) { return cell != MAXPOS; }

namespace {

// The statements that use a clause.
enum clauseusers { CURVES = 1, TITLES = 2, WINDOWS = 4, FRAMES = 8, IMAGES = 16, BOXES = 32 };

int userof(int token) {
    switch (token) {
    case TOKTITLE: return TITLES;
    case TOKWINDOW: return WINDOWS;
    case TOKFRAME: return FRAMES;
    case TOKIMAGE: return IMAGES;
    case TOKFRAMEBOX:
    case TOKIMAGEBOX: return BOXES;
    default: return CURVES;
    }
}

// FONT and SIZE count as used by curves, where they have a warning of their own.
struct clauserow {
    const char* name;
    bool given;
    int users;
};

} // namespace

void warnunused(int token) {
    const clausestate& c = clause;
    const clauserow clauses[] = {
        {"LINETYPE", given(c.linetype) || given(c.linedash[0]), CURVES},
        {"POINTTYPE", given(c.pointtype), CURVES},
        {"PTFONT", given(c.pointfont), CURVES},
        {"PTSIZE", given(c.pointsize), CURVES},
        {"LABEL", given(c.labelmatrix), CURVES},
        {"LABELSIZE", given(c.labelsize), CURVES},
        {"LABELFONT", given(c.labelfont), CURVES},
        {"FORMAT", isformatgiven(), CURVES},
        {"OFFSET", given(c.offsetx), CURVES},
        {"WCLIP", given(c.wclip), CURVES},
        {"COLOR", given(c.colorn), CURVES | TITLES | FRAMES | IMAGES | BOXES},
        {"PLACE", given(c.placex), CURVES | TITLES},
        {"ANGLE", given(c.textangle), CURVES | TITLES},
        {"FONT", given(c.font), CURVES | TITLES},
        {"SIZE", given(c.textsize), CURVES | TITLES},
        {"AT", given(c.atx), TITLES},
        {"SHIFT", given(c.textshift), TITLES},
        {"ADJUST", given(c.adjust[0]), WINDOWS},
        {"PRIORITY", given(c.priority), FRAMES},
        {"the unit", given(c.unitat), CURVES | TITLES | FRAMES | IMAGES},
    };
    for (const clauserow& row : clauses)
        if (row.given && !(row.users & userof(token)))
            tarnwarn("%s has no effect in this statement", row.name);
}

operandlist takeoperands() {
    operandlist list;
    list.count = parser.poltop + 1;
    for (int k = 0; k < std::min(list.count, int(std::size(list.at))); k++) list.at[k] = parser.polstack[k];
    return list;
}

void releaseoperands(const operandlist& list) {
    release(list.count);
    for (int16_t* held : {&clause.labelmatrix, &clause.pointsizes}) {
        tempfree(*held);
        *held = -1;
    }
}

void checkplace() {
    if (!given(clause.placex) && !given(clause.placey)) return;
    const char* const form = "PLACE (h, v) takes LEFT, CENTER or RIGHT and then BOTTOM, CENTER or TOP";
    if (!isplacecode(clause.placey, {0, 1, 4}))
        tarnerror(furtherline{form}, "illegal PLACE vcenter argument");
    if (!isplacecode(clause.placex, {0, 2, 3}))
        tarnerror(furtherline{form}, "illegal PLACE hcenter argument");
}

void applyplace(int16_t& vplace, int16_t& hplace) {
    if (!given(clause.placex) && !given(clause.placey)) return;
    vplace = int16_t(clause.placey == 4 ? -1 : clause.placey);
    hplace = int16_t(clause.placex == 2 ? -1 : clause.placex == 3 ? 1 : 0);
}

void checkfont(int font, const char* message) {
    if (given(font) && (font < -14 || font > 34))
        tarnerror(furtherline{"fonts are -14 to 34, this is " + std::to_string(font)}, "%s", message);
}

void checksize(double size, const char* what) {
    if (size < 0) tarnerror("%s must be non-negative", what);
}

void checkcurveclauses(int kind) {
    checkfont(clause.pointfont, "invalid font table number.");
    checksize(clause.labelsize, "LABELSIZE");
    checkfont(clause.labelfont, "invalid label font number.");
    checkplace();
    checklabels();
    if (kind == TOKDRAW && given(clause.unitat) && clause.unitat != TOKWORLD)
        tarnerror(furtherline{"points in other units are drawn by AXIS"},
                  "DRAW statements must use WORLD data units");
    if (given(clause.font) || given(clause.textsize))
        tarnwarn("FONT and SIZE clauses only apply in TITLE statements.\n"
                 "Use PTFONT, PTSIZE, LABELFONT, or LABELSIZE as appropriate.");
}

void applycurveclauses(curve& c) {
    applyline(c);
    applypoints(c);
    applycolors(c);
    take(c.labelsize, clause.labelsize);
    take(c.labelsizeunits, clause.unitlabelsize);
    take(c.labelfont, clause.labelfont);
    take(c.labelangle, clause.textangle);
    if (isformatgiven()) std::copy(std::begin(clause.format), std::end(clause.format), c.format);
    applyplace(c.vplace, c.hplace);
    applylabels(c);
    take(c.xoffset, clause.offsetx);
    take(c.yoffset, clause.offsety);
    take(c.offsetunits, clause.unitoffset);
    take(c.dataunits, clause.unitat);
}

bool toclauses(double& x1, double& x2, double& y1, double& y2) {
    if (clause.toclauses == 0) return false;
    if (clause.toclauses == 1)
        tarnerror(furtherline{"two are needed: x1 TO x2, y1 TO y2"}, "not enough TO clauses");
    x1 = clause.to[0][0], x2 = clause.to[0][1];
    y1 = clause.to[1][0], y2 = clause.to[1][1];
    return true;
}

void windowtoclause() {
    const int n = parser.poltop;
    if (n < 1 || !isscalar(parser.polstack[n - 1]) || !isscalar(parser.polstack[n]))
        tarnerror(
            furtherline{n < 1 ? "" : describe(parser.polstack[isscalar(parser.polstack[n]) ? n - 1 : n])},
            "scalars required in TO clause");
    if (clause.toclauses >= 2)
        tarnerror(furtherline{"two are enough: x1 TO x2, y1 TO y2"}, "too many TO clauses");
    double* ends = clause.to[clause.toclauses++];
    ends[0] = scalarval(parser.polstack[n - 1]);
    ends[1] = scalarval(parser.polstack[n]);
    release(2);
}

void plotclauserows() {
    static constexpr processrow rows[] = {
        {23, pointtype}, {24, linetype}, {40, color}, {56, pointsize}, {58, adjust}};
    processadd(rows, int(std::size(rows)));
}
