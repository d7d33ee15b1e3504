/* Two minima: Rosenbrock's banana valley from its usual start, and the same under a constraint. */
FUNCTION F(X,Y) = 100*(Y-X^2)^2+(1-X)^2
X = -1.2; Y = 1
Q = MINIMIZE(F, X, Y)
CONSTRAINTS C = { X + Y < 1 }
X = -1.2; Y = 1
Q = MINIMIZE(F, X, Y, C)
