g <- function(k) integrate(function(x) exp(-k * x) * cos(x), 0, 1)$value
p <- sapply(seq(1, 2, length.out = 10000), g)
