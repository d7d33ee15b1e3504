#include "glyphsource.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>

namespace fonttool {
namespace {

/* The words of one line, taken one after another; a fault names the file and the line. */
struct linewords {
    std::string where;
    std::vector<std::string> words;
    size_t next = 0;

    [[noreturn]] void fault(const std::string& what) const { throw std::runtime_error(where + ": " + what); }
    bool more() const { return next < words.size(); }
    std::string word() {
        if (!more()) fault("a word is missing");
        return words[next++];
    }
    double number() {
        const std::string text = word();
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (end == text.c_str() || *end) fault("not a number: " + text);
        return value;
    }
    int integer() { return static_cast<int>(number()); }
};

/* Calls `use` with each line that has words; a line that begins with # is a comment. */
void eachline(const std::string& path, const std::function<void(linewords&)>& use) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::string text;
    for (int line = 1; std::getline(file, text); line++) {
        linewords words;
        words.where = path + ":" + std::to_string(line);
        std::istringstream split(text);
        for (std::string word; split >> word;) words.words.push_back(word);
        if (words.more() && words.words[0][0] != '#') use(words);
    }
}

/* The centre line of one stroke:
 *   M x y  start          L x y  line            X x  line across     Y y  line up or down
 *   C x1 y1 x2 y2 x y     Bezier curve
 *   h x y  quarter curve that leaves along x     v x y  one that leaves along y
 *   w s    pen's share at the next points        z  closes the stroke
 * A pen's share for the first point stands after its M. */
class strokereader {
public:
    strokereader(linewords& words, double roundness) : in(words), kappa(roundness) {}

    stroke read() {
        flags();
        if (in.word() != "M") in.fault("a stroke begins with M");
        while (in.more() && in.words[in.next] == "w") step(in.word());
        here.x = in.number();
        here.y = in.number();
        first = here;
        while (in.more()) step(in.word());
        return std::move(made);
    }

private:
    linewords& in;
    double kappa;
    stroke made;
    point here, first;
    double pen = 1, penhere = 1;

    void flags() {
        if (in.words[in.next] == "M") return;
        const std::string word = in.word();
        if (word.size() < 2) in.fault("flags of a stroke are two letters, for its ends");
        made.start = word[0] == 'b' ? strokeend::butt : strokeend::grown;
        made.finish = word[1] == 'b' ? strokeend::butt : strokeend::grown;
        made.boxed = word.find('x') != std::string::npos;
    }
    void add(point b, point c, point d, bool straight) {
        made.pieces.push_back({{here, b, c, d}, straight, penhere, pen});
        here = d;
        penhere = pen;
    }
    void line(point to) { add(here, to, to, true); }
    void quarter(bool across) {
        const point to{in.number(), in.number()};
        const double dx = (to.x - here.x) * kappa, dy = (to.y - here.y) * kappa;
        if (across)
            add({here.x + dx, here.y}, {to.x, to.y - dy}, to, false);
        else
            add({here.x, here.y + dy}, {to.x - dx, to.y}, to, false);
    }
    void curve() {
        point b, c, d;
        for (point* p : {&b, &c, &d}) {
            p->x = in.number();
            p->y = in.number();
        }
        add(b, c, d, false);
    }
    void step(const std::string& word) {
        if (word == "L") {
            const double x = in.number();
            line({x, in.number()});
        } else if (word == "X") {
            line({in.number(), here.y});
        } else if (word == "Y") {
            line({here.x, in.number()});
        } else if (word == "C") {
            curve();
        } else if (word == "h" || word == "v") {
            quarter(word == "h");
        } else if (word == "w") {
            pen = in.number();
            if (made.pieces.empty()) penhere = pen;
        } else if (word == "z") {
            if (here.x != first.x || here.y != first.y) line(first);
            made.closed = true;
        } else {
            in.fault("unknown word in a stroke: " + word);
        }
    }
};

/* The state that lines of a glyph source change. */
struct sourcereader {
    glyphset& set;
    std::map<std::string, double> bearings;
    double zone = 700, roundness = 0.5523;
    glyph* current = nullptr;

