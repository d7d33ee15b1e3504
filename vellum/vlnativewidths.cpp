// How wide the letters of the printer's own fonts are.
#include "vellum/vlnative.h"
#include "vellum/vlstate.h"

#include <algorithm>
#include <cstdint>

namespace {

/* Widths of the characters 32 to 126 in thousandths of the font's size, from the font metrics that Adobe
 * publishes for the base fonts of PostScript. Slanted forms of Helvetica are as wide as the upright ones;
 * each letter of Courier takes 600. The quote and the grave accent are those of the standard encoding. */
constexpr int FIRSTCODE = 32, LASTCODE = 126;
using widthtable = int16_t[LASTCODE - FIRSTCODE + 1];
constexpr widthtable times = {250, 333, 408, 500, 500, 833, 778, 333, 333, 333, 500, 564, 250, 333, 250, 278,
                              500, 500, 500, 500, 500, 500, 500, 500, 500, 500, 278, 278, 564, 564, 564, 444,
                              921, 722, 667, 667, 722, 611, 556, 722, 722, 333, 389, 722, 611, 889, 722, 722,
                              556, 722, 667, 556, 611, 722, 722, 944, 722, 722, 611, 333, 278, 333, 469, 500,
                              333, 444, 500, 444, 500, 444, 333, 500, 500, 278, 278, 500, 278, 778, 500, 500,
                              500, 500, 333, 389, 278, 500, 500, 722, 500, 500, 444, 480, 200, 480, 541};
constexpr widthtable timesbold = {
    250, 333, 555, 500, 500, 1000, 833, 333, 333, 333, 500, 570, 250, 333, 250, 278, 500, 500,  500,
    500, 500, 500, 500, 500, 500,  500, 333, 333, 570, 570, 570, 500, 930, 722, 667, 722, 722,  667,
    611, 778, 778, 389, 500, 778,  667, 944, 722, 778, 611, 778, 722, 556, 667, 722, 722, 1000, 722,
    722, 667, 333, 278, 333, 581,  500, 333, 500, 556, 444, 556, 444, 333, 500, 556, 278, 333,  556,
    278, 833, 556, 500, 556, 556,  444, 389, 333, 556, 500, 722, 500, 500, 444, 394, 220, 394,  520};
constexpr widthtable timesitalic = {
    250, 333, 420, 500, 500, 833, 778, 333, 333, 333, 500, 675, 250, 333, 250, 278, 500, 500, 500,
    500, 500, 500, 500, 500, 500, 500, 333, 333, 675, 675, 675, 500, 920, 611, 611, 667, 722, 611,
    611, 722, 722, 333, 444, 667, 556, 833, 667, 722, 611, 722, 611, 500, 556, 722, 611, 833, 611,
    556, 556, 389, 278, 389, 422, 500, 333, 500, 500, 444, 500, 444, 278, 500, 500, 278, 278, 444,
    278, 722, 500, 500, 500, 500, 389, 389, 278, 500, 444, 667, 444, 444, 389, 400, 275, 400, 541};
constexpr widthtable timesbolditalic = {
    250, 389, 555, 500, 500, 833, 778, 333, 333, 333, 500, 570, 250, 333, 250, 278, 500, 500, 500,
    500, 500, 500, 500, 500, 500, 500, 333, 333, 570, 570, 570, 500, 832, 667, 667, 667, 722, 667,
    667, 722, 778, 389, 500, 667, 611, 889, 722, 722, 611, 722, 667, 556, 611, 722, 667, 889, 667,
    611, 611, 333, 278, 333, 570, 500, 333, 500, 500, 444, 500, 444, 333, 500, 556, 278, 278, 500,
    278, 778, 556, 500, 500, 500, 389, 389, 278, 556, 444, 667, 500, 444, 389, 348, 220, 348, 570};
constexpr widthtable helvetica = {
    278, 278, 355, 556, 556, 889, 667, 222, 333, 333, 389, 584, 278, 333,  278, 278, 556, 556, 556,
    556, 556, 556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556, 1015, 667, 667, 722, 722, 667,
    611, 778, 722, 278, 500, 667, 556, 833, 722, 778, 667, 778, 722, 667,  611, 722, 667, 944, 667,
    667, 611, 278, 278, 278, 469, 556, 222, 556, 556, 500, 556, 556, 278,  556, 556, 222, 222, 500,
    222, 833, 556, 556, 556, 556, 333, 500, 278, 556, 500, 722, 500, 500,  500, 334, 260, 334, 584};
constexpr widthtable helveticabold = {
    278, 333, 474, 556, 556, 889, 722, 278, 333, 333, 389, 584, 278, 333, 278, 278, 556, 556, 556,
    556, 556, 556, 556, 556, 556, 556, 333, 333, 584, 584, 584, 611, 975, 722, 722, 722, 722, 667,
    611, 778, 722, 278, 556, 722, 611, 833, 722, 778, 667, 778, 722, 667, 611, 722, 667, 944, 667,
    667, 611, 333, 278, 333, 584, 556, 278, 556, 611, 556, 611, 556, 333, 611, 611, 278, 278, 556,
    278, 889, 611, 611, 611, 611, 389, 556, 333, 611, 556, 778, 556, 556, 500, 389, 280, 389, 584};
constexpr widthtable symbols = {
    250, 333, 713, 500, 549, 833, 778, 439, 333, 333, 500, 549, 250, 549, 250, 278, 500, 500, 500,
    500, 500, 500, 500, 500, 500, 500, 278, 278, 549, 549, 549, 444, 549, 722, 667, 722, 612, 611,
    763, 603, 722, 333, 631, 722, 686, 889, 722, 722, 768, 741, 556, 592, 611, 690, 439, 768, 645,
    795, 611, 333, 863, 333, 658, 500, 500, 631, 549, 549, 494, 439, 521, 411, 603, 329, 603, 549,
    549, 576, 521, 549, 549, 521, 549, 603, 439, 576, 713, 686, 493, 686, 494, 480, 200, 480, 549};

constexpr int16_t COURIER = 600, OTHERCODE = 500;

// By the number of the font, from -2 down; null for Courier.
constexpr const widthtable* tables[] = {
    nullptr,          nullptr,    nullptr,        nullptr,    &times,         &timesbold, &timesitalic,
    &timesbolditalic, &helvetica, &helveticabold, &helvetica, &helveticabold, &symbols};

int widthof(int font, unsigned char code) {
    const size_t row = size_t(std::clamp(-2 - font, 0, int(std::size(tables)) - 1));
    if (!tables[row]) return COURIER;
    return code < FIRSTCODE || code > LASTCODE ? OTHERCODE : (*tables[row])[code - FIRSTCODE];
}

// The size of the font, normal length.
double emsize(const vlnativetext& text) {
    return vlnativepoints(text) / 72 / std::max(vl.record.widthin, vl.record.heightin);
}

} // namespace

double vlnativewidth(const vlnativetext& text) {
    int sum = 0;
    for (size_t k = 0; k < text.length; k++)
        sum += widthof(text.font, static_cast<unsigned char>(text.text[k]));
    return sum / 1000.0 * emsize(text);
}

double vlnativeheight(const vlnativetext& text) {
    constexpr double CAPITAL = 0.7; // Times 0.662, Helvetica 0.718
    return CAPITAL * emsize(text);
}
