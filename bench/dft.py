import numpy as np
x = np.arange(1.0, 1048577)
a = np.sin(x * x)
b = np.arange(1.0, 1000004) + 1j * np.arange(1000003.0, 0, -1)
for i in range(5):
    c = np.fft.fft(a)
    d = np.fft.fft(b)
