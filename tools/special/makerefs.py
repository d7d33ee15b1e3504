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


def ierfc(n, x):
    """By the forward recurrence, with digits enough for its cancellation."""
    with mp.workdps(60 if x < 0 else 60 + int(x * x + 3 * x * m.sqrt(n + 1) + n)):
        before, now = 2 / m.sqrt(m.pi) * m.exp(-x * x), m.erfc(x)
        if n == -1:
            return before
        for k in range(1, int(n) + 1):
            before, now = now, (before / 2 - x * now) / k
        return now


def erfcinv(q):
    """Newton's method on log(erfc), from the asymptotic form or the inverse of erf."""
    y = m.sqrt(-m.log(q)) if q < 0.01 else m.erfinv(1 - q)
    for _ in range(60):
        c = m.erfc(y)
        y += (m.log(c) - m.log(q)) * c * m.sqrt(m.pi) / 2 * m.exp(y * y)
    return y


@table("errorfn")
def errorrows():
    x = [0, 1e-300, 1e-5, 0.3, 0.46, 0.47, 0.5, 1, 1.7, 3.9, 4.1, 5.5, -0.2, -1.3, -4.5, 8, 0.84, 2.4, -1e-9, 0.1]
    out = rows("ERF", m.erf, x)
    out += rows("ERFC", m.erfc, x + [12.3, 20, 26.5, -7])
    p = [0, 1e-300, 1e-10, 0.1, -0.3, 0.5, 0.84, 0.86, -0.95, 0.999, 1 - 1e-9, 1 - 2.0**-53, -1 + 2.0**-52, -1e-4, 0.2, 0.7, -0.75, 0.97, 0.9999, 1 - 1e-13]
    out += rows("ERFI", m.erfinv, p)
    out += rows("ERFCI", erfcinv, [1e-307, 1e-200, 1e-50, 1e-10, 0.01, 0.149, 0.151, 0.5, 1.3, 1.84, 1.86, 1.9999, 1, 1e-3, 0.05,
                                  0.3, 0.99, 1 + 1e-9, 1.6, 2 - 1e-14])
    out += rows("IERFC", ierfc, grid([-1, 0, 1, 2, 5, 20], [-3, -0.1, 0, 0.02, 0.5, 1.1, 3.3, 10.5]))
    out += rows("IERFC", ierfc, [(100, 0.05), (100, 0.3), (200, 0.01), (200, 1.5), (230, 0.2), (50, -30), (3, -1e5), (1, 25)])
    return out


@table("expint")
def expintrows():
    x = [1e-300, 1e-10, 0.1, 0.25, 0.37, 0.372507410781, 0.38, 0.49, 0.5, 1, 2.5, 5.9, 6.1, 11, 13, 23, 25, 59, 61, 200, 716]
    out = rows("EXPINT", m.ei, x + [-t for t in x if t < 700] + [-0.99, -1.01, -2.1, -4.9, -5.1, -19.9, -20.1, -700])
    order = [1, 2, 3, 10, 50, 0, -1, -4, 0.4, 0.6, 1.5, 1 + 1e-9, 2 - 1e-13, 2.999, 7.3, 12.5, -2.5]
    out += rows("EXPINTN", m.expint, grid(order, [1e-8, 0.3, 1, 1.1, 4, 30, 600]))
    out += rows("EXPINTN", m.expint, [(-19, -6.842773189560934), (-5, -1.6), (-40, -55.5), (-101, -40), (-300, -90.5), (-8, -700)])
    out += rows("EXPINTN", m.expint, [(2, 0), (3.5, 0), (0, -1.5), (-3, -0.7), (1000, 0.5), (1e6, 2)])
    out += rows("LOGINT", m.li, [1.45136923, 1.4513692348833810, 1.4514, 1.39, 1.5, 3.7, 40])  # the first two next to its zero
    out += rows("LOGINT", m.li, [0, 1e-300, 0.01, 0.5, 0.999, 1.001, 1.3, 1.45, 1.6, 2, 10, 1e6, 1e100, 1e300])
    t = [0, 1e-300, 1e-6, 0.3, 1, 2.7, 3.9, 4, 4.1, 6.2, 7.9, 8, 8.1, 12.5, 50, 1000.3, 1e8, 1e15]
    out += rows("SININT", m.si, t + [-0.4, -5, -60])
    out += rows("COSINT", m.ci, t[1:] + [0.52, 0.61650548, 0.6165054856, 0.71])
    out += rows("COSINT", m.ci, [3.38418, 22.0], 1e-8)  # 4e-9 and further from a zero
    h = [1e-300, 1e-6, 0.3, 0.5238225, 1, 1.9, 2.1, 5, 20.5, 60, 300, 715, 1e-60, 1e-3, 0.1, 0.52, 0.7, 3.3, 11.5, 120]
    out += rows("SINHINT", m.shi, h + [0, -0.3, -8])
    out += rows("COSHINT", m.chi, h)
    out += rows("LOGREL", m.log1p, [0, 1e-300, -1e-10, 1e-5, 0.1, -0.3, 0.374, 0.376, -0.374, -0.376, -0.9, -0.9999, 3, 1e10, -1e-300, 1e-9,
                                  0.01, -0.2, 0.7, 40])
    return out


