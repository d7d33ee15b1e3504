"A curve of 200,000 points to an EPS file"
PLOTDEV = "PSL"
PLOTOVER = 1
X = 0:1!200000
FUNCTION F(T) = SIN(40*T)*EXP(-2*T) + 0.05*SIN(9000*T)
DRAW X &' (F ON X)
PLOT IN "plot"
