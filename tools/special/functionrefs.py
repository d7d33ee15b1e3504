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
        c = condition(only, tuple(a[i] for i in free), value) if value else 1
        if abs(value) < mpf(10) ** -300:
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
    out += rows("BESKES", lambda n, x: K(n, x) * m.exp(x), [(0, 0.1), (0.3, 3), (-2.5, 10), (7, 1000), (60, 3000.5)])
    out += rows("BESIES", lambda n, x: I(n, x) * m.exp(-abs(x)), [(0, 0.1), (2, -3.5), (-2.5, 10), (7, 1000), (60, 3000.5)])
    large = [(0, 30), (2.5, 50), (30, 70.5), (60, 40), (61.5, 10), (100, 100.5), (1.25, 3), (-2.5, 7)]
    for name, f in (("ABESSJ", J), ("ABESSY", Y), ("ABESSI", I), ("ABESSK", K)):
        out += rows(name, f, large)
    return out


@table("sphbessel")
def sphericalrows():
    out = []
    args = grid([0, 1, 2, 10, 40, 2.5], [0.001, 0.9, 4.5, 33.3, 150]) + [(-1, 2), (-4, 3.3), (-2.5, 4), (0, 1e-200)]
    for name, f in (("SPBJ", J), ("SPBY", Y), ("SPBI", I), ("SPBK", K)):
        out += rows(name, lambda n, x: m.sqrt(m.pi / (2 * x)) * f(n + mpf(1) / 2, x), args)
    out += rows("IBESSI0", lambda x: x * m.hyper([0.5], [1, 1.5], x * x / 4), [1e-9, 0.5, 3, 12, 39.9, 40.1, 300, 712, -2])

    def j0overt(x):
        with mp.workdps(int(60 + x)):
            v = x * x / 4
            return -m.euler - m.log(x / 2) + v / 2 * m.hyper([1, 1], [2, 2, 2], -v)

    out += rows("IBESSJOXI", j0overt, [1e-200, 0.01, 0.5, 1.2, 3, 5.5, 7.99, 8.01, 9.5, 12, 20, 33.3, 60, 99.5])
    return out


@table("airy")
def airyrows():
    x = [-123.4, -50, -20.2, -10.51, -10.49, -9.5, -7.3, -5, -3.49, -2.338107410459767, -2, -1.1, -0.5, -1e-5, 0, 1e-200]
    x += [0.3, 0.5, 1, 1.7, 2.5, 3.3, 4.51, 6.2, 8.8, 9.99, 10.49, 10.51, 12.3, 20, 45.6, 80]
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


if __name__ == "__main__":
    for name in sys.argv[1:] or TABLES:
        lines = TABLES[name]()
        with open(os.path.join(OUT, name + ".txt"), "w") as out:
            out.write("# %s: values by mpmath, made by tools/special/functionrefs.py\n" % name)
            out.write("\n".join(lines) + "\n")
