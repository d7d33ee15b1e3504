s <- 0
for (j in 1:10) for (i in 1:200000) s <- s + as.double(i) * i
