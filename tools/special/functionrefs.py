"""More reference rows of tests/data/special, by mpmath: python3 tools/special/functionrefs.py [FILE ...]

As makerefs.py, for the Bessel functions and the families after them. The error allowed is 2e-14
times the condition of the function in its arguments, never less than 1e-14.
"""
import os
import sys

from mpmath import mp, mpf
import mpmath as m
from chebfit import row
from makerefs import OUT, grid

mp.dps = 40
TABLES = {}


def table(name):
    def enter(f):
        TABLES[name] = f
        return f

    return enter


def condition(f, a, value):
    """1 and the sum of |x df/dx / f| over the arguments x."""
    total = mpf(1)
    for i, x in enumerate(a):
        step = abs(x) * mpf(10) ** -12 or mpf(10) ** -12
        moved = m.re(f(*(a[:i] + (x + step,) + a[i + 1:])))
        total += abs((moved - value) / value) * mpf(10) ** 12
    return total


def rows(name, f, args, tol=2e-14, inexact=None):
    """One row for each argument tuple (or number); `inexact` lists the arguments whose condition counts."""
    out = []
    for a in args:
        a = tuple(mpf(float(x)) for x in (a if isinstance(a, tuple) else (a,)))
        value = m.re(f(*a))
        free = tuple(range(len(a))) if inexact is None else inexact
        only = lambda *x: f(*(x[free.index(i)] if i in free else a[i] for i in range(len(a))))
        c = condition(only, tuple(a[i] for i in free), value) if value and free else 1
        if 0 < abs(value) < mpf(10) ** -300:
            raise ValueError("%s%r is too small" % (name, a))
        out.append(row(name, [float(x) for x in a], value, max(1e-14, float("%.1g" % (tol * c)))))
    return out


J = lambda n, x: m.besselj(n, x)
Y = lambda n, x: m.bessely(n, x)
I = lambda n, x: m.besseli(n, x)
K = lambda n, x: m.besselk(n, x)


@table("bessel")
def besselrows():
    ordinary = grid([0, 1, 2, 5, 0.5, 1 / 3, 2.5, 7.3], [0.01, 0.7, 1.99, 2.01, 5, 7.99, 8.01, 13.7, 31.4, 250.3])
    edges = [(0, 1e-300), (1, 1e-10), (3, 0.01), (0.25, 1e-200), (0, 2.404825557695773), (1, 3.8317059702075125),
             (0, 12345.678), (1, 1e6), (20, 20), (100, 90), (100, 110.5), (100.5, 100.5), (37.2, 41), (1000, 1005.5),
             (5000.5, 5003), (450.25, 1e4), (12, 3), (60.5, 1.5), (2 + 1e-12, 3.3), (3.5 - 1e-9, 40)]
    negative = [(-1, 2.5), (-2, 2.5), (-0.5, 3), (-1.5, 3), (-2.3, 0.2), (-7.8, 5.5), (-20.25, 30), (-3.999999, 1)]
    out = rows("BESSJ", J, ordinary + edges + negative + [(2, -3.5), (3, -3.5), (-3, -3.5)])
    out += rows("BESSY", Y, ordinary + edges + negative)
    moderate = [a for a in ordinary + edges if a[1] < 700 and not (a[1] > 200 and a[0] > 200)]
    out += rows("BESSI", I, moderate + negative + [(2, -3.5), (3, -3.5), (-3, -3.5), (50.5, 600), (0, 690.5), (75, 2)])
    out += rows("BESSK", K, moderate + negative + [(50.5, 600), (1, 660.5), (75, 20)])
    scaled = grid([0, 1, 3.3], [1e-5, 0.3, 1.9, 2.1, 12]) + [(0, 0.1), (-2.5, 10), (7, 1000), (60, 3000.5), (0.5, 1e5)]
    out += rows("BESKES", lambda n, x: K(n, x) * m.exp(x), scaled + [(0.3, 3)])
    out += rows("BESIES", lambda n, x: I(n, x) * m.exp(-abs(x)), scaled + [(2, -3.5)])
    large = [(0, 30), (2.5, 50), (30, 70.5), (60, 40), (61.5, 10), (100, 100.5), (1.25, 3), (-2.5, 7)]
    large += grid([0, 1, 20.5], [0.5, 9, 26, 180]) + [(200, 33), (150.5, 151)]
    for name, f in (("ABESSJ", J), ("ABESSY", Y), ("ABESSI", I), ("ABESSK", K)):
        out += rows(name, f, large)
    return out


