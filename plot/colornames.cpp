#include "plot/colornames.h"

#include "plot/plotobj.h"

#include <cstring>
#include <iterator>

namespace {

// In the order of their numbers where no device has set others; data/init.do has the same.
constexpr struct {
    const char* name;
    double red, green, blue;
} colors[] = {{"BLACK", 0, 0, 0},         {"WHITE", 1, 1, 1},
              {"RED", 1, 0, 0},           {"GREEN", 0, 1, 0},
              {"BLUE", 0, 0, 1},          {"YELLOW", 1, 1, 0},
              {"ORANGE", 1, 0.65, 0},     {"VIOLET", 0.63, 0.13, 0.94},
              {"PINK", 1, 0.75, 0.79},    {"CHARTREUSE", 0.5, 1, 0},
              {"AQUA", 0.19, 0.93, 0.85}, {"BROWN", 0.55, 0.26, 0.12},
              {"ROSE", 1, 0.41, 0.7},     {"TURQUOISE", 0.25, 0.87, 0.81},
              {"GREY", 0.5, 0.5, 0.5}};
constexpr size_t COLORS = std::size(colors);

struct colornamestate {
    int color[COLORS]; // the present index of each
};
colornamestate colornames;

int rgb15(size_t k) {
    return int(colors[k].red * 31) << 10 | int(colors[k].green * 31) << 5 | int(colors[k].blue * 31);
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

const char* colorname(int color) {
    if (color == CLEARCOLOR) return "CLEAR";
    for (size_t k = 0; k < COLORS; k++)
        if (colornames.color[k] == color) return colors[k].name;
    return nullptr;
}

void colornameset(const char* name, int color) {
    for (size_t k = 0; k < COLORS; k++)
        if (strcmp(colors[k].name, name) == 0) colornames.color[k] = color;
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
