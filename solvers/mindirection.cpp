// The direction of an iteration, its check against the gradient, and the state of the inverse Hessian.
#include "funcs/ran.h"
#include "interp/base/machine.h"
#include "interp/base/report.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int MOSTPERTURBED = 3, MOSTRESCALED = 400;

void downhill(minrun& r) {
    r.d.resize(r.reduced.size());
    for (size_t i = 0; i < r.d.size(); i++) r.d[i] = -r.reduced[i];
}

void newtondirection(minrun& r) {
    const size_t nf = r.reduced.size();
    r.d.assign(nf, 0);
    for (size_t i = 0; i < nf; i++)
        for (size_t j = 0; j < nf; j++) r.d[i] -= r.H[i * nf + j] * r.reduced[j];
}

// Polak and Ribiere; a direction that does not descend starts again from the gradient.
void conjugatedirection(minrun& r) {
    downhill(r);
    if (r.conjugate.size() == r.d.size() && r.iteration % (r.n + 1) != 0) {
        double up = 0;
        for (size_t i = 0; i < r.d.size(); i++) up += (r.reduced[i] - r.reducedprev[i]) * r.reduced[i];
        const double beta = std::max(0.0, up / std::max(dot(r.reducedprev, r.reducedprev), 1e-300));
        for (size_t i = 0; i < r.d.size(); i++) r.d[i] += beta * r.conjugate[i];
        if (!(dot(r.d, r.reduced) < 0)) downhill(r);
    }
    r.conjugate = r.d;
    r.reducedprev = r.reduced;
}

// Between the gradient and the direction; lengths that overflow when squared do no harm.
double cosine(const minrun& r) {
    const double gm = largest(r.reduced), dm = largest(r.d);
    double gd = 0, gg = 0, dd = 0;
    for (size_t i = 0; i < r.d.size(); i++) {
        const double g = r.reduced[i] / gm, d = r.d[i] / dm;
        gd += g * d;
        gg += g * g;
        dd += d * d;
    }
    return gd / std::sqrt(gg * dd);
}

// More weight on the diagonal turns a poor direction towards the gradient.
nextstep repairdiagonal(minrun& r) {
    const size_t nf = r.reduced.size();
    const double ratio = norm(r.d) / norm(r.reduced), a = r.alfa;
    const double m = a < 0.2 ? (0.2 * std::sqrt((1 - a * a) / 0.96) + a) * ratio : 2 * a * ratio;
    for (size_t i = 0; i < nf; i++) {
        const double scale = r.active.empty() ? r.scale[i] : 1;
        r.H[i * nf + i] += m / (scale * scale);
        r.d[i] -= m * r.reduced[i];
    }
    if (reports(r, 64)) tarnprint("alfa: modifying diagonal of inverse Hessian.\n");
    return LINESEARCH;
}

// ---- the scale index

struct diagonal {
    double lo = MAXPOS, hi = 0; // magnitudes
    size_t lowest = 0;
};

diagonal diagonalof(const minrun& r) {
    const size_t nf = size_t(r.nfree());
    diagonal extremes;
    for (size_t i = 0; i < nf; i++) {
        const double h = std::fabs(r.H[i * nf + i]);
        extremes.hi = std::max(extremes.hi, h);
        if (h < extremes.lo) extremes.lo = h, extremes.lowest = i;
    }
    return extremes;
}

// Variables are scaled only where no row mixes them.
bool scalesvariables(const minrun& r) { return r.sw.preconditionsw == 2 && r.cons.count == 0; }

int judgedindex(const minrun& r) {
    if (r.sw.preconditionsw == 0) return 2;
    const diagonal e = diagonalof(r);
    const double ratio = e.hi == 0 ? 1 : e.lo == 0 ? MAXPOS : e.hi / e.lo / r.sw.preconditionsw;
    if (ratio < std::pow(10, std::min(r.nfree() + 2, 10)))
        return r.nfree() >= 2 && ratio >= 400.0 * (r.nfree() - 1) ? -1 : -2;
    return scalesvariables(r) ? int(e.lowest) + 1 : 2;
}

// Keeps only a sane diagonal of the inverse Hessian.
void condition(minrun& r) {
    if (reports(r, 64)) tarnprint("conditioning inverse Hessian.\n");
    const size_t nf = size_t(r.nfree());
    std::vector<double> freex;
    tofree(r, r.x, freex);
    const diagonal e = diagonalof(r);
    const double k = r.scaleindex, extremes = std::cbrt(e.lo) * std::cbrt(e.hi);
    for (size_t i = 0; i < nf; i++) {
        const double X = std::max(std::fabs(freex[i]), 1.0), G = std::max(std::fabs(r.reduced[i]), 1.0);
        const double a = std::cbrt(std::fabs(r.H[i * nf + i])) * extremes;
        const double b = (3 - k) * 10 * std::sqrt(X) / G, c = k * 0.001 * X / G;
        const double entry = std::max(c, std::min(a, b));
        std::fill_n(&r.H[i * nf], nf, 0.0);
        r.H[i * nf + i] = entry;
    }
    r.bfgscount = 0;
}

