import math
import numpy as np
from scipy.integrate import quad
p = [quad(lambda x: math.exp(-k * x) * math.cos(x), 0, 1)[0] for k in np.linspace(1, 2, 10000)]
