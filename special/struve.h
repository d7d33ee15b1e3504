/* special/struve.h - Struve functions of real order and argument, DLMF chapter 11.
 * Owns:    nothing.
 * Callers: anyone; the order first, the argument last.
 * Never:   gives a complex value: a negative argument needs a whole order, else the range warning and 0. */
#pragma once

// H_nu(x). At 0: 0 for nu > -1, 2/pi for nu = -1, else MAXPOS with a warning.
double struved(double nu, double x);
// The modified function L_nu(x). Overflow: MAXPOS with a warning.
double struveld(double nu, double x);
