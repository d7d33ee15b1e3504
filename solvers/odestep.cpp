#include "solvers/odestep.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

// Where odestep goes on when it is called again.
enum resumepoint {
    ATSTART,
    STARTDERIV,   // the first derivative is there
    STARTJAC,     // the first Jacobian is there
    STARTREPORT,  // the start was reported
    STARTHISTORY, // the start was stored as an output
    ATPREDICT,
    PREDICTDERIV, // the derivative at the predicted value is there
    RECORRECT,    // correct the same prediction again
    UNCHECKED,    // the derivative of a value taken without a test is there
    CHECKED,      // the derivative of a corrected value is there
    ATOUTPUT,
    AFTERLAST,
    ATROTATE
};

void ask(odestepper& s, int request, int resume) {
    s.request = request;
    s.resume = resume;
}

void copyvector(const odestepper& s, const double* from, double* to) { std::copy_n(from, s.n, to); }

void reduce(odestepper& s);
void choosestep(odestepper& s);
void predict(odestepper& s);

void start(odestepper& s) {
    s.hsum = s.href = s.stiffness = 0;
    s.stepssincejac = 0;
    s.coefcount = s.hcount = s.failcount = s.stifftries = 0;
    s.hspan = 12;
    s.jacinterval = 20;
    s.newjac = s.latched = s.apart = false;
    s.truncerr = s.correrr = 0;
    s.tlast = s.tbase = s.tcur;
    ask(s, ODEDERIV, STARTDERIV);
}

void startreport(odestepper& s) { ask(s, ODESTEPDONE, STARTREPORT); }

void startjacobian(odestepper& s) {
    if (!s.stiff) return startreport(s);
    s.newjac = true;
    s.needjac = false;
    ask(s, ODEJACOBIAN, STARTJAC);
}

// Before the start the solution is taken as a straight line.
void inventhistory(odestepper& s) {
    const double h = s.h;
    s.h1 = s.h2 = s.h3 = h;
    s.s2 = s.r2 = s.q2 = 2 * h;
    s.s3 = s.r3 = 3 * h;
    s.s4 = 4 * h;
    for (int i = 0; i < s.n; i++) {
        s.Y[0][i] = s.y[i];
        s.Y[1][i] = s.y[i] - h * s.dy[i];
        s.Y[2][i] = s.y[i] - 2 * h * s.dy[i];
        s.Y[3][i] = s.y[i] - 3 * h * s.dy[i];
        s.D[0][i] = s.D[1][i] = s.D[2][i] = s.dy[i];
    }
    s.tnext = s.tbase + h;
    predict(s);
}

void startoutput(odestepper& s) {
    if (s.tcur != s.tout) return inventhistory(s);
    ask(s, s.tout == s.tend ? ODELAST : ODEOUTPUT, STARTHISTORY);
}

void adamscoefficients(odestepper& s) {
    const double h = s.h, a = h * h / 6, b = a / 2;
    s.pred[2] = (2 * s.s2 + s.h1) * a / (s.r2 * s.h2);
    s.pred[1] = -(2 * s.s3 + s.r2) * a / (s.h1 * s.h2);
    s.pred[0] = h - s.pred[1] - s.pred[2];
    s.corr[2] = (s.s2 + s.h1) * b * h / (s.s3 * s.r2 * s.h2);
    s.corr[1] = -(s.s3 + s.r2) * b * h / (s.s2 * s.h1 * s.h2);
    s.corr[0] = h / 2 + (s.s3 + 2 * s.h1 + s.r2) * b / (s.h1 * s.r2);
    s.cnew = h - s.corr[0] - s.corr[1] - s.corr[2];
}

