/* vellum/vlhatch.h - parallel lines across a polygon, and solid fills where the device has none.
 * Owns:    the scan of a polygon by the even-odd rule. Callers: DPOLYGON, the line generator, filled text.
 * Never:   looks at the window, the style or the transform: points are normal units, x >= 1e300 breaks a
 * boundary. */
#pragma once

#include "vellum/vldraw.h"

// Cuts a polygon of n pairs into lines `spacing` apart (0: solid, one pixel apart and level), turned by
// `angle` degrees. They are drawn if `draw`, and appended to `keep` (x0, y0, x1, y1 each) if it is not null.
void vlhatch(const double* xy, size_t n, double spacing, double angle, bool draw, std::vector<double>* keep);
// Fills a polygon with the current colour: by the device where it can, else by lines.
void vlfillsolid(const double* xy, size_t n);
