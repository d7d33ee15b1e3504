/* Predator and prey: hares and lynxes, thousands of pelts bought by the Hudson's Bay Company in each year. Lotka and Volterra's
   equations, four rates and two start values, fitted to both series at once.
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
