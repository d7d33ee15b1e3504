/* tests/unit/plot/epspage.h - what stands on a page that PLOT has written, read back from the file.
 * Owns:    a session's rooms up to plot/, objects made by hand. Callers: tests of the scene.
 * Never:   knows how the page was made: only the operators of the file. */
#pragma once

#include "plot/plotobj.h"

#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

struct epspoint {
    double x, y; // screen-normal units
};
struct epsmark { // one path, stroked or filled
    bool filled = false;
    double r = 0, g = 0, b = 0;
    std::vector<std::vector<epspoint>> pieces;
};
struct epsbox {
    double x0 = HUGE_VAL, x1 = -HUGE_VAL, y0 = HUGE_VAL, y1 = -HUGE_VAL;
    double width() const { return x1 - x0; }
    double height() const { return y1 - y0; }
    double midx() const { return (x0 + x1) / 2; }
    double midy() const { return (y0 + y1) / 2; }
    bool empty() const { return x0 > x1; }
};
struct epspage {
    std::string text;
    std::vector<epsmark> marks;
};

void sceneroomsstart();                // a fresh session as far as plot/ needs one
epspage plotpage(const char* plotdev); // all windows; throws recoveryjump as PLOT does
epspage plotpage(const char* plotdev, int window);
void plotto(const char* plotdev, const std::string& path); // PLOT of all windows to that file
std::string plotfilepath(); // where plotpage writes; the file is gone afterwards

// A window on the whole screen with its image at 0.2..0.8 by 0.15..0.6, fixed limits 0..10, and no boxes.
int plainwindow(const char* name);
int newcurve(int win, const char* name, int kind, std::initializer_list<double> xy);
int newtitle(int win, const char* name, const char* text);
harrayptr matrixwith(uint32_t rows, uint32_t cols, std::initializer_list<double> values);

epsbox inkbox(const epspage& page); // of all marks
epsbox inkbox(const epsmark& mark);
size_t segments(const epspage& page);  // lines drawn
double inklength(const epspage& page); // their length
