/* special/elliptic.h - elliptic integrals, Jacobi's elliptic functions, theta functions.
 * Owns:    nothing; the parameter is m, the square of the modulus (Abramowitz and Stegun 16, 17).
 * Callers: anyone. An argument outside the domain is noted in special/fault.h under the language's name.
 * Never:   gives a complex value: where the function is complex the result is 0 with a warning. */
#pragma once

// Carlson's symmetric integrals, DLMF 19.16; x, y, z >= 0, at most one of them 0.
double carlsonrf(double x, double y, double z);
double carlsonrc(double x, double y);                     // y not 0; principal value for y < 0
double carlsonrd(double x, double y, double z);           // z > 0
double carlsonrj(double x, double y, double z, double p); // p > 0

// Complete integrals, m <= 1. K(1) is MAXPOS with a warning.
double ellipk(double m);
double ellipe(double m);
double ellippi(double n, double m); // 1/((1 - n sin^2) sqrt(1 - m sin^2)); n > 1: principal value

// Incomplete integrals from 0 to phi (radians), any phi for m <= 1 (m < 1 for F, Pi beyond pi/2);
// for m > 1 while m sin(phi)^2 <= 1 and |phi| <= pi/2.
double ellipf(double phi, double m);
double ellipeinc(double phi, double m);
double ellippiinc(double n, double phi, double m); // n sin(phi)^2 > 1: principal value

// sn, cn, dn of (u | m) for any real u and m.
struct jacobivalues {
    double sn, cn, dn;
};
jacobivalues jacobiall(double u, double m);
double jacobisn(double u, double m);
double jacobicn(double u, double m);
double jacobidn(double u, double m);
// The ratios: pq = pn/qn, nq = 1/qn. At a pole MAXPOS with a warning.
double jacobins(double u, double m);
double jacobinc(double u, double m);
double jacobind(double u, double m);
double jacobisc(double u, double m);
double jacobisd(double u, double m);
double jacobics(double u, double m);
double jacobicd(double u, double m);
double jacobids(double u, double m);
double jacobidc(double u, double m);
double jacobiam(double u, double m); // the amplitude, continuous in u
double jzeta(double u, double m);    // Jacobi's zeta Z(u | m) = E(am u | m) - u E(m)/K(m), m <= 1

// All of them by number: 1 sn, 2 cn, 3 dn, 4 ns, 5 nc, 6 nd, 7 sc, 8 sd, 9 cs, 10 cd, 11 ds, 12 dc,
// 13 am, 14 Z; of the amplitude u: 15 F(u | m), 16 E(u | m); 17 K(m), 18 E(m). Another is out of range.
double jacobielf(double u, double m, double selector);

// theta_n(z, q), n = 1..4, nome 0 <= q < 1, DLMF 20.2(i); -1 < q < 0 for n = 3, 4.
double theta(double n, double z, double q);
