#include "vellum/vlletters.h"

#include <algorithm>
#include <iterator>

namespace {

struct row {
    int letter; // Unicode
    int code;
    bool symbol;
};

constexpr row rows[] = {
    {0x00a0, ' ', false},  {0x00b0, 176, true},  {0x00b1, 177, true},  {0x00b5, 'm', true},
    {0x00b7, 215, true},   {0x00d7, 180, true},  {0x00f7, 184, true},  {0x0391, 'A', true},
    {0x0392, 'B', true},   {0x0393, 'G', true},  {0x0394, 'D', true},  {0x0395, 'E', true},
    {0x0396, 'Z', true},   {0x0397, 'H', true},  {0x0398, 'Q', true},  {0x0399, 'I', true},
    {0x039a, 'K', true},   {0x039b, 'L', true},  {0x039c, 'M', true},  {0x039d, 'N', true},
    {0x039e, 'X', true},   {0x039f, 'O', true},  {0x03a0, 'P', true},  {0x03a1, 'R', true},
    {0x03a3, 'S', true},   {0x03a4, 'T', true},  {0x03a5, 'U', true},  {0x03a6, 'F', true},
    {0x03a7, 'C', true},   {0x03a8, 'Y', true},  {0x03a9, 'W', true},  {0x03b1, 'a', true},
    {0x03b2, 'b', true},   {0x03b3, 'g', true},  {0x03b4, 'd', true},  {0x03b5, 'e', true},
    {0x03b6, 'z', true},   {0x03b7, 'h', true},  {0x03b8, 'q', true},  {0x03b9, 'i', true},
    {0x03ba, 'k', true},   {0x03bb, 'l', true},  {0x03bc, 'm', true},  {0x03bd, 'n', true},
    {0x03be, 'x', true},   {0x03bf, 'o', true},  {0x03c0, 'p', true},  {0x03c1, 'r', true},
    {0x03c2, 'V', true},   {0x03c3, 's', true},  {0x03c4, 't', true},  {0x03c5, 'u', true},
    {0x03c6, 'f', true},   {0x03c7, 'c', true},  {0x03c8, 'y', true},  {0x03c9, 'w', true},
    {0x03d1, 'J', true},   {0x03d5, 'j', true},  {0x03d6, 'v', true},  {0x2010, '-', false},
    {0x2011, '-', false},  {0x2013, '-', false}, {0x2014, '-', false}, {0x2018, '\'', false},
    {0x2019, '\'', false}, {0x201c, '"', false}, {0x201d, '"', false}, {0x2022, 183, true},
    {0x2126, 'W', true},   {0x2190, 172, true},  {0x2191, 173, true},  {0x2192, 174, true},
    {0x2193, 175, true},   {0x2194, 171, true},  {0x2202, 182, true},  {0x2207, 209, true},
    {0x2208, 206, true},   {0x220f, 213, true},  {0x2211, 229, true},  {0x2212, '-', false},
    {0x221a, 214, true},   {0x221e, 165, true},  {0x222b, 242, true},  {0x2248, 187, true},
    {0x2260, 185, true},   {0x2261, 186, true},  {0x2264, 163, true},  {0x2265, 179, true},
};
static_assert(std::is_sorted(std::begin(rows), std::end(rows),
                             [](const row& a, const row& b) { return a.letter < b.letter; }));

// Of Latin-1 the faces have these under their own codes.
bool latin(int letter) {
    return (letter >= 0xc0 && letter <= 0xff) || letter == 0xa1 || letter == 0xa3 || letter == 0xb2 ||
           letter == 0xb3 || letter == 0xb9 || letter == 0xbf;
}

const row* find(int letter) {
    const row* at = std::lower_bound(std::begin(rows), std::end(rows), letter,
                                     [](const row& a, int value) { return a.letter < value; });
    return at != std::end(rows) && at->letter == letter ? at : nullptr;
}

// The letter that a sequence of two or three bytes spells, and its length; 0 where there is none.
int decode(const unsigned char* s, int* length) {
    const auto follows = [&](int i) { return (s[i] & 0xc0) == 0x80; };
    if (s[0] >= 0xc2 && s[0] <= 0xdf && follows(1)) {
        *length = 2;
        return (s[0] & 0x1f) << 6 | (s[1] & 0x3f);
    }
    if (s[0] >= 0xe0 && s[0] <= 0xef && follows(1) && follows(2)) {
        *length = 3;
        return (s[0] & 0x0f) << 12 | (s[1] & 0x3f) << 6 | (s[2] & 0x3f);
    }
    return 0;
}

} // namespace

vlletter vlletters::next() {
    int length = 0;
    const int letter = *at < 0x80 ? 0 : decode(at, &length);
    if (const row* known = find(letter)) {
        at += length;
        return {known->code, known->symbol};
    }
    if (latin(letter)) {
        at += length;
        return {letter, false};
    }
    return {*at++, false};
}

int vlsymbolfont(int font) {
    switch (font) {
    case 1:
    case 2:
    case 3: return 4;
    case 5:
    case 7:
    case 9:
    case 14: return 11;
    case 6:
    case 8:
    case 10: return 12;
    case 13: return 15;
    default: return font;
    }
}
