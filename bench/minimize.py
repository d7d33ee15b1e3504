import numpy as np
from scipy.optimize import minimize


def rosenbrock(x):
    return np.sum(100 * (x[1::2] - x[::2] ** 2) ** 2 + (1 - x[::2]) ** 2)


def wood(x):
    return (100 * (x[1] - x[0] ** 2) ** 2 + (1 - x[0]) ** 2 + 90 * (x[3] - x[2] ** 2) ** 2 + (1 - x[2]) ** 2
            + 10 * (x[1] + x[3] - 2) ** 2 + 0.1 * (x[1] - x[3]) ** 2)


for k in range(100):
    minimize(rosenbrock, np.array([-1.2, 1.0]))
    minimize(rosenbrock, np.array([-1.2, 1.0] * 5))
    minimize(wood, np.array([-3.0, -1, -3, -1]))
