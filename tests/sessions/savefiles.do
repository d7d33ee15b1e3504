/* Objects saved by another process come back; SAVE and USE between objects of this one. */
USE "before"
TYPE X, M, S, T, F, Y, Y'T
TYPE M(2,2)*5 = 1, F(2,1) = SIN(2)*3.14159265358979+1
/* names in use: without a keyboard they are kept, and what comes gets another name */
X = 100
USE "before"
TYPE X, XA
TYPE FA, F(0.5,0), FA(0.5,0)
USEOVER "before"
TYPE X
/* a file is not replaced unasked */
SAVE X, M IN F
SAVE S IN F
SAVEOVER S IN F
DELETE S
USE F
S
/* everything */
SAVE IN ALL
DELETEALL
USEOVER ALL
TYPE X, M, S, T
/* refusals */
SAVE NOTHING IN F
SAVE SIN IN F
SAVE (1+2) IN EXPR
SAVE X IN "nowhere/f"
USE "nowhere/f"
USE "cut"
TYPE CUTA
USE "text"
