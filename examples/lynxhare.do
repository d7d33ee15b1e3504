/* Predator and prey: hares and lynxes, thousands of pelts bought by the Hudson's Bay Company in each year. Lotka and Volterra's
   equations, four rates and two start values, fitted to both series at once. To be seen: cycles of ten years, in which lynxes
   follow hares; those of the model are all alike, those of the pelts are not.
   Data: C. Elton, M. Nicholson, J. Animal Ecology 11 (1942) 215-244; E. P. Odum, Fundamentals of Ecology (1953). */
D = READCSV("examples/data/lynxhare.csv")
YEAR = (D COL 1)-1900
HARES = YEAR&'(D COL 2)
LYNXES = YEAR&'(D COL 3)
FUNCTION H'T(T) = BIRTH*H - HUNT*H*L
FUNCTION L'T(T) = FEED*H*L - DEATH*L
INITIAL H(0) = H0
INITIAL L(0) = L0
H0 = 35; L0 = 4; BIRTH = 0.5; HUNT = 0.025; FEED = 0.025; DEATH = 0.8
ERRFAC = 1E-6
FIT (H0, L0, BIRTH, HUNT, FEED, DEATH), H TO HARES, L TO LYNXES
TYPE "-- numbers at rest: hares, lynxes"
TYPE DEATH/FEED, BIRTH/HUNT

/* the picture: both series, and below them the cycle */
X = 0:20:0.1
S = INTEGRATE(H, L, X)
WINDOW 0 TO 20, 0 TO 80
IMAGE 0.1 TO 0.9, 0.27 TO 0.86
CYCLE = W
FRAME 0 TO 1, 0.5 TO 1
FRAME 0 TO 1, 0 TO 0.5 IN CYCLE
WINDOW 0 TO 80, 0 TO 60 IN CYCLE
DRAW SEENHARES = HARES LINETYPE 0 POINTTYPE -13 PTSIZE 0.008 COLOR BLUE
DRAW SEENLYNXES = LYNXES LINETYPE 0 POINTTYPE -4 PTSIZE 0.008 COLOR RED
DRAW MODELHARES = S COL LIST(1, 2) COLOR BLUE
DRAW MODELLYNXES = S COL LIST(1, 4) COLOR RED LINETYPE 2
TITLE "hares" AT (13.8, 72) WORLD SIZE 0.02 COLOR BLUE
TITLE "lynxes" AT (15.7, 48) WORLD SIZE 0.02 COLOR RED
TITLE TOP, "Hares and lynxes" SIZE 0.026
TITLE BOTTOM, "years since 1900" SIZE 0.02
TITLE LEFT, "thousand pelts" SIZE 0.02
DRAW ORBIT = S COL LIST(2, 4) IN CYCLE
DRAW SEEN = (HARES COL 2) &' (LYNXES COL 2) LINETYPE 3 POINTTYPE -13 PTSIZE 0.008 IN CYCLE
TITLE BOTTOM, "hares (thousand pelts)" SIZE 0.02 IN CYCLE
TITLE LEFT, "lynxes" SIZE 0.02 IN CYCLE
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "lynxhare"
