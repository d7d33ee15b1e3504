#include "plot/colornames.h"

#include "plot/plotobj.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// data/init.do has the same numbers.
constexpr namedcolor colors[] = {
    {"GREY", {0.5, 0.5, 0.5}, {0.5, 0.5, 0.5}, 14},
    {"RED", {1, 0, 0}, {1, 0, 0}, 2},
    {"GREEN", {0, 1, 0}, {0, 1, 0}, 3},
    {"BLUE", {0, 0, 1}, {0, 0, 1}, 4},
    {"WHITE", {1, 1, 1}, {1, 1, 1}, 1},
    {"BLACK", {0, 0, 0}, {0, 0, 0}, 0},
    {"YELLOW", {1, 1, 0}, {1, 1, 0}, 5},
    {"VIOLET", {0.63, 0.13, 0.94}, {0.63, 0.13, 0.94}, 7},
    {"PURPLE", {0.63, 0.13, 0.94}, {0.63, 0.13, 0.94}, -1},
    {"ORANGE", {0.5, 0.5, 0}, {1, 0.65, 0}, 6},
    {"PINK", {0.5, 0, 0.5}, {1, 0.75, 0.79}, 8},
    {"CHARTREUSE", {0, 0.5, 0}, {0.5, 1, 0}, 9},
    {"AQUA", {0, 1, 1}, {0.19, 0.93, 0.85}, 10},
    {"BROWN", {0.5, 0, 0}, {0.55, 0.26, 0.12}, 11},
    {"ROSE", {1, 0.41, 0.7}, {1, 0.41, 0.7}, 12},
    {"TURQUOISE", {0, 0.5, 0.5}, {0.25, 0.87, 0.81}, 13},
};
constexpr size_t COLORS = std::size(colors) - 1; // that are numbered

constexpr const namedcolor& numbered(size_t number) {
    return *std::find_if(std::begin(colors), std::end(colors),
                         [&](const namedcolor& c) { return c.number == int(number); });
}

struct colornamestate {
    int color[COLORS]; // the present index of each number
};
colornamestate colornames;

int rgb15(size_t number) {
    const rgb& c = numbered(number).other;
    return int(c.r * 31) << 10 | int(c.g * 31) << 5 | int(c.b * 31);
}

int distance(int rgb, int other) {
    int sum = 0;
    for (int shift = 0; shift <= 10; shift += 5) {
        const int d = (rgb >> shift & 31) - (other >> shift & 31);
        sum += d * d;
    }
    return sum;
}

} // namespace

std::span<const namedcolor> colortable() { return colors; }

const char* colorname(int color) {
    if (color == CLEARCOLOR) return "CLEAR";
    for (size_t k = 0; k < COLORS; k++)
        if (colornames.color[k] == color) return numbered(k).name;
    return nullptr;
}

void colornameset(const char* name, int color) {
    for (const namedcolor& c : colors)
        if (c.number >= 0 && strcmp(c.name, name) == 0) colornames.color[c.number] = color;
}

void colornamestart() {
    for (size_t k = 0; k < COLORS; k++) colornames.color[k] = int(k);
}

int colortorgb15(int color) {
    for (size_t k = 0; k < COLORS; k++)
        if (colornames.color[k] == color) return rgb15(k);
    return rgb15(1);
}

int colorfromrgb15(int rgb) {
    size_t nearest = 0;
    for (size_t k = 1; k < COLORS; k++)
        if (distance(rgb, rgb15(k)) < distance(rgb, rgb15(nearest))) nearest = k;
    return colornames.color[nearest];
}
