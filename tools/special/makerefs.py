"""Reference rows of tests/data/special, by mpmath: python3 tools/special/makerefs.py [FILE ...]

Each table holds for a function the argument rows, chosen over ordinary and hard regions, and the
relative error allowed. Arguments are taken as the doubles they round to.
"""
import itertools
import os
import sys

from mpmath import mp, mpf
import mpmath as m
from chebfit import row

mp.dps = 40
HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "..", "tests", "data", "special")
TABLES = {}


def table(name):
    def enter(f):
        TABLES[name] = f
        return f

    return enter


def rows(name, f, args, tol=1e-13):
    """One row for each argument tuple (or number)."""
    out = []
    for a in args:
        a = a if isinstance(a, tuple) else (a,)
        a = tuple(float(x) for x in a)
        out.append(row(name, a, m.re(f(*(mpf(x) for x in a))), tol))
    return out


def grid(*axes):
    return list(itertools.product(*axes))


@table("gamma")
def gammarows():
    near = [-1 + 1e-7, -1 - 1e-7, -2 + 1e-6, -7 - 1e-6, 1e-300, -1e-300, 5e-309 * 2]
    ordinary = [0.5, 1.5, -0.5, -1.5, 2.3, 3.7, 9.99, 10.01, -9.99, -10.01, 0.1, 0.9, 6.25, -3.3, 1.2e-5]
    out = rows("GAMMA", m.gamma, ordinary + near + [20.5, 50.1, 100.7, 150.3, 170.9, 171.61, -20.5, -100.3, -150.7])
    out += rows("GAMMA", m.gamma, [1, 2, 5, 11, 23, 100, 171], 1e-15)
    small = [0.5, 0.3, 0.7, 1.3, 1.999, 2.49, 2.51, 3, 6.9, 7.1, 1e-5, 1e-300]
    out += rows("LOGGAMMA", m.loggamma, small + [10, 100, 1e5, 1e10, 1e100, 1e305])
    out += rows("LOGGAMMA", m.loggamma, [1 + 1e-10, 1 - 1e-10, 2 + 1e-12, 2 - 1e-12, 1 + 2.0**-52, 1.00001])
    psi = lambda n: (lambda x: m.psi(n, x))
    out += rows("DIGAMMA", psi(0), [1, 2, 0.5, 0.1, 1e-10, 3.7, 9.9, 10.1, 100, 1e10, 1e300, -0.5, -1.5, -9.3])
    out += rows("DIGAMMA", psi(0), [1.4616321449683622, 1.4616321, 1.46, -0.3, -20.6, -1e5 - 0.25, 1e-308])
    pgamma = lambda n, x: m.psi(int(n), x)
    out += rows("PGAMMA", pgamma, grid([1, 2, 5], [0.01, 0.5, 1, 3.3, 12.7, 1e4, -0.5, -3.3, -10.2]))
    out += rows("PGAMMA", pgamma, [(0, 0.7), (19, 10.3), (60, 30.5), (100, 0.9), (169, 2.5), (30, 1e8), (3, -1e5 - 0.4)])
    return out


@table("zeta")
def zetarows():
    s = [-0.05, -0.5, 0, 0.3, 0.5, 0.9, 1.0000001, 0.99999999, 1.5, 2, 3, 4, 10.5, 20, 60, 400]
    neg = [-1, -1.5, -2.1, -3, -10.5, -19, -50.2, -150.3, -250.7]
    zerolike = [-2 + 1e-9, -20 - 1e-7]
    lam = lambda x: m.log(2) / 2 * 0 if x == 0 else (1 - mpf(2) ** -x) * m.zeta(x)
    beta = lambda x: mpf(4) ** -x * (m.zeta(x, mpf(1) / 4) - m.zeta(x, mpf(3) / 4))
    out = rows("ZETA", m.zeta, s + neg + zerolike)
    out += rows("LAMBDA", lam, [x for x in s + neg if x != 0 and x > -200] + [1e-8, -1e-8, -1 + 1e-9])
    with mp.workdps(80):
        out += rows("BETACAT", beta, [x for x in s + neg if x > -200 and x != 1] + [-1 + 1e-9])
    out += rows("BETACAT", lambda x: m.pi / 4, [1])
    li2 = lambda x: m.polylog(2, x)
    out += rows("DILOG", li2, [-1e10, -50, -2, -1.01, -1, -0.9, -0.3, -1e-8, 0, 1e-20, 0.1, 0.49, 0.51, 0.8, 0.99, 1])
    out += rows("DILOG", li2, [1 - 1e-12, 0.999999, -1e-300, -1e100])
    cl2 = lambda x: m.clsin(2, x)
    out += rows("CLAUSEN", cl2, [0, 1e-300, 1e-8, 0.1, 0.5, 1, 1.0471975511965976, 1.5, 2, 2.1, 2.5, 3, 3.14, 3.1415926])
    out += rows("CLAUSEN", cl2, [-0.5, -2.5, 4, 5, 6, 6.28, 7, 50, -100, 1000.5, 1e6])
    return out


if __name__ == "__main__":
    for name in sys.argv[1:] or TABLES:
        with open(os.path.join(OUT, name + ".txt"), "w") as out:
            out.write("# %s: values by mpmath, made by tools/special/makerefs.py\n" % name)
            out.write("\n".join(TABLES[name]()) + "\n")
