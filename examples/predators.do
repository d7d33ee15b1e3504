/* Predator and prey (Lotka and Volterra): what rises and falls, and what stays. */
FUNCTION P'T(T) = 1.5*P - P*R
FUNCTION R'T(T) = P*R - 3*R
INITIAL P(0) = 1
INITIAL R(0) = 1
FUNCTION H(T) = P - 3*LOG(P) + R - 1.5*LOG(R)
S = INTEGRATE(P, R, H, 0:10)
TYPE ODESTR
TYPE (S COL LIST(1,2,4,6))
TYPE "the quantity H is kept by the equations; its change over the run is"
TYPE S(11,6)-S(1,6)
