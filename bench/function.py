import numpy as np
a, b, c, d = 1.5, 2.0, 0.3, 4.0
x = np.linspace(0, 10, 1000000)
p = np.column_stack((x, (a * x + b) / (1 + x * x) + np.sin(x) * np.exp(-c * x) - x / d))
