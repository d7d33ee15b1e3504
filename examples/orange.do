/* Growth curves of several groups: the girth of five orange trees (mm) against their age (days), a logistic law whose age
   of half growth and pace are those of all trees, while each tree has its own final girth.
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
