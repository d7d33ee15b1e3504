import numpy

a = numpy.fromfile("read.dat", sep="\n")
