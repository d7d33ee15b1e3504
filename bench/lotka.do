"Lotka-Volterra at 100,000 output times"
FUNCTION P'T(T) = 1.5*P - P*R
FUNCTION R'T(T) = P*R - 3*R
INITIAL P(0) = 1; INITIAL R(0) = 1; ERRFAC = 1E-6
S = INTEGRATE(P, R, 0:20!100000)
