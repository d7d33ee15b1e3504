#include "solvers/odestep.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

// Where odestep goes on when it is called again.
enum resumepoint {
    ATSTART,
    STARTDERIV,   // the first derivative is there
    STARTJAC,     // the first Jacobian is there, or none is needed
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

enum verdict { ASK, GOON }; // ASK: return to the driver, which does what s.request says

verdict ask(odestepper& s, int request, int resume) {
    s.request = request;
    s.resume = resume;
    return ASK;
}

verdict go(odestepper& s, int resume) {
    s.resume = resume;
    return GOON;
}

verdict reduce(odestepper& s);
verdict choosestep(odestepper& s);

verdict start(odestepper& s) {
    s.hsum = s.href = s.stiffness = 0;
    s.stepssincejac = 0;
    s.coefcount = s.hcount = s.failcount = s.stifftries = 0;
    s.hspan = 12;
    s.jacinterval = 20;
    s.newjac = s.latched = false;
    s.truncerr = s.correrr = 0;
    s.tlast = s.tbase = s.tcur;
    return ask(s, ODEDERIV, STARTDERIV);
}

verdict startjacobian(odestepper& s) {
    if (!s.stiff) return go(s, STARTJAC);
    s.newjac = true;
    s.needjac = false;
    return ask(s, ODEJACOBIAN, STARTJAC);
}

verdict startoutput(odestepper& s) {
    if (s.tcur != s.tout) return go(s, STARTHISTORY);
    return ask(s, s.tout == s.tend ? ODELAST : ODEOUTPUT, STARTHISTORY);
}

// Before the start the solution is taken as a straight line.
verdict inventhistory(odestepper& s) {
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
    return go(s, ATPREDICT);
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
verdict predict(odestepper& s) {
    s.tcur = s.tnext;
    if (++s.coefcount < 5) s.stiff ? stiffcoefficients(s) : adamscoefficients(s);
    const double *p = s.pred, *c = s.corr;
    for (int i = 0; i < s.n; i++) {
        const double y0 = s.Y[0][i];
        if (s.stiff) {
            s.ybase[i] = c[0] * y0 + c[1] * s.Y[1][i] + c[2] * s.Y[2][i];
            s.ypred[i] = p[0] * y0 + p[1] * s.Y[1][i] + p[2] * s.Y[2][i] + p[3] * s.Y[3][i];
        } else {
            s.ybase[i] = y0 + c[0] * s.D[0][i] + c[1] * s.D[1][i] + c[2] * s.D[2][i];
            s.ypred[i] = y0 + p[0] * s.D[0][i] + p[1] * s.D[1][i] + p[2] * s.D[2][i];
        }
        s.y[i] = s.ypred[i];
    }
    return ask(s, ODEDERIV, PREDICTDERIV);
}

double rowsumnorm(const odestepper& s) {
    double norm = 0;
    for (int i = 0; i < s.n; i++) {
        double sum = 0;
        for (int j = 0; j < s.n; j++) sum += std::fabs(s.jac[size_t(i) * s.n + j]);
        norm = std::max(norm, sum);
    }
    return norm;
}

// One Newton pass; false when the matrix is singular.
bool newtonpass(odestepper& s) {
    const int n = s.n;
    const double beta = s.cnew;
    for (int i = 0; i < n; i++) s.newton[i] = (s.y[i] - s.ybase[i]) / beta - s.dy[i];
    if (s.newjac) {
        s.factored = false;
        s.jnorm = rowsumnorm(s);
    }
    if (std::fabs(beta) * s.jnorm < 0.02) {
        neumann(s.jac.data(), n, beta, s.newton.data());
    } else {
        if (!s.factored) {
            s.lu = s.jac;
            for (int i = 0; i < n; i++) s.lu[size_t(i) * n + i] -= 1 / beta;
            ludecomp(s.lu.data(), n, s.pivots.data());
            if (s.pivots[n - 1] == 0) return false;
            s.factored = true; // kept for later steps, until the next Jacobian
        }
        lusolve(s.lu.data(), n, s.pivots.data(), s.newton.data());
    }
    for (int i = 0; i < n; i++) s.y[i] += s.newton[i];
    return true;
}

// The larger error wins, a later equal one too; what is no number wins for good.
void keepworst(double error, int i, double& worst, int& eqn) {
    if (error < worst || std::isnan(worst)) return;
    worst = error;
    eqn = i;
}

void truncationtest(odestepper& s) {
    s.truncerr = 0;
    for (int i = 0; i < s.n; i++) {
        double size = std::fabs(s.y[i]);
        if (!(size > s.absfloor)) size = std::max(s.absfloor, std::fabs(s.Y[0][i]));
        s.tol[i] = s.errfac * size;
        keepworst(std::fabs(s.y[i] - s.ypred[i]) / (9 * s.tol[i]), i, s.truncerr, s.trunceqn);
    }
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

double allowance(const odestepper& s, int i) {
    if (!(std::fabs(s.h) > s.hmin)) return s.tol[i]; // no reason to give up at the floor
    const accumulation& a = s.stiff ? STIFFERRORS : ADAMSERRORS;
    const double change = std::fabs(s.y[i] - s.Y[2][i]) / 3 * s.errfac;
    const double least = std::max(a.share * s.tol[i], 8 * DBL_EPSILON * std::fabs(s.y[i]));
    return std::min(s.tol[i], std::max(least, a.perchange * change));
}

/* The error that the formula itself makes in this step of the stiff mode; the truncation test sees of the
 * blended formula only the part of the third order. */
double formulaerror(const odestepper& s, int i) {
    if (s.method == ODETU) return 3.0 / 22 * std::fabs(s.y[i] - s.ypred[i]);
    return std::fabs(s.gap[0] * s.y[i] + s.gap[1] * s.Y[0][i] + s.gap[2] * s.Y[1][i] + s.gap[3] * s.Y[2][i]);
}

void accumulationtest(odestepper& s) {
    for (int i = 0; i < s.n; i++) keepworst(formulaerror(s, i) / allowance(s, i), i, s.truncerr, s.trunceqn);
}

// What rounding alone leaves of equation i of the stiff corrector.
double roundinglevel(const odestepper& s, int i) {
    double size = 0;
    for (int j = 0; j < s.n; j++) size += std::fabs(s.jac[size_t(i) * s.n + j] * s.y[j]);
    return 4 * DBL_EPSILON * (std::fabs(s.y[i]) + std::fabs(s.cnew) * size);
}

/* In the Adams mode the residual of its one pass is most of the error of the step. In the stiff mode one that
 * is above the tolerance but all rounding would not get smaller by a shorter step: it is none. */
void correctortest(odestepper& s) {
    s.correrr = 0;
    for (int i = 0; i < s.n; i++) {
        const double residual = std::fabs(s.y[i] - s.cnew * s.dy[i] - s.ybase[i]);
        if (s.stiff && residual > s.tol[i] && residual <= roundinglevel(s, i)) continue;
        keepworst(residual / (s.stiff ? s.tol[i] : allowance(s, i)), i, s.correrr, s.correqn);
    }
}

/* How fast the right-hand side answers, from the two points where it is known at this step. The Adams mode is
 * held back by stability only where |h| times this comes near 1; below, its steps are as long as accuracy
 * allows. */
double lipschitz(const odestepper& s) {
    double answer = 0, move = 0;
    for (int i = 0; i < s.n; i++) {
        answer = std::max(answer, std::fabs(s.dy[i] - s.dnew[i]) / s.tol[i]);
        move = std::max(move, std::fabs(s.y[i] - s.ypred[i]) / s.tol[i]);
    }
    return move > 0 ? answer / move : 0;
}

verdict correct(odestepper& s) {
    if (!s.stiff) {
        for (int i = 0; i < s.n; i++) s.y[i] = s.ybase[i] + s.cnew * s.dy[i];
    } else if (!newtonpass(s)) {
        s.truncerr = 2;
        if (!(std::fabs(s.h) > s.hmin)) return reduce(s);
        s.failcount++; // so that the step is cut also at the start
        return choosestep(s);
    }
    truncationtest(s);
    if (s.fixedstep || s.steps < 5) return ask(s, ODEDERIV, UNCHECKED);
    if (s.stiff) accumulationtest(s);
    if (!(s.truncerr <= 1)) return reduce(s);
    return ask(s, ODEDERIV, CHECKED);
}

verdict accept(odestepper& s) {
    if (!s.stiff) s.stiffness += std::fabs(s.h) * lipschitz(s);
    s.newjac = false;
    s.failcount = 0;
    s.stepssincejac++;
    s.tlast = s.tcur;
    s.steps++;
    s.Y[3] = s.y;
    s.dnew = s.dy;
    return ask(s, ODESTEPDONE, ATOUTPUT);
}

void restoreaccepted(odestepper& s) {
    s.y = s.Y[3];
    s.dy = s.dnew;
    s.tcur = s.tbase = s.tlast;
}

// A cubic through the new point and the three before it.
void interpolate(odestepper& s) {
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

verdict output(odestepper& s) {
    if (s.tout == s.tend && s.tout == s.tlast) {
        restoreaccepted(s);
        return ask(s, ODELAST, AFTERLAST);
    }
    const double along = (s.tout - s.tbase) * s.h;
    if (along > 0 && (s.tlast - s.tout) * s.h >= 0) {
        interpolate(s);
        return ask(s, ODEOUTPUT, ATOUTPUT);
    }
    return go(s, AFTERLAST);
}

verdict afteroutput(odestepper& s) {
    restoreaccepted(s);
    if (s.method == ODEAUTO && !s.fixedstep) choosemode(s);
    const bool due = s.refreshjac && s.stepssincejac >= s.jacinterval;
    if (!s.stiff || !(due || s.needjac)) return go(s, ATROTATE);
    s.jacinterval = std::min(2 * s.jacinterval, 1L << 30);
    s.stepssincejac = 0;
    s.newjac = true;
    s.needjac = false;
    return ask(s, ODEJACOBIAN, ATROTATE);
}

verdict rotate(odestepper& s) {
    s.h3 = s.h2;
    s.q2 = s.r2;
    s.r3 = s.s3;
    s.h2 = s.h1;
    s.h1 = s.h;
    s.r2 = s.s2;
    std::rotate(s.Y, s.Y + 3, s.Y + 4);
    std::rotate(s.D, s.D + 2, s.D + 3);
    s.D[0].swap(s.dnew);
    return choosestep(s);
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

verdict choosestep(odestepper& s) {
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
    return go(s, ATPREDICT);
}

void restorestart(odestepper& s) {
    s.stepssincejac = 0;
    s.coefcount = 0;
    s.tcur = s.tbase;
    s.y = s.Y[0];
    s.dy = s.D[0];
}

verdict asknewjacobian(odestepper& s, int resume) {
    s.newjac = true;
    s.needjac = false;
    restorestart(s);
    return ask(s, ODEJACOBIAN, resume);
}

verdict reduce(odestepper& s) {
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
            restorestart(s);
            return ask(s, code, RECORRECT);
        }
        s.failcount = 4;
    }
}

verdict recorrect(odestepper& s) {
    s.y = s.ypred;
    s.dy = s.dnew;
    s.tcur = s.tnext;
    return correct(s);
}

verdict goon(odestepper& s) {
    switch (s.resume) {
    case ATSTART: return start(s);
    case STARTDERIV: return startjacobian(s);
    case STARTJAC: return ask(s, ODESTEPDONE, STARTREPORT);
    case STARTREPORT: return startoutput(s);
    case STARTHISTORY: return inventhistory(s);
    case ATPREDICT: return predict(s);
    case PREDICTDERIV: s.dnew = s.dy; return correct(s);
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
    const size_t count = size_t(n);
    for (std::vector<double>* v : {&s.y, &s.dy, &s.Y[0], &s.Y[1], &s.Y[2], &s.Y[3], &s.D[0], &s.D[1], &s.D[2],
                                   &s.dnew, &s.ypred, &s.ybase, &s.tol, &s.newton})
        v->assign(count, 0);
    s.jac.assign(count * count, 0);
    s.pivots.assign(count, 0);
}

void odestep(odestepper& s) {
    if (s.request == ODESTART) s.resume = ATSTART;
    while (goon(s) == GOON) {}
}
