"A formula of one variable and four parameters at a million points"
A = 1.5; B = 2; C = 0.3; D = 4
FUNCTION F(X) = (A*X+B)/(1+X*X)+SIN(X)*EXP(-C*X)-X/D
P = POINTS(F, 0:10!1000000)
