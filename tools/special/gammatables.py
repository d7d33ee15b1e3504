"""Coefficient tables of special/gamma.cpp and digamma.cpp: python3 tools/special/gammatables.py"""
from mpmath import mp, mpf, chebyfit, factorial, findroot, gamma, log, loggamma, nstr, pi, psi, sqrt
from chebfit import cheb, chebauto, ctable

mp.dps = 60


def stirlingrest(x):
    return loggamma(x) - (x - mpf(1) / 2) * log(x) + x - log(2 * pi) / 2


print(ctable("gamcs", cheb(lambda y: gamma(1 + y) - mpf("0.9375"), 23, 0, 1, nodes=80)))
print(ctable("algmcs", cheb(lambda t: (lambda x: x * stirlingrest(x))(10 / sqrt((t + 1) / 2)), 7, nodes=40)))

p = chebyfit(lambda w: stirlingrest(1 / sqrt(w)) / sqrt(w), [mpf(10) ** -12, mpf(1) / 49], 5)
print("// stirlingcs, lowest power first:", ", ".join(nstr(c, 20) for c in reversed(p)))

log12 = lambda y: (psi(0, 1 + y) / (2 * y - 1)) if y in (0, 1) else loggamma(1 + y) / (y * (y - 1))
print(ctable("lgam12cs", chebauto(log12, 0, 1)))

root = findroot(lambda x: psi(0, x), mpf("1.4616321449683623"))
print("// zero of psi:", float(root).hex(), nstr(root - mpf(float(root)), 20))
print(ctable("psics", chebauto(lambda y: psi(0, 1 + y) / (y - (root - 1)), 0, 1)))

print("// n!, n = 0..170, rounded")
print(",\n".join("%s" % repr(float(factorial(n))) for n in range(171)))
