#include "unit/plot/epspage.h"

#include "funcs/builtin.h"
#include "funcs/trinode.h"
#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "plot/display.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

constexpr double PIXELSPERNORMAL = 3133; // 10.4444 inches of 300 dots

// The parts of the file behind its set-up, as tokens; a string in parentheses is one.
class epsreader {
public:
    explicit epsreader(epspage& p) : page(p) {}
    void read() {
        const size_t start = page.text.find("%%EndSetup");
        if (start == std::string::npos) return;
        std::istringstream in(page.text.substr(start + 10));
        std::string token;
        while (in >> token) {
            if (token[0] == '%') {
                std::getline(in, token);
                continue;
            }
            take(token);
        }
    }

private:
    void take(const std::string& token) {
        char* end = nullptr;
        const double value = strtod(token.c_str(), &end);
        if (*end == 0) return stack.push_back(value);
        if (token == "RGB" && stack.size() >= 3) {
            r = stack[0], g = stack[1], b = stack[2];
        } else if (token == "B") {
            current = {};
        } else if (token == "M" && stack.size() >= 2) {
            current.pieces.push_back({top()});
        } else if (token == "L" && stack.size() >= 2 && !current.pieces.empty()) {
            current.pieces.back().push_back(top());
        } else if (token == "D" && !current.pieces.empty()) {
            current.pieces.back().push_back(current.pieces.back().back());
        } else if (token == "C" && !current.pieces.empty()) {
            current.pieces.back().push_back(current.pieces.back().front());
        } else if (token == "E" || token == "F") {
            finish(token == "F");
        }
        stack.clear();
    }
    epspoint top() const {
        return {stack[stack.size() - 2] / PIXELSPERNORMAL, stack[stack.size() - 1] / PIXELSPERNORMAL};
    }
    void finish(bool filled) {
        current.filled = filled;
        current.r = r, current.g = g, current.b = b;
        if (!current.pieces.empty()) page.marks.push_back(current);
        current = {};
    }
    epspage& page;
    std::vector<double> stack;
    epsmark current;
    double r = 0, g = 0, b = 0;
};

void definestring(const char* name, const std::string& text) {
    symbol& s = sym(symtabenter(name));
    if (s.type == STRINGTYPE) xfree(s.val.ptr);
    s.type = STRINGTYPE;
    s.val.ptr = xstrdup(text.c_str());
}

} // namespace

std::string plotfilepath() {
    return (std::filesystem::temp_directory_path() / ("scene_test_" + std::to_string(getpid()) + ".ps"))
        .string();
}

void sceneroomsstart() {
    hooksreset();
    report = reportstate{};
    report.tarnpath = TARNSTARTDIR;
    parser = parserstate{};
    parserreset();
    clausereset();
    symtabstart();
    valuesstart();
    trinodestart();
    builtinreset();
    parser.funcmode = 1;
    symtabconstants();
    parser.funcmode = 0;
    plotobjstart();
    displaystart();
    std::filesystem::remove(plotfilepath());
}

void plotto(const char* plotdev, const std::string& path) {
    definestring("PLOTDEV", plotdev);
    definestring("PLOTFILENAME", path);
    clause.insym = int16_t(symtablookup("PLOTFILENAME"));
    plotop();
}

epspage plotpage(const char* plotdev) {
    plotto(plotdev, plotfilepath());
    epspage page;
    std::ostringstream text;
    text << std::ifstream(plotfilepath()).rdbuf();
    page.text = text.str();
    std::filesystem::remove(plotfilepath());
    epsreader(page).read();
    return page;
}

epspage plotpage(const char* plotdev, int window) {
    polpush(window);
    return plotpage(plotdev);
}

int plainwindow(const char* name) {
    const int idx = symtabenter(name);
    window w = defaultwindow();
    w.ixmin = 0.2, w.ixmax = 0.8, w.iymin = 0.15, w.iymax = 0.6;
    w.imagebox = w.framebox = 0;
    std::fill(std::begin(w.adjust), std::end(w.adjust), int8_t(0));
    windowenter(idx, w);
    return idx;
}

harrayptr matrixwith(uint32_t rows, uint32_t cols, std::initializer_list<double> values) {
    harrayptr m(harraynew(rows, cols));
    std::copy(values.begin(), values.end(), cells(m.get()) + 1);
    return m;
}

int newcurve(int win, const char* name, int kind, std::initializer_list<double> xy) {
    const int idx = symtabenter(name);
    curve c;
    c.kind = int16_t(kind);
    c.data = matrixwith(uint32_t(xy.size() / 2), 2, xy);
    if (kind != TOKDRAW) c.wclipsw = 0;
    curveenter(idx, std::move(c));
    joinring(idx, win);
    return idx;
}

int newtitle(int win, const char* name, const char* text) {
    const int idx = symtabenter(name);
    title t;
    t.text = text;
    t.x = t.y = 0.5;
    titleenter(idx, t);
    joinring(idx, win);
    return idx;
}

epsbox inkbox(const epsmark& mark) {
    epsbox box;
    for (const auto& piece : mark.pieces)
        for (const epspoint& p : piece) {
            box.x0 = std::min(box.x0, p.x), box.x1 = std::max(box.x1, p.x);
            box.y0 = std::min(box.y0, p.y), box.y1 = std::max(box.y1, p.y);
        }
    return box;
}

epsbox inkbox(const epspage& page) {
    epsbox box;
    for (const epsmark& mark : page.marks) {
        const epsbox one = inkbox(mark);
        box.x0 = std::min(box.x0, one.x0), box.x1 = std::max(box.x1, one.x1);
        box.y0 = std::min(box.y0, one.y0), box.y1 = std::max(box.y1, one.y1);
    }
    return box;
}

size_t segments(const epspage& page) {
    size_t n = 0;
    for (const epsmark& mark : page.marks)
        for (const auto& piece : mark.pieces) n += piece.size() - 1;
    return n;
}

double inklength(const epspage& page) {
    double sum = 0;
    for (const epsmark& mark : page.marks)
        for (const auto& piece : mark.pieces)
            for (size_t k = 1; k < piece.size(); k++)
                sum += std::hypot(piece[k].x - piece[k - 1].x, piece[k].y - piece[k - 1].y);
    return sum;
}
