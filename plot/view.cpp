#include "plot/view.h"

#include "funcs/builtin.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "plot/askuser.h"
#include "plot/clauses.h"
#include "plot/colors.h"
#include "plot/display.h"
#include "plot/plotobj.h"
#include "plot/scene.h"
#include "vellum/vellum.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace {

// A picture was asked for and there is no screen: said once. What is only to be drawn anew needs no word,
// since it was never shown; so sessions that just PLOT run alike with and without a screen.
void graphicsmissing() {
    if (display.graphicsfail == GRAPHICSTOLD) return;
    display.graphicsfail = GRAPHICSTOLD;
    static const char* const way = "PLOT IN \"name\" writes the picture to a file";
    if (report.batch) {
        tarnwarn("Graphics not available.");
        return tarnwarn("%s", way);
    }
    if (!upper.indofile()) {
        tarnprint("Graphics not available.\n");
        return tarnwarn("%s", way);
    }
    static constexpr userchoice choices[] = {{'*', "Yes"}, {'Y', "Yes"}, {'N', "No"}};
    if (askuser("VIEW", "Graphics not available. Continue do-file?", choices, 3) == 2) throw recoveryjump{-2};
}

// The windows of the statement in the order of symbols; its operands are taken.
std::vector<int> chosenwindows(int mode) {
    std::vector<int> windows;
    for (int k = 0; mode == REDISPLAYVIEW && k <= parser.poltop; k++) {
        const int idx = parser.polstack[k];
        if (idx <= 0) tarnerror("only windows may be VIEWed");
        if (!iswindow(idx)) tarnerror(furtherline{describe(idx)}, "only windows may be VIEWed");
        windows.push_back(idx);
    }
    if (mode == REDISPLAYVIEW) parser.poltop = -1;
    if (!windows.empty()) return windows;
    for (int idx = 1; idx < SYMTABSIZE; idx++)
        if (iswindow(idx)) windows.push_back(idx);
    return windows;
}

void drawinorder(std::vector<int> windows) {
    std::stable_sort(windows.begin(), windows.end(),
                     [](int a, int b) { return windowof(a).priority < windowof(b).priority; });
    for (const int idx : windows) {
        adjustwindow(idx);
        drawwindow(idx);
    }
}

void erasescreen() {
    const int ground = int(std::lround(symtabscalar("SCREENCOLOR", 0)));
    if (ground != 0) DERASE(DSCREENPATCH(), ground);
}

void performview(const processop&) { redisplay(REDISPLAYVIEW); }
void performplot(const processop&) { plotop(); }
void performclose(const processop&) {
    if (parser.poltop >= 0) tarnsyntax(0, "illegal statement");
    closeview(-1);
}

void performsize(const processop& op) {
    if (parser.poltop != 1) tarnsyntax(25, "Incorrect number of arguments");
    const double width = scalarval(op.p2nd), height = scalarval(op.ptop);
    while (parser.poltop >= 0) tempfree(polpop());
    setviewsize(width, height);
}

// WREAD(rows, window, mode): points clicked in a window. No device that this program has brings a mouse.
int wread(const callargs& a) {
    constexpr double MAXROWS = 16000, DEFAULTROWS = 10;
    if (display.graphicsfail != GRAPHICSUP) tarnerror("WREAD: Graphics is not available");
    const double rows = a[1] ? a.scalar(1) : DEFAULTROWS;
    if (!(rows >= 1)) tarnerror("WREAD: bad row argument");
    if (rows > MAXROWS) tarnerror("WREAD: nrows exceeds 16,000 (implementation limit)");
    tarnerror("WREAD: Mouse driver not detected");
}

constexpr processrow statements[] = {
    {39, performview}, {60, performplot}, {64, performclose}, {65, performsize}};
constexpr valuerow builtins[] = {{-784, wread}};

} // namespace

void drawpages(int mode) {
    const std::vector<int> windows = chosenwindows(mode);
    if (windows.empty()) return tarnprint("There are no TARN windows to view or plot\n");
    scene.nowait = false;
    drawinorder(windows);
}

void redisplay(int mode) {
    if (display.graphicsfail != GRAPHICSUP) {
        if (mode != REDISPLAYVIEW) return;
        chosenwindows(mode);
        return graphicsmissing();
    }
    if (mode < 0 && !display.viewactive) return;
    if (mode == REDISPLAYCHANGE && upper.indofile()) return;
    const bool wait = mode == REDISPLAYVIEW && !report.batch;
    if (display.viewactive) DERASE(DSCREENPATCH(), 0);
    display.viewactive = false;
    DGET(DSCREENPATCH(), 1);
    display.viewactive = true;
    DFLUSH();
    erasescreen();
    drawpages(mode);
    DFLUSH();
    if (wait && !scene.nowait) getkey(true);
}

void closeview(int mode) {
    if (!display.viewactive) return;
    DGET(DSCREENPATCH(), mode);
    display.viewactive = false;
}

void viewrows() {
    processadd(statements, int(std::size(statements)));
    builtinadd(builtins, int(std::size(builtins)));
}
