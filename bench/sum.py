s = 0.0
for i in range(1, 1000001):
    s += 1 / (i * i)
