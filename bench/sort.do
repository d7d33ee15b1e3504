"A million rows of two sorted by the first column"
X = 1:2000000
A = SHAPE(1000000, 2, SIN ON (X *' X))
FOR I = 1:20 {
B = SORT(A, 1)
}
