/* vellum/vlribbon.h - the outline of a wide line.
 * Owns:    offsets, joins and caps. Callers: the line generator. Never:   draws or allocates. */
#pragma once

#include "vellum/vldraw.h"

// Room that the outline of `pointCnt` points needs.
constexpr int BDRYSIZE(int pointCnt, int roundsegs) { return 2 * pointCnt * (roundsegs + 1) + 8; }

// A mitre whose tip lies farther from the corner than this many half widths is cut off.
constexpr double vlmitrelimit = 10;

/* The outline of a line through n points of half width w, closed by repeating its first point: the left side
 * forward, the right side back. Corners are mitred for roundsegs 1, else rounded outside by that many pieces
 * of half a circle over the gap; a turn back gets such a cap about its point. Points that follow themselves
 * are one. A lone point gives itself. Gives the number of points in `result`, which has room for BDRYSIZE(n,
 * roundsegs). */
int vlribbon(const vlpoint* points, int n, double w, int roundsegs, vlpoint* result);

/* Would the inner edge of the corner at b fold over? Then a line is drawn in two parts that overlap there. */
bool vlfolds(vlpoint a, vlpoint b, vlpoint c, double w);
// Does the outline of n points, closed, cross itself? Edges that only touch do not count.
bool vlcrosses(const vlpoint* outline, int n);
/* The outer join of the corner at b as a polygon of its own, at most roundsegs + 5 points. It reaches into
 * both parts of the line: edges in common would show as a pale seam where colours are mixed at edges. */
int vljoin(vlpoint a, vlpoint b, vlpoint c, double w, int roundsegs, vlpoint* result);
