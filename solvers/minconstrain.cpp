// The active set of a minimisation: null-space basis, multipliers, steps to the next row, the first feasible
// point.
#include "interp/base/machine.h"
#include "interp/base/report.h"
#include "solvers/linprog.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double MARGIN = 1e-9; // kept between the line search and a row

const double* coefs(const minrun& r, int i) { return &r.cons.coef[size_t(i) * r.n]; }

double rowsize(const minrun& r, int i) {
    double size = std::fabs(r.cons.rhs[size_t(i)]);
    for (int j = 0; j < r.n; j++) size = std::max(size, std::fabs(coefs(r, i)[j]));
    return size;
}

double rowlength(const minrun& r, int i) {
    double sum = 0;
    for (int j = 0; j < r.n; j++) sum += coefs(r, i)[j] * coefs(r, i)[j];
    return std::sqrt(sum);
}

bool isactive(const minrun& r, int i) {
    return std::find(r.active.begin(), r.active.end(), i) != r.active.end();
}

// Applies the reflection I - v v' / beta to the columns of Z from k on.
void reflectbasis(minrun& r, size_t k, const std::vector<double>& v, double beta) {
    const size_t n = size_t(r.n);
    for (size_t i = 0; i < n; i++) {
        double sum = 0;
        for (size_t j = k; j < n; j++) sum += r.Z[i * n + j] * v[j];
        for (size_t j = k; j < n; j++) r.Z[i * n + j] -= sum / beta * v[j];
    }
}

// Adds active row k to the basis; false when it depends on the rows before it.
bool orthrow(minrun& r, size_t k) {
    const size_t n = size_t(r.n);
    const double* a = coefs(r, r.active[k]);
    std::vector<double> v(n, 0); // the row in the basis Z
    for (size_t j = 0; j < n; j++)
        for (size_t i = 0; i < n; i++) v[j] += a[i] * r.Z[i * n + j];
    double head = 0, tail = 0;
    for (size_t j = 0; j < n; j++) (j < k ? head : tail) += v[j] * v[j];
    const bool independent =
        k == 0 ? tail > 0 : double(n - k) * head * r.sw.gtol * r.sw.gtol < double(k) * tail;
    if (!independent) return false;
    const double length = v[k] >= 0 ? std::sqrt(tail) : -std::sqrt(tail);
    for (size_t j = 0; j < k; j++) r.R[k * n + j] = v[j];
    r.R[k * n + k] = -length;
    v[k] += length;
    reflectbasis(r, k, v, length * v[k]);
    return true;
}

// One pass towards the nearest point on the active rows.
void projectactive(minrun& r) {
    const size_t n = size_t(r.n), m = r.active.size();
    std::vector<double> y(m);
    for (size_t k = 0; k < m; k++) { // R y = residuals, row by row
        double sum = -rowvalue(r, r.active[k], r.x);
        for (size_t j = 0; j < k; j++) sum -= r.R[k * n + j] * y[j];
        y[k] = sum / r.R[k * n + k];
    }
    for (size_t i = 0; i < n; i++)
        for (size_t k = 0; k < m; k++) r.x[i] += r.Z[i * n + k] * y[k];
}

double distance(void* context, const double* x) {
    const std::vector<double>& from = *static_cast<std::vector<double>*>(context);
    double sum = 0;
    for (size_t j = 0; j < from.size(); j++) sum += (x[j] - from[j]) * (x[j] - from[j]);
    return sum;
}

void distancegradient(void* context, const double* x, double* g) {
    const std::vector<double>& from = *static_cast<std::vector<double>*>(context);
    for (size_t j = 0; j < from.size(); j++) g[j] = 2 * (x[j] - from[j]);
}

/* Phase one: a linear program tells whether there is a feasible point, the smallest move in the sum of its
 * parts; that point is a corner, where functions are apt to be stationary, so the nearest one is taken. */
bool nearestfeasible(minrun& r) {
    const size_t n = size_t(r.n);
    solverconstraints rows;
    rows.width = int(2 * n);
    rows.count = r.cons.count;
    for (int i = 0; i < r.cons.count; i++) {
        for (size_t j = 0; j < n; j++) rows.coef.push_back(coefs(r, i)[j]);
        for (size_t j = 0; j < n; j++) rows.coef.push_back(-coefs(r, i)[j]);
        rows.type.push_back(r.cons.type[size_t(i)]);
        rows.rhs.push_back(-rowvalue(r, i, r.x));
    }
    std::vector<double> move, from = r.x;
    double cost;
    if (linprog(std::vector<double>(2 * n, -1.0), rows, move, cost) != LPOPTIMAL) return false;
    for (size_t j = 0; j < n; j++) r.x[j] += move[j] - move[n + j];
    minswitches quiet;
    quiet.reptsw = 0;
    const minproblem nearest{r.n, &from, distance, distancegradient};
    r.x = minsolve(nearest, quiet, r.cons, r.x).x;
    return true;
}

// The worst distance of an active row, relative to its right side.
double worstmiss(const minrun& r) {
    double worst = 0;
    for (int i : r.active)
        worst =
            std::max(worst, std::fabs(rowvalue(r, i, r.x)) / std::max(std::fabs(r.cons.rhs[size_t(i)]), 1.0));
    return worst;
}

bool meets(const minrun& r, int i) {
    const double v = rowvalue(r, i, r.x), tolerance = 1e-8 * std::max(rowsize(r, i), 1.0);
    return r.cons.type[size_t(i)] == 0 ? std::fabs(v) <= tolerance : v >= -tolerance;
}

} // namespace

