#include "special/primes.h"

#include "special/expint.h"
#include "special/fault.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace {
__extension__ typedef unsigned __int128 wideint;

bool inrange(double n, double limit, const char* message) {
    if (n >= 1 && n < limit && n == std::trunc(n)) return true;
    spnote(SPERR, "%s", message);
    return false;
}

uint64_t mulmod(uint64_t a, uint64_t b, uint64_t n) { return uint64_t(wideint(a) * b % n); }

uint64_t powmod(uint64_t a, uint64_t e, uint64_t n) {
    uint64_t r = 1;
    for (; e; e >>= 1, a = mulmod(a, a, n))
        if (e & 1) r = mulmod(r, a, n);
    return r;
}

// The test of Miller and Rabin; these bases leave no doubt below 3.3e24 (J. Sorenson, J. Webster, Math. Comp.
// 86, 2017, 985). n odd, above 37.
bool isprime(uint64_t n) {
    uint64_t d = n - 1;
    int s = 0;
    for (; d % 2 == 0; d /= 2) s++;
    for (uint64_t base : {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37}) {
        uint64_t x = powmod(base, d, n);
        if (x == 1 || x == n - 1) continue;
        int k = 1;
        for (; k < s && x != n - 1; k++) x = mulmod(x, x, n);
        if (x != n - 1) return false;
    }
    return true;
}

/* A proper divisor of the composite odd n by Pollard's method in Brent's form (BIT 20, 1980, 176): the
 * differences are multiplied up, and gone through singly where their product holds all of n. */
uint64_t divisor(uint64_t n) {
    for (uint64_t c = 1;; c++) {
        uint64_t y = 2, x = y, saved = y, g = 1, q = 1;
        const auto step = [&](uint64_t v) { return uint64_t((wideint(v) * v + c) % n); };
        for (uint64_t r = 1; g == 1; r *= 2) {
            x = y;
            for (uint64_t k = 0; k < r; k++) y = step(y);
            for (uint64_t k = 0; k < r && g == 1; k += 128) {
                saved = y;
                for (uint64_t j = 0; j < std::min<uint64_t>(128, r - k); j++) {
                    y = step(y);
                    q = mulmod(q, x > y ? x - y : y - x, n);
                }
                g = std::gcd(q, n);
            }
        }
        while (g == n || g == 1) {
            saved = step(saved);
            g = std::gcd(x > saved ? x - saved : saved - x, n);
            if (g == n) break;
        }
        if (g != n) return g;
    }
}

void split(uint64_t n, std::vector<double>& out) {
    if (n == 1) return;
    if (n < 1000 * 1000 || isprime(n)) {
        out.push_back(double(n)); // no factor below 1000 is left
        return;
    }
    const uint64_t d = divisor(n);
    split(d, out);
    split(n / d, out);
}

// The odd primes up to root, root below 2^16.
std::vector<uint32_t> oddprimes(uint32_t root) {
    std::vector<bool> composite(root + 1);
    std::vector<uint32_t> primes;
    for (uint32_t p = 3; p <= root; p += 2) {
        if (composite[p]) continue;
        primes.push_back(p);
        for (uint32_t m = p * p; m <= root && m / p >= p; m += 2 * p) composite[m] = true;
    }
    return primes;
}

/* The odd numbers of [low, high), low odd, as flags: true for a prime. A segment of the sieve of
 * Eratosthenes; `primes` reach to the root of high. */
void sievesegment(uint64_t low, uint64_t high, const std::vector<uint32_t>& primes,
                  std::vector<char>& flags) {
    flags.assign((high - low + 1) / 2, 1);
    for (uint64_t p : primes) {
        if (p * p >= high) break;
        uint64_t m = std::max(p * p, (low + p - 1) / p * p);
        if (m % 2 == 0) m += p;
        for (uint64_t k = (m - low) / 2; k < flags.size(); k += p) flags[k] = 0;
    }
    if (low == 1) flags[0] = 0;
}

constexpr uint64_t segment = 1 << 16; // numbers in a segment: its flags stay in the nearest cache

uint32_t root(double x) { return uint32_t(std::sqrt(x)) + 1; }

