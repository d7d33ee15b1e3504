/* A chemical scheme: alpha-pinene heated to 189.5 degrees turns into dipentene and allo-ocimene; this into pyronene and a dimer,
   which comes apart again. Five rate constants from the concentrations of all five compounds (per cent). To be seen: 5.93E-5,
   2.96E-5, 2.05E-5, 27.5E-5 and 4.00E-5 a minute and the sum of squares 19.87, as Box and others give them.
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

/* the picture */
X = 0:40000:200
S = INTEGRATE(A, B, C, P, E, X)
WINDOW 0 TO 40000, 0 TO 100
IMAGE 0.13 TO 0.81, 0.16 TO 0.88
FOR J = 2:6 { DRAW (T &' (D COL J)) LINETYPE 0 POINTTYPE 13 PTSIZE 0.012 }
FOR J = 2:10:2 { DRAW S COL LIST(1, J) COLOR BLUE }
N = NROWS(S)
XAXIS (0:40000:10000) &' 0 LABEL (0:40000:10000)
TITLE "pinene" AT (14500, 31) WORLD SIZE 0.02
TITLE "dipentene" AT (40500, S(N,4)-1) WORLD SIZE 0.02
TITLE "allo-ocimene" AT (40500, S(N,6)+2) WORLD SIZE 0.02
TITLE "pyronene" AT (40500, S(N,8)-3.5) WORLD SIZE 0.02
TITLE "dimer" AT (40500, S(N,10)-1) WORLD SIZE 0.02
TITLE TOP, "Isomers of pinene at 189.5 degrees" SIZE 0.032
TITLE BOTTOM, "time (min)" SIZE 0.026
TITLE LEFT, "per cent" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "pinene"
