"A sum of two exponentials: 50,000 points from 20 starts"
FUNCTION F(X) = A*EXP(-B*X)+C*EXP(-D*X)
LSQRPT = 0; WARNSW = 0
M = (0:10!50000) &' (3*APPLY(EXP,-0.7*(0:10!50000)) + 2*APPLY(EXP,-0.1*(0:10!50000)) + 0.01*APPLY(SIN,997*(0:10!50000)))
FOR K = 1:20 {
A = 2+K/20; B = 1+K/40; C = 1+K/30; D = 0.2+K/200
FIT (A,B,C,D), F TO M
}
