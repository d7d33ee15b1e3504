/* A chemical scheme: alpha-pinene heated to 189.5 degrees turns into dipentene and allo-ocimene; this into pyronene and a dimer,
   which comes apart again. Five rate constants from the concentrations of all five compounds (per cent).
   Data: R. E. Fuguitt, J. E. Hawkins, J. Am. Chem. Soc. 69 (1947) 319-322; model: G. E. P. Box et al., Technometrics 15
   (1973) 33-51. */
D = READCSV("examples/data/pinene.csv")
FUNCTION A'T(T) = -(K1+K2)*A
FUNCTION B'T(T) = K1*A
FUNCTION C'T(T) = K2*A - (K3+K4)*C + K5*E
FUNCTION P'T(T) = K3*C
FUNCTION E'T(T) = K4*C - K5*E
INITIAL A(0) = 100
INITIAL B(0) = 0
INITIAL C(0) = 0
INITIAL P(0) = 0
INITIAL E(0) = 0
K1 = 1E-4; K2 = 1E-4; K3 = 1E-5; K4 = 1E-4; K5 = 1E-5
CONSTRAINTS RATES = { K1 >= 0, K2 >= 0, K3 >= 0, K4 >= 0, K5 >= 0 }
T = D COL 1
FIT (K1, K2, K3, K4, K5), A TO T&'(D COL 2), B TO T&'(D COL 3), C TO T&'(D COL 4), P TO T&'(D COL 5), E TO T&'(D COL 6) \
    CONSTRAINTS RATES
