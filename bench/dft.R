x <- as.double(1:1048576)
a <- sin(x * x)
b <- complex(real = 1:1000003, imaginary = 1000003:1)
for (i in 1:5) {
    c <- fft(a)
    d <- fft(b)
}
