set terminal postscript eps
set output "plot.eps"
set samples 200000
plot [0:1] sin(40*x)*exp(-2*x) + 0.05*sin(9000*x) with lines
