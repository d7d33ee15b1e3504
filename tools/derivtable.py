#!/usr/bin/env python3
"""Writes tests/data/derivatives.txt: first and second derivatives of functions of X, by mpmath at 50 digits.

A line holds the body in TARN's notation, then for each of three points: point, first derivative, second derivative,
all separated by blanks behind a bar. Run it to make the table anew: tools/derivtable.py > tests/data/derivatives.txt
"""
from mpmath import mp, mpf, diff
import mpmath as m

mp.dps = 50
D = mp.pi / 180


def normal(x, mu, v):
    return m.exp(-((x - mu) ** 2) / (2 * v)) / m.sqrt(2 * mp.pi * v)


def normalf(x, mu, v):
    return (1 + m.erf((x - mu) / m.sqrt(2 * v))) / 2


def gammareg(a, x):
    return m.gammainc(a, 0, x, regularized=True)


def betareg(a, b, x):
    return m.betainc(a, b, 0, x, regularized=True)


def legendre(n, x):
    return m.legendre(n, x)


def am(u, k):
    return m.atan2(m.ellipfun('sn', u, m=k), m.ellipfun('cn', u, m=k))


def root(x):  # of Y^3 + Y = X
    return m.findroot(lambda y: y ** 3 + y - x, 0.5)


P = "0.4 1.3 2.2"  # ordinary points
U = "0.15 0.4 0.85"  # inside the unit interval
T = "1.2 2.5 7"  # above one
rows = [
    ("X^2", lambda x: x ** 2, P), ("X^3-2*X", lambda x: x ** 3 - 2 * x, P), ("2^X", lambda x: mpf(2) ** x, P),
    ("X^X", lambda x: x ** x, P), ("(X+1)^(2*X)", lambda x: (x + 1) ** (2 * x), P),
    ("1/(1+X^2)", lambda x: 1 / (1 + x ** 2), P), ("(X-1)/(X+1)", lambda x: (x - 1) / (x + 1), P),
    ("X/3+3/X", lambda x: x / 3 + 3 / x, P), ("-X^4", lambda x: -(x ** 4), P),
    ("(3*X+2)*(X-5)", lambda x: (3 * x + 2) * (x - 5), P), ("X*(2/X)+X", lambda x: 2 + x, P),
    ("EXP(-X^2)", lambda x: m.exp(-x ** 2), P), ("EXP(X)*SIN(X)", lambda x: m.exp(x) * m.sin(x), P),
    ("LOG(X)", m.log, P), ("LOG(X,3)", lambda x: m.log(x) / m.log(3), P),
    ("LOG(5,X+1)", lambda x: m.log(5) / m.log(x + 1), P), ("LOG10(X)", lambda x: m.log(x, 10), P),
    ("LOG2(X)", lambda x: m.log(x, 2), P), ("SQRT(1+X)", lambda x: m.sqrt(1 + x), P),
    ("SIN(X)", m.sin, P), ("COS(2*X)", lambda x: m.cos(2 * x), P), ("TAN(X/2)", lambda x: m.tan(x / 2), P),
    ("SIND(10*X)", lambda x: m.sin(10 * x * D), P), ("COSD(30*X)", lambda x: m.cos(30 * x * D), P),
    ("TAND(20*X)", lambda x: m.tan(20 * x * D), P), ("COTAN(X)", m.cot, P), ("SEC(X/2)", lambda x: m.sec(x / 2), P),
    ("COSEC(X)", m.csc, P), ("SINH(X)", m.sinh, P), ("COSH(X)", m.cosh, P), ("TANH(X)", m.tanh, P),
    ("COTANH(X)", m.coth, P), ("SECH(X)", m.sech, P), ("COSECH(X)", m.csch, P),
    ("ASIN(X)", m.asin, U), ("ACOS(X)", m.acos, U), ("ATAN(X)", m.atan, P), ("ATAN2(X,2)", lambda x: m.atan2(x, 2), P),
    ("ATAN2(X^2,1+X)", lambda x: m.atan2(x ** 2, 1 + x), P), ("ACOTAN(X)", m.acot, P), ("ASEC(X)", m.asec, T),
    ("ACOSEC(X)", m.acsc, T), ("ASIND(X)", lambda x: m.asin(x) / D, U), ("ACOSD(X)", lambda x: m.acos(x) / D, U),
    ("ATAND(X)", lambda x: m.atan(x) / D, P), ("ASINH(X)", m.asinh, P), ("ACOSH(X)", m.acosh, T),
    ("ATANH(X)", m.atanh, U), ("ACOTANH(X)", m.acoth, T), ("ASECH(X)", m.asech, U), ("ACOSECH(X)", m.acsch, P),
    ("ABS(X-1)*X", lambda x: abs(x - 1) * x, P), ("MOD(X*X,2)", lambda x: m.fmod(x * x, 2), P),
    ("FLOOR(X)+X", lambda x: x + m.floor(x), P), ("CEILING(X)*X", lambda x: x * m.ceil(x), P),
    ("MAX(X,1/X)", lambda x: max(x, 1 / x), P), ("MIN(X^2,X,1.5)", lambda x: min(x ** 2, x, mpf(1.5)), P),
    ("IF X > 1 THEN X^3 ELSE SIN(X)", lambda x: x ** 3 if x > 1 else m.sin(x), P),
    ("GAMMA(X)", m.gamma, P), ("LOGGAMMA(X)", m.loggamma, P), ("DIGAMMA(X)", lambda x: m.psi(0, x), P),
    ("ERF(X)", m.erf, P), ("ERFC(X)", m.erfc, P), ("ERFI(X)", m.erfinv, U), ("ERFCI(X)", lambda x: m.erfinv(1 - x), U),
    ("SININT(X)", m.si, P), ("COSINT(X)", m.ci, P), ("EXPINT(X)", m.ei, P), ("LOGINT(X)", m.li, T),
    ("EXPINTN(3,X)", lambda x: m.expint(3, x), P), ("SINHINT(X)", m.shi, P), ("COSHINT(X)", m.chi, P),
    ("BESSJ(0,X)", lambda x: m.besselj(0, x), P), ("BESSJ(2,3*X)", lambda x: m.besselj(2, 3 * x), P),
    ("BESSJ(1.5,X)", lambda x: m.besselj(mpf(1.5), x), P), ("BESSY(1,X)", lambda x: m.bessely(1, x), P),
    ("BESSI(1,X)", lambda x: m.besseli(1, x), P), ("BESSK(0,X)", lambda x: m.besselk(0, x), P),
    ("LEG(4,X)", lambda x: legendre(4, x), U), ("LEG(0,X)+LEG(1,X)", lambda x: 1 + x, U),
    ("ALEG(3,2,X)", lambda x: 15 * x * (1 - x * x), U),
    ("ELLIPF(X,0.4)", lambda x: m.ellipf(x, mpf("0.4")), U), ("ELLIPF(0.7,X)", lambda x: m.ellipf(mpf("0.7"), x), U),
    ("ELLIPE(X,0.4)", lambda x: m.ellipe(x, mpf("0.4")), U), ("ELLIPE(0.7,X)", lambda x: m.ellipe(mpf("0.7"), x), U),
    ("ELLIPK(X)", m.ellipk, U), ("ELLIPE(X)", m.ellipe, U),
    ("JACOBISN(X,0.3)", lambda x: m.ellipfun('sn', x, m=mpf("0.3")), P),
    ("JACOBICN(X,0.3)", lambda x: m.ellipfun('cn', x, m=mpf("0.3")), P),
    ("JACOBIDN(X,0.3)", lambda x: m.ellipfun('dn', x, m=mpf("0.3")), P),
    ("JACOBIAM(X,0.3)", lambda x: am(x, mpf("0.3")), U),
    ("JACOBISN(0.8,X)", lambda x: m.ellipfun('sn', mpf("0.8"), m=x), U),
    ("JACOBICN(0.8,X)", lambda x: m.ellipfun('cn', mpf("0.8"), m=x), U),
    ("JACOBIDN(0.8,X)", lambda x: m.ellipfun('dn', mpf("0.8"), m=x), U),
]
rows += [("JACOBI%s(X,0.3)" % name.upper(), lambda x, name=name: m.ellipfun(name, x, m=mpf("0.3")), P)
         for name in ("ns", "nc", "nd", "sc", "sd", "cs", "cd", "ds", "dc")]
