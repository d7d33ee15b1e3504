/* special/hbpower.h - the power of a comparison of two survival curves.
 * Owns:    the expected log-rank or weighted statistic of two groups and its power.
 * Callers: the builtin dispatch.
 * Never:   prints; bad input is noted in special/fault.h. */
#pragma once

// Survival 1 at time 0 if the points begin later, linear between the points; times ascend, survival falls in
// [0,1].
struct survivalcurve {
    const double* time;
    const double* survival;
    int count;
};

/* The design of a trial (M. Halperin, B. W. Brown, Controlled Clinical Trials 8, 1987, 235). */
struct trialdesign {
    double alpha = 0.05;      // level of the test
    double n = 30;            // subjects in the control group
    double ratio = 1;         // subjects in the treated group, for one control
    double sides = 1;         // 1 or 2
    double subdivisions = 20; // of each interval between points of the curves
    double weight = 0;        // power of the number at risk: 0 log-rank, 0.5 Tarone-Ware, 1 Gehan
};

/* The probability that the test finds a difference between groups that follow the two curves up to the last
 * time that both have, from the expected statistic and its variance under the hypothesis of no difference
 * (asymptotic normality). Errors: shape "HBPOWER" for a bad curve, range "HBPOWER" for a bad design; the
 * result is then 0. */
double hbpower(const survivalcurve& control, const survivalcurve& treated, const trialdesign& design);
