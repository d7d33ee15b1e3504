r <- sum(1 / (as.double(1:1000000))^2)
