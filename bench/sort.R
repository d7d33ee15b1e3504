x <- as.double(1:2000000)
a <- matrix(sin(x * x), 1000000, 2, byrow = TRUE)
for (i in 1:20) b <- a[order(a[, 1]), ]
