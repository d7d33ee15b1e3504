/* Monomolecular adsorption of a dye (Misra, D., 1978): volume against pressure, fitted by Y = B1*(1-EXP(-B2*X)).
   Data and certified answers: NIST/ITL Statistical Reference Datasets, www.itl.nist.gov/div898/strd, set Misra1a. */
M = READ("examples/data/Misra1a.dat", 14, 2)
TYPE "pressure and volume"
TYPE M
FUNCTION Y(X) = B1*(1-EXP(-B2*X))
B1 = 500; B2 = 0.0001
FIT (B1, B2), Y TO M
TYPE "certified: B1 238.94212918 +- 2.7070075241, B2 5.5015643181E-4 +- 7.2668688436E-6"
TYPE Y'B2
