a <- matrix(rep_len(seq(0, 1, length.out = 997), 250000), 500, 500)
b <- matrix(rep_len(seq(1, 0, length.out = 991), 250000), 500, 500)
for (i in 1:20) c <- a %*% b
