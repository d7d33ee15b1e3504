import numpy as np
from scipy.optimize import brentq
p = [brentq(lambda x: x * x * x - x - k, 0, 2) for k in np.linspace(1, 2, 10000)]
