/* special/elementary.h - elementary helpers that hold where the plain formula loses digits, and shared constants.
 * Owns:    sin and cos of multiples of pi, log(1+x) - x. The elementary functions of the language are in funcs/.
 * Callers: the routines of special/ and stats/.
 * Never:   notes a fault. */
#pragma once

inline constexpr double PI = 3.14159265358979323846;
inline constexpr double EULERGAMMA = 0.57721566490153286061;
inline constexpr double LNSQRT2PI = 0.91893853320467274178; // log(sqrt(2 pi))

double sinpi(double x);   // sin(pi x), exact zeros and signs for any size of x
double cospi(double x);   // cos(pi x)
double sinpisum(double a, double b); // sin(pi (a+b)) with the rounding of the sum made good
double log1pmx(double x); // log(1+x) - x without cancellation, x > -1
