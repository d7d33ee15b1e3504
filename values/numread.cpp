#include "values/numread.h"

#include "interp/base/fpfault.h"
#include "values/harray.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

// The powers that are neither 0 nor overflow.
constexpr int LOWTEN = -324, HIGHTEN = 308;

struct tenstable {
    std::array<double, HIGHTEN - LOWTEN + 1> at;
    tenstable() {
        for (int n = LOWTEN; n <= HIGHTEN; n++) at[size_t(n - LOWTEN)] = powi(10, n);
    }
};

enum charclass : uint8_t { SKIP, LETTER, DIGIT, SIGN, PERIOD, QUOTE, COMMENT, STOP, BAD };

constexpr std::array<charclass, 256> classtable() {
    std::array<charclass, 256> t{};
    for (int c = 0; c < 256; c++) t[size_t(c)] = c < ' ' || c == 127 ? BAD : SKIP;
    for (int c : {'\t', '\n', '\v', '\f', '\r'}) t[size_t(c)] = SKIP;
    for (int c = 'a'; c <= 'z'; c++) t[size_t(c)] = t[size_t(c - 'a' + 'A')] = LETTER;
    for (int c = '0'; c <= '9'; c++) t[size_t(c)] = DIGIT;
    t['+'] = t['-'] = SIGN;
    t['.'] = PERIOD;
    t['"'] = QUOTE;
    t['/'] = COMMENT;
    t[26] = STOP; // control-Z
    return t;
}
constexpr std::array<charclass, 256> CLASS = classtable();

charclass classof(char c) { return CLASS[static_cast<unsigned char>(c)]; }
bool isdigit(char c) { return static_cast<unsigned char>(c - '0') <= 9; }

// The digits from p on as one integer behind m; wraps when there are many, which the caller sees by their
// count.
uint64_t gather(const char*& p, uint64_t m) {
    while (isdigit(*p)) m = m * 10 + uint64_t(*p++ - '0');
    return m;
}

// The same with each step rounded to a double.
double gatherslow(const char* from, const char* to, double m) {
    for (; from < to; from++) m = 10 * m + (*from - '0');
    return m;
}

bool allzero(const char* from, const char* to) {
    while (from < to && *from == '0') from++;
    return from == to;
}

const char* skipquoted(const char* p, const char* end) {
    for (p++; p < end; p++) {
        if (*p != '"') continue;
        if (p[1] != '"') return p + 1;
        p++;
    }
    return end;
}

// Passes the letters at p. True for a word that other programs write in place of a number.
bool skipword(const char*& p) {
    const char* const from = p;
    while (classof(*p) == LETTER) p++;
    const std::string_view word(from, size_t(p - from));
    if (word.size() > 3) return false;
    for (const char* missing : {"NA", "NaN", "NAN", "nan", "Inf", "INF", "inf"})
        if (word == missing) return true;
    return false;
}

const char* skipline(const char* p, const char* end) {
    const void* feed = memchr(p, '\n', size_t(end - p));
    return feed ? static_cast<const char*>(feed) : end;
}

double scale(double m, ptrdiff_t n, const double* tens) {
    if (m == 0 || n < LOWTEN) return 0;
    return n > HIGHTEN ? fpfault(FPOVERFLOW, false) : fpcheck(tens[n] * m);
}

} // namespace

numbertext numbertextstart(const char* text, size_t length) {
    static const tenstable tens;
    return {text, text + length, &tens.at[-LOWTEN], text};
}

int readfloat(const char*& p, const double* tens, double& out) {
    constexpr uint64_t EXACT = uint64_t(1) << 53;
    constexpr ptrdiff_t NOWRAP = 19; // digits that fit in 64 bits
    const char* const whole = p;
    const uint64_t m0 = gather(p, 0);
    const char* const wholeend = p;
    uint64_t m = m0;
    const char* fraction = p;
    if (*p == '.') {
        fraction = ++p;
        m = gather(p, m0);
    }
    ptrdiff_t nf = p - fraction;
    if (wholeend == whole && nf == 0) return -1;
    if (allzero(fraction, p)) {
        m = m0;
        nf = 0;
    }
    const bool exact = (wholeend - whole) + nf <= NOWRAP && m <= EXACT; // no step is rounded
    const double value =
        exact ? double(m) : gatherslow(fraction, fraction + nf, gatherslow(whole, wholeend, 0));
    int exponent = 0;
    if ((*p | 0x20) == 'e') {
        p++;
        const bool minus = *p == '-';
        if (minus || *p == '+') p++;
        if (!isdigit(*p)) return -2;
        for (; isdigit(*p); p++)
            if (exponent < 1000000) exponent = 10 * exponent + (*p - '0');
        if (minus) exponent = -exponent;
    }
    out = scale(value, exponent - nf, tens);
    return 0;
}

numberresult readnumber(numbertext& in, double& out) {
    const char* p = in.p;
    while (p < in.end) {
        bool minus = false;
        in.mark = p;
        switch (classof(*p)) {
        case SKIP: p++; continue;
        case LETTER: in.marks |= skipword(p); continue;
        case QUOTE: p = skipquoted(p, in.end); continue;
        case COMMENT: p = skipline(p, in.end); continue;
        case SIGN:
            minus = *p++ == '-';
            if (*p == '.' && p + 1 == in.end) p = in.end; // the digit may be still to come
            if (!isdigit(*p) && !(*p == '.' && isdigit(p[1]))) continue;
            break;
        case PERIOD:
            if (isdigit(p[1])) break;
            p++;
            continue;
        case DIGIT: break;
        case STOP: in.p = p; return NUMBEREND;
        case BAD: in.p = p; return NUMBERBAD;
        }
        const int status = readfloat(p, in.tens, out);
        in.p = p;
        if (status != 0) return NUMBERBAD;
        if (minus) out = -out;
        return NUMBERREAD;
    }
    in.p = p;
    return NUMBEREND;
}
