/* tests/unit/vellum/recorder.h - a device that remembers what it was given, and plane geometry on that. */
#pragma once

#include "unit/vellum/harness.h"
#include "vellum/vldevice.h"
#include "vellum/vldraw.h"

#include <cmath>
#include <numbers>

struct recordedline {
    vlpoint a, b;
    double length() const { return std::hypot(b.x - a.x, b.y - a.y); }
};
using recordedpolygon = std::vector<vlpoint>; // x >= 1e300 breaks it

struct recording {
    std::vector<recordedline> lines;
    std::vector<vlpoint> dots;
    std::vector<recordedpolygon> polygons;
    std::vector<std::string> texts;
};
inline recording recorded;

inline double recorderscale = 1000; // pixels of a normal unit

// A square device of 1000 by 1000 pixels, 10 inches wide, with polygons and native text. What it records is
// in normal units.
inline const vldeviceops* recorderoperations() {
    static const vldeviceops table = [] {
        vldeviceops ops{};
        ops.init = [](vldevice*) { return 1; };
        ops.drawline = [](double x0, double y0, double x1, double y1) {
            const double s = recorderscale;
            recorded.lines.push_back({{x0 / s, y0 / s}, {x1 / s, y1 / s}});
        };
        ops.setpixel = [](double x, double y, int) {
            recorded.dots.push_back({x / recorderscale, y / recorderscale});
        };
        ops.polygon = [](const double* xy, size_t n, const double*) {
            recordedpolygon p;
            for (size_t i = 0; i < n; i++) {
                const bool gap = xy[2 * i] >= 1e300;
                p.push_back(gap ? vlpoint{1e300, 0}
                                : vlpoint{xy[2 * i] / recorderscale, xy[2 * i + 1] / recorderscale});
            }
            recorded.polygons.push_back(p);
        };
        ops.drawtext = [](const vlnativetext& text) { recorded.texts.emplace_back(text.text, text.length); };
        return ops;
    }();
    return &table;
}

class Recorded : public Vellum {
protected:
    void SetUp() override {
        Vellum::SetUp();
        recorded = {};
        vlsetdeviceoperations(VLXDEV, recorderoperations());
        vldevice* row = DDEVICE("XDEV");
        *row = {"XDEV", 10, 10, 100, 100, 1, 1, 1000, 1000, 24, 4, 4, 4, 13, 0, 4096, 1};
        page("XDEV", nullptr);
        DWINDOW(0, 1, 0, 1);
        DVIEWPORT(0, 1, 0, 1);
    }
    void TearDown() override {
        Vellum::TearDown();
        vlsetdeviceoperations(VLXDEV, nullptr);
    }
};

// The same with the fonts that the build has made.
class RecordedText : public Recorded {
protected:
    void SetUp() override {
        Recorded::SetUp();
        DSETFONTPATH(TARNSTARTDIR);
    }
    void TearDown() override {
        DSETFONTPATH("");
        Recorded::TearDown();
    }
};

inline double polygonarea(const recordedpolygon& p) { // of one contour, signed
    double twice = 0;
    for (size_t i = 0; i < p.size(); i++) {
        const vlpoint a = p[i], b = p[(i + 1) % p.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return twice / 2;
}

// Is q inside by the even-odd rule? All contours of the polygon count together.
inline bool inside(const recordedpolygon& p, vlpoint q) {
    bool in = false;
    size_t first = 0;
    for (size_t i = 0; i <= p.size(); i++) {
        if (i < p.size() && p[i].x < 1e300) continue;
        for (size_t k = first; k < i; k++) {
            const vlpoint a = p[k], b = p[k + 1 < i ? k + 1 : first];
            if ((a.y > q.y) != (b.y > q.y) && q.x < a.x + (q.y - a.y) * (b.x - a.x) / (b.y - a.y)) in = !in;
        }
        first = i + 1;
    }
    return in;
}

inline bool covered(vlpoint q) {
    for (const recordedpolygon& p : recorded.polygons)
        if (inside(p, q)) return true;
    return false;
}

inline double distanceto(vlpoint a, vlpoint b, vlpoint q) { // of q from the piece from a to b
    const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
    const double t = square > 0 ? std::clamp(((q.x - a.x) * dx + (q.y - a.y) * dy) / square, 0.0, 1.0) : 0;
    return std::hypot(q.x - a.x - t * dx, q.y - a.y - t * dy);
}
