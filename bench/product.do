"Products of matrices of 500 by 500"
A = SHAPE(500, 500, 0:1!997)
B = SHAPE(500, 500, 1:0!991)
FOR I = 1:20 {
C = A * B
}
