/* solvers/nmsimplex.h - a minimum without derivatives, by a polytope that walks and shrinks.
 * Owns:    nothing. Callers: the builtin NMSIMPLEX and tests. Never: knows a symbol.
 * Method: J. A. Nelder and R. Mead, Computer J. 7 (1965) 308. */
#pragma once

#include <vector>

struct simplexswitches {
    long maxiter = 1000;      // MAXITER: function evaluations
    int report = 0;           // REPORTSW: 1 start, 2 values, 4 points, 8 each round, 16 moves
    double tolerance = 3e-16; // TOLSOS
};

/* points: n + 1 vertices of n coordinates, row by row; the best stands first at the end, best takes its
 * value. Returns the number of evaluations. */
long nmsimplex(double (*f)(void* context, const double* x), void* context, int n, std::vector<double>& points,
               const simplexswitches& sw, double& best);