@table("sphbessel")
def sphericalrows():
    out = []
    args = grid([0, 1, 2, 10, 40, 2.5], [0.001, 0.9, 4.5, 33.3, 150]) + [(-1, 2), (-4, 3.3), (-2.5, 4), (0, 1e-200), (240, 10.5)]
    for name, f in (("SPBJ", J), ("SPBY", Y), ("SPBI", I), ("SPBK", K)):
        out += rows(name, lambda n, x: m.sqrt(m.pi / (2 * x)) * f(n + mpf(1) / 2, x), args)
    out += rows("IBESSI0", lambda x: x * m.hyper([0.5], [1, 1.5], x * x / 4), [1e-9, 0.5, 3, 12, 39.9, 40.1, 300, 712, -2, 1e-200, 0.01, 1,
         1.7, 5.5, 8, 19, 60, 100, -33, 500])

    def j0overt(x):
        with mp.workdps(int(60 + x)):
            v = x * x / 4
            return -m.euler - m.log(x / 2) + v / 2 * m.hyper([1, 1], [2, 2, 2], -v)

    out += rows("IBESSJOXI", j0overt, [1e-200, 0.01, 0.5, 1.2, 3, 5.5, 7.99, 8.01, 9.5, 12, 20, 33.3, 60, 99.5, 1e-9, 0.1, 2, 4.4, 7.3, 15])
    return out


@table("airy")
def airyrows():
    x = [-123.4, -50, -20.2, -10.51, -10.49, -9.5, -7.3, -5, -3.49, -2.338107410459767, -2, -1.1, -0.5, -1e-5, 0, 1e-200]
    x += [0.3, 0.5, 0.75, 1, 1.7, 2.5, 3.3, 4.51, 6.2, 8.8, 9.99, 10.49, 10.51, 12.3, 20, 45.6, 80]
    out = rows("AIRYAI", m.airyai, x) + rows("AIRYAIP", lambda x: m.airyai(x, derivative=1), x)
    out += rows("BAIRY", lambda x, k: m.airybi(x), [(v, 0) for v in x], inexact=(0,))
    out += rows("BAIRY", lambda x, k: m.airybi(x, derivative=1), [(v, 1) for v in x if v], inexact=(0,))
    out += rows("BAIRY", lambda x, k: m.airyai(x, derivative=int(k - 2)), [(-1, 2), (1.5, 3)], inexact=(0,))
    modulus = lambda x: m.sqrt(m.airyai(x) ** 2 + m.airybi(x) ** 2)
    p = [v for v in x if v <= 1]
    out += rows("AIRYMODULUS", modulus, p)

    def phase(x):  # the principal angle on the sheet nearest to its leading terms
        angle = m.atan2(m.airybi(x), m.airyai(x))
        about = m.pi / 4 - (mpf(2) / 3 * (-x) ** 1.5 if x < 0 else 0)
        return angle + 2 * m.pi * m.nint((about - angle) / (2 * m.pi))

    out += rows("AIRYPHASE", phase, p)
    return out


