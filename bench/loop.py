s = 0.0
for j in range(10):
    for i in range(1, 200001):
        s = s + i * i
