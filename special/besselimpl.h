/* special/besselimpl.h - what the files of the Bessel functions share.
 * Owns:    nothing.
 * Callers: bessel*.cpp, cbessel.cpp, kelvin.cpp, sphbessel.cpp, struve.cpp.
 * Never:   checks a domain; x is above 0, nu at least 0 (named mu: at most 1/2 in magnitude) but
 *          where any order is said. */
#pragma once

#include "special/spcomplex.h"

// J_nu and Y_nu, or nothing.
struct besjy {
    bool good = false; // the expansion reached full accuracy
    double j = 0, y = 0;
};
// I = i exp(ei) and K = k exp(ek).
struct besik {
    bool good = false;
    double i = 0, ei = 0, k = 0, ek = 0;
};

// The expansions for large argument, DLMF 10.17(i) and 10.40(i).
besjy hankeljy(double nu, double x);
besik hankelik(double nu, double x);
// Debye's expansions for large order, DLMF 10.19(ii) and 10.41(ii).
besjy debyejy(double nu, double x);
besik debyeik(double nu, double x);
// The leading terms of Olver's uniform expansion, DLMF 10.20(i); |1 - x/nu| <= 0.02, nu above 4000.
besjy turningjy(double nu, double x);

// sum over k of (s v)^k / (k! (nu+1)_k) with v = x^2/4: the ascending series without its first factor.
double ascending(double nu, double v, int s);
// (x/2)^nu / Gamma(nu+1) as a number and an exponent of e.
double ascendingfactor(double nu, double x, double* exponent);

// gam1 = (1/Gamma(1-mu) - 1/Gamma(1+mu))/(2 mu), gam2 = (1/Gamma(1-mu) + 1/Gamma(1+mu))/2, and the
// two reciprocals; N. M. Temme, J. Comput. Phys. 19 (1975) 324.
struct temmegamma {
    double gam1, gam2, rplus, rminus; // 1/Gamma(1+mu), 1/Gamma(1-mu)
};
temmegamma temmegammas(double mu);

// Y_mu, Y_{mu+1} for x <= 2 and exp(x) K_mu, exp(x) K_{mu+1} for any x.
void temmey(double mu, double x, double* y0, double* y1);
void temmek(double mu, double x, double* k0, double* k1);

// I_nu(x), nu >= 0, x > 0, as i exp(ei).
besik besiwide(double nu, double x);
besik beskwide(double nu, double x); // K_nu(x) as k exp(ek)
// Orders and arguments beyond this are treated by their limits.
inline constexpr double BESSELFAR = 1e250;

// J, Y, exp(-shift x) I, exp(shift x) K of any real order, infinite on overflow; nothing is noted.
double besjraw(double nu, double x);
double besyraw(double nu, double x);
double besiraw(double nu, double x, int shift);
double beskraw(double nu, double x, int shift);

// The value m exp(e); 0 or infinity beyond the range of doubles.
double joinexponent(double m, double e);

// As cbess for z not 0, as m exp(e) and without a fault noted; false where no method reaches.
bool cbesswide(double kind, double nu, spcomplex z, spcomplex* m, double* e);