@table("elliptic")
def ellipticrows():
    m0 = [0, 0.3, 0.5, 0.9, 0.999999, 1 - 1e-14, 1e-10, -0.7, -40, -1e6]
    more = [0.1, 0.2, 0.7, 0.8, 0.99, 1 - 1e-6, -1e-3, -3, -500, -1e12]
    out = rows("ELLIPK", m.ellipk, m0 + more) + rows("ELLIPE", m.ellipe, m0 + more + [1])
    phi = [1e-9, 0.2, -0.8, 1.3, 1.5707963, 1.7, -4.5, 12.3]
    out += rows("ELLIPF", m.ellipf, grid(phi, m0) + [(1.2, 1), (0.4, 3.3), (-0.2, 20)])
    out += rows("ELLIPEINC", m.ellipe, grid(phi, m0) + [(1.2, 1), (0.4, 3.3), (-0.2, 20)])
    n = [0.3, 0.999, -0.5, -3.3, -500, -1e5]
    out += rows("ELLIPPI", m.ellippi, grid(n, [0.3, 0.99999, -0.7, -40]))
    out += rows("ELLIPPI", lambda n, k: m.ellipk(k) - m.ellippi(k / n, k), [(1.5, 0.3), (7, -2), (1.01, 0.99)])
    out += rows("ELLIPPI", m.ellippi, [(-2.69, -2.6900000001), (-40, -39.99), (-1e6, -1e6 + 1), (-5, -3), (-1e9, -1e8)])
    out += rows("ELLIPPIINC", m.ellippi, grid(n, [0.3, -1.2, 4.4], [0.3, 0.99999, -0.7]) + [(1.1, 0.7, 0.5)])

    def principal(n, p, k):  # Abramowitz and Stegun 17.7.7
        p1, d = m.sqrt((n - 1) * (1 - k / n)), m.sqrt(1 - k * m.sin(p) ** 2)
        ends = m.log(abs((d + p1 * m.tan(p)) / (d - p1 * m.tan(p)))) / (2 * p1)
        return m.ellipf(p, k) - m.ellippi(k / n, p, k) + ends

    out += rows("ELLIPPIINC", principal, [(3, 1.1, 0.4), (2, 1.4, -0.5), (50, 0.9, 0.9)])
    u = [1e-8, 0.4, -1.1, 1.85, 7.7, 33.3]
    k = [0.1, 0.5, 0.95, 1 - 1e-12, 1e-9, -0.6, -90, 1.3, 55, 1, 0]
    fun = lambda kind: lambda u, k: m.re(m.ellipfun(kind, u, m=k))
    for kind in ("sn", "cn", "dn"):
        out += rows("JACOBI" + kind.upper(), fun(kind), grid(u, k))
    for kind in ("ns", "nc", "nd", "sc", "sd", "cs", "cd", "ds", "dc"):
        out += rows("JACOBI" + kind.upper(), fun(kind), grid([0.4, -1.1, 7.7, 0.02, 3.3], [0.1, 0.95, -0.6, 1.3]))

    with mp.workdps(60):
        for kind in ("sn", "cn", "dn"):
            out += rows("JACOBI" + kind.upper(), fun(kind), [(1.2, -3e7), (-0.03, -6.7e7), (0.7, 5e5), (2.5, -1e5)])

    def amplitude(u, k):
        period = 2 * m.ellipk(k)
        turns = m.nint(u / period)
        r = u - turns * period
        return turns * m.pi + m.atan2(fun("sn")(r, k), fun("cn")(r, k))

    ordinary = [0.1, 0.5, 0.95, 1 - 1e-9, -0.6, -90]
    out += rows("JACOBIAM", amplitude, grid(u, ordinary))

    def zeta(u, k):
        period = 2 * m.ellipk(k)
        r = u - m.nint(u / period) * period
        return m.ellipe(amplitude(r, k), k) - r * m.ellipe(k) / m.ellipk(k)

    with mp.workdps(60):
        out += rows("JZETA", zeta, grid(u, ordinary))
    with mp.workdps(200):
        theta = lambda n, z, q: m.jtheta(int(n), z, q)
        out += rows("THETA", theta, grid([1, 2, 3, 4], [0.2, -1.1, 5.5], [1e-5, 0.04, 0.3, 0.9, 0.99]), inexact=(1, 2))
        out += rows("THETA", theta, [(3, 0.7, -0.4), (4, 0.7, -0.4), (1, 1e-9, 0.5), (3, 0, 0.999)], inexact=(1, 2))
    return out


