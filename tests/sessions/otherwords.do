"Words of other systems are answered by those of this one"
X = ZEROS(3)
disp X
load "x.csv"
while 1 { TYPE 2 }
quit
HELP linspace
F(X) = X^2
G(X,Y) = X*Y
M(1,J) = 3
TYPE F, M
"but they are free to be names"
LS = 3; LS
"A state without a start, and what is no state"
FUNCTION M'T(T) = -M
S = INTEGRATE(M, 0:2)
S = INTEGRATE(5, 0:2)
