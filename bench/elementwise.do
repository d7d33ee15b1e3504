"Operators on every cell of matrices of 1000 by 1000"
A = SHAPE(1000, 1000, 1:1000)
B = SHAPE(1000, 1000, 1:999)
FOR I = 1:10 {
C = A + B
D = C *' A
E = D /' B - 2 * A
F = (E > A) *' E + 1
}
