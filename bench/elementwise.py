import numpy as np
n = 1000
a = np.resize(np.arange(1.0, 1001), (n, n))
b = np.resize(np.arange(1.0, 1000), (n, n))
for i in range(10):
    c = a + b
    d = c * a
    e = d / b - 2 * a
    f = (e > a) * e + 1
