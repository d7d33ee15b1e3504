/* Flat code, many points at a time: each instruction is a loop over the rows of a block. Where rows take
 * different branches they are sorted into those that do and those that do not, each branch runs on its own,
 * and both go on together behind it. */
#include "funcs/flatimpl.h"

#include "interp/base/fpfault.h"
#include "values/harray.h"

#include <algorithm>
#include <cmath>

namespace {

namespace anyprocessor {
#include "funcs/flatblockrun.h"
} // namespace anyprocessor

#pragma GCC push_options
#pragma GCC target("avx2")
namespace avx2 {
#include "funcs/flatblockrun.h"
} // namespace avx2
#pragma GCC pop_options

#pragma GCC push_options
#pragma GCC target("avx512f")
namespace avx512 {
#include "funcs/flatblockrun.h"
} // namespace avx512
#pragma GCC pop_options

using runner = flatresult (*)(const flatunit& unit, const flatroutine& routine, int from, int to,
                              const uint8_t* vary, double* frame, double* block, uint16_t* order, int n);

runner bestrunner() {
    if (__builtin_cpu_supports("avx512f")) return avx512::run;
    if (__builtin_cpu_supports("avx2")) return avx2::run;
    return anyprocessor::run;
}

} // namespace

flatresult flatexecuteblock(const flatunit& unit, const flatroutine& routine, int from, int to,
                            const uint8_t* vary, double* frame, double* block, uint16_t* order, int n) {
    static const runner best = bestrunner();
    return best(unit, routine, from, to, vary, frame, block, order, n);
}
