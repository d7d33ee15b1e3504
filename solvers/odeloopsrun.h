/* solvers/odeloopsrun.h - the loops of solvers/odeloops.h; included once for each processor, inside a
 * namespace of its own, where REGISTERDOUBLES tells its width. No include guard. Owns:    nothing. Callers:
 * odeloops.cpp. Never:   rounds otherwise on one processor than on another. */

inline double magnitude(double x) { return __builtin_fabs(x); }
inline double larger(double x, double y) { return x < y ? y : x; }
inline double smaller(double x, double y) { return y < x ? y : x; }
// So that no loop has a rest behind whole registers. No two vectors of a stepper overlap ("ivdep").
inline int componentsof(const odestepper& s) { return s.wide / REGISTERDOUBLES * REGISTERDOUBLES; }

// Of numbers without a sign the bits are in the order of sizes, and what is no number comes last.
inline int64_t bitsof(double x) { return __builtin_bit_cast(int64_t, x); }
inline int64_t larger(int64_t most, double error) { return bitsof(error) > most ? bitsof(error) : most; }

void adamspredict(odestepper& s) {
    const double *y0 = s.Y[0], *d0 = s.D[0], *d1 = s.D[1], *d2 = s.D[2];
    double *base = s.ybase, *guess = s.ypred, *y = s.y;
    const double c0 = s.corr[0], c1 = s.corr[1], c2 = s.corr[2];
    const double p0 = s.pred[0], p1 = s.pred[1], p2 = s.pred[2];
    const int n = componentsof(s);
#pragma GCC ivdep
    for (int i = 0; i < n; i++) {
        base[i] = y0[i] + c0 * d0[i] + c1 * d1[i] + c2 * d2[i];
        y[i] = guess[i] = y0[i] + p0 * d0[i] + p1 * d1[i] + p2 * d2[i];
    }
}

void stiffpredict(odestepper& s) {
    const double *y0 = s.Y[0], *y1 = s.Y[1], *y2 = s.Y[2], *y3 = s.Y[3];
    double *base = s.ybase, *guess = s.ypred, *y = s.y;
    const double c0 = s.corr[0], c1 = s.corr[1], c2 = s.corr[2];
    const double p0 = s.pred[0], p1 = s.pred[1], p2 = s.pred[2], p3 = s.pred[3];
    const int n = componentsof(s);
#pragma GCC ivdep
    for (int i = 0; i < n; i++) {
        base[i] = c0 * y0[i] + c1 * y1[i] + c2 * y2[i];
        y[i] = guess[i] = p0 * y0[i] + p1 * y1[i] + p2 * y2[i] + p3 * y3[i];
    }
}

void adamscorrect(odestepper& s) {
    const double *base = s.ybase, *dy = s.dnew;
    double* y = s.y;
    const double c = s.cnew;
    const int n = componentsof(s);
#pragma GCC ivdep
    for (int i = 0; i < n; i++) y[i] = base[i] + c * dy[i];
}

double truncation(odestepper& s) {
    const double *y = s.y, *guess = s.ypred, *y0 = s.Y[0];
    double *tol = s.tol, *error = s.error;
    const double errfac = s.errfac, floor = s.absfloor;
    const int n = componentsof(s);
    int64_t worst = 0;
#pragma GCC ivdep
    for (int i = 0; i < n; i++) {
        const double size = magnitude(y[i]), least = larger(floor, magnitude(y0[i]));
        tol[i] = errfac * (size > floor ? size : least);
        error[i] = magnitude((y[i] - guess[i]) / (9 * tol[i]));
        worst = larger(worst, error[i]);
    }
    return __builtin_bit_cast(double, worst);
}

void allowance(odestepper& s, double perchange, double share) {
    const double *y = s.y, *before = s.Y[2], *tol = s.tol, errfac = s.errfac;
    double* allowed = s.allowed;
    const int n = componentsof(s);
#pragma GCC ivdep
    for (int i = 0; i < n; i++) {
        const double change = magnitude(y[i] - before[i]) / 3 * errfac;
        const double least = larger(share * tol[i], 8 * DBL_EPSILON * magnitude(y[i]));
        allowed[i] = smaller(tol[i], larger(least, perchange * change));
    }
}

