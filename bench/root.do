"10,000 roots with a parameter"
FUNCTION R(K) = ROOT(X, 0, 2, X*X*X - X - K)
P = POINTS(R, 1:2!10000)
