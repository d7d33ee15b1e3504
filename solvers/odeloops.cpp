#include "solvers/odeloops.h"

#include "solvers/odestep.h"

#include <cfloat>
#include <cstdint>

namespace {

#define PROCESSORBODY "solvers/odeloopsrun.h"
#include "funcs/eachprocessor.h"

} // namespace

const odeloops& odeloopsbest() {
    static const odeloops& best = bestprocessor(anyprocessor::loops, avx2::loops, avx512::loops);
    return best;
}
