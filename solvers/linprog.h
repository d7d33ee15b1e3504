/* solvers/linprog.h - linear programs by the two-phase tableau simplex method.
 * Owns:    nothing. Callers: the builtin LINPROG and tests. Never: knows a symbol.
 * Method: G. B. Dantzig, Linear Programming and Extensions (1963); ties by Bland's rule once a program stalls
 * (R. G. Bland, Math. Oper. Res. 2 (1977) 103), so that none cycles. */
#pragma once

#include "solvers/fitsolve.h"

#include <vector>

enum lpoutcome { LPOPTIMAL, LPINFEASIBLE, LPUNBOUNDED };

/* Maximises cost . x over x >= 0 under the constraints (width = number of variables). x and the optimum are
 * set when an optimum was found. */
lpoutcome linprog(const std::vector<double>& cost, const solverconstraints& constraints,
                  std::vector<double>& x, double& optimum);

void simplexstart(); // the builtins LINPROG and NMSIMPLEX
