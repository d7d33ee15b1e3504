/* funcs/cellkernels.h - each operator as a loop over a run of cells.
 * Owns:    the loops.
 * Callers: elementwise.cpp and pending.cpp, which own blocks, shapes and faults.
 * Never:   repairs a result, but for the power, which does so cell by cell. */
#pragma once

#include <cfenv>
#include <cstddef>

// r may be a or b, but may not overlap them otherwise.
using cellkernel = void (*)(double* r, const double* a, const double* b, size_t n);

cellkernel cellkernelof(int op); // op: a token number, as scalarop takes it
bool cellopfaults(int op);       // may leave results that are not finite: the flags below tell whether it did
inline constexpr int CELLFAULTS = FE_OVERFLOW | FE_DIVBYZERO | FE_INVALID;
