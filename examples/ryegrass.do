/* Dose and response: how far roots of ryegrass grow (cm) under ferulic acid (mM). A log-logistic law with four parameters; ED50
   is the concentration that halves the growth.
   Data: Inderjit, J. C. Streibig, M. Olofsdotter, Physiologia Plantarum 114 (2002) 422-428. */
D = READCSV("examples/data/ryegrass.csv")
FUNCTION GROWTH(C) = IF C = 0 THEN HIGH ELSE LOW + (HIGH-LOW)/(1+(C/ED50)^SLOPE)
LOW = 0.5; HIGH = 8; ED50 = 3; SLOPE = 2
FIT (LOW, HIGH, ED50, SLOPE), GROWTH TO D
TYPE "-- concentrations that take 10 and 90 per cent of the growth"
TYPE ED50*(1/9)^(1/SLOPE), ED50*9^(1/SLOPE)
