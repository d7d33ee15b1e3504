a <- matrix(rep(as.double(1:1000), 1000), 1000, 1000)
b <- matrix(rep_len(as.double(1:999), 1e6), 1000, 1000)
for (i in 1:10) {
    c <- a + b
    d <- c * a
    e <- d / b - 2 * a
    f <- (e > a) * e + 1
}