nextstep rescale(minrun& r) {
    if (r.rescaled++ >= MOSTRESCALED) {
        r.scaleindex = -2;
        return NEXTITERATION;
    }
    r.scale[size_t(std::min(r.scaleindex, r.n)) - 1] *= 0.1;
    r.scaleindex = -2;
    return NEWSTART;
}

// ---- the check

/* A gradient near zero under a curvature beyond measure: the start is moved by chance, within a hundredth. */
nextstep perturb(minrun& r) {
    r.perturbed++;
    for (double& x : r.x) x += 0.01 * std::max(std::fabs(x), 1.0) * (2 * ran(0) - 1);
    if (r.cons.count > 0 && !minfeasible(r)) return end(r, MININFEASIBLE);
    r.iteration = 0;
    return NEWSTART;
}

nextstep nolength(minrun& r) {
    const double g = norm(r.reduced);
    if (g * g < r.nfree() * r.sw.gtol * r.sw.gtol)
        return r.perturbed < MOSTPERTURBED ? perturb(r) : end(r, MINCONVERGED);
    if (reports(r, 8)) tarnprint("inverse Hessian = I in 1st iteration\n");
    minidentity(r);
    downhill(r);
    r.alfa = -1;
    return LINESEARCH;
}

/* A step beyond all measure of those before it means that the updates have gone wrong. */
bool absurdstep(minrun& r) {
    const double length = norm(r.d);
    if (r.bfgscount == 0)
        r.avgstep = length;
    else if (r.bfgscount < 4) {
        if (length > 5000 * r.avgstep / r.bfgscount + 5) return true;
        r.avgstep = (r.avgstep + length) / 2;
    } else {
        if (length > r.n * r.avgstep * 37.5 + 5) return true;
        r.avgstep = 0.75 * r.avgstep + 0.25 * length;
    }
    return false;
}

nextstep checkdirection(minrun& r) {
    if (largest(r.reduced) == 0) return mindelete(r) ? NEWHESSIAN : end(r, MINCONVERGED);
    if (largest(r.d) == 0) downhill(r);
    r.alfa = cosine(r);
    if (r.iteration == 1 && norm(r.d) < r.nfree() * 1e-15) return nolength(r);
    if (absurdstep(r)) return NEWHESSIAN;
    if ((r.bfgscount == 0 && r.scaleindex > 0) || r.alfa <= -0.2) return LINESEARCH;
    if (r.alfa >= 0 && r.scaleindex > -2) {
        if (reports(r, 64)) tarnprint("alfa: reset scale index to 2\n");
        r.scaleindex = 2;
        r.lastreset = r.iteration;
        return SCALEINDEX;
    }
    if (r.alfa < 0 && r.slowcount < 2) return LINESEARCH;
    if (r.scaleindex < 1) return repairdiagonal(r);
    if (r.iteration - r.lastreset < 10 && reports(r, 64))
        tarnprint("alfa: reset scale index to %d\n", r.scaleindex);
    r.lastreset = r.iteration;
    r.slowcount = 0;
    return SCALEINDEX;
}

nextstep gradientdirection(minrun& r) {
    if (r.sw.gradsw == 1 && r.active.empty())
        conjugatedirection(r);
    else
        downhill(r);
    r.alfa = -1;
    if (largest(r.reduced) > 0) return LINESEARCH;
    return mindelete(r) ? NEXTITERATION : end(r, MINCONVERGED);
}

} // namespace

nextstep minscale(minrun& r) {
    if (r.scaleindex < 0) {
        if (r.sw.preconditionsw < 0) return NEXTITERATION;
        r.scaleindex = judgedindex(r);
        if (reports(r, 64)) tarnprint("setting inverse Hessian scale index: %d\n", r.scaleindex);
        if (r.scaleindex < 0) return NEXTITERATION;
    }
    if (scalesvariables(r)) return rescale(r);
    condition(r);
    return NEXTITERATION;
}

nextstep mindirection(minrun& r) {
    if (r.sw.gradsw != 0) return gradientdirection(r);
    newtondirection(r);
    nextstep next = checkdirection(r);
    if (next != SCALEINDEX) return next;
    if (minscale(r) == NEWSTART) return NEWSTART;
    newtondirection(r);
    next = checkdirection(r);
    return next == SCALEINDEX ? LINESEARCH : next;
}
