/* special/elementary.h - elementary functions that the C library lacks, and exact helpers for the others.
 * Owns:    degree forms, cotangents and secants with their inverses, modulus and rounding, sin and cos of
 * multiples of pi. Callers: the routines of special/ and stats/, the builtin dispatch. Never:   prints; an
 * argument outside the domain, and a pole, is noted in special/fault.h. */
#pragma once

inline constexpr double PI = 3.14159265358979323846;
inline constexpr double EULERGAMMA = 0.57721566490153286061;
inline constexpr double LNSQRT2PI = 0.91893853320467274178; // log(sqrt(2 pi))
inline constexpr double DEGREE = 0.017453292519943295769;   // pi/180, the factor of all degree forms

double sinpi(double x);   // sin(pi x), exact zeros and signs for any size of x
double cospi(double x);   // cos(pi x)
double log1pmx(double x); // log(1+x) - x without cancellation, x > -1

// Poles give a range warning and MAXPOS with the sign of the right-hand limit, arguments outside the domain
// a range warning and 0.
double cotan(double x);
double secant(double x);
double cosecant(double x);
double acotan(double x);    // atan(1/x), in (-pi/2, pi/2] (DLMF 4.23.9); pi/2 at 0
double asecant(double x);   // |x| >= 1, in [0, pi]
double acosecant(double x); // |x| >= 1, in [-pi/2, pi/2]
double cotanh(double x);
double sech(double x);
double cosech(double x);
double acotanh(double x); // |x| > 1
double asech(double x);   // 0 < x <= 1
double acosech(double x);

// Of an argument in degrees: reduced without error first, so that multiples of 30 and 45 give exact results.
double sind(double x);
double cosd(double x);
double tand(double x);
// In degrees; as the functions in radians outside of their domain.
double asind(double x);
double acosd(double x);
double atand(double x);

// a - floor(a/b)*b, with the sign of b; a where b is 0.
double modulus(double a, double b);
// x rounded away from 0 to d decimals (tens, hundreds .. for d < 0). A number that is one with d decimals but
// for its last bits stays.
double rdup(double x, double d);
