#include "special/beta.h"

#include "interp/base/machine.h"
#include "special/elementary.h"
#include "special/fault.h"
#include "special/gamma.h"
#include "special/incgamma.h"
#include "special/range.h"

#include <cmath>

namespace {
constexpr int kept = 64;      // steps of a continued fraction whose coefficients are kept
constexpr double itmax = 2e6; // steps of a continued fraction
constexpr int block = 4;      // steps between two looks at the convergence
constexpr double eps = 0.5 * MACHEPS;

/* Step n = 1, 2, .. of the continued fraction of A. R. DiDonato and A. H. Morris, Algorithm 708, ACM TOMS 18
 * (1992) 360, equation (9): I_x(a,b) is betaterm over beta[0] + alpha[1]/(beta[1] + alpha[2]/(beta[2] + ..))
 * with alpha[n] = alpha x^2 and beta[n] = n + rise x + share (lambda + 1 + n (1+y)), lambda = a - (a+b) x.
 * Against the plain fraction it takes half the steps and loses nothing where lambda is small. */
struct betastep {
    double alpha, rise, share;
};

betastep makestep(double a, double b, double n) {
    const double d = a + (2 * n - 1), r = n * (b - n) / d;
    return {(a + (n - 1)) / d * (a + b + (n - 1)) * r, r, (a + n) / (d + 2)};
}

/* What the last (a,b) leaves for further arguments x: the way to betaterm with its constants, the
 * coefficients of the fractions of I_x(a,b) and I_y(b,a) as far as they were needed. */
struct betaconstants {
    enum { BOTHSMALL, ASMALL, BSMALL, BOTHLARGE } form = BOTHSMALL; // against 10
    double a = 0, b = 0;
    double factor = 1, rest = 0;
    betastep step[2][kept + 1]; // [0] for (a,b), [1] for (b,a)
    int known[2];

    void set(double anew, double bnew);
    const betastep* steps(int side, int upto);
};
betaconstants lastbeta;

void betaconstants::set(double anew, double bnew) {
    if (anew == a && bnew == b) return;
    a = anew;
    b = bnew;
    known[0] = known[1] = 0;
    form = a < 10 ? (b < 10 ? BOTHSMALL : ASMALL) : (b < 10 ? BSMALL : BOTHLARGE);
    if (form == BOTHSMALL) factor = rgamma(a) * rgamma(b) * gammafn(a + b);
    if (form == ASMALL) rest = -gammaratiorest(a, b), factor = rgamma(a);
    if (form == BSMALL) rest = -gammaratiorest(b, a), factor = rgamma(b);
    if (form == BOTHLARGE)
        factor = std::sqrt(a / (a + b) * b / (2 * PI)) * std::exp(r9lgmc(a + b) - r9lgmc(a) - r9lgmc(b));
}

const betastep* betaconstants::steps(int side, int upto) {
    for (int& k = known[side]; k < upto;) {
        k++;
        step[side][k] = side == 0 ? makestep(a, b, k) : makestep(b, a, k);
    }
    return step[side];
}

// x^p y^q with small p and large q, scaled by (p+q)^p: the way of ASMALL and BSMALL
double lopsided(double p, double q, double x, double y, double rest) {
    const double lny = y < 0.5 ? std::log(y) : std::log1p(-x);
    return std::exp(p * std::log(x * (p + q)) + q * lny + rest);
}

// p log(x (p+q)/p) less its linear term t, where t = x (p+q)/p - 1
double deviance(double p, double t, double ratio) {
    return p * (t > -0.75 ? log1pmx(t) : std::log(ratio) - t);
}

double betatermof(const betaconstants& c, double x, double y) {
    const double a = c.a, b = c.b;
    if (c.form == betaconstants::ASMALL) return c.factor * lopsided(a, b, x, y, c.rest);
    if (c.form == betaconstants::BSMALL) return c.factor * lopsided(b, a, y, x, c.rest);
    if (c.form == betaconstants::BOTHLARGE) {
        const double lambda = a * y - b * x; // the linear terms of the two deviances are -lambda and lambda
        const double ta = -lambda / a, tb = lambda / b;
        return c.factor * std::exp(deviance(a, ta, x / a * (a + b)) + deviance(b, tb, y / b * (a + b)));
    }
    const double e = a * std::log(x) + b * std::log(y); // the rounding of 1-x does no harm to powers below 10
    return e > -20 ? c.factor * std::exp(e) : c.factor * std::pow(x, a) * std::pow(y, b);
}

/* The convergents of the fraction by the forward recurrence, which needs no division; the last is held
 * against the one before. */
struct convergents {
    double x, y, lambda1; // lambda + 1
    double a1, b1, a0, b0;

