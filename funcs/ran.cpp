#include "funcs/ran.h"

#include "funcs/builtin.h"
#include "funcs/rows.h"
#include "interp/base/fpfault.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <iterator>

namespace {

struct ranstream {
    int32_t modulus, multiplier, quotient, remainder;
    int32_t start;
};
constexpr ranstream FIRST = {2147483563, 40014, 53668, 12211, 29438573};
constexpr ranstream SECOND = {2147483399, 40692, 52774, 3791, 8703987};
constexpr int32_t LARGESTSEED = 2147483562;

struct ranstate {
    int32_t first = FIRST.start, second = SECOND.start;
};
ranstate state;

int32_t seedof(uint32_t half) {
    const uint32_t mixed = uint32_t(std::llabs(int64_t(int32_t(half)))) ^ 0x55555555u;
    return int32_t(std::clamp(int64_t(int32_t(mixed)), int64_t(1), int64_t(LARGESTSEED)));
}

void advance(int32_t& s, const ranstream& stream) {
    s = s % stream.quotient * stream.multiplier - s / stream.quotient * stream.remainder;
    if (s < 0) s += stream.modulus;
}

// RAN(X, low, high)
double uniform(double x, double low, double high) { return fpcheck(low + fpcheck(high - low) * ran(x)); }

constexpr scalarrow rows[] = {{-25, uniform, IMPURE}};

} // namespace

void ranreset() { state = ranstate{}; }
void ranrows() {
    ranreset();
    builtinadd(rows, int(std::size(rows)));
}

double ran(double x) {
    if (x < 0) ranreset();
    if (x > 0) {
        const uint64_t bits = std::bit_cast<uint64_t>(x);
        state.first = seedof(uint32_t(bits >> 32));
        state.second = seedof(uint32_t(bits));
    }
    advance(state.first, FIRST);
    advance(state.second, SECOND);
    int32_t z = state.first - state.second;
    if (z < 1) z += FIRST.modulus - 1;
    return z * 4.656613e-10;
}
