import numpy as np
x = np.arange(1.0, 40001)
a = np.sin(x * x * x).reshape(200, 200)
for i in range(100):
    b = np.linalg.inv(a)
