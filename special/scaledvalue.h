/* special/scaledvalue.h - a pair of neighbours in a recurrence, kept clear of overflow.
 * Owns:    nothing.
 * Callers: recurrences of special/ whose intermediate values leave the doubles.
 * Never:   rounds: the scale is a power of two. */
#pragma once

#include <algorithm>
#include <cmath>

// The values are last 2^power and now 2^power.
struct scaledpair {
    double last, now;
    int power = 0;

    void step(double next) {
        last = now;
        now = next;
        if (std::fabs(now) > 1e150 || (now != 0 && std::fabs(now) < 1e-150 && std::fabs(last) < 1e-150))
            rescale();
    }
    void rescale() {
        if (!std::isfinite(now)) return; // stays what it is
        const int e = std::ilogb(now);
        now = std::ldexp(now, -e);
        last = std::ldexp(last, -e);
        power = std::clamp(power + e, -1000000000, 1000000000); // far beyond the doubles either way
    }
    double value() const { return std::ldexp(now, power); }
};
