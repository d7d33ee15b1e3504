"A polytope whose vertices lie at one height around the minimum"
FUNCTION F(X,Y) = (X-1)^2+(Y-2)^2
S = NMSIMPLEX(F)
TYPE S(1) < 1E-12, ABS(S(2)-1) < 1E-6, ABS(S(3)-2) < 1E-6
"A flat function ends at once; so does a limit of 0"
FUNCTION FLAT(X,Y) = 5
TYPE NMSIMPLEX(FLAT)
MAXITER = 0
TYPE NMSIMPLEX(F,LIST(3,3))
MAXITER = 1000
"What they refuse"
TYPE NMSIMPLEX(F,LIST(1,2,3))
FUNCTION N() = 5
TYPE NMSIMPLEX(N)
TYPE LINPROG(N,LIST(1))
FUNCTION O(X,Y) = 3*X+2*Y
CONSTRAINTS UB = {X - Y <= 4}
TYPE LINPROG(O,UB)
CONSTRAINTS NF = {X + Y <= -4}
TYPE LINPROG(O,NF)
TYPE LINPROG(LIST(1,2),LIST(1,2,3))
FUNCTION BAD(X,Y) = X+NOSUCH
TYPE NMSIMPLEX(BAD)
TYPE LINPROG(BAD,UB)
"A name that is no argument counts with its value"
CONSTRAINTS Q = {X+Y+Z0 <= 4, X+3*Y <= 6, X <= 3}
Z0 = 1
TYPE LINPROG(O,Q)
