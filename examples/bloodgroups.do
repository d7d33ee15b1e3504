/* A maximum under constraints: the frequencies of the alleles A, B and O from the blood groups of 521 patients with duodenal
   ulcers, by maximum likelihood. The frequencies add up to 1 and are not negative.
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
IMAGE 0.14 TO 0.95, 0.16 TO 0.88
XAXIS (0&5) &' 0 LABEL NULLM
DRAW BARS = BARGRAPH(SEEN, 0.6) COLOR GREY
DRAW CROSSES = EXPECTED LINETYPE 0 POINTTYPE 8 PTSIZE 0.02 COLOR BLUE
TITLE "A" AT (1, -20) WORLD PLACE (CENTER, CENTER) SIZE 0.026
TITLE "B" AT (2, -20) WORLD PLACE (CENTER, CENTER) SIZE 0.026
TITLE "AB" AT (3, -20) WORLD PLACE (CENTER, CENTER) SIZE 0.026
TITLE "O" AT (4, -20) WORLD PLACE (CENTER, CENTER) SIZE 0.026
TITLE TOP, "Blood groups of 521 patients" SIZE 0.034
TITLE LEFT, "patients" SIZE 0.026
PLOTOVER = 1
PLOT IN "bloodgroups"
