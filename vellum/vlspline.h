/* vellum/vlspline.h - smooth curves through points.
 * Owns:    the interpolating spline under tension. Callers: DSPLINE, tests. Never:   draws. */
#pragma once

#include "vellum/vldraw.h"

#include <span>
#include <vector>

/* A curve through points by cubic pieces under tension, each coordinate a function of the length along the
 * chords. Tension 0 is the cubic spline; the larger, the nearer the curve runs to the straight pieces. An
 * open curve has no bend at its ends, a closed one (whose last point repeats the first, or is joined to it)
 * none there but what the points ask for. Method: A. K. Cline, Scalar- and planar-valued curve fitting using
 * splines under tension, Comm. ACM 17 (1974) 218-220, with its tension relative to the mean chord. */
struct vlspline {
    std::vector<double> knots; // lengths along the chords, from 0
    std::vector<vlpoint> at;   // the points, no two neighbours alike
    std::vector<vlpoint> bend; // second derivatives at them
    double tension = 0;        // per unit of length
};

vlspline vlsplinemake(std::span<const vlpoint> points, double tension, bool closed);
// The curve's point at a parameter from 0 to 1; zeros for a curve of no points.
vlpoint vlsplineat(const vlspline& s, double parameter);
