#include "special/hbpower.h"

#include "special/errorfn.h"
#include "special/fault.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {
bool goodcurve(const survivalcurve& c) {
    if (c.count < 1 || !(c.time[0] >= 0)) return false;
    double t = -1, s = 1;
    for (int k = 0; k < c.count; k++) {
        if (!(c.time[k] > t && c.survival[k] <= s && c.survival[k] >= 0)) return false;
        t = c.time[k];
        s = c.survival[k];
    }
    return t > 0;
}

bool gooddesign(const trialdesign& d) {
    return d.alpha > 0 && d.alpha < 1 && d.n > 0 && d.ratio > 0 && (d.sides == 1 || d.sides == 2) &&
           d.subdivisions >= 1 && d.subdivisions <= 1e5 && d.weight >= 0;
}

double survivalat(const survivalcurve& c, double t) {
    const int k = int(std::upper_bound(c.time, c.time + c.count, t) - c.time);
    if (k == c.count) return c.survival[c.count - 1];
    const double t0 = k ? c.time[k - 1] : 0, s0 = k ? c.survival[k - 1] : 1;
    return s0 + (c.survival[k] - s0) * (t - t0) / (c.time[k] - t0);
}

std::vector<double> knots(const survivalcurve& a, const survivalcurve& b) {
    const double end = std::min(a.time[a.count - 1], b.time[b.count - 1]);
    std::vector<double> t = {0, end};
    for (const survivalcurve* c : {&a, &b})
        for (int k = 0; k < c->count; k++)
            if (c->time[k] > 0 && c->time[k] < end) t.push_back(c->time[k]);
    std::sort(t.begin(), t.end());
    t.erase(std::unique(t.begin(), t.end()), t.end());
    return t;
}

// The sum over the subdivisions of observed less expected events of the control group, and its variance
struct logrank {
    double difference = 0, variance = 0;

    // at risk and lost in a subdivision, of control and treated
    void add(double risk1, double risk2, double lost1, double lost2, double weight) {
        const double risk = risk1 + risk2, share = risk1 / risk, w = std::pow(risk, weight);
        if (!(risk > 0)) return;
        difference += w * (lost1 - (lost1 + lost2) * share);
        variance += w * w * (lost1 + lost2) * share * (1 - share);
    }
};

double normalupper(double z) { return 0.5 * erfcfn(z * 0.70710678118654752440); }
} // namespace

double hbpower(const survivalcurve& control, const survivalcurve& treated, const trialdesign& design) {
    if (!goodcurve(control) || !goodcurve(treated)) {
        spnote(SPSHAPEERR, "HBPOWER");
        return 0;
    }
    if (!gooddesign(design)) {
        rangeerr("HBPOWER");
        return 0;
    }
    const std::vector<double> t = knots(control, treated);
    const double n2 = design.n * design.ratio;
    logrank sum;
    for (size_t i = 0; i + 1 < t.size(); i++) {
        const int steps = int(design.subdivisions);
        double s1 = survivalat(control, t[i]), s2 = survivalat(treated, t[i]);
        for (int k = 1; k <= steps; k++) {
            const double end = t[i] + (t[i + 1] - t[i]) * k / steps;
            const double e1 = survivalat(control, end), e2 = survivalat(treated, end);
            sum.add(0.5 * design.n * (s1 + e1), 0.5 * n2 * (s2 + e2), design.n * (s1 - e1), n2 * (s2 - e2),
                    design.weight);
            s1 = e1;
            s2 = e2;
        }
    }
    if (sum.variance == 0) return design.alpha; // no events, or one group alone at risk
    const double shift = std::fabs(sum.difference) / std::sqrt(sum.variance);
    const double z = 1.41421356237309504880 * erfcinv(2 * design.alpha / design.sides);
    return normalupper(z - shift) + (design.sides == 2 ? normalupper(z + shift) : 0);
}
