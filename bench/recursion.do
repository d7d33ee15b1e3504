"The Fibonacci number 24 by two calls a step"
FUNCTION FIB(N) = IF N<2 THEN N ELSE FIB(N-1)+FIB(N-2)
R = FIB(24)
