/* solvers/fitbind.h - a FIT's functions and data as a model of numbers.
 * Owns:    observations, parameter slots, compiled programs of one fit.
 * Callers: solvers/fit*.cpp alone.
 * Never:   iterates or reports. */
#pragma once

#include "funcs/flatcode.h"
#include "solvers/fitsolve.h"
#include "solvers/odeensemble.h"

#include <vector>

struct fitpair {
    int data = 0, func = 0, weight = 0; // symbols; weight 0: none
};

struct fitslot {
    int symbol = 0;
    int element = 0; // 0: the scalar itself; else the cell of the matrix
    int parm = 0;    // number of the parameter in the statement
};

// One row of all pairs that depend on the solution, in the order of time.
struct mergedrow {
    double time, y, w;
    int pair, row; // row of the pair's data, from 1
};

struct fitbinding {
    std::vector<fitpair> pairs;
    std::vector<int> parms; // symbols as the statement names them
    std::vector<fitslot> slots;
    bool hasmatrix = false, symbolic = false;

    odesolve ode; // system without states: no differential equation
    std::vector<mergedrow> merged;
    std::vector<double> times;
    harrayptr odeout;
    odeensemble ensemble; // for differences by the parameters

    size_t m = 0;     // observations: the merged rows, then the plain pairs
    harrayptr memory; // of the next two
    double *y, *w0;   // observed values and user weights
    // of each plain pair: its first observation and their count; a model may make its data matrix grow
    std::vector<size_t> offset, rows;
    size_t firstrows = 0;           // of the first pair's data
    std::vector<harrayptr> columns; // of a plain pair's arguments, one behind the other
    // by pair: the value, the derivatives, both; null for pairs that depend on the solution
    std::vector<flatptr> values, derivs, both;
    std::vector<double> lastp;   // where the symbols stand
    std::vector<int> derivfuncs; // pair by pair, parameter by parameter
};

bool odepair(const fitbinding& b, size_t k);
void fitbind(fitbinding& b); // parms and pairs are set; errors as the statement tells
fitmodel fitmodelof(fitbinding& b);
std::vector<double> fitparameters(const fitbinding& b);
void fitstore(const fitbinding& b, const double* p); // p to the symbols
