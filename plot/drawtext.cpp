/* Text with commands behind apostrophes. The text runs along its own line: positions are kept on that line
 * and across it, in screen-normal lengths from its start, and turned into place only when something is drawn.
 */
#include "plot/colors.h"
#include "plot/scene.h"
#include "vellum/vellum.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr double LINEFEED = 1.666667, UNDERLINEDEPTH = 0.2; // in sizes
constexpr int MAXREPEAT = 100;

struct textstyle {
    int font, color;
    double size;
    double across = 0; // above the line of the text
    double turn = 0;   // of each character about its origin, degrees
    double wide = 1, high = 1;
    double cell = 0; // fixed step from character to character; 0: their own widths
    bool bar = false, underline = false;
};

struct textpen {
    textstyle start, now;
    double angle;
    bool ink; // false: nothing is drawn, only the way is measured
    double x0 = 0, y0 = 0, cosine, sine;
    double along = 0, line = 0; // on the line; the lines behind M and J lie below it
    double farthest = 0;
    int repeats = 0;            // of the next character
    std::vector<double> widths; // of the printed characters
    size_t printed = 0;         // the pen stands behind so many of them

    textpen(const textstyle& s, double degrees, bool draws)
        : start(s), now(s), angle(degrees), ink(draws), cosine(std::cos(degrees * std::numbers::pi / 180)),
          sine(std::sin(degrees * std::numbers::pi / 180)) {
        if (ink) DGETPOS(&x0, &y0, nullptr);
    }
};

void penmove(const textpen& p, double along, double across) {
    DMOVE(p.x0 + along * p.cosine - across * p.sine, p.y0 + along * p.sine + across * p.cosine);
}
void penline(const textpen& p, double along, double across, double toalong, double toacross) {
    penmove(p, along, across);
    DDRAW(p.x0 + toalong * p.cosine - toacross * p.sine, p.y0 + toalong * p.sine + toacross * p.cosine);
}
double height(const textpen& p) { return p.line + p.now.across; }

bool drawable(const textstyle& s) { return s.size > 0 && s.size < 100 && s.wide > 0 && s.high > 0; }

double plainwidth(const textpen& p, const char* text) {
    if (!drawable(p.now)) return 0;
    vltextsize extent{};
    DCHARSIZE(p.now.size * scene.plotscale);
    DTEXTSIZE(&extent, text, p.now.font);
    return extent.width / scene.plotscale * p.now.wide;
}

void ink(const textpen& p, const char* text) {
    if (!p.ink || !drawable(p.now)) return;
    setcolor(p.now.color);
    DFONT(p.now.font);
    DCHARSIZE(p.now.size * scene.plotscale);
    penmove(p, p.along, height(p));
    DRESETTRANSFORM();
    DROTATE(p.angle + p.now.turn);
    DSCALE(p.now.wide, p.now.high, 1);
    DTRANSFORMON(1);
    DTEXT(text);
    DRESETTRANSFORM();
}

void passed(textpen& p, double width) {
    p.widths.resize(std::max(p.widths.size(), p.printed + 1));
    p.widths[p.printed++] = width;
    p.along += width;
    p.farthest = std::max(p.farthest, p.along);
}

// The bytes of the letter that begins at s[k]: one, or as many as its UTF-8 takes.
size_t letterbytes(const std::string& s, size_t k) {
    size_t end = k + 1;
    if (static_cast<unsigned char>(s[k]) >= 0xC0)
        while (end < s.size() && end < k + 4 && (static_cast<unsigned char>(s[end]) & 0xC0) == 0x80) end++;
    return end - k;
}

// One letter, with what goes along with it.
void drawglyph(textpen& p, const std::string& letter) {
    const double own = plainwidth(p, letter.c_str()), width = p.now.cell > 0 ? p.now.cell : own;
    for (int k = 0; k <= p.repeats; k++) ink(p, letter.c_str());
    p.repeats = 0;
    if (p.ink && p.now.bar) penline(p, p.along, height(p), p.along, height(p) + p.now.size * p.now.high);
    if (p.ink && p.now.underline) {
        const double below = height(p) - UNDERLINEDEPTH * p.now.size;
        penline(p, p.along, below, p.along + width, below);
    }
    passed(p, width);
}

bool byglyphs(const textpen& p) {
    return p.repeats > 0 || p.now.turn != 0 || p.now.cell > 0 || p.now.bar || p.now.underline;
}

// Letters up to the next command: at once where they need no care one by one.
void drawrun(textpen& p, const std::string& run) {
    size_t k = 0;
    while (k < run.size() && byglyphs(p)) {
        const size_t n = letterbytes(run, k);
        drawglyph(p, run.substr(k, n));
        k += n;
    }
    if (k == run.size()) return;
    const std::string rest = run.substr(k);
    ink(p, rest.c_str());
    const double before = p.along, width = plainwidth(p, rest.c_str());
    for (size_t n; k < run.size(); k += n) {
        n = letterbytes(run, k);
        passed(p, plainwidth(p, run.substr(k, n).c_str()));
    }
    p.along = before + width; // what the text took as a whole
    p.farthest = std::max(p.farthest, p.along);
}

