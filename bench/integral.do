"10,000 integrals with a parameter"
FUNCTION G(K) = INTEGRAL(X, 0, 1, EXP(-K*X)*COS(X))
P = POINTS(G, 1:2!10000)
