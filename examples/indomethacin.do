/* Pharmacokinetics: indomethacin given into a vein of six subjects. Two compartments, plasma and tissue, as differential
   equations; volume and the three rate constants are fitted to the concentrations of all subjects, whose scatter is
   relative: weights 1/concentration^2. The dose is 25 mg. To be seen: half-lives of 0.37 and 4 hours, over logarithms two
   nearly straight parts.
   Data: K. C. Kwan et al., J. Pharmacokin. Biopharm. 4 (1976) 255-280. */
D = READCSV("examples/data/indomethacin.csv")
FUNCTION C'T(T) = -(K10+K12)*C + K21*P
FUNCTION P'T(T) = K12*C - K21*P
INITIAL C(0) = 25/VOLUME
INITIAL P(0) = 0
VOLUME = 10; K10 = 1; K12 = 1; K21 = 0.5
T = D COL 1
FOR S = 2:7 { Y = D COL S; IF S = 2 THEN ALL = T&'Y ELSE ALL = ALL&(T&'Y) }
CONSTRAINTS POSITIVE = { VOLUME >= 0.1, K10 >= 0, K12 >= 0, K21 >= 0 }
FIT (VOLUME, K10, K12, K21), C TO ALL WITH WEIGHT 1/'(ALL COL 2)/'(ALL COL 2) CONSTRAINTS POSITIVE
TYPE "-- clearance (litres an hour) and the two half-lives (hours)"
TYPE VOLUME*K10
SUMK = K10+K12+K21
ROOTK = SQRT(SUMK^2-4*K10*K21)
TYPE LOG(2)/((SUMK+ROOTK)/2), LOG(2)/((SUMK-ROOTK)/2)

/* the picture, over logarithms */
X = 0:8:0.05
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
DRAW SAMPLES = (ALL COL 1) &' (LOG10 ON (ALL COL 2)) LINETYPE 0 POINTTYPE 13 PTSIZE 0.012
DRAW MODEL = LINLOG(POINTS(C, X)) COLOR BLUE
TITLE TOP, "Indomethacin in plasma" SIZE 0.034
TITLE BOTTOM, "time (h)" SIZE 0.026
TITLE LEFT, "log'.3D'.7S10'R concentration (mg/l)" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "indomethacin"
