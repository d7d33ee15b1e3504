#include "interp/base/numtext.h"

#include "interp/base/fpfault.h"
#include "interp/base/report.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

numberformat nformat;

namespace {

constexpr int MAXDIGITS = 770;     // no double has more significant decimal digits
constexpr int MAXPOSITIONS = 1000; // of a format; a double has at most 1074 digits behind the point
constexpr int MAXUSERWIDTH = 200;  // width and precision of a format of the user's own

// d1.d2d3... times 10^exponent, correctly rounded to the digits asked for; no trailing zeros.
struct decimal {
    char digit[MAXDIGITS];
    int count, exponent;
};

// Whole numbers, the most frequent of all, need no conversion of floating point.
bool wholedigits(double x, int digits, decimal& s) {
    constexpr double MANY = 1e15;
    if (!(x < MANY) || x != double(int64_t(x))) return false;
    s.count = int(std::to_chars(s.digit, s.digit + MAXDIGITS, int64_t(x)).ptr - s.digit);
    s.exponent = s.count - 1;
    if (s.count > digits) return false;
    while (s.count > 1 && s.digit[s.count - 1] == '0') s.count--;
    return true;
}

void significant(double x, int digits, decimal& s) {
    if (wholedigits(x, digits, s)) return;
    char text[MAXDIGITS + 10];
    digits = std::clamp(digits, 1, MAXDIGITS);
    const char* end =
        std::to_chars(text, text + sizeof text, x, std::chars_format::scientific, digits - 1).ptr;
    const int mark = digits == 1 ? 1 : digits + 1; // where the e stands
    s.exponent = 0;
    for (const char* p = text + mark + 2; p < end; p++) s.exponent = 10 * s.exponent + (*p - '0');
    if (text[mark + 1] == '-') s.exponent = -s.exponent;
    s.digit[0] = text[0];
    memcpy(s.digit + 1, text + 2, size_t(digits - 1));
    s.count = digits;
    while (s.count > 1 && s.digit[s.count - 1] == '0') s.count--;
}

/* How the digits stand: `whole` of them before the point, filled up with zeros when there are fewer; then the
 * point, `zeros` zeros, and what digits are left. */
struct layout {
    int whole, zeros, exponent;
    int intleft, fracleft; // positions not used
};

int behindpoint(const layout& l, const decimal& s) { return l.zeros + std::max(0, s.count - l.whole); }

layout zerolayout(decimal& s, int intpos, int fracpos) {
    s.digit[0] = '0';
    s.count = 1;
    s.exponent = 0;
    if (intpos == 0) return {0, 0, 0, 0, fracpos - 1};
    return {1, 0, 0, intpos - 1, fracpos};
}

layout firstdigit(const decimal& s, int positions) { // d.ddd and the exponent
    return {1, 0, s.exponent, 0, positions - s.count};
}

layout floatlarge(const decimal& s, int style, int positions) { // exponent above 0
    const int e = s.exponent;
    if (positions <= e && style == -2) return {0, 0, e + 1, 0, positions - s.count};
    if (positions <= e && style == -3) return firstdigit(s, positions);
    const int whole = std::min(e + 1, positions);
    return {whole, 0, e + 1 - whole, 0, positions - std::max(whole, s.count)};
}

layout floatsmall(const decimal& s, int style, int positions) { // exponent below 0
    const bool fits = s.count - s.exponent - 1 <= positions;
    if (!fits && style == -3) return firstdigit(s, positions);
    const int left = positions - s.count;
    const int zeros = !fits && style == -2 ? 0 : std::min(left, -s.exponent - 1);
    return {0, zeros, s.exponent + 1 + zeros, 0, left - zeros};
}

layout floating(double x, bool negative, const numberformat& f, decimal& s) {
    significant(x, f.fracpos, s);
    const layout l = [&] {
        if (s.exponent == 0 || f.intpos == -4) return firstdigit(s, f.fracpos);
        return s.exponent > 0 ? floatlarge(s, f.intpos, f.fracpos) : floatsmall(s, f.intpos, f.fracpos);
    }();
    // A position that is left goes to the zero before the point, unless the sign stands there.
    if (l.whole > 0 || negative || l.fracleft <= 0) return l;
    return {l.whole, l.zeros, l.exponent, 1, l.fracleft - 1};
}

layout plain(const decimal& s, int intpos, int fracpos) { // all digits have their place
    layout l{std::max(0, s.exponent + 1), std::max(0, -s.exponent - 1), 0, 0, 0};
    l.intleft = intpos - l.whole;
    l.fracleft = fracpos - behindpoint(l, s);
    return l;
}

// Whether x, below the last of the positions behind the point, is rounded up to a 1 there.
bool roundsup(double x, int fracpos, decimal& s) {
    char text[MAXPOSITIONS + 10];
    const char* end = std::to_chars(text, text + sizeof text, x, std::chars_format::fixed, fracpos).ptr;
    s.digit[0] = end[-1];
    s.count = 1;
    s.exponent = -fracpos;
    return end[-1] == '1';
}

/* A number below 1 that needs more than the positions behind the point. As many digits as fit are shown if
 * they are at least smalldigits (one, when that is negative); else the number gets an exponent and
 * smalldigits digits; with smalldigits 0 it is rounded to the positions, though that be 0. */
layout fixedsmall(double x, const numberformat& f, decimal& s) {
    const int total = f.intpos + f.fracpos;
    const int small = total <= f.smalldigits ? 0 : f.smalldigits;
    const int fitting = f.fracpos + s.exponent + 1; // digits that the positions have room for
    if (small == 0 || fitting >= (small < 0 ? 1 : small)) {
        if (fitting > 0)
            significant(x, fitting, s);
        else if (!roundsup(x, f.fracpos, s))
            return zerolayout(s, f.intpos, f.fracpos);
        return plain(s, f.intpos, f.fracpos);
    }
    significant(x, std::min(std::abs(small), total), s);
    if (s.count - s.exponent - 1 <= f.fracpos) return plain(s, f.intpos, f.fracpos);
    if (f.intpos == 0) return {0, 0, s.exponent + 1, 0, f.fracpos - s.count};
    const int whole = std::max(1, s.count - f.fracpos);
    return {whole, 0, s.exponent + 1 - whole, f.intpos - whole, f.fracpos - (s.count - whole)};
}

layout fixed(double x, const numberformat& f, decimal& s) {
    const int total = f.intpos + f.fracpos;
    significant(x, total, s);
    if (s.exponent >= f.intpos) // too large: every position is filled
        return {f.intpos, 0, s.exponent + 1 - f.intpos, 0, f.fracpos - std::max(0, s.count - f.intpos)};
    if (s.count - s.exponent - 1 <= f.fracpos) return plain(s, f.intpos, f.fracpos);
    if (s.exponent < 0) return fixedsmall(x, f, s);
    significant(x, s.exponent + 1 + f.fracpos, s);
    return plain(s, f.intpos, f.fracpos);
}

// What stands before the digits; the sign always comes last but for a zero.
struct lead {
    int blanks = 0, zeros = 0;
    bool none = false;       // the whole text is empty
    bool blankdigit = false; // a blank stands for the digit 0
};

lead leading(int mode, const layout& l, bool zero) {
    const bool below1 = !zero && l.whole == 0;
    const int left = std::max(0, l.intleft);
    lead r;
    switch (mode) {
    case 0: r.zeros = below1 && left > 0; break;
    case 2: r.none = zero; break;
    case 3: r.zeros = !zero && left > 0; break;
    case 4: r.zeros = left; break;
    case 5:
        r.zeros = below1 && left > 0;
        r.blanks = left - r.zeros;
        break;
    case 7: r.blankdigit = zero; [[fallthrough]];
    case 6: r.blanks = left; break;
    case 8:
        r.zeros = !zero && left > 0;
        r.blanks = left - r.zeros;
        break;
    }
    return r;
}

struct trail {
    bool point; // the integer gets a point
    int zeros;
};

trail trailing(int mode, const layout& l, bool integer, bool zero) {
    const int left = std::max(0, l.fracleft);
    switch (mode) {
    case 1: return {integer, 0};
    case 2: return {integer && left > 0, integer && left > 0};
    case 4: return {integer, integer ? 0 : left};
    case 5: return {false, integer ? 0 : left};
    case 6:
        if (zero) return {integer, 0};
        break;
    case 7:
        if (zero) return {false, 0};
        break;
    case 3: break;
    default: return {false, 0};
    }
    return {integer && left > 0, left}; // 3, and what 6 and 7 do with other numbers
}

char* fill(char* p, char c, int n) {
    if (n <= 0) return p;
    memset(p, c, size_t(n));
    return p + n;
}

char* take(char* p, const char* text, int n) {
    if (n <= 0) return p;
    memcpy(p, text, size_t(n));
    return p + n;
}

size_t compose(char* buf, const layout& l, const decimal& s, bool negative, bool zero,
               const numberformat& f) {
    const lead before = leading(f.leadmode, l, zero);
    if (before.none) return 0;
    const int fraction = behindpoint(l, s);
    const trail behind = trailing(f.trailmode, l, fraction == 0, zero);
    char* p = fill(buf, ' ', before.blanks);
    if (negative) *p++ = '-';
    p = fill(p, '0', before.zeros);
    if (before.blankdigit) {
        *p++ = ' ';
    } else {
        p = take(p, s.digit, std::min(l.whole, s.count));
        p = fill(p, '0', l.whole - s.count);
    }
    if (fraction > 0) {
        *p++ = '.';
        p = fill(p, '0', l.zeros);
        p = take(p, s.digit + l.whole, s.count - l.whole);
    }
    if (behind.point) *p++ = '.';
    p = fill(p, '0', behind.zeros);
    if (f.forceexp || l.exponent) {
        *p++ = 'E';
        p = std::to_chars(p, p + 8, l.exponent).ptr;
    }
    return size_t(p - buf);
}

// Where the one floating conversion of a printf-like format begins and ends; from is npos if the text is not
// such a format. Nothing else of printf's is let through, and its positions are bounded.
struct conversion {
    size_t from, to;
};

size_t skipnumber(const std::string& text, size_t k, bool& bounded) {
    int n = 0;
    for (; k < text.size() && text[k] >= '0' && text[k] <= '9'; k++)
        n = std::min(10 * n + (text[k] - '0'), 9999);
    bounded = bounded && n <= MAXUSERWIDTH;
    return k;
}

conversion findconversion(const std::string& text) {
    constexpr size_t npos = std::string::npos;
    conversion found{npos, npos};
    for (size_t k = 0; k < text.size(); k++) {
        if (text[k] != '%') continue;
        if (k + 1 < text.size() && text[k + 1] == '%') {
            k++;
            continue;
        }
        if (found.from != npos) return {npos, npos};
        bool bounded = true;
        size_t j = text.find_first_not_of("-+ #0", k + 1);
        if (j != npos) j = skipnumber(text, j, bounded);
        if (j < text.size() && text[j] == '.') j = skipnumber(text, j + 1, bounded);
        if (j < text.size() && text[j] == 'l') j++;
        if (!bounded || j >= text.size() || !strchr("eEfFgGaA", text[j])) return {npos, npos};
        found = {k, j + 1};
        k = j;
    }
    return found;
}

// Takes the zeros off behind the point of text, but not those of an exponent.
void stripzeros(std::string& text) {
    if (text.find_first_of("xX") != std::string::npos) return; // a hexadecimal form has no such zeros
    const size_t mark = std::min(text.find_first_of("eE "), text.size());
    if (text.find('.') >= mark) return;
    size_t last = mark;
    while (text[last - 1] == '0') last--;
    if (text[last - 1] == '.') last--;
    text.erase(last, mark - last);
}

void literal(std::string& out, const std::string& text, size_t from, size_t to) {
    for (size_t k = from; k < to; k++) {
        out += text[k];
        if (text[k] == '%') k++;
    }
}

std::string usertext(double x, const std::string& format) {
    const conversion c = findconversion(format);
    if (c.from == std::string::npos) return {};
    char text[MAXUSERWIDTH + 400];
    const std::string one = format.substr(c.from, c.to - c.from);
    const int length = snprintf(text, sizeof text, one.c_str(), x);
    std::string number(text, size_t(std::clamp(length, 0, int(sizeof text) - 1)));
    std::string out;
    literal(out, format, 0, c.from);
    const size_t start = number.find_first_not_of(' ');
    const size_t blanks = start == std::string::npos ? 0 : start;
    std::string digits = number.substr(blanks);
    stripzeros(digits);
    out.append(blanks, ' ');
    out += digits;
    literal(out, format, c.to, format.size());
    out.erase(0, std::min(out.find_first_not_of(' '), out.size()));
    return out;
}

size_t strangetext(char* buf, double x) { // no value of the system's own
    strcpy(buf, std::isnan(x) ? "NAN" : x < 0 ? "-INF" : "INF");
    return strlen(buf);
}

} // namespace

