#!/usr/bin/env python3
"""Makes special/besseltables.h: the polynomials of the Bessel functions of order 0 and 1, their
integrals, and the coefficients of the expansions for fractional and for large order.

Needs mpmath. Usage: tools/special/besseltables.py > special/besseltables.h
Each polynomial is a Chebyshev interpolant at 60 digits, cut where what is left out stays below the
tolerance, and written in powers of its argument t in [-1, 1]."""
from mpmath import (mp, mpf, cos, pi, besselj, bessely, besseli, besselk, sqrt, log, exp, taylor,
                    polyval, rgamma, quad, nstr, sin, inf, hankel1, hyper, euler)

mp.dps = 60
NODES = 64


def chebyshev(f):
    """Chebyshev coefficients of the interpolant of f on [-1, 1]."""
    values = [f(cos(pi * (k + mpf(1) / 2) / NODES)) for k in range(NODES)]
    c = []
    for j in range(NODES):
        c.append(2 * sum(v * cos(pi * j * (k + mpf(1) / 2) / NODES) for k, v in enumerate(values)) / NODES)
    c[0] /= 2
    return c


def powers(c):
    """The sum of c[j] T_j in powers of t."""
    n = len(c)
    total = [mpf(0)] * n
    before, now = [mpf(1)], [mpf(0), mpf(1)]
    for j in range(n):
        for k, v in enumerate(before):
            total[k] += c[j] * v
        following = [mpf(0)] + [2 * v for v in now]
        for k, v in enumerate(before):
            following[k] -= v
        before, now = now, following
    return total


def table(name, f, what, tolerance=mpf("3e-17")):
    c = chebyshev(f)
    n = len(c)
    while n > 1 and sum(abs(v) for v in c[n - 1:]) < tolerance:
        n -= 1
    left = sum(abs(v) for v in c[n:])
    print("// %s; left out: %s." % (what, nstr(left, 2)))
    numbers(name, powers(c[:n]))


def numbers(name, values):
    print("inline constexpr double %s[%d] = {" % (name, len(values)))
    line = "   "
    for v in values:
        word = " %r," % float(v)
        if len(line) + len(word) > 108:
            print(line)
            line = "   "
        line += word
    print(line.rstrip(",") + "};\n")


def hankelpq(nu, x):
    """P and Q of Hankel's form at x: J = sqrt(2/(pi x)) (P cos chi - Q sin chi)."""
    chi = x - (nu / mpf(2) + mpf(1) / 4) * pi
    j, y = besselj(nu, x), bessely(nu, x)
    r = sqrt(pi * x / 2)
    return r * (j * cos(chi) + y * sin(chi)), r * (y * cos(chi) - j * sin(chi))


def lowest(f):
    """f at t, kept off the end t = -1 where its argument is infinite."""
    return lambda t: f(max(t, mpf(-1) + mpf(10) ** -30))


def orders01():
    square = lambda t: sqrt(32 * (t + 1))      # x of t = x^2/32 - 1, x in [0, 8]
    far = lambda t: 8 / sqrt((t + 1) / 2)      # x of t = 128/x^2 - 1, x above 8
    for nu in (0, 1):
        x1 = "" if nu == 0 else "/x"
        table("BESJ%dSMALL" % nu, lambda t: besselj(1, square(t)) / square(t) if nu else
              (besselj(0, square(t)) - 1) / square(t) ** 2,
              "%s on [0, 8], t = x^2/32 - 1" % ("J1(x)/x" if nu else "(J0(x) - 1)/x^2"), mpf("3e-18"))
        table("BESY%dSMALL" % nu,
              lambda t: (bessely(nu, square(t)) - 2 / pi * log(square(t) / 2) * besselj(nu, square(t))
                         + (2 / (pi * square(t)) if nu else 0)) / (square(t) if nu else 1),
              "(Y%d(x) - (2/pi) log(x/2) J%d(x)%s)%s on [0, 8], t = x^2/32 - 1"
              % (nu, nu, " + 2/(pi x)" if nu else "", x1))
        table("BESP%d" % nu, lowest(lambda t: hankelpq(nu, far(t))[0]),
              "P of Hankel's form of order %d above 8, t = 128/x^2 - 1" % nu)
        table("BESQ%d" % nu, lowest(lambda t: hankelpq(nu, far(t))[1] * far(t)),
              "x Q of Hankel's form of order %d above 8, t = 128/x^2 - 1" % nu)
        table("BESI%dLARGE" % nu, lowest(lambda t: sqrt(16 / (t + 1)) * exp(-16 / (t + 1)) * besseli(nu, 16 / (t + 1))),
              "sqrt(x) exp(-x) I%d(x) above 8, t = 16/x - 1" % nu, mpf("2e-17"))
        table("BESK%dLARGE" % nu, lowest(lambda t: sqrt(4 / (t + 1)) * exp(4 / (t + 1)) * besselk(nu, 4 / (t + 1))),
              "sqrt(x) exp(x) K%d(x) above 2, t = 4/x - 1" % nu)


def fractional():
    c = taylor(lambda z: rgamma(1 + z), 0, 25)
    print("// 1/Gamma(1+z) in powers of z; Abramowitz and Stegun 6.1.34, here for |z| <= 1/2; left out: 1e-25.")
    numbers("RGAMMA1", c)


