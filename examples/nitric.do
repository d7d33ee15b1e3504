/* A stiff scheme: the oxidation of nitric oxide, 2 NO + O2 = 2 NO2. The course of the reaction obeys one equation of the third
   order, as if three molecules met at once. The steps behind it need no such meeting: two NO make a dimer, which nearly
   always falls apart before it finds an O2, so that there is very little of it, always in balance with NO:

       NO + NO = N2O2                fast, there and back
       N2O2 + O2 = 2 NO2             slow, there and back

   The dimer settles a hundred million times faster than the reaction runs: that is what makes the system stiff. To be seen: both
   models fit the data alike, and of the balance EQ and the rate K3 the data tell just the product, which is the constant K1 of
   the one equation.
   Data: M. Bodenstein's, as used with the one equation by R. Bellman, J. Jacquez, R. Kalaba, S. Schwimmer, Math. Biosci. 1 (1967)
   71-76; given here without units. Oxygen starts at 126.2, NO at 91.9 counted in pairs, as are dimers and NO2. The constants
   that the literature gives are K1 = 4.577E-6, K2 = 2.797E-4 with the sum of squares 21.87. The table has 10.5 at the time 3: so
   it gives this sum, while 10.4, which is also found in print, gives 22.18. EQ and BREAK are not measured: any small EQ and
   large BREAK would do. */
D = READCSV("examples/data/nitric.csv")

FUNCTION Y'T(T) = K1*(126.2-Y)*(91.9-Y)^2 - K2*Y^2
INITIAL Y(0) = 0
K1 = 1E-6; K2 = 1E-4
TYPE "-- one equation of the third order"
FIT (K1, K2), Y TO D

FUNCTION N'T(T) = BREAK*(N2O2-EQ*N^2)
FUNCTION N2O2'T(T) = BREAK*(EQ*N^2-N2O2) - K3*N2O2*O2 + K4*NO2^2
FUNCTION O2'T(T) = K4*NO2^2 - K3*N2O2*O2
FUNCTION NO2'T(T) = K3*N2O2*O2 - K4*NO2^2
INITIAL N(0) = 91.9
INITIAL N2O2(0) = 0
INITIAL O2(0) = 126.2
INITIAL NO2(0) = 0
EQ = 1E-6; BREAK = 1E8
K3 = 1; K4 = 1E-4
TYPE "-- the elementary steps"
FIT (K3, K4), NO2 TO D
TYPE "-- the product of EQ and K3, its standard error, and K1 of the one equation"
MANY = EQ*K3
TYPE MANY, EQ*STDEST(1), K1
X = 0:39:0.25
STEPS = POINTS(NO2, X)
EARLY = 10^(-10:-1!91)
DIMER = POINTS(N2O2, EARLY & X ROW (2:NROWS(X)))

TYPE "-- the same with a hundredth of the dimer: EQ, K3 and their product"
EQ = 1E-8; K3 = 100; LSQRPT = 0
FIT (K3, K4), NO2 TO D
FEW = EQ*K3
TYPE EQ, K3, FEW
EQ = 1E-6; K3 = MANY/EQ

TYPE "-- steps from 0 to 39: METHOD 0, which finds out that the system is stiff, and METHOD 3, which is told"
ODERPT = 3
S = INTEGRATE(NO2, 0&39)
METHOD = 3
S = INTEGRATE(NO2, 0&39)
TYPE "-- METHOD 1, for systems that are not stiff, needs as many for the first 0.0001"
METHOD = 1
S = INTEGRATE(NO2, 0&0.0001)
METHOD = 0; ODERPT = 0; LSQRPT = 8

/* the picture: the data with both models, and below them the dimer over the logarithm of time */
WINDOW 0 TO 40, 0 TO 50
IMAGE 0.11 TO 0.91, 0.27 TO 0.86
BALANCE = W
FRAME 0 TO 1, 0.5 TO 1
FRAME 0 TO 1, 0 TO 0.5 IN BALANCE
WINDOW -10 TO 2, 0 TO 10 IN BALANCE
DRAW SEEN = D LINETYPE 0 POINTTYPE -13 PTSIZE 0.009
DRAW COURSE = STEPS LINETYPE 2 COLOR RED
DRAW ONE = X &' (Y ON X) COLOR BLUE
DRAW (22&24.5) &' 20 COLOR BLUE
DRAW (22&24.5) &' 12 LINETYPE 2 COLOR RED
TITLE "one equation" AT (25, 20) WORLD PLACE (LEFT, CENTER) SIZE 0.02
TITLE "elementary steps" AT (25, 12) WORLD PLACE (LEFT, CENTER) SIZE 0.02
TITLE TOP, "Nitric oxide and oxygen" SIZE 0.026
TITLE LEFT, "O'.3D'.7S2'R used" SIZE 0.02
TITLE BOTTOM, "time" SIZE 0.02
DRAW MADE = (LOG10 ON (DIMER COL 1)) &' (1000*(DIMER COL 2)) LINETYPE 2 COLOR RED IN BALANCE
TITLE "the dimer is made" AT (-7.7, 3) WORLD SIZE 0.02 IN BALANCE
TITLE "and stays in balance with NO" AT (-6.4, 6.7) WORLD SIZE 0.02 IN BALANCE
TITLE BOTTOM, "log'.3D'.7S10'R time" SIZE 0.02 IN BALANCE
TITLE LEFT, "1000 N'.3D'.7S2'RO'.3D'.7S2'R" SIZE 0.02 IN BALANCE
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "nitric"
