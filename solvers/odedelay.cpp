#include "solvers/odedelay.h"

#include <algorithm>

namespace {

struct place {
    double t, value;
};

double line(double q, const place& a, const place& b) {
    return b.t == a.t ? b.value : a.value + (q - a.t) * (b.value - a.value) / (b.t - a.t);
}

struct lookback {
    const oderun& run;
    int column;
    double q;
    place now, start;
    double along(double t) const { return t * run.dir; }
    place row(long i) const { return {run.times[i], at(run.out, size_t(i) + 1, size_t(column))}; }
};

// Between the rows that stand; the times are searched from the second on.
double amongrows(const lookback& b) {
    for (long i = 1; i < b.run.row; i++)
        if (b.along(b.q) <= b.along(b.run.times[i])) return line(b.q, b.row(i - 1), b.row(i));
    return line(b.q, b.row(b.run.row - 1), b.now);
}

double stateat(const lookback& b) {
    if (b.along(b.q) >= b.along(b.now.t)) return b.now.value;
    if (b.along(b.q) <= b.along(b.start.t)) return b.start.value;
    const double first = b.along(b.run.times[0]);
    if (b.run.row == 0 || (b.along(b.q) < first && b.along(b.now.t) <= first))
        return line(b.q, b.start, b.now);
    if (b.along(b.q) < first) return line(b.q, b.start, b.row(0));
    if (b.along(b.q) >= b.along(b.run.times[b.run.row - 1])) return line(b.q, b.row(b.run.row - 1), b.now);
    return amongrows(b);
}

double derivativeat(const lookback& b) {
    if (b.along(b.q) >= b.along(b.now.t)) return b.now.value;
    if (b.run.row == 0) return b.now.value;
    if (b.along(b.q) <= b.along(b.run.times[0])) return b.row(0).value;
    if (b.along(b.q) >= b.along(b.run.times[b.run.row - 1])) return line(b.q, b.row(b.run.row - 1), b.now);
    return amongrows(b);
}

} // namespace

double odedelay(const odesolve& solve, double q, int k, bool state) {
    const oderun& run = solve.run;
    const double now = state ? solve.y[k] : solve.dy[k];
    const lookback b{
        run, 2 * k + (state ? 2 : 3), q, {solve.t, now}, {run.t0, run.y0.empty() ? now : run.y0[size_t(k)]}};
    return state ? stateat(b) : derivativeat(b);
}
