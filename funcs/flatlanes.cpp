/* Flat code on FLATLANES points side by side: a register is one lane for each point, an instruction a few
 * vector operations. Right-hand sides of differential equations have so few points, many times. */
#include "funcs/flatimpl.h"

#include "interp/base/fpfault.h"
#include "values/harray.h"

#include <cmath>

namespace {

#define PROCESSORBODY "funcs/flatlanesrun.h"
#include "funcs/eachprocessor.h"

using runner = flatresult (*)(const flatunit& unit, flatlane* frame, int used);

} // namespace

flatresult flatexecutelanes(const flatunit& unit, flatlane* frame, int used) {
    static const runner best = bestprocessor<runner>(anyprocessor::run, avx2::run, avx512::run);
    return best(unit, frame, used);
}