def bya(f, digits=40):
    """The derivative of f(a, ..) by a, as a difference quotient at twice the digits and more."""

    def quotient(a, *rest):
        with mp.workdps(3 * digits):
            h = a * mpf(10) ** -digits
            return (f(a + h, *rest) - f(a - h, *rest)) / (2 * h)

    return quotient


@table("incgamma")
def incgammarows():
    lower = lambda a, x: m.gammainc(a, 0, x, regularized=True)
    upper = lambda a, x: m.gammainc(a, x, m.inf, regularized=True)
    near = [(1e-8, 0.5), (0.01, 1e-5), (0.3, 0.2), (0.5, 2), (1, 1), (2.5, 2), (3, 0.01), (9.9, 12), (10.1, 5), (50, 60)]
    large = [(100, 70), (199, 200), (201, 200), (200, 121), (200, 279), (500, 502.5), (1000, 1200), (1e4, 9.9e3), (1e4, 1.02e4)]
    out = rows("IGAMMA", lower, near + large + [(5, 100), (20, 1e-3), (150, 1), (0.5, 1e-300)])
    out += rows("IGAMMAC", upper, near + large + [(1e-8, 30), (5, 100), (0.2, 600), (120, 500), (1e-12, 1e-3)])
    slope = lambda a, x: -bya(upper)(a, x) if x > a else bya(lower)(a, x)
    out += rows("JGAMMA", slope, near + large[:-2] + [(2000, 1990), (1500, 1499.7), (0.5, 20), (3, 50), (150, 1)])
    return out


@table("beta")
def betarows():
    pairs = [(1, 1), (2, 3), (0.5, 0.5), (1e-8, 3), (0.3, 9.7), (9, 12), (30.5, 40.2), (100, 0.01), (300, 200.5), (1e5, 3.3)]
    out = rows("BETA", m.beta, pairs + [(-0.5, 2.2), (-3.7, -1.2), (5.3, -2.8), (200.5, -3.3), (1e10, 0.5), (-3, 2)])
    out += rows("BETA", m.beta, [(1e-300, 0.5), (0.5, -1e-5), (7, 7), (-1 + 1e-8, 0.3), (0.25, 1e6), (1000.5, 0.5)])
    ln = lambda a, b: m.loggamma(a) + m.loggamma(b) - m.loggamma(a + b)
    out += rows("LOGBETA", ln, pairs + [(1e6, 2e6), (1e10, 1e-3), (1e300, 1e300), (1e-300, 5), (1.2, 0.8)])
    out += rows("LOGBETA", ln, [(0.3, 2e5), (9.9, 10.1), (11, 0.2), (1e-5, 1e-6), (400, 3), (1e15, 2.5)])
    part = lambda a, b, x: m.betainc(a, b, 0, x, regularized=True)
    shapes = grid([0.01, 0.5, 1, 3.2, 25], [0.01, 0.7, 2, 11], [1e-6, 0.1, 0.5, 0.9, 1 - 1e-6])
    hard = [(1e-6, 0.5, 0.3), (10, 1e-8, 0.95), (0.5, 1e-6, 1 - 1e-9), (200, 300, 0.41), (1e3, 1e3, 0.5), (5e3, 40, 0.99)]
    out += rows("IBETA", part, shapes + hard + [(1e-3, 1e-3, 0.5), (150, 1e-3, 0.999), (8, 500, 0.03), (60, 70, 0.1)])
    out += rows("IBETA", part, grid([0.3, 3, 45.5, 700], [1, 4, 8], [0.02, 0.6, 0.999]))
    out += rows("IBETA", lambda a, b, x: b / (a + b), [(5.6e-186, 1.1e-185, 7.8e-95), (1e-21, 3e-60, 0.5)])
    jhard = [(0.08, 0.008, 1e-6), (0.1, 0.07, 1 - 1e-9), (50, 60, 0.45), (300, 200, 0.61), (0.01, 20, 0.5), (30, 0.1, 0.2)]
    jrows = grid([0.02, 0.6, 4], [0.05, 1, 7.5], [1e-4, 0.3, 0.97]) + jhard
    bye = lambda a, b, x, which: bya(part)(a, b, x) if which == 1 else bya(lambda b, a, x: part(a, b, x))(b, a, x)
    out += rows("JBETA", bye, [r + (w,) for r in jrows for w in (1, 2)])
    poch = lambda a, x: m.gammaprod([a + x], [a])
    args = [(0.5, 3), (2.5, -4), (3.3, 0.7), (-2.5, 6), (-7.3, -2.2), (1e5, 3.3), (-1e4 - 0.5, 2.25), (12, 0.001), (-3, 5), (-8, 3)]
    out += rows("POCH", poch, args + [(-8, -60), (160, 20.5), (1, 170), (0.1, -0.05), (250.5, -100.25), (-3.5, 60)])
    out += rows("POCH", poch, [(1e8, -2.5), (0.5, 1e-9), (7, 7), (-0.3, 0.6), (30, 20.5), (2, -0.999)])
    poch1 = lambda a, x: (poch(a, x) - 1) / x
    small = [(0.5, 1e-10), (3.3, -1e-7), (-2.7, 1e-12), (1e6, 1e-3), (-50.25, -1e-5), (0.01, 0.3), (1.5, 1e-9), (20, 0.5)]
    with mp.workdps(80):
        out += rows("POCH1", poch1, args + small)
    out += rows("POCH1", lambda a, x: m.psi(0, a), [(0.5, 0), (-3.3, 0)])
    return out


