/* A fitted curve through data with error bars: velocity of an enzymatic reaction against its substrate. The bars are half of
   the range of two measurements. Data: M. Treloar (1974), printed in D. M. Bates, D. G. Watts, Nonlinear Regression Analysis
   (1988), A1.3, cells treated with puromycin. */
FIRST = 76&97&123&159&191&207
SECOND = 47&107&139&152&201&200
X = 0.02&0.06&0.11&0.22&0.56&1.10
FUNCTION RATE(S) = VM*S/(K+S)
VM = 200; K = 0.1
FIT (VM, K), RATE TO (X&X) &' (FIRST&SECOND)

WINDOW 0 TO 1.2, 0 TO 250
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
MIDDLE = (FIRST+SECOND)/2
HALF = (ABS ON (FIRST-SECOND))/2
DRAW DATA = X &' MIDDLE LINETYPE 0 POINTTYPE -13 PTSIZE 0.014
DRAW BARS = X &' MIDDLE LINETYPE 0 POINTTYPE 18 PTSIZE (HALF &' HALF &' 0.012)
T = 0:1.2:0.01
DRAW MODEL = T &' (RATE ON T) COLOR BLUE
DRAW ASYMPTOTE = (0&1.2) &' VM LINETYPE 2 COLOR GREY
TITLE TOP, "Rate of an enzymatic reaction" SIZE 0.034
TITLE BOTTOM, "substrate (ppm)" SIZE 0.026
TITLE LEFT, "velocity (counts min'.5U'.7S-2'R)" SIZE 0.026
TITLE "V'.3D'.7Smax'R" AT (1.05, VM+6) WORLD SIZE 0.024
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "enzymeplot"