    double bearing(linewords& in) {
        const auto found = bearings.find(in.words[in.next]);
        if (found == bearings.end()) return in.number();
        in.next++;
        return found->second;
    }
    int code(linewords& in) {
        const std::string text = in.word();
        return text.size() == 1 ? static_cast<unsigned char>(text[0]) : std::atoi(text.c_str());
    }
    glyph& open(linewords& in) {
        if (!current) in.fault("no glyph was begun");
        return *current;
    }
    void begin(linewords& in) {
        const int which = code(in);
        if (which < 32 || which > 255) in.fault("a glyph's code is a character or 32 to 255");
        glyph& made = set.glyphs[which] = glyph();
        current = &made;
        made.zone = zone;
        made.width = in.number();
        if (in.words[in.next] == "figure") {
            in.next++;
            made.tabular = true;
        } else {
            made.bearleft = bearing(in);
            made.bearright = bearing(in);
        }
    }
    void line(linewords& in) {
        const std::string key = in.word();
        if (key == "glyph") {
            begin(in);
        } else if (key == "stroke") {
            open(in).strokes.push_back(strokereader(in, roundness).read());
        } else if (key == "dot") {
            const double x = in.number(), y = in.number();
            open(in).dots.push_back({{x, y}, in.more() ? in.number() : 1.0});
        } else if (key == "like") { // takes over the strokes and dots of another glyph
            const glyph& other = set.glyphs.at(code(in));
            const double dx = in.more() ? in.number() : 0, dy = in.more() ? in.number() : 0;
            copy(other, open(in), dx, dy, in.more() ? in.number() : 1);
        } else if (key == "accent") {
            current = &(set.accents[in.word()] = glyph());
        } else if (key == "letter") {
            letter(in);
        } else if (key == "zone") {
            zone = in.number();
        } else if (key == "roundness") {
            roundness = in.number();
        } else if (key == "bearing") {
            const std::string name = in.word();
            bearings[name] = in.number();
        } else if (key == "figurewidth") {
            set.figurewidth = in.number();
        } else {
            in.fault("unknown word: " + key);
        }
    }
    // How far a glyph goes to the right of x = 0, or with side -1 to the left.
    static double reach(const glyph& g, double side) {
        double most = 0;
        for (const stroke& s : g.strokes)
            for (const piece& p : s.pieces)
                for (const point& q : p.at) most = std::max(most, side * q.x);
        for (const dot& d : g.dots) most = std::max(most, side * d.at.x);
        return most;
    }
    // A bare stem under an accent that is wider on one side or on both.
    static void widen(glyph& made, const glyph& accent) {
        constexpr double stempen = 40, least = 14;
        const glyph stem = made;
        const double left = reach(accent, -1), right = reach(accent, 1), half = std::max(left, right);
        made.strokes.clear();
        made.width = 2 * half;
        made.bearleft = std::max(least, stem.bearleft - std::max(0.0, left - stempen));
        made.bearright = std::max(least, stem.bearright - std::max(0.0, right - stempen));
        copy(stem, made, half, 0, 1);
    }
    // A letter with an accent over its middle: letter CODE BASE ACCENT.
    void letter(linewords& in) {
        const int which = code(in), base = code(in);
        const auto accent = set.accents.find(in.word());
        if (which < 32 || which > 255 || accent == set.accents.end()) in.fault("no such letter or accent");
        glyph made = set.glyphs.at(base);
        if (base == 'i') made.dots.clear();
        if (made.width == 0) widen(made, accent->second);
        copy(accent->second, made, made.width / 2, made.zone > 500 ? 200 : 0, 1);
        set.glyphs[which] = made;
        current = nullptr;
    }
    // Smaller strokes are drawn by a narrower pen, though not as narrow as their size.
    static void copy(glyph other, glyph& into, double dx, double dy, double scale) {
        const double pen = (1 + scale) / 2;
        for (stroke& s : other.strokes) {
            for (piece& p : s.pieces) {
                for (point& q : p.at) q = {q.x * scale + dx, q.y * scale + dy};
                p.pen0 *= pen;
                p.pen1 *= pen;
            }
            into.strokes.push_back(s);
        }
        for (dot& d : other.dots)
            into.dots.push_back({{d.at.x * scale + dx, d.at.y * scale + dy}, d.size * scale});
    }
};

face readface(linewords& in) {
    face made;
    made.number = in.integer();
    made.name = in.word();
    while (in.more()) {
        const std::string key = in.word();
        if (key == "source")
            made.sources.push_back(in.word());
        else if (key == "pen")
            made.penx = in.number(), made.peny = in.number();
        else if (key == "room")
            made.room = in.number();
        else if (key == "stretch")
            made.stretch = in.number();
        else if (key == "slant")
            made.slant = in.number();
        else if (key == "fit")
            made.fit = in.number();
        else if (key == "cell")
            made.cell = in.number(), made.inner = in.number();
        else
            in.fault("unknown word of a face: " + key);
    }
    return made;
}

bitmapface readbitmap(linewords& in) {
    bitmapface made;
    made.number = in.integer();
    while (in.more()) {
        const std::string key = in.word();
        if (key == "source")
            made.sources.push_back(in.word());
        else if (key == "cell")
            made.cellwidth = in.integer(), made.cellheight = in.integer();
        else if (key == "baseline")
            made.baseline = in.integer();
        else if (key == "heights")
            made.capital = in.number(), made.small = in.number();
        else if (key == "inner")
            made.inner = in.number();
        else if (key == "pen")
            made.pen = in.number();
        else
            in.fault("unknown word of a bitmap font: " + key);
    }
    return made;
}

} // namespace

void readglyphs(const std::string& path, glyphset& set) {
    sourcereader reader{set, {}};
    eachline(path, [&](linewords& in) { reader.line(in); });
}

facelist readfaces(const std::string& path) {
    facelist made;
    eachline(path, [&](linewords& in) {
        const std::string key = in.word();
        if (key == "face")
            made.faces.push_back(readface(in));
        else if (key == "bitmap")
            made.bitmaps.push_back(readbitmap(in));
        else
            in.fault("unknown word: " + key);
    });
    return made;
}

} // namespace fonttool