void stiffcoefficients(odestepper& s) {
    const double h = s.h;
    s.pred[0] = (s.s4 / s.r3) * (s.s3 / s.r2) * (s.s2 / s.h1);
    s.pred[1] = -(s.s4 / s.q2) * (s.s3 / s.h2) * (h / s.h1);
    s.pred[2] = (s.s4 / s.h3) * (s.s2 / s.h2) * (h / s.r2);
    s.pred[3] = -(s.s3 / s.h3) * (s.s2 / s.q2) * (h / s.r3);
    const double u = s.s2 / h, v = s.s3 / h, w = u * v, x = w + u + v;
    const double beta = h * w / x; // of the third-order formula
    const double a1 = w * w / ((v - 1) * (u - 1) * x), a3 = u * u / ((v - 1) * (v - u) * x);
    if (s.method == ODETU) {
        s.cnew = beta;
        s.corr[0] = a1;
        s.corr[2] = a3;
        s.corr[1] = 1 - a1 - a3;
    } else {
        s.cnew = (0.55 * w / x + 0.45 * u / (u + 1)) * h;
        s.corr[1] = -(0.45 / ((u + 1) * (u - 1)) + 0.55 * v * v / ((v - u) * (u - 1) * x));
        s.corr[2] = 0.55 * u * u / ((v - u) * (v - 1) * x);
        s.corr[0] = 1 - s.corr[1] - s.corr[2];
        // the new value less what the third-order formula makes of the same derivative
        const double r = beta / s.cnew;
        s.gap[0] = 1 - r;
        s.gap[1] = r * s.corr[0] - a1;
        s.gap[2] = r * s.corr[1] - (1 - a1 - a3);
        s.gap[3] = r * s.corr[2] - a3;
    }
}

// The coefficients depend on the last steps alone: after four equal ones they stay.
void predict(odestepper& s) {
    s.tcur = s.tnext;
    if (++s.coefcount < 5) s.stiff ? stiffcoefficients(s) : adamscoefficients(s);
    s.stiff ? s.loops->stiffpredict(s) : s.loops->adamspredict(s);
    ask(s, ODEDERIV, PREDICTDERIV);
}

int equations(const odestepper& s) { return s.n / s.lanes; }

double rowsumnorm(const odestepper& s) {
    const size_t n = size_t(equations(s));
    double norm = 0;
    for (size_t row = 0; row < n * size_t(s.used); row++) {
        double sum = 0;
        for (size_t j = 0; j < n; j++) sum += std::fabs(s.jac[row * n + j]);
        norm = std::max(norm, sum);
    }
    return norm;
}

// The factors of a lane to where all lanes are solved together; lanes that are not in use have those of the
// first.
void shareout(odestepper& s, size_t lane) {
    const size_t entries = size_t(equations(s)) * size_t(equations(s));
    s.lanelu.resize(entries);
    for (size_t e = 0; e < entries; e++) {
        s.lanelu[e].x[lane] = s.lu[lane * entries + e];
        for (int l = s.used; lane == 0 && l < ODELANES; l++) s.lanelu[e].x[l] = s.lu[e];
    }
    s.lanefactors = s.lanelu.data()->x;
}

// Of J - 1/beta, kept for later steps, until the next Jacobian; false when it is singular.
bool factor(odestepper& s) {
    const size_t n = size_t(equations(s));
    s.lu = s.jac;
    for (size_t l = 0; l < size_t(s.used); l++) {
        double* lu = &s.lu[l * n * n];
        for (size_t i = 0; i < n; i++) lu[i * n + i] -= 1 / s.cnew;
        ludecomp(lu, int(n), &s.pivots[l * n]);
        if (s.pivots[l * n + n - 1] == 0) return false;
        if (s.lanes > 1) shareout(s, l);
    }
    return s.factored = true;
}

void repeatfirst(const odestepper& s, double* v) {
    for (int i = 0; i < s.n; i += s.lanes)
        for (int l = s.used; l < s.lanes; l++) v[i + l] = v[i];
}

