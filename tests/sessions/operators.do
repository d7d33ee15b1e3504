/* operators on numbers and matrices, faults and their limit, calls and their refusals */
A = SHAPE(2, 2, 1:4)
B = SHAPE(1, 3, 10:30:10)
A + B
2 * A
A * A
A *' A
A / A
A ^ 2
A ^ 0.5
A * B
2 ^^ 3
2 ^^' 3
A ^^ 2
A ^^ (-1)
-A ^ 2
NOT A
A > 1 AND A < 4
(1&'0&'0) # (0&'1&'0)
IF A > 2 THEN A ELSE -1
NEW + 1
"the fault of a number is repaired, counted and told of"
1/0
-1/0
0/0
EXP(1000)
0^0
LOG(0)
SQRT(-1)
"inside a large matrix the same, within the limit of messages"
M = SHAPE(1000, 1000, 1)
N = M
N(1, 1) = 0
N(7, 9) = 0
N(1000, 1000) = 0
MATHEX = 2
Q = M /' N
Q(1, 1)
Q(2, 2)
R = (M + 1) /' (N - 1) - 2 * M
MATHEX = 0
S = M /' N
MAXV(S)
MINV(S)
"calls"
LOG(8, 2)
SQRT(2, 3)
SQRT()
SQRT("a")
ATAN2(A, 1)
GAMMA(0)
MAX(3, 1, 2)
MAX(A, 9)
NROWS(B)
NCOLS(B)
LOOKUP(A, 2)
SHAPE(3, 1, A)
SHAPE(-3, 1, A)
DIAG(1:2)
X(3)
FUNCTION F(X, Y) = X + 10*Y
F(1, 2)
F(1)
F ON A
F ON 1:3
POINTS(F, A)
SQRT ON 1:4:3
POINTS(A)
APPLY(SQRT, A)
RAN(-1)
SUM(I, 1, 3, I)
"the session goes on"
1 + 1
