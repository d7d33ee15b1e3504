/* special/beta.h - the beta function, complete and incomplete, and Pochhammer's symbol.
 * Owns:    B(a,b), its logarithm, I_x(a,b) and its derivatives by the parameters, (a)_x.
 * Callers: the builtin dispatch, the routines of special/ and stats/.
 * Never:   prints; an argument outside the domain is noted in special/fault.h. */
#pragma once

// B(a,b) = Gamma(a) Gamma(b) / Gamma(a+b) for real a, b (DLMF 5.12). Poles: range warning and 0, as GAMMA.
double betafn(double a, double b);
// log(B(a,b)), a, b > 0, else a range warning and 0.
double logbeta(double a, double b);

/* I_x(a,b), the regularised incomplete beta function (DLMF 8.17.2); a, b >= 0, not both 0, x in [0,1], else
 * a range warning and 0. Error "IBETA: a or b too big, or itmax too small" when the continued fraction does
 * not settle (a and b above 1e16). */
double ibeta(double a, double b, double x);
// I_x(a,b) for x and y = 1 - x both given, so that an upper tail loses nothing: 1 - I_x(a,b) is
// ibetaxy(b,a,y,x).
double ibetaxy(double a, double b, double x, double y);
// The derivative of I_x(a,b) by b if which is 2, else by a.
double jbeta(double a, double b, double x, double which);
// x^a y^b / B(a,b) with y = 1 - x, the common factor of these functions and of the densities made of them.
double betaterm(double a, double b, double x, double y);

// (a)_x = Gamma(a+x)/Gamma(a) for real a, x (DLMF 5.2.5). Poles: range warning and 0.
double poch(double a, double x);
// ((a)_x - 1)/x without cancellation for small x; at x = 0 its limit psi(a).
double poch1(double a, double x);
// The rising factorial x(x+1)..(x+n-1), which is (x)_n; for n < 0 1/((x-1)..(x+n)).
double rfact(double x, double n);