/* The count of primes up to x < 2^32 by Legendre's recurrence on the counts of numbers up to each x/k that no
 * prime so far has struck out (after M. Deleglise and J. Rivat, Math. Comp. 65, 1996, 235, section 2). */
double countprimes(uint64_t x) {
    if (x < 2) return 0;
    const uint64_t r = uint64_t(std::sqrt(double(x)));
    std::vector<uint32_t> small(r + 1), large(r + 1); // counts up to k and up to x/k
    for (uint64_t k = 1; k <= r; k++) {
        small[k] = uint32_t(k - 1);
        large[k] = uint32_t(x / k - 1);
    }
    for (uint64_t p = 2; p * p <= x; p++) {
        if (small[p] == small[p - 1]) continue;
        const uint32_t before = small[p - 1];
        const uint64_t most = std::min(r, x / (p * p)), xp = x / p;
        const uint64_t direct = std::min(most, r / p);
        for (uint64_t k = 1; k <= direct; k++) large[k] -= large[k * p] - before;
        for (uint64_t k = direct + 1; k <= most; k++) large[k] -= small[xp / k] - before;
        for (uint64_t k = r; k >= p * p; k--) small[k] -= small[k / p] - before;
    }
    return large[1];
}

// The number x with li(x) - li(sqrt(x))/2 = n, which is near the n-th prime
double primeguess(double n) {
    double x = n * std::log(n);
    for (int k = 0; k < 20; k++) {
        const double step = (logint(x) - 0.5 * logint(std::sqrt(x)) - n) * std::log(x);
        x -= step;
        if (std::fabs(step) < 1) break;
    }
    return std::floor(x);
}

// From the count of primes up to x to the n-th prime, by segments upwards or downwards
double walktoprime(uint64_t x, double count, double n) {
    const std::vector<uint32_t> primes = oddprimes(root(1.1 * double(x) + 1e6)); // the walk is far shorter
    std::vector<char> flags;
    uint64_t edge = (x + 1) | 1; // odd numbers below it are counted
    while (count < n) {
        sievesegment(edge, edge + segment, primes, flags);
        for (size_t k = 0; k < flags.size(); k++)
            if (flags[k] && ++count == n) return double(edge + 2 * k);
        edge += segment;
    }
    for (;;) { // the n-th prime is below the edge
        const uint64_t low = edge > segment ? edge - segment : 1;
        sievesegment(low, edge, primes, flags);
        for (size_t k = flags.size(); k-- > 0;)
            if (flags[k] && count-- == n) return double(low + 2 * k);
        edge = low;
    }
}
} // namespace

std::vector<double> factorfn(double n) {
    std::vector<double> out;
    if (!inrange(n, 0x1p53 - 1, "FACTOR: argument must be a positive integer < 2^53 -1")) return out;
    uint64_t rest = uint64_t(n);
    const auto strike = [&](uint64_t p) {
        for (; rest % p == 0; rest /= p) out.push_back(double(p));
    };
    strike(2);
    for (uint64_t p = 3; p < 1000 && p * p <= rest; p += 2) strike(p);
    split(rest, out);
    std::sort(out.begin(), out.end());
    return out;
}

double primecount(double n) {
    if (!inrange(n, 0x1p32 - 1, "PRIMES: argument must be a positive integer less than 2^32-1")) return 0;
    return countprimes(uint64_t(n));
}

void primesto(double n, double* out) {
    if (!(n >= 2 && n < 0x1p32)) return;
    const uint64_t end = uint64_t(n) + 1;
    const std::vector<uint32_t> primes = oddprimes(root(n));
    std::vector<char> flags;
    *out++ = 2;
    for (uint64_t low = 1; low < end; low += segment) {
        sievesegment(low, std::min(low + segment, end), primes, flags);
        for (size_t k = 0; k < flags.size(); k++)
            if (flags[k]) *out++ = double(low + 2 * k);
    }
}

double nprime(double n) {
    if (!inrange(n, 0x1p27 - 1, "NPRIME: argument must be a positive integer less than 2^27-1")) return 0;
    constexpr double first[] = {0, 2, 3, 5, 7, 11};
    if (n <= 5) return first[int(n)];
    const double guess = primeguess(n);
    return walktoprime(uint64_t(guess), countprimes(uint64_t(guess)), n);
}