rows += [
    ("BETA(X,2.5)", lambda x: m.beta(x, mpf(2.5)), P), ("BETA(2.5,X)", lambda x: m.beta(x, mpf(2.5)), P),
    ("IBETA(2,3,X)", lambda x: betareg(2, 3, x), U), ("IGAMMA(2.5,X)", lambda x: gammareg(mpf(2.5), x), P),
    ("SUM(I,1,5,X^I/I)", lambda x: sum(x ** i / i for i in range(1, 6)), P),
    ("PRODUCT(I,1,4,X+I)", lambda x: (x + 1) * (x + 2) * (x + 3) * (x + 4), P),
    ("EVAL(V,X^2,SIN(V)*X)", lambda x: m.sin(x * x) * x, P),
    ("ROOT(V,0,10,V^3+V-X)", root, P),
    ("TYPEOUT(X)*0+X^2", lambda x: x ** 2, P),
]
H = mpf(1) / 2


def spherical(f, n, x):
    return m.sqrt(m.pi / (2 * x)) * f(n + H, x)


def pi3(n, p, k):
    return m.ellippi(n, p, k)


rows += [
    ("ABESSJ(2,X)", lambda x: m.besselj(2, x), P), ("ABESSY(2,X)", lambda x: m.bessely(2, x), P),
    ("ABESSI(2,X)", lambda x: m.besseli(2, x), P), ("ABESSK(2,X)", lambda x: m.besselk(2, x), P),
    ("BESKES(1.5,X)", lambda x: m.exp(x) * m.besselk(3 * H, x), P), ("BESKS(2,X)", lambda x: m.besselk(2, x), P),
    ("SPBJ(2,X)", lambda x: spherical(m.besselj, 2, x), P), ("SPBY(2,X)", lambda x: spherical(m.bessely, 2, x), P),
    ("SPBI(2,X)", lambda x: spherical(m.besseli, 2, x), P), ("SPBK(2,X)", lambda x: spherical(m.besselk, 2, x), P),
    ("IBESSI0(X)", lambda x: x * m.hyper([H], [1, 3 * H], x * x / 4), P),
    ("BAIRY(X)", m.airybi, P), ("BAIRY(X,1)", lambda x: m.airybi(x, derivative=1), P),
    ("BAIRY(X,2)", m.airyai, P), ("BAIRY(-X,3)", lambda x: m.airyai(-x, derivative=1), P),
    ("STRUVED(1,X)", lambda x: m.struveh(1, x), P), ("STRUVELD(0.5,X)", lambda x: m.struvel(H, x), P),
    ("HGEOF(0.5,1.5,2.5,X/4)", lambda x: m.hyp2f1(H, 3 * H, 5 * H, x / 4), P),
    ("CHM(0.5,1.5,-X)", lambda x: m.hyp1f1(H, 3 * H, -x), P), ("CHU(0.5,1.5,X)", lambda x: m.hyperu(H, 3 * H, x), P),
    ("JACOBI1(3,0.5,1.5,X)", lambda x: m.jacobi(3, H, 3 * H, x), U), ("JACOBI1(0,0.5,1.5,X)*X", lambda x: x, U),
    ("JACOBI2(3,2,1.5,X)", lambda x: m.factorial(3) * m.gamma(5) / m.gamma(8) * m.jacobi(3, H, H, 2 * x - 1), U),
    ("GEGENP(4,0.7,X)", lambda x: m.gegenbauer(4, mpf("0.7"), x), U), ("GEGENP(3,0,X)", lambda x: 2 * m.chebyt(3, x) / 3, U),
    ("CHEB1(4,X)", lambda x: m.chebyt(4, x), U), ("CHEB2(4,X)", lambda x: m.chebyu(4, x), U),
    ("LAGUERRE(3,X)", lambda x: m.laguerre(3, 0, x), P), ("ALAGUERRE(3,0.5,X)", lambda x: m.laguerre(3, H, x), P),
    ("HERMITE(4,X)", lambda x: m.hermite(4, x), P), ("HERMITE2(3,X)", lambda x: x ** 3 - 3 * x, P),
    ("HERMITE(0,X)*X", lambda x: x, P), ("BERNPOL(4,X)", lambda x: m.bernpoly(4, x), P),
    ("DILOG(-X)", lambda x: m.polylog(2, -x), P), ("CLAUSEN(X)", lambda x: m.clsin(2, x), P),
    ("POCH(X,1.5)", lambda x: m.rf(x, 3 * H), P), ("POCH(1.5,X)", lambda x: m.rf(3 * H, x), P),
    ("RFACT(X,3)", lambda x: m.rf(x, 3), P), ("FACT(X)", m.factorial, P), ("HARNUM(X)", m.harmonic, P),
    ("BINCOEF(X,1.5)", lambda x: m.binomial(x, 3 * H), P), ("BINCOEF(3.7,X)", lambda x: m.binomial(mpf("3.7"), x), P),
    ("ELLIPPI(0.3,X,0.6)", lambda x: pi3(mpf("0.3"), x, mpf("0.6")), U), ("ELLIPPI(0.3,0.9,X)", lambda x: pi3(mpf("0.3"), mpf("0.9"), x), U),
    ("ELLIPPI(X,0.9,0.6)", lambda x: pi3(x, mpf("0.9"), mpf("0.6")), U), ("ELLIPPI(0.3,X)", lambda x: m.ellippi(mpf("0.3"), x), U),
    ("ELLIPPI(X,0.6)", lambda x: m.ellippi(x, mpf("0.6")), U),
    ("JZETA(X,0.6)", lambda x: m.ellipe(am(x, mpf("0.6")), mpf("0.6")) - x * m.ellipe(mpf("0.6")) / m.ellipk(mpf("0.6")), U),
]
rows += [("JACOBI%s(0.7,X)" % name.upper(), lambda x, name=name: m.re(m.ellipfun(name, mpf("0.7"), m=x)), U)
         for name in ("ns", "nc", "nd", "sc", "sd", "cs", "cd", "ds", "dc")]
