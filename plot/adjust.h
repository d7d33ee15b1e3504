/* plot/adjust.h - round numbers for the limits of a window and the marks of its axes.
 * Owns:    nothing; adjustwindow, which uses both, is told in plotobj.h.
 * Callers: adjustwindow; the statements that change an axis or make it another room.
 * Never:   draws; touches an axis with marks of the user's own. */
#pragma once

// A number with few digits in [a, b], or a where there is none; 0 <= a <= b, both taken as whole numbers.
double nicenumber(double a, double b);
/* Round numbers outside lo and hi, by a tenth of their distance at most; 0 where that lies within. scale
 * makes whole numbers of them: digits beyond it are cut. */
void nicebounds(double lo, double hi, double scale, double& nicelo, double& nicehi);

/* The x and y axes of a window whose wclipsw has OWNMARKS get marks at round numbers between its limits, as
 * many as their labels have room for, and labels with as many places as these need. */
void adjustaxes(int win);
// The user tells the marks from here on: they, and the format of labels, are no longer chosen.
struct curve;
void ownmarksend(curve& c);
