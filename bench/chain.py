import numpy as np
from scipy.integrate import odeint


def f(y, t):
    d = -y
    d[1:] += y[:-1]
    return d


for i in range(10):
    odeint(f, [1.0] + [0.0] * 199, np.arange(0, 202, 2.0), rtol=1e-6, atol=1e-9)
