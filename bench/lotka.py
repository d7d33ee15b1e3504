import numpy as np
from scipy.integrate import odeint

odeint(lambda y, t: (1.5 * y[0] - y[0] * y[1], y[0] * y[1] - 3 * y[1]), (1, 1), np.linspace(0, 20, 100000),
       rtol=1e-6, atol=1e-9)
