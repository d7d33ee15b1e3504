#include "special/quadrature.h"

#include "interp/base/machine.h"
#include "special/fault.h"

#include <algorithm>
#include <cmath>

namespace {
// Nodes and weights of Gauss's rule, n = 20, positive half: Abramowitz and Stegun table 25.4, by mpmath.
constexpr double gaussx[] = {0.076526521133497333755, 0.22778585114164507808, 0.37370608871541956067,
                             0.510867001950827098,    0.63605368072651502545, 0.74633190646015079261,
                             0.83911697182221882339,  0.91223442825132590587, 0.96397192727791379127,
                             0.99312859918509492479};
constexpr double gaussw[] = {0.1527533871307258507,   0.14917298647260374679, 0.14209610931838205133,
                             0.1316886384491766269,   0.11819453196151841731, 0.10193011981724043504,
                             0.083276741576704748725, 0.06267204833410906357, 0.040601429800386941331,
                             0.017614007139152118312};
struct panelsum {
    double value, magnitude; // of f and of |f|
};

panelsum gausspanel(integrand f, void* context, double a, double b) {
    const double centre = 0.5 * (a + b), half = 0.5 * (b - a);
    panelsum s = {0, 0};
    for (int k = 0; k < 10; k++) {
        const double dx = half * gaussx[k], u = f(centre - dx, context), v = f(centre + dx, context);
        s.value += gaussw[k] * (u + v);
        s.magnitude += gaussw[k] * (std::fabs(u) + std::fabs(v));
    }
    return {s.value * half, s.magnitude * std::fabs(half)};
}

struct thirdsjob {
    integrand f;
    void* context;
    double tolerance; // absolute
    bool failed;
};

double thirds(thirdsjob& job, double a, double b, const panelsum& whole, int depth) {
    const double h = (b - a) / 3, cut[] = {a, a + h, b - h, b};
    panelsum part[3];
    double sum = 0;
    for (int k = 0; k < 3; k++) {
        part[k] = gausspanel(job.f, job.context, cut[k], cut[k + 1]);
        sum += part[k].value;
    }
    if (std::fabs(sum - whole.value) <= job.tolerance) return sum;
    if (depth == 7) {
        job.failed = true;
        return sum;
    }
    sum = 0;
    for (int k = 0; k < 3; k++) sum += thirds(job, cut[k], cut[k + 1], part[k], depth + 1);
    return sum;
}

/* Neville's scheme at 0 through the points (x[k], y[k]), k < n (the y are overwritten); *error is the last
 * correction, the result. Coinciding x are noted. */
double neville(const double* x, double* y, int n, double* error) {
    *error = 0;
    for (int m = 1; m < n; m++)
        for (int k = n - 1; k >= m; k--) {
            const double width = x[k - m] - x[k];
            if (width == 0) {
                spnote(SPERR, "QROMB: generated duplicate x-values to polint");
                return y[n - 1];
            }
            const double correction = x[k] * (y[k - 1] - y[k]) / width;
            y[k] -= correction;
            if (k == n - 1) *error = correction;
        }
    return y[n - 1];
}

// The trapezoidal sum on twice as many intervals, by `count` new midpoints.
panelsum refine(integrand f, void* context, double a, double b, const panelsum& old, double count) {
    const double h = (b - a) / count;
    panelsum sum = {0, 0};
    for (double k = 0; k < count; k++) {
        const double y = f(a + (k + 0.5) * h, context);
        sum.value += y;
        sum.magnitude += std::fabs(y);
    }
    return {0.5 * (old.value + h * sum.value), 0.5 * (old.magnitude + std::fabs(h) * sum.magnitude)};
}
} // namespace

double quadthirds(integrand f, void* context, double a, double b, double eps) {
    const panelsum whole = gausspanel(f, context, a, b);
    thirdsjob job = {f, context, eps * whole.magnitude, false};
    const double result = thirds(job, a, b, whole, 1);
    if (job.failed) {
        spnote(SPWARN, "Numerical integral failed to reach specified accuracy");
        spnote(SPWARN, " for subdivision near 3^(-7)");
    }
    return result;
}

double qromb(integrand f, void* context, double a, double b, const rombergrule& rule) {
    constexpr int most = 30;
    const int steps = std::clamp(rule.steps, 1, most), points = std::clamp(rule.points, 2, 12);
    double h2[most + 1], sums[most + 1], work[most + 1], result = 0, error = 0;
    const double fa = f(a, context), fb = f(b, context), half = 0.5 * (b - a);
    panelsum sum = {half * (fa + fb), std::fabs(half) * (std::fabs(fa) + std::fabs(fb))};
    h2[0] = 1;
    sums[0] = sum.value;
    for (int j = 1; j <= steps; j++) {
        sum = refine(f, context, a, b, sum, std::ldexp(1.0, j - 1));
        sums[j] = sum.value;
        h2[j] = 0.25 * h2[j - 1];
        if (j + 1 < points) continue;
        std::copy(sums + j + 1 - points, sums + j + 1, work);
        result = neville(h2 + j + 1 - points, work, points, &error);
        const double rounding =
            8 * MACHEPS * sum.magnitude; // an integral that vanishes has no relative error
        if (std::fabs(error) <= std::fmax(rule.eps * std::fabs(result), rounding)) return result;
    }
    spnote(SPERR, "QROMB failed--too many steps");
    return result;
}