@table("hypergeo")
def hypergeorows():
    f21 = lambda a, b, c, x: m.hyp2f1(a, b, c, x)
    x = [0.3, -0.4, 0.8, 0.99, 1 - 1e-9, -3, -1e4]
    out = rows("HGEOF", f21, [p + (v,) for p in [(0.5, 1.5, 2.2), (1, 1, 2), (-0.3, 4, 1), (2, 3, 3.5)] for v in x])
    out += rows("HGEOF", f21, [(-5, 3.3, 0.7, 4), (-40, 41, 1, 0.3), (2, 3, 3, 0.5), (1.5, 2, 0.5, -7), (0.5, 0.5, 3, 1)])
    out += rows("HGEOF", f21, [(30, -22.5, 0.4, 0.7), (12.5, 30.1, -7.7, 0.4), (-2, 3, -5, 0.3), (100.3, 60, 150, 0.95)])
    out += rows("HGEOF", f21, [(1, 1 + 1e-9, 2, 0.999), (0.25, 1.25, 2.5, -1e8), (2.5, 2.5, 1.5, 0.5)])
    with mp.workdps(300):  # a lower parameter far below 0
        far = [(0.00027, 2e-5, -438.6, -13.88), (-8.33, 0.0004, -299.28, -349.6), (-1.5e-5, 0.827, -99.34, 0.741)]
        out += rows("HGEOF", f21, far + [(-0.25, -117.52, -0.666, 0.99998), (30.5, 20.25, 60.5, 0.9999)])
        out += rows("HGEOF", f21, [(0.00907, -0.0001336, -39.9647, 0.99999998)])
    f32 = lambda *a: m.hyp3f2(*a)
    p32 = [(0.5, 1, 1.5, 2, 2.5), (1, 2, 3, 4, 5.5), (-0.7, 1.1, 3, 2.2, 6), (0.3, 0.3, 0.3, 1.1, 1.2)]
    out += rows("GHGEOF", f32, [p + (v,) for p in p32 for v in [0.5, -0.7, 0.95, -20, -1]])
    with mp.workdps(22):  # the slow sums at 1: no condition asked
        out += rows("GHGEOF", f32, [p + (1,) for p in p32[:3]], inexact=())
    out += rows("GHGEOF", f32, [(-4, 2, 3, 1.5, 0.2, 9), (1, 2, 3, 4, 3, 0.5), (-20, 21, 0.5, 1, 1, 0.9)])
    f11 = lambda a, b, v: m.hyp1f1(a, b, v)
    out += rows("CHM", f11, grid([0.5, 2, -1.3, -6], [1, 2.5, -0.4], [0.7, -3, 30, -45, -300]))
    with mp.workdps(1500):
        out += rows("CHM", f11, [(201.06, 472.53, -1422), (291.6, 1221.2, -2688.9), (30, 75.5, -160)])
    u = lambda a, b, v: m.hyperu(a, b, v)
    out += rows("CHU", u, grid([0.3, 1, 4.4, -2.2, -3, 30], [0.5, 1, 3, -2.7, 12.2], [0.05, 1.3, 9, 120]))
    out += rows("CHU", u, [(-0.5, 2 + 1e-10, 3), (-30.5, 4, 11), (0.01, 40, 2), (2, -3, 1e-9), (1.5, 0.5, 1e5), (0.5, 0.2, 0)])
    out += rows("CHU", u, [(-3, 2, -1.5), (2.5, 4.5, 3), (60, 1, 0.001), (-7, -3, 0.4)])
    out += rows("R9CHU", lambda a, b, v: v ** a * u(a, b, v), grid([0.5, 1, -1.5, 3.3], [0.3, 1, 2], [0.5, 8]) + [(2, 0.3, 5000)])
    nu = [0, 1, 2, 0.5, 3.3, 17, -0.5, -1, -2.5, -1.7]
    with mp.workdps(60):
        out += rows("STRUVED", m.struveh, grid(nu, [0.01, 1.7, 9.9, 25, 60.3]) + [(0, 1e4), (40, 38.5), (3, -4.4), (0, -2)])
        out += rows("STRUVELD", m.struvel, grid(nu, [0.01, 1.7, 9.9, 25, 60.3]) + [(0, 600), (40, 38.5), (3, -4.4), (0, -2)])
    return out


