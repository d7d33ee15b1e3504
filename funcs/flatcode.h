/* funcs/flatcode.h - trees compiled to flat code: the fast road to the same numbers.
 * Owns:    compiled programs, when they are made, used and dropped.
 * Callers: value() by itself; the solvers, who compile what they evaluate many times into one program.
 * Never:   gives another result, fault count or message than the walk of the tree: where it cannot, it walks.
 */
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

/* Several functions of the same arguments as one program. Subexpressions that they share are computed once.
 * Names of `symbols` take their values from the caller's vector instead of the symbol table. */
struct flatrequest {
    std::vector<int>
        functions; // user functions or initial values, in the order in which they are to be evaluated
    int nargs = 0; // arguments that each of them takes, all numbers
    std::vector<int> symbols; // scalars whose values come with the arguments
};

struct flatprogram;
struct flatdelete {
    void operator()(flatprogram* program) const;
};
using flatptr = std::unique_ptr<flatprogram, flatdelete>;

/* Never null. What cannot be compiled (string functions, values of differential equations, matrices as
 * arguments...) is walked by the same calls below, at the walk's speed; flatisfast tells which it is. A
 * program stays right when definitions or types change in between: it notices and compiles anew. */
flatptr flatcompile(const flatrequest& request);
bool flatisfast(const flatprogram& program);

/* One point. in: nargs arguments, then a value for each of `symbols`; out: a value for each function.
 * Evaluates in the order of `functions`; errors, warnings and floating-point faults are those of value().
 * Each function's entry keeps its value, as after value(). The entries of `symbols` may or may not have been
 * set to the values given: the caller sets them to what they shall hold when it has finished. Nothing is
 * allocated. */
void flatrun(flatprogram& program, const double* in, double* out);

/* Runs in a row, with nothing else evaluated, defined or assigned between them. flathold makes ready; false
 * where the program cannot be run so. Then flatheldin is where the caller puts the inputs of each run, one
 * behind the other (what it does not change stays), and flatheldout where a run leaves the value of function
 * k. flatheldrun is flatrun without what one run has settled for all, and the functions do not keep their
 * values; false: given up with nothing told, and flatrun is to do it. */
bool flathold(flatprogram& program);
double* flatheldin(flatprogram& program);
const double* flatheldout(const flatprogram& program, size_t k);
bool flatheldrun(flatprogram& program);

/* The same on FLATLANES points side by side: each input, and each result, is one number for each lane. Only
 * `used` lanes are wanted; the inputs of the others repeat those of the first. */
inline constexpr int FLATLANES = 8;
bool flatholdlanes(flatprogram& program);
double* flatlanesin(flatprogram& program);
const double* flatlanesout(const flatprogram& program, size_t k);
bool flatlanesrun(flatprogram& program, int used);

/* n points. in[k] is input k at the first point; its values follow each other at a distance of instride[k]
 * doubles (0: the same for all). out[k], outstride likewise. As n calls of flatrun in order. */
void flatrunblock(flatprogram& program, size_t n, const double* const* in, const size_t* instride,
                  double* const* out, const size_t* outstride);

/* The same, but false as soon as a block of rows cannot be run as flat code (a fault, a warning, an error, or
 * what cannot be compiled): nothing is told then, and what out holds is of no use. */
bool flattryblock(flatprogram& program, size_t n, const double* const* in, const size_t* instride,
                  double* const* out, const size_t* outstride);

/* Function f at the rows of a matrix: argument k of row i is x[i * ncols + k]; y[i * ystride] takes the
 * value. As calls of value() in order. f takes ncols scalars. */
void flatrows(int f, size_t nrows, size_t ncols, const double* x, double* y, size_t ystride);

void flatstart(); // drops every program that value() has made
