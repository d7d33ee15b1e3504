// The line types of a curve.
#include "interp/base/report.h"
#include "plot/colors.h"
#include "plot/scene.h"
#include "vellum/vellum.h"

#include <algorithm>
#include <vector>

namespace {

constexpr double SHORTDASH = 0.01, DOTGAP = 0.015, DOTLENGTH = 0.001, FINEGAP = 0.005; // of the frame's width

// The line style is set for the length of one curve.
struct linestyle {
    linestyle() { solid(); }
    ~linestyle() { solid(); }
    linestyle(const linestyle&) = delete;
    linestyle& operator=(const linestyle&) = delete;
    static void solid() { DLINESTYLE(0, 0, 0, 0, 0, 0, 0); }
};

double frametonormal(double length, const window& w) {
    return scene.plotscale * sizetonormal(length, TOKFFRACT, w);
}

void dashes(double first, double gap, double second, const window& w, double thick = 0) {
    DLINESTYLE(frametonormal(first, w), frametonormal(gap, w), frametonormal(second, w), 0, 0,
               frametonormal(thick, w), 0);
}

/* The curve's own seven numbers. One that was not given has the largest double: a second dash is then as the
 * first, the rest are left out. A negative thickness is the plain line. */
void customstyle(const window& w, const curve& c) {
    const auto given = [](double v, double absent) { return v >= MAXPOS ? absent : v; };
    const double first = given(c.seg1, 0), thick = given(c.thick, 0);
    const auto length = [&](double v) { return frametonormal(given(v, 0), w); };
    DLINESTYLE(frametonormal(first, w), length(c.gap), frametonormal(given(c.seg2, first), w),
               length(c.tick1), length(c.tick2), thick < 0 ? 0 : frametonormal(thick, w), given(c.fill, 0));
}

// The style of a delimited piece by its control number.
void controlstyle(double control, const window& w) {
    if (control == 1) return linestyle::solid();
    const double dash = (control + 0.001) * 0.1;
    dashes(dash, SHORTDASH, dash, w);
}

// Points of a line as they come: a point that cannot be placed is a gap.
class strokes {
public:
    explicit strokes(const pointmap& m) : map(m) {}
    ~strokes() { flush(); }
    strokes(const strokes&) = delete;
    strokes& operator=(const strokes&) = delete;
    void add(double x, double y) {
        map(x, y);
        if (!isplaceable(x, y)) return flush();
        xy.push_back(x);
        xy.push_back(y);
    }
    void flush() {
        if (xy.size() >= 4) DPOLYLINE(xy.data(), xy.size() / 2);
        xy.clear();
    }

private:
    pointmap map;
    std::vector<double> xy;
};

bool allplaceable(const harray* data) {
    const double* xy = cells(data) + 1;
    bool good = true;
    for (size_t k = 0, n = harraycount(data); k < n; k++) good &= xy[k] > -MAXPOS && xy[k] < MAXPOS;
    return good;
}

void joined(const harray* data, const pointmap& map) {
    if (map.world && data->rows > 1 && allplaceable(data)) return DPOLYLINE(cells(data) + 1, data->rows);
    strokes line(map);
    for (size_t i = 1; i <= data->rows; i++) line.add(at(data, i, 1), at(data, i, 2));
}

void unjoined(const harray* data, const pointmap& map) {
    strokes line(map);
    for (size_t i = 1; i <= data->rows; i++) {
        if (i % 2 == 1) line.flush();
        line.add(at(data, i, 1), at(data, i, 2));
    }
}

/* Delimited polylines: the first x is the mark of a delimiter row, whose second number controls the piece
 * behind it. `begin` gets that number before each piece, `piece` the rows first..last. */
template <class Begin, class Piece> void eachpiece(const harray* data, Begin begin, Piece piece) {
    const double mark = at(data, 1, 1);
    size_t first = 2;
    for (size_t i = 1; i <= data->rows + 1; i++) {
        if (i <= data->rows && at(data, i, 1) != mark) continue;
        if (i > first) piece(first, i - 1);
        if (i > data->rows) return;
        begin(at(data, i, 2));
        first = i + 1;
    }
}

void styleofpiece(int linetype, double control, const window& w) {
    switch (linetype) {
    case 7:
    case 12: return controlstyle(control, w);
    case 9: return dashes(0, FINEGAP, 0, w);
    case 10: return dashes(SHORTDASH, SHORTDASH, SHORTDASH, w);
    default: return;
    }
}

void delimited(const harray* data, int linetype, const window& w, const pointmap& map) {
    strokes line(map);
    eachpiece(
        data, [&](double control) { line.flush(), styleofpiece(linetype, control, w); },
        [&](size_t first, size_t last) {
            for (size_t i = first; i <= last; i++) line.add(at(data, i, 1), at(data, i, 2));
            line.flush();
        });
}

// The rows first..last as a polygon of the library: count, coordinates of a point, points. Gaps are left out.
void polygonofrows(std::vector<double>& polygon, const harray* data, size_t first, size_t last,
                   const pointmap& map) {
    polygon.assign(2, 2.0);
    for (size_t i = first; i <= last; i++) {
        double x = at(data, i, 1), y = at(data, i, 2);
        map(x, y);
        if (!isplaceable(x, y)) continue;
        polygon.push_back(x);
        polygon.push_back(y);
    }
    polygon[0] = double((polygon.size() - 2) / 2);
}

void smoothed(const harray* data, int linetype, const window& w, const pointmap& map) {
    constexpr int PARAMS = 100;
    constexpr int OPENCURVE = 1, CLOSEDCURVE = 3;
    const double flatness = symtabscalar("FLATNESS", 0);
    if (flatness < 0)
        tarnerror(furtherline{std::string(sym(scene.member).name) + " has LINETYPE " +
                              std::to_string(linetype) + ", a smooth line"},
                  "FLATNESS must be non-negative.");
    double params[PARAMS];
    for (int i = 0; i < PARAMS; i++) params[i] = i / double(PARAMS - 1);
    std::vector<double> polygon;
    eachpiece(
        data, [&](double control) { styleofpiece(linetype, control, w); },
        [&](size_t first, size_t last) {
            polygonofrows(polygon, data, first, last, map);
            const size_t n = polygon.size();
            if (n < 6) return; // a single point is no line
            const bool closed = polygon[2] == polygon[n - 2] && polygon[3] == polygon[n - 1];
            DSPLINE(polygon.data(), params, PARAMS, flatness, 0, 1, closed ? CLOSEDCURVE : OPENCURVE, 0);
        });
}

} // namespace

void drawline(const harray* data, int linetype, const window& w, const curve& c) {
    if (linetype == 0 || data->rows == 0 || data->cols != 2) return;
    setcolor(c.linecolor);
    const pointmap map(w, c);
    const linestyle style;
    switch (linetype) {
    case CUSTOMLINE: customstyle(w, c); return joined(data, map);
    case 1: return joined(data, map);
    case 2: dashes(SHORTDASH, SHORTDASH, SHORTDASH, w); return joined(data, map);
    case 3: dashes(3 * SHORTDASH, SHORTDASH, 3 * SHORTDASH, w); return joined(data, map);
    case 4: dashes(3 * SHORTDASH, SHORTDASH, SHORTDASH, w); return joined(data, map);
    case 5: return unjoined(data, map);
    case 6:
    case 7:
    case 9:
    case 10: return delimited(data, linetype, w, map);
    case 8:
        DLINESTYLE(DOTLENGTH, frametonormal(DOTGAP, w), DOTLENGTH, 0, 0, DOTLENGTH, 0);
        return joined(data, map);
    case 11:
    case 12: return smoothed(data, linetype, w, map);
    default: tarnerror("invalid linetype");
    }
}
