/* A drug taken by mouth: absorbed from the gut, cleared from the plasma (Bateman's model). Concentrations as the model
   gives them for KA 1.2, KE 0.15 and VD 20, rounded to two digits as an assay would; the fit finds the rates again. */
KA = 0.5; KE = 0.05; VD = 10
FUNCTION GUT'T(T) = -KA*GUT
FUNCTION CP'T(T) = KA*GUT/VD - KE*CP
INITIAL GUT(0) = 100
INITIAL CP(0) = 0
D = (0.25&'1.27) & (0.5&'2.17) & (1&'3.20) & (2&'3.71) & (4&'3.09) & (8&'1.72) & (12&'0.94) & (24&'0.16)
CONSTRAINTS POSITIVE = { KA > 0, KE > 0, VD > 1 }
FIT (KA, KE, VD), CP TO D CONSTRAINTS POSITIVE
TYPE "half-lives of absorption and elimination"
TYPE LOG(2)/KA
TYPE LOG(2)/KE
TYPE "time, gut, plasma"
S = INTEGRATE(GUT, CP, 0:24:4)
TYPE (S COL LIST(1,2,4))
