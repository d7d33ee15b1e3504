"Inverses of a matrix of 200 by 200"
X = 1:40000
A = SHAPE(200, 200, SIN ON (X *' X *' X))
FOR I = 1:100 {
B = INV(A)
}
