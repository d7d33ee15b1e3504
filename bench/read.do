"A million numbers from a text file"
A = READ("read.dat", 1000000, 1)
