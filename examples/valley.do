/* Two minima: Rosenbrock's banana valley from its usual start, and the same under a constraint.
   To be seen: the ends (1, 1), and (0.6188, 0.3812) on the border of X + Y < 1. */
FUNCTION F(X,Y) = 100*(Y-X^2)^2+(1-X)^2
X = -1.2; Y = 1
Q = MINIMIZE(F, X, Y)
CONSTRAINTS C = { X + Y < 1 }
X = -1.2; Y = 1
Q = MINIMIZE(F, X, Y, C)
