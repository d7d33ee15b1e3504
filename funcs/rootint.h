/* funcs/rootint.h - a zero and an integral of a function of one variable, for ROOT and INTEGRAL.
 * Owns:    the two methods, step by step as documented; templates, so that the integrand costs no indirect
 * call. Callers: the evaluator, with the walk of a tree or with compiled code as the function. Never:   knows
 * where the function comes from. The function takes a double and gives a finite double. */
#pragma once

#include "interp/base/machine.h"

#include <algorithm>
#include <cmath>

/* A point the part t of the way from a to b, kept strictly between them wherever doubles lie there. Short
 * spans of denormal numbers are scaled up; where rounding leaves an end, the middle is tried, then the
 * smallest normal step. */
inline double interp(double t, double a, double b) {
    double d = (b - a) * t;
    if (d == 0) {
        constexpr double up = 0x1p53;
        d = a;
        if (t > 0 && a < 2.004168360008973e-292 && std::fabs(a) < 1e290)
            d = (a * up + (b * up - a * up) * t) / up;
    } else {
        d = a + d;
    }
    if (d != a && d != b) return d;
    const double lo = std::min(a, b), hi = std::max(a, b);
    d = (a + b) * 0.5;
    if (!(d > lo && d < hi)) d = lo + 2.2250738585072014e-308;
    if (!(d > lo && d < hi)) d = a;
    return d;
}

struct rootpoint {
    double x, f;
};

/* Looks for a change of sign from both ends inwards, leaning to the end with the smaller value. True: u and v
 * enclose a root, or u.f is 0. False: none was found. `extreme` is called before f(MAXPOS). */
template <class Function, class Extreme>
bool rootbracket(Function&& f, Extreme&& extreme, rootpoint& u, rootpoint& v) {
    double s = u.x, r = v.x;
    while ((u.f < 0) == (v.f < 0)) {
        rootpoint best = u, other = v;
        if (std::fabs(v.f) < std::fabs(u.f)) {
            std::swap(best, other);
            s = r;
        }
        r = other.x;
        if (best.x == s) std::swap(s, r);
        const double w = interp(0.382, best.x, s);
        if (w == best.x) return false;
        if (w == MAXPOS) extreme();
        u = {w, f(w)};
        v = best;
        if (u.f == 0) return true;
    }
    return true;
}

/* Between u and v with values of opposite sign: regula falsi whose step is lengthened by a growing factor m
 * while one end stays, and bisection when that has failed three times. Ends at a zero or at neighbouring
 * doubles. */
template <class Function> double rootshrink(Function&& f, rootpoint u, rootpoint v) {
    int k = 1;
    double m = 8, q = 0;
    for (;;) {
        if (std::fabs(v.f) < std::fabs(u.f)) std::swap(u, v);
        const double mid = interp(0.5, u.x, v.x);
        if (mid == u.x) return u.x;
        if (mid == v.x) return v.x;
        double x = mid;
        if (k < 4) {
            double t = u.f / (u.f - v.f);
            if (k > 1) t *= k == 2 ? (q * q + 1) / (1 - q) : m;
            if (!(t < 0.5)) t = 0.5;
            x = interp(t, u.x, v.x);
        }
        const rootpoint w{x, f(x)};
        if (w.f == 0) return x;
        double prior;
        if ((w.f < 0) != (u.f < 0)) {
            if (k == 3) m = 2;
            k = k == 1 ? 2 : k == 3 ? 1 : k - 1;
            prior = v.f;
            v = w;
        } else {
            if (++k > 3) {
                m *= 2;
                k = 4;
            }
            prior = u.f;
            u = w;
        }
        if (k == 2) {
            if (0.5 * std::fabs(prior) <= std::fabs(w.f))
                k = 3;
            else
                q = w.f / prior;
        }
    }
}

// A zero of f between a and b or near them; false when there was no change of sign to be found.
template <class Function, class Extreme>
bool rootfind(Function&& f, Extreme&& extreme, double a, double b, double& root) {
    rootpoint u{a, f(a)};
    if (u.f == 0) return root = a, true;
    rootpoint v{b, f(b)};
    if (v.f == 0) return root = b, true;
    if (!rootbracket(f, extreme, u, v)) return false;
    root = u.f == 0 ? u.x : rootshrink(f, u, v);
    return true;
}

