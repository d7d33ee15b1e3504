/* tolerance: 1e-3 */
"A pole at T = 1 under each setting of DISASTERSW"
FUNCTION P'T(T) = P^2
INITIAL P(0) = 1
ERRFAC = 1E-4
FOR K = LIST(0,1,2,3,-1,-2,5,6) {
TYPE K
DISASTERSW = K
S = INTEGRATE(P, 0:1.5:0.25)
TYPE S(3,2)
TYPE S(7,1)
}
"Constant steps from the outset, of a solution without a pole"
FUNCTION M'T(T) = -M
INITIAL M(0) = 1
DISASTERSW = 4; S = INTEGRATE(M, 0:2)
TYPE S(3,2)