double rowvalue(const minrun& r, int i, const std::vector<double>& x) {
    double sum = -r.cons.rhs[size_t(i)];
    for (int j = 0; j < r.n; j++) sum += coefs(r, i)[j] * x[size_t(j)];
    return sum;
}

bool minbasis(minrun& r) {
    const size_t n = size_t(r.n);
    r.Z.assign(n * n, 0);
    r.R.assign(n * n, 0);
    for (size_t i = 0; i < n; i++) r.Z[i * n + i] = 1;
    for (size_t k = 0; k < r.active.size(); k++)
        if (!orthrow(r, k)) return false;
    return true;
}

void tofree(const minrun& r, const std::vector<double>& full, std::vector<double>& free) {
    const size_t n = size_t(r.n), m = r.active.size();
    if (m == 0) {
        free = full;
        return;
    }
    free.assign(n - m, 0);
    for (size_t i = 0; i < n; i++)
        for (size_t j = m; j < n; j++) free[j - m] += r.Z[i * n + j] * full[i];
}

void tofull(const minrun& r, const std::vector<double>& free, std::vector<double>& full) {
    const size_t n = size_t(r.n), m = r.active.size();
    if (m == 0) {
        full = free;
        return;
    }
    full.assign(n, 0);
    for (size_t i = 0; i < n; i++)
        for (size_t j = m; j < n; j++) full[i] += r.Z[i * n + j] * free[j - m];
}

bool minadd(minrun& r, int row) {
    if (isactive(r, row) || int(r.active.size()) >= r.n) return false;
    r.active.push_back(row);
    if (!minbasis(r)) {
        r.active.pop_back();
        minbasis(r);
        return false;
    }
    if (reports(r, 16)) tarnprint("\n---add constraint %d\n", row + 1);
    r.changes++;
    std::fill(r.depends.begin(), r.depends.end(), 0);
    minrelax(r);
    return true;
}

double minleast(const minrun& r, int& place) {
    const size_t n = size_t(r.n), m = r.active.size();
    std::vector<double> lambda(m);
    for (size_t k = m; k-- > 0;) { // the active rows are R times the first columns of Z
        double sum = 0;
        for (size_t i = 0; i < n; i++) sum += r.Z[i * n + k] * r.g[i];
        for (size_t j = k + 1; j < m; j++) sum -= r.R[j * n + k] * lambda[j];
        lambda[k] = sum / r.R[k * n + k];
    }
    // rows that go and come at one point: the lowest number, so that they do not go round
    const bool circling = r.changes > 2 * (r.n + r.cons.count);
    place = -1;
    double least = 0;
    for (size_t k = 0; k < m; k++) {
        const int row = r.active[k];
        if (r.cons.type[size_t(row)] == 0 || !(lambda[k] * rowlength(r, row) < -0.01 * r.sw.gtol)) continue;
        if (place < 0 || (circling ? row < r.active[size_t(place)] : lambda[k] < least)) {
            least = lambda[k];
            place = int(k);
        }
    }
    return least;
}

bool mindelete(minrun& r) {
    int place;
    if (r.active.empty() || minleast(r, place) >= 0) return false;
    if (reports(r, 16)) tarnprint("\n---delete constraint %d", r.active[size_t(place)] + 1);
    r.active.erase(r.active.begin() + place);
    minbasis(r);
    tofree(r, r.g, r.reduced);
    r.changes++;
    r.slowcount = 0;
    std::fill(r.depends.begin(), r.depends.end(), 0);
    return true;
}

double minmaxstep(const minrun& r, int& row) {
    double most = MAXPOS;
    row = -1;
    for (int i = 0; i < r.cons.count; i++) {
        if (isactive(r, i) || r.cons.type[size_t(i)] == 0 || r.depends[size_t(i)]) continue;
        double slope = 0;
        for (int j = 0; j < r.n; j++) slope += coefs(r, i)[j] * r.scale[size_t(j)] * r.s[size_t(j)];
        if (!(slope < -1e-14 * rowsize(r, i))) continue;
        const double room = std::max(rowvalue(r, i, r.x), 0.0);
        if (room / -slope < most) {
            most = room / -slope;
            row = i;
        }
    }
    return most >= MAXPOS ? MAXPOS : std::max(0.0, most - MARGIN * std::max(most, 1.0) * (most > MARGIN));
}

void minrelax(minrun& r) {
    r.relax = worstmiss(r);
    for (int pass = 0; pass < 5 && r.relax > 1e-14; pass++) {
        const std::vector<double> before = r.x;
        projectactive(r);
        const double miss = worstmiss(r);
        if (!(miss < r.relax)) {
            r.x = before;
            break;
        }
        r.relax = miss;
    }
}

void minsettle(minrun& r) {
    std::erase_if(r.active, [&](int i) {
        return r.cons.type[size_t(i)] != 0 && std::fabs(rowvalue(r, i, r.x)) > 1e-8 * rowsize(r, i);
    });
    minbasis(r);
}

bool minmeetsall(const minrun& r) {
    for (int i = 0; i < r.cons.count; i++)
        if (!meets(r, i)) return false;
    return true;
}

bool minfeasible(minrun& r) {
    if (!minmeetsall(r) && !nearestfeasible(r)) return false;
    r.active.clear();
    minbasis(r);
    for (int i = 0; i < r.cons.count; i++)
        if (r.cons.type[size_t(i)] == 0 && !minadd(r, i) && !meets(r, i)) return false;
    return minmeetsall(r);
}
