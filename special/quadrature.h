/* special/quadrature.h - numerical integration over one variable.
 * Owns:    an adaptive rule that divides by thirds, for the special functions, and Romberg's method for
 * QROMB. Callers: the routines of special/ and stats/; the builtin dispatch for QROMB, whose callback
 * evaluates a function of the user's; nothing here is shared or static, so a callback may integrate in its
 * turn. Never:   evaluates at infinity; the caller maps or cuts an infinite range. */
#pragma once

using integrand = double (*)(double x, void* context);

/* The integral of f from a to b: Gauss's rule of 20 points on an interval is held against the three on its
 * thirds, and thirds that fail are divided again, down to 3^-7 of the whole; then two warnings. eps is
 * relative to the integral of |f|. */
double quadthirds(integrand f, void* context, double a, double b, double eps);

/* Romberg's method (A. Ralston and P. Rabinowitz, A First Course in Numerical Analysis, 1978, 4.10):
 * trapezoidal sums on 1, 2, 4, .. intervals, the last `points` of them extrapolated to step 0, until the
 * extrapolation's own error estimate is below eps relative to the result. Error when `steps` halvings do not
 * do; the result is then the best there is. */
struct rombergrule {
    double eps = 1e-10;
    int steps = 20;
    int points = 5;
};
double qromb(integrand f, void* context, double a, double b, const rombergrule& rule);
