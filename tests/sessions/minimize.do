/* tolerance: 1e-5 */
"The closing report: seven values a line, constraints by number, the sense of a maximum"
FUNCTION BOWL(V) = SUM(I,1,9,(V(I)-I)^2)
V = 0*(1:9)
Q = MINIMIZE(BOWL,V)
FUNCTION F(X,Y) = (X-3)^2+2*(Y-1)^2+4
CONSTRAINTS C = {X + Y <= 2, X >= 0, Y >= -5}
X = 0; Y = 0
Q = MINIMIZE(F,X,Y,C)
TYPE X, Y, Q
CONSTRAINTS WIDE = {X + Y <= 20}
Q = MINIMIZE(F,X,Y,WIDE)
FUNCTION HILL(X,Y) = 10-F(X,Y)
X = 0; Y = 0
Q = MAXIMIZE(HILL,X,Y)
TYPE X, Y, Q
"Every report bit"
REPTSW = 1023
X = 0; Y = 0
Q = MINIMIZE(F,X,Y,C)
REPTSW = 512
"The reasons why it ends"
CONSTRAINTS FIXED = {X = 1, X - Y = 3}
Q = MINIMIZE(F,X,Y,FIXED)
CONSTRAINTS NONE = {X = 1, X = 2}
Q = MINIMIZE(F,X,Y,NONE)
FUNCTION SLOPE(X) = X
X = 0; Q = MINIMIZE(SLOPE,X)
FUNCTION EDGE(X) = IF X < -5 THEN -1.7E308 ELSE 3*X
X = 0; Q = MINIMIZE(EDGE,X)
BACKTRACKSW = -2
FUNCTION KINK(X,Y) = ABS(X-1)+ABS(Y-2)+X/7+Y/9
X = 0.3; Y = 0; Q = MINIMIZE(KINK,X,Y)
BACKTRACKSW = 1
NEWHESS = 0
FUNCTION TUB(X) = (X-1)^4
X = 0; Q = MINIMIZE(TUB,X)
NEWHESS = -1
"The Hessian that is kept: the inverse, the true one, that of a maximum"
REPTSW = 0
KEEPHESS = 1; X = 0; Y = 0; Q = MINIMIZE(F,X,Y); TYPE HESSIAN
KEEPHESS = 2; Q = MINIMIZE(F,X,Y); TYPE HESSIAN
Q = MAXIMIZE(HILL,X,Y); TYPE HESSIAN
KEEPHESS = 0
"A failure on the way leaves the variables as they were"
FUNCTION BROKEN(X,Y) = IF X < 1 THEN F(X,Y) ELSE NOSUCH+X
X = -2; Y = 5
Q = MINIMIZE(BROKEN,X,Y)
TYPE X, Y
