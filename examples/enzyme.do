/* Enzyme kinetics: Michaelis and Menten's law fitted to the velocities of an enzymatic reaction on cells with and without
   puromycin. Velocities are counts, whose scatter grows with their size: weights 1/velocity.
   To be seen: puromycin raises the velocity at saturation from 156 to 210, far beyond the standard errors, while the
   concentration of half-saturation changes by less than twice its errors.
   Data: M. Treloar (1974), printed in D. M. Bates, D. G. Watts, Nonlinear Regression Analysis (1988), A1.3. */
D = READCSV("examples/data/puromycin.csv")
TREATED = D ROW (1:12) COL (1:2)
PLAIN = D ROW (13:23) COL (1:2)
FUNCTION V1(C) = VM1*C/(K1+C)
FUNCTION V2(C) = VM2*C/(K2+C)
VM1 = 200; K1 = 0.05; VM2 = 160; K2 = 0.05
TYPE "-- treated and untreated cells, each velocity weighted by 1/velocity"
FIT (VM1, K1, VM2, K2), V1 TO TREATED WITH WEIGHT 1/'(TREATED COL 2), V2 TO PLAIN WITH WEIGHT 1/'(PLAIN COL 2)
TYPE "-- half-saturation: the two constants and their ratio"
TYPE K1, K2, K1/K2

/* the picture */
C = 0:1.2:0.01
WINDOW 0 TO 1.2, 0 TO 250
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
DRAW CELLS = TREATED LINETYPE 0 POINTTYPE -13 PTSIZE 0.014
DRAW CONTROLS = PLAIN LINETYPE 0 POINTTYPE 4 PTSIZE 0.014
DRAW FIT1 = C &' (V1 ON C) COLOR BLUE
DRAW FIT2 = C &' (V2 ON C) COLOR BLUE LINETYPE 2
TITLE "treated" AT (0.9, 178) WORLD SIZE 0.024
TITLE "untreated" AT (0.9, 130) WORLD SIZE 0.024
TITLE TOP, "Puromycin and the velocity of a reaction" SIZE 0.032
TITLE BOTTOM, "concentration (ppm)" SIZE 0.026
TITLE LEFT, "velocity (counts min'.5U'.7S-2'R)" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "enzyme"