void seriesbylane(odestepper& s) {
    const int n = equations(s);
    std::vector<double> v(static_cast<size_t>(n));
    for (int l = 0; l < s.used; l++) {
        for (int k = 0; k < n; k++) v[size_t(k)] = s.newton[k * s.lanes + l];
        neumann(&s.jac[size_t(l) * size_t(n) * size_t(n)], n, s.cnew, v.data());
        for (int k = 0; k < n; k++) s.newton[k * s.lanes + l] = v[size_t(k)];
    }
    repeatfirst(s, s.newton);
}

void solvelanes(odestepper& s) {
    const int n = equations(s);
    for (int l = 0; l < s.used; l++)
        for (int k = 0; k < n - 1; k++)
            std::swap(s.newton[k * s.lanes + l], s.newton[s.pivots[size_t(l * n + k)] * s.lanes + l]);
    repeatfirst(s, s.newton);
    s.loops->lanesolve(s);
}

// One Newton pass; false when the matrix is singular.
bool newtonpass(odestepper& s) {
    const double beta = s.cnew;
    if (s.newjac) {
        s.factored = false;
        s.jnorm = rowsumnorm(s);
    }
    const bool series = std::fabs(beta) * s.jnorm < 0.02;
    if (!series && !s.factored && !factor(s)) return false;
    for (int i = 0; i < s.n; i++) s.newton[i] = (s.y[i] - s.ybase[i]) / beta - s.dnew[i];
    if (s.lanes > 1)
        series ? seriesbylane(s) : solvelanes(s);
    else if (series)
        neumann(s.jac.data(), s.n, beta, s.newton);
    else
        lusolve(s.lu.data(), s.n, s.pivots.data(), s.newton);
    for (int i = 0; i < s.n; i++) s.y[i] += s.newton[i];
    return true;
}

// What is no number is the worst for good.
void keepworst(double error, double& worst) {
    if (!(error <= worst || std::isnan(worst))) worst = error;
}

/* What one step may add to the error of state i, so that many steps do not add up to much more than ERRFAC:
 * while the state changes by its own size at most `perchange` times the relative tolerance, in one step its
 * share by how far the state went; not more than the tolerance, and not less than `share` of it where the
 * state hardly moves, nor than rounding. Stiff solutions forget most of an error; those that are left to the
 * Adams mode keep it, and orbits enlarge it. */
struct accumulation {
    double perchange, share;
};
constexpr accumulation STIFFERRORS{50, 0.02}, ADAMSERRORS{0.5, 0.005};

void allowances(odestepper& s) {
    const accumulation& a = s.stiff ? STIFFERRORS : ADAMSERRORS;
    const bool atfloor = !(std::fabs(s.h) > s.hmin); // no reason to give up there
    s.loops->allowance(s, a.perchange, atfloor ? 1 : a.share);
}

/* The truncation test sees of the blended formula only the part of the third order, so the error that the
 * formula itself makes is tested too. */
void accumulationtest(odestepper& s) {
    allowances(s);
    s.truncerr = s.method == ODETU ? s.loops->backwarderror(s) : s.loops->blendederror(s);
}

// What rounding alone leaves of component i of the stiff corrector.
double roundinglevel(const odestepper& s, int i) {
    const int n = equations(s), l = i % s.lanes < s.used ? i % s.lanes : 0;
    const double* row = &s.jac[(size_t(l) * size_t(n) + size_t(i / s.lanes)) * size_t(n)];
    double size = 0;
    for (int j = 0; j < n; j++) size += std::fabs(row[j] * s.y[j * s.lanes + l]);
    return 4 * DBL_EPSILON * (std::fabs(s.y[i]) + std::fabs(s.cnew) * size);
}

// A residual that is above the tolerance but all rounding would not get smaller by a shorter step: it is
// none.
void forgiverounding(odestepper& s) {
    s.correrr = 0;
    for (int i = 0; i < s.n; i++) {
        if (s.error[i] > 1 && s.error[i] * s.tol[i] <= roundinglevel(s, i)) s.error[i] = 0;
        keepworst(s.error[i], s.correrr);
    }
}

