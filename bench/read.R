a <- scan("read.dat", quiet = TRUE)
