#!/usr/bin/env python3
"""Prints the table of special/airy.cpp: Ai, Ai', Bi, Bi' at the integers from -10 to 10 (mpmath)."""
from mpmath import mp, airyai, airybi

mp.dps = 40
for n in range(-10, 11):
    row = [airyai(n), airyai(n, derivative=1), airybi(n), airybi(n, derivative=1)]
    print("    {%s}," % ", ".join(repr(float(v)) for v in row))