@table("orthopoly")
def orthopolyrows():
    out = []

    def recurrence(p1, step):
        def f(*args):
            with mp.workdps(120):
                before, now = mpf(1), p1(*args)
                if args[0] == 0:
                    return mpf(1)
                for k in range(1, int(args[0])):
                    before, now = now, step(k, now, before, *args)
                return +now

        return f

    n = [0, 1, 2, 3, 7, 20, 65, 150]
    x = [-0.9, 0.3, 1 - 1e-7, 1.4, -2.5]
    jacobi = lambda n, a, b, v: m.jacobi(int(n), a, b, v)
    with mp.workdps(120):
        out += rows("JACOBI1", jacobi, grid([0, 1, 2, 5, 40], [0.5, -0.8, 3], [0, 1.7], x), inexact=(1, 2, 3))
        edge = [-1 + 1e-12, -1 + 3e-14]
        out += rows("JACOBI1", jacobi, grid([1, 2, 3, 6], edge, edge, [0.56, -0.9]), inexact=(3,))
        monic = lambda n, p, q, v: m.factorial(n) * m.gamma(n + p) / m.gamma(2 * n + p) * jacobi(n, p - q, q - 1, 2 * v - 1)
        out += rows("JACOBI2", monic, grid([1, 2, 5, 40], [1.5, 3], [0.7, 2], [0.1, 0.6, 0.99, 1.3]), inexact=(1, 2, 3))
    gegenbauer = recurrence(lambda n, a, v: 2 * a * v, lambda k, p, q, n, a, v: (2 * (k + a) * v * p - (k + 2 * a - 1) * q) / (k + 1))
    out += rows("GEGENP", gegenbauer, grid(n, [0.5, -0.3, 4], x), inexact=(1, 2))
    out += rows("GEGENP", lambda n, a, v: 2 * m.chebyt(int(n), v) / n, [(5, 0, 0.3), (12, 0, -0.7)], inexact=(2,))
    out += rows("GEGENP", gegenbauer, grid([2, 5, 25], [4e-12, -1e-14], [0.62, -0.3]), inexact=(2,))
    angle = lambda n, v: m.cos(n * m.acos(v))
    sines = lambda n, v: m.sin((n + 1) * m.acos(v)) / m.sin(m.acos(v))
    steep = [(1e6, 1e-5), (2945, 0.005), (4074155, -4.7e-6), (24133, -0.015), (777, 1e-9), (1002, 0.61), (1003, -0.7)]
    out += rows("CHEB1", angle, steep, inexact=(1,)) + rows("CHEB2", sines, steep, inexact=(1,))
    out += rows("CHEB1", lambda n, v: m.chebyt(int(n), v), grid(n, x), inexact=(1,))
    out += rows("CHEB2", recurrence(lambda n, v: 2 * v, lambda k, p, q, n, v: 2 * v * p - q), grid(n, x), inexact=(1,))
    far = [-3, 0.45, 6.6, 35, 300]
    laguerre = recurrence(lambda n, a, v: a + 1 - v, lambda k, p, q, n, a, v: ((2 * k + 1 + a - v) * p - (k + a) * q) / (k + 1))
    out += rows("ALAGUERRE", laguerre, grid(n, [0, -0.6, 5], far), inexact=(1, 2), tol=4e-14)
    out += rows("LAGUERRE", lambda n, v: laguerre(n, mpf(0), v), grid([0, 1, 7, 20], far) + [(175, 0.0215), (191, 0.0564), (150, 1e-5)], inexact=(1,), tol=4e-14)
    out += rows("HERMITE", recurrence(lambda n, v: 2 * v, lambda k, p, q, n, v: 2 * v * p - 2 * k * q), grid(n[:-1], far), inexact=(1,))
    out += rows("HERMITE2", recurrence(lambda n, v: v, lambda k, p, q, n, v: v * p - k * q), grid(n[:-1], far), inexact=(1,))
    charlier = recurrence(lambda n, a, v: 1 - v / a, lambda k, p, q, n, a, v: ((k + a - v) * p - k * q) / a)
    out += rows("CHARLIER", charlier, grid([0, 1, 5, 30], [0.4, 2.5, 40], [0.3, -2, 4, 17, 60]) + [(15, 1.37, -3.3e-13), (55, 2.9, 2e-14)], inexact=(1, 2))
    with mp.workdps(150):
        out += rows("BERNPOL", lambda n, v: m.bernpoly(int(n), v), grid([0, 1, 2, 5, 12, 40, 101, 150], [0.3, 1, -2.2, 5.5, 50, 3]), inexact=(1,))

    def legendre(l, k, v):
        with mp.workdps(150):
            l, k = int(l), int(k)
            s = m.sqrt(abs(1 - v * v))
            before, now = mpf(0), m.fac2(2 * abs(k) - 1) * s ** abs(k) * (-1) ** (k if abs(v) <= 1 else 0)
            for i in range(abs(k), l):
                before, now = now, ((2 * i + 1) * v * now - (i + abs(k)) * before) / (i - abs(k) + 1)
            if k < 0:
                now *= m.factorial(l + k) / m.factorial(l - k) * (-1) ** (k if abs(v) <= 1 else 0)
            return +now

    out += rows("LEG", lambda l, v: legendre(l, 0, v), grid(n, x), inexact=(1,))
    high = grid([1001, 3002, 12343], [1e-5, -0.3, 0.59, 0.61, -0.99, 0.99999, 1 - 1e-9])
    out += rows("LEG", lambda l, v: legendre(l, 0, v), high, inexact=(1,))
    nonwhole = lambda l, k, v: m.re(m.legenp(l, k, v, type=3 if v > 1 else 2))
    out += rows("LEG", lambda l, v: nonwhole(l, 0, v), grid([0.5, -0.3, 7.25, -4.4], [-0.8, 0.1, 0.97, 3, 50]))
    orders = [(1, 0), (1, 1), (2, 1), (5, 2), (5, 5), (20, 3), (20, 19), (90, 40)]
    args = [a + (v,) for a in orders for v in x]
    out += rows("ALEG", legendre, args + [(l, -k, v) for l, k, v in args], inexact=(2,))
    out += rows("ALEG", nonwhole, grid([0.5, 3.3], [0.5, -1.2, 2, -2], [-0.7, 0.2, 2.5]) + [(2, 0.5, 0.3)], inexact=(0, 2))
    out += rows("ALEG", nonwhole, [(3, -5, 0.4), (2, -90, -0.9), (5, -8, 2.5)], inexact=(2,))
    out += rows("PLEM", legendre, args, inexact=(2,))

    def slope(l, k, v):
        with mp.workdps(150):
            h = mpf(10) ** -40
            return (legendre(l, k, v + h) - legendre(l, k, v - h)) / (2 * h)

    out += rows("PLEMDER", slope, [a for a in args if a[:2] != (1, 0)] + [(3, 0, 0.2)], inexact=(2,))
    out += rows("PEQDER", lambda k, v: slope(k, k, v), grid([1, 2, 5, 19], x), inexact=(1,))
    return out


