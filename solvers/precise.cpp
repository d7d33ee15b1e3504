#include "solvers/precise.h"

#include "funcs/vectorloops.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LEASTPIVOT = 1e-28;

// w x and what its roundings lost; whether they lost anything.
bool weigh(size_t count, const double* w, const double* x, double* weighted, double* lost) {
    bool any = false;
    for (size_t i = 0; i < count; i++) {
        const dd p = ddprod(w[i], x[i]);
        weighted[i] = p.hi;
        lost[i] = p.lo;
        any |= p.lo != 0;
    }
    return any;
}

void addto(dd& total, size_t count, const double* weighted, const double* lost, bool any, const double* x) {
    double sum[2] = {total.hi, total.lo};
    dotproduct2(count, weighted, x, sum);
    total = dd(sum[0], sum[1]);
    if (any) total += dd(dotproduct(count, lost, x));
}

// b := (L D L')^-1 b
void solvescaled(const precisefactor& f, std::vector<dd>& b) {
    const size_t n = size_t(f.n);
    for (size_t i = 0; i < n; i++)
        for (size_t k = 0; k < i; k++) b[i] -= f.l[i * n + k] * b[k];
    for (size_t i = 0; i < n; i++) b[i] = f.d[i].hi > 0 ? b[i] / f.d[i] : dd(0);
    for (size_t i = n; i-- > 0;)
        for (size_t k = i + 1; k < n; k++) b[i] -= f.l[k * n + i] * b[k];
}

} // namespace

precisenormal precisesums(const fitrun& r) {
    const size_t n = size_t(r.n), m = size_t(r.m);
    precisenormal normal{r.n, std::vector<dd>(n * n), std::vector<dd>(n)};
    double resid[BLOCK], weighted[BLOCK], lost[BLOCK];
    for (size_t from = 0; from < m; from += BLOCK) {
        const size_t count = std::min(BLOCK, m - from);
        for (size_t i = 0; i < count; i++) resid[i] = r.y[from + i] - r.fbest[from + i];
        for (size_t j = 0; j < n; j++) {
            const double* column = r.jac + j * m + from;
            const bool any = weigh(count, r.w + from, column, weighted, lost);
            addto(normal.gradient[j], count, weighted, lost, any, resid);
            for (size_t k = j; k < n; k++)
                addto(normal.a[j * n + k], count, weighted, lost, any, r.jac + k * m + from);
        }
    }
    return normal;
}

precisenormal precisesums(const fitrun& r, const dd* resid, const dd* jac) {
    const size_t n = size_t(r.n), m = size_t(r.m);
    precisenormal normal{r.n, std::vector<dd>(n * n), std::vector<dd>(n)};
    std::vector<dd> weighted(m);
    for (size_t j = 0; j < n; j++) {
        for (size_t i = 0; i < m; i++) {
            weighted[i] = jac[j * m + i] * r.w[i];
            normal.gradient[j] += weighted[i] * resid[i];
        }
        for (size_t k = j; k < n; k++)
            for (size_t i = 0; i < m; i++) normal.a[j * n + k] += weighted[i] * jac[k * m + i];
    }
    return normal;
}

precisefactor precisefactors(const precisenormal& normal, const std::vector<double>& added) {
    const size_t n = size_t(normal.n);
    precisefactor f{normal.n, std::vector<dd>(n * n), std::vector<dd>(n), std::vector<double>(n, 0)};
    for (size_t j = 0; j < n; j++) {
        const double diagonal = normal.a[j * n + j].hi + (added.empty() ? 0 : added[j]);
        if (diagonal > 0) f.scale[j] = std::exp2(-std::round(std::log2(diagonal) / 2));
    }
    const auto entry = [&](size_t i, size_t j) { // i >= j, scaled
        dd x = normal.a[j * n + i];
        if (i == j && !added.empty()) x += dd(added[j]);
        return x * f.scale[i] * f.scale[j];
    };
    for (size_t j = 0; j < n; j++) {
        if (f.scale[j] == 0) continue;
        dd pivot = entry(j, j);
        for (size_t k = 0; k < j; k++) pivot -= f.l[j * n + k] * f.l[j * n + k] * f.d[k];
        f.d[j] = pivot.hi > LEASTPIVOT ? pivot : dd(LEASTPIVOT);
        for (size_t i = j + 1; i < n; i++) {
            dd x = entry(i, j);
            for (size_t k = 0; k < j; k++) x -= f.l[i * n + k] * f.l[j * n + k] * f.d[k];
            f.l[i * n + j] = x / f.d[j];
        }
    }
    return f;
}

std::vector<double> precisesolve(const precisefactor& f, const std::vector<dd>& b) {
    std::vector<dd> x(b);
    for (size_t j = 0; j < x.size(); j++) x[j] = x[j] * f.scale[j];
    solvescaled(f, x);
    std::vector<double> result(x.size());
    for (size_t j = 0; j < x.size(); j++) result[j] = todouble(x[j] * f.scale[j]);
    return result;
}

std::vector<double> preciseinverse(const precisefactor& f) {
    const size_t n = size_t(f.n);
    std::vector<double> inverse(n * n);
    std::vector<dd> e(n);
    for (size_t c = 0; c < n; c++) {
        std::fill(e.begin(), e.end(), dd(0));
        e[c] = dd(f.scale[c]);
        solvescaled(f, e);
        for (size_t i = 0; i < n; i++) inverse[i * n + c] = todouble(e[i] * f.scale[i]);
    }
    return inverse;
}
