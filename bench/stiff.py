from scipy.integrate import odeint


def robertson(y, t):
    a, b, c = y
    return -0.04 * a + 1e4 * b * c, 0.04 * a - 1e4 * b * c - 3e7 * b * b, 3e7 * b * b


def hires(y, t):
    a, b, c, d, e, f, g, h = y
    return (-1.71 * a + 0.43 * b + 8.32 * c + 0.0007, 1.71 * a - 8.75 * b, -10.03 * c + 0.43 * d + 0.035 * e,
            8.32 * b + 1.71 * c - 1.12 * d, -1.745 * e + 0.43 * f + 0.43 * g,
            -280 * f * h + 0.69 * d + 1.71 * e - 0.43 * f + 0.69 * g, 280 * f * h - 1.81 * g, -280 * f * h + 1.81 * g)


def pol(y, t):
    return y[1], 1000 * (1 - y[0] ** 2) * y[1] - y[0]


for i in range(10):
    odeint(robertson, (1, 0, 0), (0, 0.4, 4, 40, 400, 4000, 40000), rtol=1e-6, atol=1e-12, mxstep=100000)
    odeint(hires, (1, 0, 0, 0, 0, 0, 0, 0.0057), (0, 100, 321.8122), rtol=1e-6, atol=1e-12, mxstep=100000)
    odeint(pol, (2, 0), (0, 500, 1000, 1500, 2000), rtol=1e-6, atol=1e-12, mxstep=100000)
