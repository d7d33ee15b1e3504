/* Dose and response: how far roots of ryegrass grow (cm) under ferulic acid (mM). A log-logistic law with four parameters; ED50
   is the concentration that halves the growth. To be seen: ED50 is 3.06 mM with a standard error of 0.19.
   Data: Inderjit, J. C. Streibig, M. Olofsdotter, Physiologia Plantarum 114 (2002) 422-428. */
D = READCSV("examples/data/ryegrass.csv")
FUNCTION GROWTH(C) = IF C = 0 THEN HIGH ELSE LOW + (HIGH-LOW)/(1+(C/ED50)^SLOPE)
LOW = 0.5; HIGH = 8; ED50 = 3; SLOPE = 2
FIT (LOW, HIGH, ED50, SLOPE), GROWTH TO D
TYPE "-- concentrations that take 10 and 90 per cent of the growth"
TYPE ED50*(1/9)^(1/SLOPE), ED50*9^(1/SLOPE)

/* the picture: doses as decimal logarithms, the controls apart */
TREATED = D ROW (7:24)
X = -0.5:1.7:0.02
FUNCTION AT10(U) = GROWTH(10^U)
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
DRAW SEEN = (LOG10 ON (TREATED COL 1)) &' (TREATED COL 2) LINETYPE 0 POINTTYPE -13 PTSIZE 0.014
DRAW MODEL = X &' (AT10 ON X) COLOR BLUE
DRAW HALF = ((-0.5)&LOG10(ED50)&LOG10(ED50)) &' (((HIGH+LOW)/2)&((HIGH+LOW)/2)&0) LINETYPE 2
TITLE TOP, "Ryegrass and ferulic acid" SIZE 0.034
TITLE BOTTOM, "log'.3D'.7S10'R concentration (mM)" SIZE 0.026
TITLE LEFT, "length of roots (cm)" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "ryegrass"
