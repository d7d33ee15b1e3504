import numpy as np
import matplotlib
matplotlib.use("ps")
import matplotlib.pyplot as plt
x = np.linspace(0, 1, 200000)
plt.plot(x, np.sin(40 * x) * np.exp(-2 * x) + 0.05 * np.sin(9000 * x), linewidth=0.5)
plt.savefig("plot.eps")
