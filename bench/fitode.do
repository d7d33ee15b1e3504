"Three rate constants of a chain of reactions, fitted to 40 concentrations; the tolerances give the solutions the largest error of the peer, 1E-7, and the fit its limit"
FUNCTION A'T(T) = -K1*A
FUNCTION B'T(T) = K1*A-K2*B+K3*C
FUNCTION C'T(T) = K2*B-K3*C
INITIAL A(0) = 1; INITIAL B(0) = 0; INITIAL C(0) = 0
K1 = 0.8; K2 = 0.3; K3 = 0.1; LSQRPT = 0; WARNSW = 0; ERRFAC = 3E-6; TOLSOS = 1E-8
S = POINTS(B, 0.5:20:0.5)
S = (S COL 1) &' ((S COL 2) + 0.005*APPLY(SIN,37*(S COL 1)))
FOR I = 1:20 {
K1 = 0.5; K2 = 0.5; K3 = 0.2
FIT (K1,K2,K3), B TO S
}