// In the Adams mode the residual of its one pass is most of the error of the step.
void correctortest(odestepper& s) {
    if (!s.stiff) allowances(s);
    s.correrr = s.loops->residual(s, s.stiff ? s.tol : s.allowed);
    if (s.stiff && s.correrr > 1) forgiverounding(s);
}

/* How fast the right-hand side answers, from the two points where it is known at this step. The Adams mode is
 * held back by stability only where |h| times this comes near 1; below, its steps are as long as accuracy
 * allows. */
double lipschitz(odestepper& s) {
    if (!(s.truncerr > 0)) return 0;
    const double answer = s.loops->derivativemove(s);
    return answer > 0 ? answer / (9 * s.truncerr) : 0; // the prediction was off by 9 truncerr
}

void correct(odestepper& s) {
    if (!s.stiff) {
        s.loops->adamscorrect(s);
    } else if (!newtonpass(s)) {
        s.truncerr = 2;
        if (!(std::fabs(s.h) > s.hmin)) return reduce(s);
        s.failcount++; // so that the step is cut also at the start
        return choosestep(s);
    }
    s.truncerr = s.loops->truncation(s);
    if (s.fixedstep || s.steps < 5) return ask(s, ODEDERIV, UNCHECKED);
    if (s.stiff) accumulationtest(s);
    if (!(s.truncerr <= 1)) return reduce(s);
    ask(s, ODEDERIV, CHECKED);
}

void accept(odestepper& s) {
    if (!s.stiff && s.method == ODEAUTO) s.stiffness += std::fabs(s.h) * lipschitz(s);
    s.newjac = false;
    s.apart = false;
    s.failcount = 0;
    s.stepssincejac++;
    s.tlast = s.tcur;
    s.steps++;
    ask(s, ODESTEPDONE, ATOUTPUT);
}

void setapart(odestepper& s) {
    if (s.apart) return;
    std::swap(s.Y[3], s.y);
    std::swap(s.dnew, s.dy);
    s.apart = true;
}

void restoreaccepted(odestepper& s) {
    if (s.apart) {
        copyvector(s, s.Y[3], s.y);
        copyvector(s, s.dnew, s.dy);
    }
    s.tcur = s.tbase = s.tlast;
}

// A cubic through the new point and the three before it.
void interpolate(odestepper& s) {
    setapart(s);
    const double d = s.tout - s.tlast, e = s.tout - s.tbase, f = e + s.h1, g = f + s.h2;
    const double c0 = (g / s.s3) * (f / s.s2) * (e / s.h), c1 = -(g / s.r2) * (f / s.h1) * (d / s.h),
                 c2 = (g / s.h2) * (e / s.h1) * (d / s.s2), c3 = -(f / s.h2) * (e / s.r2) * (d / s.s3);
    for (int i = 0; i < s.n; i++) {
        s.y[i] = c0 * s.Y[3][i] + c1 * s.Y[0][i] + c2 * s.Y[1][i] + c3 * s.Y[2][i];
        s.dy[i] = c0 * s.dnew[i] + c1 * s.D[0][i] + c2 * s.D[1][i] + c3 * s.D[2][i];
    }
    s.tcur = s.tout;
}

void switchmode(odestepper& s) {
    s.stiff = !s.stiff;
    s.jacinterval = s.stepssincejac = 20;
    s.coefcount = 0;
    s.needjac = s.stiff;
}

// Of |h| times the Lipschitz constant; above it stability may hold the steps.
constexpr double STABILITYBOUND = 0.5;

/* The mean step over a stretch tells whether the mode serves: small steps that do not grow ask for the other
 * one. The stiff mode is not tried where stability cannot be what holds the steps: it would only lose
 * accuracy. */
