/* special/polyaberth.h - the iteration behind the roots of polynomials.
 * Owns:    nothing.
 * Callers: polyroots.cpp, polycluster.cpp, polymerge.cpp.
 * Never:   reports; the caller knows the function. */
#pragma once

#include "special/bigfloat.h"
#include "special/doubledouble.h"
#include "special/spcomplex.h"

#include <vector>

inline spcomplex todouble(ddcomplex z) { return {z.re.hi, z.im.hi}; }
inline ddcomplex todd(spcomplex z) { return {z.re, z.im}; }
inline double magnitude(ddcomplex z) { return std::hypot(z.re.hi, z.im.hi); }

/* The simultaneous iteration of O. Aberth (Math. Comp. 27 (1973) 339) with the starting circles of D. A. Bini
 * (Numer. Algorithms 13 (1996) 179): z gets approximations to the roots of the polynomial c (falling powers,
 * largest about 1, neither end 0), in 53 and then in 106 bits. False if it does not settle. */
bool aberth(const std::vector<ddcomplex>& c, std::vector<ddcomplex>& z);

/* Radii of discs about the z whose connected groups hold as many roots as discs (B. T. Smith, J. ACM 17
 * (1970) 661), for values of the polynomial wrong by `noise` times the sum of the magnitudes of its terms. */
std::vector<double> smithradii(const std::vector<ddcomplex>& c, const std::vector<ddcomplex>& z,
                               double noise);
// The groups of indices whose discs meet, by a single chain.
std::vector<std::vector<int>> discgroups(const std::vector<ddcomplex>& z, const std::vector<double>& radius);

// As aberth in 106 bits for the roots `active` alone, from where z stands; the others only repel.
bool aberthdd(const std::vector<ddcomplex>& c, std::vector<ddcomplex>& z, const std::vector<int>& active);
// The radii of Bini's circles for rising coefficients of magnitudes 2^size[k]: one for each root, rising.
std::vector<double> binilogradii(const std::vector<double>& size);

/* Resolves the roots z[group] (whose discs meet, or which 106 bits do not settle) of the polynomial c, all
 * numbers doubles: z[group] is replaced by the roots to 106 bits, the members of a multiple root being equal.
 * The others only repel. False if the iteration does not settle. */
bool resolvegroup(const std::vector<spcomplex>& c, const std::vector<int>& group, std::vector<ddcomplex>& z);

/* For coefficients that may be rounded numbers: replaces the exact roots z by those with the fewest different
 * values that give the same coefficients within rounding, if there are such (Z. Zeng, Math. Comp. 74 (2005)
 * 869). */
void mergerounded(const std::vector<ddcomplex>& c, std::vector<ddcomplex>& z);
