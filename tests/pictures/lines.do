/* Every line type, from 1 at the top; below them custom lines with ticks and with thickness, and the delimited types. */
PLOTDEV = "PSL"
WINDOW 0 TO 10, 0 TO 20
FRAMEBOX
X = 0:10:0.25
FUNCTION WAVE(T) = 0.35*SIN(2*T)
Y = WAVE ON X
DRAW L1 = X &' (19+Y) LINETYPE 1
DRAW L2 = X &' (18+Y) LINETYPE 2
DRAW L3 = X &' (17+Y) LINETYPE 3
DRAW L4 = X &' (16+Y) LINETYPE 4
DRAW L5 = X &' (15+Y) LINETYPE 5
DRAW L8 = X &' (14+Y) LINETYPE 8
DRAW L20 = X &' (13+Y) LINETYPE (0.03, 0.02, 0.03, 0.008, 0.008, 0, 0)
DRAW L21 = X &' (12+Y) LINETYPE (0.03, 0.01, 0.03, 0, 0, 0.006, 0)
DRAW L22 = X &' (11+Y) LINETYPE (1, 0, 1, 0, 0, 0.01, 0)
DRAW L23 = (1&3&5&7&9) &' (9&10&9&10&9) LINETYPE (1, 0, 1, 0, 0, 0.012, 0)
D = (-1 &' 1) & ((0&2&4) &' (7&8&7)) & (-1 &' 0.3) & ((5&7&9) &' (7&8&7))
DRAW L6 = D LINETYPE 6
DRAW L7 = (D COL 1) &' ((D COL 2) - 1.5*((D COL 2) > 2)) LINETYPE 7
DRAW L9 = (D COL 1) &' ((D COL 2) - 3*((D COL 2) > 2)) LINETYPE 9
DRAW L10 = (D COL 1) &' ((D COL 2) - 4.5*((D COL 2) > 2)) LINETYPE 10
DRAW L11 = (D COL 1) &' ((D COL 2) - 6*((D COL 2) > 2)) LINETYPE 11
PLOT IN "lines"
