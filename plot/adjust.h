/* plot/adjust.h - round numbers for the limits of a window.
 * Owns:    nothing; adjustwindow itself is told in plotobj.h.
 * Callers: adjustwindow.
 * Never:   sees a window. */
#pragma once

// A number with few digits in [a, b], or a where there is none; 0 <= a <= b, both taken as whole numbers.
double nicenumber(double a, double b);
/* Round numbers outside lo and hi, by a tenth of their distance at most; 0 where that lies within. scale
 * makes whole numbers of them: digits beyond it are cut. */
void nicebounds(double lo, double hi, double scale, double& nicelo, double& nicehi);
