"""Coefficient tables of special/zeta.cpp and polylog.cpp: python3 tools/special/zetatables.py"""
from mpmath import mp, bernoulli, factorial
from chebfit import ctable

mp.dps = 40
print(ctable("eulermac", [bernoulli(2 * k) / factorial(2 * k) for k in range(1, 13)]))
print(ctable("debye", [bernoulli(2 * k) / factorial(2 * k + 1) for k in range(1, 11)]))
near0 = [abs(bernoulli(2 * k)) / (2 * k * factorial(2 * k + 1)) for k in range(1, 19)]
print(ctable("clausen0", near0))
print(ctable("clausenpi", [b * (4 ** (k + 1) - 1) for k, b in enumerate(near0)]))
