x <- seq(0, 1, length.out = 200000)
postscript("plot.ps")
plot(x, sin(40 * x) * exp(-2 * x) + 0.05 * sin(9000 * x), type = "l")
invisible(dev.off())