double blendederror(odestepper& s) {
    const double *y = s.y, *y0 = s.Y[0], *y1 = s.Y[1], *y2 = s.Y[2], *allowed = s.allowed;
    double* error = s.error;
    const double g0 = s.gap[0], g1 = s.gap[1], g2 = s.gap[2], g3 = s.gap[3];
    const int n = componentsof(s);
    int64_t worst = 0;
#pragma GCC ivdep
    for (int i = 0; i < n; i++) {
        const double gap = g0 * y[i] + g1 * y0[i] + g2 * y1[i] + g3 * y2[i];
        error[i] = __builtin_bit_cast(double, larger(bitsof(error[i]), magnitude(gap / allowed[i])));
        worst = larger(worst, error[i]);
    }
    return __builtin_bit_cast(double, worst);
}

double backwarderror(odestepper& s) {
    const double *y = s.y, *guess = s.ypred, *allowed = s.allowed;
    double* error = s.error;
    const int n = componentsof(s);
    int64_t worst = 0;
#pragma GCC ivdep
    for (int i = 0; i < n; i++) {
        const double gap = 3.0 / 22 * magnitude(y[i] - guess[i]);
        error[i] = __builtin_bit_cast(double, larger(bitsof(error[i]), magnitude(gap / allowed[i])));
        worst = larger(worst, error[i]);
    }
    return __builtin_bit_cast(double, worst);
}

void lanesolve(odestepper& s) {
    const int n = s.n / ODELANES;
    for (int i = 0; i < n; i++) {
        double *b = s.newton + i * ODELANES, sum[ODELANES];
        const double* row = s.lanefactors + i * n * ODELANES;
        for (int l = 0; l < ODELANES; l++) sum[l] = b[l];
        for (int j = 0; j < i; j++)
            for (int l = 0; l < ODELANES; l++) sum[l] += row[j * ODELANES + l] * s.newton[j * ODELANES + l];
        for (int l = 0; l < ODELANES; l++) b[l] = sum[l];
    }
    for (int i = n - 1; i >= 0; i--) {
        double *b = s.newton + i * ODELANES, sum[ODELANES];
        const double* row = s.lanefactors + i * n * ODELANES;
        for (int l = 0; l < ODELANES; l++) sum[l] = b[l];
        for (int j = i + 1; j < n; j++)
            for (int l = 0; l < ODELANES; l++) sum[l] -= row[j * ODELANES + l] * s.newton[j * ODELANES + l];
        for (int l = 0; l < ODELANES; l++) b[l] = sum[l] / row[i * ODELANES + l];
    }
}

double residual(odestepper& s, const double* allowed) {
    const double *y = s.y, *dy = s.dy, *base = s.ybase, *scale = allowed;
    double* error = s.error;
    const double c = s.cnew;
    const int n = componentsof(s);
    int64_t worst = 0;
#pragma GCC ivdep
    for (int i = 0; i < n; i++) {
        error[i] = magnitude((y[i] - c * dy[i] - base[i]) / scale[i]);
        worst = larger(worst, error[i]);
    }
    return __builtin_bit_cast(double, worst);
}

double derivativemove(odestepper& s) {
    const double *a = s.dy, *b = s.dnew, *tol = s.tol;
    const int n = componentsof(s);
    int64_t worst = 0;
#pragma GCC ivdep
    for (int i = 0; i < n; i++) worst = larger(worst, magnitude((a[i] - b[i]) / tol[i]));
    return __builtin_bit_cast(double, worst);
}

const odeloops loops{REGISTERDOUBLES, adamspredict,  stiffpredict, adamscorrect, truncation,    allowance,
                     blendederror,    backwarderror, lanesolve,    residual,     derivativemove};
