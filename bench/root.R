r <- function(k) uniroot(function(x) x * x * x - x - k, c(0, 2), tol = 1e-15)$root
p <- sapply(seq(1, 2, length.out = 10000), r)
