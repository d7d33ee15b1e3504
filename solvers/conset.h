/* solvers/conset.h - sets of linear constraints over scalar names.
 * Owns:    the CONSET record, its statement, its text and its block in save files; the solver's form of a
 * set. Callers: the statement CONSTRAINTS; FIT, MINIMIZE and LINPROG, who convert. Never:   solves.
 * Strictness is not kept: < and <= are one relation. */
#pragma once

#include "solvers/fitsolve.h"
#include "values/harray.h"

#include <string>
#include <vector>

inline constexpr int CONSETMOST = 40; // rows, and names, of one set

enum conrelation { CONEQUAL = 8, CONLESS = 9, CONGREATER = 12 };

// sum over j of coef(i, j) * vars[j]  rels[i]  rhs[i]
struct CONSET {
    int rows = 0, cols = 0;
    harrayptr coef;        // rows by cols
    std::vector<int> vars; // symbols, in order of first appearance
    std::vector<int> rels; // conrelation
    harrayptr rhs;         // rows by 1
};

const CONSET& consetof(int symidx); // of a symbol of type CONSETTYPE

void constraintsop();                                // the statement CONSTRAINTS name = { ... }
std::string constraints2text(int symidx, bool bare); // bare: as the editor takes it, without the indent

/* The solver's form. parms: the symbol of each parameter; a matrix parameter is negative and cannot be named
 * by a set. A name that is no parameter is taken at its present value; rows without a parameter are dropped.
 * Errors: "Non-Scalar parameter in constraints.", "bad relational operator in constraint". */
solverconstraints conset2solver(int symidx, const std::vector<int>& parms);
// A matrix of n coefficients, a type code (0, -1, +1) and the right side in each row. Other codes are an
// error.
solverconstraints conmat2solver(const harray* m);

void consetstart();
