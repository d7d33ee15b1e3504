/* Growth curves of several groups: the girth of five orange trees (mm) against their age (days), a logistic law whose age
   of half growth and pace are those of all trees, while each tree has its own final girth. To be
   seen: half of the girth stands at 728 days; in the end it is 154 to 233 mm.
   Data: N. Draper, H. Smith, Applied Regression Analysis (1998), exercise 24.N. */
D = READCSV("examples/data/orange.csv")
FUNCTION G1(T) = A1/(1+EXP((MID-T)/PACE))
FUNCTION G2(T) = A2/(1+EXP((MID-T)/PACE))
FUNCTION G3(T) = A3/(1+EXP((MID-T)/PACE))
FUNCTION G4(T) = A4/(1+EXP((MID-T)/PACE))
FUNCTION G5(T) = A5/(1+EXP((MID-T)/PACE))
A1 = 150; A2 = 200; A3 = 150; A4 = 200; A5 = 180; MID = 700; PACE = 350
FIT (A1, A2, A3, A4, A5, MID, PACE), G1 TO D COL (1&2), G2 TO D COL (1&3), G3 TO D COL (1&4), G4 TO D COL (1&5), \
    G5 TO D COL (1&6)

/* the picture */
T = 0:1600:20
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
COLORS = LIST(BLUE, RED, TURQUOISE, ORANGE, VIOLET)
ASIDE = LIST(3, -3, -3, 3, 0)
MODELS = T &' (G1 ON T) &' (G2 ON T) &' (G3 ON T) &' (G4 ON T) &' (G5 ON T)
FOR I = 1:5 {
  DRAW D COL LIST(1, I+1) LINETYPE 0 POINTTYPE -13 PTSIZE 0.012 COLOR COLORS(I)
  DRAW MODELS COL LIST(1, I+1) COLOR COLORS(I)
  TITLE "tree " + ASCII(48+I) AT (1620, MODELS(NROWS(T), I+1)+ASIDE(I)) WORLD PLACE (LEFT, CENTER) SIZE 0.022 COLOR COLORS(I)
}
TITLE TOP, "Five orange trees" SIZE 0.034
TITLE BOTTOM, "age (days)" SIZE 0.026
TITLE LEFT, "circumference (mm)" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "orange"