slope = {"IERFC(2,X)": lambda x: (m.erfc(x) * (1 + 2 * x * x) - 2 * x * m.exp(-x * x) / m.sqrt(m.pi)) / 4,
         "IBESSJOXI(X)": lambda x: m.quad(lambda t: (1 - m.besselj(0, t)) / t, [mpf(10) ** -30, x]) - m.log(x / 2) - m.euler,
         "KELVIN(1,X)": lambda x: m.ber(1, x), "KELVIN(0.5,X,4)": lambda x: m.kei(H, x),
         "PLEM(3,1,X/3)": lambda x: -m.sqrt(1 - x * x / 9) * (5 * x * x / 3 - 3) / 2,
         "SIEVERT(2,X/3)": lambda x: m.quad(lambda t: m.exp(-2 * m.sec(t)), [0, x / 3]),
         "ABRAM(1,X)": lambda x: m.quad(lambda t: t * m.exp(-t * t - x / t), [0, 0.25, 0.5, 1, 2, 4, 12])}
first = {**slope, "IGAMMA(X,1.5)": lambda x: gammareg(x, mpf(1.5)), "IBETA(X,3,0.4)": lambda x: betareg(x, 3, mpf("0.4")),
         "IBETA(3,X,0.4)": lambda x: betareg(3, x, mpf("0.4"))}

print("# body | point first second | ...   made by tools/derivtable.py (mpmath)")
print("# a second derivative of - is not asked for")
for body, f, points in rows + [(b, f, P) for b, f in first.items()]:
    cells = []
    for p in points.split():
        x = mpf(p)
        second = "-" if body in first else m.nstr(diff(f, x, 2), 20)
        cells.append("%s %s %s" % (p, m.nstr(diff(f, x), 20), second))
    print(" | ".join([body] + cells))
