import numpy as np
from scipy.integrate import odeint
from scipy.optimize import curve_fit

t = np.arange(0.5, 20.25, 0.5)


def f(t, k1, k2, k3):
    rhs = lambda y, t: (-k1 * y[0], k1 * y[0] - k2 * y[1] + k3 * y[2], k2 * y[1] - k3 * y[2])
    return odeint(rhs, (1, 0, 0), np.concatenate(([0], t)), rtol=1e-6, atol=1e-9)[1:, 1]


y = f(t, 0.8, 0.3, 0.1) + 0.005 * np.sin(37 * t)
for i in range(20):
    curve_fit(f, t, y, p0=(0.5, 0.5, 0.2))
