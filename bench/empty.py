import numpy
import scipy
