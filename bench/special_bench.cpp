// Time of a million calls of special functions, against the C library where it has the like:
// build the target special_bench, run it; user seconds, best of five, and nanoseconds a call.
#include "special/bessel.h"
#include "special/beta.h"
#include "special/gamma.h"

#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>
#include <vector>

namespace {
constexpr int calls = 1000000;

std::vector<double> uniform(double low, double high) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> u(low, high);
    std::vector<double> x(calls);
    for (double& v : x) v = u(random);
    return x;
}

void measure(const char* name, double low, double high, const std::function<double(double)>& call) {
    const std::vector<double> x = uniform(low, high);
    double best = HUGE_VAL, sum = 0;
    for (int run = 0; run < 5; run++) {
        const clock_t start = clock();
        for (double v : x) sum += call(v);
        best = std::fmin(best, double(clock() - start) / CLOCKS_PER_SEC);
    }
    printf("%-28s %8.4f s  %6.1f ns   (%g)\n", name, best, best * 1e9 / calls, sum);
}
} // namespace

int main() {
    measure("empty loop", 0, 1, [](double x) { return x; });
    measure("GAMMA, 0..10", 0.01, 10, gammafn);
    measure("tgamma, 0..10", 0.01, 10, [](double x) { return std::tgamma(x); });
    measure("GAMMA, 0..30", 0.01, 30, gammafn);
    measure("tgamma, 0..30", 0.01, 30, [](double x) { return std::tgamma(x); });
    measure("GAMMA, -10..10", -10, 10, gammafn);
    measure("GAMMA, 10..170", 10, 170, gammafn);
    measure("LOGGAMMA, 0..100", 0.01, 100, loggamma);
    measure("lgamma, 0..100", 0.01, 100, [](double x) { return std::lgamma(x); });
    measure("IBETA(2,3,x)", 0, 1, [](double x) { return ibeta(2, 3, x); });
    measure("IBETA(2.5,0.7,x)", 0, 1, [](double x) { return ibeta(2.5, 0.7, x); });
    measure("IBETA(20,30,x)", 0, 1, [](double x) { return ibeta(20, 30, x); });
    measure("IBETA(500,300,x)", 0, 1, [](double x) { return ibeta(500, 300, x); });
    measure("BESSJ(0,x), 0..50", 0, 50, [](double x) { return bessj(0, x); });
    measure("BESSJ(1,x), 0..50", 0, 50, [](double x) { return bessj(1, x); });
}
