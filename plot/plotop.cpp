// PLOT: the same drawing on a page of its own, in a file.
#include "interp/base/operand.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "plot/askuser.h"
#include "plot/clauses.h"
#include "plot/colors.h"
#include "plot/display.h"
#include "plot/plotobj.h"
#include "plot/scene.h"
#include "values/harray.h"
#include "vellum/vellum.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

struct plotdevice {
    const char* name;
    const char* extension;
    inkmode ink;
    const char* device; // of the library
    bool sized;         // the page has the size of the screen, else one of its own
};
constexpr plotdevice devices[] = {
    {"PSCL", "ps", INKPAPER, "PSL", false},   {"PSL", "ps", INKMONO, "PSL", false},
    {"PSCP", "ps", INKPAPER, "PSP", false},   {"PSCPX", "ps", INKEXACT, "PSP", false},
    {"PSCLX", "ps", INKEXACT, "PSL", false},  {"PSP", "ps", INKMONO, "PSP", false},
    {"LJ2L", "lj", INKMONO, "LJ2L", false},   {"LJ2P", "lj", INKMONO, "LJ2P", false},
    {"PNG", "png", INKPAPER, "PNG", true},    {"SVG", "svg", INKPAPER, "SVG", true},
    {"PDF", "pdf", INKPAPER, "PDF", true},    {"PNGP", "png", INKPAPER, "PNGP", false},
    {"SVGP", "svg", INKPAPER, "SVGP", false}, {"PDFP", "pdf", INKPAPER, "PDFP", false},
};

const plotdevice& chosendevice() {
    const int idx = symtablookup("PLOTDEV");
    std::string name;
    if (idx >= 0 && isstringtype(idx)) {
        char* text = static_cast<char*>(sym(idx).val.ptr);
        for (char* c = text; c && *c; c++) *c = char(toupper(static_cast<unsigned char>(*c)));
        name = stringval(idx);
    }
    for (const plotdevice& row : devices)
        if (name == row.name) return row;
    tarnerror(furtherline{"PLOTDEV is \"" + name +
                          "\"; PNG, SVG, PDF, and cropped to the drawing PNGP, SVGP, PDFP"},
              "PLOT: illegal PLOTDEV value. Use PSL,PSP,PSCL(X),PSCP(X), LJ2P, or LJ2L");
}

bool fileexists(const std::string& path) {
    std::error_code failure;
    return std::filesystem::exists(path, failure);
}

std::string newfilename(const char* extension) {
    for (;;) {
        std::string path = "tarnp" + std::to_string(++display.plotfile) + "." + extension;
        if (!fileexists(path)) return path;
    }
}

// May this file be written? One that is there goes only if the user says so, or has set PLOTOVER.
bool mayoverwrite(const std::string& path) {
    if (!fileexists(path)) return true;
    if (symtabscalar("PLOTOVER", 0) == 0) {
        static constexpr userchoice choices[] = {{'*', "keep existing file"}, {'R', "overwrite"}};
        const std::string text = "file " + path + " already exists.";
        if (askuser("Plot", text.c_str(), choices, 2) == 0) {
            tarnwarn("file %s already exists and is kept", path.c_str());
            return false;
        }
    }
    std::error_code failure;
    const bool isfile = std::filesystem::is_regular_file(path, failure);
    if (isfile && std::filesystem::remove(path, failure)) return true;
    tarnerror(furtherline{isfile ? failure.message() : path + " is no file"},
              "PLOT: file %s cannot be overwritten", path.c_str());
}

std::string plotfilename(const plotdevice& device) {
    const int file = clause.insym;
    if (file <= 0) return newfilename(device.extension);
    if (istemporary(file) && !isstringtype(file))
        tarnerror(furtherline{describe(file)}, "PLOT: IN needs the name of a file");
    const char* name = isstringtype(file) ? stringval(file) : sym(file).name;
    if (!name[strspn(name, " ")]) tarnerror("PLOT: the name of the file is empty");
    return bindname(name, report.filedir.c_str(), device.extension);
}

