"""Coefficients of special/incgamma.cpp: python3 tools/special/temmetable.py

c[k](eta) = sum over n of d[k][n] eta^n in Temme's uniform expansion of the incomplete gamma functions,
DLMF 8.12.3 with 8.12.9: c[0] = 1/mu - 1/eta, c[k] = (c[k-1]' + (-1)^k g[k] eta/mu) / eta.
"""
from mpmath import mp, mpf, bernoulli, nstr

mp.dps = 60
N = 60  # powers carried


def mul(a, b):
    return [sum(a[i] * b[n - i] for i in range(n + 1)) for n in range(N)]


# mu as a series in eta: eta^2/2 = mu - log(1+mu), so mu mu' = eta (1 + mu)
mu = [mpf(0), mpf(1)] + [mpf(0)] * (N - 2)
for n in range(2, N):
    # coefficient of eta^n in mu mu' is mu[n-1]
    s = sum(mu[i] * (n + 1 - i) * mu[n + 1 - i] for i in range(2, n))
    mu[n] = (mu[n - 1] - s) / (n + 1)
# eta/mu
v = mu[1:] + [mpf(0)]
inv = [mpf(1)]
for n in range(1, N):
    inv.append(-sum(v[i] * inv[n - i] for i in range(1, n + 1)))
# g[k]: exp of the Stirling series, 1 + 1/12 z + ..
g = [mpf(1)]
lg = [mpf(0)] * 20
for k in range(1, 10):
    lg[2 * k - 1] = bernoulli(2 * k) / (2 * k * (2 * k - 1))
for n in range(1, 12):
    g.append(sum(i * lg[i] * g[n - i] for i in range(1, n + 1)) / n)

c = inv[1:] + [mpf(0)]  # (eta/mu - 1)/eta
TERMS = [20, 15, 12, 9, 7, 5, 3]
for k in range(len(TERMS)):
    print("    {" + ", ".join(nstr(x, 20) for x in c[: TERMS[k]]) + "},")
    d = [(n + 1) * c[n + 1] for n in range(N - 1)] + [mpf(0)]
    q = [d[n] + (-1) ** (k + 1) * g[k + 1] * inv[n] for n in range(N)]
    assert abs(q[0]) < mpf(10) ** -40
    c = q[1:] + [mpf(0)]
