/* plot/curveop.h - DRAW, XAXIS, YAXIS and AXIS.
 * Owns:    which curve a statement means, where its points come from, how an axis goes with its window.
 * Callers: process.
 * Never:   draws. */
#pragma once

/* Performs the statement `kind` (its token) on the operands of polstack, which it releases: nothing; data or
 * a curve; a name and data, or a curve to copy. A fault is told before anything is changed. */
void drawop(int kind);
