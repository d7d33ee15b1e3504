/* special/airy.h - the Airy functions of a real argument, DLMF chapter 9.
 * Owns:    the table of their values at the integers near 0.
 * Callers: anyone; the Bessel functions of large order use airyall.
 * Never:   prints; faults go to special/fault.h. */
#pragma once

struct airyvalues {
    double ai, aip, bi, bip; // Ai, Ai', Bi, Bi'
};
airyvalues airyall(double x); // overflow gives infinities, underflow 0

double airyai(double x);
double airyaip(double x);
// Bi(x), the language's BAIRY. `kind` chooses 0: Bi, 1: Bi', 2: Ai, 3: Ai'; another is out of range.
// Overflow: MAXPOS with the range warning.
double bairy(double x, double kind = 0);

// Modulus and phase by Abramowitz and Stegun 10.4.69: Ai(x) = modulus cos(theta), Bi(x) = modulus
// sin(theta), theta continuous in x with theta(0) = pi/3. x above 1 is an error; both are then 0.
void airyphase(double x, double* modulus, double* theta);
