import numpy as np
import scipy.special as s
x = np.linspace(0, 50, 1000000)
p = np.column_stack((x, s.j0(x)))
x = np.linspace(0.01, 10, 1000000)
p = np.column_stack((x, s.gamma(x)))
x = np.linspace(0, 1, 1000000)
p = np.column_stack((x, s.betainc(2.5, 0.7, x)))
