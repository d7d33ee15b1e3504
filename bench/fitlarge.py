import numpy as np
from scipy.optimize import curve_fit


def f(x, a, b, c, d):
    return a * np.exp(-b * x) + c * np.exp(-d * x)


def jac(x, a, b, c, d):
    e, g = np.exp(-b * x), np.exp(-d * x)
    return np.stack([e, -a * x * e, g, -c * x * g], axis=1)


x = np.linspace(0, 10, 50000)
y = 3 * np.exp(-0.7 * x) + 2 * np.exp(-0.1 * x) + 0.01 * np.sin(997 * x)
for k in range(1, 21):
    s = k / 20
    curve_fit(f, x, y, p0=(2 + s, 1 + s / 2, 1 + s * 2 / 3, 0.2 + s / 10), jac=jac)
