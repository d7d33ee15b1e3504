x <- seq(0, 10, length.out = 50000)
y <- 3 * exp(-0.7 * x) + 2 * exp(-0.1 * x) + 0.01 * sin(997 * x)
for (k in 1:20) {
  s <- k / 20
  nls(y ~ a * exp(-b * x) + c * exp(-d * x), start = list(a = 2 + s, b = 1 + s / 2, c = 1 + s * 2 / 3, d = 0.2 + s / 10))
}