def partitions(n, distinct):
    """By the parts, one after the other, in whole numbers."""
    p = [1] + [0] * n
    for part in range(1, n + 1):
        for k in range(n, part - 1, -1) if distinct else range(part, n + 1):
            p[k] += p[k - part]
    return p


@table("combin")
def combinrows():
    out = rows("FACT", m.factorial, [0, 1, 2, 3, 4, 7, 12, 20, 22, 23, 60, 100, 170], 2e-16)
    out += rows("FACT", m.factorial, [0.5, 3.3, -0.5, -2.7, 60.1, 169.9, -0.999999, 1e-9])
    whole = [(0, 0), (5, 2), (52, 5), (60, 30), (5, 7), (5, -1), (-4, 3), (-1, 6), (66, 33), (1e10, 2)]
    out += rows("BINCOEF", m.binomial, whole, 2e-16)
    more = [(100, 50), (1000, 500), (1e6, 40), (0.5, 5), (-2.5, 8), (7.2, 3.3), (282.9, 7.75), (-1.5, 0.4), (10, 2.5), (1e5, 0.01)]
    more += [(-5.000000005, 6e-12), (-581.2, 3e-7), (2.2e13, 24.3), (-505.5, -132.2), (300.5, 410.25), (300.5, -80.3), (-90.4, -30.3)]
    out += rows("BINCOEF", m.binomial, more)
    pairs = [(0, 0), (5, 0), (1, 1), (6, 3), (10, 4), (25, 1), (25, 24), (25, 25), (3, 7), (20, 11),
             (2, 1), (7, 4), (12, 6), (30, 15), (40, 38), (50, 2)]
    more = [(100, 3), (100, 60), (150, 149), (160, 90)]
    out += rows("STIRL1", lambda n, k: m.stirling1(int(n), int(k), exact=True), pairs + more)
    out += rows("STIRL2", lambda n, k: m.stirling2(int(n), int(k), exact=True), pairs + more + [(1000, 2), (1024, 1010), (200, 17)])
    out += rows("STIRL2", lambda n, k: m.binomial(n, 2), [(2e6, 2e6 - 1)], 1e-15)
    out += rows("STIRL1", lambda n, k: (3 * n - 1) * m.binomial(n, 3) / 4, [(2e6, 2e6 - 2)], 1e-15)
    out += rows("CATNUM", lambda n: m.binomial(2 * n, n) / (n + 1), [0, 1, 2, 3, 4, 5, 7, 10, 15, 20, 25, 30, 33, 34, 50, 77, 100, 200, 333, 519])
    out += rows("BERNUM", lambda n: m.bernoulli(int(n)), [0, 1, 2, 3, 4, 6, 8, 10, 12, 14, 16, 20, 30, 50, 60, 100, 101, 150, 200, 258], 2e-16)
    out += rows("EULNUM", lambda n: m.eulernum(int(n)), [0, 1, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 30, 40, 50, 75, 100, 150, 186], 2e-16)
    u, d = partitions(3000, False), partitions(3000, True)
    n = [0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 20, 50, 77, 100, 200, 416, 417, 1000, 1001, 3000]
    out += rows("PARTU", lambda n: mpf(u[int(n)]), n, 1e-15)
    out += rows("PARTD", lambda n: mpf(d[int(n)]), n + [1300, 1301], 1e-15)
    out += rows("HARNUM", m.harmonic, [0, 1, 2, 10, 60, 61, 1e6, 1e300, 0.5, -0.3, 1e-9, -1e-15, -2.5, -0.999, 3, 5, 20, 100, 1e15, -1e4 - 0.5])
    return out


