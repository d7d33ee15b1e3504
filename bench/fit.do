"A sum of two exponentials: 2,000 points from 200 starts"
FUNCTION F(X) = A*EXP(-B*X)+C*EXP(-D*X)
LSQRPT = 0; WARNSW = 0
M = (0:10!2000) &' (3*APPLY(EXP,-0.7*(0:10!2000)) + 2*APPLY(EXP,-0.1*(0:10!2000)) + 0.01*APPLY(SIN,997*(0:10!2000)))
FOR K = 1:200 {
A = 2+K/200; B = 1+K/400; C = 1+K/300; D = 0.2+K/2000
FIT (A,B,C,D), F TO M
}
