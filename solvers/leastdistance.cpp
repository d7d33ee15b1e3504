#include "solvers/leastdistance.h"

#include <algorithm>
#include <cmath>

namespace {

using vector = std::vector<double>;

// Columns of the same length as a triangle R and Householder's vectors below it.
struct qr {
    size_t rows = 0;
    std::vector<vector> column;
    vector diagonal, scale; // of R; of the vectors
};

void reflect(const qr& f, size_t k, vector& x) {
    const vector& v = f.column[k];
    double s = 0;
    for (size_t i = k; i < f.rows; i++) s += v[i] * x[i];
    s *= f.scale[k];
    for (size_t i = k; i < f.rows; i++) x[i] -= s * v[i];
}

// False when the column depends on those before it.
bool append(qr& f, vector x) {
    constexpr double dependent = 1e-11;
    const size_t k = f.column.size();
    if (k >= f.rows) return false;
    double whole = 0, below = 0;
    for (double v : x) whole += v * v;
    for (size_t j = 0; j < k; j++) reflect(f, j, x);
    for (size_t i = k; i < f.rows; i++) below += x[i] * x[i];
    if (!(below > dependent * dependent * whole)) return false;
    const double length = x[k] > 0 ? -std::sqrt(below) : std::sqrt(below);
    x[k] -= length;
    f.diagonal.push_back(length);
    f.scale.push_back(-1 / (length * x[k]));
    f.column.push_back(std::move(x));
    return true;
}

double upper(const qr& f, size_t i, size_t j) { return i == j ? f.diagonal[i] : f.column[j][i]; }

// R x = b
vector backward(const qr& f, vector b) {
    const size_t k = f.column.size();
    b.resize(k);
    for (size_t i = k; i-- > 0;) {
        for (size_t j = i + 1; j < k; j++) b[i] -= upper(f, i, j) * b[j];
        b[i] /= upper(f, i, i);
    }
    return b;
}

// R' x = b
vector forward(const qr& f, vector b) {
    for (size_t i = 0; i < f.column.size(); i++) {
        for (size_t j = 0; j < i; j++) b[i] -= upper(f, j, i) * b[j];
        b[i] /= upper(f, i, i);
    }
    return b;
}

struct problem {
    std::vector<vector> e;      // columns: a row of g of length 1, with its h below
    vector u;                   // not negative
    std::vector<size_t> chosen; // where u may be positive
};

bool factor(const problem& p, size_t rows, qr& f) {
    f = qr{rows, {}, {}, {}};
    return std::all_of(p.chosen.begin(), p.chosen.end(), [&](size_t c) {
        return append(f, vector(p.e[c].begin(), p.e[c].begin() + long(rows)));
    });
}

// What the columns chosen leave of (0, ..., 0, 1).
vector remainder(const problem& p) {
    vector r(p.e[0].size(), 0);
    r.back() = 1;
    for (size_t c = 0; c < p.e.size(); c++)
        if (p.u[c] > 0)
            for (size_t i = 0; i < r.size(); i++) r[i] -= p.u[c] * p.e[c][i];
    return r;
}

// The column that promises most; p.e.size(): none is worth trying.
size_t entering(const problem& p, const vector& r, const std::vector<char>& refused) {
    constexpr double worth = 1e-13;
    double most = 0;
    size_t best = p.e.size();
    for (size_t c = 0; c < p.e.size(); c++) {
        if (refused[c] || std::find(p.chosen.begin(), p.chosen.end(), c) != p.chosen.end()) continue;
        double gain = 0, size = 0;
        for (size_t i = 0; i < r.size(); i++) {
            gain += p.e[c][i] * r[i];
            size += std::fabs(p.e[c][i]);
        }
        if (gain > worth * size && gain > most) most = gain, best = c;
    }
    return best;
}

/* u := the least-squares solution on the chosen columns; where it would be negative, u goes towards it as far
 * as it can, and the column that stops it is left. False: the column chosen last gains nothing. */
bool solvechosen(problem& p) {
    const size_t length = p.e[0].size();
    for (bool first = true;; first = false) {
        qr f;
        if (!factor(p, length, f)) return false;
        vector unit(length, 0);
        unit.back() = 1;
        for (size_t k = 0; k < p.chosen.size(); k++) reflect(f, k, unit);
        const vector s = backward(f, unit);
        if (first && !(s.back() > 0)) return false;
        double step = 1;
        size_t stops = s.size();
        for (size_t k = 0; k < s.size(); k++) {
            const double u = p.u[p.chosen[k]], most = s[k] > 0 ? 1 : u / (u - s[k]);
            if (most < step || (s[k] <= 0 && stops == s.size())) step = most, stops = k;
        }
        for (size_t k = 0; k < s.size(); k++) p.u[p.chosen[k]] += step * (s[k] - p.u[p.chosen[k]]);
        if (stops == s.size()) return true;
        p.u[p.chosen[stops]] = 0;
        p.chosen.erase(p.chosen.begin() + long(stops));
    }
}

void nonnegativeleastsquares(problem& p) {
    std::vector<char> refused(p.e.size(), 0);
    for (size_t pass = 0; pass < 10 * p.e.size() + 10; pass++) {
        const size_t c = entering(p, remainder(p), refused);
        if (c == p.e.size()) return;
        const problem before = p;
        p.chosen.push_back(c);
        if (solvechosen(p)) {
            std::fill(refused.begin(), refused.end(), 0);
        } else {
            p = before;
            refused[c] = 1;
        }
    }
}

} // namespace

bool leastdistance(size_t width, vector g, vector h, vector& multipliers) {
    constexpr double nowhere = 1e-10; // a point 1e10 times as far as the farthest row
    const size_t rows = h.size();
    vector length(rows, 0);
    double size = 0;
    for (size_t i = 0; i < rows; i++) {
        for (size_t j = 0; j < width; j++) length[i] = std::hypot(length[i], g[i * width + j]);
        if (length[i] > 0) size = std::max(size, std::fabs(h[i]) / length[i]);
    }
    multipliers.assign(rows, 0);
    if (size == 0) return true;
    problem p;
    std::vector<size_t> row;
    for (size_t i = 0; i < rows; i++) {
        if (length[i] == 0) continue;
        vector column(width + 1);
        for (size_t j = 0; j < width; j++) column[j] = g[i * width + j] / length[i];
        column[width] = h[i] / length[i] / size;
        p.e.push_back(std::move(column));
        row.push_back(i);
    }
    p.u.assign(p.e.size(), 0);
    nonnegativeleastsquares(p);
    double left = 0;
    for (double r : remainder(p)) left = std::hypot(left, r);
    if (!(left > nowhere)) return false;
    // With the rows known that hold as equations, their multipliers have all digits.
    qr f;
    vector lambda, right;
    for (size_t c : p.chosen) right.push_back(p.e[c][width]);
    if (factor(p, width, f)) lambda = backward(f, forward(f, right));
    for (size_t k = 0; k < p.chosen.size(); k++) {
        const size_t c = p.chosen[k];
        const double l = lambda.empty() ? p.u[c] / remainder(p).back() : std::max(lambda[k], 0.0);
        multipliers[row[c]] = l * size / length[row[c]];
    }
    return true;
}
