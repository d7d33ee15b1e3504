"""Tables of special/numbers.cpp, exact rational numbers rounded: python3 tools/special/numbertables.py"""
from fractions import Fraction
from math import comb


def shown(x):
    return repr(float(x)).replace("e+", "e") if x.denominator != 1 or abs(x) > 2**53 else "%d" % x.numerator + "."


def table(name, values):
    values = list(values)
    print("constexpr double %s[] = {%s};" % (name, ",\n".join(shown(Fraction(v)) for v in values)))
    print("// %s: %d numbers" % (name, len(values)))


def fits(x):
    try:
        return abs(float(Fraction(x))) < float("inf")
    except OverflowError:
        return False


bernoulli = [Fraction(1)]
for n in range(1, 262):
    if n > 1 and n % 2:
        bernoulli.append(Fraction(0))
        continue
    bernoulli.append(-sum(comb(n + 1, k) * bernoulli[k] for k in range(n)) / (n + 1))
table("bernoullis", [b for b in bernoulli[0::2] if fits(b)])

euler = [1]
for n in range(1, 96):
    euler.append(-sum(comb(2 * n, 2 * k) * euler[k] for k in range(n)))
table("eulers", [e for e in euler if fits(e)])
