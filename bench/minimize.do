"Rosenbrock in 2 and 10 variables and Wood's function, 100 times each"
REPTSW = 0
FUNCTION F(X,Y) = 100*(Y-X^2)^2+(1-X)^2
FUNCTION G(A,B,C,D,E,F,G,H,I,J) = 100*(B-A^2)^2+(1-A)^2+100*(D-C^2)^2+(1-C)^2+100*(F-E^2)^2+(1-E)^2 \
+100*(H-G^2)^2+(1-G)^2+100*(J-I^2)^2+(1-I)^2
FUNCTION W(A,B,C,D) = 100*(B-A^2)^2+(1-A)^2+90*(D-C^2)^2+(1-C)^2+10*(B+D-2)^2+0.1*(B-D)^2
FOR K = 1:100 {
X = -1.2; Y = 1; Q = MINIMIZE(F,X,Y)
A = -1.2; B = 1; C = -1.2; D = 1; E = -1.2; F1 = 1; G1 = -1.2; H = 1; I = -1.2; J = 1
Q = MINIMIZE(G,A,B,C,D,E,F1,G1,H,I,J)
A = -3; B = -1; C = -3; D = -1; Q = MINIMIZE(W,A,B,C,D)
}