[[noreturn]] static void illegalformat(const char* text) {
    tarnerror(further("\"%s\" is neither six whole numbers, such as \"-1 8 0 0 2 0\", nor a format such as "
                      "\"%%8.3f\"; the "
                      "format before it stays in force",
                      text),
              "Illegal nformat string");
}

void parsenformat(const char* text) {
    const char* const whole = text;
    text += strspn(text, " \t");
    if (*text == '-' || (*text >= '0' && *text <= '9')) {
        int16_t field[6];
        for (int16_t& value : field) {
            char* end;
            const long n = strtol(text, &end, 10);
            if (end == text || n < -MAXPOSITIONS || n > MAXPOSITIONS) illegalformat(whole);
            value = int16_t(n);
            text = end + strspn(end, " \t,");
        }
        nformat = {field[0], field[1], field[2], field[3], field[4], field[5], ""};
    } else {
        const std::string format = text;
        if (!format.empty() && findconversion(format).from == std::string::npos) illegalformat(whole);
        nformat.fmttext = format;
    }
}

numberformat numusable(const numberformat& f) {
    numberformat r = f;
    r.fracpos = std::max<int16_t>(r.fracpos, 0);
    if (r.fmttext.empty() && r.fracpos == 0 && r.intpos < 1) {
        tarnwarn("bad number format:no output positions are provided");
        tarnwarn("its second number, the digits behind the point, is taken as 1");
        r.fracpos = 1;
    }
    return r;
}

