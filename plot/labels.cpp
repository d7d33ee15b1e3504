// The labels of a curve: numbers at its points.
#include "interp/base/numtext.h"
#include "plot/colors.h"
#include "plot/scene.h"
#include "vellum/vellum.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

/* An axis stretches with its window, and its labels tell the numbers of the present one: value * scale +
 * origin. */
struct labelscale {
    double scale = 1, origin = 0;
    double threshold = 0; // less than this is rounding, and 0 is meant
};

/* Labels that rise by equal factors are those of a logarithmic axis: none of them is the rounding of a 0,
 * however small beside the last one. */
bool islogarithmic(const harray* labels) {
    const size_t n = labels->rows;
    const double first = at(labels, 1, 1), factor = n > 2 ? at(labels, 2, 1) / first : 0;
    if (!(first != 0 && factor > 0 && factor != 1)) return false;
    for (size_t i = 3; i <= n; i++) {
        const double next = at(labels, i, 1) / at(labels, i - 1, 1);
        if (!(std::fabs(next / factor - 1) < 1e-6)) return false;
    }
    return true;
}

labelscale scaleof(const window& w, const curve& c) {
    labelscale s;
    const auto stretch = [&](double lo, double hi, double oldlo, double oldhi) {
        s.scale = (hi - lo) / (oldhi - oldlo);
        s.origin = lo - s.scale * oldlo;
    };
    if (c.kind == TOKXAXIS) stretch(w.wxmin, w.wxmax, c.axisw[0], c.axisw[1]);
    if (c.kind == TOKYAXIS) stretch(w.wymin, w.wymax, c.axisw[2], c.axisw[3]);
    const harray* labels = c.labels.get();
    if (!islogarithmic(labels))
        s.threshold = std::fabs((at(labels, labels->rows, 1) - at(labels, 1, 1)) * s.scale) * 1e-14;
    return s;
}

std::string labeltext(double value, const labelscale& s, const int16_t format[6]) {
    double v = s.scale * value + s.origin;
    if (std::fabs(v) < s.threshold) v = 0;
    numberformat f;
    f.intpos = format[0], f.fracpos = format[1], f.leadmode = format[2], f.trailmode = format[3];
    f.smalldigits = format[4], f.forceexp = format[5];
    return numstring(v, f);
}

// The row of the data at which label i stands, 0 if there is none.
size_t rowoflabel(const curve& c, size_t i) {
    if (c.labels->cols < 2) return i <= c.data->rows ? i : 0;
    const double row = std::floor(at(c.labels.get(), i, 2));
    return row >= 1 && row <= double(c.data->rows) ? size_t(row) : 0;
}

struct labelpen {
    const window& w;
    const curve& c;
    double size, xoffset, yoffset, cosine, sine;
};

// Labels that an axis has chosen are moved where they would leave the frame: cut off, they tell other numbers.
double heldinframe(const labelpen& p, double x, double width) {
    if (!(p.c.wclipsw & OWNMARKS) || p.c.labelangle != 0) return x;
    const box frame = frameof(p.w);
    return std::max(frame.x0, std::min(x, frame.x1 - width));
}

void drawlabel(const labelpen& p, double x, double y, const char* text) {
    const double width = textadvance(text, p.c.labelfont, p.size, TEXTPLAIN);
    const double height = textheight(text, p.c.labelfont, p.size, TEXTPLAIN);
    const double along = -(p.c.hplace + 1) * 0.5 * width, across = -(p.c.vplace + 1) * 0.5 * height;
    DMOVE(heldinframe(p, x + p.xoffset + along * p.cosine - across * p.sine, width),
          y + p.yoffset + along * p.sine + across * p.cosine);
    drawtext(text, p.c.labelfont, p.size, p.c.labelcolor, p.c.labelangle, TEXTPLAIN);
}

} // namespace

void drawlabels(const window& w, const curve& c) {
    if (!c.labels || harraycount(c.labels.get()) == 0 || c.data->cols != 2) return;
    sceneclipnormal(w, c);
    const double turn = c.labelangle / 180 * M_PI;
    const labelpen pen{
        w,
        c,
        sizetonormal(c.labelsize, c.labelsizeunits, w),
        sizetonormal(c.xoffset, c.offsetunits, w),
        sizetonormal(c.yoffset, c.offsetunits == TOKWORLD ? UNITSWORLDHEIGHT : c.offsetunits, w),
        std::cos(turn),
        std::sin(turn)};
    const labelscale scale = scaleof(w, c);
    const axismap tonormal(w, c);
    for (size_t i = 1; i <= c.labels->rows; i++) {
        const size_t row = rowoflabel(c, i);
        if (row == 0) continue;
        double x = at(c.data.get(), row, 1), y = at(c.data.get(), row, 2);
        tonormal(x, y);
        if (!isplaceable(x, y)) continue;
        drawlabel(pen, x, y, labeltext(at(c.labels.get(), i, 1), scale, c.format).c_str());
    }
}
