/* Matrices by MFORMAT, LINELEN and CUTOFF. */
M = (1:3) &' (1:3)/7 &' LIST(1E10, -1/30, 0)
M
1:12'
T = (1:12)'
T
NULLM
LINELEN = 20
T
LINELEN = 60
MFORMAT = "10 0 3 0 4 1 5 1"
T
M
MFORMAT = "12 3 1 0 0 0 1 0"
M
"Too narrow a field shows stars, never a part of a number"
MFORMAT = "5 0 1 0 0 1 1 1"
M
CUTOFF = 1E-9
MFORMAT = "10 1 2 0 0 1 1 2"
M
CUTOFF = 0
NAMESW = 0
M
NAMESW = 1
MFORMAT = "1 2 3"
MFORMAT = "80 0 3 0 6 1 1 1"
MFORMAT = "10 0 80 0 6 1 1 1"
MFORMAT = "10 0 3 -1 6 1 1 1"
MFORMAT = "10 0 3 0 6 1 99 1"
M COL 1
TYPE MFORMAT
S(1,1) = "one"
S(2,2) = "four"
S
