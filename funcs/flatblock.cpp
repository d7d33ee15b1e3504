/* Flat code, many points at a time: each instruction is a loop over the rows of a block. Where rows take
 * different branches they are sorted into those that do and those that do not, each branch runs on its own,
 * and both go on together behind it. */
#include "funcs/flatimpl.h"

#include "interp/base/fpfault.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>

namespace {

#define PROCESSORBODY "funcs/flatblockrun.h"
#include "funcs/eachprocessor.h"

using runner = flatresult (*)(const flatunit& unit, const flatroutine& routine, int from, int to,
                              const uint8_t* vary, double* frame, double* block, uint16_t* order, int n);

} // namespace

flatresult flatexecuteblock(const flatunit& unit, const flatroutine& routine, int from, int to,
                            const uint8_t* vary, double* frame, double* block, uint16_t* order, int n) {
    static const runner best = bestprocessor<runner>(anyprocessor::run, avx2::run, avx512::run);
    return best(unit, routine, from, to, vary, frame, block, order, n);
}
