rosenbrock <- function(x) {
  odd <- seq(1, length(x), 2)
  sum(100 * (x[odd + 1] - x[odd]^2)^2 + (1 - x[odd])^2)
}
wood <- function(x) {
  100 * (x[2] - x[1]^2)^2 + (1 - x[1])^2 + 90 * (x[4] - x[3]^2)^2 + (1 - x[3])^2 +
    10 * (x[2] + x[4] - 2)^2 + 0.1 * (x[2] - x[4])^2
}
for (k in 1:100) {
  nlm(rosenbrock, c(-1.2, 1))
  nlm(rosenbrock, rep(c(-1.2, 1), 5))
  nlm(wood, c(-3, -1, -3, -1))
}
