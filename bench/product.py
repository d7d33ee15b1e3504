import numpy as np
a = np.resize(np.linspace(0, 1, 997), (500, 500))
b = np.resize(np.linspace(1, 0, 991), (500, 500))
for i in range(20):
    c = a @ b
