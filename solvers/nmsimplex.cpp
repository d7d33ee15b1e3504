#include "solvers/nmsimplex.h"

#include "interp/base/parser.h"
#include "interp/base/report.h"

#include <algorithm>
#include <cmath>

namespace {

struct polytope {
    double (*f)(void*, const double*);
    void* context;
    int n;
    std::vector<double>& points; // simplexpts
    simplexswitches sw;
    std::vector<double> values, sums, trialpoint; // simplexvals, simplexcent
    int ilo = 0, ihi = 0, inhi = 0;
    long count = 0;

    double* vertex(int i) { return &points[size_t(i) * n]; }
};

void sumvertices(polytope& s) {
    std::fill(s.sums.begin(), s.sums.end(), 0.0);
    for (int i = 0; i <= s.n; i++)
        for (int j = 0; j < s.n; j++) s.sums[size_t(j)] += s.vertex(i)[j];
}

void printpoint(const double* x, int n, double value) {
    for (int j = 0; j < n; j++) tarnprint("%lf, ", x[j]);
    tarnprint("= %lf\n", value);
}

// Ties keep the later index.
void rank(polytope& s) {
    s.ilo = 0;
    s.ihi = s.values[0] > s.values[1] ? 0 : 1;
    s.inhi = 1 - s.ihi;
    for (int i = 0; i <= s.n; i++) {
        if (s.values[i] <= s.values[s.ilo]) s.ilo = i;
        if (s.values[i] > s.values[s.ihi]) {
            s.inhi = s.ihi;
            s.ihi = i;
        } else if (i != s.ihi && s.values[s.inhi] <= s.values[i]) {
            s.inhi = i;
        }
    }
}

/* A point on the line through the worst vertex and the centre of the others, at `factor` of their distance;
 * it takes the place of the worst vertex when it is better. */
double trial(polytope& s, double factor) {
    const double b = (1 - factor) / s.n;
    double* worst = s.vertex(s.ihi);
    for (int j = 0; j < s.n; j++) s.trialpoint[j] = s.sums[j] * b - worst[j] * (b - factor);
    const double value = s.f(s.context, s.trialpoint.data());
    if (s.sw.report & 4)
        for (int j = 0; j < s.n; j++) tarnprint("%lf, ", s.trialpoint[j]);
    if (s.sw.report & 6) tarnprint("= %lf\n", value);
    if (value < s.values[s.ihi]) {
        s.values[s.ihi] = value;
        for (int j = 0; j < s.n; j++) {
            s.sums[j] += s.trialpoint[j] - worst[j];
            worst[j] = s.trialpoint[j];
        }
    }
    return value;
}

void shrink(polytope& s) {
    for (int i = 0; i <= s.n; i++) {
        if (i == s.ilo) continue;
        double* x = s.vertex(i);
        const double* lowest = s.vertex(s.ilo);
        for (int j = 0; j < s.n; j++) x[j] = 0.5 * (x[j] + lowest[j]);
        s.values[i] = s.f(s.context, x);
    }
    s.count += s.n + 2;
    sumvertices(s);
}

void say(const polytope& s, const char* move) {
    if (s.sw.report & 16) tarnprint("%s\n", move);
}

void moveworst(polytope& s) {
    say(s, "reflection");
    const double reflected = trial(s, -1);
    s.count++;
    if (reflected <= s.values[s.ilo]) {
        say(s, "extension");
        trial(s, 2);
        s.count++;
    } else if (reflected >= s.values[s.inhi]) {
        const double worst = s.values[s.ihi];
        say(s, "contraction");
        s.count++;
        if (trial(s, 0.5) >= worst) shrink(s);
    }
}

// Q stops at the best vertex; R, or report bit 8, shows it.
bool interrupted(polytope& s, long round) {
    bool show = (s.sw.report & 8) != 0;
    if (!show) {
        const bool toggled = parser.reporttoggle;
        keypoll();
        show = parser.reporttoggle != toggled;
    }
    if (show) {
        tarnprint("%hd:  ", short(round));
        for (int j = 0; j < s.n; j++) tarnprint("%lf, ", s.vertex(s.ilo)[j]);
        tarnprint(" = %lf\n", s.values[s.ilo]);
    }
    if (!parser.interrupted) return false;
    tarnprint("SIMPLEX interrupted by Q\n");
    return true;
}

// Are the vertices farther apart than 1e-4 of the largest coordinate, or of `least` where that is more?
bool wide(polytope& s, double least) {
    double width = 0, scale = least;
    for (int i = 0; i <= s.n; i++)
        for (int j = 0; j < s.n; j++) {
            scale = std::max(scale, std::fabs(s.vertex(i)[j]));
            width = std::max(width, std::fabs(s.vertex(i)[j] - s.vertex(s.ilo)[j]));
        }
    return width > 1e-4 * scale;
}

bool settled(polytope& s) {
    if (s.count >= s.sw.maxiter) {
        tarnwarn("MAXITER exceeded in SIMPLEX");
        return true;
    }
    const double lo = s.values[s.ilo], hi = s.values[s.ihi];
    if (hi == lo) return true;
    // a best value of zero is the end of a sum of squares, but many functions vanish on their way down too
    if (std::fabs(lo) <= s.sw.tolerance) return !wide(s, 1);
    return 2 * std::fabs(hi - lo) / (std::fabs(hi) + std::fabs(lo)) < s.sw.tolerance;
}

/* Equal values can also lie around a minimum: vertices far apart are settled only if their centre is not
 * lower. If it is, it takes the place of the worst vertex. A centre that tells nothing new is not counted. */
bool lowercentre(polytope& s) {
    if (s.count >= s.sw.maxiter || !wide(s, 0)) return false;
    for (int j = 0; j < s.n; j++) s.trialpoint[j] = s.sums[j] / (s.n + 1);
    const double lo = s.values[s.ilo], value = s.f(s.context, s.trialpoint.data());
    if (!(value < lo - s.sw.tolerance * std::fabs(lo))) return false;
    s.count++;
    s.values[s.ihi] = value;
    std::copy(s.trialpoint.begin(), s.trialpoint.end(), s.vertex(s.ihi));
    sumvertices(s);
    return true;
}

// Do the edges from the first vertex span the space? By elimination with the largest entry left as pivot.
bool spans(polytope& s) {
    std::vector<double> edges(s.points.begin() + s.n, s.points.end());
    for (int i = 0; i < s.n * s.n; i++) edges[size_t(i)] -= s.vertex(0)[i % s.n];
    double first = 0;
    for (int k = 0; k < s.n; k++) {
        const auto entry = [&](int i, int j) -> double& { return edges[size_t(i) * s.n + j]; };
        int row = k, column = k;
        for (int i = k; i < s.n; i++)
            for (int j = k; j < s.n; j++)
                if (std::fabs(entry(i, j)) > std::fabs(entry(row, column))) row = i, column = j;
        const double pivot = entry(row, column);
        if (k == 0) first = std::fabs(pivot);
        if (!(std::fabs(pivot) > 1e-12 * first)) return false;
        for (int j = 0; j < s.n; j++) std::swap(entry(k, j), entry(row, j));
        for (int i = 0; i < s.n; i++) std::swap(entry(i, k), entry(i, column));
        for (int i = k + 1; i < s.n; i++)
            for (int j = s.n - 1; j >= k; j--) entry(i, j) -= entry(i, k) / pivot * entry(k, j);
    }
    return true;
}

void bestfirst(polytope& s) {
    std::swap(s.values[0], s.values[s.ilo]);
    for (int j = 0; j < s.n; j++) std::swap(s.vertex(0)[j], s.vertex(s.ilo)[j]);
}

} // namespace

long nmsimplex(double (*f)(void* context, const double* x), void* context, int n, std::vector<double>& points,
               const simplexswitches& sw, double& best) {
    polytope s{f, context, n, points, sw, {}, {}, {}};
    s.values.resize(size_t(n) + 1);
    s.sums.resize(size_t(n));
    s.trialpoint.resize(size_t(n));
    for (int i = 0; i <= n; i++) {
        s.values[i] = f(context, s.vertex(i));
        if (sw.report & 1) printpoint(s.vertex(i), n, s.values[i]);
    }
    s.count = n + 1;
    sumvertices(s);
    if (!spans(s)) tarnwarn("NMSIMPLEX: the vertices do not span the space, the search stays where they lie");
    for (long round = 1;; round++) {
        rank(s);
        if (interrupted(s, round)) break;
        if (!settled(s))
            moveworst(s);
        else if (!lowercentre(s))
            break;
    }
    bestfirst(s);
    best = s.values[0];
    if (best >= 1e300) tarnwarn("NMSIMPLEX: the function has no value at the vertices; try others");
    return s.count;
}
