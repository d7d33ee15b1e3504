"Fourier transforms of 1048576 real and of 1000003 (a prime) complex points"
X = 1:1048576
A = SIN ON (X *' X)
B = (1:1000003) &' (1000003:1)
FOR I = 1:5 {
C = DFT(A)
D = DFT(B)
}
