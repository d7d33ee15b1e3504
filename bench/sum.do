"A sum of a million terms"
FUNCTION S(N) = SUM(I, 1, N, 1/(I*I))
R = S(1000000)
