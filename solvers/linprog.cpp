#include "solvers/linprog.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace {

constexpr double TOLERANCE = 1e-6; // below it an artificial variable counts as zero
constexpr double ROUNDING = 1e-11; // below it a tableau entry counts as rounding, relative to its row

/* basic[i] = row[i][0] + sum over j of row[i][j] * nonbasic[j]; row 0 is the objective, row m + 1 the
 * auxiliary one. Labels: 1..n the variables, above n surplus and slack, negative an artificial variable. */
struct tableau {
    int m, n;
    std::vector<std::vector<double>> row;
    std::vector<int> basic, nonbasic; // by row from 1, by column from 1
    std::vector<char> closed;         // columns of artificial variables that have left
    double size = 1;                  // of the right sides
    long stalled = 0;                 // pivots since the objective last moved
};

double rowsize(const std::vector<double>& row) {
    double size = 0;
    for (size_t j = 1; j < row.size(); j++) size = std::max(size, std::fabs(row[j]));
    return size;
}

void pivot(tableau& t, size_t r, size_t k) {
    std::vector<double>& pr = t.row[r];
    const double p = pr[k];
    for (size_t j = 0; j < pr.size(); j++) pr[j] = j == k ? 1 / p : -pr[j] / p;
    for (size_t i = 0; i < t.row.size(); i++) {
        const double factor = t.row[i][k];
        if (i == r || factor == 0) continue;
        const double before = rowsize(t.row[i]);
        for (size_t j = 0; j < pr.size(); j++)
            t.row[i][j] = j == k ? factor * pr[k] : t.row[i][j] + factor * pr[j];
        for (size_t j = 1; j < pr.size(); j++)
            if (std::fabs(t.row[i][j]) < ROUNDING * before) t.row[i][j] = 0;
    }
    std::swap(t.basic[r], t.nonbasic[k]);
    if (t.nonbasic[k] < 0) t.closed[k] = 1;
}

// The column to enter: the largest coefficient of the objective, the first one while the program stalls. 0:
// none.
size_t entering(const tableau& t, const std::vector<double>& objective) {
    size_t best = 0;
    for (size_t k = 1; k < objective.size(); k++) {
        if (t.closed[k] || !(objective[k] > ROUNDING)) continue;
        if (!best || (t.stalled < 50 ? objective[k] > objective[best] : t.nonbasic[k] < t.nonbasic[best]))
            best = k;
    }
    return best;
}

// The row to leave: the smallest ratio; artificial variables first among equals, then the lowest label. 0:
// unbounded.
size_t leaving(const tableau& t, size_t k) {
    size_t best = 0;
    double ratio = 0;
    for (size_t i = 1; i <= size_t(t.m); i++) {
        const double entry = t.row[i][k];
        // an artificial variable at zero must not grow
        const bool holds = t.basic[i] < 0 && std::fabs(t.row[i][0]) <= ROUNDING * t.size && entry > 0;
        if (!holds && !(entry < 0)) continue;
        const double q = holds ? 0 : std::max(t.row[i][0], 0.0) / -entry;
        if (!best || q < ratio || (q == ratio && t.basic[i] < t.basic[best])) {
            best = i;
            ratio = q;
        }
    }
    return best;
}

// Climbs the objective in row `o`; false when it is unbounded.
bool climb(tableau& t, size_t o) {
    t.stalled = 0;
    for (;;) {
        const size_t k = entering(t, t.row[o]);
        if (k == 0) return true;
        const size_t r = leaving(t, k);
        if (r == 0) return false;
        const double before = t.row[o][0];
        pivot(t, r, k);
        t.stalled = t.row[o][0] > before ? 0 : t.stalled + 1;
    }
}

struct lprow {
    std::vector<double> a;
    double rhs;
    int type;
    double scale = 1; // the row as it was given is this times the row
};

// Rows with a right side of at least zero and a largest coefficient of 1, less before greater before equal.
std::vector<lprow> normalrows(const solverconstraints& c) {
    std::vector<lprow> rows;
    for (int i = 0; i < c.count; i++) {
        const double* a = &c.coef[size_t(i) * c.width];
        lprow row{std::vector<double>(a, a + c.width), c.rhs[size_t(i)], c.type[size_t(i)]};
        const double size = std::accumulate(row.a.begin(), row.a.end(), 0.0, [](double most, double x) {
            return std::max(most, std::fabs(x));
        });
        if (size > 0) {
            for (double& x : row.a) x /= size;
            row.rhs /= size;
            row.scale = size;
        }
        if (row.rhs < 0) {
            for (double& x : row.a) x = -x;
            row.rhs = -row.rhs;
            row.type = -row.type;
        }
        rows.push_back(std::move(row));
    }
    const auto rank = [](const lprow& r) { return r.type < 0 ? 0 : r.type > 0 ? 1 : 2; };
    std::stable_sort(rows.begin(), rows.end(),
                     [&](const lprow& p, const lprow& q) { return rank(p) < rank(q); });
    return rows;
}

