/* funcs/ran.h - the uniform generator.
 * Owns:    the state of the one stream of random numbers.
 * Callers: the random variates, MINIMIZE, clusters and plane geometry.
 * Never:   depends on the time or the place: a run without a seed always draws the same numbers. */
#pragma once

/* The combined multiplicative congruential generator of P. L'Ecuyer, "Efficient and portable combined random
 * number generators", Communications of the ACM 31 (1988), with Schrage's decomposition. The next number, in
 * (0, 1). x < 0 begins the stream again first; x > 0 seeds it with the bits of x. */
double ran(double x);
void ranreset(); // the state at the start of a session