// The kind of a file is told by PLOTDEV; a name that tells another is pointed out.
void checkextension(const std::string& path, const plotdevice& device) {
    const size_t dot = path.find_last_of("./\\");
    if (dot == std::string::npos || path[dot] != '.') return;
    std::string extension = lowered(path.substr(dot + 1));
    if (extension == "eps") extension = "ps";
    const bool known = std::any_of(std::begin(devices), std::end(devices),
                                   [&](const plotdevice& row) { return extension == row.extension; });
    if (known && extension != device.extension)
        tarnwarn("PLOTDEV is %s: %s is no %s file", device.name, path.c_str(), extension.c_str());
}

/* The whole picture fits on the page: a tall screen on a wide page by its height, a wide screen on a tall
 * page by its width. It is never enlarged. */
double pagescale(const vldevice& page) {
    return std::min({1.0, page.xaspect / screen.aspectx, page.yaspect / screen.aspecty});
}

double linewidth() {
    constexpr double MAXPOINTS = 1000;
    const double width = symtabscalar("PSLINEW", 0.5);
    if (!(width >= 0 && width <= MAXPOINTS)) tarnerror("PLOT: PSLINEW must be in 0 to %g", MAXPOINTS);
    return width;
}

void checkpagesize() {
    constexpr double MAXPAGE = 60;
    if (screen.screeninchesx > MAXPAGE || screen.screeninchesy > MAXPAGE)
        tarnerror("PLOT: a page of %g by %g inches is too large, see VIEWSIZE", screen.screeninchesx,
                  screen.screeninchesy);
}

/* The device of a plot, open while this lives. Whatever happens, the screen comes back behind it as it was; a
 * file that was not finished is taken away. */
class plotpage {
public:
    explicit plotpage(std::string file) : path(std::move(file)), wasactive(display.viewactive) {}
    ~plotpage() {
        try {
            restoreview();
        } catch (const recoveryjump&) {} // told; the first error is the one that counts
        std::error_code failure;
        if (!finished) std::filesystem::remove(path, failure);
    }
    plotpage(const plotpage&) = delete;
    plotpage& operator=(const plotpage&) = delete;
    void open(const plotdevice& device) {
        colorskeep();
        DQUIT(0);
        display.viewactive = false;
        display.plotname = device.name;
        displayerrors();
        DSETFONTPATH(report.tarnpath.c_str());
        int ncolors = 0;
        const double width = device.sized ? screen.screeninchesx : 0;
        const double height = device.sized ? screen.screeninchesy : 0;
        if (!DDEVICE(device.device) || !DINI(device.device, &ncolors, path.c_str(), width, height, 0, 0))
            tarnerror("PLOT: this build has no device for %s", device.name);
        colors.ink = device.ink;
        colors.top = ncolors - 1;
        scene.plotscale = pagescale(*DDEVICE(nullptr));
        scene.backgrounds = false;
        DGET(DSCREENPATCH(), 1);
        DLINEWIDTH(linewidth());
    }
    void finish() {
        DFLUSH();
        DQUIT(0); // what fails here is an error of PLOT
        finished = true;
    }

private:
    void restoreview() {
        DQUIT(0);
        scene.plotscale = 1;
        scene.backgrounds = true;
        colors = colorstate{};
        display.plotname.clear();
        if (display.graphicsfail != GRAPHICSUP) return;
        getdisplay(displayname().c_str(), 0, false);
        if (wasactive && finished) redisplay(REDISPLAYCHANGE); // what failed once would fail again
    }
    std::string path;
    bool wasactive, finished = false;
};

} // namespace

void plotop() {
    const plotdevice& device = chosendevice();
    if (device.sized) checkpagesize();
    linewidth(); // a wrong one is told before a file goes
    const std::string path = plotfilename(device);
    checkextension(path, device);
    if (!mayoverwrite(path)) {
        parser.poltop = -1;
        return;
    }
    {
        plotpage page(path);
        page.open(device);
        drawpages(REDISPLAYVIEW);
        page.finish();
    }
    tarnprint("PLOT file is %s\n", path.c_str());
}
