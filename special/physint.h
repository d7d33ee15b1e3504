/* special/physint.h - integrals of radiation and kinetic theory.
 * Owns:    Sievert's integral, Abramowitz's functions of real and complex argument.
 * Callers: the builtin dispatch.
 * Never:   prints; an argument outside the domain is noted in special/fault.h. */
#pragma once

// The integral of exp(-x sec(t)) from 0 to theta (Abramowitz and Stegun 27.4); x >= 0, |theta| <= pi/2, odd
// in theta; else a range warning and 0.
double sievert(double x, double theta);
// f_m(x), the integral of t^m exp(-t^2 - x/t) from 0 to infinity (Abramowitz and Stegun 27.5), order first; x
// > 0, or x = 0 and m > -1 (x = 0 and m <= -1: range warning and MAXPOS); x < 0: range warning and 0.
double abram(double m, double x);

struct complexpair {
    double re, im;
};
// The same of a complex argument with a part re >= 0; else a range warning and 0.
complexpair cabram(double m, double re, double im);
