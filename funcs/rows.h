/* funcs/rows.h - the lists of builtins of this room, one a file.
 * Owns:    nothing.
 * Callers: funcsstart alone.
 * Never:   is needed by another room: each has a start of its own. */
#pragma once

void elementaryrows();      // elementary.cpp: exponential, circular, hyperbolic functions, rounding, extremes
void matrixbasicrows();     // matrixbasic.cpp: numbers from a matrix, reshaping
void linearrows();          // linearcalls.cpp: inverse, decompositions, linear equations, norms
void matrixarrangerows();   // matrixarrange.cpp: sorting, picking rows and diagonals
void columnstatsrows();     // columnstats.cpp: statistics of columns, diversity
void matrixseriesrows();    // matrixseries.cpp: Fourier transforms, correlation, histograms
void interpolaterows();     // interpolate.cpp: tables and grids
void complexrows();         // complexcalls.cpp: complex matrices
void callrows();            // onop.cpp: POINTS and APPLY
void specialrows();         // specialrows.cpp: the functions of special/
void specialmatrixrows();   // specialmatrix.cpp: those that take or give matrices
void complexfunctionrows(); // complexfunctions.cpp: functions of complex numbers, roots of polynomials
void ranrows();             // ran.cpp: the uniform generator
