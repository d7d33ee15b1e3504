/* The smallest do-file for a table of your own: copy it, put in your file, your function and your guesses.
   Here: the girth (mm) of the first orange tree against its age (days), a logistic curve. */
D = READCSV("examples/data/orange.csv", LIST(1,2))
FUNCTION GIRTH(T) = HIGH/(1+EXP((HALF-T)/PACE))
HIGH = 150; HALF = 700; PACE = 300
FIT (HIGH, HALF, PACE), GIRTH TO D
DRAW D LINETYPE 0 POINTTYPE -13 PTSIZE 0.012
DRAW POINTS(GIRTH, 0:1600:20) COLOR BLUE
TITLE BOTTOM, "age (days)"
TITLE LEFT, "girth (mm)"
PLOTDEV = "PNG"; PLOTOVER = 1
PLOT IN "mine"