/* The integral of f from a to b by a predictor and a corrector over the last three values, with steps of
 * variable length; relative tolerance 7e-5 a step. Each trial step costs one value. Where the step cannot
 * shrink further the tolerance is relaxed. */
template <class Function> struct multistep {
    Function& f;
    double a, b;
    double tol = 7e-5, hmax;
    double y = 0, yold = 0, x0;            // integral so far and at the step's start; the step's start
    double a1, a2, h3, h;                  // the last step, the sum of the last two, the one before, this one
    double e = 0.5, left = 0;              // error ratio; steps of this length still to make
    int run = -1;                          // steps since the length changed
    double f1 = 0, f2 = 0, f3 = 0;         // the last values, newest first
    double p1 = 0, p2 = 0, p3 = 0;         // weights of the predictor
    double w0 = 0, w1 = 0, w2 = 0, w3 = 0; // weights of the corrector

    multistep(Function& function, double from, double to) : f(function), a(from), b(to) {
        hmax = std::fabs(b - a) / 15;
        h3 = std::max(std::fabs(a) * 1e-5, 1e-9);
        x0 = a;
        a1 = h = h3;
        a2 = 2 * h3;
    }

    // Chooses the trial step; returns its end point.
    double choosestep(double hmin) {
        double g = std::pow(2 * e, (0.5 * e + 0.25) / (e + 1));
        g = g < 0.1 ? 0.1 : g < 10 ? g : 10;
        double hnew = std::fabs(h) / g;
        if (!(hnew < hmax)) hnew = hmax;
        if (hnew < hmin) hnew = hmin;
        const double rem = b - x0;
        double n = std::fabs(rem / hnew) + 1;
        if (n <= 1e9) n = std::floor(n);
        if (1.2 * std::fabs(a1) < std::fabs(hnew) || left < 0.5 || e > 1) {
            if (run > 0) run = 0;
            left = n;
        }
        if (left >= 1.5) {
            h = rem / left;
            return x0 + h;
        }
        if (run > 0) run = 0;
        h = rem;
        return b;
    }

    void weights(double s, double t) {
        const double q = h * h / 6, r = q / 2;
        p3 = q * (2 * s + a1) / (a2 * h3);
        p2 = -q * (2 * t + a2) / (a1 * h3);
        p1 = h - p2 - p3;
        w3 = r * h * (s + a1) / (t * a2 * h3);
        w2 = -r * h * (t + a2) / (s * a1 * h3);
        w1 = (t + 2 * a1 + a2) * r / (a1 * a2) + h / 2;
        w0 = h - w1 - w2 - w3;
    }

    double integrate() {
        if (std::fabs(b - a) <= std::fabs(a) * 1e-5) return 0;
        for (;;) {
            const double hmin = std::fabs(x0) < 1e-30 ? 1e-30 : std::fabs(x0) * 1e-12;
            const double x = choosestep(hmin);
            double s = h + a1;
            if (s == 0) s = h * 0x1p-50; // backwards, with the first, fictitious step of the same length
            const double t = s + h3;
            if (++run < 4) weights(s, t);
            const double fx = f(x);
            if (run == 0) {
                yold = y;
                f1 = f2 = f3 = fx;
            }
            const double ynew = w0 * fx + yold + w1 * f1 + w2 * f2 + w3 * f3;
            const double ypred = p1 * f1 + yold + p2 * f2 + p3 * f3;
            double scale = std::fabs(ynew);
            if (!(scale > 1e-10)) scale = std::fabs(h * fx);
            if (!(scale > 1e-10)) scale = tol;
            e = std::fabs(ynew - ypred) / (9 * (scale * tol));
            if (e > 1) {
                if (std::fabs(h) > hmin) continue;
                tol = 2 * tol * e; // accuracy is given up
                e = 0.5;
                continue;
            }
            y = ynew;
            x0 = x;
            if (x == b) return y;
            h3 = a1;
            a1 = h;
            a2 = s;
            left -= 1;
            yold = y;
            f3 = f2;
            f2 = f1;
            f1 = fx;
        }
    }
};

template <class Function> double integralof(Function&& f, double a, double b) {
    return multistep<Function>(f, a, b).integrate();
}