def sievert(x, theta):
    end = min(m.asinh(m.tan(theta)), 2 * m.asinh(m.sqrt(50 / x)) if x else m.inf)
    return m.quad(lambda s: m.exp(-x * m.cosh(s)) / m.cosh(s), m.linspace(0, end, 40))


def abram(order, x):
    """Trapezoidal rule in log(t); the integrand is entire and falls off doubly exponentially."""
    g = lambda s: m.exp((order + 1) * s - m.exp(2 * s) - x * m.exp(-s))
    h = mpf(1) / 128
    low = -60 if x < 0.01 else -14
    return h * m.fsum(g(k * h) for k in range(128 * low, 128 * 5))


def cabram(order, re, im, part):
    """The same along the ray that a third of the argument's angle gives."""
    z = m.mpc(re, im)
    turn = m.exp(m.mpc(0, m.arg(z) / 3))
    g = lambda s: (turn * m.exp(s)) ** (order + 1) * m.exp(-((turn * m.exp(s)) ** 2) - z / turn * m.exp(-s))
    h = mpf(1) / 128
    value = h * m.fsum(g(k * h) for k in range(-128 * 14, 128 * 5))
    return value.real if part == 0 else value.imag


@table("physint")
def physintrows():
    out = rows("SIEVERT", sievert, grid([0, 1e-6, 0.1, 1, 10, 300], [0.01, 0.7, 1.5, -1.2]))
    out += rows("SIEVERT", sievert, [(1e-8, 1.5707963267948966), (0.5, 1.5707963267948966), (700, 1.57), (20, 1.5707963)])
    out += rows("ABRAM", abram, grid([0, 1, 2, 5, 0.5, -3], [1e-3, 0.1, 1, 5, 40, 800]))
    out += rows("ABRAM", abram, [(20, 1e-6), (60, 3), (-20, 2), (3, 5000)])
    out += rows("ABRAM", lambda k, x: m.gamma((k + 1) / 2) / 2, [(0, 0), (1, 0), (4.5, 0)])
    points = grid([0, 1, 3, -2], [(0.5, 0.3), (0.01, 1), (2, -5), (0, 1), (20, 30)], [0, 1])
    for k, z, p in points:  # the error allowed is relative to the modulus
        whole = m.sqrt(cabram(k, *z, 0) ** 2 + cabram(k, *z, 1) ** 2)
        out += rows("CABRAM", cabram, [(k,) + z + (p,)], float(1e-13 * whole / abs(cabram(k, *z, p))))
    return out


@table("elementary")
def elementaryrows():
    x = [-0.999, -0.75, -0.5, -0.49, -0.2, -0.03, -1e-3, -1e-9, 1e-300, 1e-160, 1e-15, 1e-4, 0.02, 0.065, 0.3, 0.33]
    f = lambda t: m.log1p(t) - t
    with mp.workdps(360):
        return rows("LOG1PMX", f, [v for v in x if abs(v) > 1e-150] + [0.99, 1, 1.5, 100, 1e10, -0.01], 1e-15)


if __name__ == "__main__":
    for name in sys.argv[1:] or TABLES:
        with open(os.path.join(OUT, name + ".txt"), "w") as out:
            out.write("# %s: values by mpmath, made by tools/special/makerefs.py\n" % name)
            out.write("\n".join(TABLES[name]()) + "\n")
