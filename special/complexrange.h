/* special/complexrange.h - complex results beyond the range of doubles.
 * Owns:    nothing.
 * Callers: the complex functions of special/.
 * Never:   prints. */
#pragma once

#include "special/range.h"
#include "special/spcomplex.h"

// Infinite parts become the largest number of their sign, with one range warning.
inline spcomplex capcomplex(const char* name, spcomplex z) {
    if (std::isinf(z.re)) z.re = capped(name, z.re);
    if (std::isinf(z.im)) z.im = capped(name, z.im);
    return z;
}

inline bool isnotanumber(spcomplex z) { return std::isnan(z.re) || std::isnan(z.im); }
