#include "special/combin.h"

#include "special/beta.h"
#include "special/elementary.h"
#include "special/gamma.h"
#include "special/range.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace {
__extension__ typedef unsigned __int128 wideint;

bool iscount(double n) { return n >= 0 && n == std::trunc(n); }

// exact = exact * num / den, a whole number; false and unchanged where that does not fit
bool advance(uint64_t& exact, uint64_t num, uint64_t den) {
    const wideint next = wideint(exact) * num / den;
    if (next >> 64) return false;
    exact = uint64_t(next);
    return true;
}

/* n over k for whole 0 <= k <= n: step by step in whole numbers while they fit, then in doubles, whose
 * rounding errors grow with the root of the steps. */
double wholebinomial(double n, double k) {
    k = std::fmin(k, n - k);
    if (k < 0) return 0;
    if (k > 1100) return HUGE_VAL;
    uint64_t exact = 1;
    double i = 1;
    for (; i <= k && n < 1e15 && advance(exact, uint64_t(n - k + i), uint64_t(i)); i++) {}
    double r = double(exact);
    for (; i <= k; i++) r = r / i * (n - k + i);
    return r;
}

// n(n-1)..(n-k+1)/k! for any n and whole k >= 0
double factorproduct(double n, double k) {
    double r = 1;
    for (double i = 0; i < k && r != 0 && std::isfinite(r); i++) r *= (n - i) / (i + 1);
    return r;
}

// B(a,b) or its reciprocal (power -1), over a divisor; a, b > 0.
double betaover(double a, double b, int power, double divisor) {
    const double ln = power * logbeta(a, b);
    if (std::fabs(ln) < 600) return (power > 0 ? betafn(a, b) : 1 / betafn(a, b)) / divisor;
    return std::copysign(std::exp(ln - std::log(std::fabs(divisor))), divisor);
}

// Gamma(n+1)/(Gamma(k+1) Gamma(n-k+1)), k not whole, n no negative whole number: each gamma function of a
// negative argument is reflected, and the rest is a beta function.
double realbinomial(double n, double k) {
    if (k > -1 && n - k > -1) return betaover(n - k + 1, k + 1, -1, n + 1);
    const double sk = sinpi(k), snk = sinpisum(n, -k), sn = sinpi(n);
    if (n > -1) return k < 0 ? -sk * betaover(n + 1, -k, 1, PI) : -snk * betaover(n + 1, k - n, 1, PI);
    if (k > -1) return snk / sn * betaover(-n, k + 1, -1, k - n);
    if (n - k > -1) return sk / sn * betaover(-n, n - k + 1, -1, -k);
    return -sk * snk / sn * betaover(-k, k - n, 1, PI);
}

double binomialopen(double n, double k) {
    const bool whole = k == std::trunc(k);
    if (whole && k < 0) return 0;
    if (n == std::trunc(n) && whole) {
        if (n >= 0) return wholebinomial(n, k);
        const double r = wholebinomial(k - n - 1, k); // DLMF 26.3.9
        return std::fmod(k, 2) == 0 ? r : -r;
    }
    if (whole && k <= 1000) return factorproduct(n, k);
    if (std::isnan(n) || std::isnan(k) || (n < 0 && n == std::trunc(n))) return std::nan("");
    return realbinomial(n, k);
}

/* The numbers of order n, n-m by the second-order Eulerian numbers e (R. Graham, D. Knuth, O. Patashnik,
 * Concrete Mathematics, 1994, (6.43), (6.44)): the sum of e(m,i) times a binomial coefficient over 2m; for m
 * small beside n, where the recurrence is long. */
double stirlingbyeulerian(double n, int m, bool first) {
    std::vector<double> e(m + 1);
    e[0] = 1;
    for (int j = 2; j <= m; j++)
        for (int i = j - 1; i >= 1; i--) e[i] = (i + 1) * e[i] + (2 * j - 1 - i) * e[i - 1];
    double sum = 0;
    for (int i = 0; i < m; i++) sum += e[i] * wholebinomial(first ? n + i : n + m - 1 - i, 2 * m);
    return sum;
}

/* The unsigned numbers of order n, k by the recurrence along t[i], the number of order j+i, j: all its terms
 * are positive. */
double stirlingopen(double n, double k, bool first) {
    if (k > n || (k == 0 && n > 0)) return 0;
    const double m = n - k;
    if (m == 0 || (k == 1 && !first)) return 1;
    if (m > 1100) return HUGE_VAL; // at least 2^m
    if (k * m > 1e6) return m > 170 ? HUGE_VAL : stirlingbyeulerian(n, int(m), first);
    std::vector<double> t(size_t(m) + 1);
    t[0] = 1;
    for (double j = 1; j <= k; j++)
        for (size_t i = 1; i < t.size(); i++) t[i] += (first ? j + i - 1 : j) * t[i - 1];
    return t.back();
}

} // namespace

double fact(double x) {
    if (!(x >= 0) && !(x < 0 && x != std::trunc(x))) return outofrange("FACT", 0);
    if (iscount(x)) return x > 170 ? cappedorpole("FACT", HUGE_VAL) : factorials[int(x)];
    return x > 170.6 ? cappedorpole("FACT", HUGE_VAL) : gammafn(x + 1);
}

double bincoef(double n, double k) { return cappedorpole("BINCOEF", binomialopen(n, k)); }

double mulcoef(const double* k, int n) {
    double sum = 0, r = 1;
    for (int i = 0; i < n; i++) {
        if (!iscount(k[i])) return outofrange("MULCOEF", 0);
        sum += k[i];
        r *= binomialopen(sum, k[i]);
    }
    return cappedorpole("MULCOEF", r);
}

double stirl1(double n, double k) {
    if (!iscount(n) || !iscount(k)) return outofrange("STIRL1", 0);
    const double s = stirlingopen(n, k, true);
    return cappedorpole("STIRL1", std::fmod(n - k, 2) == 0 ? s : -s);
}

double stirl2(double n, double k) {
    if (!iscount(n) || !iscount(k)) return outofrange("STIRL2", 0);
    return cappedorpole("STIRL2", stirlingopen(n, k, false));
}

double catnum(double n) {
    if (!iscount(n)) return outofrange("CATNUM", 0);
    if (n > 1000) return cappedorpole("CATNUM", HUGE_VAL);
    uint64_t exact = 1;
    double k = 1;
    while (k <= n && advance(exact, uint64_t(4 * k - 2), uint64_t(k + 1))) k++;
    double c = double(exact);
    for (; k <= n; k++) c = c / (k + 1) * (4 * k - 2);
    return cappedorpole("CATNUM", c);
}

// The sign is that of n less the number of cycles.
double parity(const double* p, int n) {
    std::vector<bool> seen(size_t(n) + 1);
    for (int i = 0; i < n; i++) {
        if (!(p[i] >= 1 && p[i] <= n) || p[i] != std::trunc(p[i]) || seen[size_t(p[i])])
            return outofrange("PARITY", 0);
        seen[size_t(p[i])] = true;
    }
    int even = n;
    for (int i = 1; i <= n; i++) {
        if (!seen[i]) continue;
        even--;
        for (int k = i; seen[k]; k = int(p[k - 1])) seen[k] = false;
    }
    return even % 2 == 0 ? 1 : -1;
}