def complexrows(name, f, args, tol=2e-14):
    """Rows name.RE and name.IM; the error allowed of a part is that of the whole, in which both count."""
    out = []
    for a in args:
        a = tuple(mpf(float(x)) for x in a)
        w = m.mpc(f(*a))
        c = mpf(1)
        for i, x in enumerate(a):
            if x == 0 or (x == int(x) and i < len(a) - 2):
                continue
            c += abs((m.mpc(f(*(a[:i] + (x * (1 + mpf(10) ** -12),) + a[i + 1:]))) - w) / w) * mpf(10) ** 12
        for part, v in (("RE", w.real), ("IM", w.imag)):
            allowed = tol * c * (abs(w / v) if v else abs(w))
            if allowed < 1e-4:
                out.append(row(name + "." + part, [float(x) for x in a], v, max(1e-14, float("%.1g" % allowed))))
    return out


@table("complexfn")
def complexfunctionrows():
    z = [(0.7, 0.3), (-1.2, 2.5), (3.3, -0.4), (-0.2, -4.1), (12.5, 7.7), (0, 1.5), (2.5, 0), (-3.5, 0), (1e-9, 2e-9), (-2.0001, 0.001)]
    far = z + [(30, -60), (-25.5, 0.3), (-45, 20), (0.999, 1e-5), (0.1, -0.7), (1.7, 3.9), (-6.6, -1.1), (5, -8), (0.5, 0.01), (150, 90)]
    of = lambda f: lambda x, y: f(m.mpc(x, y))
    psi = lambda v: m.digamma(v) if v.real > 0 else m.digamma(1 - v) - m.pi * m.cot(m.pi * v)
    rest = lambda v: m.loggamma(v) - (v - mpf(1) / 2) * m.log(v) + v - m.log(2 * m.pi) / 2
    out = []
    for name, f in (("CLOG", m.log), ("CLNREL", lambda v: m.log(1 + v)), ("CPSI", psi), ("CLNGAM", m.loggamma)):
        out += complexrows(name, of(f), far + [(1.001, 0.002), (2.001, -0.002)])
    out += complexrows("CGAMMA", of(m.gamma), z + [(0.999, 1e-5), (1.5, 20), (-9.5, 3), (30, -6), (0.1, -0.7), (1.7, 3.9), (-6.6, -1.1), (5, -8),
                                                   (0.5, 0.01), (60, 20)])
    out += complexrows("C9LGMC", of(rest), far)
    out += complexrows("CCE1", of(m.e1), [a for a in far if a != (0, 0)] + [(-41, 3), (5, 40.5), (0.1, 3.9)])
    out += complexrows("CGAMMA", of(m.gamma), [(-120.5, 0.3), (-160.2, 1e-5), (-200, 1e-250)])
    out += complexrows("CPSI", of(psi), [(3e-200, -4e-200), (-2 + 1e-14, 3e-13), (1e-12, 2e-11)])
    out += complexrows("CCE1", of(m.e1), [(-1e-163, 2e-164), (2e-300, 1e-301)])
    functions = {1: m.exp, 2: m.log, 3: m.log10, 67: lambda v: m.log(v) / m.log(2), 4: m.sqrt, 5: m.sin, 7: m.cos, 9: m.tan,
                 64: m.cot, 74: m.sec, 75: m.csc, 11: m.sinh, 12: m.cosh, 13: m.tanh, 111: m.csch, 112: m.sech, 113: m.coth,
                 14: m.asin, 15: m.acos, 16: m.atan, 79: m.acot, 80: m.asec, 81: m.acsc, 46: m.asinh, 47: m.acosh,
                 48: m.atanh, 49: m.acoth, 50: m.asech, 51: m.acsch, 269: lambda v: m.log(1 + v)}
    some = [(0.7, 0.3), (-1.2, 2.5), (2.5, 0), (-3.5, 0), (0, -2.5), (0.001, -0.002), (1 + 1e-7, 2e-8), (-1, 1e-6), (1e-6, -1)]
    for k, f in functions.items():
        out += complexrows("CMATH", lambda s, x, y: f(m.mpc(x, y)), [(k,) + a for a in some])
    for k in (74, 75, 111, 112):  # where what they are the reciprocals of is too large
        out += complexrows("CMATH", lambda s, x, y: functions[int(s)](m.mpc(x, y)), [(k, 300, 25), (k, -25, -300)])
    power = lambda u, v, x, y: m.mpc(x, y) ** m.mpc(u, v)  # the exponent first
    out += complexrows("CPOW", power, grid([2.5, -3, 7], [0, 1.25], [0.4, -1.5], [0.3, -7]))
    return out