    void advance(const betastep& s, double n) {
        const double alpha = s.alpha * x * x, beta = n + s.rise * x + s.share * (lambda1 + n * (1 + y));
        const double an = beta * a1 + alpha * a0, bn = beta * b1 + alpha * b0;
        a0 = a1, a1 = an;
        b0 = b1, b1 = bn;
    }
    bool settled() const { return std::fabs(a1 * b0 - a0 * b1) <= eps * std::fabs(a1 * b0); }
    // keeps the numbers away from overflow: a block multiplies them by 1e150 at most
    void rescale() {
        if (std::fabs(b1) > 1e-100 && std::fabs(b1) < 1e100) return;
        const double s = 1 / std::fabs(b1);
        a0 *= s, b0 *= s, a1 *= s, b1 *= s;
    }
};

// 1/(beta[0] + ..) for I_x(a,b), side 0, or with a and b exchanged, side 1; lambda is then that of the
// exchange
double betafraction(betaconstants& c, int side, double x, double y, double lambda) {
    const double a = side == 0 ? c.a : c.b, b = side == 0 ? c.b : c.a;
    convergents f = {x, y, lambda + 1, a / (a + 1) * (lambda + 1), 1, 1, 0};
    for (int k = 0; k < kept; k += block) {
        const betastep* step = c.steps(side, k + block) + k;
        for (int j = 1; j <= block; j++) f.advance(step[j], k + j);
        if (k > 0 && f.settled()) return f.b1 / f.a1; // one block hardly ever does
        f.rescale();
    }
    for (double k = kept + 1; k < itmax; k += block) {
        for (int j = 0; j < block; j++) f.advance(makestep(a, b, k + j), k + j);
        if (f.settled()) return f.b1 / f.a1;
        f.rescale();
    }
    spnote(SPERR, "IBETA: a or b too big, or itmax too small");
    return 0;
}

/* I_x(a,b) for b < 1 and small y, where 1 - I_y(b,a) would cancel: I_y(b,a) is y^b/(b B(a,b)) (1 + b sum),
 * and the logarithm of its first factor is of the order of b. */
double uppersmallb(double a, double b, double y) {
    double term = 1, sum = 0;
    for (int n = 1; n < 1000; n++) {
        term *= (n - a) / n * y;
        sum += term / (b + n);
        if (std::fabs(term) < 1e-18 * std::fabs(sum)) break;
    }
    const double ln = b * std::log(y) - loggamma1p(b) - loggammaratio(b, a);
    return -std::expm1(ln) - std::exp(ln) * b * sum;
}
/* Where a parameter is beyond all measure: next to 0 the variate sits on an end, and for large b that of
 * parameter a follows a gamma law in b x, to a relative (b x)^2/b. */
double betalimit(double a, double b, double x, double y) {
    if (a < 1e-290 || b < 1e-290) return a < 1e-290 && b < 1e-290 ? b / (a + b) : a < b;
    if (a < 1e3) return igamma(a, std::fmin(b * x, MAXPOS));
    if (b < 1e3) return igammac(b, std::fmin(a * y, MAXPOS));
    spnote(SPERR, "IBETA: a or b too big, or itmax too small");
    return 0;
}

// I_x(a,b) for whole b up to 8: x^a times the sum of (a)_k y^k/k!, k < b (DLMF 8.17.5); nothing cancels.
double finiteibeta(double a, int b, double x, double y) {
    double term = 1, sum = 1, power = 1;
    for (int k = 1; k < b; k++) sum += term *= (a + (k - 1)) * y / k;
    if (a > 8 || a != std::trunc(a)) return std::pow(x, a) * sum;
    for (int k = 0; k < static_cast<int>(a); k++) power *= x;
    return power * sum;
}
} // namespace

double betaterm(double a, double b, double x, double y) {
    lastbeta.set(a, b);
    return betatermof(lastbeta, x, y);
}

double ibetaxy(double a, double b, double x, double y) {
    if (!(a >= 0 && b >= 0 && a + b > 0 && x >= 0 && y >= 0)) return outofrange("IBETA", 0);
    if (x == 0 || y == 0) return y == 0;
    if (a < 1e-20 && b < 1e-20) return b / (a + b); // x^a and y^b are 1 for every double
    if (a < 1e-100) return 1;
    if (b >= 1 && b <= 8 && a < 1e3 && b == std::trunc(b))
        return std::fmin(finiteibeta(a, static_cast<int>(b), x, y), 1);
    if (a < 1e-290 || b < 1e-290 || b > 1e19 || a > 1e19) return betalimit(a, b, x, y);
    lastbeta.set(a, b);
    const double term = betatermof(lastbeta, x, y);
    if (term == 0) return x * (a + b) > a;
    const double lambda = a * y - b * x;
    const bool lower = x * (a + b + 2) < a + 1;
    const double fraction =
        lower ? betafraction(lastbeta, 0, x, y, lambda) : betafraction(lastbeta, 1, y, x, -lambda);
    const double tail = term * fraction;
    if (lower || fraction == 0) return tail;
    return tail > 0.75 && b < 1 ? uppersmallb(a, b, y) : 1 - tail;
}

double ibeta(double a, double b, double x) { return ibetaxy(a, b, x, 1 - x); }