void choosemode(odestepper& s) {
    s.hsum += std::fabs(s.h);
    if (++s.hcount < s.hspan) return;
    s.hcount = 0;
    s.hsum /= s.hspan;
    const bool mayhelp = s.stiff || s.stiffness >= STABILITYBOUND * s.hspan;
    s.stiffness = 0;
    s.hspan += 2;
    if (s.href == 0) s.href = s.hsum;
    if (s.stiff && s.hsum > s.hswitch) {
        if (++s.stifftries == 5) {
            s.stifftries = 1;
        } else if (s.stifftries % 2) {
            s.hspan = 8;
            return switchmode(s);
        }
    }
    const bool steady = s.hsum >= s.href && (s.stiff || s.hspan < 15 || s.hsum >= 9 * s.href);
    if (s.hsum >= s.hswitch || steady || !mayhelp)
        s.href = (s.hsum + s.href) / 2;
    else
        switchmode(s);
}

void rotate(odestepper& s) {
    setapart(s);
    s.h3 = s.h2;
    s.q2 = s.r2;
    s.r3 = s.s3;
    s.h2 = s.h1;
    s.h1 = s.h;
    s.r2 = s.s2;
    std::rotate(s.Y, s.Y + 3, s.Y + 4);
    std::rotate(s.D, s.D + 2, s.D + 3);
    std::swap(s.D[0], s.dnew);
    choosestep(s);
}

void afteroutput(odestepper& s) {
    restoreaccepted(s);
    if (s.method == ODEAUTO && !s.fixedstep) choosemode(s);
    const bool due = s.refreshjac && s.stepssincejac >= s.jacinterval;
    if (!s.stiff || !(due || s.needjac)) return rotate(s);
    s.jacinterval = std::min(2 * s.jacinterval, 1L << 30);
    s.stepssincejac = 0;
    s.newjac = true;
    s.needjac = false;
    ask(s, ODEJACOBIAN, ATROTATE);
}

void output(odestepper& s) {
    if (s.tout == s.tend && s.tout == s.tlast) {
        restoreaccepted(s);
        return ask(s, ODELAST, AFTERLAST);
    }
    const double along = (s.tout - s.tbase) * s.h;
    if (!(along > 0 && (s.tlast - s.tout) * s.h >= 0)) return afteroutput(s);
    interpolate(s);
    ask(s, ODEOUTPUT, ATOUTPUT);
}

double stepfactor(double error) {
    if (error <= 0.005) return 10;
    const double factor = std::sqrt(0.5 / error);
    return factor > 10 ? 10 : factor >= 0.1 ? factor : 0.1; // an error that is no number cuts the step too
}

void steplength(odestepper& s, double dist) {
    if (std::fabs(s.h) > s.hlimit && s.failcount == 0) s.latched = true;
    const double place = std::fabs(s.tbase);
    s.hmin = s.latched ? s.hlimit : place < 1e-30 ? 1e-30 : place * 1e-12;
    s.hmin = std::max(s.hmin, 4 * DBL_EPSILON * place); // a step moves the time
    const double error = std::isnan(s.truncerr) || s.truncerr > s.correrr ? s.truncerr : s.correrr;
    const double factor = stepfactor(error);
    double h = std::min(std::max(std::fabs(factor * s.h), s.hmin), s.hmax);
    if (dist < 0) h = -h;
    // no change for a small gain, nor for a few steps before the end
    if (factor > 0.9 && (factor < 1.2 || std::fabs(dist / s.h1) < 3)) h = s.h1;
    s.h = h;
}

void choosestep(odestepper& s) {
    const double dist = s.tend - s.tbase;
    if (s.fixedstep || (s.steps < 5 && s.failcount == 0))
        s.h = s.h1;
    else
        steplength(s, dist);
    if (!(std::fabs(s.h) < std::fabs(dist))) {
        s.h = dist;
        s.tnext = s.tend;
    } else if (std::fabs(dist / s.h) < 2) {
        s.h = dist / 2;
        s.tnext = s.tbase + s.h;
    } else {
        s.tnext = s.tbase + s.h;
    }
    if (s.h != s.h1) s.coefcount = 0;
    s.s2 = s.h + s.h1;
    s.s3 = s.s2 + s.h2;
    s.s4 = s.s3 + s.h3;
    s.truncerr = s.correrr = 0;
    predict(s);
}