@table("cbessel")
def complexbesselrows():
    kinds = {1: m.besselj, 2: m.bessely, 3: m.besseli, 4: m.besselk, 5: m.hankel1, 6: m.hankel2}
    z = [(0.4, 0.3), (-1.5, 1.9), (2.2, -7.5), (-12, -16), (0, 4), (40, 1.5), (0.5, -60), (1e-5, 1e-6)]
    nu = [0, 1, 3.7, 20, -1.3]
    f = lambda k, v, x, y: kinds[int(k)](v, m.mpc(x, y))
    with mp.workdps(90):
        out = complexrows("CBESS", f, [(k, v) + a for k in kinds for v in nu for a in z if k != 2 or v != 20 or a[0] > 1e-3])
        out += complexrows("CBESS", f, [(1, 150.5, 120, 60), (3, 80, 30, 200), (4, 80, 30, 200), (2, 60.3, 50, 8), (4, 2e-4, 0.006, 0.028)])
        kelvin = {1: m.ber, 2: m.bei, 3: m.ker, 4: m.kei}
        x = [0.001, 0.4, 2.2, 9.9, 10.1, 33, 130]
        out += rows("KELVIN", lambda v, x, k: kelvin[int(k)](v, x), grid([0, 1, 2, 0.5, -3], x, [1, 2, 3, 4]), inexact=(0, 1))
        slope = lambda v, x, k: m.diff(lambda t: kelvin[int(k) - 4](v, t), x)
        out += rows("KELVIN", slope, grid([0, 2, 1.5], [0.03, 2.2, 14, 70], [5, 6, 7, 8]), inexact=(1,))
        # next to 0: the leading terms of the series
        out += rows("KELVIN", lambda v, x, k: x / 2, [(0, 1e-230, 6), (0, 1e-290, 6)], inexact=(1,))
        out += rows("KELVIN", lambda v, x, k: -x ** 3 / 16, [(0, 1e-50, 5)], inexact=(1,))
        out += rows("KELVIN", lambda v, x, k: mpf(1) / 2, [(2, 1e-9, 3), (-2, 1e-250, 3)], inexact=(1,))
        out += rows("KELVIN", lambda v, x, k: 2 / x ** 2, [(2, 1e-40, 4)], inexact=(1,))
        out += rows("KELVIN", lambda v, x, k: -m.pi * x / 16, [(2, 1e-12, 7), (2, 1e-200, 7)], inexact=(1,))
    return out


if __name__ == "__main__":
    for name in sys.argv[1:] or TABLES:
        lines = TABLES[name]()
        with open(os.path.join(OUT, name + ".txt"), "w") as out:
            out.write("# %s: values by mpmath, made by tools/special/functionrefs.py\n" % name)
            out.write("\n".join(lines) + "\n")
