"BESSJ of order 0, GAMMA and IBETA of one shape at a million points each"
FUNCTION J(X) = BESSJ(0, X)
FUNCTION G(X) = GAMMA(X)
FUNCTION B(X) = IBETA(2.5, 0.7, X)
P = POINTS(J, 0:50!1000000)
P = POINTS(G, 0.01:10!1000000)
P = POINTS(B, 0:1!1000000)
