/* Pasture yield against growing time (Ratkowsky, D. A., 1983): a logistic curve. To be seen: the certified values,
   72.462, 2.6181 and 0.067359.
   Data and certified answers: NIST/ITL Statistical Reference Datasets, www.itl.nist.gov/div898/strd, set Rat42. */
M = READ("examples/data/Rat42.dat", 9, 2)
FUNCTION YIELD(T) = B1/(1+EXP(B2-B3*T))
B1 = 100; B2 = 1; B3 = 0.1
RESIDSW = 1
FIT (B1, B2, B3), YIELD TO M
TYPE "observed, fitted, residual"
TYPE (M COL 2) &' (YIELD ON (M COL 1)) &' RESID
TYPE "day at which half of the yield stands"
TYPE B2/B3
TYPE "correlations of the parameters"
TYPE COVP /' (STDEST*STDEST')