void restorestart(odestepper& s) {
    s.stepssincejac = 0;
    s.coefcount = 0;
    s.tcur = s.tbase;
    copyvector(s, s.Y[0], s.y);
    copyvector(s, s.D[0], s.dy);
}

void asknewjacobian(odestepper& s, int resume) {
    s.newjac = true;
    s.needjac = false;
    restorestart(s);
    ask(s, ODEJACOBIAN, resume);
}

// The last equation of the largest error, or the first whose error is no number.
int worstequation(const odestepper& s) {
    int worst = 0;
    for (int i = 0; i < s.n && !std::isnan(s.error[worst]); i++)
        if (!(s.error[i] < s.error[worst])) worst = i;
    return worst;
}

void reduce(odestepper& s) {
    for (;;) {
        s.jacinterval = std::max(s.jacinterval / 2, 1L);
        if (s.failcount > 3 && s.method == ODEAUTO && !s.stiff) {
            s.stiff = true;
            return asknewjacobian(s, ATPREDICT);
        }
        if (s.stiff && !s.newjac && s.refreshjac && s.failcount > 0) return asknewjacobian(s, RECORRECT);
        if (std::fabs(s.h) > s.hmin) {
            s.failcount++;
            return choosestep(s);
        }
        if (s.failcount > 3) {
            const int code = s.truncerr >= s.correrr || std::isnan(s.truncerr) ? ODETRUNCFAIL : ODECORRFAIL;
            s.faileqn = worstequation(s);
            restorestart(s);
            return ask(s, code, RECORRECT);
        }
        s.failcount = 4;
    }
}

void recorrect(odestepper& s) {
    copyvector(s, s.ypred, s.y);
    s.tcur = s.tnext;
    correct(s);
}

void goon(odestepper& s) {
    switch (s.resume) {
    case ATSTART: return start(s);
    case STARTDERIV: return startjacobian(s);
    case STARTJAC: return startreport(s);
    case STARTREPORT: return startoutput(s);
    case STARTHISTORY: return inventhistory(s);
    case ATPREDICT: return predict(s);
    case PREDICTDERIV: std::swap(s.dnew, s.dy); return correct(s);
    case RECORRECT: return recorrect(s);
    case UNCHECKED: return accept(s);
    case CHECKED: correctortest(s); return s.correrr <= 1 ? accept(s) : reduce(s);
    case ATOUTPUT: return output(s);
    case AFTERLAST: return afteroutput(s);
    default: return rotate(s);
    }
}

} // namespace

void odestepsize(odestepper& s, int n) {
    s = odestepper{};
    s.n = n;
    s.loops = &odeloopsbest();
    s.wide = (n + s.loops->width - 1) / s.loops->width * s.loops->width;
    double** const vectors[] = {&s.y,    &s.dy,      &s.Y[0],  &s.Y[1],  &s.Y[2],  &s.Y[3],
                                &s.D[0], &s.D[1],    &s.D[2],  &s.dnew,  &s.ypred, &s.ybase,
                                &s.tol,  &s.allowed, &s.error, &s.newton};
    const size_t lines = (size_t(n) + 7) / 8, count = size_t(n);
    s.memory.assign(lines * std::size(vectors), {});
    for (size_t k = 0; k < std::size(vectors); k++) *vectors[k] = s.memory[k * lines].x;
    s.pivots.assign(count, 0);
}

void odestep(odestepper& s) {
    if (s.request == ODESTART) s.resume = ATSTART;
    goon(s);
}
