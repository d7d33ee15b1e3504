"Fits that need a second look: lost from a far start, contradicting constraints, a parameter without effect"
M = LIST(1,2,3,5,7,10) &' LIST(109,149,149,191,213,224)
FUNCTION F(X) = B1*(1-EXP(-(B2*X)))
MATHEX = 0
B1 = 1; B2 = 1
FIT (B1,B2), F TO M
B3 = 7
FIT (B1,B3), F TO M
CONSTRAINTS NEVER = {B1 >= 300, B1 <= 200}
FIT (B1,B2), F TO M CONSTRAINTS NEVER
CONSTRAINTS HALF = {B1 = 400*B2}
FIT (B1,B2), F TO M CONSTRAINTS HALF
MAXITER = 0
FIT (B1,B2), F TO M
MAXITER = 1000
B2 = -1000
FIT (B1,B2), F TO M
"A cell without a value is told by its place"
N = (1:3) &' LIST(2, MAXPOS, 6)
FUNCTION STRAIGHT(X) = B1*X
B1 = 1
FIT B1, STRAIGHT TO N
N = COMPRESS(N &' ((N COL 2) < MAXPOS), 3) COL (1:2)
FIT B1, STRAIGHT TO N
"A failure inside the model leaves everything as it was, but for the parameters' last trial"
S = SOSQ
FUNCTION G(X) = B1+NOSUCH*X
FIT (B1,B2), G TO M
TYPE SOSQ = S
FIT (B1,B2), F TO M WITH WEIGHT LIST(1,2)
FIT (B1,B2), F TO 3
FIT (B1,B2), B1 TO M
FUNCTION H(X,Y) = B1*X+Y
FIT (B1,B2), H TO M
FIT (B1,M+1), F TO M
FIT (B1,B2), F TO M CONSTRAINTS M
FIT (B1,B2)
FIT
FIT (B1,B1), F TO M
FIT (B1,B2), F TO M WITH WEIGHT LIST(1,1,1,1,1,-1)
FUNCTION W(D,I) = 3-I
FIT (B1,B2), F TO M WITH WEIGHT W
FITNORM = 0
FIT (B1,B2), F TO M
"Norms: the largest residuals shrink as the exponent grows"
B1 = 200; B2 = 0.5; LSQRPT = 0; RESIDSW = 1
FOR K = LIST(1,2,4,8) { FITNORM = K
FIT (B1,B2), F TO M
TYPE MAXV(APPLY(ABS,RESID)) }
