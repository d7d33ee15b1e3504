/* A spectrum with peaks over a background: the velocities of 82 galaxies behind the Northern Crown, counted in bins of 1000 km/s.
   Three clusters, normal laws of one width, over a constant background; no height and no background is negative, and the
   peaks keep their order by constraints. To be seen: clusters of some 7, 38 and 25 galaxies.
   Data: M. Postman, J. P. Huchra, M. J. Geller, Astron. J. 92 (1986) 1238; K. Roeder, J. Am. Stat. Assoc. 85 (1990) 617. */
V = READ("examples/data/galaxies.dat", 82)/1000
H = HISTO(V, 8:36)
FUNCTION PEAK(X, A, M, S) = A*EXP(-(X-M)^2/(2*S^2))
FUNCTION COUNTS(X) = BACK + PEAK(X, A1, M1, S) + PEAK(X, A2, M2, S) + PEAK(X, A3, M3, S)
A1 = 5; M1 = 9.7; A2 = 14; M2 = 19.9; A3 = 8; M3 = 22.8; S = 0.8; BACK = 0.2
CONSTRAINTS PEAKS = { BACK >= 0, A1 >= 0, A2 >= 0, A3 >= 0, S >= 0.3, M2 - M1 >= 1, M3 - M2 >= 1 }
FIT (BACK, A1, M1, A2, M2, A3, M3, S), COUNTS TO H CONSTRAINTS PEAKS
TYPE "-- galaxies in the three clusters"
TYPE SQRT(2*PI)*S*(A1 & A2 & A3)

/* the picture */
X = 8:36:0.05
WINDOW 8 TO 36, 0 TO 22
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
DRAW BARS = BARGRAPH(H, 1) COLOR GREY
DRAW MODEL = X &' (COUNTS ON X) COLOR BLUE
TITLE TOP, "Galaxies behind the Northern Crown" SIZE 0.034
TITLE BOTTOM, "velocity (1000 km/s)" SIZE 0.026
TITLE LEFT, "galaxies in 1000 km/s" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "galaxies"