tableau newtableau(const std::vector<double>& cost, const std::vector<lprow>& rows) {
    tableau t;
    t.n = int(cost.size());
    t.m = int(rows.size());
    const size_t surplus =
        size_t(std::count_if(rows.begin(), rows.end(), [](const lprow& r) { return r.type > 0; }));
    const size_t columns = cost.size() + surplus + 1;
    t.row.assign(rows.size() + 2, std::vector<double>(columns, 0.0));
    t.basic.assign(rows.size() + 1, 0);
    t.nonbasic.assign(columns, 0);
    t.closed.assign(columns, 0);
    for (size_t k = 1; k < columns; k++) t.nonbasic[k] = int(k);
    double most = 0;
    for (double c : cost) most = std::max(most, std::fabs(c));
    for (size_t j = 0; j < cost.size(); j++) t.row[0][j + 1] = most > 0 ? cost[j] / most : 0;
    std::vector<double>& auxiliary = t.row.back();
    size_t nextsurplus = cost.size() + 1;
    for (size_t i = 0; i < rows.size(); i++) {
        std::vector<double>& row = t.row[i + 1];
        row[0] = rows[i].rhs;
        t.size = std::max(t.size, rows[i].rhs);
        for (size_t j = 0; j < cost.size(); j++) row[j + 1] = -rows[i].a[j];
        if (rows[i].type > 0) row[nextsurplus++] = 1;
        t.basic[i + 1] = rows[i].type < 0 ? int(columns + i) : -int(i + 1);
        if (rows[i].type < 0) continue;
        for (size_t j = 0; j < columns; j++) auxiliary[j] -= row[j];
    }
    return t;
}

/* Is an artificial variable left that counts beside the right side of its row, in the row as it was given or
 * with its largest coefficient 1? */
bool unmet(const tableau& t, const std::vector<lprow>& rows) {
    for (size_t i = 1; i <= size_t(t.m); i++) {
        if (t.basic[i] >= 0) continue;
        const lprow& row = rows[size_t(-t.basic[i]) - 1];
        const double left = t.row[i][0], given = left * row.scale;
        if (left > TOLERANCE * std::max(row.rhs, 1.0)) return true;
        if (given > TOLERANCE * std::max(row.rhs * row.scale, 1.0) &&
            left > 1e-3 * TOLERANCE * std::max(row.rhs, 1.0))
            return true;
    }
    return false;
}

// Artificial variables that are left at zero leave by any entry; where there is none the row says nothing.
void dropartificials(tableau& t) {
    for (size_t i = 1; i <= size_t(t.m); i++) {
        if (t.basic[i] >= 0) continue;
        size_t best = 0;
        for (size_t k = 1; k < t.row[i].size(); k++)
            if (!t.closed[k] && std::fabs(t.row[i][k]) > (best ? std::fabs(t.row[i][best]) : ROUNDING))
                best = k;
        if (best) pivot(t, i, best);
    }
}

} // namespace

lpoutcome linprog(const std::vector<double>& cost, const solverconstraints& constraints,
                  std::vector<double>& x, double& optimum) {
    const std::vector<lprow> rows = normalrows(constraints);
    tableau t = newtableau(cost, rows);
    const bool artificial = std::any_of(rows.begin(), rows.end(), [](const lprow& r) { return r.type >= 0; });
    if (artificial) {
        climb(t, t.row.size() - 1); // bounded: a sum of what is not negative
        if (unmet(t, rows)) return LPINFEASIBLE;
        dropartificials(t);
    }
    t.row.pop_back();
    if (!climb(t, 0)) return LPUNBOUNDED;
    x.assign(cost.size(), 0);
    for (size_t i = 1; i <= size_t(t.m); i++)
        if (t.basic[i] >= 1 && t.basic[i] <= t.n) x[size_t(t.basic[i]) - 1] = t.row[i][0];
    optimum = 0;
    for (size_t j = 0; j < x.size(); j++) optimum += cost[j] * x[j];
    return LPOPTIMAL;
}
