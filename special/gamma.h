/* special/gamma.h - the gamma function and its relatives.
 * Owns:    gamma, its logarithm and derivatives, beta, Pochhammer symbols, factorials and coefficients made
 * of them. Callers: the builtin dispatch, the routines of special/ and stats/. The incomplete forms are in
 * special/incgamma.h and special/incbeta.h. Never:   prints; an argument outside the domain is noted in
 * special/fault.h. */
#pragma once

// Gamma(x). Range warning and 0 at 0 and the negative integers, with MAXPOS above 171.6; 0 below -170.5.
// Method: W. Fullerton's GAMMA (SLATEC), see gamma.cpp.
double gammafn(double x);
// log(Gamma(x)), x > 0. MAXPOS at 0, range warning and 0 below it.
double loggamma(double x);
// psi(x), the derivative of loggamma. Range warning and 0 at 0 and the negative integers.
double digamma(double x);
// The n-th derivative of psi, n = 0, 1, 2, ... (DLMF 5.15); n first. Poles as digamma.
double pgamma(double n, double x);

// psi(a+b) - psi(a), a > 0, a + b > 0, without the cancellation of the two; relative to b for small b.
double digammadifference(double a, double b);

// 1/Gamma(x) for any x, 0 at the poles of Gamma; no faults.
double rgamma(double x);
// log(Gamma(1+x)), -0.5 <= x <= 1.5, with full relative accuracy near 0 and 1.
double loggamma1p(double x);
// log|Gamma(x)| for any x but the poles; *sign is the sign of Gamma(x) (0 at a pole, with the result MAXPOS).
double loggammasign(double x, int* sign);
// The rest of Stirling's formula: log(Gamma(x)) - (x-0.5) log(x) + x - log(sqrt(2 pi)), x >= 10.
double r9lgmc(double x);
// log(Gamma(b)/Gamma(a+b)), b > 0, a + b > 0, without the cancellation of the two; relative to a for small a.
double loggammaratio(double a, double b);
// The same plus a log(a+b): what Stirling's formula leaves; b >= 10, a + b >= 10.
double gammaratiorest(double a, double b);

// The arguments between which Gamma neither underflows nor overflows.
struct gammalimits {
    double xmin, xmax;
};
gammalimits gamlim();

extern const double factorials[171]; // n! rounded, n = 0..170
