"A linear chain of 200 equations at 101 times, ten times"
FUNCTION Y1'T(T) = -Y1
INITIAL Y1(0) = 1
FOR I = 1:199 {
S = "FUNCTION Y"+(I+1)+"'T(T) = Y"+I+"-Y"+(I+1)
DO S
S = "INITIAL Y"+(I+1)+"(0) = 0"
DO S
}
ERRFAC = 1E-6; JACSW = 0; METHOD = 1
FOR I = 1:10 { R = INTEGRATE(Y200, 0:200:2) }