size_t numroom(const numberformat& f) {
    return f.fmttext.empty() ? size_t(64 + std::max<int>(f.intpos, 0) + std::max<int>(f.fracpos, 0))
                             : f.fmttext.size() + MAXUSERWIDTH + 400;
}

size_t numwrite(char* buf, double x, const numberformat& f) {
    if (!f.fmttext.empty()) {
        const std::string text = usertext(x, f.fmttext);
        return text.copy(buf, text.size());
    }
    if (!fpfinite(x)) return strangetext(buf, x);
    decimal s;
    const bool negative = x < 0;
    const double size = std::fabs(x);
    const layout l = x == 0         ? zerolayout(s, f.intpos, f.fracpos)
                     : f.intpos < 0 ? floating(size, negative, f, s)
                                    : fixed(size, f, s);
    const bool zero = s.digit[0] == '0'; // x may have been rounded to it
    return compose(buf, l, s, negative && !zero, zero, f);
}

void numtext(char* buf, double x, int intpos, int fracpos, int leadmode, int trailmode, int smalldigits,
             int forceexp) {
    const auto field = [](int n) { return int16_t(std::clamp(n, -MAXPOSITIONS, MAXPOSITIONS)); };
    const numberformat f = numusable({field(intpos), field(fracpos), field(leadmode), field(trailmode),
                                      field(smalldigits), field(forceexp), ""});
    buf[numwrite(buf, x, f)] = 0;
}

std::string numstring(double x) { return numstring(x, nformat); }

std::string numstring(double x, const numberformat& f) {
    const numberformat usable = numusable(f);
    std::string text(numroom(usable), 0);
    text.resize(numwrite(text.data(), x, usable));
    return text;
}
