import sys
import numpy as np
a = np.arange(1.0, 1000001).reshape(100000, 10) / 7
np.savetxt(sys.stdout, a, "%14.8g")
