a <- 1.5; b <- 2; c <- 0.3; d <- 4
f <- function(x) (a * x + b) / (1 + x * x) + sin(x) * exp(-c * x) - x / d
x <- seq(0, 10, length.out = 1000000)
p <- cbind(x, f(x))
