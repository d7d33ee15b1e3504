"""Coefficient tables of special/expint.cpp and sincosint.cpp: python3 tools/special/expinttables.py"""
from mpmath import mp, mpf, ci, cos, e1, ei, exp, findroot, log, log1p, nstr, pi, si, sin
from chebfit import chebauto, ctable

mp.dps = 60


def part(name, f, low, high):
    """f in t = 1/x on [low,high] of x; high None is infinity."""
    near = mpf(1) / low
    far = mpf(0) if high is None else mpf(1) / high
    c = chebauto(lambda t: f(1 / t) if t > mpf(10) ** -30 else mpf(1), far, near)
    print(ctable(name, c, ["%d terms, x from %s to %s" % (len(c), low, high)]))


eis = lambda x: x * exp(-x) * ei(x)
e1s = lambda x: x * exp(x) * e1(x)
part("eics1", eis, 6, 12)
part("eics2", eis, 12, 24)
part("eics3", eis, 24, 60)
part("e1cs1", e1s, 1, 2)
part("e1cs2", e1s, 2, 5)
part("e1cs3", e1s, 5, 20)
part("e1cs4", e1s, 20, None)

f = lambda x: ci(x) * sin(x) + (pi / 2 - si(x)) * cos(x)
g = lambda x: -ci(x) * cos(x) + (pi / 2 - si(x)) * sin(x)


def auxiliary(name, fun, low, high):
    """fun in t = 1/x^2 on [low,high] of x."""
    near = mpf(1) / low**2
    far = mpf(0) if high is None else mpf(1) / high**2
    c = chebauto(lambda t: fun(1 / t ** mpf("0.5")) if t > mpf(10) ** -26 else mpf(1), far, near)
    print(ctable(name, c, ["%d terms, x from %s to %s" % (len(c), low, high)]))


auxiliary("fcs1", lambda x: x * f(x), 4, 8)
auxiliary("fcs2", lambda x: x * f(x), 8, None)
auxiliary("gcs1", lambda x: x * x * g(x), 4, 8)
auxiliary("gcs2", lambda x: x * x * g(x), 8, None)

print(ctable("alnrcs", chebauto(lambda x: (1 - log1p(x) / x) / x if x else mpf(1) / 2, -0.375, 0.375)))
root = findroot(ei, mpf("0.3725"))
print("// zero of Ei:", float(root).hex(), nstr(root - mpf(float(root)), 20))
gam = mp.euler
near0 = mpf(10) ** -20
print(ctable("sics", chebauto(lambda t: si(t ** mpf("0.5")) / t ** mpf("0.5") if t > near0 else mpf(1), 0, 16)))
cin = lambda t: (ci(t ** mpf("0.5")) - gam - log(t) / 2) / t if t > near0 else -mpf(1) / 4
print(ctable("cics", chebauto(cin, 0, 16)))
