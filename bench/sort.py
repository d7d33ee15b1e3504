import numpy as np
x = np.arange(1.0, 2000001)
a = np.sin(x * x).reshape(1000000, 2)
for i in range(20):
    b = a[np.argsort(a[:, 0], kind="stable")]