def debye(last):
    """U_k(p)/p^k in powers of p^2, DLMF 10.41.9."""
    print("// U_k(p)/p^k, k from 0, in powers of p^2: k+1 numbers a row, by the recurrence DLMF 10.41.9.")
    print("inline constexpr int DEBYETERMS = %d;" % (last + 1))
    u = [mpf(1)]  # in powers of p, full
    out = []
    for k in range(last + 1):
        out += [u[k + 2 * j] for j in range(k + 1)]
        new = [mpf(0)] * (len(u) + 3)
        for n, v in enumerate(u):
            new[n + 1] += v * n / 2
            new[n + 3] -= v * n / 2
            new[n + 1] += v / (8 * (n + 1))
            new[n + 3] -= 5 * v / (8 * (n + 3))
        u = new
    numbers("DEBYEU", out)


def turning():
    """zeta, (4 zeta/(1-z^2))^(1/4) and B_0 near z = 1, in powers of w = 1 - z; DLMF 10.20(i)."""
    mp.dps = 80

    def zeta(z):
        root = sqrt(1 - z * z)
        return (mpf(3) / 2 * (log((1 + root) / z) - root)) ** (mpf(2) / 3)

    def amplitude(z):
        return (4 * zeta(z) / (1 - z * z)) ** (mpf(1) / 4)

    def b0(z):
        p = 1 / sqrt(1 - z * z)
        s = zeta(z)
        return -5 / (48 * s * s) + (5 * p ** 3 - 3 * p) / (24 * sqrt(s))

    def a1(z):
        p = 1 / sqrt(1 - z * z)
        s = zeta(z)
        u1 = (3 * p - 5 * p ** 3) / 24
        u2 = (81 * p ** 2 - 462 * p ** 4 + 385 * p ** 6) / 1152
        return -mpf(455) / 4608 / s ** 3 - mpf(7) / 48 * u1 / s ** mpf("1.5") + u2

    def fit(f, n):  # interpolation on (0, 0.05], far above the accuracy of a double
        xs = [mpf("0.05") * (1 - cos(pi * (k + mpf(1) / 2) / n)) / 2 for k in range(n)]
        d = [f(1 - x) for x in xs]
        for j in range(1, n):
            for k in range(n - 1, j - 1, -1):
                d[k] = (d[k] - d[k - 1]) / (xs[k] - xs[k - j])
        c = [mpf(0)]
        for k in range(n - 1, -1, -1):
            c = [mpf(0)] + c
            for i in range(len(c) - 1):
                c[i] -= xs[k] * c[i + 1]
            c[0] += d[k]
        return c[:n]

    print("// The expansions of DLMF 10.20(i) about the turning point, in powers of w = 1 - x/nu, |w| <= 0.02:")
    print("// zeta/w; (4 zeta/(1-z^2))^(1/4); B_0; A_1. What is left out is below 1e-17, of the last 1e-9.")
    numbers("TURNZETA", fit(lambda z: zeta(z) / (1 - z), 24)[:11])
    numbers("TURNPHI", fit(amplitude, 24)[:11])
    numbers("TURNB0", fit(b0, 24)[:8])
    numbers("TURNA1", fit(a1, 20)[:5])
    mp.dps = 60


def integrals():
    """The integral of J_0(t)/t from x on. (The quadratures take some minutes.)"""
    def j0x(x):
        v = x * x / 4
        return -euler - log(x / 2) + v / 2 * hyper([1, 1], [2, 2, 2], -v)

    def h0x(x):
        """The integral of H0(t)/t from x on, over its leading term; the path goes up from x."""
        total = quad(lambda s: hankel1(0, x + 1j * s) / (x + 1j * s) * 1j, [0, 2, 5, 10, 20, 40, 90])
        return total * sqrt(pi * x / 2) * x * exp(-1j * (x - pi / 4))

    square = lambda t: sqrt(32 * (t + 1))
    table("IBESJ0XSMALL", lambda t: (j0x(square(t)) + euler + log(square(t) / 2)) / square(t) ** 2,
          "(euler + log(x/2) + integral of J0(t)/t from x on)/x^2 on [0, 8], t = x^2/32 - 1")
    mp.dps = 30
    far = lambda t: 8 / sqrt((t + 1) / 2)
    table("IBESJ0XP", lowest(lambda t: h0x(far(t)).imag * -1),
          "P of the integral of J0(t)/t from x on above 8, t = 128/x^2 - 1", mpf("3e-17"))
    table("IBESJ0XQ", lowest(lambda t: h0x(far(t)).real * far(t)),
          "x Q of the integral of J0(t)/t from x on above 8, t = 128/x^2 - 1", mpf("3e-17"))


def main():
    print("/* special/besseltables.h - coefficient tables of the Bessel functions.")
    print(" * Owns:    constants made by tools/special/besseltables.py (mpmath, 60 digits); do not edit by hand.")
    print(" * Callers: the Bessel routines of special/.")
    print(" * Never:   anything but constants. \"left out\" bounds the error of a table before rounding. */")
    print("#pragma once\n\n// clang-format off\n")
    orders01()
    fractional()
    debye(20)
    turning()
    integrals()
    print("// clang-format on")


main()
