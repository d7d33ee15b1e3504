/* A maximum under constraints: the frequencies of the alleles A, B and O from the blood groups of 521 patients with duodenal
   ulcers, by maximum likelihood. The frequencies add up to 1 and are not negative. To be
   seen: 0.214, 0.050 and 0.736, as in Lange's book, and counts that the model expects near those observed.
   Data: C. A. Clarke et al., Brit. Med. J. 1 (1959) 603; K. Lange, Mathematical and Statistical Methods for Genetic Analysis
   (2002), chapter 2. */
NA = 186; NB = 38; NAB = 13; NO = 284
FUNCTION LOGLIK(P, Q, R) = NA*LOG(P^2+2*P*R) + NB*LOG(Q^2+2*Q*R) + NAB*LOG(2*P*Q) + NO*LOG(R^2)
CONSTRAINTS SHARES = { P + Q + R = 1, P >= 1E-6, Q >= 1E-6, R >= 1E-6 }
P = 0.3; Q = 0.3; R = 0.4
L = MAXIMIZE(LOGLIK, P, Q, R, SHARES)
TYPE "-- allele frequencies"
TYPE P, Q, R
TYPE "-- observed and expected counts of the groups A, B, AB, O"
N = NA+NB+NAB+NO
TYPE (NA&NB&NAB&NO)&'(N*((P^2+2*P*R)&(Q^2+2*Q*R)&(2*P*Q)&(R^2)))

/* the picture: bars of the counts, crosses of what the frequencies let expect */
SEEN = (1:4) &' (NA&NB&NAB&NO)
EXPECTED = (1:4) &' (N*((P^2+2*P*R)&(Q^2+2*Q*R)&(2*P*Q)&(R^2)))
WINDOW 0 TO 5, 0 TO 300
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
XAXIS (0&5) &' 0 LABEL NULLM
DRAW BARS = BARGRAPH(SEEN, 0.6) COLOR GREY
DRAW CROSSES = EXPECTED LINETYPE 0 POINTTYPE 8 PTSIZE 0.02 COLOR BLUE
TITLE "A" AT (1, -13) WORLD PLACE (CENTER, CENTER) SIZE 0.026
TITLE "B" AT (2, -13) WORLD PLACE (CENTER, CENTER) SIZE 0.026
TITLE "AB" AT (3, -13) WORLD PLACE (CENTER, CENTER) SIZE 0.026
TITLE "O" AT (4, -13) WORLD PLACE (CENTER, CENTER) SIZE 0.026
DRAW (1.9&2.3) &' 262 COLOR GREY
DRAW 2.1 &' 238 LINETYPE 0 POINTTYPE 8 PTSIZE 0.02 COLOR BLUE
TITLE "counted" AT (2.45, 262) WORLD PLACE (LEFT, CENTER) SIZE 0.022
TITLE "expected" AT (2.45, 238) WORLD PLACE (LEFT, CENTER) SIZE 0.022
TITLE TOP, "Blood groups of 521 patients" SIZE 0.034
TITLE LEFT, "patients" SIZE 0.026
TITLE BOTTOM, "blood group" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "bloodgroups"
