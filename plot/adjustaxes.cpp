// Axes that choose their marks and labels by the limits of their window: round numbers, as many as have room.
#include "interp/base/numtext.h"
#include "plot/adjust.h"
#include "plot/plotobj.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>

namespace {

constexpr int MOSTPARTS = 10; // between the first and the last mark
// In sizes: of a digit and of a point or a sign in the text faces, the least room between two labels beside
// each other, and the height of labels above each other with the room between them.
constexpr double DIGITWIDTH = 0.8, SIGNWIDTH = 0.45, LABELGAP = 0.45, LINEHEIGHT = 1.6;

// The marks first*step, (first+1)*step... last*step; step is digit * 10^exponent with the digit 1, 2 or 5.
struct marks {
    int digit, exponent;
    double first, last;
    int count() const { return int(last - first) + 1; }
    double at(double k) const {
        const double power = std::pow(10.0, std::abs(exponent));
        return exponent < 0 ? k * digit / power : k * digit * power;
    }
    double step() const { return at(1); }
};

marks marksof(int digit, int exponent, double lo, double hi) {
    constexpr double SLACK = 1e-9; // a limit that is a mark but for its rounding
    marks m{digit, exponent, 0, 0};
    m.first = std::ceil(lo / m.step() - SLACK);
    m.last = std::floor(hi / m.step() + SLACK);
    return m;
}

marks wider(const marks& m, double lo, double hi) {
    if (m.digit == 5) return marksof(1, m.exponent + 1, lo, hi);
    return marksof(m.digit == 1 ? 2 : 5, m.exponent, lo, hi);
}

// The densest that divide the limits in no more than MOSTPARTS.
marks densest(double lo, double hi) {
    const double least = (hi - lo) / MOSTPARTS;
    marks m = marksof(1, int(std::floor(std::log10(least))), lo, hi);
    while (m.step() < least * (1 - 1e-9)) m = wider(m, lo, hi);
    return m;
}

// ---- the format of labels: the same places for all, or digits with an exponent ----

constexpr int16_t CHOSEN = 20; // smalldigits of a format chosen here, which no user needs
constexpr int16_t PLAINFORMAT[] = {-3, 5, 0, 0, 2, 0};

bool mayreformat(const curve& c) {
    return c.format[4] == CHOSEN || std::equal(std::begin(PLAINFORMAT), std::end(PLAINFORMAT), c.format);
}

void setformat(curve& c, const marks& m) {
    const double largest = std::max(std::abs(m.at(m.first)), std::abs(m.at(m.last)));
    const int magnitude = largest > 0 ? int(std::floor(std::log10(largest) + 1e-9)) : 0;
    const bool fixed = largest < 1e6 && m.exponent >= -4;
    const int16_t places = int16_t(std::max(0, -m.exponent));
    const int16_t digits = int16_t(std::clamp(magnitude - m.exponent + 1, 1, 15));
    const int16_t fixedform[] = {int16_t(std::max(1, magnitude + 1)), places, 0, 3, CHOSEN, 0};
    const int16_t floating[] = {-3, digits, 0, 0, CHOSEN, 0};
    std::copy_n(fixed ? fixedform : floating, std::size(fixedform), c.format);
}

double widestlabel(const curve& c, const marks& m) {
    const int16_t* f = c.format;
    const numberformat format{f[0], f[1], f[2], f[3], f[4], f[5], ""};
    double widest = 0;
    for (double k = m.first; k <= m.last; k++) {
        double width = 0;
        for (const char letter : numstring(m.at(k), format))
            width += letter == '.' || letter == '-' ? SIGNWIDTH : DIGITWIDTH;
        widest = std::max(widest, width);
    }
    return widest;
}

// ---- the axis ----

// One direction of a window.
struct direction {
    double from, to; // limits, in the order of the screen
    double extent;   // of the image
    double across;   // the lower limit of the other direction
};

direction directionof(const window& w, int kind) {
    if (kind == TOKXAXIS) return {w.wxmin, w.wxmax, w.ixmax - w.ixmin, w.wymin};
    return {w.wymin, w.wymax, w.iymax - w.iymin, w.wxmin};
}

bool fits(const curve& c, const marks& m, const window& w, const direction& d) {
    const double size = sizetonormal(c.labelsize, c.labelsizeunits, w);
    const double letters = c.kind == TOKXAXIS ? widestlabel(c, m) + LABELGAP : LINEHEIGHT;
    return d.extent * m.step() / std::abs(d.to - d.from) >= letters * size;
}

marks choosemarks(curve& c, const window& w, const direction& d) {
    const double lo = std::min(d.from, d.to), hi = std::max(d.from, d.to);
    const bool reformat = mayreformat(c);
    marks m = densest(lo, hi);
    for (;;) {
        if (reformat) setformat(c, m);
        const marks next = wider(m, lo, hi);
        if (!c.labels || fits(c, m, w, d) || next.count() < 2) return m;
        m = next;
    }
}

void setmarks(curve& c, const marks& m, const direction& d) {
    const int n = m.count();
    harrayptr data(harrayraw(uint32_t(n), 2)), labels(harrayraw(uint32_t(n), 1));
    for (int i = 1; i <= n; i++) {
        const double v = m.at(d.from < d.to ? m.first + i - 1 : m.last - i + 1) + 0.0;
        at(data.get(), size_t(i), c.kind == TOKXAXIS ? 1 : 2) = v;
        at(data.get(), size_t(i), c.kind == TOKXAXIS ? 2 : 1) = d.across;
        cells(labels.get())[i] = v;
    }
    c.data = std::move(data);
    if (c.labels) c.labels = std::move(labels);
}

// Limits so near to each other that their numbers have no digits left between them keep the old marks.
bool isdivisible(const direction& d) {
    const double range = std::abs(d.to - d.from), largest = std::max(std::abs(d.from), std::abs(d.to));
    return range <= MAXPOS && range > largest * 1e-12 && range > 1e-290;
}

void markaxis(curve& c, const window& w) {
    const direction d = directionof(w, c.kind);
    if (!isdivisible(d)) return;
    if (!c.data && !c.labels) c.labels.reset(harraynew(1, 1)); // a new axis has labels
    setmarks(c, choosemarks(c, w, d), d);
    curvewindow(c, w);
}

bool choosesmarks(const curve& c) {
    return c.wclipsw & OWNMARKS && (c.kind == TOKXAXIS || c.kind == TOKYAXIS) && c.dataunits == TOKWORLD;
}

} // namespace

void ownmarksend(curve& c) {
    c.wclipsw &= ~OWNMARKS;
    if (c.format[4] == CHOSEN) std::copy(std::begin(PLAINFORMAT), std::end(PLAINFORMAT), c.format);
}

void adjustaxes(int win) {
    for (int k = ringnext(win); k; k = ringnext(k))
        if (iscurve(k) && choosesmarks(curveof(k))) markaxis(curveof(k), windowof(win));
}