void back(textpen& p, double n) {
    for (; n >= 1 && p.printed > 0; n--) p.along -= p.widths[--p.printed];
    if (n > 0) p.along -= n * (p.printed > 0 ? p.widths[p.printed - 1] : p.now.size);
}
void forward(textpen& p, double n) {
    for (; n >= 1 && p.printed < p.widths.size(); n--) p.along += p.widths[p.printed++];
    if (n > 0) p.along += n * (p.printed < p.widths.size() ? p.widths[p.printed] : p.now.size);
}

void margin(textpen& p) {
    p.along = 0;
    p.printed = 0;
    p.widths.clear();
}
void linefeed(textpen& p) { p.line -= LINEFEED * p.now.size; }

// C with a letter: a control character.
void control(textpen& p, char letter) {
    const char code = char(toupper(static_cast<unsigned char>(letter)) - 64);
    if (code == '\r') return margin(p);
    if (code == '\n') return linefeed(p);
    drawglyph(p, std::string(1, code));
}

/* A command is an apostrophe, a number or none, and a letter. Without a number it takes 1, but A, which then
 * ends its turning. */
struct command {
    char letter = 0;
    bool hasnumber = false;
    double n = 1;
};
command readcommand(const char*& s) {
    command c;
    const size_t span = strspn(s, "-1234567890.e");
    const std::string digits(s, span);
    char* end = nullptr;
    const double value = strtod(digits.c_str(), &end);
    if (end != digits.c_str() && std::isfinite(value)) {
        c.hasnumber = true;
        c.n = value;
    }
    s += end - digits.c_str();
    if (*s) c.letter = char(toupper(static_cast<unsigned char>(*s++)));
    return c;
}

int wholenumber(double n) { return int(std::clamp(n, -32768.0, 32767.0)); }

void perform(textpen& p, const command& c, const char*& s) {
    switch (c.letter) {
    case '\'': return drawrun(p, "'");
    case 'A': p.now.turn = c.hasnumber ? c.n : 0; return;
    case 'B': return back(p, c.n);
    case 'C':
        if (*s) control(p, *s++);
        return;
    case 'D': p.now.across -= c.n * p.now.size; return;
    case 'F': return forward(p, c.n);
    case 'H': p.now.high = c.n; return;
    case 'I': p.repeats = std::clamp(wholenumber(c.n), 0, MAXREPEAT); return;
    case 'M': margin(p); return linefeed(p);
    case 'O': p.now.color = wholenumber(c.n); return;
    case 'R': p.now = p.start; return;
    case 'S': p.now.size *= c.n; return;
    case 'T': p.now.font = wholenumber(c.n); return;
    case 'U': p.now.across += c.n * p.now.size; return;
    case 'W': p.now.wide = c.n; return;
    case 'X': p.now.cell = p.printed > 0 ? p.widths[p.printed - 1] : 0; return;
    case 'Y': p.now.bar = !p.now.bar; return;
    case 'Z': p.now.underline = !p.now.underline; return;
    default: return; // E ends a command and does nothing
    }
}

void walk(textpen& p, const char* s) {
    while (*s) {
        const size_t plain = strcspn(s, "'");
        if (plain > 0) drawrun(p, std::string(s, plain));
        s += plain;
        if (!*s) return;
        s++;
        const command c = readcommand(s);
        if (c.letter == 0) return drawrun(p, "'"); // nothing behind it: the apostrophe itself
        perform(p, c, s);
    }
}

} // namespace

void drawtext(const char* text, int font, double size, int color, double angle, int rendermode) {
    textpen p({font, color, size}, angle, true);
    if (rendermode == TEXTCOMMANDS)
        walk(p, text);
    else
        drawrun(p, text);
    penmove(p, p.along, height(p));
}

double textadvance(const char* text, int font, double size, int rendermode) {
    textpen p({font, 1, size}, 0, false);
    if (rendermode == TEXTPLAIN) return plainwidth(p, text);
    walk(p, text);
    return p.farthest;
}

double textheight(const char* text, int font, double size, int rendermode) {
    if (!(size > 0)) return 0;
    std::string plain(text);
    if (rendermode == TEXTCOMMANDS) plain.resize(strcspn(text, "'"));
    if (plain.empty()) plain = "0";
    vltextsize extent{};
    DCHARSIZE(size * scene.plotscale);
    DTEXTSIZE(&extent, plain.c_str(), font);
    return (extent.ascent + extent.descent) / scene.plotscale;
}
