"""Chebyshev tables and reference rows for special/, by mpmath (python3-mpmath).

The generators beside this file use it; a table in a source file says which generator made it.
Tables are 1-based (cell 0 unused) with cell 1 counting half, as csevl wants them.
"""
from mpmath import mp, mpf, cos, pi, fsum


def cheb(f, n, a=-1, b=1, nodes=None):
    """First n Chebyshev coefficients of f on [a,b], by interpolation in `nodes` points."""
    m = nodes or 2 * n + 10
    a, b = mpf(a), mpf(b)
    xs = [cos(pi * (k + mpf(1) / 2) / m) for k in range(m)]
    fs = [f((b - a) / 2 * x + (b + a) / 2) for x in xs]
    return [2 * fsum(fs[k] * cos(j * pi * (k + mpf(1) / 2) / m) for k in range(m)) / m for j in range(n)]


def chebauto(f, a=-1, b=1, tol=mpf(2) ** -56, most=100):
    """Coefficients down to tol times the largest, with one more."""
    c = cheb(f, most, a, b)
    top = max(abs(x) for x in c)
    n = max(k for k in range(most) if abs(c[k]) > tol * top)
    return c[: min(n + 2, most)]


def ctable(name, c, note=()):
    """The table as a C++ definition."""
    out = ["// " + line for line in note]
    out.append("constexpr double %s[] = {0," % name)
    out += ["    %s%s" % (mp.nstr(x, 20), "," if k + 1 < len(c) else "};") for k, x in enumerate(c)]
    return "\n".join(out)


def row(name, args, value, tol):
    """One row `fname arg1 .. argn value tol` of tests/data/special."""
    words = [repr(float(a)) if float(a) != int(a) or abs(a) > 1e15 else str(int(a)) for a in args]
    return " ".join([name] + words + [mp.nstr(value, 17, min_fixed=-5, max_fixed=17), "%g" % tol])
