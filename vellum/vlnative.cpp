#include "vellum/vlnative.h"

#include <algorithm>
#include <cmath>
#include <numbers>

double vlnativelength(const vlnativetext& text) {
    const double length = std::hypot(text.m[0], text.m[2]);
    return std::isfinite(length) ? length : 0;
}

// Large letters are wanted smaller than their share: native faces are wider than the strokes.
double vlnativepoints(const vlnativetext& text) {
    double size = text.size * 550 * vlnativelength(text);
    if (size > 40) {
        size *= 0.4;
    } else if (size > 18) {
        size *= 0.5714285714;
    } else if (size > 10) {
        size *= 0.8;
    }
    return std::max(size, 1.0);
}

double vlnativeangle(const vlnativetext& text) {
    constexpr double degrees = 180 / std::numbers::pi;
    const double a = text.m[0], b = text.m[2], length = vlnativelength(text);
    if (a >= 0) return std::asin(b / length) * degrees;
    if (b < 0) return std::atan2(b, a) * degrees;
    return std::acos(a / length) * degrees;
}
