x <- as.double(1:40000)
a <- matrix(sin(x * x * x), 200, 200, byrow = TRUE)
for (i in 1:10) b <- eigen(a)
