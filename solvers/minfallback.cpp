// What follows a direction that does not descend: a row let go, the way back to a good point, steepest
// descent.
#include "interp/base/report.h"
#include "solvers/minrun.h"

#include <algorithm>
#include <cmath>

namespace {

bool maybacktrack(const minrun& r) {
    if (r.sw.backtracksw == 0) return true;
    const int since = r.iteration - r.goodat;
    return r.sw.backtracksw != -1 && r.nfree() != 1 && !r.justbacktracked &&
           (since < 7 || since * std::fabs(r.goodalfa) <= 0.25) && since < 17 &&
           (since < 5 || r.active.empty());
}

void gradientrestart(minrun& r) {
    std::fill(r.scale.begin(), r.scale.end(), 1.0);
    r.conjugate.clear();
    mingradients(r);
    if (r.sw.gradsw == 0) minidentity(r);
    r.scaleindex = -2;
}

/* From the good point along the gradient, twice the mean step that was made since. */
nextstep backtrack(minrun& r) {
    if (r.sw.reptsw) {
        tarnprint("Backtracking to start of iteration %d\n", r.goodat);
        tarnprint("The x vector is:\n");
        for (double v : r.xgood) tarnprint("%f\n", v);
        if (reports(r, 8)) tarnprint("inverse Hessian = I in backtrack.\n");
    }
    double moved = 0;
    for (size_t i = 0; i < r.x.size(); i++) moved += (r.xgood[i] - r.x[i]) * (r.xgood[i] - r.x[i]);
    const int since = std::clamp(r.iteration - r.goodat, 1, 10);
    r.justbacktracked = true;
    r.x = r.xgood;
    minsettle(r);
    r.f = minvalue(r, r.x);
    gradientrestart(r);
    const double g = norm(r.reduced);
    if (g <= r.sw.gtol) return end(r, MINCONVERGED);
    const double factor = std::max(2 * std::sqrt(moved) / (since * g), std::sqrt(1e-15));
    for (double& h : r.H) h *= factor; // the direction is the gradient at that length
    return NEXTITERATION;
}

void descendfrom(minrun& r, const std::vector<double>& x, double f) {
    if (f < r.f) {
        r.x = x;
        r.f = f;
        minsettle(r);
    }
    if (reports(r, 8)) tarnprint("Steepest descending: inverse Hessian = I\n");
    gradientrestart(r);
}

// Stochastic mode: more samples may show the descent that the noise hides.
bool moresamples(minrun& r) {
    if (!r.sw.stochsw || r.samples >= long(r.sw.ssize) << r.sw.maxsize) return false;
    r.samples *= 2;
    minevaluate(r, r.x);
    return true;
}

} // namespace

nextstep minnodescent(minrun& r) {
    if (r.sw.backtracksw == -2) return end(r, MINSMALLSTEP);
    if (minnoisehides(r)) return end(r, MINSPREAD);
    if (moresamples(r)) return NEXTITERATION;
    if (mindelete(r)) return NEWHESSIAN;
    if (minflat(r)) return end(r, MINCONVERGED);
    if (r.sw.gradsw == 0 && r.bfgscount > 0 && r.sw.hessmsw != 0) return NEWHESSIAN;
    if (maybacktrack(r) && r.xgood != r.x) return backtrack(r);
    switch (++r.stage) {
    case 1: descendfrom(r, r.xgood, r.fgood); return NEXTITERATION;
    case 2: descendfrom(r, r.xbest, r.fbest); return NEXTITERATION;
    default: return end(r, MINSMALLSTEP);
    }
}
