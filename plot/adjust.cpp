// The limits of a window follow the data of its curves.
#include "plot/adjust.h"

#include "plot/plotobj.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct limits {
    double lo, hi;
    double range() const { return std::min(hi - lo, MAXPOS); }
    void take(double v) { lo = std::min(lo, v), hi = std::max(hi, v); }
};

struct datalimits {
    limits x{MAXPOS, MAXNEG}, y{MAXPOS, MAXNEG};
};

struct pads {
    double lo = 0, hi = 0;
};

// Lines whose matrices hold rows of control numbers, told by the x of the first row.
bool isdelimited(int linetype) { return linetype == 6 || linetype == 7 || (linetype >= 9 && linetype <= 12); }

// MAXPOS means that there is no answer.
bool isplace(double v) { return std::abs(v) < MAXPOS; }

void takepoints(datalimits& d, const curve& c) {
    const double* p = cells(c.data.get()) + 1;
    const double first = *p;
    const bool delimited = isdelimited(c.linetype);
    for (size_t n = c.data->rows; n > 0; n--, p += 2) {
        if (delimited && p[0] >= first) continue;
        if (!isplace(p[0]) || !isplace(p[1])) continue;
        d.x.take(p[0]);
        d.y.take(p[1]);
    }
}

// False if no curve of the window has a point.
bool finddata(int win, datalimits& d) {
    for (int k = ringnext(win); k; k = ringnext(k))
        if (iscurve(k) && curveof(k).kind == TOKDRAW && curveof(k).data && curveof(k).data->rows > 0)
            takepoints(d, curveof(k));
    return d.x.lo <= d.x.hi && d.y.lo <= d.y.hi;
}

// Nearer data count as equal: a device has no scale for them.
constexpr double LEASTRANGE = 1e-290;

void widen(limits& l) {
    if (l.hi - l.lo > LEASTRANGE) return;
    const double half = l.lo - 0.5 < l.lo ? 0.5 : std::abs(l.lo) * 0x1p-50;
    l.lo -= half;
    l.hi += half;
}

pads padsfor(const limits& data, int locode, int hicode) {
    pads p;
    if (locode & ADJUSTPAD) p.lo = 0.05 * data.range();
    if (hicode & ADJUSTPAD) p.hi = 0.05 * data.range();
    if (!((locode | hicode) & ADJUSTNICE)) return p;
    double lo, hi;
    nicebounds(data.lo, data.hi, 100000.0, lo, hi);
    p.lo = locode & ADJUSTNICE ? data.lo - lo : 0;
    p.hi = hicode & ADJUSTNICE ? hi - data.hi : 0;
    return p;
}

void matchpads(pads& p, double pad, int locode, int hicode) {
    if (locode >= ADJUSTMATCH) p.lo = pad;
    if (hicode >= ADJUSTMATCH) p.hi = pad;
}

// Codes from 12 on give both axes the same scale: the data of the one with room to spare come to stand in the
// middle of it.
void matchaspect(const window& w, const datalimits& d, pads& x, pads& y) {
    const double width = d.x.range() + x.lo + x.hi, height = d.y.range() + y.lo + y.hi;
    const double r = (w.iymax - w.iymin) / (w.ixmax - w.ixmin);
    if (r * width < height)
        matchpads(x, (height / r - d.x.range()) / 2, w.adjust[0], w.adjust[1]);
    else if (height < r * width)
        matchpads(y, (r * width - d.y.range()) / 2, w.adjust[2], w.adjust[3]);
}

void movelow(double& limit, double data, double pad, int code) {
    if ((code & ADJUSTEXPAND && data <= limit) || (code & ADJUSTSHRINK && limit <= data)) limit = data - pad;
}

void movehigh(double& limit, double data, double pad, int code) {
    if ((code & ADJUSTEXPAND && limit <= data) || (code & ADJUSTSHRINK && data <= limit)) limit = data + pad;
}

// Data that lie farther apart than any number tells are shown as far as half of that on each side.
void holdextent(double& lo, double& hi) {
    if (hi - lo <= MAXPOS) return;
    lo = std::max(lo, -MAXPOS / 2);
    hi = std::min(hi, MAXPOS / 2);
}

void adjustlimits(window& w, datalimits& d) {
    widen(d.x);
    widen(d.y);
    pads x = padsfor(d.x, w.adjust[0], w.adjust[1]);
    pads y = padsfor(d.y, w.adjust[2], w.adjust[3]);
    matchaspect(w, d, x, y);
    if (d.x.lo != d.x.hi) movelow(w.wxmin, d.x.lo, x.lo, w.adjust[0]);
    movehigh(w.wxmax, d.x.hi, x.hi, w.adjust[1]);
    if (d.y.lo != d.y.hi) movelow(w.wymin, d.y.lo, y.lo, w.adjust[2]);
    movehigh(w.wymax, d.y.hi, y.hi, w.adjust[3]);
    holdextent(w.wxmin, w.wxmax);
    holdextent(w.wymin, w.wymax);
}

} // namespace

double nicenumber(double a, double b) {
    if (a <= 1e-19 || a >= 1e20 || b >= 1e20) return a;
    char low[32], high[32];
    snprintf(low, sizeof low, "%.0f", a);
    snprintf(high, sizeof high, "%.0f", b);
    const size_t digits = strlen(low);
    if (digits < strlen(high)) {
        memset(high + 1, '0', strlen(high) - 1);
        high[0] = '1';
        return strtod(high, nullptr);
    }
    size_t k = 0;
    while (k < digits && low[k] == high[k]) k++;
    if (k == digits) return strtod(low, nullptr);
    const bool cut = strspn(low + k + 1, "0") < digits - k - 1;
    memset(low + k + 1, '0', digits - k - 1);
    if (cut) low[k]++;
    if ((low[k] != '0' || cut) && low[k] < '6' && high[k] > '4') low[k] = '5';
    return strtod(low, nullptr);
}

void nicebounds(double lo, double hi, double scale, double& nicelo, double& nicehi) {
    const double d = (hi - lo) * 0.1;
    const auto round = [scale](double near, double far) {
        const auto [a, b] = std::minmax({std::abs(near), std::abs(far)});
        return b < 1e20 / scale ? nicenumber(a * scale, b * scale) / scale : a;
    };
    nicelo = nicehi = 0;
    if ((lo <= 0 || d <= lo) && lo != 0) {
        nicelo = round(lo, lo - d);
        if (lo < 0) nicelo = -nicelo;
        if (nicelo > lo) nicelo = lo;
    }
    if ((hi >= 0 || d <= -hi) && hi != 0) {
        nicehi = round(hi, hi + d);
        if (hi < 0) nicehi = -nicehi;
        if (nicehi < hi) nicehi = hi;
    }
}

void adjustwindow(int win) {
    datalimits d;
    if (finddata(win, d)) adjustlimits(windowof(win), d);
    adjustaxes(win);
}
