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
